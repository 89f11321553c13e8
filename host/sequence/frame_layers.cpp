// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/frame_layers.h"

#include <utility>

#include "host/sequence/frame_pixels.h"

using Shared = std::shared_ptr<const Layer>;

Result<Shared> LayerReader::ReadLayer(const std::string& path, std::optional<Depth> depth) const {
    const auto picture = ReadPicture(path);
    if (!picture) return picture.Error();
    auto pixels = LayerOf(*picture, depth.value_or(picture->pixels.PixelDepth()), options_.downsample);
    if (!pixels) return pixels.Error();
    auto layer = std::make_shared<Layer>();
    layer->pixels = std::move(*pixels);
    layer->width = picture->frameWidth;
    layer->height = picture->frameHeight;
    // A smaller picture has pixels of another size, so the frame's place in the file means nothing to it.
    if (options_.downsample == 1) layer->frameOrigin = picture->frameOrigin;
    layer->bits = picture->bits;
    layer->kept = {options_.compression, picture->isHalf && !options_.depth, picture->metadata};
    return Shared(std::move(layer));
}

Result<Shared> LayerReader::ReadOnce(Kept& kept, const std::string& path, std::optional<Depth> depth) {
    const std::lock_guard lock(kept.mutex);
    if (kept.layer && kept.path == path && (!depth || kept.depth == *depth)) return kept.layer;
    kept.layer.reset();
    auto layer = ReadLayer(path, depth);
    if (!layer) return layer;
    kept.path = path;
    kept.layer = *layer;
    kept.depth = kept.layer->pixels.PixelDepth();
    return layer;
}

Result<FrameLayers> LayerReader::Read(const PlannedFrame& frame) {
    return ReadAs(frame, options_.depth);
}

Result<FrameLayers> LayerReader::Read(const PlannedFrame& frame, Depth depth) {
    return ReadAs(frame, depth);
}

Result<FrameLayers> LayerReader::ReadAs(const PlannedFrame& frame, std::optional<Depth> inputDepth) {
    FrameLayers layers;
    auto input = frame.inputChanges ? ReadLayer(frame.input, inputDepth) : ReadOnce(input_, frame.input, inputDepth);
    if (!input) return input.Error();
    layers.input = std::move(*input);
    if (frame.texture.empty()) return layers;
    const Depth depth = layers.input->pixels.PixelDepth();
    auto texture = frame.textureChanges ? ReadLayer(frame.texture, depth) : ReadOnce(texture_, frame.texture, depth);
    if (!texture) return texture.Error();
    layers.texture = std::move(*texture);
    return layers;
}
