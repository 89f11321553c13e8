// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What lies between keyframes, against curves that can be worked out by hand.

#include "host/animation/keyframes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace umbrant::host {

namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;

constexpr AnimationClock kTenPerSecond{10, 0};
constexpr KeySide kHold{Interpolation::kHold};
constexpr KeySide kLinear{Interpolation::kLinear};
constexpr KeySide kEase{Interpolation::kBezier};

KeySide Bezier(double speed, double influence) {
    return {Interpolation::kBezier, speed, influence};
}

Keyframe Key(double time, std::vector<double> value, KeySide in = kLinear, KeySide out = kLinear) {
    return {time, std::move(value), in, out, {}, {}};
}

double At(const Track& track, double frame) {
    return track.At(frame, kTenPerSecond).front();
}

TEST(Keyframes, OneKeyIsAValue) {
    const Track track{true, {Key(5, {7})}};
    for (const double frame : {-100.0, 5.0, 100.0}) EXPECT_EQ(At(track, frame), 7);
}

TEST(Keyframes, TheFirstAndTheLastValueGoOn) {
    const Track track{true, {Key(10, {1}), Key(20, {3})}};
    EXPECT_EQ(At(track, -5), 1);
    EXPECT_EQ(At(track, 10), 1);
    EXPECT_EQ(At(track, 20), 3);
    EXPECT_EQ(At(track, 500), 3);
}

TEST(Keyframes, LinesAreExact) {
    const Track track{true, {Key(0, {0}), Key(8, {16}), Key(10, {12})}};
    EXPECT_EQ(At(track, 1), 2);
    EXPECT_EQ(At(track, 4), 8);
    EXPECT_EQ(At(track, 8), 16);
    EXPECT_EQ(At(track, 9), 14);
}

TEST(Keyframes, AHeldValueJumpsAtTheNextKey) {
    const Track track{true, {Key(0, {1}, kLinear, kHold), Key(10, {2}, kEase), Key(20, {4})}};
    EXPECT_EQ(At(track, 9.999), 1);
    EXPECT_EQ(At(track, 10), 2);
    EXPECT_EQ(At(track, 15), 3);
}

TEST(Keyframes, AnglesGoOnPastAFullTurn) {
    const Track track{true, {Key(0, {45}), Key(10, {765})}};
    EXPECT_EQ(At(track, 5), 405);
}

TEST(Keyframes, TimesAreFramesOrSeconds) {
    const AnimationClock clock{25, 100};
    const Track frames{true, {Key(100, {0}), Key(150, {50})}};
    EXPECT_DOUBLE_EQ(frames.At(125, clock)[0], 25) << "frame 125";
    const Track seconds{false, {Key(0, {0}), Key(2, {50})}};
    EXPECT_DOUBLE_EQ(seconds.At(125, clock)[0], 25);
    EXPECT_DOUBLE_EQ(frames.FrameOf(frames.keys[1], clock), 150);
    EXPECT_DOUBLE_EQ(seconds.FrameOf(seconds.keys[1], clock), 150);
}

TEST(Keyframes, AnEasyEaseIsSlowAtBothEnds) {
    const Track track{true, {Key(0, {0}, kLinear, kEase), Key(10, {1}, kEase)}};
    // With both handles a third of the way along the times, time runs evenly and the value is 3s^2 - 2s^3.
    for (int frame = 0; frame <= 10; ++frame) {
        const double s = frame / 10.0;
        EXPECT_NEAR(At(track, frame), s * s * (3 - 2 * s), 1e-12) << frame;
    }
}

TEST(Keyframes, SpeedIsTheSlopeAtTheKey) {
    const Track track{true, {Key(0, {0}, kLinear, Bezier(300, 50)), Key(10, {100}, Bezier(-40, 20))}};
    constexpr double kStep = 1e-4;
    EXPECT_NEAR((At(track, kStep) - At(track, 0)) / kStep * kTenPerSecond.framesPerSecond, 300, 0.1);
    EXPECT_NEAR((At(track, 10) - At(track, 10 - kStep)) / kStep * kTenPerSecond.framesPerSecond, -40, 0.1);
}

