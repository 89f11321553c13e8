// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/frame_layers.h"

#include <utility>

#include "host/render/frame_pixels.h"

namespace umbrant::host {

using Shared = std::shared_ptr<const Layer>;

MomentLayers WorldsOf(const FrameLayers& layers) {
    return {&layers.input->pixels, layers.input->width, layers.input->height,
            layers.texture ? &layers.texture->pixels : nullptr};
}

Result<Shared> LayerReader::ReadLayer(const Source& source, std::optional<Depth> depth) const {
    const auto& clip = source.isTexture ? options_.textureClip : options_.inputClip;
    const auto picture =
        TRY(source.clipFrame ? clip(*source.clipFrame)
                             : ReadPicture(source.path, source.isTexture ? ReadOptions{} : options_.read));
    const Depth own = options_.convert ? Depth::k32 : picture.pixels.PixelDepth();
    auto pixels = TRY(LayerOf(picture, depth.value_or(own), options_.downsample));
    if (options_.convert) {
        TRY(options_.convert(pixels, source.isTexture));
    }
    auto layer = std::make_shared<Layer>();
    layer->pixels = std::move(pixels);
    layer->width = picture.frameWidth;
    layer->height = picture.frameHeight;
    // A smaller picture has pixels of another size, so the frame's place in the file means nothing to it.
    if (options_.downsample == 1) layer->frameOrigin = picture.frameOrigin;
    layer->bits = picture.bits;
    layer->kept = {options_.compression, picture.isHalf && !options_.depth, picture.metadata, options_.outputDepth,
                   options_.format};
    layer->kept.colors = options_.words;
    layer->note = picture.note;
    layer->metadataNote = picture.metadataNote;
    return Shared(std::move(layer));
}

Result<Shared> LayerReader::ReadOnce(Kept& kept, const Source& source, std::optional<Depth> depth) {
    const std::lock_guard lock(kept.mutex);
    if (kept.layer && kept.source == source && (!depth || kept.depth == *depth)) return kept.layer;
    kept.layer.reset();
    auto layer = ReadLayer(source, depth);
    if (!layer) return layer;
    kept.source = source;
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
    const Source picture{frame.input, frame.inputClipFrame, false};
    auto input = TRY(frame.inputChanges ? ReadLayer(picture, inputDepth) : ReadOnce(input_, picture, inputDepth));
    layers.input = std::move(input);
    if (frame.texture.empty()) return layers;
    const Depth depth = layers.input->pixels.PixelDepth();
    const Source beside{frame.texture, frame.textureClipFrame, true};
    auto texture = TRY(frame.textureChanges ? ReadLayer(beside, depth) : ReadOnce(texture_, beside, depth));
    layers.texture = std::move(texture);
    return layers;
}

}  // namespace umbrant::host
