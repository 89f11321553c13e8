// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The keyframes of one row: a list of objects, each with a time, a value and how it is come to and left.

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "host/animation/preset_reader.h"
#include "host/parameters/param_kind.h"

namespace umbrant::host {

namespace {

using Kind = LocatedJson::Kind;

constexpr double kFarthestFrame = 999999;
constexpr double kFarthestSecond = 1e6;
constexpr double kFarthestTangent = 32767;
constexpr double kFastest = 1e9;

/// Reads the keys of one row.
class TrackReader {
 public:
    TrackReader(std::string name, const ParamRow& row, ParamSet& scratch, PresetMistakes& mistakes)
        : name_(std::move(name)), row_(row), scratch_(scratch), mistakes_(mistakes) {}

    std::optional<RowTrack> Read(const LocatedJson& list) {
        if (list.kind != Kind::kArray) {
            Wrong(list.place, fmt::format("'{}' takes a list of keyframes, not {}", name_, list.KindName()));
        } else if (list.items.empty()) {
            Wrong(list.place, fmt::format("'{}' has an empty list of keyframes", name_));
        }
        for (const LocatedJson& item : list.items) ReadKey(item);
        if (!right_) return std::nullopt;
        return std::move(track_);
    }

 private:
    void Wrong(TextPlace place, const std::string& sentence) {
        mistakes_.Add(place, sentence);
        right_ = false;
    }

    /// A finite number within a range, or nothing and a mistake.
    std::optional<double> Number(const LocatedJson& json, const char* what, double low, double high) {
        if (json.kind == Kind::kNumber && json.number >= low && json.number <= high) return json.number;
        const bool shown = json.kind == Kind::kNumber;
        Wrong(json.place, fmt::format("\"{}\" takes a number from {} to {}, not {}", what, low, high,
                                      shown ? EchoText(json.text) : std::string(json.KindName())));
        return std::nullopt;
    }

    void ReadKey(const LocatedJson& json) {
        if (json.kind != Kind::kObject) {
            Wrong(json.place,
                  fmt::format("a keyframe of '{}' is an object with \"frame\" or \"seconds\" and \"value\", "
                              "not {}",
                              name_, json.KindName()));
            return;
        }
        CheckKeys(json, {"frame", "seconds", "value", "in", "out", "tangent-in", "tangent-out"}, "a keyframe",
                  mistakes_);
        Keyframe key;
        const bool timed = ReadTime(json, key);
        ReadValue(json, key);
        key.in = ReadSide(json, "in");
        key.out = ReadSide(json, "out");
        key.tangentIn = ReadTangent(json, "tangent-in");
        key.tangentOut = ReadTangent(json, "tangent-out");
        if (timed) CheckOrder(json, key);
        track_.track.keys.push_back(std::move(key));
    }

    bool ReadTime(const LocatedJson& json, Keyframe& key) {
        const LocatedJson* frame = json.Find("frame");
        const LocatedJson* seconds = json.Find("seconds");
        if ((frame == nullptr) == (seconds == nullptr)) {
            Wrong(json.place, fmt::format("a keyframe of '{}' has {}; use one of them", name_,
                                          frame ? "\"frame\" and \"seconds\"" : "neither \"frame\" nor \"seconds\""));
            return false;
        }
        const auto time = frame ? Number(*frame, "frame", -kFarthestFrame, kFarthestFrame)
                                : Number(*seconds, "seconds", -kFarthestSecond, kFarthestSecond);
        if (!time) return false;
        key.time = *time;
        const bool inFrames = frame != nullptr;
        if (!last_) {
            track_.track.inFrames = inFrames;
        } else if (track_.track.inFrames != inFrames) {
            Wrong((frame ? frame : seconds)->place,
                  fmt::format("the keyframes of '{}' are in frames and in seconds; use one of them", name_));
            return false;
        }
        return true;
    }

    std::string TimeText(double time) const {
        return track_.track.inFrames ? fmt::format("frame {}", time) : fmt::format("{} s", time);
    }

    void CheckOrder(const LocatedJson& json, const Keyframe& key) {
        if (last_ && key.time == *last_) {
            Wrong(json.place, fmt::format("'{}' has two keyframes at {}", name_, TimeText(key.time)));
        } else if (last_ && key.time < *last_) {
            Wrong(json.place, fmt::format("the keyframes of '{}' are out of order: {} comes after {}", name_,
                                          TimeText(key.time), TimeText(*last_)));
        }
        last_ = key.time;
    }

