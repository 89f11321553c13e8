// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A whole render by whatever renderer is chosen: pre-render decides the output's size and place, the render fills it,
// and a test holds the pixels against the slow model.

#include <memory>
#include <string>

#include "render/render_settings.h"
#include "tests/reference/shadow_model.h"
#include "tests/render/render_host.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

class ShadowScene {
 protected:
    /// Sets the panel. "Source Opacity" is 0, the colour (200, 100, 50).
    void SetPanel(int shadowType, const PanelValues& panel);
    void SetOrigin(double x, double y);

    /// Renders a layer whose alpha is `alphaOf(x, y)` at 8 or 32 bits into `output_`. `request` limits what the host
    /// asks for; by default the whole layer.
    void Render(double scale, int depth, double (*alphaOf)(int, int) = LayerAlpha, const PF_LRect* request = nullptr);

    /// A soft-edged diagonal shape, off centre, so that a mirrored or flipped axis shows. The layer is 40 x 30.
    static double LayerAlpha(int x, int y);

    /// Alpha of a world of the rendered depth, 0..1.
    double AlphaAt(const PF_EffectWorld& world, int x, int y) const;

    /// Holds the alpha of a world against a model that must not be empty; `samples` copies were drawn.
    void ExpectLike(const Plane& drawn, const Plane& expected, double samples) const;
    /// The same against a model that may be; returns the sum of its alpha.
    double ExpectAlike(const Plane& drawn, const Plane& expected, double samples) const;
    Plane AlphaOf(const PF_EffectWorld& world) const;

    bool mayBeTooSmall_ = false;  ///< whether a render may say that the layer is too small for an inner shadow
    int depth_ = 8;
    double filterError_ = 0;  ///< of the driver that draws, see FilterError()
    RenderHost host_;
    std::unique_ptr<TestWorld> input_;
    std::unique_ptr<TestWorld> output_;
    std::unique_ptr<PreRenderData> record_;
    Plane alpha_;  ///< what the layer holds after rounding to its depth
};

/// A row's name as a test's.
std::string TestName(std::string sentence);

}  // namespace umbrant::effect
