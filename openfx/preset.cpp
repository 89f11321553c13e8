// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The preset loader. A preset sets values; keyframes belong to the host, whose curves are its own.

#include <string>
#include <vector>

#include "openfx/abi/message_suite.h"
#include "openfx/actions.h"
#include "openfx/host/messages.h"
#include "openfx/host/refusal.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

/// One step of undo for everything that is set while it exists.
class Edit {
 public:
    Edit(OfxParamSetHandle parameters, const char* label) : parameters_(parameters) {
        const auto begin = TheSuites().parameter->paramEditBegin;
        isOpen_ = begin && begin(parameters, label) == kOfxStatOK;
    }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;
    ~Edit() {
        if (isOpen_ && TheSuites().parameter->paramEditEnd) TheSuites().parameter->paramEditEnd(parameters_);
    }

 private:
    OfxParamSetHandle parameters_;
    bool isOpen_ = false;
};

std::string FileOf(const Instance& instance) {
    const OfxParamHandle parameter = instance.Parameter(kPresetFileName);
    char* text = nullptr;
    if (parameter && TheSuites().parameter->paramGetValue(parameter, &text) == kOfxStatOK && text && *text) return text;
    throw Refusal(kOfxStatFailed, "no preset file is chosen; enter the path of one in 'Preset File' first");
}

/// The layer that points of a preset refer to: the source, or the project where there is none.
struct Layer {
    LayerPlace place{};
    double width = 0;
    double height = 0;
};

Layer LayerOf(const Instance& instance, OfxTime time) {
    const double aspect = instance.Source().PixelAspect();
    const auto region = instance.Source().Region(time);
    if (const auto full = region ? FullPixels(*region, aspect) : std::nullopt) {
        return {PlaceOfImage(*full, {}, aspect), static_cast<double>(full->x2 - full->x1),
                static_cast<double>(full->y2 - full->y1)};
    }
    const auto size = instance.Set().Doubles<2>(kOfxImageEffectPropProjectSize).value_or(std::array<double, 2>{});
    return {{0, size[1], aspect}, size[0] / aspect, size[1]};
}

bool SetValue(OfxParamHandle parameter, const ParameterRow& row, const HostNumbers& numbers) {
    const auto set = TheSuites().parameter->paramSetValue;
    switch (row.kind) {
        case ParameterKind::kChoice:
        case ParameterKind::kInteger:
            return set(parameter, static_cast<int>(numbers[0])) == kOfxStatOK;
        case ParameterKind::kColor:
            return set(parameter, numbers[0], numbers[1], numbers[2]) == kOfxStatOK;
        case ParameterKind::kPoint:
            return set(parameter, numbers[0], numbers[1]) == kOfxStatOK;
        default:
            return set(parameter, numbers[0]) == kOfxStatOK;
    }
}

}  // namespace

OfxStatus LoadPreset(Instance& instance, OfxTime time) {
    const std::string file = FileOf(instance);
    const Layer layer = LayerOf(instance, time);
    bool hasKeyframes = false;
    const std::vector<std::string> texts =
        instance.TheDrawer().PresetTexts(file, instance.ValuesAt(time, layer.place), hasKeyframes);
    std::string refused;
    {
        const Edit edit(instance.ParameterSet(), "Load Preset");
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const ParameterRow& row = ParameterTable()[i];
            const OfxParamHandle parameter = instance.Parameter(i);
            if (texts[i].empty() || !parameter) continue;
            const auto numbers = HostNumbersOf(row, texts[i], layer.place, layer.width, layer.height);
            if (!numbers || !SetValue(parameter, row, *numbers)) refused += (refused.empty() ? "" : ", ") + texts[i];
        }
    }
    UpdateRows(instance, time);
    if (!refused.empty()) {
        throw Refusal(kOfxStatFailed, "the host did not take these values of the preset '" + file + "': " + refused);
    }
    if (hasKeyframes) {
        ShowMessage(
            instance.Handle(), kOfxMessageWarning,
            ("the keyframes of the preset '" + file + "' were not loaded; set them in this application").c_str());
    }
    return kOfxStatOK;
}

}  // namespace umbrant::openfx
