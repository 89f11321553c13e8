// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A frame: the host's images, drawn by the library, in the part of the output that the host asks for.

#include <cmath>
#include <optional>
#include <utility>

#include "openfx/abi/clip_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/actions.h"
#include "openfx/host/messages.h"
#include "openfx/host/refusal.h"
#include "openfx/images/clip_image.h"

namespace umbrant::openfx {

namespace {

// Vegas: the property of a clip whose pixels have blue first. Not part of the standard.
constexpr char kPixelOrder[] = "OfxImageEffectPropPixelOrder";
constexpr char kBlueFirst[] = "OfxImagePixelOrderBGRA";

/// An image of an input, and its pixels in the library's form.
struct Input {
    ClipImage image;
    PixelForm form{};
    std::optional<Image> converted{};

    ImageView Pixels() const {
        return converted ? ImageView(std::as_const(*converted).View()) : ImageView(image.View());
    }
};

std::optional<Input> FetchInput(const Clip& clip, OfxTime time, AlphaChoice choice, const char* what) {
    auto image = ClipImage::Fetch(clip.handle, time, what);
    if (!image) return std::nullopt;
    auto alpha = image->AlphaText();
    if (!alpha) alpha = clip.properties.String(kOfxImageEffectPropPreMultiplication);
    Input input{std::move(*image)};
    input.form.alpha = AlphaStateOf(choice, alpha);
    input.form.isBlueFirst = clip.properties.String(kPixelOrder) == kBlueFirst;
    if (!input.form.IsLibrarys()) input.converted = ToLibrary(input.image.View(), input.form);
    return input;
}

/// The full size along a side where it fits the image's: an image may be a part of its region.
int FullSize(int full, int given, double scale) {
    return std::abs(full * scale - given) <= 1 ? full : 0;
}

FrameOptions OptionsOf(const Instance& instance, const Input& source, const Input* texture, OfxTime time,
                       const Scale& scale) {
    FrameOptions options;
    SetScale(scale, options);
    const OfxRectI& bounds = source.image.Bounds();
    const double aspect = source.image.PixelAspect(instance.Source().PixelAspect());
    options.pixelAspect = AspectOf(aspect);
    const auto region = instance.Source().Region(time);
    if (const auto full = region ? FullPixels(*region, aspect) : std::nullopt) {
        options.layerWidth = FullSize(full->x2 - full->x1, bounds.x2 - bounds.x1, scale.x);
        options.layerHeight = FullSize(full->y2 - full->y1, bounds.y2 - bounds.y1, scale.y);
    }
    if (texture) {
        const OfxRectI& other = texture->image.Bounds();
        options.texture = texture->Pixels();
        options.textureX = (other.x1 - bounds.x1) / scale.x;
        options.textureY = (bounds.y2 - other.y2) / scale.y;
    }
    return options;
}

/// What the host asks for of the output: its window, or all of it.
OfxRectI TargetOf(const ClipImage& output, const Properties& arguments) {
    const auto window = arguments.Ints<4>(kOfxImageEffectPropRenderWindow);
    if (!window) return output.Bounds();
    return Intersection(output.Bounds(), {(*window)[0], (*window)[1], (*window)[2], (*window)[3]});
}

bool IsInside(const Rectangle& inner, const Rectangle& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

/// Draws straight into the host's rows where they have the result's form and rectangle, else by way of an image.
void Draw(const Instance& instance, const Input& source, const Values& values, FrameOptions& options,
          const MutableImageView& target, const Rectangle& wanted) {
    const Effect& effect = instance.TheDrawer().TheEffect();
    const ImageView layer = source.Pixels();
    const Rectangle whole{0, 0, layer.width, layer.height};
    if (IsInside(wanted, whole)) options.canvas = Canvas::kLayer;
    if (source.form.IsLibrarys() && wanted == effect.Place(layer, values, options)) {
        effect.RenderInto(layer, target, values, options);
        return;
    }
    const Image drawn = effect.Render(layer, values, options);
    FromLibrary(drawn, source.form, source.image.View(), target, wanted.left, wanted.top);
}

void StopWhereAborted(const Instance& instance) {
    // Without a sentence: the host knows.
    if (instance.IsAborted()) throw Refusal(kOfxStatFailed, "");
}

}  // namespace

OfxStatus Render(Instance& instance, const Properties& arguments) {
    const OfxTime time = TimeOf(arguments);
    const Scale scale = ScaleOf(arguments);
    StopWhereAborted(instance);
    const auto output = ClipImage::Fetch(instance.Output().handle, time, "the output");
    if (!output) throw Refusal(kOfxStatFailed, "the host has no output image for this frame");
    const OfxRectI target = TargetOf(*output, arguments);
    if (IsEmpty(target)) return kOfxStatOK;

    const AlphaChoice choice = instance.Alpha(time);
    const auto source = FetchInput(instance.Source(), time, choice, "the source");
    if (!source) {
        Clear(output->View(target));
        return kOfxStatOK;
    }
    if (source->image.Format() != output->Format()) {
        throw Refusal(
            kOfxStatErrImageFormat,
            "the source and the output have different depths; the plug-in draws into the depth of the source");
    }
    const auto texture =
        instance.Texture().MayHaveImage() ? FetchInput(instance.Texture(), time, choice, "the texture") : std::nullopt;

    const OfxRectI& bounds = source->image.Bounds();
    FrameOptions options = OptionsOf(instance, *source, texture ? &*texture : nullptr, time, scale);
    const double aspect = source->image.PixelAspect(instance.Source().PixelAspect());
    const Values values = instance.ValuesAt(time, PlaceOfImage(bounds, scale, aspect));
    StopWhereAborted(instance);
    Draw(instance, *source, values, options, output->View(target), InLayer(target, bounds));
    StopWhereAborted(instance);
    if (instance.showsFailure.exchange(false)) ClearFailure(instance.Handle());
    return kOfxStatOK;
}

}  // namespace umbrant::openfx
