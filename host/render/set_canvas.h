// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one rectangle that all images of a sequence cover, computed without drawing.

#include "host/render/canvas_choice.h"
#include "host/render/worker.h"

namespace umbrant::host {

/// The union of what each image of the job's whole set covers when each has a rectangle of its own, in drawn pixels.
/// The effect is asked with pre-render alone: about every frame, or about one where neither values nor the sizes of
/// layers change. A frame for which it fails is left out; it fails again when it is drawn. `known` has the layers of
/// one frame of the set: their depth is that of all, and their size where no file can be read. `session` is used for
/// every frame. `read` chooses the image of the input's files, as for the reader of the layers.
PF_LRect SetCanvas(const FrameJob& job, const FrameLayers& known, EffectSession& session, const ReadOptions& read = {});

}  // namespace umbrant::host
