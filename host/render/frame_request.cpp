// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/frame_request.h"

#include <cmath>

namespace umbrant::host {

namespace {

A_long Downsampled(double length, const PF_RationalScale& scale) {
    return static_cast<A_long>(std::lround(length * scale.num / scale.den));
}

}  // namespace

FrameRequest MakeFrameRequest(const MomentLayers& layers, const FrameSettings& settings, const FrameTime& time,
                              const ParamSet* params) {
    FrameRequest request;
    request.layer = layers.layer;
    request.layerWidth = layers.layerWidth;
    request.layerHeight = layers.layerHeight;
    const auto n = static_cast<A_u_long>(settings.downsample);
    request.downsampleX = {settings.scaleX.num, settings.scaleX.den * n};
    request.downsampleY = {settings.scaleY.num, settings.scaleY.den * n};
    request.pixelAspect = settings.pixelAspect;
    request.texture = layers.texture;
    request.textureOrigin.x = Downsampled(settings.textureX, request.downsampleX);
    request.textureOrigin.y = Downsampled(settings.textureY, request.downsampleY);
    request.canvas = settings.canvas;
    request.time = time.time;
    request.timeStep = time.step;
    request.totalTime = time.total;
    request.timeScale = time.scale;
    request.params = params;
    return request;
}

}  // namespace umbrant::host
