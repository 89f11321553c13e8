// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/session/render_failure.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/rectangles.h"
#include "hostapi/errors.h"

namespace umbrant::host {

namespace {

/// The longest side of a texture that every current OpenGL driver takes. The host knows no OpenGL: an effect that draws
/// with it cannot draw more than its driver takes, which it can only report as want of memory.
constexpr int kCommonTextureLimit = 16384;

/// The sums in single precision that a render takes a pixel: four of them, four channels.
constexpr std::uint64_t kRenderBytes = 64;

/// Whether a failed render had too little memory, which it can say with a code of its own and often cannot say at all.
/// An effect that knows better has left a message; large pictures fail with that code where the driver refuses them.
bool LacksMemory(const Answer& answer, std::uint64_t bytes, bool isDriverSize) {
    const PF_Err error = answer.record.error;
    if (!answer.exception.empty() || !answer.record.message.empty()) return false;
    if (error == PF_Err_OUT_OF_MEMORY && isDriverSize) return true;
    return (error == PF_Err_OUT_OF_MEMORY || error == PF_Err_INTERNAL_STRUCT_DAMAGED) && !CanHaveMemory(bytes);
}

}  // namespace

std::string PictureText(const PF_LRect& rect) {
    return fmt::format("an image of {} x {} pixels", WidthOf(rect), HeightOf(rect));
}

Failure RenderFailure(const SessionState& state, const Answer& answer, const PF_LRect& rect) {
    Failure failure = FailureOf(state, answer);
    const A_long width = WidthOf(rect);
    const A_long height = HeightOf(rect);
    const std::uint64_t bytes = kRenderBytes * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (LacksMemory(answer, bytes, std::max(width, height) <= kCommonTextureLimit)) {
        return NotEnoughMemory("drawing " + PictureText(rect), bytes);
    }
    if (answer.record.error != PF_Err_OUT_OF_MEMORY || !answer.exception.empty() ||
        std::max(width, height) <= kCommonTextureLimit) {
        return failure;
    }
    failure.sentence +=
        fmt::format("; the image would be {} x {} pixels, and many OpenGL drivers support at most {} x {}", width,
                    height, kCommonTextureLimit, kCommonTextureLimit);
    return failure;
}

}  // namespace umbrant::host
