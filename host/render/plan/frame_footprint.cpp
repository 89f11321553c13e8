// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_footprint.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace umbrant::host {

namespace {

std::uint64_t BytesOf(const World& world) {
    return static_cast<std::uint64_t>(world.Height()) * static_cast<std::uint64_t>(world.Def().rowbytes);
}

std::uint64_t AreaOf(const PF_LRect& rect) {
    const auto side = [](A_long low, A_long high) {
        return static_cast<std::uint64_t>(std::max<std::int64_t>(0, std::int64_t{high} - low));
    };
    return side(rect.left, rect.right) * side(rect.top, rect.bottom);
}

/// The frame's pixels that the effect makes of these layers, asked with the values of up to `most` of the frames, which
/// may move, and at least the layer's. An effect that fails here will fail in that frame again, and is reported there.
std::vector<PF_LRect> PicturesOf(const FrameJob& job, const FirstFrame& first, EffectSession& session,
                                 std::size_t most) {
    const World& layer = first.layers.input->pixels;
    const auto& frames = job.plan->frames;
    const std::size_t asked = job.values ? std::min(frames.size(), most) : 1;
    std::vector<PF_LRect> pictures = {{0, 0, layer.Width(), layer.Height()}};
    for (std::size_t i = 0; i < asked; ++i) {
        const PlannedFrame& frame = job.values ? frames[i * frames.size() / asked] : frames[first.frame];
        std::optional<ParamSet> values;
        if (job.values) values = job.values(frame.position, session.Params());
        const auto answer = session.PreRender(RequestFor(job, frame, first.layers, values ? &*values : nullptr));
        if (!answer) continue;
        pictures.push_back(job.settings.canvas == Canvas::kGrow ? answer->maxRect : answer->resultRect);
    }
    return pictures;
}

std::uint64_t LargestArea(const std::vector<PF_LRect>& pictures) {
    std::uint64_t largest = 0;
    for (const PF_LRect& picture : pictures) largest = std::max(largest, AreaOf(picture));
    return largest;
}

}  // namespace

FrameFootprint Footprint(const FrameJob& job, const FirstFrame& first, EffectSession& session) {
    constexpr std::size_t kAsked = 64;
    const Layer& layer = *first.layers.input;
    FrameFootprint footprint;
    footprint.file =
        static_cast<std::uint64_t>(layer.width) * static_cast<std::uint64_t>(layer.height) * (layer.bits > 8 ? 16 : 4);
    footprint.layer = BytesOf(layer.pixels);
    if (first.layers.texture) footprint.texture = BytesOf(first.layers.texture->pixels);
    footprint.outputPixels = LargestArea(PicturesOf(job, first, session, kAsked));
    if (job.picture) footprint.outputPixels = std::max(footprint.outputPixels, AreaOf(*job.picture));
    footprint.output = footprint.outputPixels * static_cast<std::uint64_t>(BytesPerPixel(layer.pixels.PixelDepth()));
    // The blocks that the process of a module shares with this one are kept for its next frame.
    if (session.Remote()) footprint.copies = footprint.layer + footprint.texture + footprint.output;
    return footprint;
}

/// Software OpenGL has the cores for itself, and each drawing thread has buffers of its own: one frame in the effect
/// and one outside of it is all that is gained.
int MostDrawers(const RendererDecision& renderer, const GpuStrings& gpu) {
    return !renderer.processor && IsSoftware(gpu) ? 2 : kMostThreads;
}

}  // namespace umbrant::host
