// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Both popup translations and the per-channel blend functions. Every widening and narrowing below is deliberate; the
// module is built without fused multiply-add, and single precision must not be evaluated wider than it is.

#include "pixel/blend_modes.h"

#include <cfloat>

#include "pixel/saturate.h"

using namespace umbrant::effect;

namespace umbrant::effect {

static_assert(FLT_EVAL_METHOD == 0, "float expressions must round to single precision at every step");

namespace {

/// One 255th in single precision, 0.0039215688593685627: 8-bit values are multiplied by it, never divided by 255.
constexpr float kOneOver255 = 0.003921569f;

constexpr int32_t kTextureItemCount = 15;
constexpr int32_t kTextureTransferModes[kTextureItemCount] = {
    PF_Xfer_IN_FRONT,                 // Normal
    PF_Xfer_IN_FRONT,                 // separator, never applied
    PF_Xfer_MULTIPLY,                 // Multiply
    PF_Xfer_COLOR_BURN,               // Color Burn. Intended: the classic one, unlike the shadow's item of that name
    PF_Xfer_IN_FRONT,                 // separator, never applied
    PF_Xfer_ADD,                      // Add
    PF_Xfer_SCREEN,                   // Screen
    PF_Xfer_IN_FRONT,                 // separator, never applied
    PF_Xfer_OVERLAY,                  // Overlay
    PF_Xfer_SOFT_LIGHT,               // Soft Light
    PF_Xfer_IN_FRONT,                 // separator, never applied
    PF_Xfer_MULTIPLY_ALPHA,           // Stencil Alpha
    PF_Xfer_MULTIPLY_ALPHA_LUMA,      // Stencil Luma
    PF_Xfer_MULTIPLY_NOT_ALPHA,       // Silhouette Alpha
    PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA,  // Silhouette Luma
};
/// Bit item - 1 is set for every item that can be chosen.
constexpr uint32_t kTextureItemMask = 0x7B6D;

/// The values of mode 4: `b` stays when it is above 0.001, compared in double precision; not-a-number is not above.
float ClampedBurnDestination(float b) {
    return static_cast<double>(b) > 0.001 ? b : 0.001f;
}

float BurnTerm(float a, float clampedB) {
    return static_cast<float>(1.0 - (1.0 - static_cast<double>(a)) / static_cast<double>(clampedB));
}

float OverlayTerm(float a, float b) {
    const double wideA = a;
    const double wideB = b;
    // Intended: the test is on the source.
    if (0.5f > a) return static_cast<float>(wideB * (2.0 * wideA));
    return static_cast<float>(1.0 - (1.0 - wideB) * ((1.0 - wideA) + (1.0 - wideA)));
}

float SoftLightTerm(float a, float b) {
    const float doubledB = b + b;
    const float product = doubledB * a;
    const float rest = 1.0f - doubledB;
    const double squaredA = static_cast<double>(a) * static_cast<double>(a);
    return static_cast<float>(static_cast<double>(product) + squaredA * static_cast<double>(rest));
}

/// Intended: the clamped sum, not the product form that the name suggests.
float ScreenTerm(float a, float b) {
    const float sum = a + b;
    return sum > 1.0f ? 1.0f : sum;
}

/// f(a, b) of one mode; `b` is the clamped one in mode 4.
float BlendTerm(float a, float b, int mode) {
    switch (mode) {
        case 1:
            return a;
        case 3:
            return a * b;
        case 4:
            return BurnTerm(a, b);
        case 6:
            return a + b;
        case 7:
            return ScreenTerm(a, b);
        case 9:
            return OverlayTerm(a, b);
        case 10:
            return SoftLightTerm(a, b);
        default:
            return 0.0f;
    }
}

float Mix(float term, float b, float opacity) {
    const float covered = term * opacity;
    const double uncovered = static_cast<double>(b) * (1.0 - static_cast<double>(opacity));
    return static_cast<float>(uncovered + static_cast<double>(covered));
}

}  // namespace

PF_TransferMode ShadowTransferMode(int32_t item) {
    switch (item) {
        case 3:
            return PF_Xfer_ADD;
        case 4:
            return PF_Xfer_SCREEN;
        case 6:
            return PF_Xfer_OVERLAY;
        case 7:
            return PF_Xfer_SOFT_LIGHT;
        case 8:
            return PF_Xfer_HARD_LIGHT;
        case 10:
            return PF_Xfer_DARKEN;
        case 11:
            return PF_Xfer_MULTIPLY;
        // Intended: "Color Burn" is the host's newer burn here, "Classic Color Burn" the older one.
        case 12:
            return PF_Xfer_COLOR_BURN2;
        case 13:
            return PF_Xfer_COLOR_BURN;
        case 14:
            return PF_Xfer_LINEAR_BURN;
        case 15:
            return PF_Xfer_DARKER_COLOR;
        default:
            return PF_Xfer_IN_FRONT;
    }
}

void ApplyTextureTransferMode(int32_t item, PF_CompositeMode* mode) {
    const uint32_t index = static_cast<uint32_t>(item) - 1u;
    if (index >= static_cast<uint32_t>(kTextureItemCount) || (kTextureItemMask >> index & 1u) == 0) return;
    mode->xfer = kTextureTransferModes[index];
}

}  // namespace umbrant::effect

float blend32(float* a, float* b, float* opacity, int mode) {
    if (mode == 4) *b = ClampedBurnDestination(*b);
    return Mix(BlendTerm(*a, *b, mode), *b, *opacity);
}

unsigned char blend8(unsigned char* a, unsigned char* b, float* opacity, int mode) {
    float destination = static_cast<float>(*b) * kOneOver255;
    float term = 0.0f;
    if (static_cast<unsigned>(mode) - 1u <= 9u) {
        const float source = static_cast<float>(*a) * kOneOver255;
        if (mode == 4) destination = ClampedBurnDestination(destination);
        term = BlendTerm(source, destination, mode);
    }
    return ToUint8(Mix(term, destination, *opacity) * 255.0f);
}

float mix32(float* a, float* b, float* t) {
    return Mix(*a, *b, *t);
}

float overlay(float* a, float* b) {
    return OverlayTerm(*a, *b);
}

float softLight(float* a, float* b) {
    return SoftLightTerm(*a, *b);
}

float colorBurn(float* a, float* b) {
    *b = ClampedBurnDestination(*b);
    return BurnTerm(*a, *b);
}
