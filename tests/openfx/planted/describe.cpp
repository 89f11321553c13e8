// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The description of the small effect, and its errors.

#include "tests/openfx/planted/plugin.h"

namespace umbrant::ofx::planted {

namespace {

OfxPropertySetHandle DefineClip(OfxImageEffectHandle effect, const char* name) {
    OfxPropertySetHandle clip = nullptr;
    Need(suites.effect->clipDefine(effect, name, &clip));
    if (!Has(Flaw::kNoComponents)) {
        suites.property->propSetString(clip, "OfxImageEffectPropSupportedComponents", 0, "OfxImageComponentRGBA");
    }
    suites.property->propSetInt(clip, "OfxImageEffectPropSupportsTiles", 0, 0);
    return clip;
}

OfxPropertySetHandle DefineParam(OfxParamSetHandle params, const char* type, const char* name) {
    OfxPropertySetHandle set = nullptr;
    Need(suites.param->paramDefine(params, type, name, &set));
    return set;
}

void DefineParams(OfxImageEffectHandle effect) {
    const OfxPropertySuiteV1& property = *suites.property;
    OfxParamSetHandle params = nullptr;
    Need(suites.effect->getParamSet(effect, &params));
    if (!Has(Flaw::kParentLater)) DefineParam(params, "OfxParamTypeGroup", "group");
    OfxPropertySetHandle gain = DefineParam(params, "OfxParamTypeDouble", "gain");
    property.propSetString(gain, "OfxParamPropParent", 0, "group");
    property.propSetDouble(gain, "OfxParamPropMin", 0, 0);
    property.propSetDouble(gain, "OfxParamPropMax", 0, 2);
    property.propSetDouble(gain, "OfxParamPropDisplayMin", 0, 0);
    property.propSetDouble(gain, "OfxParamPropDisplayMax", 0, Has(Flaw::kEmptySlider) ? 0 : 1);
    property.propSetDouble(gain, "OfxParamPropDefault", 0, Has(Flaw::kDefaultOutside) ? 3 : 1);
    OfxPropertySetHandle border = DefineParam(params, "OfxParamTypeInteger", "border");
    property.propSetInt(border, "OfxParamPropDefault", 0, 2);
    OfxPropertySetHandle mode = DefineParam(params, "OfxParamTypeChoice", "mode");
    if (!Has(Flaw::kNoOptions)) property.propSetString(mode, "OfxParamPropChoiceOption", 0, "Plain");
    if (Has(Flaw::kOptionGap)) property.propSetString(mode, "OfxParamPropChoiceOption", 2, "Other");
    OfxPropertySetHandle origin = DefineParam(params, "OfxParamTypeDouble2D", "origin");
    const double corner[] = {0, 1};
    property.propSetDoubleN(origin, "OfxParamPropDefault", 2, corner);
    property.propSetString(origin, "OfxParamPropDefaultCoordinateSystem", 0, "OfxParamCoordinatesNormalised");
    OfxPropertySetHandle note = DefineParam(params, "OfxParamTypeString", "note");
    property.propSetString(note, "OfxParamPropDefault", 0, "text");
    if (Has(Flaw::kParentLater)) DefineParam(params, "OfxParamTypeGroup", "group");
    if (Has(Flaw::kParamTwice)) suites.param->paramDefine(params, "OfxParamTypeDouble", "gain", nullptr);
    if (Has(Flaw::kWrongName)) suites.param->paramDefine(params, "OfxParamTypeDouble", "style/gain", nullptr);
}

void MisuseProperties(OfxPropertySetHandle set) {
    const OfxPropertySuiteV1& property = *suites.property;
    if (Has(Flaw::kWrongType)) property.propSetDouble(set, "OfxImageEffectPropSupportsTiles", 0, 1.0);
    if (Has(Flaw::kWrongDimension)) {
        const int values[] = {0, 0};
        property.propSetIntN(set, "OfxImageEffectPropSupportsTiles", 2, values);
    }
    if (Has(Flaw::kWrongIndex)) property.propSetInt(set, "OfxImageEffectPropSupportsTiles", 1, 0);
    if (Has(Flaw::kWrongValue)) {
        property.propSetString(set, "OfxImageEffectPluginRenderThreadSafety", 0, "FullySafe");
    }
    if (Has(Flaw::kUnknownProperty)) property.propSetInt(set, "OfxImageEffectPropTiles", 0, 0);
    if (Has(Flaw::kForeignProperty)) property.propSetInt(set, "OfxImageClipPropOptional", 0, 1);
}

}  // namespace

OfxStatus Describe(OfxImageEffectHandle effect) {
    const OfxPropertySuiteV1& property = *suites.property;
    OfxPropertySetHandle set = PropertiesOf(effect);
    if (!Has(Flaw::kNoLabel)) property.propSetString(set, "OfxPropLabel", 0, "Planted");
    property.propSetString(set, "OfxImageEffectPluginPropGrouping", 0, "Test");
    property.propSetString(set, "OfxImageEffectPropSupportedContexts", 0, "OfxImageEffectContextFilter");
    property.propSetString(set, "OfxImageEffectPropSupportedContexts", 1, "OfxImageEffectContextGeneral");
    property.propSetString(set, "OfxImageEffectPropSupportedPixelDepths", 0, "OfxBitDepthByte");
    property.propSetString(set, "OfxImageEffectPropSupportedPixelDepths", 1, "OfxBitDepthFloat");
    property.propSetString(set, "OfxImageEffectPluginRenderThreadSafety", 0, "OfxImageEffectRenderFullySafe");
    MisuseProperties(set);
    return kOfxStatOK;
}

OfxStatus DescribeInContext(OfxImageEffectHandle effect) {
    DefineClip(effect, "Source");
    if (Has(Flaw::kClipTwice)) suites.effect->clipDefine(effect, "Source", nullptr);
    if (!Has(Flaw::kNoOutput)) DefineClip(effect, "Output");
    OfxPropertySetHandle texture = DefineClip(effect, "Texture");
    suites.property->propSetInt(texture, "OfxImageClipPropOptional", 0, Has(Flaw::kMandatoryTexture) ? 0 : 1);
    DefineParams(effect);
    return kOfxStatOK;
}

}  // namespace umbrant::ofx::planted
