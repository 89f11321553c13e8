// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/engine/preview_engine.h"

#include <fmt/format.h>

#include <chrono>
#include <csignal>
#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/resample.h"
#include "host/image/picture.h"
#include "host/isolation/module_process.h"
#include "host/preview/engine/answers.h"
#include "host/preview/layer_json.h"
#include "host/preview/panel_json.h"
#include "host/preview/time/keyframe_json.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

/// What the effect is set up for while there is no layer.
constexpr int kNoLayerWidth = 1920;
constexpr int kNoLayerHeight = 1080;

/// The process of an effect that is in another one; else 0.
int ProcessOf(const PreviewEffect& effect) {
    const auto* module = dynamic_cast<const ModuleProcess*>(effect.session->Remote());
    return module ? module->Process() : 0;
}

}  // namespace

Result<Done> PreviewEngine::Begin(const PreviewLayer* layer, const PreviewLayer* texture) {
    TRY(layer ? Open(layer->Width(), layer->Height()) : Open(kNoLayerWidth, kNoLayerHeight));
    auto first = TRY(BeginningValues());
    const FrameRate& rate = options_.shot.request.rate;
    first["rate"] = rate.step == 1 ? fmt::format("{}", rate.scale) : fmt::format("{}/{}", rate.scale, rate.step);
    first["rateIsFixed"] = options_.shot.hasFixedRate;
    if (options_.shot.isAsked) {
        const auto plan = TRY(shots_.PlanFor({}, options_.shot.inputMoves, options_.shot.textureMoves));
        std::vector<FrameNumber> numbers;
        for (const PlannedFrame& frame : plan->frames) numbers.push_back(frame.number);
        first["frames"] = FrameSetText(numbers);
    }
    first["layer"] = layer ? LayerJson(*layer) : Json();
    first["texture"] = texture ? LayerJson(*texture) : Json();
    first_ = Bytes(first);
    return Done{};
}

Result<Picture> PreviewEngine::FirstImage(bool isTexture) {
    const auto plan = TRY(shots_.PlanFor({}, options_.shot.inputMoves, options_.shot.textureMoves));
    for (const PlannedFrame& frame : plan->frames) {
        if (frame.state != PlannedFrame::State::kDraw) continue;
        const std::optional<int> clipFrame = isTexture ? frame.textureClipFrame : frame.inputClipFrame;
        const auto& clip = isTexture ? options_.shot.textureClip : options_.shot.inputClip;
        const std::string& path = isTexture ? frame.texture : frame.input;
        if (clipFrame) return clip(*clipFrame);
        const auto header = TRY(ReadPictureHeader(path));
        TRY(CheckPreviewSize(path, header));
        return ReadPicture(path);
    }
    const PlannedFrame& frame = plan->frames.front();
    return Failure{ErrorKind::kFile, fmt::format("cannot read {}: {}", frame.missing, frame.missingReason)};
}

Result<Json> PreviewEngine::BeginningValues() {
    AnimatedParams params{defaults_, {}};
    TRY(options_.setValues(params));
    return ValuesJson(params);
}

Json PreviewEngine::ValuesJson(const AnimatedParams& params) {
    const AnimationClock clock = ClockOf({});
    return {{"values", ChangedValues(params.values)},
            {"keyframes", KeyframesJson(params, clock)},
            {"frames", FramesOfKeys(params.animation, clock)}};
}

Result<Done> PreviewEngine::Open(int layerWidth, int layerHeight) {
    effect_.reset();
    auto opened = TRY(options_.open(layerWidth, layerHeight));
    effect_ = std::move(opened);
    defaults_ = effect_->session->Params();
    keyframes_.clear();
    animation_ = {};
    NoteProcess(ProcessOf(*effect_));
    layerWidth_ = layerWidth;
    layerHeight_ = layerHeight;
    return Done{};
}

Result<Done> PreviewEngine::End() {
    if (!effect_) return Done{};
    auto ended = effect_->session->End();
    effect_.reset();
    return ended;
}

bool PreviewEngine::IsGone() {
    if (!effect_) return true;
    if (effect_->session->Remote() && ProcessOf(*effect_) == 0) effect_.reset();
    return !effect_;
}

AnimationClock PreviewEngine::ClockOf(const ShotMoment& moment) const {
    if (moment.plan) return {moment.plan->framesPerSecond, static_cast<double>(moment.plan->zeroFrame)};
    const PlanRequest& request = options_.shot.request;
    return {request.rate.PerSecond(), static_cast<double>(request.zeroFrame)};
}

Result<const Animation*> PreviewEngine::AnimationOf(const DrawRequest& request) {
    if (request.keyframes != keyframes_) {
        auto read = TRY(ReadKeyframes(request.keyframes, defaults_));
        animation_ = std::move(read);
        keyframes_ = request.keyframes;
    }
    return &animation_;
}

