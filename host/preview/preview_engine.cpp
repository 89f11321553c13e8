// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/preview_engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/resample.h"
#include "host/image/picture.h"
#include "host/isolation/module_process.h"
#include "host/panel/panel_picture.h"
#include "host/panel/panel_rows.h"
#include "host/preview/access.h"
#include "host/preview/layer_json.h"
#include "host/preview/panel_json.h"
#include "host/process/interruption.h"
#include "host/render/frame_request.h"
#include "host/render/plan/frame_plan.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

/// What the effect is set up for while there is no layer.
constexpr int kNoLayerWidth = 1920;
constexpr int kNoLayerHeight = 1080;

constexpr char kEnded[] = "the module did not answer and was ended; start it again";

std::string StraightRgba(const World& world) {
    std::string bytes(std::size_t{4} * world.Width() * world.Height(), '\0');
    char* to = bytes.data();
    for (int y = 0; y < world.Height(); ++y) {
        const auto* from = reinterpret_cast<const PF_Pixel*>(world.Row(y));
        for (int x = 0; x < world.Width(); ++x, ++from) {
            for (const A_u_char channel : {from->red, from->green, from->blue, from->alpha}) {
                *to++ = static_cast<char>(channel);
            }
        }
    }
    return bytes;
}

HttpReply JsonReply(const Json& json) {
    return {200, "application/json", Bytes(json)};
}

HttpReply Refused(const Failure& failure) {
    return Refusal(failure.kind == ErrorKind::kUsage ? 422 : 500, failure.sentence);
}

/// The process of an effect that is in another one; else 0.
int ProcessOf(const PreviewEffect& effect) {
    const auto* module = dynamic_cast<const ModuleProcess*>(effect.session->Remote());
    return module ? module->Process() : 0;
}

/// The time of a single image, as a render has it.
FrameTime TimeOfImage() {
    const FramePlan plan = PlanImage({});
    const PlannedFrame& frame = plan.frames.front();
    return {frame.time, plan.rate.step, plan.totalTime, plan.rate.scale};
}

}  // namespace

Result<Done> PreviewEngine::Begin(const PreviewLayer* layer, const PreviewLayer* texture) {
    TRY(layer ? Open(layer->Width(), layer->Height()) : Open(kNoLayerWidth, kNoLayerHeight));
    ParamSet params = defaults_;
    TRY(options_.setValues(params));
    Json first{{"values", ChangedValues(params)}};
    first["layer"] = layer ? LayerJson(*layer) : Json();
    first["texture"] = texture ? LayerJson(*texture) : Json();
    first_ = Bytes(first);
    return Done{};
}

