// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From what `umbrant render` was asked for to a plan of frames.

#include <memory>
#include <optional>

#include "host/cli/output_folder.h"
#include "host/cli/render/clip_endpoints.h"
#include "host/cli/render/render_options.h"
#include "host/render/canvas_choice.h"
#include "host/render/frame_layers.h"
#include "host/render/plan/frame_plan.h"

namespace umbrant::host {

/// What is drawn, from which files and into which. Its parts refer to each other: it stays where it was made.
struct RenderPlan {
    std::optional<OutputFolder> folder;
    CanvasChoice canvas;
    ClipEndpoints clips;
    std::optional<LayerReader> reader;
    FramePlan frames;
};

/// What a sequence or a clip is planned from, except for the clips that are read. Fails with `ErrorKind::kUsage`.
Result<PlanRequest> SequenceRequest(const RenderOptions& options);

/// The plan of a sequence or a clip. Sets the rate in the options to the one that was found. Fails with
/// `ErrorKind::kUsage` and as PlanFrames does.
Result<std::unique_ptr<RenderPlan>> PlanSequenceRender(RenderOptions& options);

/// The frames of a sequence alone, read by the clips that are open in `plan`. Fails as PlanFrames does.
Result<FramePlan> PlanSequenceFrames(const RenderOptions& options, const RenderPlan& plan);

/// The plan of a single image. Removes what killed runs left in the folder of the output. Fails with
/// `ErrorKind::kUsage`, and with `ErrorKind::kFile` where the output cannot be written.
Result<std::unique_ptr<RenderPlan>> PlanImageRender(const RenderOptions& options);

}  // namespace umbrant::host
