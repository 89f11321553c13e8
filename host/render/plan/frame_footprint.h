// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the frames of a sequence cost in memory, as the effect answers before anything is drawn.

#include "host/render/plan/memory_plan.h"
#include "host/render/worker.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// What a frame costs, estimated from the layers of the first one: with values that move, the largest of up to 64
/// frames counts.
FrameFootprint Footprint(const FrameJob& job, const FirstFrame& first, EffectSession& session);

/// Most drawing threads that the renderer gains from.
int MostDrawers(const RendererDecision& renderer, const GpuStrings& gpu);

}  // namespace umbrant::host