Result<Done> PreviewEngine::Open(int layerWidth, int layerHeight) {
    effect_.reset();
    auto opened = TRY(options_.open(layerWidth, layerHeight));
    effect_ = std::move(opened);
    defaults_ = effect_->session->Params();
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

Result<Done> PreviewEngine::SetValues(const DrawRequest& request) {
    row_.clear();
    ParamSet params = defaults_;
    for (const auto& [path, text] : request.values) {
        row_ = path;
        TRY(params.SetFromText(path, text));
    }
    row_.clear();
    effect_->session->Params() = std::move(params);
    return effect_->session->UpdateParamsUI();
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
    Json json{{"serial", request.serial}, {"sentence", wasEnded ? std::string(kEnded) : outcome.error().sentence}};
    if (!row_.empty()) json["row"] = row_;
    if (IsGone()) json["gone"] = true;
    clients_.Send(request.client, "failure", Bytes(json));
}

Result<Done> PreviewEngine::DrawFrame(const DrawRequest& request) {
    row_.clear();
    if (IsGone()) return Failure{ErrorKind::kEffect, "the module is not running; start it again"};
    NoteProcess(ProcessOf(*effect_));
    std::shared_ptr<PreviewLayer> layer;
    std::shared_ptr<PreviewLayer> texture;
    for (auto [number, found] : {std::pair{request.layer, &layer}, std::pair{request.texture, &texture}}) {
        if (number == 0) continue;
        *found = layers_.Find(number);
        if (!*found) return Failure{ErrorKind::kUsage, "the image is not kept any more; choose it again"};
    }
    if (layer && (layer->Width() != layerWidth_ || layer->Height() != layerHeight_)) {
        TRY(Open(layer->Width(), layer->Height()));
    }
    TRY(SetValues(request));
    clients_.Send(request.client, "panel",
                  Bytes({{"serial", request.serial}, {"rows", CurrentRows(*effect_->session)}}));
    if (!layer) return Done{};
    const int downsample = request.moving ? draft_.Next(layer->Pixels()) : 1;
    const auto begin = std::chrono::steady_clock::now();
    auto drawn = TRY(Render(*layer, texture.get(), downsample));
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    draft_.Measured(downsample, layer->Pixels(), took.count());
    SendFrame(request, *layer, downsample, std::move(drawn), took.count());
    return Done{};
}

Result<Drawn> PreviewEngine::Render(PreviewLayer& layer, PreviewLayer* texture, int downsample) {
    const Depth depth = options_.depth.value_or(layer.OwnDepth());
    MomentLayers layers;
    layers.layer = TRY(layer.At(depth, downsample));
    layers.layerWidth = layer.Width();
    layers.layerHeight = layer.Height();
    if (texture) layers.texture = TRY(texture->At(depth, downsample));
    FrameSettings settings;
    settings.downsample = downsample;
    EffectSession& session = *effect_->session;
    auto frame = session.Render(MakeFrameRequest(layers, settings, TimeOfImage(), nullptr));
    if (!frame) return effect_->explain(frame.error(), session);
    return PictureOf(*frame, std::nullopt, layers.layer->Width(), layers.layer->Height(), depth);
}

void PreviewEngine::SendFrame(const DrawRequest& request, const PreviewLayer& layer, int downsample, Drawn drawn,
                              double took) {
    KeptFrame kept;
    kept.number = ++frames_;
    const PF_LRect& rect = drawn.rect;
    Json json{{"serial", request.serial},
              {"frame", kept.number},
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

HttpReply PreviewEngine::Describe() const {
    Json json = Json::parse(first_);
    json["effect"] = effect_ ? effect_->name : "";
    json["rows"] = DeclaredRows(defaults_);
    json["renderArguments"] = options_.renderArguments;
    json["isolated"] = effect_ && effect_->session->Remote();
    return JsonReply(json);
}

HttpReply PreviewEngine::Original(int number) {
    const auto layer = layers_.Find(number);
    if (!layer) return Refusal(410, "the image is not kept any more; choose it again");
    const auto world = layer->At(options_.depth.value_or(layer->OwnDepth()), 1);
    if (!world) return Refused(world.error());
    HttpReply reply{200, "application/octet-stream"};
    if ((*world)->PixelDepth() == Depth::k8) {
        reply.body = StraightRgba(**world);
        return reply;
    }
    const World shown = ConvertDepth(**world, Depth::k8);
    if (shown.IsNull()) return Refused(NotEnoughMemory("the layer"));
    reply.body = StraightRgba(shown);
    return reply;
}

HttpReply PreviewEngine::DrawRow(int index, bool isLight, int scale) {
    if (IsGone()) return Refusal(409, "the module is not running; start it again");
    PanelPictureOptions drawing;
    drawing.theme = isLight ? &kLightTheme : &kDarkTheme;
    drawing.scale = scale;
    drawing.effectName = effect_->name;
    if (auto opened = Twirl(*effect_->session, "all", true); !opened) return Refused(opened.error());
    auto panel = DrawPanel(*effect_->session, drawing);
    if (!panel) return Refused(panel.error());
    const auto item = std::find_if(panel->items.begin(), panel->items.end(), [&](const PanelItem& each) {
        return each.index == index && each.control == PanelControl::kOwn;
    });
    if (item == panel->items.end()) return Refusal(404, "the effect draws no such row");
    const PF_Rect& frame = item->frame;
    const World cut = CutToFrame(panel->pixels, -frame.left * scale, -frame.top * scale,
                                 (frame.right - frame.left) * scale, (frame.bottom - frame.top) * scale);
    if (cut.IsNull()) return Refused(NotEnoughMemory("the row"));
    WriteOptions png;
    png.format = "png";
    auto bytes = EncodePicture(cut, {{0, 0, cut.Width(), cut.Height()}, cut.Width(), cut.Height()}, png);
    return bytes ? HttpReply{200, "image/png", std::move(*bytes)} : Refused(bytes.error());
}

HttpReply PreviewEngine::Press(const DrawRequest& values, const std::string& button) {
    if (IsGone()) return Refusal(409, "the module is not running; start it again");
    if (auto set = SetValues(values); !set) return Refused(set.error());
    const auto index = FindButton(*effect_->session, button);
    if (!index) return Refused(index.error());
    {
        // The effect may start a program that outlives this one, a browser for an address.
        const SignalsOfTheStart signals;
        if (auto pressed = effect_->session->UserChangedParam(*index); !pressed) return Refused(pressed.error());
    }
    return JsonReply({{"values", ChangedValues(effect_->session->Params())}});
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

HttpReply PreviewEngine::Restart() {
    if (IsGone()) {
        if (auto opened = Open(layerWidth_, layerHeight_); !opened) return Refused(opened.error());
    }
    return JsonReply(Json::object());
}

}  // namespace umbrant::host
