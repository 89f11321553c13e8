// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Presets with keyframes: read, checked as a whole, written, and what the rows show at a time.

#include <cmath>

#include "host/animation/curves_picture.h"
#include "tests/host/animation/preset_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(PresetTest, EveryKindOfRowMoves) {
    MustApply(Moving(R"(
        "size": [{"frame": 0, "value": 10}, {"frame": 10, "value": 20}],
        "count": [{"frame": 0, "value": 0}, {"frame": 10, "value": 3}],
        "strength": [{"frame": 0, "value": "0%"}, {"frame": 10, "value": 50}],
        "angle": [{"frame": 0, "value": 90}, {"frame": 10, "value": 810}],
        "centre": [{"frame": 0, "value": "0,0"}, {"frame": 10, "value": "100,50"}],
        "colour": [{"frame": 0, "value": "#000000"}, {"frame": 10, "value": "#ff8000"}],
        "mode": [{"frame": 0, "value": "soft"}, {"frame": 5, "value": "very-hard"}],
        "on": [{"frame": 0, "value": false}, {"frame": 5, "value": true}])"));
    const struct {
        const char* path;
        const char* before;
        const char* middle;
        const char* after;
    } rows[] = {
        {"size", "10", "15", "20"},
        {"count", "0", "2", "3"},
        {"strength", "0", "25", "50"},
        {"angle", "90", "450", "810"},
        {"centre", "0,0", "50,25", "100,50"},
        {"colour", "#000000", "#804000", "#ff8000"},
        {"mode", "soft", "very-hard", "very-hard"},
        {"on", "off", "on", "on"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(At(row.path, -3), row.before) << row.path;
        EXPECT_EQ(At(row.path, 5), row.middle) << row.path;
        EXPECT_EQ(At(row.path, 11), row.after) << row.path;
    }
    EXPECT_EQ(At("mode", 4.9), "soft") << "held";
    EXPECT_EQ(At("on", 4.9), "off");
}

TEST_F(PresetTest, SidesAreReadAsTheyAreWritten) {
    MustApply(Moving(R"("size": [
        {"frame": 0, "value": 10, "out": "hold"},
        {"frame": 1, "value": 10, "in": "ease", "out": {"speed": 5, "influence": 70}},
        {"frame": 2, "value": 20, "in": {"speed": -2.5}, "out": "linear"},
        {"frame": 3, "value": 0, "in": {"influence": 0.1}, "out": "ease"}])"));
    const auto& keys = params_.animation.Tracks()[0].track.keys;
    ASSERT_EQ(keys.size(), 4u);
    EXPECT_EQ(keys[0].out.kind, Interpolation::kHold);
    EXPECT_EQ(keys[1].in, (KeySide{Interpolation::kBezier, 0, kEasyInfluence}));
    EXPECT_EQ(keys[1].out, (KeySide{Interpolation::kBezier, 5, 70}));
    EXPECT_EQ(keys[2].in, (KeySide{Interpolation::kBezier, -2.5, kEasyInfluence}));
    EXPECT_EQ(keys[2].out.kind, Interpolation::kLinear);
    EXPECT_EQ(keys[3].in, (KeySide{Interpolation::kBezier, 0, 0.1}));
}

TEST_F(PresetTest, SecondsPercentsAndTangents) {
    MustApply(Moving(R"("centre": [
        {"seconds": 0.5, "value": "0%,0%", "tangent-out": "0,50"},
        {"seconds": 1.5, "value": "100%,0%", "tangent-in": "-1.5,50"}])"));
    EXPECT_EQ(At("centre", 5), "0%,0%");
    EXPECT_THAT(At("centre", 10), HasSubstr("%,37.49")) << "the middle of the bend";
    EXPECT_EQ(At("centre", 15), "100%,0%");
}

TEST_F(PresetTest, WhatOvershootsStaysWithinTheRow) {
    MustApply(Moving(R"("size": [{"frame": 0, "value": 90, "out": {"speed": 500, "influence": 60}},
                                 {"frame": 10, "value": 100, "in": {"speed": 0, "influence": 60}}])"));
    EXPECT_EQ(At("size", 5), "100");
}

TEST_F(PresetTest, AValueStopsARow) {
    MustApply(Moving(R"("size": [{"frame": 0, "value": 10}, {"frame": 10, "value": 20}],
                        "angle": [{"frame": 0, "value": 1}])"));
    MustApply(R"({"version": 1, "values": {"size": 7}})");
    EXPECT_EQ(At("size", 5), "7");
    EXPECT_EQ(params_.animation.Tracks().size(), 1u);
}

TEST_F(PresetTest, IsWrittenAsItWasRead) {
    MustApply(R"({"version": 2, "values": {"count": 4, "kind": "two"}, "keyframes": {
        "size": [{"frame": 0, "value": 10, "out": "hold"},
                 {"frame": 1.5, "value": 12.25, "in": "ease", "out": {"speed": 5.5, "influence": 70}},
                 {"frame": 3, "value": 0}],
        "#4": [{"frame": -4, "value": 1000.5}],
        "centre": [{"seconds": 0.25, "value": "1%,2%", "tangent-in": "-1,0.5", "tangent-out": "1,0"}],
        "mode": [{"frame": 2, "value": 3}],
        "on": [{"frame": 2, "value": "yes"}]}})");
    const std::string text = PresetText(params_);
    EXPECT_THAT(text, HasSubstr("\"version\": 2"));
    EXPECT_THAT(text, HasSubstr("\"angle\": ["));
    EXPECT_THAT(text, HasSubstr("\"value\": \"very-hard\""));
    EXPECT_THAT(text, HasSubstr("\"frame\": 1.5"));
    EXPECT_THAT(text, HasSubstr("\"out\": \"hold\""));
    EXPECT_THAT(text, HasSubstr("\"in\": \"ease\""));
    EXPECT_THAT(text, HasSubstr("\"tangent-in\": \"-1,0.5\""));
    const AnimatedParams before = params_;
    params_.animation = {};
    params_.values = before.values;
    MustApply(text);
    EXPECT_EQ(PresetText(params_), text) << "to the byte";
    EXPECT_EQ(params_.animation.Tracks(), before.animation.Tracks());
}