    void ReadValue(const LocatedJson& json, Keyframe& key) {
        const LocatedJson* value = json.Find("value");
        if (!value) return Wrong(json.place, fmt::format("a keyframe of '{}' has no \"value\"", name_));
        const auto text = ValueTextOf(*value);
        if (!text) {
            return Wrong(value->place,
                         fmt::format("'{}' takes a string or a number, not {}", name_, value->KindName()));
        }
        if (const auto set = scratch_.SetFromText(fmt::format("#{}", row_.index), *text); !set) {
            return Wrong(value->place, set.error().sentence);
        }
        auto [numbers, isPercent] = NumbersOf(row_);
        key.value = std::move(numbers);
        if (isPercent_ && *isPercent_ != isPercent) {
            Wrong(value->place, fmt::format("the points of '{}' are in pixels and in percent; use one of them", name_));
        }
        isPercent_ = track_.isPercent = isPercent;
    }

    KeySide ReadSide(const LocatedJson& json, const char* name) {
        KeySide side;
        if (IsDiscrete(KindOf(row_.def))) side.kind = Interpolation::kHold;
        const LocatedJson* said = json.Find(name);
        if (!said) return side;
        const bool isOut = std::string_view(name) == "out";
        const bool holds = said->kind == Kind::kString && said->text == "hold";
        if (IsDiscrete(KindOf(row_.def))) {
            if (!holds) {
                Wrong(said->place, fmt::format("'{}' is a {} and can only hold its values", name_,
                                               ParamTypeName(row_.def.param_type)));
            }
            return side;
        }
        if (holds && isOut) {
            side.kind = Interpolation::kHold;
            return side;
        }
        if (said->kind == Kind::kString && (said->text == "linear" || said->text == "ease")) {
            side.kind = said->text == "ease" ? Interpolation::kBezier : Interpolation::kLinear;
            return side;
        }
        if (said->kind == Kind::kObject) return ReadEase(*said);
        Wrong(said->place, fmt::format("\"{}\" takes \"linear\", \"ease\"{} or an object with \"speed\" and "
                                       "\"influence\", not {}",
                                       name, isOut ? ", \"hold\"" : "",
                                       said->kind == Kind::kString ? fmt::format("\"{}\"", EchoText(said->text))
                                                                   : std::string(said->KindName())));
        return side;
    }

    KeySide ReadEase(const LocatedJson& json) {
        KeySide side{Interpolation::kBezier};
        CheckKeys(json, {"speed", "influence"}, "a side of a keyframe", mistakes_);
        if (const LocatedJson* speed = json.Find("speed")) {
            side.speed = Number(*speed, "speed", -kFastest, kFastest).value_or(0);
        }
        if (const LocatedJson* influence = json.Find("influence")) {
            side.influence = Number(*influence, "influence", kLeastInfluence, kMostInfluence).value_or(kEasyInfluence);
        }
        return side;
    }

    std::vector<double> ReadTangent(const LocatedJson& json, const char* name) {
        const LocatedJson* said = json.Find(name);
        if (!said) return {};
        if (KindOf(row_.def) != ParamKind::kPoint) {
            Wrong(said->place, fmt::format("'{}' is a {}, and only a point's path has tangents", name_,
                                           ParamTypeName(row_.def.param_type)));
            return {};
        }
        std::array<double, 2> numbers{};
        if (said->kind == Kind::kString && TwoNumbers(said->text, numbers)) return {numbers[0], numbers[1]};
        Wrong(said->place, fmt::format("\"{}\" takes \"x,y\" from the keyframe's place, numbers from -{} to {}, not {}",
                                       name, kFarthestTangent, kFarthestTangent,
                                       said->kind == Kind::kString ? fmt::format("\"{}\"", EchoText(said->text))
                                                                   : std::string(said->KindName())));
        return {};
    }

    static bool TwoNumbers(std::string_view text, std::array<double, 2>& numbers) {
        for (std::size_t i = 0; i < 2; ++i) {
            const char* end = text.data() + text.size();
            const auto [stop, error] = std::from_chars(text.data(), end, numbers[i]);
            if (error != std::errc() || !(std::abs(numbers[i]) <= kFarthestTangent)) return false;
            text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
            if (i == 1) return text.empty();
            if (!text.starts_with(',')) return false;
            text.remove_prefix(1);
        }
        return false;
    }

    const std::string name_;
    const ParamRow& row_;
    ParamSet& scratch_;  ///< has `row_`
    PresetMistakes& mistakes_;
    RowTrack track_{.row = row_.index, .isPercent = false, .track = {}};
    std::optional<double> last_;
    std::optional<bool> isPercent_;
    bool right_ = true;
};

}  // namespace

std::optional<RowTrack> ReadTrack(const LocatedJson::Member& member, int row, ParamSet& scratch,
                                  PresetMistakes& mistakes) {
    const ParamRow& declared = scratch.Row(row);
    if (const auto reason = WhyNotAnimatable(declared)) {
        mistakes.Add(member.place, fmt::format("'{}' {}", EchoText(member.key), *reason));
        return std::nullopt;
    }
    return TrackReader(EchoText(member.key), declared, scratch, mistakes).Read(member.value);
}

}  // namespace umbrant::host
