// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Properties of the effect and its clips. Older hosts lack some properties, so refused ones are left out.

#include "openfx/describe.h"

#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/host/properties.h"
#include "openfx/host/suites.h"
#include "openfx/instance.h"
#include "openfx/parameters/describe_parameters.h"

namespace umbrant::openfx {

namespace {

constexpr char kLabel[] = "Umbrant 2";
constexpr char kGrouping[] = "Halvane";
constexpr char kDescription[] =
    "Draws a long, soft shadow of what is not transparent: normal, inner or radial. Frames without transparent parts "
    "have a shadow only outside of their edges, where the host lets the image grow.";

/// Its properties; without a handle where the host refuses the clip.
Properties DefineClip(OfxImageEffectHandle effect, const char* name) {
    OfxPropertySetHandle set = nullptr;
    if (TheSuites().effect->clipDefine(effect, name, &set) != kOfxStatOK) return Properties();
    const Properties clip(set);
    // A host without RGB converts to what there is; alpha alone has no colour to draw on.
    clip.Set(kOfxImageEffectPropSupportedComponents, kOfxImageComponentRGBA);
    // A shadow needs pixels from far away.
    clip.Set(kOfxImageEffectPropSupportsTiles, 0);
    clip.Set(kOfxImageEffectPropTemporalClipAccess, 0);
    return clip;
}

}  // namespace

OfxStatus Describe(OfxImageEffectHandle effect) {
    OfxPropertySetHandle set = nullptr;
    if (TheSuites().effect->getPropertySet(effect, &set) != kOfxStatOK || !set) return kOfxStatFailed;
    const Properties plugin(set);
    plugin.Set(kOfxPropLabel, kLabel);
    plugin.Set(kOfxPropShortLabel, kLabel);
    plugin.Set(kOfxPropLongLabel, kLabel);
    plugin.Set(kOfxPropVersion, static_cast<int>(kPluginMajor), 0);
    plugin.Set(kOfxPropVersion, static_cast<int>(kPluginMinor), 1);
    plugin.Set(kOfxPropVersionLabel, "1.0");
    plugin.Set(kOfxPropPluginDescription, kDescription);
    plugin.Set(kOfxImageEffectPluginPropGrouping, kGrouping);
    plugin.SetAll(kOfxImageEffectPropSupportedContexts, {kOfxImageEffectContextFilter, kOfxImageEffectContextGeneral});
    plugin.SetAll(kOfxImageEffectPropSupportedPixelDepths, {kOfxBitDepthFloat, kOfxBitDepthByte});
    plugin.Set(kOfxImageEffectPluginPropSingleInstance, 0);
    plugin.Set(kOfxImageEffectPluginRenderThreadSafety, kOfxImageEffectRenderFullySafe);
    // By default hosts cut frames into slices, each of which would draw the whole shadow.
    plugin.Set(kOfxImageEffectPluginPropHostFrameThreading, 0);
    plugin.Set(kOfxImageEffectPropSupportsTiles, 0);
    plugin.Set(kOfxImageEffectPropSupportsMultiResolution, 1);
    plugin.Set(kOfxImageEffectPropTemporalClipAccess, 0);
    plugin.Set(kOfxImageEffectPropSupportsMultipleClipDepths, 0);
    plugin.Set(kOfxImageEffectPropSupportsMultipleClipPARs, 0);
    plugin.Set(kOfxImageEffectPluginPropFieldRenderTwiceAlways, 0);
    plugin.Set(kOfxImageEffectPropClipPreferencesSlaveParam, kAlphaName);
    // The effect has OpenGL contexts of its own, and takes images in memory.
    plugin.Set(kOfxImageEffectPropOpenGLRenderSupported, "false");
    plugin.Set(kOfxImageEffectPropCPURenderSupported, "true");
    plugin.Set(kOfxImageEffectPropNoSpatialAwareness, "false");
    return kOfxStatOK;
}

OfxStatus DescribeInContext(OfxImageEffectHandle effect) {
    const Properties source = DefineClip(effect, kOfxImageEffectSimpleSourceClipName);
    const Properties output = DefineClip(effect, kOfxImageEffectOutputClipName);
    if (!source.Handle() || !output.Handle()) return kOfxStatFailed;
    const Properties texture = DefineClip(effect, kTextureClipName);
    texture.Set(kOfxPropLabel, kTextureClipName);
    texture.Set(kOfxImageClipPropOptional, 1);
    texture.Set(kOfxImageClipPropIsMask, 0);
    OfxParamSetHandle parameters = nullptr;
    if (TheSuites().effect->getParamSet(effect, &parameters) != kOfxStatOK || !parameters) return kOfxStatFailed;
    DescribeParameters(parameters);
    return kOfxStatOK;
}

}  // namespace umbrant::openfx
