// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/frame_pixels.h"

#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/resample.h"

Result<World> LayerOf(const Picture& picture, Depth depth, int downsample) {
    const Failure noMemory = NotEnoughMemory("the layer", picture.frameWidth, picture.frameHeight, depth);
    World layer =
        CutToFrame(picture.pixels, picture.window.left, picture.window.top, picture.frameWidth, picture.frameHeight);
    if (layer.IsNull()) return noMemory;
    if (layer.PixelDepth() != depth) layer = ConvertDepth(layer, depth);
    if (!layer.IsNull() && downsample > 1) layer = Downsample(layer, downsample);
    if (layer.IsNull()) return noMemory;
    return layer;
}

Result<Drawn> PictureOf(Frame& frame, Canvas canvas, int layerWidth, int layerHeight, Depth depth) {
    const bool empty = frame.output.Width() == 0 || frame.output.Height() == 0;
    const bool isFrame = frame.rect.left == 0 && frame.rect.top == 0 && frame.rect.right == layerWidth &&
                         frame.rect.bottom == layerHeight;
    if (!empty && (canvas == Canvas::kGrow || isFrame)) return Drawn{std::move(frame.output), frame.rect};
    World cut = empty ? World::Create(layerWidth, layerHeight, depth)
                      : CutToFrame(frame.output, frame.rect.left, frame.rect.top, layerWidth, layerHeight);
    if (cut.IsNull()) return NotEnoughMemory("the picture", layerWidth, layerHeight, depth);
    return Drawn{std::move(cut), {0, 0, layerWidth, layerHeight}};
}
