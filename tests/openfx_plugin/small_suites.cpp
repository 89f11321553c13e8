// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The suites over plain maps.

#include "tests/openfx_plugin/small_suites.h"

#include <cstdarg>
#include <cstdio>

#include "openfx/abi/effect_properties.h"
#include "openfx/abi/parameter_names.h"

namespace umbrant::openfx {

namespace {

template <typename T, typename Given>
OfxStatus Put(OfxPropertySetHandle handle, const char* name, int index, Given given) {
    auto& all = reinterpret_cast<SmallSet*>(handle)->values[name];
    if (all.size() <= static_cast<std::size_t>(index)) all.resize(static_cast<std::size_t>(index) + 1);
    all[static_cast<std::size_t>(index)] = T(given);
    return kOfxStatOK;
}

template <typename T>
T* Find(OfxPropertySetHandle handle, const char* name, int index) {
    auto& values = reinterpret_cast<SmallSet*>(handle)->values;
    const auto found = values.find(name);
    if (found == values.end() || found->second.size() <= static_cast<std::size_t>(index)) return nullptr;
    return std::get_if<T>(&found->second[static_cast<std::size_t>(index)]);
}

template <typename T, typename Out>
OfxStatus Take(OfxPropertySetHandle handle, const char* name, int index, Out* out) {
    T* const value = Find<T>(handle, name, index);
    if (!value) return kOfxStatErrUnknown;
    if constexpr (std::is_same_v<T, std::string>) {
        *out = value->data();
    } else {
        *out = *value;
    }
    return kOfxStatOK;
}

SmallEffect& EffectOf(OfxImageEffectHandle handle) {
    return *reinterpret_cast<SmallEffect*>(handle);
}

OfxStatus GetImage(OfxImageClipHandle handle, OfxTime, const OfxRectD*, OfxPropertySetHandle* out) {
    auto& clip = *reinterpret_cast<SmallClip*>(handle);
    if (!clip.image) return kOfxStatFailed;
    ++SmallHost::The().images;
    *out = reinterpret_cast<OfxPropertySetHandle>(&clip.image->set);
    return kOfxStatOK;
}

OfxStatus GetValue(OfxParamHandle handle, va_list out) {
    for (SmallValue& value : reinterpret_cast<SmallParameter*>(handle)->value) {
        void* const to = va_arg(out, void*);
        if (const int* whole = std::get_if<int>(&value)) *static_cast<int*>(to) = *whole;
        if (const double* number = std::get_if<double>(&value)) *static_cast<double*>(to) = *number;
        if (auto* text = std::get_if<std::string>(&value)) *static_cast<char**>(to) = text->data();
    }
    return kOfxStatOK;
}

OfxStatus ParamGetValue(OfxParamHandle handle, ...) {
    va_list out;
    va_start(out, handle);
    const OfxStatus status = GetValue(handle, out);
    va_end(out);
    return status;
}

OfxStatus ParamGetValueAtTime(OfxParamHandle handle, OfxTime time, ...) {
    va_list out;
    va_start(out, time);
    const OfxStatus status = GetValue(handle, out);
    va_end(out);
    return status;
}

OfxStatus ParamSetValue(OfxParamHandle handle, ...) {
    va_list in;
    va_start(in, handle);
    for (SmallValue& value : reinterpret_cast<SmallParameter*>(handle)->value) {
        if (std::holds_alternative<int>(value)) value = va_arg(in, int);
        if (std::holds_alternative<double>(value)) value = va_arg(in, double);
        if (std::holds_alternative<std::string>(value)) value = std::string(va_arg(in, const char*));
    }
    va_end(in);
    return kOfxStatOK;
}

OfxStatus Message(void*, const char*, const char*, const char* format, ...) {
    char text[2000];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    SmallHost::The().messages.push_back(text);
    return kOfxStatOK;
}

}  // namespace

const OfxPropertySuiteV1& SmallPropertySuite() {
    static const OfxPropertySuiteV1 suite = [] {
        OfxPropertySuiteV1 made{};
        made.propSetPointer = Put<void*, void*>;
        made.propSetString = Put<std::string, const char*>;
        made.propSetDouble = Put<double, double>;
        made.propSetInt = Put<int, int>;
        made.propGetPointer = Take<void*, void*>;
        made.propGetString = Take<std::string, char*>;
        made.propGetDouble = Take<double, double>;
        made.propGetInt = Take<int, int>;
        return made;
    }();
    return suite;
}

const OfxImageEffectSuiteV1& SmallEffectSuite() {
    static const OfxImageEffectSuiteV1 suite = [] {
        OfxImageEffectSuiteV1 made{};
        made.getPropertySet = [](OfxImageEffectHandle handle, OfxPropertySetHandle* out) {
            *out = reinterpret_cast<OfxPropertySetHandle>(&EffectOf(handle).set);
            return kOfxStatOK;
        };
        made.getParamSet = [](OfxImageEffectHandle handle, OfxParamSetHandle* out) {
            *out = reinterpret_cast<OfxParamSetHandle>(&EffectOf(handle));
            return kOfxStatOK;
        };
        made.clipDefine = [](OfxImageEffectHandle handle, const char* name, OfxPropertySetHandle* out) {
            *out = reinterpret_cast<OfxPropertySetHandle>(&EffectOf(handle).clips[name].set);
            return kOfxStatOK;
        };
        made.clipGetHandle = [](OfxImageEffectHandle handle, const char* name, OfxImageClipHandle* out,
                                OfxPropertySetHandle* set) {
            SmallClip& clip = EffectOf(handle).clips[name];
            *out = reinterpret_cast<OfxImageClipHandle>(&clip);
            if (set) *set = reinterpret_cast<OfxPropertySetHandle>(&clip.set);
            return kOfxStatOK;
        };
        made.clipGetPropertySet = [](OfxImageClipHandle handle, OfxPropertySetHandle* out) {
            *out = reinterpret_cast<OfxPropertySetHandle>(&reinterpret_cast<SmallClip*>(handle)->set);
            return kOfxStatOK;
        };
        made.clipGetImage = GetImage;
        made.clipReleaseImage = [](OfxPropertySetHandle) {
            --SmallHost::The().images;
            return kOfxStatOK;
        };
        made.clipGetRegionOfDefinition = [](OfxImageClipHandle handle, OfxTime, OfxRectD* out) {
            *out = reinterpret_cast<SmallClip*>(handle)->region;
            return kOfxStatOK;
        };
        made.abort = [](OfxImageEffectHandle) { return SmallHost::The().isAborted ? 1 : 0; };
        return made;
    }();
    return suite;
}

const OfxParameterSuiteV1& SmallParameterSuite() {
    static const OfxParameterSuiteV1 suite = [] {
        OfxParameterSuiteV1 made{};
        made.paramDefine = [](OfxParamSetHandle handle, const char* type, const char* name, OfxPropertySetHandle* out) {
            auto& effect = *reinterpret_cast<SmallEffect*>(handle);
            SmallParameter& parameter = effect.parameters[name];
            parameter.type = type;
            effect.order.push_back(name);
            *out = reinterpret_cast<OfxPropertySetHandle>(&parameter.set);
            return kOfxStatOK;
        };
        made.paramGetHandle = [](OfxParamSetHandle handle, const char* name, OfxParamHandle* out,
                                 OfxPropertySetHandle*) {
            auto& parameters = reinterpret_cast<SmallEffect*>(handle)->parameters;
            const auto found = parameters.find(name);
            if (found == parameters.end()) return kOfxStatErrUnknown;
            *out = reinterpret_cast<OfxParamHandle>(&found->second);
            return kOfxStatOK;
        };
        made.paramGetPropertySet = [](OfxParamHandle handle, OfxPropertySetHandle* out) {
            *out = reinterpret_cast<OfxPropertySetHandle>(&reinterpret_cast<SmallParameter*>(handle)->set);
            return kOfxStatOK;
        };
        made.paramGetValue = ParamGetValue;
        made.paramGetValueAtTime = ParamGetValueAtTime;
        made.paramSetValue = ParamSetValue;
        made.paramEditBegin = [](OfxParamSetHandle, const char*) { return kOfxStatOK; };
        made.paramEditEnd = [](OfxParamSetHandle) { return kOfxStatOK; };
        return made;
    }();
    return suite;
}

const OfxMessageSuiteV2& SmallMessageSuite() {
    static const OfxMessageSuiteV2 suite{Message, Message, [](void*) { return kOfxStatOK; }};
    return suite;
}

}  // namespace umbrant::openfx
