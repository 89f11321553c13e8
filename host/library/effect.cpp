// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's one class: parameters under a lock, and frames outside of it.

#include <umbrant/effect.h>

#include <fmt/format.h>

#include <mutex>
#include <utility>

#include "host/animation/preset.h"
#include "host/library/effect_request.h"
#include "host/library/errors.h"
#include "host/library/parameter_list.h"
#include "host/library/pixel_order.h"
#include "host/library/shared_module.h"
#include "host/parameters/param_kind.h"
#include "host/process/fork_lock.h"

namespace umbrant {

using namespace host;

namespace {

Rectangle RectangleOf(const PF_LRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

bool IsEmpty(const Rectangle& place) {
    return place.left >= place.right || place.top >= place.bottom;
}

}  // namespace

Error::Error(ErrorCode code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}
Error::Error(const Error&) noexcept = default;
Error::~Error() = default;

std::string Version() {
    return UMBRANT_VERSION;
}

struct Effect::State {
    State(SharedInstance started, std::function<void(const std::string&)> report)
        : instance(std::move(started)),
          message(std::move(report)),
          declared(instance.Session().Params()),
          params{declared, {}} {}

    /// Lets the effect see what was set since it last did. With `mutex` held.
    void UpdatePanel() {
        if (!std::exchange(isChanged, false)) return;
        EffectSession& session = instance.Session();
        const std::lock_guard lock(instance.Shared().loaded->mutex);
        session.Params() = params.values;
        if (auto updated = session.UpdateParamsUI(); !updated) Throw(Explained(updated.error()));
        params.values = session.Params();
    }

    /// The values of a moment.
    ParamSet ValuesAt(const FrameOptions& options) {
        const std::lock_guard lock(mutex);
        UpdatePanel();
        const AnimationClock clock{static_cast<double>(options.rate.frames) / options.rate.seconds, options.zeroFrame};
        return params.animation.ValuesAt(params.values, clock.FrameOf(options.seconds), clock);
    }

    Failure Explained(const Failure& failure) {
        return instance.Renderer().processor ? failure : ExplainWithoutOpenGL(failure, declared);
    }

    /// Calls what sends a frame's commands; for itself, where the effect cannot do with others at the same time.
    template <typename Call>
    auto Send(Call call) {
        std::unique_lock lock(instance.Shared().loaded->mutex, std::defer_lock);
        if (!instance.Shared().drawsOnThreads) lock.lock();
        auto answer = call(instance.Session());
        if (!answer) Throw(Explained(answer.error()));
        return std::move(*answer);
    }

    Frame Draw(const Layers& layers, const FrameOptions& options) {
        const ParamSet values = ValuesAt(options);
        const FrameRequest request = RequestOf(layers, options, values);
        Frame frame = Send([&](EffectSession& session) { return session.Render(request); });
        if (!frame.message.empty() && message) message(frame.message);
        return frame;
    }

    Rectangle Place(const Layers& layers, const FrameOptions& options) {
        const Rectangle frame{0, 0, layers.layer.Width(), layers.layer.Height()};
        if (options.canvas == umbrant::Canvas::kLayer) return frame;
        const ParamSet values = ValuesAt(options);
        FrameRequest request = RequestOf(layers, options, values);
        const auto ask = [&](EffectSession& session) { return session.PreRender(request); };
        // As a frame does it: asked about the layer first, and then for everything that there could be.
        request.region = Send(ask).maxRect;
        const Rectangle place = RectangleOf(Send(ask).resultRect);
        return IsEmpty(place) ? frame : place;
    }

    SharedInstance instance;
    const std::function<void(const std::string&)> message;
    const ParamSet declared;

    ForkLock mutex{ForkRank::kEffect};  ///< around what follows
    AnimatedParams params;
    bool isChanged = true;  ///< the effect has not seen the values
};

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

Rectangle Effect::Place(const ImageView& layer, const FrameOptions& options) const {
    CheckOptions(options);
    if (options.canvas == umbrant::Canvas::kGrow) return state_->Place(LayersOf(layer, options), options);
    Need(CheckView(layer, "the layer"));
    return {0, 0, layer.width, layer.height};
}

Image Effect::Render(const ImageView& layer, const FrameOptions& options) const {
    CheckOptions(options);
    const Layers layers = LayersOf(layer, options);
    const Frame frame = state_->Draw(layers, options);
    const bool isLayer = options.canvas == umbrant::Canvas::kLayer || IsEmpty(RectangleOf(frame.rect));
    Image image(isLayer ? Rectangle{0, 0, layer.width, layer.height} : RectangleOf(frame.rect), layer.format);
    CopyInto(frame.output, frame.rect.left - image.Place().left, frame.rect.top - image.Place().top, image.View());
    return image;
}

Rectangle Effect::RenderInto(const ImageView& layer, const MutableImageView& target,
                             const FrameOptions& options) const {
    CheckOptions(options);
    Need(CheckView(target, "the target"));
    if (target.format != layer.format)
        Refuse("the pixel formats of the target and the layer differ; they must be equal");
    const Layers layers = LayersOf(layer, options);
    const Rectangle place = state_->Place(layers, options);
    if (target.width != place.Width() || target.height != place.Height()) {
        Refuse(fmt::format("the target is {} x {} pixels; the image is {} x {}", target.width, target.height,
                           place.Width(), place.Height()));
    }
    const Frame frame = state_->Draw(layers, options);
    CopyInto(frame.output, frame.rect.left - place.left, frame.rect.top - place.top, target);
    return place;
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
