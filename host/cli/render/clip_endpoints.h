// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The clips among what a render reads and writes: what they mean for its options, its plan and its steps.

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "host/cli/render/render_options.h"
#include "host/render/worker.h"
#include "host/video/clip_reader.h"
#include "host/video/clip_writer.h"

namespace umbrant::host {

/// Refuses options that a clip has no use for, or that only a clip has a use for. Fails with `ErrorKind::kUsage`.
Result<Done> CheckClipOptions(const RenderOptions& options);

class ClipEndpoints {
 public:
    /// Asks about the clips that are read and whether the one that is written can be. Adds their frames to the request
    /// and, unless the options give one, the rate. Fails with `ErrorKind::kFile`, and with `ErrorKind::kUsage` for a
    /// clip whose rate varies.
    Result<Done> Open(const RenderOptions& options, PlanRequest& request);

    /// Adds the frames of the clips that are open, and the rate, to another request.
    void AddFrames(PlanRequest& request) const;

    bool Reads() const { return input_ || texture_; }
    bool Writes() const { return codec_ != nullptr; }
    /// Lets a reader of layers read the clips; they must outlive it.
    void Connect(LayerOptions& options);
    /// The shape of a pipeline that has this one's drawers: a clip is read and written by one thread each.
    PipelineShape Shape(PipelineShape shape) const;

    /// The canvas as the codec takes it: longer by a column or a row where the sides must be even.
    PF_LRect Padded(PF_LRect canvas) const;

    /// Begins the clip: of this part of the layer, for layers of this size and depth. Fails as ClipWriter::Start does.
    Result<Done> Begin(const FramePlan& plan, const PF_LRect& canvas, const World& layer, bool wantsSound,
                       const std::string& recipe);
    /// What is to be said about the clip's sound, once it is begun; empty for nothing.
    const std::string& Note() const { return sound_.note; }
    /// The next frame. A layer of another size than the first fails with `ErrorKind::kFile`.
    Result<Done> Write(const Drawn& drawn, const Placement& place);
    /// Ends the clip and puts it in its place; returns whether there is one.
    Result<bool> Finish();

    /// The report about the clip that was written, for programs; null for none.
    nlohmann::ordered_json Report() const;

 private:
    struct Sound {
        bool kept = false;
        std::optional<std::pair<double, double>> part{};
        std::string note{};
    };
    Sound SoundFor(const FramePlan& plan) const;

    std::string output_;
    std::unique_ptr<ClipReader> input_;
    std::unique_ptr<ClipReader> texture_;
    const ClipCodec* codec_ = nullptr;
    std::unique_ptr<ClipWriter> writer_;
    PF_LRect canvas_{};
    int layerWidth_ = 0;
    int layerHeight_ = 0;
    Depth depth_ = Depth::k8;
    FrameRate rate_{};
    Sound sound_{};
    std::optional<ColorTags> colors_;  ///< nothing for those of the input
};

}  // namespace umbrant::host
