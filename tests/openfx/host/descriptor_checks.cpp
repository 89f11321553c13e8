// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a description must have: properties, clips, parameters that agree with each other.

#include <algorithm>
#include <set>

#include "tests/openfx/host/plugin.h"

namespace umbrant::ofx {

namespace {

class ParamChecks {
 public:
    ParamChecks(Param& param, const ParamSet& set) : param_(param), set_(set), properties_(param.Properties()) {}

    void Run(std::set<std::string>& earlier) {
        if (properties_.Has("OfxPropLabel") && properties_.String("OfxPropLabel").empty()) Wrong("has an empty label");
        if (properties_.Has("OfxParamPropScriptName") && properties_.String("OfxParamPropScriptName").empty()) {
            Wrong("has an empty script name");
        }
        CheckParent(earlier);
        CheckChoice();
        CheckLimits();
        if (param_.Type().name == "OfxParamTypePage") {
            for (const std::string& child : properties_.Strings("OfxParamPropPageChild")) {
                if (set_.Find(child) == nullptr && !child.starts_with("OfxParamPageSkip")) {
                    Wrong("has the child " + child + ", which is no parameter");
                }
            }
        }
        earlier.insert(param_.Name());
    }

 private:
    void Wrong(const std::string& what) {
        param_.TheHost().record.Violation("the parameter " + param_.Name() + " " + what);
    }

    void CheckParent(const std::set<std::string>& earlier) {
        const std::string parent = properties_.String("OfxParamPropParent");
        if (parent.empty()) return;
        const Param* group = set_.Find(parent);
        if (group == nullptr || group->Type().name != "OfxParamTypeGroup") {
            Wrong("is in " + parent + ", which is no group");
        } else if (!earlier.contains(parent)) {
            Wrong("is in the group " + parent + ", which is defined after it");
        }
    }

    void CheckChoice() {
        if (param_.Type().name != "OfxParamTypeChoice") return;
        const std::vector<std::string> items = properties_.Strings("OfxParamPropChoiceOption");
        const int value = properties_.Int("OfxParamPropDefault");
        if (!properties_.Has("OfxParamPropChoiceOption")) return;
        if (items.empty()) Wrong("has no options");
        if (!items.empty() && (value < 0 || value >= static_cast<int>(items.size()))) {
            Wrong("has the default " + std::to_string(value) + ", which is no option");
        }
        if (std::set<std::string>(items.begin(), items.end()).size() != items.size()) Wrong("has an option twice");
        if (std::count(items.begin(), items.end(), "") > 0) Wrong("has an option without a text");
    }

    double Number(const char* name, int index) {
        return param_.Type().value == "int" ? properties_.Int(name, index) : properties_.Double(name, index);
    }

    void CheckLimits() {
        const auto& kinds = param_.Type().kinds;
        if (std::find(kinds.begin(), kinds.end(), "parameter (numeric)") == kinds.end()) return;
        for (int i = 0; i < param_.Type().count; ++i) {
            const bool known = properties_.Has("OfxParamPropDefault");
            const double value = Number("OfxParamPropDefault", i);
            const bool limits = properties_.WasSet("OfxParamPropMin") && properties_.WasSet("OfxParamPropMax");
            const double low = Number("OfxParamPropMin", i), high = Number("OfxParamPropMax", i);
            if (limits && !(low <= high)) Wrong("has its minimum above its maximum");
            if (limits && known && !(low <= value && value <= high)) Wrong("has its default outside of its limits");
            const bool shown =
                properties_.WasSet("OfxParamPropDisplayMin") && properties_.WasSet("OfxParamPropDisplayMax");
            const double from = Number("OfxParamPropDisplayMin", i), to = Number("OfxParamPropDisplayMax", i);
            if (shown && !(from < to)) Wrong("has an empty slider");
            if (shown && limits && (from < low || to > high)) Wrong("has a slider that leaves its limits");
        }
    }

    Param& param_;
    const ParamSet& set_;
    PropertySet& properties_;
};

}  // namespace

void CheckDescriptor(EffectObject& descriptor) {
    PropertySet& properties = descriptor.Properties();
    Record& record = descriptor.TheHost().record;
    for (const char* name : {"OfxPropLabel", "OfxImageEffectPluginPropGrouping", "OfxImageEffectPropSupportedContexts",
                             "OfxImageEffectPropSupportedPixelDepths"}) {
        if (properties.Has(name) && properties.String(name).empty()) {
            record.Violation("OfxActionDescribe did not set " + std::string(name));
        }
    }
}

void CheckContext(EffectObject& context, const std::string& name) {
    Record& record = context.TheHost().record;
    const auto violation = [&](const std::string& what) { record.Violation(name + ": " + what); };
    if (context.FindClip("Output") == nullptr) violation("no clip Output is defined");
    if (name == kFilter && context.FindClip("Source") == nullptr) violation("no clip Source is defined");
    for (const auto& clip : context.Clips()) {
        PropertySet& properties = clip->Properties();
        const char* components = "OfxImageEffectPropSupportedComponents";
        if (properties.Has(components) && properties.Count(components) == 0) {
            violation("the clip " + clip->Name() + " has no components");
        }
        const bool own = clip->Name() == "Source" || clip->Name() == "Output";
        if (name == kFilter && !own && properties.Has("OfxImageClipPropOptional") &&
            properties.Int("OfxImageClipPropOptional") == 0) {
            violation("the clip " + clip->Name() + " must be optional in a filter");
        }
    }
    std::set<std::string> earlier;
    std::set<std::string> scripts;
    for (const auto& param : context.Params().All()) {
        ParamChecks(*param, context.Params()).Run(earlier);
        if (!param->Properties().Has("OfxParamPropScriptName")) continue;
        const std::string script = param->Properties().String("OfxParamPropScriptName");
        if (!scripts.insert(script).second) violation("two parameters have the script name " + script);
    }
}

}  // namespace umbrant::ofx
