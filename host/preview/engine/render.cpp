// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How an engine draws a frame, for the page and as a file, and what frames cover.

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "host/compositing/memory_shortage.h"
#include "host/preview/access.h"
#include "host/preview/engine/answers.h"
#include "host/preview/engine/preview_engine.h"
#include "host/render/set_canvas.h"
#include "host/render/worker.h"

namespace umbrant::host {

namespace {

/// The time of a single image, as a render has it.
FrameTime TimeOfImage() {
    const FramePlan plan = PlanImage({});
    const PlannedFrame& frame = plan.frames.front();
    return {frame.time, plan.rate.step, plan.totalTime, plan.rate.scale};
}

/// An image's sizes as a render knows them; null when there is no memory. Nobody reads its pixels.
std::shared_ptr<const Layer> SizesOf(PreviewLayer& layer, const World& world) {
    auto sizes = std::make_shared<Layer>();
    sizes->width = layer.Width();
    sizes->height = layer.Height();
    sizes->pixels = World::CreateUnwritten(world.Width(), world.Height(), world.PixelDepth());
    return sizes->pixels.IsNull() ? nullptr : sizes;
}

/// A plan that is about one frame of another.
FramePlan PlanOfOne(const FramePlan& plan, const PlannedFrame& frame) {
    FramePlan one;
    one.wholeSet.push_back({frame.number, frame.time});
    one.rate = plan.rate;
    one.framesPerSecond = plan.framesPerSecond;
    one.zeroFrame = plan.zeroFrame;
    one.totalTime = plan.totalTime;
    one.input = plan.input;
    one.texture = plan.texture;
    return one;
}

/// The text of --canvas that gives the same canvas, a rectangle as it is drawn.
std::string TextOf(const CanvasChoice& canvas, int downsample) {
    switch (canvas.kind) {
        case CanvasChoice::Kind::kRectangle:
            return CanvasText(FullSizeCanvas(DrawnCanvas(canvas.rectangle, downsample), downsample));
        case CanvasChoice::Kind::kLayer:
            return "layer";
        case CanvasChoice::Kind::kFrame:
            return "frame";
        case CanvasChoice::Kind::kGrow:
        case CanvasChoice::Kind::kTight:
            break;
    }
    return "grow";
}

}  // namespace

Result<Done> PreviewEngine::ReadImages(Scene& scene) {
    if (!scene.isMoving()) return Done{};
    for (auto [layer, isTexture] : {std::pair{&scene.layer, false}, std::pair{&scene.texture, true}}) {
        if (!*layer || !(*layer)->IsMoving()) continue;
        auto image = TRY(shots_.LayerAt(*scene.moment.frame, isTexture));
        *layer = std::move(image);
    }
    return Done{};
}

Result<CanvasChoice> PreviewEngine::CanvasFor(const DrawRequest& request) const {
    return request.canvas.empty() ? options_.canvas : ParseUndrawnCanvas(request.canvas);
}

FrameSettings PreviewEngine::SettingsFor(const CanvasChoice& canvas, int downsample) const {
    FrameSettings settings;
    settings.downsample = downsample;
    settings.canvas = canvas.kind == CanvasChoice::Kind::kLayer ? Canvas::kLayer : Canvas::kGrow;
    settings.textureX = options_.textureX;
    settings.textureY = options_.textureY;
    return settings;
}

Result<Drawn> PreviewEngine::Render(const Scene& scene, const CanvasChoice& canvas, int downsample) {
    const Depth depth = options_.depth.value_or(scene.layer->OwnDepth());
    MomentLayers layers;
    layers.layer = TRY(scene.layer->At(depth, downsample));
    layers.layerWidth = scene.layer->Width();
    layers.layerHeight = scene.layer->Height();
    if (scene.texture) layers.texture = TRY(scene.texture->At(depth, downsample));
    const int width = layers.layer->Width();
    const int height = layers.layer->Height();
    std::optional<PF_LRect> picture;
    if (canvas.kind == CanvasChoice::Kind::kLayer) picture = PF_LRect{0, 0, width, height};
    if (canvas.kind == CanvasChoice::Kind::kRectangle) {
        picture = DrawnCanvas(canvas.rectangle, downsample);
        TRY(CheckCanvas(*picture, downsample));
    }
    EffectSession& session = *effect_->session;
    const FramePlan* plan = scene.moment.plan;
    const FrameTime time =
        plan ? FrameTime{scene.moment.frame->time, plan->rate.step, plan->totalTime, plan->rate.scale} : TimeOfImage();
    FrameRequest request = MakeFrameRequest(layers, SettingsFor(canvas, downsample), time, nullptr);
    std::vector<std::shared_ptr<PreviewLayer>> shown;
    if (plan && !animation_.IsEmpty()) {
        request.valuesAt = [&](const Moment& moment) {
            return animation_.ValuesAt(session.Params(), FrameAt(*plan, moment), ClockOf(scene.moment));
        };
    }
    if (plan && (plan->input.HasFrames() || plan->texture.HasFrames())) {
        request.layersAt = [&](const Moment& moment) -> Result<MomentLayers> {
            MomentLayers there = layers;
            if (plan->input.HasFrames()) {
                shown.push_back(TRY(shots_.LayerShownAt(*plan, moment, false)));
                there.layer = TRY(shown.back()->At(depth, downsample));
                there.layerWidth = shown.back()->Width();
                there.layerHeight = shown.back()->Height();
            }
            if (plan->texture.HasFrames()) {
                shown.push_back(TRY(shots_.LayerShownAt(*plan, moment, true)));
                there.texture = TRY(shown.back()->At(depth, downsample));
            }
            return there;
        };
    }
    auto frame = session.Render(request);
    if (!frame) return effect_->explain(frame.error(), session);
    return PictureOf(*frame, picture, width, height, depth);
}

HttpReply PreviewEngine::Guarded(const std::function<Result<HttpReply>()>& step) {
    Result<HttpReply> reply = HttpReply{};
    try {
        reply = step();
    } catch (const std::bad_alloc&) {
        reply = NotEnoughMemory("the frame");
    }
    NoteProcess(0);
    if (wasEnded_.exchange(false)) return Refusal(500, kModuleEnded);
    return reply ? std::move(*reply) : Refused(reply.error());
}

HttpReply PreviewEngine::RenderFile(const DrawRequest& request) {
    return Guarded([&] { return MakeFile(request); });
}

HttpReply PreviewEngine::CanvasOfAll(const DrawRequest& request) {
    return Guarded([&] { return FindCanvas(request, true); });
}

HttpReply PreviewEngine::CanvasOfOne(const DrawRequest& request) {
    return Guarded([&] { return FindCanvas(request, false); });
}

Result<DrawnFile> PreviewEngine::FileOf(const DrawRequest& request, const Scene& scene) {
    DrawnFile file{TRY(ParamsOf(request))};
    if (scene.texture) file.texture = scene.texture->Name();
    file.downsample = std::max(request.downsample, 1);
    if (!scene.isMoving()) return file;
    const bool readsClip = scene.layer->IsMoving() || (scene.texture && scene.texture->IsMoving());
    if (!options_.shot.hasFixedRate || !readsClip) file.rate = request.rate;
    file.frame = scene.moment.frame->position;
    return file;
}

Result<HttpReply> PreviewEngine::MakeFile(const DrawRequest& request) {
    constexpr std::string_view kFormats[] = {"png", "tif", "exr", "jpg"};
    if (std::find(std::begin(kFormats), std::end(kFormats), request.format) == std::end(kFormats)) {
        return Failure{ErrorKind::kUsage, "a file is png, tif, exr or jpg"};
    }
    auto scene = TRY(SceneOf(request));
    if (!scene.layer) return Failure{ErrorKind::kUsage, "there is no image to draw; choose one"};
    TRY(SetValues(request, scene.moment));
    auto canvas = TRY(CanvasFor(request));
    auto file = TRY(FileOf(request, scene));
    TRY(ReadImages(scene));
    const int downsample = file.downsample;
    // A frame of a timeline is a set of one, whose canvas is the rectangle that it covers.
    if (scene.isMoving() && canvas.kind == CanvasChoice::Kind::kGrow) {
        canvas = TRY(GrownCanvas(scene, canvas, downsample, false));
    }
    file.canvas = TextOf(canvas, downsample);
    const auto drawn = TRY(Render(scene, canvas, downsample));
    const Picture& whole = scene.layer->Whole();
    const auto world = TRY(scene.layer->At(drawn.pixels.PixelDepth(), downsample));
    Placement place{drawn.rect, world->Width(), world->Height()};
    // A smaller image has pixels of another size, so the frame's place in the file means nothing to it.
    if (downsample == 1) place.frameOrigin = whole.frameOrigin;
    WriteOptions kept;
    kept.half = whole.isHalf && !options_.depth;
    kept.metadata = whole.metadata;
    kept.format = request.format;
    if (effect_->recipe) kept.recipe = effect_->recipe(file);
    auto bytes = TRY(EncodePicture(drawn.pixels, place, kept));
    return HttpReply{200, "application/octet-stream", std::move(bytes)};
}

Result<HttpReply> PreviewEngine::FindCanvas(const DrawRequest& request, bool ofAll) {
    auto scene = TRY(SceneOf(request));
    if (!scene.layer) return Failure{ErrorKind::kUsage, "there is no image to draw; choose one"};
    TRY(SetValues(request, scene.moment));
    const auto canvas = TRY(CanvasFor(request));
    if (canvas.kind == CanvasChoice::Kind::kRectangle) return JsonReply({{"canvas", CanvasText(canvas.rectangle)}});
    if (ofAll && canvas.kind == CanvasChoice::Kind::kFrame) return JsonReply({{"canvas", "frame"}});
    TRY(ReadImages(scene));
    const int downsample = std::max(request.downsample, 1);
    if (canvas.kind == CanvasChoice::Kind::kLayer) {
        if (ofAll) return JsonReply({{"canvas", "layer"}});
        const auto world = TRY(scene.layer->At(options_.depth.value_or(scene.layer->OwnDepth()), downsample));
        return JsonReply({{"canvas", CanvasText(FullSizeCanvas({0, 0, world->Width(), world->Height()}, downsample))}});
    }
    const auto grown = TRY(GrownCanvas(scene, canvas, downsample, ofAll));
    return JsonReply({{"canvas", CanvasText(grown.rectangle)}});
}

Result<CanvasChoice> PreviewEngine::GrownCanvas(const Scene& scene, const CanvasChoice& canvas, int downsample,
                                                bool ofAll) {
    const Depth depth = options_.depth.value_or(scene.layer->OwnDepth());
    const auto world = TRY(scene.layer->At(depth, downsample));
    FrameLayers known;
    known.input = SizesOf(*scene.layer, *world);
    if (scene.texture) {
        const auto texture = TRY(scene.texture->At(depth, downsample));
        known.texture = SizesOf(*scene.texture, *texture);
    }
    if (!known.input || (scene.texture && !known.texture)) return NotEnoughMemory("the layer");
    FramePlan single;
    single.wholeSet.push_back({FrameNumber(0), 0});
    if (scene.moment.plan && !ofAll) single = PlanOfOne(*scene.moment.plan, *scene.moment.frame);
    FrameJob job;
    job.plan = scene.moment.plan && ofAll ? scene.moment.plan : &single;
    job.settings = SettingsFor(canvas, downsample);
    if (scene.moment.plan && !animation_.IsEmpty()) {
        job.values = [this, clock = ClockOf(scene.moment)](double frame, const ParamSet& params) {
            return animation_.ValuesAt(params, frame, clock);
        };
    }
    const PF_LRect all = SetCanvas(job, known, *effect_->session);
    return CanvasChoice{CanvasChoice::Kind::kRectangle, FullSizeCanvas(all, downsample)};
}

}  // namespace umbrant::host
