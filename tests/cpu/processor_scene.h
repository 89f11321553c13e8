// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Renders scenes and keeps what the passes made: the output's alpha, or for an inner shadow the alpha that is laid over
// the layer.

#include "tests/cpu/random_scene.h"

namespace umbrant::effect {

class SceneRenderer : public ShadowScene {
 public:
    /// The accumulated alpha, 0..1. Fails the test when the render does, but for an inner shadow in so small a layer
    /// that its buffer has no pixel: that has no alpha, and a message.
    Plane Draw(const RandomScene& scene);
    /// What the scene that was drawn last must look like.
    Plane Model(const RandomScene& scene) const;
    RenderHost& Host() { return host_; }
    std::string Message() const { return host_.outData.return_msg; }
};

}  // namespace umbrant::effect
