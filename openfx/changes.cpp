// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the panel shows: which rows, and which of them can be changed. Rows are hidden here and at the creation of an
// instance only; values that vary with time raise no action, so nothing that is drawn depends on it.

#include <string>
#include <variant>
#include <vector>

#include "openfx/abi/image_names.h"
#include "openfx/abi/parameter_properties.h"
#include "openfx/actions.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

/// Sets a property of a parameter where it differs: hosts redraw their panel for each.
void SetSwitch(OfxParamHandle parameter, const char* name, bool isOn) {
    OfxPropertySetHandle set = nullptr;
    if (!parameter || TheSuites().parameter->paramGetPropertySet(parameter, &set) != kOfxStatOK) return;
    const Properties properties(set);
    const int value = isOn ? 1 : 0;
    if (properties.Int(name) != value) properties.Set(name, value);
}

}  // namespace

void UpdateRows(Instance& instance, OfxTime time) {
    const auto table = ParameterTable();
    std::vector<std::string> texts(table.size());
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!IsEffectValue(table[i]) || table[i].kind != ParameterKind::kChoice) continue;
        const HostNumbers numbers = instance.Numbers(i, time);
        if (!IsDefault(table[i], numbers, {})) texts[i] = std::get<std::string>(EffectValueOf(table[i], numbers, {}));
    }
    const std::vector<bool> hidden = instance.TheDrawer().Hidden(texts);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].path) SetSwitch(instance.Parameter(i), kOfxParamPropSecret, hidden[i]);
    }
    const bool hasTexture = instance.Texture().MayHaveImage();
    for (const char* name : {kTextureBlendModeName, kTextureStrengthName})
        SetSwitch(instance.Parameter(name), kOfxParamPropEnabled, hasTexture);
}

OfxStatus InstanceChanged(Instance& instance, const Properties& arguments) {
    const OfxTime time = TimeOf(arguments);
    const std::string type = arguments.String(kOfxPropType).value_or("");
    const std::string name = arguments.String(kOfxPropName).value_or("");
    const std::string reason = arguments.String(kOfxPropChangeReason).value_or(kOfxChangeUserEdited);
    if (type == kOfxTypeParameter && name == kLoadPresetName)
        return reason == kOfxChangeUserEdited ? LoadPreset(instance, time) : kOfxStatReplyDefault;
    // Rows follow popups and the texture, also when time has moved to other values of them.
    const std::size_t place = PlaceOf(name);
    const bool isPopup = place < ParameterTable().size() && ParameterTable()[place].kind == ParameterKind::kChoice;
    if (!isPopup && name != kTextureClipName) return kOfxStatReplyDefault;
    UpdateRows(instance, time);
    return kOfxStatOK;
}

}  // namespace umbrant::openfx