TEST(Keyframes, InfluenceIsHowFarAHandleReaches) {
    // Both handles reach all the way: times 0, 1, 0, 1 and values 0, 0, 1, 1, so at the middle both are a half, and the
    // value turns so steeply there that few digits are left.
    const Track track{true, {Key(0, {0}, kLinear, Bezier(0, 100)), Key(10, {1}, Bezier(0, 100))}};
    EXPECT_NEAR(At(track, 5), 0.5, 1e-5);
    // Elsewhere the time is 3 s (1-s)^2 + s^3 and the value 3 s^2 (1-s) + s^3.
    const double s = 0.25;
    const double time = 3 * s * (1 - s) * (1 - s) + s * s * s;
    EXPECT_NEAR(At(track, 10 * time), 3 * s * s * (1 - s) + s * s * s, 1e-9);
}

TEST(Keyframes, ALinearSideBesideACurveHasTheLinesSpeedAndASixth) {
    const Track track{true, {Key(0, {0}, kLinear, kLinear), Key(10, {60}, kEase)}};
    const Track same{true, {Key(0, {0}, kLinear, Bezier(60, 100.0 / 6)), Key(10, {60}, kEase)}};
    for (double frame = 0; frame <= 10; frame += 0.5) EXPECT_NEAR(At(track, frame), At(same, frame), 1e-9);
}

TEST(Keyframes, ACurveMayOvershoot) {
    const Track track{true, {Key(0, {0}, kLinear, Bezier(600, 60)), Key(10, {10}, kEase)}};
    double highest = 0;
    for (double frame = 0; frame <= 10; frame += 0.1) highest = std::max(highest, At(track, frame));
    EXPECT_GT(highest, 20);
}

TEST(Keyframes, ALevelCurveStaysLevel) {
    const Track track{true, {Key(0, {5}, kLinear, kEase), Key(10, {5}, kEase)}};
    EXPECT_EQ(At(track, 3), 5);
}

TEST(Paths, PointsMoveStraightAtAnEvenSpeed) {
    const Track track{true, {Key(0, {0, 0}), Key(10, {30, 40})}};
    EXPECT_THAT(track.At(5, kTenPerSecond), ElementsAre(15, 20));
}

TEST(Paths, EasingIsAlongThePath) {
    const Track track{true, {Key(0, {0, 0}, kLinear, kEase), Key(10, {30, 40}, kEase)}};
    const double s = 0.3;
    const double part = s * s * (3 - 2 * s);
    EXPECT_THAT(track.At(3, kTenPerSecond), ElementsAre(DoubleNear(30 * part, 1e-9), DoubleNear(40 * part, 1e-9)));
}

TEST(Paths, SpeedIsInPathUnitsASecond) {
    const Track track{true, {Key(0, {0, 0}, kLinear, Bezier(50, 30)), Key(10, {30, 40}, kEase)}};
    const auto soon = track.At(1e-4, kTenPerSecond);
    EXPECT_NEAR(std::hypot(soon[0], soon[1]) / 1e-5, 50, 0.1);
}

TEST(Paths, TangentsBendThePath) {
    // A quarter of a circle of radius 100, as well as a cubic can: its points keep their distance from the middle, and
    // an even pace covers even angles.
    constexpr double kCircle = 55.22847498;
    Track track{true, {Key(0, {100, 0}), Key(10, {0, 100})}};
    track.keys[0].tangentOut = {0, kCircle};
    track.keys[1].tangentIn = {kCircle, 0};
    for (int frame = 0; frame <= 10; ++frame) {
        const auto place = track.At(frame, kTenPerSecond);
        EXPECT_NEAR(std::hypot(place[0], place[1]), 100, 0.05) << frame;
        EXPECT_NEAR(std::atan2(place[1], place[0]), frame / 10.0 * std::acos(-1) / 2, 0.002) << frame;
    }
}

TEST(Paths, APointThatStaysHasNoPath) {
    Track track{true, {Key(0, {3, 4}, kLinear, kEase), Key(10, {3, 4}, kEase)}};
    EXPECT_THAT(track.At(4, kTenPerSecond), ElementsAre(3, 4));
    track.keys[0].tangentOut = {10, 0};
    EXPECT_GT(track.At(5, kTenPerSecond)[0], 3) << "but a loop that leaves and comes back does";
}

TEST(Paths, DoNotRunBeyondTheirKeys) {
    const Track track{true, {Key(0, {0, 0}, kLinear, Bezier(1000, 90)), Key(10, {10, 0}, kEase)}};
    for (double frame = 0; frame <= 10; frame += 0.25) {
        const double x = track.At(frame, kTenPerSecond)[0];
        EXPECT_GE(x, 0);
        EXPECT_LE(x, 10);
    }
}

}  // namespace

}  // namespace umbrant::host
