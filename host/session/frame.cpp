// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// One frame: pre-render, render, and the pre-render data back to the effect, whatever happens between.

#include <fmt/format.h>

#include <cstdint>
#include <set>
#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/session/frame_record.h"
#include "host/session/render_failure.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

/// The data that pre-render handed over. Goes back to the effect exactly once.
class PreRenderData {
 public:
    PreRenderData(FrameRecord& frame, const PF_PreRenderOutput& output)
        : frame_(frame), data_(output.pre_render_data), dispose_(output.delete_pre_render_data_func) {}
    PreRenderData(const PreRenderData&) = delete;
    PreRenderData& operator=(const PreRenderData&) = delete;

    ~PreRenderData() {
        if (!data_) return;
        if (!dispose_) {
            frame_.state.services.Report("pre-render returned data without a function that deletes it");
            return;
        }
        CommandNotes notes;
        {
            const ServiceScope scope(&frame_.state.services, &notes);
            try {
                dispose_(data_);
            } catch (...) {
                frame_.state.services.Report("the function that deletes the pre-render data threw an exception");
            }
        }
        Add(frame_.total, notes.tally.Snapshot());
    }

    void* Get() const { return data_; }

    static void Add(Balance& total, const Balance& more) {
        for (std::size_t i = 0; i < kResourceCount; ++i) total.open[i] += more.open[i];
    }

 private:
    FrameRecord& frame_;
    void* data_;
    PF_DeletePreRenderDataFunc dispose_;
};

/// Why the request cannot be served; a mistake of the program that asks.
std::string ProblemWith(const SessionState& state, const FrameRequest& request) {
    if (!request.layer || request.layer->IsNull()) return "a frame was requested without a layer";
    if (request.texture && request.texture->IsNull()) return "a frame was requested with a texture without a world";
    if (request.texture && request.texture->PixelDepth() != request.layer->PixelDepth()) {
        return "a frame was requested whose texture has another depth than its layer";
    }
    if (request.timeScale == 0 || request.downsampleX.den == 0 || request.downsampleY.den == 0) {
        return "a frame was requested with a zero time scale or downsampling";
    }
    if (request.params && request.params->Count() != state.declaredRows) {
        return "a frame was requested with another effect's parameters";
    }
    return "";
}

/// Whether a rectangle is a picture that can be had at all.
bool FitsWorld(const PF_LRect& rect) {
    return static_cast<std::int64_t>(rect.right) - rect.left <= PF_MAX_WORLD_WIDTH &&
           static_cast<std::int64_t>(rect.bottom) - rect.top <= PF_MAX_WORLD_HEIGHT;
}

PF_LRect Normalised(const PF_LRect& rect) {
    return IsEmpty(rect) ? PF_LRect{} : rect;
}

/// Sends pre-render for `region` and reads its answer. On success `answered` holds it and `output` the effect's record.
std::optional<Failure> SendPreRender(FrameRecord& frame, const PF_LRect& region, PF_PreRenderOutput& output,
                                     PreRendered& answered, std::set<std::string>& suites) {
    frame.outputRequest = {};
    frame.outputRequest.rect = region;
    frame.outputRequest.field = frame.request.field;
    frame.outputRequest.channel_mask = PF_ChannelMask_ARGB;

    PF_PreRenderInput input{};
    input.output_request = frame.outputRequest;
    input.bitdepth = frame.BitDepth();
    PF_PreRenderExtra extra{&input, &output, &preRenderCallbacks};
    frame.phase = FrameRecord::Phase::kPreRender;
    const Answer answer = SendCommand(frame.state, PF_Cmd_SMART_PRE_RENDER, &frame, nullptr, &extra);
    frame.phase = FrameRecord::Phase::kIdle;
    frame.Note(answer);
    suites.insert(answer.suites.begin(), answer.suites.end());
    if (frame.failure) return frame.failure;
    if (answer.Failed()) return FailureOf(frame.state, answer);

    answered.solid = output.solid;
    answered.flags = output.flags;
    answered.maxRect = Normalised(output.max_result_rect);
    answered.resultRect = Normalised(output.result_rect);
    // A result larger than the request is the effect's right only when it says so.
    if (!(output.flags & PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS)) {
        answered.resultRect = Intersection(answered.resultRect, region);
    }
    return std::nullopt;
}

/// Whether two records describe the same pixels at the same place.
bool IsSame(const PF_EffectWorld& one, const PF_EffectWorld& other) {
    return one.data == other.data && one.rowbytes == other.rowbytes && one.width == other.width &&
           one.height == other.height && one.origin_x == other.origin_x && one.origin_y == other.origin_y &&
           one.reserved0 == other.reserved0 && one.reserved_long1 == other.reserved_long1 &&
           one.world_flags == other.world_flags;
}

