// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/frame_request.h"

#include <cmath>

namespace umbrant::host {

FrameRequest MakeFrameRequest(const MomentLayers& layers, const FrameSettings& settings, const FrameTime& time,
                              const ParamSet* params) {
    FrameRequest request;
    request.layer = layers.layer;
    request.layerWidth = layers.layerWidth;
    request.layerHeight = layers.layerHeight;
    request.downsampleX = request.downsampleY = {1, static_cast<A_u_long>(settings.downsample)};
    request.texture = layers.texture;
    request.textureOrigin.x = static_cast<A_long>(std::lround(settings.textureX / settings.downsample));
    request.textureOrigin.y = static_cast<A_long>(std::lround(settings.textureY / settings.downsample));
    request.canvas = settings.canvas;
    request.time = time.time;
    request.timeStep = time.step;
    request.totalTime = time.total;
    request.timeScale = time.scale;
    request.params = params;
    return request;
}

}  // namespace umbrant::host