TEST_F(PresetTest, WithoutKeyframesItIsOfVersionOne) {
    EXPECT_THAT(PresetText(params_), HasSubstr("\"version\": 1"));
    EXPECT_THAT(PresetText(params_), testing::Not(HasSubstr("keyframes")));
    MustApply(PresetText(params_));
    MustApply(R"({"version": 2, "values": {}})");
    MustApply(R"({"version": 2, "keyframes": {}})");
}

TEST_F(PresetTest, EveryMistakeIsToldWithItsPlace) {
    const auto applied = Apply(R"({
  "version": 2,
  "valeus": {},
  "values": { "size": 101, "nothing": 1, "angle": 5 },
  "keyframes": {
    "kind": [{"frame": 0, "value": 1}],
    "angle": [{"frame": 0, "value": 1}],
    "size": [{"frame": 9, "value": 1}, {"frame": 4, "value": "big"}]
  }
})");
    ASSERT_FALSE(applied);
    EXPECT_EQ(applied.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(applied.error().sentence,
              "the preset '" + (folder_ / "p.json").string() +
                  "' has 8 mistakes:\n  line 3, column 3: there is no key 'valeus' in a preset; closest: 'values'\n  "
                  "line 4, column 23: 'size' takes 0 to 100, not 101\n  line 4, column 28: there is no parameter "
                  "'nothing'; `umbrant params` lists all parameters\n  line 6, column 5: 'kind' cannot have keyframes: "
                  "the effect does not let it vary over time; set one value in \"values\"\n  line 7, column 5: 'angle' "
                  "has a value and keyframes; remove one of them\n  line 8, column 5: 'size' has a value and "
                  "keyframes; remove one of them\n  line 8, column 40: the keyframes of 'size' are out of order: frame "
                  "4 comes after frame 9\n  line 8, column 62: 'size' takes a number from 0 to 100, not 'big'");
    EXPECT_THAT(params_.animation.Tracks(), IsEmpty()) << "nothing is changed";
    EXPECT_EQ(params_.values.ValueText(*params_.values.Find("angle")), "0");
}

