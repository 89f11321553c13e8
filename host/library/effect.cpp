// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's main class: its life, its parameters and what it says of itself. Frames are in effect_frames.cpp.

#include <umbrant/effect.h>

#include <fmt/format.h>

#include <mutex>
#include <utility>

#include "host/animation/preset.h"
#include "host/library/effect_state.h"
#include "host/library/errors.h"
#include "host/library/parameter_list.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/set_row.h"

namespace umbrant {

using namespace host;

Error::Error(ErrorCode code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}
Error::Error(const Error&) noexcept = default;
Error::~Error() = default;

std::string Version() {
    return UMBRANT_VERSION;
}

Effect::Effect(const EffectOptions& options) {
    SharedModuleRequest request;
    request.file = options.module;
    request.advice = options.moduleAdvice;
    if (options.renderer == Renderer::kOpenGL) request.renderer = RendererPreference::kOpenGL;
    if (options.renderer == Renderer::kProcessor) request.renderer = RendererPreference::kProcessor;
    request.collapsed = options.collapsed;
    state_ = std::make_unique<State>(Need(SharedInstance::Start(request)), options.message);
    const std::lock_guard lock(state_->mutex);
    state_->UpdatePanel();
}

Effect::~Effect() = default;
Effect::Effect(Effect&&) noexcept = default;
Effect& Effect::operator=(Effect&&) noexcept = default;

void Effect::Set(std::string_view path, std::string_view value) {
    const std::lock_guard lock(state_->mutex);
    AnimatedParams& params = state_->params;
    Need(params.values.SetFromText(path, value));
    params.animation.Remove(Need(params.values.Find(path)));
    state_->isChanged = true;
}

void Effect::Set(std::string_view path, double value) {
    Set(path, fmt::format("{}", value));
}

void Effect::Set(std::string_view path, const Color& value) {
    const std::lock_guard lock(state_->mutex);
    AnimatedParams& params = state_->params;
    const int index = Need(params.values.Find(path));
    Need(SetRowColor(params.values.RawRow(index), {value.red, value.green, value.blue}));
    params.animation.Remove(index);
    state_->isChanged = true;
}

std::string Effect::Get(std::string_view path) const {
    const std::lock_guard lock(state_->mutex);
    return state_->params.values.ValueText(Need(state_->params.values.Find(path)));
}

void Effect::Reset() {
    const std::lock_guard lock(state_->mutex);
    state_->params = {state_->declared, {}};
    state_->isChanged = true;
}

void Effect::ApplyPreset(std::string_view json) {
    const std::lock_guard lock(state_->mutex);
    auto applied = ApplyPresetText(std::string(json), "in memory", state_->params);
    // Without a file a text that is no JSON is an argument that makes no sense.
    if (!applied && applied.error().kind == ErrorKind::kFile) Refuse(applied.error().sentence);
    Need(std::move(applied));
    state_->isChanged = true;
}

void Effect::LoadPreset(const std::string& file) {
    const std::lock_guard lock(state_->mutex);
    Need(host::ApplyPreset(file, state_->params));
    state_->isChanged = true;
}

std::string Effect::PresetText() const {
    const std::lock_guard lock(state_->mutex);
    return host::PresetText(state_->params);
}

Values Effect::CurrentValues() const {
    return Values(std::make_unique<Values::State>(Values::State{state_->Snapshot()}));
}

std::vector<Parameter> Effect::Parameters() const {
    const std::lock_guard lock(state_->mutex);
    state_->UpdatePanel();
    const std::vector<PanelRow> panel = state_->instance.Session().Panel().Rows();
    std::vector<Parameter> parameters;
    for (const ParamRow& row : state_->declared.Rows()) {
        if (KindOf(row.def) == ParamKind::kGroupEnd) continue;
        parameters.push_back(
            DescribeParameter(state_->declared, row.index, panel[static_cast<std::size_t>(row.index)]));
    }
    return parameters;
}

Parameter Effect::Find(std::string_view path) const {
    const int index = Need(state_->declared.Find(path));
    const std::lock_guard lock(state_->mutex);
    state_->UpdatePanel();
    const std::vector<PanelRow> panel = state_->instance.Session().Panel().Rows();
    return DescribeParameter(state_->declared, index, panel[static_cast<std::size_t>(index)]);
}

std::string Effect::Name() const {
    return state_->instance.Shared().loaded->module.Effect().name;
}

std::string Effect::ModuleFile() const {
    return state_->instance.Shared().loaded->module.File().string();
}

std::string Effect::RendererText() const {
    return host::RendererText(state_->instance.Renderer());
}

Renderer Effect::ChosenRenderer() const {
    return state_->instance.Renderer().processor ? Renderer::kProcessor : Renderer::kOpenGL;
}

}  // namespace umbrant
