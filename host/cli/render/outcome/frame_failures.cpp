// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/outcome/frame_failures.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace umbrant::host {

namespace {

void Replace(std::string& text, const std::string& name, const std::string& general) {
    if (name.empty() || general.empty() || name == general) return;
    const std::string quoted = "'" + name + "'", replacement = "'" + general + "'";
    for (std::size_t at = 0; (at = text.find(quoted, at)) != std::string::npos; at += replacement.size()) {
        text.replace(at, quoted.size(), replacement);
    }
}

/// The sentence as it would be for every frame of the sequence.
std::string General(const FramePlan& plan, const PlannedFrame& frame, std::string sentence) {
    Replace(sentence, frame.input, plan.input.path);
    Replace(sentence, frame.texture, plan.texture.path);
    Replace(sentence, frame.output, plan.output);
    return sentence;
}

std::string CountOf(std::size_t frames) {
    return fmt::format("{} frame{}", frames, frames == 1 ? "" : "s");
}

}  // namespace

void FrameFailures::Add(const FramePlan& plan, const PlannedFrame& frame, const Failure& failure) {
    ++count_;
    std::string general = General(plan, frame, failure.sentence);
    const auto known = std::find_if(reasons_.begin(), reasons_.end(), [&](const Reason& reason) {
        return reason.general == general && reason.failure.kind == failure.kind;
    });
    if (known != reasons_.end()) {
        known->frames.push_back(frame.number);
    } else if (reasons_.size() < kMostReasons) {
        reasons_.push_back({failure, std::move(general), {frame.number}});
    } else {
        ++others_;
    }
}

std::string FrameFailures::Lines() const {
    std::string text;
    for (const Reason& reason : reasons_) {
        text += reason.frames.size() == 1
                    ? fmt::format("\n  frame {}: {}", reason.frames.front(), reason.failure.sentence)
                    : fmt::format("\n  frames {}: {}", FramesText(reason.frames), reason.general);
    }
    if (others_ > 0) text += fmt::format("\n  {} for other reasons", CountOf(others_));
    return text;
}

std::string FrameFailures::List() const {
    return count_ == 0 ? "" : CountOf(count_) + " failed:" + Lines();
}

std::string FrameFailures::Text() const {
    return count_ == 1 ? fmt::format("frame {}: {}", reasons_[0].frames[0], reasons_[0].failure.sentence) : List();
}

nlohmann::ordered_json FrameFailures::Json() const {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Reason& reason : reasons_) {
        std::vector<FrameNumber> frames = reason.frames;
        std::sort(frames.begin(), frames.end());
        list.push_back({{"frames", FrameSetText(frames)},
                        {"count", frames.size()},
                        {"error", frames.size() == 1 ? reason.failure.sentence : reason.general},
                        {"code", static_cast<int>(reason.failure.kind)}});
    }
    if (others_ > 0) list.push_back({{"count", others_}});
    return list;
}

}  // namespace umbrant::host
