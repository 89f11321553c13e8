// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect of the process, its panel and its presets.

#include "openfx/drawer.h"

#include <utility>

#include "openfx/module_file.h"
#include "openfx/parameters/parameter_table.h"

namespace umbrant::openfx {

namespace {

std::mutex theMutex;
std::shared_ptr<Drawer> theDrawer;

}  // namespace

std::shared_ptr<Drawer> Drawer::Shared() {
    const std::lock_guard lock(theMutex);
    if (!theDrawer) {
        EffectOptions options;
        options.module = ModuleFile();
        theDrawer = std::make_shared<Drawer>(options);
    }
    return theDrawer;
}

void Drawer::Release() noexcept {
    std::shared_ptr<Drawer> last;
    const std::lock_guard lock(theMutex);
    last.swap(theDrawer);
}

Drawer::Drawer(const EffectOptions& options) : effect_(options), defaults_(effect_.CurrentValues()) {
    for (const ParameterRow& row : ParameterTable()) rows_.push_back(row.path ? effect_.Find(row.path).index : -1);
}

std::string Drawer::RendererText() const {
    constexpr std::string_view kPrefix = "drawn by ";
    const std::string text = effect_.RendererText();
    return text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text;
}

std::vector<bool> Drawer::Hidden(const std::vector<std::string>& popupTexts) {
    const auto table = ParameterTable();
    const std::lock_guard lock(panel_);
    effect_.Reset();
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!popupTexts[i].empty()) effect_.Set(table[i].path, popupTexts[i]);
    }
    std::vector<bool> hidden(table.size(), false);
    const std::vector<Parameter> parameters = effect_.Parameters();
    for (const Parameter& parameter : parameters) {
        for (std::size_t i = 0; i < table.size(); ++i) {
            if (rows_[i] == parameter.index) hidden[i] = parameter.isHidden;
        }
    }
    return hidden;
}

std::vector<std::string> Drawer::PresetTexts(const std::string& file, const Values& current, bool& hasKeyframes) {
    const auto table = ParameterTable();
    std::vector<std::string> texts(table.size());
    const std::lock_guard lock(panel_);
    effect_.Reset();
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (IsEffectValue(table[i])) effect_.Set(table[i].path, current.Get(rows_[i]));
    }
    effect_.LoadPreset(file);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!IsEffectValue(table[i])) continue;
        const std::string text = effect_.Get(table[i].path);
        if (text != current.Get(rows_[i])) texts[i] = text;
    }
    hasKeyframes = effect_.PresetText().find("\"keyframes\"") != std::string::npos;
    return texts;
}

}  // namespace umbrant::openfx