/// Keyframes that are refused, and a part of the sentence.
constexpr struct {
    const char* name;
    const char* keyframes;
    const char* sentence;
} kWrongKeyframes[] = {
    {"no list", R"("size": 5)", "'size' takes a list of keyframes, not a number"},
    {"an empty list", R"("size": [])", "'size' has an empty list of keyframes"},
    {"no object", R"("size": [5])",
     "a keyframe of 'size' is an object with \"frame\" or \"seconds\" and \"value\", not a number"},
    {"no time", R"("size": [{"value": 5}])",
     "a keyframe of 'size' has neither \"frame\" nor \"seconds\"; use one of them"},
    {"two times", R"("size": [{"frame": 1, "seconds": 1, "value": 5}])",
     "a keyframe of 'size' has \"frame\" and \"seconds\"; use one of them"},
    {"a time that is a word", R"("size": [{"frame": "1", "value": 5}])",
     "\"frame\" takes a number from -999999 to 999999, not a string"},
    {"a time too far off", R"("size": [{"frame": 1e9, "value": 5}])", "not 1e9"},
    {"mixed times", R"("size": [{"frame": 1, "value": 5}, {"seconds": 1, "value": 5}])",
     "the keyframes of 'size' are in frames and in seconds; use one of them"},
    {"the same time twice", R"("size": [{"frame": 1, "value": 5}, {"frame": 1, "value": 6}])",
     "'size' has two keyframes at frame 1"},
    {"out of order in seconds", R"("size": [{"seconds": 1.5, "value": 5}, {"seconds": 1, "value": 6}])",
     "the keyframes of 'size' are out of order: 1 s comes after 1.5 s"},
    {"no value", R"("size": [{"frame": 1}])", "a keyframe of 'size' has no \"value\""},
    {"a value of no kind", R"("size": [{"frame": 1, "value": [1]}])",
     "'size' takes a string or a number, not an array"},
    {"an unknown key", R"("size": [{"frame": 1, "value": 1, "outt": "hold"}])",
     "there is no key 'outt' in a keyframe; closest: 'out'"},
    {"an unknown side", R"("size": [{"frame": 1, "value": 1, "out": "smooth"}])",
     "\"out\" takes \"linear\", \"ease\", \"hold\" or an object with \"speed\" and \"influence\", not \"smooth\""},
    {"a hold on the way in", R"("size": [{"frame": 1, "value": 1, "in": "hold"}])",
     "\"in\" takes \"linear\", \"ease\" or an object with \"speed\" and \"influence\", not \"hold\""},
    {"no influence at all", R"("size": [{"frame": 1, "value": 1, "in": {"influence": 0}}])",
     "\"influence\" takes a number from 0.1 to 100, not 0"},
    {"too much influence", R"("size": [{"frame": 1, "value": 1, "in": {"influence": 101}}])", "not 101"},
    {"a speed that is none", R"("size": [{"frame": 1, "value": 1, "in": {"speed": true}}])",
     "\"speed\" takes a number from -1000000000 to 1000000000, not a boolean"},
    {"an unknown part of a side", R"("size": [{"frame": 1, "value": 1, "in": {"sped": 1}}])",
     "there is no key 'sped' in a side of a keyframe; closest: 'speed'"},
    {"an eased popup", R"("mode": [{"frame": 1, "value": 1, "out": "ease"}])",
     "'mode' is a popup and can only hold its values"},
    {"an eased check box", R"("on": [{"frame": 1, "value": 1, "in": "linear"}])",
     "'on' is a check box and can only hold its values"},
    {"mixed units", R"("centre": [{"frame": 1, "value": "1,1"}, {"frame": 2, "value": "1%,1%"}])",
     "the points of 'centre' are in pixels and in percent; use one of them"},
    {"tangents of a number", R"("size": [{"frame": 1, "value": 1, "tangent-in": "1,1"}])",
     "'size' is a slider, and only a point's path has tangents"},
    {"half a tangent", R"("centre": [{"frame": 1, "value": "1,1", "tangent-in": "1"}])",
     "\"tangent-in\" takes \"x,y\" from the keyframe's place, numbers from -32767 to 32767, not \"1\""},
    {"a row that is no value", R"("press": [{"frame": 1, "value": 1}])",
     "'press' is a button and cannot have keyframes"},
    {"a row that is not there", R"("sizes": [])", "there is no parameter 'sizes'; closest: 'size'"},
    {"one row under two names", R"("size": [{"frame": 1, "value": 1}], "#1": [{"frame": 1, "value": 1}])",
     "'size' and '#1' are the same parameter"},
    {"one row twice", R"("size": [{"frame": 1, "value": 1}], "size": [{"frame": 1, "value": 1}])",
     "the key 'size' is repeated"},
};

