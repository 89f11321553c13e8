// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/effect_state.h"

#include <memory>
#include <mutex>
#include <utility>

#include "host/library/errors.h"
#include "host/parameters/param_kind.h"

namespace umbrant {

using namespace host;

Rectangle host::RectangleOf(const PF_LRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

bool host::IsEmpty(const Rectangle& place) {
    return place.left >= place.right || place.top >= place.bottom;
}

Effect::State::State(SharedInstance started, std::function<void(const std::string&)> report)
    : instance(std::move(started)),
      message(std::move(report)),
      declared(instance.Session().Params()),
      params{declared, {}} {}

void Effect::State::UpdatePanel() {
    if (!std::exchange(isChanged, false)) return;
    EffectSession& session = instance.Session();
    const std::lock_guard lock(instance.Shared().loaded->mutex);
    session.Params() = params.values;
    if (auto updated = session.UpdateParamsUI(); !updated) Throw(Explained(updated.error()));
    params.values = session.Params();
}

ParamSet Effect::State::ValuesAt(const FrameOptions& options) {
    const std::lock_guard lock(mutex);
    UpdatePanel();
    const AnimationClock clock = ClockOf(options);
    return params.animation.ValuesAt(params.values, clock.FrameOf(options.seconds), clock);
}

ParamSet Effect::State::ValuesAt(const ValueStore& store, const FrameOptions& options) {
    if (!HaveSameRows(declared, store.base->values)) {
        Refuse("the values belong to an effect with other parameters; take them from CurrentValues() of this one");
    }
    ParamSet values = store.At(options);
    const std::lock_guard lock(mutex);
    // Data of the effect's own belongs to the instance.
    for (const ParamRow& row : params.values.Rows()) {
        if (KindOf(row.def) == ParamKind::kCustom) values.SetValue(row.index, row.def.u, row.point);
    }
    return values;
}

ValueStore Effect::State::Snapshot() {
    const std::lock_guard lock(mutex);
    UpdatePanel();
    return {std::make_shared<const AnimatedParams>(params), {}};
}

Failure Effect::State::Explained(const Failure& failure) {
    return instance.Renderer().processor ? failure : ExplainWithoutOpenGL(failure, declared);
}

/// Calls what sends a frame's commands; for itself, where the effect cannot do with others at the same time.
template <typename Call>
auto Effect::State::Send(Call call) {
    std::unique_lock lock(instance.Shared().loaded->mutex, std::defer_lock);
    if (!instance.Shared().drawsOnThreads) lock.lock();
    auto answer = call();
    if (!answer) Throw(Explained(answer.error()));
    return std::move(*answer);
}

Frame Effect::State::Draw(const Layers& layers, const FrameOptions& options, const ParamSet& values) {
    const FrameRequest request = RequestOf(layers, options, values);
    Frame frame = Send([&] { return instance.Render(request); });
    if (!frame.message.empty() && message) message(frame.message);
    return frame;
}

Rectangle Effect::State::Place(const Layers& layers, const FrameOptions& options, const ParamSet& values) {
    FrameRequest request = RequestOf(layers, options, values);
    const auto ask = [&] { return instance.Session().PreRender(request); };
    // As a frame does it: asked about the layer first, and then for everything that there could be.
    request.region = Send(ask).maxRect;
    const Rectangle place = RectangleOf(Send(ask).resultRect);
    return IsEmpty(place) ? Rectangle{0, 0, layers.layer.Width(), layers.layer.Height()} : place;
}

}  // namespace umbrant
