// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/frame_pixels.h"

#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/rectangles.h"
#include "host/compositing/resample.h"

namespace umbrant::host {

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

Result<Drawn> PictureOf(Frame& frame, const std::optional<PF_LRect>& canvas, int layerWidth, int layerHeight,
                        Depth depth) {
    const bool empty = frame.output.Width() == 0 || frame.output.Height() == 0;
    const PF_LRect cover = canvas.value_or(empty ? PF_LRect{0, 0, layerWidth, layerHeight} : frame.rect);
    if (!empty && Same(cover, frame.rect)) return Drawn{std::move(frame.output), frame.rect};
    World cut = empty ? World::Create(WidthOf(cover), HeightOf(cover), depth)
                      : CutToFrame(frame.output, frame.rect.left - cover.left, frame.rect.top - cover.top,
                                   WidthOf(cover), HeightOf(cover));
    if (cut.IsNull()) return NotEnoughMemory("the image", WidthOf(cover), HeightOf(cover), depth);
    return Drawn{std::move(cut), cover};
}

}  // namespace umbrant::host
