// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Why frames failed: one line for each reason, with the frames that have it. A reason is the same for all frames of a
// sequence if it differs only in the names of their files. However many frames fail, the list stays short.

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/render/plan/frame_plan.h"
#include "host/result.h"

namespace umbrant::host {

class FrameFailures {
 public:
    /// As many reasons are kept; frames that fail for others are counted.
    static constexpr std::size_t kMostReasons = 20;

    /// `frame` is one of the plan's, which outlives this. Takes time for each known reason.
    void Add(const FramePlan& plan, const PlannedFrame& frame, const Failure& failure);

    std::size_t Count() const { return count_; }
    /// One failure as one sentence, "frame 3: cannot read ..."; several as "9 frames failed:" and a line for each
    /// reason, indented by two. Empty for none. Without a line break at the end.
    std::string Text() const;
    /// The same with a heading in any case: "1 frame failed:".
    std::string List() const;
    /// An array with an object for each reason: `frames` as --frames takes them, `count`, `error`, `code`. Frames of
    /// reasons that were not kept are in a last object, with `count` alone.
    nlohmann::ordered_json Json() const;

 private:
    struct Reason {
        Failure failure;      ///< of the first frame
        std::string general;  ///< its sentence, with the sequence's names instead of the frame's
        std::vector<FrameNumber> frames;
    };
    std::string Lines() const;

    std::vector<Reason> reasons_;
    std::size_t count_ = 0;
    std::size_t others_ = 0;  ///< frames whose reasons were not kept
};

}  // namespace umbrant::host
