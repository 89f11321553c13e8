// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What an engine answers about time: timelines, curves, presets.

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/parameters/echo_text.h"
#include "host/preview/access.h"
#include "host/preview/engine/answers.h"
#include "host/preview/engine/preview_engine.h"
#include "host/preview/time/keyframe_json.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

/// Points of a curve, at least; a frame of a short timeline has several.
constexpr int kCurveSteps = 240;

}  // namespace

HttpReply PreviewEngine::Timeline(const DrawRequest& request) {
    const auto find = [&](int number) { return number == 0 ? nullptr : layers_.Find(number); };
    const auto layer = find(request.layer);
    const auto texture = find(request.texture);
    // Files may have come since.
    shots_.Forget();
    const auto plan = shots_.PlanFor(request, layer && layer->IsMoving(), texture && texture->IsMoving());
    if (!plan) return Refused(plan.error());
    Json numbers = Json::array();
    Json missing = Json::array();
    for (std::size_t i = 0; i < (*plan)->frames.size(); ++i) {
        const PlannedFrame& frame = (*plan)->frames[i];
        numbers.push_back(frame.number.Value());
        if (frame.state != PlannedFrame::State::kDraw) missing.push_back(i);
    }
    return JsonReply({{"numbers", numbers}, {"missing", missing}, {"framesPerSecond", (*plan)->framesPerSecond}});
}

HttpReply PreviewEngine::Curves(const DrawRequest& request) {
    const auto plan = shots_.PlanFor(request, false, false);
    if (!plan) return Refused(plan.error());
    const auto animation = AnimationOf(request);
    if (!animation) return Refused(animation.error());
    AnimatedParams params{defaults_, **animation};
    const auto& frames = (*plan)->frames;
    return JsonReply(CurvesJson(params, ClockOf({*plan, nullptr}), frames.front().number.Value(),
                                frames.back().number.Value(), kCurveSteps));
}

HttpReply PreviewEngine::SavePreset(const DrawRequest& request) {
    if (IsGone()) return Refusal(409, "the module is not running; start it again");
    if (auto set = SetValues(request, {}); !set) return Refused(set.error());
    const auto params = ParamsOf(request);
    if (!params) return Refused(params.error());
    return {200, "application/json", PresetText(*params)};
}

HttpReply PreviewEngine::LoadPreset(const std::string& name, const std::string& text) {
    AnimatedParams params{defaults_, {}};
    if (auto applied = ApplyPresetText(text, name, params); !applied) return Refused(applied.error());
    return JsonReply(ValuesJson(params));
}

HttpReply PreviewEngine::LoadNamedPreset(const std::string& name) {
    auto presets = options_.presets ? options_.presets() : Result(std::vector<OfferedPreset>());
    if (!presets) return Refused(presets.error());
    // Names of the list only: a page names no files.
    for (const OfferedPreset& preset : *presets) {
        if (preset.name != name) continue;
        AnimatedParams params{defaults_, {}};
        if (auto applied = ApplyPreset(preset.file, params); !applied) return Refused(applied.error());
        return JsonReply(ValuesJson(params));
    }
    return Refusal(404, fmt::format("there is no preset '{}' any more; load the page again", EchoText(name)));
}

HttpReply PreviewEngine::ReloadPreset() {
    auto values = BeginningValues();
    return values ? JsonReply(*values) : Refused(values.error());
}

}  // namespace umbrant::host