Result<Done> PreviewEngine::SetValues(const DrawRequest& request, const ShotMoment& moment) {
    row_.clear();
    ParamSet params = defaults_;
    for (const auto& [path, text] : request.values) {
        row_ = path;
        TRY(params.SetFromText(path, text));
    }
    row_.clear();
    const auto animation = TRY(AnimationOf(request));
    const AnimationClock clock = ClockOf(moment);
    const double frame = moment.frame ? moment.frame->position : clock.zeroFrame;
    effect_->session->Params() = animation->IsEmpty() ? std::move(params) : animation->ValuesAt(params, frame, clock);
    return effect_->session->UpdateParamsUI();
}

Result<AnimatedParams> PreviewEngine::ParamsOf(const DrawRequest& request) {
    const auto animation = TRY(AnimationOf(request));
    AnimatedParams params{defaults_, *animation};
    for (const auto& [path, text] : request.values) TRY(params.values.SetFromText(path, text));
    return params;
}

void PreviewEngine::Draw(const DrawRequest& request) {
    Result<Done> outcome = Done{};
    try {
        outcome = DrawFrame(request);
    } catch (const std::bad_alloc&) {
        outcome = NotEnoughMemory("the frame");
    }
    NoteProcess(0);
    const bool wasEnded = wasEnded_.exchange(false);
    if (outcome) return;
    Json json{{"serial", request.serial},
              {"sentence", wasEnded ? std::string(kModuleEnded) : outcome.error().sentence}};
    if (!row_.empty()) json["row"] = row_;
    if (IsGone()) json["gone"] = true;
    clients_.Send(request.client, "failure", Bytes(json));
}

Result<PreviewEngine::Scene> PreviewEngine::SceneOf(const DrawRequest& request) {
    row_.clear();
    if (IsGone()) return Failure{ErrorKind::kEffect, "the module is not running; start it again"};
    NoteProcess(ProcessOf(*effect_));
    Scene scene;
    for (auto [number, found] : {std::pair{request.layer, &scene.layer}, std::pair{request.texture, &scene.texture}}) {
        if (number == 0) continue;
        *found = layers_.Find(number);
        if (!*found) return Failure{ErrorKind::kUsage, "the image is not kept any more; choose it again"};
    }
    if (scene.layer && (scene.layer->Width() != layerWidth_ || scene.layer->Height() != layerHeight_)) {
        TRY(Open(scene.layer->Width(), scene.layer->Height()));
    }
    const bool inputMoves = scene.layer && scene.layer->IsMoving();
    const bool textureMoves = scene.texture && scene.texture->IsMoving();
    if (!request.frames.empty()) {
        scene.moment = TRY(shots_.MomentOf(request, inputMoves, textureMoves));
    }
    return scene;
}

Result<Done> PreviewEngine::DrawFrame(const DrawRequest& request) {
    auto scene = TRY(SceneOf(request));
    TRY(SetValues(request, scene.moment));
    clients_.Send(request.client, "panel",
                  Bytes({{"serial", request.serial}, {"rows", CurrentRows(*effect_->session)}}));
    if (!scene.layer) return Done{};
    const auto canvas = TRY(CanvasFor(request));
    TRY(ReadImages(scene));
    const double pixels = scene.layer->Pixels();
    const int downsample = request.downsample > 0 ? request.downsample : request.moving ? draft_.Next(pixels) : 1;
    const auto begin = std::chrono::steady_clock::now();
    auto drawn = TRY(Render(scene, canvas, downsample));
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    draft_.Measured(downsample, pixels, took.count());
    SendFrame(request, *scene.layer, downsample, std::move(drawn), took.count());
    return Done{};
}

void PreviewEngine::SendFrame(const DrawRequest& request, const PreviewLayer& layer, int downsample, Drawn drawn,
                              double took) {
    KeptFrame kept;
    kept.number = ++frames_;
    const PF_LRect& rect = drawn.rect;
    Json json{{"serial", request.serial},
              {"frame", kept.number},
              {"shotFrame", request.frame},
              {"draft", downsample > 1},
              {"downsample", downsample},
              {"rect", {rect.left, rect.top, rect.right, rect.bottom}},
              {"layer", {layer.Width(), layer.Height()}},
              {"bits", static_cast<int>(drawn.pixels.PixelDepth())},
              {"milliseconds", took},
              {"drawnBy", effect_->drawnBy}};
    if (drawn.pixels.PixelDepth() == Depth::k8) {
        kept.pixels = std::make_shared<const std::string>(StraightRgba(drawn.pixels));
    } else {
        const World shown = ConvertDepth(drawn.pixels, Depth::k8);
        if (shown.IsNull()) throw std::bad_alloc();
        kept.pixels = std::make_shared<const std::string>(StraightRgba(shown));
        kept.exact = std::make_shared<const World>(std::move(drawn.pixels));
    }
    clients_.Keep(request.client, std::move(kept));
    clients_.Send(request.client, "frame", Bytes(json));
}

void PreviewEngine::NoteProcess(int process) {
    const std::lock_guard lock(processMutex_);
    process_ = process;
}

void PreviewEngine::EndModuleThatDraws() {
    const std::lock_guard lock(processMutex_);
    if (process_ == 0) return;
    // It leads a group of its own. Whoever waits for its answer learns of its end and removes it.
    wasEnded_ = true;
    kill(-process_, SIGKILL);
}

}  // namespace umbrant::host
