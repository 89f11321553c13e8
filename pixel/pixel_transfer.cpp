// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The transfer callbacks. No value is scaled on the way: the buffers have the world's depth.

#include "pixel/pixel_transfer.h"

#include "hostapi/errors.h"

#include <cstddef>

namespace {

/// Element of a packed buffer, computed in 32 bits and then widened.
ptrdiff_t ElementIndex(const PixelTransferRefcon& transfer, A_long x, A_long y) {
    const A_long index = y * transfer.world->width + x;
    return index;
}

template <typename Element, typename Pixel>
PF_Err CopyAlphaIn(void* refcon, A_long x, A_long y, const Pixel* in) {
    const auto& transfer = *static_cast<const PixelTransferRefcon*>(refcon);
    static_cast<Element*>(transfer.buffer)[ElementIndex(transfer, x, y)] = in->alpha;
    return PF_Err_NONE;
}

template <typename Element, typename Pixel>
PF_Err CopyAlphaOut(void* refcon, A_long x, A_long y, Pixel* out) {
    const auto& transfer = *static_cast<const PixelTransferRefcon*>(refcon);
    const auto& colour = *static_cast<const Pixel*>(transfer.colour);
    out->alpha = static_cast<const Element*>(transfer.buffer)[ElementIndex(transfer, x, y)];
    out->red = colour.red;
    out->green = colour.green;
    out->blue = colour.blue;
    return PF_Err_NONE;
}

template <typename Pixel>
Pixel* SampleIntegral(PF_EffectWorld& world, A_long x, A_long y) {
    auto* bytes = reinterpret_cast<char*>(world.data);
    const ptrdiff_t offset =
        static_cast<ptrdiff_t>(y) * world.rowbytes + static_cast<ptrdiff_t>(x) * static_cast<ptrdiff_t>(sizeof(Pixel));
    return reinterpret_cast<Pixel*>(bytes + offset);
}

}  // namespace

PF_Err CopyRedPixel8In(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel*) {
    return CopyAlphaIn<unsigned char>(refcon, x, y, in);
}

PF_Err CopyRedFloatIn(void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat*) {
    return CopyAlphaIn<float>(refcon, x, y, in);
}

PF_Err CopyPixel8Out(void* refcon, A_long x, A_long y, PF_Pixel*, PF_Pixel* out) {
    return CopyAlphaOut<unsigned char>(refcon, x, y, out);
}

PF_Err CopyPixelFloatOut(void* refcon, A_long x, A_long y, PF_PixelFloat*, PF_PixelFloat* out) {
    return CopyAlphaOut<float>(refcon, x, y, out);
}

PF_Err maxAlpha8(void*, A_long, A_long, PF_Pixel*, PF_Pixel* out) {
    out->alpha = 255;
    return PF_Err_NONE;
}

PF_Err maxAlpha32(void*, A_long, A_long, PF_PixelFloat*, PF_PixelFloat* out) {
    out->alpha = 1.0f;
    return PF_Err_NONE;
}

PF_Pixel* sampleIntegral8(PF_EffectWorld& world, A_long x, A_long y) {
    return SampleIntegral<PF_Pixel>(world, x, y);
}

PF_PixelFloat* sampleIntegral32(PF_EffectWorld& world, A_long x, A_long y) {
    return SampleIntegral<PF_PixelFloat>(world, x, y);
}

void Problem() {}
