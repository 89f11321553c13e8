// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The session that `umbrant render` draws with, for one picture as for many.

#include <fmt/format.h>

#include "host/cli/color/render_colors.h"
#include "host/cli/option_checks.h"
#include "host/cli/recipe/like.h"
#include "host/cli/render/render_options.h"
#include "host/cli/settings.h"
#include "host/render/plan/frame_limits.h"
#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

std::optional<std::pair<double, double>> ParsePoint(const std::string& text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos) return std::nullopt;
    const std::string numbers[] = {text.substr(0, comma), text.substr(comma + 1)};
    for (const std::string& number : numbers) {
        if (!OutOfRange(number, -kFarthestTexture, kFarthestTexture).empty()) return std::nullopt;
    }
    return std::pair(std::stod(numbers[0]), std::stod(numbers[1]));
}

std::string ValidatePoint(const std::string& text) {
    if (ParsePoint(text)) return "";
    return fmt::format("'{}' is not a position X,Y with numbers from -{} to {}", text, kFarthestTexture,
                       kFarthestTexture);
}

Failure Explain(const Failure& failure, const EffectSession& session) {
    return ExplainWithoutOpenGL(failure, session.Params());
}

Result<OpenedEffect> OpenWithValues(const RenderOptions& options, int layerWidth, int layerHeight, double frame) {
    SessionOptions about;
    about.layerWidth = layerWidth;
    about.layerHeight = layerHeight;
    if (options.collapsed) about.layerFlags |= AEGP_LayerFlag_COLLAPSE;
    const auto preference = TRY(ReadRendererPreference(options.renderer));
    about.renderer = RendererOfSetUp(preference);
    const auto rate = TRY(ParseRate(options.sequence.rate.empty() ? "24" : options.sequence.rate));
    auto opened = TRY(OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module), about));
    OpenedEffect effect{std::move(opened), {}, {rate.PerSecond(), static_cast<double>(options.sequence.zeroFrame)}};
    EffectSession& session = effect.Session();
    effect.params.values = session.Params();
    TRY(ApplyRecipeValues(options, effect.params));
    TRY(ApplyValues(options.preset, options.settings, effect.params));
    session.Params() = effect.params.animation.ValuesAt(effect.params.values, frame, effect.clock);
    if (options.colors) options.colors->ConvertValues(session.Params());
    if (auto updated = session.UpdateParamsUI(); !updated) return Explain(updated.error(), session);
    return effect;
}

}  // namespace umbrant::host
