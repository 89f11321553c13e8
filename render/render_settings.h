// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The records of one render: what pre-render hands over, the settings derived from the parameters, the samples and the
// framebuffer sizes. Plain data; render/fill_settings and render/samples compute it, gl/ and the uniform senders read
// it.

#include <cstdint>
#include <vector>

#include "hostapi/commands.h"
#include "hostapi/params.h"
#include "hostapi/pixels.h"
#include "hostapi/transfer.h"

class AEGP_SuiteHandler;

/// Values of the "Shadow Type" popup.
enum ShadowType { SHADOW_NORMAL = 1, SHADOW_INNER = 2, SHADOW_RADIAL = 3 };

/// What pre-render leaves for the render of the same frame. Zero-filled when allocated; owned by the host, which frees
/// it through `DisposePreRenderData`. Lengths in (downsampled) pixels.
struct PreRenderData {
    double centreOffsetX;   ///< Normal: half of layerOffset2X; Radial: result left minus the grown layer's left
    double centreOffsetY;   ///< Normal: half of layerOffset2Y; Radial: result top minus the grown layer's top
    double layerOffset2X;   ///< Normal: (input right - output right) + (input left - output left)
    double layerOffset2Y;   ///< the same for bottom and top
    int32_t originDeltaX;   ///< Normal: input result left minus output max left
    int32_t originDeltaY;   ///< Normal: input result top minus output max top
    int32_t innerGrowLeft;  ///< Inner: growth of the rectangles on each side
    int32_t innerGrowTop;
    int32_t innerGrowRight;
    int32_t innerGrowBottom;
};

/// One copy of the layer's alpha in the stack that makes the shadow.
struct perSampleData {
    uint32_t fbIndex;  ///< the framebuffer of `myParams::framebuffers` it is blurred in
    double softness;   ///< blur reach, pixels
    double opacity;    ///< multiplier of the alpha, 0..1
    double offsetX;    ///< displacement, pixels; positive is right
    double offsetY;    ///< displacement, pixels; positive is down
    double radialTx;   ///< Radial: placement translation, output pixels; otherwise 0
    double radialTy;
    double radialScale;  ///< Radial: scale about the origin; otherwise 0
};

/// Sizes of one ping-pong framebuffer.
struct framebufferData {
    double pad;       ///< border on each side, pixels
    double pad2;      ///< border per axis: 2 x pad (Normal, Radial) or 0 (Inner)
    int32_t paddedW;  ///< buffer width plus pad2, truncated
    int32_t paddedH;
    int32_t fboW;  ///< the GPU buffer's real width: resolutionScale x (buffer width + pad2), truncated
    int32_t fboH;
};

/// The settings of one render. Lives on the render step's stack; zero-filled, then filled from the parameters.
struct myParams {
    int16_t bitDepth = 0;  ///< bits per channel of the render: 8 or 32 (16 is refused at the upload)
    PF_LayerDef* inputWorld = nullptr;
    PF_LayerDef* innerSourceWorld = nullptr;  ///< Inner: the padded input; null otherwise
    PF_LayerDef* outputWorld = nullptr;
    PF_LayerDef* textureWorld = nullptr;  ///< null when no texture layer is chosen
    float blurAmount = 0;                 ///< working values that the uniform senders leave for one another
    float blurStride = 0;
    int32_t blurSteps = 0;
    PreRenderData preRender{};
    // Intended: the parameter loop skips the texture layer, so this stays zero.
    PF_LayerDef textureLayerDef{};
    double downscaleX = 0;  ///< downsample_x as a fraction, formed in single precision
    int32_t shadowType = 0;
    PF_PixelFloat shadowColourFloat{};
    PF_Pixel shadowColour8{};
    int32_t shadowBlendMode = 0;  ///< popup value, 1-based
    double opacityStart = 0;      ///< 0..1, with the master opacity multiplied in
    double opacityEnd = 0;
    double opacityMaster = 0;  ///< 0..1
    int32_t bufferW = 0;       ///< input world size; for Inner the output world's
    int32_t bufferH = 0;
    int32_t numSamples = 0;
    int32_t numFramebuffers = 0;
    std::vector<perSampleData> samples;
    std::vector<framebufferData> framebuffers;
    double angleDeg = 0;
    double distancePx = 0;
    double softnessPx = 0;  ///< a whole number, kept as double
    double softnessPx2 = 0;
    int32_t easeMode = 0;  ///< 0 "Ease In", 1 "Ease In & Out"
    double easeAmount = 0;
    double easeSoftness = 0;  ///< weights, 0..1
    double easeDistance = 0;
    double easeOpacity = 0;
    int32_t resolution = 0;      ///< 1 "Draft" .. 5 "Extreme"
    double resolutionScale = 0;  ///< 0.2 .. 1.0
    uint8_t prioritise = 0;      ///< stored, not consulted
    double debugLeft = 0;
    double debugTop = 0;
    double debugRight = 0;
    double debugBottom = 0;
    double travelX = 0;  ///< the whole shadow's displacement, pixels; y as sample offsets have it
    double travelY = 0;
    double stepX = 0;
    double stepY = 0;
    uint8_t sourceOpacity = 0;  ///< 0..255
    double offsetShadowPx = 0;
    double offsetShadowX = 0;
    double offsetShadowY = 0;
    PF_CompositeMode textureComposite{};
    int32_t textureBlendMode = 0;  ///< popup value, 1-based
    double textureStrength = 0;    ///< 0..1

    // Not settings: the host access that the upload reads from this record.
    PF_InData* in_data = nullptr;
    AEGP_SuiteHandler* suites = nullptr;
    bool isOwnHost = false;  ///< the host offers this project's private suite
};