TEST_F(PresetTest, WhatAKeyframeMayNotBe) {
    for (const auto& row : kWrongKeyframes) {
        SCOPED_TRACE(row.name);
        const auto applied = Apply(Moving(row.keyframes));
        ASSERT_FALSE(applied);
        EXPECT_EQ(applied.error().kind, ErrorKind::kUsage);
        EXPECT_THAT(applied.error().sentence, HasSubstr(row.sentence));
        EXPECT_THAT(applied.error().sentence, HasSubstr("line 1, column "));
    }
}

TEST_F(PresetTest, VersionsAreKnown) {
    const struct {
        const char* name;
        const char* text;
        const char* sentence;
    } rows[] = {
        {"none", R"({"values": {}})", "\"version\" is missing; this program reads versions 1 and 2"},
        {"a newer one", R"({"version": 3, "values": {"size": "huge"}, "expressions": {}})",
         "has a mistake: line 1, column 13: version 3 is not supported; this program reads versions 1 and 2, and a "
         "newer version of it wrote this file; save the preset there without newer features"},
        {"a text", R"({"version": "2", "values": {}})",
         "version \"2\" is not supported; this program reads versions 1 and 2"},
        {"a fraction", R"({"version": 1.5, "values": {}})", "version 1.5 is not supported;"},
        {"none that is", R"({"version": null, "values": {}})", "version null is not supported;"},
        {"zero", R"({"version": 0, "values": {}})", "version 0 is not supported;"},
        {"keyframes before their time", R"({"version": 1, "values": {}, "keyframes": {}})",
         "a preset of version 1 cannot have keyframes; write \"version\": 2"},
        {"nothing at all", R"({"version": 2})", "\"values\" and \"keyframes\" are missing"},
        {"a list of keyframes", R"({"version": 2, "keyframes": []})",
         "\"keyframes\" is not an object of paths and lists"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto applied = Apply(row.text);
        ASSERT_FALSE(applied);
        EXPECT_EQ(applied.error().kind, ErrorKind::kUsage);
        EXPECT_THAT(applied.error().sentence, HasSubstr(row.sentence));
    }
}

TEST_F(PresetTest, CurvesHaveAPlotForEachRow) {
    MustApply(Moving(R"("size": [{"frame": 0, "value": 0}, {"frame": 10, "value": 100}],
                        "colour": [{"frame": 0, "value": "#ff0000"}, {"frame": 10, "value": "#00ff00"}])"));
    const auto pixels = DrawCurves(params_.values, params_.animation, kClock, {0, 10, 496});
    ASSERT_TRUE(pixels) << pixels.error().sentence;
    EXPECT_EQ(pixels->Width(), 496);
    EXPECT_EQ(pixels->Height(), kCurvesHead + 2 * kPlotHeight);
    // The line rises: somewhere at its height there is a blue pixel, on the left below the middle and on the right
    // above.
    auto at = [&](int x, int y) { return RowOf<PF_Pixel>(const_cast<World&>(*pixels).Def(), y)[x]; };
    const auto blueRow = [&](int x) {
        for (int y = kCurvesHead + 24; y < kCurvesHead + 132; ++y) {
            const PF_Pixel pixel = at(x, y);
            if (pixel.blue > 150 && pixel.red < 90 && pixel.green < 140) return y;
        }
        return -1;
    };
    const int left = blueRow(76 + 100), middle = blueRow(76 + 200), right = blueRow(76 + 300);
    EXPECT_GT(left, middle);
    EXPECT_GT(middle, right);
    EXPECT_GT(right, 0);
    EXPECT_NEAR(left - middle, middle - right, 2) << "a straight line";
    // The colour's strip runs from red to green.
    const int strip = kCurvesHead + kPlotHeight + 26;
    EXPECT_GT(at(100, strip).red, 220);
    EXPECT_LT(at(100, strip).green, 35);
    EXPECT_GT(at(450, strip).green, 220);
}

}  // namespace

}  // namespace umbrant::host
