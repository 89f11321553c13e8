// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The beginning and the end of an instance.

#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "openfx/actions.h"
#include "openfx/host/refusal.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

// By their handles, so that an instance ends also where the host does not return its pointer.
std::mutex theMutex;
std::map<OfxImageEffectHandle, std::unique_ptr<Instance>> theInstances;

void Keep(OfxImageEffectHandle effect, std::unique_ptr<Instance> instance) {
    const std::lock_guard lock(theMutex);
    theInstances[effect] = std::move(instance);
}

std::unique_ptr<Instance> LetGo(OfxImageEffectHandle effect) {
    const std::lock_guard lock(theMutex);
    const auto found = theInstances.find(effect);
    if (found == theInstances.end()) return nullptr;
    auto instance = std::move(found->second);
    theInstances.erase(found);
    return instance;
}

/// Moves Origin to where its default is meant to be, in a host that takes no parts of the project's size. Once: the
/// note about it is saved with the project.
void PlaceOrigin(Instance& instance) {
    const OfxParamHandle note = instance.Parameter(kOriginIsRelativeName);
    const OfxParamHandle origin = instance.Parameter(kOriginName);
    if (!note || !origin || instance.Number(kOriginIsRelativeName, 0) == 0) return;
    const auto size = instance.Set().Doubles<2>(kOfxImageEffectPropProjectSize);
    if (!size || !((*size)[0] > 0 && (*size)[1] > 0)) return;
    const auto offset = instance.Set().Doubles<2>(kOfxImageEffectPropProjectOffset).value_or(std::array<double, 2>{});
    const HostNumbers part = instance.Numbers(PlaceOf(kOriginName), 0);
    const OfxParameterSuiteV1& suite = *TheSuites().parameter;
    if (suite.paramSetValue(origin, part[0] * (*size)[0] + offset[0], part[1] * (*size)[1] + offset[1]) == kOfxStatOK)
        suite.paramSetValue(note, 0);
}

void ShowRenderer(const Instance& instance) {
    const OfxParamHandle label = instance.Parameter(kDrawnByName);
    if (!label) return;
    const std::string text = instance.TheDrawer().RendererText();
    const OfxParameterSuiteV1& suite = *TheSuites().parameter;
    char* shown = nullptr;
    // Setting what is there already would mark the project as changed in some hosts.
    if (suite.paramGetValue(label, &shown) == kOfxStatOK && shown && text == shown) return;
    suite.paramSetValue(label, text.c_str());
}

}  // namespace

OfxStatus CreateInstance(OfxImageEffectHandle effect) {
    auto created = std::make_unique<Instance>(effect);
    Instance& instance = *created;
    if (!instance.Set().Set(kOfxPropInstanceData, static_cast<void*>(&instance)))
        throw Refusal(kOfxStatFailed, "the host does not keep the data of this effect's instances");
    Keep(effect, std::move(created));
    try {
        PlaceOrigin(instance);
        ShowRenderer(instance);
        UpdateRows(instance, 0);
    } catch (...) {
        // The panel is then as described; frames do not depend on it.
    }
    return kOfxStatOK;
}

OfxStatus DestroyInstance(OfxImageEffectHandle effect) {
    const std::unique_ptr<Instance> instance = LetGo(effect);
    OfxPropertySetHandle set = nullptr;
    if (TheSuites().effect->getPropertySet(effect, &set) == kOfxStatOK)
        Properties(set).Set(kOfxPropInstanceData, static_cast<void*>(nullptr));
    return kOfxStatOK;
}

}  // namespace umbrant::openfx
