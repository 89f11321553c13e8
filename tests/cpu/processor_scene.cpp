// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/cpu/processor_scene.h"

#include <gtest/gtest.h>

#include "render/passes/passes.h"

namespace umbrant::effect {

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
    const double share = scene.panel.resolution * 0.2;
    const bool tooSmall =
        scene.type == SHADOW_INNER && (share * output_->world.width < 1 || share * output_->world.height < 1);
    EXPECT_EQ(Message(), tooSmall ? kInnerTooSmall : "") << scene.words;
    return scene.type == SHADOW_INNER ? inner : AlphaOf(output_->world);
}

Plane SceneRenderer::Model(const RandomScene& s) const {
    const int width = output_->world.width;
    const int height = output_->world.height;
    if (s.type == SHADOW_NORMAL) {
        return NormalShadow(alpha_, s.panel, {record_->centreOffsetX, record_->centreOffsetY}, width, height);
    }
    if (s.type == SHADOW_INNER) {
        return InnerShadow(alpha_, s.panel, {record_->innerGrowLeft, record_->innerGrowTop}, 1, width, height);
    }
    const RadialPlacement placement{s.originX,
                                    s.originY,
                                    record_->centreOffsetX,
                                    record_->centreOffsetY,
                                    static_cast<double>(output_->world.origin_x) - input_->world.origin_x,
                                    static_cast<double>(output_->world.origin_y) - input_->world.origin_y};
    return RadialShadow(alpha_, s.panel, placement, width, height);
}

}  // namespace umbrant::effect
