// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The values of parameters over time.

#include "tests/openfx/host/param.h"

#include <algorithm>
#include <utility>

#include "tests/openfx/host/host.h"

namespace umbrant::ofx {

namespace {

std::vector<std::string> KindsOf(std::string_view type, std::vector<std::string> own) {
    std::vector<std::string> kinds = {"parameter (all)"};
    const bool container = type == "OfxParamTypeGroup" || type == "OfxParamTypePage";
    if (!container) kinds.push_back("parameter (all but group, page)");
    if (!container && type != "OfxParamTypePushButton") kinds.push_back("parameter (with value)");
    for (std::string& kind : own) kinds.push_back("parameter (" + std::move(kind) + ")");
    return kinds;
}

const std::vector<ParamType>& ParamTypes() {
    static const std::vector<ParamType> types = [] {
        std::vector<ParamType> rows;
        const auto add = [&](std::string_view name, std::string_view value, int count, std::vector<std::string> own) {
            rows.push_back({name, value, count, KindsOf(name, std::move(own))});
        };
        const std::vector<std::string> points = {"numeric", "double", "double 2D, 3D", "spatial double"};
        add("OfxParamTypeInteger", "int", 1, {"numeric"});
        add("OfxParamTypeInteger2D", "int", 2, {"numeric", "int 2D, 3D"});
        add("OfxParamTypeInteger3D", "int", 3, {"numeric", "int 2D, 3D"});
        add("OfxParamTypeDouble", "double", 1, {"numeric", "double", "double 1D", "spatial double"});
        add("OfxParamTypeDouble2D", "double", 2, points);
        add("OfxParamTypeDouble3D", "double", 3, points);
        add("OfxParamTypeBoolean", "int", 1, {});
        add("OfxParamTypeChoice", "int", 1, {"choice"});
        add("OfxParamTypeRGB", "double", 3, {});
        add("OfxParamTypeRGBA", "double", 4, {});
        add("OfxParamTypeString", "string", 1, {"string"});
        add("OfxParamTypeCustom", "string", 1, {"custom"});
        add("OfxParamTypePushButton", "", 0, {});
        add("OfxParamTypeGroup", "", 0, {"group"});
        add("OfxParamTypePage", "", 0, {"page"});
        return rows;
    }();
    return types;
}

PropertySetKind KindOfParam(const std::string& name, const ParamType& type, bool instance) {
    return {"the parameter " + name, type.kinds, instance ? Access::kSomeWritable : Access::kWritable, type.value,
            type.count};
}

}  // namespace

const ParamType* FindParamType(std::string_view name) {
    for (const ParamType& type : ParamTypes()) {
        if (type.name == name) return &type;
    }
    return nullptr;
}

Param::Param(Host& host, std::string name, const ParamType& type, bool instance)
    : Object(host), name_(std::move(name)), type_(type), properties_(host, KindOfParam(name_, type, instance)) {
    for (const char* label :
         {"OfxPropName", "OfxPropLabel", "OfxPropShortLabel", "OfxPropLongLabel", "OfxParamPropScriptName"}) {
        properties_.Put(label, {name_});
    }
    properties_.Put("OfxPropType", {"OfxTypeParameter"});
    properties_.Put("OfxParamPropType", {std::string(type.name)});
}

ParamValue Param::At(double time) const {
    const std::lock_guard lock(mutex_);
    if (keys_.empty()) return constant_;
    const auto after = keys_.upper_bound(time);
    if (after == keys_.begin()) return after->second;
    const auto before = std::prev(after);
    if (after == keys_.end() || type_.value != "double") return before->second;
    const double part = (time - before->first) / (after->first - before->first);
    ParamValue value = before->second;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const double from = std::get<double>(before->second[i]), to = std::get<double>(after->second[i]);
        value[i] = from + part * (to - from);
    }
    return value;
}

ParamValue Param::Constant() const {
    const std::lock_guard lock(mutex_);
    return keys_.empty() ? constant_ : keys_.begin()->second;
}

void Param::Set(ParamValue value) {
    const std::lock_guard lock(mutex_);
    constant_ = std::move(value);
}

void Param::SetKey(double time, ParamValue value) {
    const std::lock_guard lock(mutex_);
    keys_[time] = std::move(value);
}

std::vector<double> Param::KeyTimes() const {
    const std::lock_guard lock(mutex_);
    std::vector<double> times;
    for (const auto& [time, value] : keys_) times.push_back(time);
    return times;
}

bool Param::RemoveKey(double time) {
    const std::lock_guard lock(mutex_);
    return keys_.erase(time) > 0;
}

void Param::RemoveKeys() {
    const std::lock_guard lock(mutex_);
    keys_.clear();
}

ParamSet::ParamSet(Host& host, std::string label, bool instance)
    : Object(host), instance_(instance), properties_(host, {std::move(label), {"parameter set"}, Access::kWritable}) {}

Param* ParamSet::Find(std::string_view name) const {
    for (const auto& param : params_) {
        if (param->Name() == name) return param.get();
    }
    return nullptr;
}

Param& ParamSet::Add(const std::string& name, const ParamType& type) {
    params_.push_back(std::make_unique<Param>(TheHost(), name, type, instance_));
    params_.back()->owner = this;
    return *params_.back();
}

void ParamSet::Instantiate(const ParamSet& descriptor) {
    const HostOptions& options = TheHost().Options();
    for (const auto& from : descriptor.All()) {
        Param& param = Add(from->Name(), from->Type());
        param.Properties().CopyFrom(from->Properties());
        param.Properties().Put("OfxPropType", {"OfxTypeParameterInstance"});
        ParamValue value;
        for (int i = 0; i < from->Type().count; ++i) {
            if (from->Type().value == "int") value.emplace_back(from->Properties().Int("OfxParamPropDefault", i));
            if (from->Type().value == "string") value.emplace_back(from->Properties().String("OfxParamPropDefault", i));
            if (from->Type().value != "double") continue;
            double number = from->Properties().Double("OfxParamPropDefault", i);
            if (from->Properties().String("OfxParamPropDefaultCoordinateSystem") == "OfxParamCoordinatesNormalised") {
                number *= i == 0 ? options.projectWidth : options.projectHeight;
            }
            value.emplace_back(number);
        }
        param.Set(std::move(value));
    }
}

}  // namespace umbrant::ofx
