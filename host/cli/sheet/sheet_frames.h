// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The images of a contact sheet: the effect with each combination of values, at each frame, on one canvas.

#include <memory>
#include <optional>
#include <vector>

#include "host/cli/render/clip_endpoints.h"
#include "host/cli/render/render_options.h"
#include "host/cli/sheet/vary.h"
#include "host/render/background.h"
#include "host/render/canvas_choice.h"
#include "host/render/worker.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// What is drawn.
struct SheetJob {
    /// The input, the texture, the frames, how they are drawn, and the background. Its preset, settings and output do
    /// not count.
    RenderOptions render;
    std::vector<SheetCombination> combinations;
    int cell = 320;  ///< the longest side of an image, pixels
    /// A layer that comes from no file, in the place of the input.
    std::shared_ptr<const Layer> layer{};
    bool showsMiddle = false;  ///< values that move are those in the middle between the first key and the last
};

class SheetFrames {
 public:
    /// Reads the first image, opens the module, and checks all values. Fails as `umbrant render` does before the first
    /// frame.
    static Result<std::unique_ptr<SheetFrames>> Open(SheetJob job);

    /// The effect's rows with their defaults.
    const ParamSet& Defaults() const { return defaults_; }
    /// The frames of a sequence; empty for a single image.
    std::vector<std::string> FrameLabels() const;
    /// How many images there will be.
    std::size_t Count() const { return values_.size() * plan_.frames.size(); }
    /// Fails with `ErrorKind::kUsage` when the file is one of the images that are read.
    Result<Done> CheckApartFrom(const std::string& output) const;

    /// Finds what all images cover and with it their size on the sheet: no longer than `cell`, never enlarged. Fails as
    /// the effect does, and with `ErrorKind::kUsage` for a canvas that is too large.
    Result<Done> FindCanvas();
    int CellWidth() const { return cellWidth_; }
    int CellHeight() const { return cellHeight_; }

    /// Draws all images, opaque and in 8 bits: for each combination all frames. A frame that is left out because its
    /// file is missing is null. Fails at the first failure.
    Result<std::vector<World>> Draw();

 private:
    explicit SheetFrames(SheetJob job) : job_(std::move(job)) {}
    Result<Done> Plan();
    Result<Done> ReadValues();
    /// Makes the values of a combination those of the session, and the job's.
    Result<FrameJob> JobOf(std::size_t combination);
    double PositionOf(const AnimatedParams& params) const;

    const SheetJob job_;
    ClipEndpoints clips_;
    FramePlan plan_;
    std::optional<LayerReader> reader_;
    FirstFrame first_;
    CanvasChoice choice_;
    std::unique_ptr<Background> background_;
    std::optional<OpenedEffect> effect_;
    RendererDecision renderer_;
    ParamSet defaults_;
    std::vector<AnimatedParams> values_;  ///< of each combination
    PF_LRect canvas_{};
    int cellWidth_ = 0;
    int cellHeight_ = 0;
};

}  // namespace umbrant::host
