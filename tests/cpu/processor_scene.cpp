// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/cpu/processor_scene.h"

Plane SceneRenderer::Draw(const RandomScene& scene) {
    host_.outData.return_msg[0] = '\0';
    mayBeTooSmall_ = true;
    host_.inData.width = scene.width;
    host_.inData.height = scene.height;
    SetPanel(scene.type, scene.panel);
    SetOrigin(scene.originX, scene.originY);
    Plane inner;
    if (scene.type == SHADOW_INNER) {
        host_.panel[PARAM_BLEND_MODE].u.pd.value = 11;
        host_.onTransfer = [&](const RenderHost::Transfer& t) {
            if (t.mode.xfer == PF_Xfer_MULTIPLY) inner = AlphaOf(*t.source);
        };
    }
    Render(scene.panel.scale, scene.depth, scene.alphaOf);
    host_.onTransfer = nullptr;
    return scene.type == SHADOW_INNER ? inner : AlphaOf(output_->world);
}
