// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Rules of properties as data.

#include "tests/openfx/host/tables/property_rules.h"

namespace umbrant::ofx {

const std::set<std::string_view>& WritableOnInstances() {
    static const std::set<std::string_view> names = {
        "OfxPropInstanceData",
        "OfxImageEffectInstancePropSequentialRender",
        "OfxPropLabel",
        "OfxPropShortLabel",
        "OfxPropLongLabel",
        "OfxParamPropSecret",
        "OfxParamPropEnabled",
        "OfxParamPropHint",
        "OfxParamPropMin",
        "OfxParamPropMax",
        "OfxParamPropDisplayMin",
        "OfxParamPropDisplayMax",
        "OfxParamPropChoiceOption",
        "OfxParamPropEvaluateOnChange",
        "OfxPropParamSetNeedsSyncing",
    };
    return names;
}

const std::map<std::string_view, PropertyValue>& Defaults() {
    static const std::map<std::string_view, PropertyValue> values = {
        {"OfxImageEffectPluginRenderThreadSafety", "OfxImageEffectRenderInstanceSafe"},
        {"OfxImageEffectPluginPropHostFrameThreading", 1},
        {"OfxImageEffectPropSupportsMultiResolution", 1},
        {"OfxImageEffectPropSupportsTiles", 1},
        {"OfxImageEffectPluginPropFieldRenderTwiceAlways", 1},
        {"OfxImageClipPropFieldExtraction", "OfxFieldDoubled"},
        {"OfxParamPropInteractSizeAspect", 1.0},
        {"OfxParamPropAnimates", 1},
        {"OfxParamPropCanUndo", 1},
        {"OfxParamPropPersistant", 1},
        {"OfxParamPropEvaluateOnChange", 1},
        {"OfxParamPropEnabled", 1},
        {"OfxParamPropGroupOpen", 1},
        {"OfxParamPropDigits", 2},
        {"OfxParamPropIncrement", 1.0},
        {"OfxParamPropDoubleType", "OfxParamDoubleTypePlain"},
        {"OfxParamPropDefaultCoordinateSystem", "OfxParamCoordinatesCanonical"},
        {"OfxParamPropCacheInvalidation", "OfxParamInvalidateValueChange"},
        {"OfxParamPropStringMode", "OfxParamStringIsSingleLine"},
        {"OfxParamPropStringFilePathExists", 1},
        {"OfxImageEffectPropOpenGLRenderSupported", "false"},
    };
    return values;
}

const std::vector<std::pair<std::string_view, std::string_view>>& Followers() {
    static const std::vector<std::pair<std::string_view, std::string_view>> rows = {
        {"OfxPropLabel", "OfxPropShortLabel"},
        {"OfxPropLabel", "OfxPropLongLabel"},
        {"OfxParamPropMin", "OfxParamPropDisplayMin"},
        {"OfxParamPropMax", "OfxParamPropDisplayMax"},
    };
    return rows;
}

}  // namespace umbrant::ofx