/// Sends render for what pre-render promised. The output world is the frame's.
std::optional<Failure> SendRender(FrameRecord& frame, void* preRenderData, const PF_LRect& rect,
                                  std::set<std::string>& suites) {
    const Depth depth = frame.request.layer->PixelDepth();
    const auto& make = frame.state.options.makeOutput;
    frame.output =
        make ? make(WidthOf(rect), HeightOf(rect), depth) : World::Create(WidthOf(rect), HeightOf(rect), depth, false);
    if (frame.output.IsNull()) {
        return NotEnoughMemory(PictureText(rect), WidthOf(rect), HeightOf(rect), frame.request.layer->PixelDepth());
    }
    frame.output.Def().origin_x = rect.left;
    frame.output.Def().origin_y = rect.top;
    frame.output.Def().pix_aspect_ratio = frame.request.pixelAspect;

    const WorldWatch& watch = frame.state.services.worldWatch;
    if (watch) watch(frame.output, WorldRole::kOutput, true);
    const PF_EffectWorld record = frame.output.Def();

    PF_SmartRenderInput input{};
    input.output_request = frame.outputRequest;
    input.bitdepth = frame.BitDepth();
    input.pre_render_data = preRenderData;
    PF_SmartRenderExtra extra{&input, &smartRenderCallbacks};
    frame.phase = FrameRecord::Phase::kRender;
    const Answer answer = SendCommand(frame.state, PF_Cmd_SMART_RENDER, &frame, nullptr, &extra);
    frame.phase = FrameRecord::Phase::kIdle;
    if (!IsSame(frame.output.Def(), record)) {
        frame.state.services.Report(
            "PF_Cmd_SMART_RENDER changed the record of its output world; the change is ignored");
        frame.output.Def() = record;
    }
    if (watch) watch(frame.output, WorldRole::kOutput, false);
    frame.Note(answer);
    suites.insert(answer.suites.begin(), answer.suites.end());
    if (frame.failure) return frame.failure;
    if (answer.Failed()) return RenderFailure(frame.state, answer, rect);

    if (!frame.outputTaken) {
        frame.state.services.Report("PF_Cmd_SMART_RENDER ended without checking out its output");
    }
    return std::nullopt;
}

/// What a canvas asks for first.
PF_LRect FirstRegion(const FrameRecord& frame) {
    return frame.request.region.value_or(frame.layers.layerBounds);
}

/// One pass: pre-render for `region`, and render when `drawn` is given and there is something to draw.
std::optional<Failure> RunPass(SessionState& state, const FrameRequest& request, const PF_LRect* region,
                               PreRendered& answered, Frame* drawn, std::set<std::string>& suites) {
    FrameRecord frame(state, request);
    std::optional<Failure> failure;
    {
        PF_PreRenderOutput output{};
        const PF_LRect asked = region ? *region : FirstRegion(frame);
        failure = SendPreRender(frame, asked, output, answered, suites);
        const PreRenderData data(frame, output);
        if (!failure && !FitsWorld(answered.resultRect)) {
            failure = Failure{ErrorKind::kEffect,
                              fmt::format("{} requests an image larger than {} x {} pixels", state.module.Effect().name,
                                          PF_MAX_WORLD_WIDTH, PF_MAX_WORLD_HEIGHT)};
        }
        if (!failure && drawn && !IsEmpty(answered.resultRect)) {
            failure = SendRender(frame, data.Get(), answered.resultRect, suites);
        }
    }
    for (const CommandRecord& record : frame.commands) answered.commands.push_back(record);
    if (!frame.total.IsBalanced()) {
        state.services.Report(fmt::format("still open after drawing a frame: {}", frame.total.Text()));
    }
    if (drawn) drawn->output = std::move(frame.output);
    return failure;
}

}  // namespace

LayersSeen::LayersSeen(MomentLayers shown, const FrameRequest& request) : pictures(shown) {
    const World& layer = *pictures.layer;
    geometry = {pictures.layerWidth ? pictures.layerWidth : layer.Width(),
                pictures.layerHeight ? pictures.layerHeight : layer.Height(), request.downsampleX, request.downsampleY};
    layerBounds = Normalised(BoundsOf(layer.Def()));
    if (const World* texture = pictures.texture) {
        const PF_Point& origin = request.textureOrigin;
        textureBounds = Normalised({origin.x, origin.y, origin.x + texture->Width(), origin.y + texture->Height()});
    }
}

FrameRecord::FrameRecord(SessionState& session, const FrameRequest& asked)
    : state(session),
      request(asked),
      ref(&session.services, this),
      params(asked.params ? *asked.params : session.params),
      layers({asked.layer, asked.layerWidth, asked.layerHeight, asked.texture}, asked) {}

void FrameRecord::Note(const Answer& answer) {
    commands.push_back(answer.record);
    PreRenderData::Add(total, answer.record.balance);
}

Result<PreRendered> PreRenderFrame(SessionState& state, const FrameRequest& request) {
    const std::string problem = ProblemWith(state, request);
    if (!problem.empty()) return Failure{ErrorKind::kInternal, problem};
    PreRendered answered;
    std::set<std::string> suites;
    if (auto failure = RunPass(state, request, nullptr, answered, nullptr, suites)) return *failure;
    return answered;
}

Result<Frame> RenderFrame(SessionState& state, const FrameRequest& request) {
    const std::string problem = ProblemWith(state, request);
    if (!problem.empty()) return Failure{ErrorKind::kInternal, problem};
    PreRendered answered;
    std::set<std::string> suites;
    std::optional<PF_LRect> everything;
    if (request.canvas == Canvas::kGrow && !request.region) {
        if (auto failure = RunPass(state, request, nullptr, answered, nullptr, suites)) return *failure;
        everything = answered.maxRect;
    }
    Frame frame;
    if (auto failure = RunPass(state, request, everything ? &*everything : nullptr, answered, &frame, suites)) {
        return *failure;
    }
    if (frame.output.IsNull()) frame.output = World::Create(0, 0, request.layer->PixelDepth());
    frame.rect = answered.resultRect;
    frame.maxRect = answered.maxRect;
    frame.commands = std::move(answered.commands);
    for (const CommandRecord& record : frame.commands) {
        if (record.message.empty()) continue;
        frame.message = record.message;
        frame.messageIsError = record.messageIsError;
    }
    frame.suites.assign(suites.begin(), suites.end());
    return frame;
}

}  // namespace umbrant::host
