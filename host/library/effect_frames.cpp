// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's frames: images, places, and the values that they are drawn with.

#include <umbrant/effect.h>

#include <fmt/format.h>

#include "host/library/effect_request.h"
#include "host/library/effect_state.h"
#include "host/library/errors.h"
#include "host/library/pixel_order.h"
#include "host/library/value_store.h"

namespace umbrant {

using namespace host;

namespace {

bool IsLayerCanvas(const FrameOptions& options) {
    return options.canvas == umbrant::Canvas::kLayer;
}

/// What is asked about a frame without its pixels; the sizes were checked.
template <typename State>
Rectangle PlaceOf(State& state, int width, int height, Depth depth, const FrameOptions& options,
                  const ParamSet& values) {
    if (IsLayerCanvas(options)) return {0, 0, width, height};
    return state.Place(BlankLayersOf(width, height, depth, options), options, values);
}

template <typename State>
Image ImageOf(State& state, const ImageView& layer, const FrameOptions& options, const ParamSet& values) {
    const Frame frame = state.Draw(LayersOf(layer, options), options, values);
    const Rectangle drawn = RectangleOf(frame.rect);
    Image image(IsLayerCanvas(options) || IsEmpty(drawn) ? Rectangle{0, 0, layer.width, layer.height} : drawn,
                layer.format);
    CopyInto(frame.output, frame.rect.left - image.Place().left, frame.rect.top - image.Place().top, image.View());
    return image;
}

void CheckTarget(const ImageView& layer, const MutableImageView& target, const FrameOptions& options) {
    CheckOptions(options);
    Need(CheckView(target, "the target"));
    if (target.format != layer.format)
        Refuse("the pixel formats of the target and the layer differ; they must be equal");
    CheckViews(layer, options);
}

template <typename State>
Rectangle DrawInto(State& state, const ImageView& layer, const MutableImageView& target, const FrameOptions& options,
                   const ParamSet& values) {
    const Rectangle place = PlaceOf(state, layer.width, layer.height, DepthOf(layer.format), options, values);
    if (target.width != place.Width() || target.height != place.Height()) {
        Refuse(fmt::format("the target is {} x {} pixels; the image is {} x {}", target.width, target.height,
                           place.Width(), place.Height()));
    }
    const Frame frame = state.Draw(LayersOf(layer, options), options, values);
    CopyInto(frame.output, frame.rect.left - place.left, frame.rect.top - place.top, target);
    return place;
}

}  // namespace

Image Effect::Render(const ImageView& layer, const FrameOptions& options) const {
    CheckOptions(options);
    CheckViews(layer, options);
    return ImageOf(*state_, layer, options, state_->ValuesAt(options));
}

Image Effect::Render(const ImageView& layer, const Values& values, const FrameOptions& options) const {
    CheckOptions(options);
    CheckViews(layer, options);
    return ImageOf(*state_, layer, options, state_->ValuesAt(values.state_->store, options));
}

Rectangle Effect::RenderInto(const ImageView& layer, const MutableImageView& target,
                             const FrameOptions& options) const {
    CheckTarget(layer, target, options);
    return DrawInto(*state_, layer, target, options, state_->ValuesAt(options));
}

Rectangle Effect::RenderInto(const ImageView& layer, const MutableImageView& target, const Values& values,
                             const FrameOptions& options) const {
    CheckTarget(layer, target, options);
    return DrawInto(*state_, layer, target, options, state_->ValuesAt(values.state_->store, options));
}

Rectangle Effect::Place(const ImageView& layer, const FrameOptions& options) const {
    CheckOptions(options);
    CheckViews(layer, options);
    return PlaceOf(*state_, layer.width, layer.height, DepthOf(layer.format), options, state_->ValuesAt(options));
}

Rectangle Effect::Place(const ImageView& layer, const Values& values, const FrameOptions& options) const {
    CheckOptions(options);
    CheckViews(layer, options);
    return PlaceOf(*state_, layer.width, layer.height, DepthOf(layer.format), options,
                   state_->ValuesAt(values.state_->store, options));
}

Rectangle Effect::Place(int width, int height, const FrameOptions& options) const {
    CheckOptions(options);
    CheckSizes(width, height, options);
    return PlaceOf(*state_, width, height, Depth::k8, options, state_->ValuesAt(options));
}

Rectangle Effect::Place(int width, int height, const Values& values, const FrameOptions& options) const {
    CheckOptions(options);
    CheckSizes(width, height, options);
    return PlaceOf(*state_, width, height, Depth::k8, options, state_->ValuesAt(values.state_->store, options));
}

}  // namespace umbrant
