// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What hosts ask about a frame without drawing it.

#include <string>

#include "openfx/abi/clip_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/actions.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

bool SetRegion(const Properties& answers, const char* name, const OfxRectD& region) {
    // All four, since hosts preset zeros.
    return answers.SetAll(name, {region.x1, region.y1, region.x2, region.y2});
}

/// Whether images may have another size than the project's.
bool CanGrow() {
    return Properties(TheSuites().host).Int(kOfxImageEffectPropSupportsMultiResolution).value_or(1) != 0;
}

/// The texture's size and position as far as they can affect where the result is.
void SetTexture(const Instance& instance, OfxTime time, const OfxRectI& layer, FrameOptions& options) {
    const Clip& texture = instance.Texture();
    if (!texture.MayHaveImage()) return;
    const auto region = texture.Region(time);
    const auto pixels = region ? FullPixels(*region, texture.PixelAspect()) : std::nullopt;
    if (!pixels) return;
    options.texture.width = pixels->x2 - pixels->x1;
    options.texture.height = pixels->y2 - pixels->y1;
    options.textureX = pixels->x1 - layer.x1;
    options.textureY = layer.y2 - pixels->y2;
}

/// Without a shadow the region does not grow: tree hosts compute every pixel of it.
bool HasShadow(const Instance& instance, OfxTime time) {
    return instance.Number(kOpacityMasterName, time) != 0 &&
           (instance.Number(kOpacityStartName, time) != 0 || instance.Number(kOpacityEndName, time) != 0);
}

std::optional<OfxRectD> RegionOfResult(const Instance& instance, OfxTime time) {
    const auto region = instance.Source().Region(time);
    if (!region) return std::nullopt;
    if (!CanGrow() || !HasShadow(instance, time)) return region;
    const double aspect = instance.Source().PixelAspect();
    const auto layer = FullPixels(*region, aspect);
    if (!layer) return std::nullopt;
    FrameOptions options;
    options.pixelAspect = AspectOf(aspect);
    SetTexture(instance, time, *layer, options);
    const Values values = instance.ValuesAt(time, PlaceOfImage(*layer, {}, aspect));
    const Rectangle place =
        instance.TheDrawer().TheEffect().Place(layer->x2 - layer->x1, layer->y2 - layer->y1, values, options);
    return United(*region, FromLayer(place, *layer), aspect);
}

}  // namespace

bool IsSource(const Instance& instance, OfxTime time) {
    return instance.Number(kOpacityMasterName, time) == 0 && instance.Number(kSourceOpacityName, time) == 100;
}

OfxStatus GetRegionOfDefinition(const Instance& instance, const Properties& arguments, const Properties& answers) {
    try {
        const auto region = RegionOfResult(instance, TimeOf(arguments));
        if (region && SetRegion(answers, kOfxImageEffectPropRegionOfDefinition, *region)) return kOfxStatOK;
    } catch (...) {
        // A failure here turns off render scales for ever in one host. The frame itself reports what is wrong.
    }
    return kOfxStatReplyDefault;
}

OfxStatus GetRegionsOfInterest(const Instance& instance, const Properties& arguments, const Properties& answers) {
    const OfxTime time = TimeOf(arguments);
    bool isSet = false;
    const auto set = [&](const Clip& clip, const char* name) {
        if (!clip.MayHaveImage()) return;
        if (const auto region = clip.Region(time))
            isSet |= SetRegion(answers, (std::string(kOfxImageClipPropRoIPrefix) + name).c_str(), *region);
    };
    set(instance.Source(), kOfxImageEffectSimpleSourceClipName);
    set(instance.Texture(), kTextureClipName);
    return isSet ? kOfxStatOK : kOfxStatReplyDefault;
}

OfxStatus IsIdentity(const Instance& instance, const Properties& arguments, const Properties& answers) {
    const OfxTime time = TimeOf(arguments);
    if (!IsSource(instance, time)) return kOfxStatReplyDefault;
    if (!answers.Set(kOfxPropName, kOfxImageEffectSimpleSourceClipName)) return kOfxStatReplyDefault;
    answers.Set(kOfxPropTime, time);
    return kOfxStatOK;
}

OfxStatus GetClipPreferences(const Instance& instance, const Properties& answers) {
    // The effect's clock is not used: the same values give the same frame at every time.
    const bool isStill = answers.Set(kOfxImageEffectFrameVarying, 0);
    const auto reported = instance.Source().properties.String(kOfxImageEffectPropPreMultiplication);
    const AlphaChoice choice = instance.Alpha(0);
    // A source without a state, as of a clip that is not connected, leaves the output's to the host.
    if (!reported && choice == AlphaChoice::kAutomatic) return isStill ? kOfxStatOK : kOfxStatReplyDefault;
    const bool isSet =
        answers.Set(kOfxImageEffectPropPreMultiplication, OutputStateText(AlphaStateOf(choice, reported)));
    return isSet || isStill ? kOfxStatOK : kOfxStatReplyDefault;
}

}  // namespace umbrant::openfx
