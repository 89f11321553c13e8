// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/animation/keyframes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace umbrant::host {

namespace {

/// The influence of a linear side opposite a Bézier side, from 0 to 1.
constexpr double kLinearPart = 1.0 / 6;
/// Enough halvings for the last bit of a double.
constexpr int kHalvings = 60;
/// Straight pieces that a bent path is measured in.
constexpr int kPieces = 256;

double Cubic(double a, double b, double c, double d, double s) {
    const double r = 1 - s;
    return r * r * r * a + 3 * r * r * s * b + 3 * r * s * s * c + s * s * s * d;
}

/// Where a curve whose times run 0, `first`, `second`, 1 is at the time `u`. Both are within 0..1, so it never turns
/// back.
double ParameterAt(double first, double second, double u) {
    double low = 0, high = 1;
    for (int i = 0; i < kHalvings; ++i) {
        const double middle = (low + high) / 2;
        (Cubic(0, first, second, 1, middle) < u ? low : high) = middle;
    }
    return (low + high) / 2;
}

double Length(const std::vector<double>& from, const std::vector<double>& to) {
    double sum = 0;
    for (std::size_t i = 0; i < from.size(); ++i) sum += (to[i] - from[i]) * (to[i] - from[i]);
    return std::sqrt(sum);
}

std::vector<double> Mix(const std::vector<double>& from, const std::vector<double>& to, double part) {
    std::vector<double> mixed(from.size());
    for (std::size_t i = 0; i < from.size(); ++i) mixed[i] = from[i] + (to[i] - from[i]) * part;
    return mixed;
}

/// The way of a value of several numbers from one key to the next.
class Path {
 public:
    Path(const Keyframe& from, const Keyframe& to) : from_(from), to_(to) {
        straight_ = from.tangentOut.empty() && to.tangentIn.empty();
        if (straight_) {
            length_ = Length(from.value, to.value);
            return;
        }
        std::vector<double> before = from.value;
        for (int i = 1; i <= kPieces; ++i) {
            const std::vector<double> next = Bent(static_cast<double>(i) / kPieces);
            length_ += Length(before, next);
            ends_[static_cast<std::size_t>(i)] = length_;
            before = next;
        }
    }

    double Total() const { return length_; }

    /// The place after `way` of the path's length.
    std::vector<double> At(double way) const {
        if (length_ == 0) return from_.value;
        way = std::clamp(way, 0.0, length_);
        if (straight_) return Mix(from_.value, to_.value, way / length_);
        const auto end = std::upper_bound(ends_.begin(), ends_.end() - 1, way);
        const auto piece = static_cast<std::size_t>(end - ends_.begin());
        const double span = ends_[piece] - ends_[piece - 1];
        const double part = span > 0 ? (way - ends_[piece - 1]) / span : 1;
        return Bent((static_cast<double>(piece) - 1 + part) / kPieces);
    }

 private:
    static double Tangent(const std::vector<double>& tangent, std::size_t i) {
        return tangent.empty() ? 0 : tangent[i];
    }

    std::vector<double> Bent(double s) const {
        std::vector<double> place(from_.value.size());
        for (std::size_t i = 0; i < place.size(); ++i) {
            const double a = from_.value[i], d = to_.value[i];
            place[i] = Cubic(a, a + Tangent(from_.tangentOut, i), d + Tangent(to_.tangentIn, i), d, s);
        }
        return place;
    }

    const Keyframe& from_;
    const Keyframe& to_;
    bool straight_ = true;
    double length_ = 0;
    std::array<double, kPieces + 1> ends_{};  ///< lengths up to the end of each piece
};

}  // namespace

double Eased(const KeySide& out, const KeySide& in, double distance, double duration, double part) {
    const bool isLine = out.kind == Interpolation::kLinear && in.kind != Interpolation::kBezier;
    if (isLine) return distance * part;
    const auto influence = [](const KeySide& side) {
        return side.kind == Interpolation::kBezier ? side.influence / 100 : kLinearPart;
    };
    const auto speed = [&](const KeySide& side) {
        return side.kind == Interpolation::kBezier ? side.speed : distance / duration;
    };
    const double first = influence(out), last = influence(in);
    const double s = ParameterAt(first, 1 - last, part);
    return Cubic(0, speed(out) * first * duration, distance - speed(in) * last * duration, distance, s);
}

double Track::FrameOf(const Keyframe& key, const AnimationClock& clock) const {
    return inFrames ? key.time : clock.FrameOf(key.time);
}

std::vector<double> Track::At(double frame, const AnimationClock& clock) const {
    // In the track's own unit, in which whole numbers are exact.
    const double time = inFrames ? frame : clock.SecondsOf(frame);
    const auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                        [](double moment, const Keyframe& key) { return moment < key.time; });
    if (after == keys.begin()) return keys.front().value;
    const Keyframe& from = *std::prev(after);
    if (after == keys.end() || from.out.kind == Interpolation::kHold || time == from.time) return from.value;
    const double span = after->time - from.time;
    const double part = (time - from.time) / span;
    const double duration = inFrames ? span / clock.framesPerSecond : span;
    if (from.value.size() == 1) {
        const double distance = after->value[0] - from.value[0];
        return {from.value[0] + Eased(from.out, after->in, distance, duration, part)};
    }
    const Path path(from, *after);
    return path.At(Eased(from.out, after->in, path.Total(), duration, part));
}

}  // namespace umbrant::host
