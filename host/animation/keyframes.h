// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Animated values: keyframes and the interpolation between them. Independent of effects and files.
//
// A key has an incoming and an outgoing side, each linear or Bézier with a speed and an influence, and the outgoing one
// may hold. Between two keys the value runs along a cubic curve in the plane of time and value: the handle of a side
// reaches `influence` percent of the time to the other key, at the slope of its speed. A linear side opposite a Bézier
// one has the speed of the straight line and an influence of 16.67 %.
//
// A value of several numbers (a point, a colour) moves along a path from key to key, straight or bent by tangents, and
// the curve is the distance along the path; speeds are in path units a second.

#include <vector>

namespace umbrant::host {

/// Frames and seconds.
struct AnimationClock {
    double framesPerSecond = 24;
    double zeroFrame = 0;  ///< the frame at 0 s

    double SecondsOf(double frame) const { return (frame - zeroFrame) / framesPerSecond; }
    double FrameOf(double seconds) const { return seconds * framesPerSecond + zeroFrame; }
};

enum class Interpolation { kHold, kLinear, kBezier };

/// The influence, in per cent, that a side has when nothing else is said, and that an easy ease has.
inline constexpr double kEasyInfluence = 100.0 / 3;
inline constexpr double kLeastInfluence = 0.1;
inline constexpr double kMostInfluence = 100;

struct KeySide {
    Interpolation kind = Interpolation::kLinear;
    double speed = 0;  ///< of a Bézier side: units of the value per second
    double influence = kEasyInfluence;
    bool operator==(const KeySide&) const = default;
};

struct Keyframe {
    double time = 0;            ///< frames or seconds, depending on the track
    std::vector<double> value;  ///< as many numbers as all keys of the track have; at least one
    KeySide in;
    KeySide out;
    std::vector<double> tangentIn;  ///< from the key's value, as many numbers; empty for none
    std::vector<double> tangentOut;
    bool operator==(const Keyframe&) const = default;
};

struct Track {
    bool inFrames = true;        ///< times are frames, else seconds
    std::vector<Keyframe> keys;  ///< at least one; times rise

    /// The frame of a key, whole or fractional.
    double FrameOf(const Keyframe& key, const AnimationClock& clock) const;
    /// The value at a frame, whole or fractional: the first key's before it, the last one's after it.
    std::vector<double> At(double frame, const AnimationClock& clock) const;
};

/// How far a move from 0 to `distance` that takes `duration` seconds is after a `part` of them, 0 to 1; beyond the ends
/// when its speeds carry it there.
double Eased(const KeySide& out, const KeySide& in, double distance, double duration, double part);

}  // namespace umbrant::host
