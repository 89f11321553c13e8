// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Draws the frames of a plan with one or more instances of an effect: each read, drawn and written, while others are.
// The files do not depend on how many are under way at once, nor on their order.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/render/frame_layers.h"
#include "host/render/frame_pixels.h"
#include "host/render/frame_request.h"
#include "host/render/pipeline.h"
#include "host/render/plan/frame_plan.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// What a frame is at.
enum class FrameStep { kRead, kDraw, kWrite };

/// What became of a frame.
struct FrameOutcome {
    enum class Kind {
        kDrawn,
        kExists,   ///< its picture was there already
        kSkipped,  ///< its file is missing, and it was to be left out
        kFailed,
    };
    Kind kind = Kind::kDrawn;
    std::optional<Failure> failure{};
    std::string message{};  ///< a message that the effect returned for the user
    int layerWidth = 0;     ///< the layer's full size
    int layerHeight = 0;
    int bits = 0;         ///< of a channel in the input's file; 0 when it was not read
    PF_LRect picture{};   ///< what was written, in pixels of the drawn layer
    double readTime = 0;  ///< milliseconds of each step
    double drawTime = 0;
    double writeTime = 0;
};

/// Receives what happens to frames, from several threads at once.
class FrameWatcher {
 public:
    virtual ~FrameWatcher() = default;
    /// A frame (an index of the plan's) begins a step; `session` is what draws it.
    virtual void Begins(std::size_t frame, FrameStep step, const EffectSession* session) = 0;
    /// A frame was drawn; its pixels are about to be taken from it.
    virtual void Draws(std::size_t, const Frame&, const EffectSession&) {}
    /// A frame is done with. Called once for each frame that is reached.
    virtual void Ends(std::size_t frame, const FrameOutcome& outcome) = 0;
};

/// What is drawn, and how.
struct FrameJob {
    const FramePlan* plan = nullptr;
    FrameSettings settings{};
    std::optional<PF_LRect> picture{};  ///< what every image covers, in drawn pixels; without it each what was drawn
    bool keepGoing = false;             ///< a frame that fails does not end the others
    /// The values at a frame, whole or not; without it those of the session that draws it. Safe on every thread.
    std::function<ParamSet(double frame, const ParamSet&)> values{};
    /// Replaces an effect's failure with a more helpful one.
    std::function<Failure(const Failure&, const EffectSession&)> explain{};
    /// Changes a frame's image before it is written, on the thread that drew it; its rectangle too.
    std::function<Result<Done>(Drawn&, const WriteOptions&)> finish{};
    /// Where a frame goes instead of a picture file of its own.
    std::function<Result<Done>(const Drawn&, const Placement&, const WriteOptions&)> write{};
    /// Converts the colours of a drawn frame to those that are stored, before `finish`. Safe on every thread.
    std::function<Result<Done>(World&)> convert{};
    /// The recipe that goes into a frame's picture; without it there is none. Safe on every thread.
    std::function<std::string(const PlannedFrame&)> recipe{};
    PipelineShape shape{};
    std::uint64_t frameBytes = 0;  ///< the memory that one frame takes at most; 0 when nobody knows
};

/// The frame as it is asked of the effect; `params` may be null. The layers must outlive the request.
FrameRequest RequestFor(const FrameJob& job, const PlannedFrame& frame, const FrameLayers& layers,
                        const ParamSet* params);

/// The frame, whole or not, at a moment.
double FrameAt(const FramePlan& plan, const Moment& moment);

/// The frame that shows at a moment: the last one that has begun.
int FrameShownAt(const FramePlan& plan, const Moment& moment);

/// A frame whose images were read before the others.
struct FirstFrame {
    std::size_t frame = 0;
    FrameLayers layers;   ///< empty where there is nothing to draw
    double readTime = 0;  ///< milliseconds
};

/// Reads the first frame that is to be drawn and can be read: the session is about its size. Unless it keeps going,
/// fails as LayerReader::Read does.
Result<FirstFrame> ReadFirst(const FramePlan& plan, LayerReader& reader, bool keepGoing);

/// Draws all frames, as many at once as `job.shape` says; `sessions` has one instance for each drawing thread, and they
/// have the same values. Unless it keeps going, the first failure ends it: frames that were drawn are still written,
/// and those that were not reached have no outcome.
Result<Done> DrawFrames(const FrameJob& job, const std::vector<EffectSession*>& sessions, LayerReader& reader,
                        FirstFrame first, FrameWatcher& watcher);

}  // namespace umbrant::host
