// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/settings.h"

#include <fmt/format.h>

namespace umbrant::host {

Result<Done> ApplySettings(const std::vector<std::string>& settings, ParamSet& params) {
    for (const std::string& setting : settings) {
        const std::size_t equals = setting.find('=');
        if (equals == std::string::npos) {
            return Failure{ErrorKind::kUsage, fmt::format("'--set {}' has no value; write --set PATH=VALUE", setting)};
        }
        if (auto set = params.SetFromText(setting.substr(0, equals), setting.substr(equals + 1)); !set) return set;
    }
    return Done{};
}

Result<Done> ApplyValues(const std::string& preset, const std::vector<std::string>& settings, AnimatedParams& params) {
    if (!preset.empty()) {
        if (auto applied = ApplyPreset(preset, params); !applied) return applied;
    }
    if (auto applied = ApplySettings(settings, params.values); !applied) return applied;
    for (const std::string& setting : settings) {
        if (const auto row = params.values.Find(setting.substr(0, setting.find('=')))) params.animation.Remove(*row);
    }
    return Done{};
}

}  // namespace umbrant::host
