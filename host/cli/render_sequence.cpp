// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` over many frames.

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

#include "host/cli/clip_ends.h"
#include "host/cli/frame_progress.h"
#include "host/cli/render_options.h"
#include "host/cli/results.h"
#include "host/cli/sequence_report.h"
#include "host/process/abandoned_files.h"
#include "host/sequence/draw_frames.h"
#include "host/sequence/memory_plan.h"
#include "host/session/renderer.h"

namespace {

Result<PlanRequest> RequestOf(const RenderOptions& options) {
    const SequenceOptions& sequence = options.sequence;
    PlanRequest request;
    request.input = options.input;
    request.texture = options.texture;
    request.output = options.output;
    if (!sequence.frames.empty()) {
        auto frames = ParseFrames(sequence.frames);
        if (!frames) return frames.Error();
        request.frames = std::move(*frames);
    }
    if (!sequence.chunk.empty()) {
        const auto chunk = ParseChunk(sequence.chunk);
        if (!chunk) return chunk.Error();
        request.chunk = *chunk;
    }
    const auto rate = ParseRate(sequence.rate.empty() ? "24" : sequence.rate);
    if (!rate) return rate.Error();
    request.rate = *rate;
    request.inputOffset = sequence.inputOffset;
    request.textureOffset = sequence.textureOffset;
    request.missing = sequence.missing == "hold"   ? MissingFrames::kHold
                      : sequence.missing == "skip" ? MissingFrames::kSkip
                                                   : MissingFrames::kError;
    request.keepGoing = sequence.keepGoing;
    request.skipExisting = sequence.skipExisting;
    request.zeroFrame = sequence.zeroFrame;
    return request;
}

Result<Done> CheckNoTime(const RenderOptions& options) {
    for (const std::string& file : {options.input, options.texture, options.output}) {
        if (file != "-") continue;
        return Failure{ExitCode::kUsage, "'-' is a single image; the frames of a sequence need files"};
    }
    if (options.seconds == 0) return Done{};
    return Failure{ExitCode::kUsage,
                   "--time is about a single picture; the frames of a sequence have their times "
                   "from --rate and --zero-frame"};
}

/// The first frame that is to be drawn and can be read: the session is about its size. Without one there is nothing to
/// draw.
Result<FirstFrame> ReadFirst(const FramePlan& plan, LayerReader& reader, bool keepGoing) {
    for (std::size_t i = 0; i < plan.frames.size(); ++i) {
        if (plan.frames[i].state != PlannedFrame::State::kDraw) continue;
        auto layers = reader.Read(plan.frames[i]);
        if (layers) return FirstFrame{i, std::move(*layers)};
        if (!keepGoing) {
            return Failure{layers.Error().code,
                           fmt::format("frame {}: {}", plan.frames[i].number, layers.Error().sentence)};
        }
    }
    return FirstFrame{};
}

std::uint64_t BytesOf(const World& world) {
    return static_cast<std::uint64_t>(world.Height()) * static_cast<std::uint64_t>(world.Def().rowbytes);
}

std::uint64_t AreaOf(const PF_LRect& rect) {
    const auto side = [](A_long low, A_long high) {
        return static_cast<std::uint64_t>(std::max<std::int64_t>(0, std::int64_t{high} - low));
    };
    return side(rect.left, rect.right) * side(rect.top, rect.bottom);
}

/// The frame's pixels that the effect makes of these layers, asked with the values of up to `most` of the frames, which
/// may move, and at least the layer's. An effect that fails when it is asked will fail in that frame again, and be told
/// of there.
std::vector<PF_LRect> PicturesOf(const FrameJob& job, const FirstFrame& first, EffectSession& session,
                                 std::size_t most) {
    const World& layer = first.layers.input->pixels;
    const auto& frames = job.plan->frames;
    const std::size_t asked = job.values ? std::min(frames.size(), most) : 1;
    std::vector<PF_LRect> pictures = {{0, 0, layer.Width(), layer.Height()}};
    for (std::size_t i = 0; i < asked; ++i) {
        const PlannedFrame& frame = job.values ? frames[i * frames.size() / asked] : frames[first.frame];
        std::optional<ParamSet> values;
        if (job.values) values = job.values(frame.number.Value(), session.Params());
        const auto answer = session.PreRender(RequestFor(job, frame, first.layers, values ? &*values : nullptr));
        if (!answer) continue;
        pictures.push_back(job.canvas == Canvas::kGrow ? answer->maxRect : answer->resultRect);
    }
    return pictures;
}

std::uint64_t LargestArea(const std::vector<PF_LRect>& pictures) {
    std::uint64_t largest = 0;
    for (const PF_LRect& picture : pictures) largest = std::max(largest, AreaOf(picture));
    return largest;
}

/// The frame of a clip, in which each of its pictures has room; the first picture is the layer.
PF_LRect ClipCanvas(const FrameJob& job, const std::vector<PF_LRect>& pictures) {
    PF_LRect all = pictures.front();
    if (job.canvas == Canvas::kLayer) return all;
    for (const PF_LRect& one : pictures) {
        if (AreaOf(one) == 0) continue;
        all = {std::min(all.left, one.left), std::min(all.top, one.top), std::max(all.right, one.right),
               std::max(all.bottom, one.bottom)};
    }
    return all;
}

/// What a frame costs, judged by the layers of the first one.
FrameFootprint Footprint(const FrameJob& job, const FirstFrame& first, EffectSession& session) {
    constexpr std::size_t kAsked = 64;
    const Layer& layer = *first.layers.input;
    FrameFootprint footprint;
    footprint.file =
        static_cast<std::uint64_t>(layer.width) * static_cast<std::uint64_t>(layer.height) * (layer.bits > 8 ? 16 : 4);
    footprint.layer = BytesOf(layer.pixels);
    if (first.layers.texture) footprint.texture = BytesOf(first.layers.texture->pixels);
    footprint.outputPixels = LargestArea(PicturesOf(job, first, session, kAsked));
    footprint.output = footprint.outputPixels * static_cast<std::uint64_t>(BytesPerPixel(layer.pixels.PixelDepth()));
    return footprint;
}

/// Software OpenGL has the cores for itself, and each drawing thread has buffers of its own: one frame in the effect
/// and one outside of it is all that is gained.
int MostDrawers(const RendererDecision& renderer, const GpuStrings& gpu) {
    return !renderer.processor && IsSoftware(gpu) ? 2 : kMostThreads;
}

/// The sessions of the drawing threads; the first is the module's own.
struct Instances {
    std::vector<EffectSession> others;
    std::vector<EffectSession*> all;

    Result<Done> Start(EffectSession& first, int count) {
        all = {&first};
        // Effects that do not say so may not be called from several threads.
        if (!(first.OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING)) count = 1;
        others.reserve(static_cast<std::size_t>(count));
        for (int i = 1; i < count; ++i) {
            auto another = EffectSession::StartInstance(first);
            if (!another) return another.Error();
            others.push_back(std::move(*another));
            all.push_back(&others.back());
            if (auto updated = others.back().UpdateParamsUI(); !updated) return updated.Error();
        }
        return Done{};
    }

    /// The first instance last.
    Result<Done> End() {
        Result<Done> outcome = Done{};
        for (auto session = all.rbegin(); session != all.rend(); ++session) {
            auto ended = (*session)->End();
            if (!ended && outcome) outcome = ended;
        }
        return outcome;
    }
};

/// A sequence from its plan to its last picture.
class SequenceRender {
 public:
    explicit SequenceRender(RenderOptions options) : options_(std::move(options)) {}

    Result<ExitCode> Run() {
        const auto wish = ReadRendererWish(options_.renderer);
        if (!wish) return wish.Error();
        if (auto planned = Plan(); !planned) return planned.Error();
        auto first = ReadFirst(plan_, *reader_, options_.sequence.keepGoing);
        if (!first) return first.Error();
        FillJob();
        if (first->layers.input) TellNotes(options_, first->layers.input->note, first->layers.input->metadataNote);
        if (!first->layers.input) return Draw(std::move(*first));

        const PlannedFrame& frame = plan_.frames[first->frame];
        auto opened =
            OpenWithValues(options_, first->layers.input->width, first->layers.input->height, frame.number.Value());
        if (!opened) return opened.Error();
        renderer_ = DecideRenderer(*wish, ReadGpuStrings(opened->Session().Params()));
        opened->Session().SetRenderer(renderer_.Request());
        if (!opened->params.animation.IsEmpty()) {
            // What the effect itself keeps in its rows stays; only what moves is set for each frame.
            job_.values = [&effect = *opened](double each, const ParamSet& params) {
                return effect.params.animation.ValuesAt(params, each, effect.clock);
            };
        }
        if (auto started = StartInstances(opened->Session(), *first); !started) return started.Error();
        if (auto begun = BeginClip(opened->Session(), *first); !begun) return begun.Error();
        auto outcome = Draw(std::move(*first));
        if (options_.verbose) TellMisbehaviour();
        auto ended = instances_.End();
        if (outcome && !ended) return ended.Error();
        return outcome;
    }

 private:
    Result<Done> Plan() {
        auto request = RequestOf(options_);
        if (!request) return request.Error();
        if (auto open = clips_.Open(options_, *request); !open) return open;
        options_.sequence.rate = fmt::format("{}/{}", request->rate.scale, request->rate.step);
        auto planned = PlanFrames(*request);
        if (!planned) return planned.Error();
        plan_ = std::move(*planned);
        if (!options_.preset.empty()) {
            for (const PlannedFrame& frame : plan_.frames) {
                if (auto apart = CheckApart(options_.preset, frame.output); !apart) return apart;
            }
        }
        // A clip has its own ways of storing.
        if (!clips_.Writes() || !options_.compression.empty()) {
            if (auto known = CheckStorage(options_); !known) return known;
        }
        LayerOptions layers;
        layers.read = options_.read;
        layers.outputDepth = FileDepthNamed(options_.outputDepth);
        if (options_.depth != 0) layers.depth = options_.depth == 32 ? Depth::k32 : Depth::k8;
        layers.downsample = options_.downsample;
        layers.compression = options_.compression;
        clips_.Connect(layers);
        reader_.emplace(std::move(layers));
        return Done{};
    }

    void FillJob() {
        job_.plan = &plan_;
        job_.downsample = options_.downsample;
        const bool grows = options_.canvas == "grow" || (options_.canvas.empty() && !clips_.Writes());
        job_.canvas = grows ? Canvas::kGrow : Canvas::kLayer;
        std::tie(job_.textureX, job_.textureY) = PlaceOf(options_.textureAt).value_or(std::pair(0.0, 0.0));
        job_.keepGoing = options_.sequence.keepGoing;
        job_.explain = [this](const Failure& failure, const EffectSession& session) {
            return renderer_.processor ? failure : Explain(failure, session);
        };
        if (clips_.Writes()) {
            job_.write = [this](const Drawn& drawn, const Placement& place) { return clips_.Write(drawn, place); };
        }
        job_.shape = clips_.Shape(ShapeFor(1));
    }

    Result<Done> StartInstances(EffectSession& session, const FirstFrame& first) {
        const FrameFootprint footprint = Footprint(job_, first, session);
        MachineLimits machine = ThisMachine();
        machine.mostDrawers = MostDrawers(renderer_, ReadGpuStrings(session.Params()));
        int drawers = options_.sequence.threads > 0 ? options_.sequence.threads : DrawersFor(machine, footprint);
        drawers = std::min<int>(drawers, static_cast<int>(std::min<std::size_t>(plan_.frames.size(), kMostThreads)));
        if (auto started = instances_.Start(session, drawers); !started) return started;
        job_.shape = clips_.Shape(ShapeFor(static_cast<int>(instances_.all.size())));
        // Who names the number of threads has counted.
        if (options_.sequence.threads == 0) job_.shape = FitInto(job_.shape, footprint, MemoryForFrames(machine));
        PipelineShape alone = job_.shape;
        alone.underWay = 1;
        job_.frameBytes = MostBytes(alone, footprint);
        if (options_.verbose) {
            const PipelineShape& shape = job_.shape;
            std::fputs(
                fmt::format("{}\nthreads: {} reading, {} drawing, {} writing; at most {} frames under way, which take "
                            "up to {} MiB\n",
                            RendererText(renderer_), shape.readers, shape.drawers, shape.writers, shape.underWay,
                            (MostBytes(shape, footprint) >> 20) + 1)
                    .c_str(),
                stderr);
        }
        return Done{};
    }

    Result<Done> BeginClip(EffectSession& session, const FirstFrame& first) {
        if (!clips_.Writes()) return Done{};
        const PF_LRect canvas = ClipCanvas(job_, PicturesOf(job_, first, session, plan_.frames.size()));
        return clips_.Begin(plan_, canvas, first.layers.input->pixels, !options_.sequence.noSound);
    }

    Result<ExitCode> Draw(FirstFrame first) {
        FrameProgress progress(
            plan_, ReadProgress(options_.sequence.progress, options_.sequence.quiet).value_or(ProgressOptions{}),
            !options_.json && !clips_.Writes());
        progress.SetKeepsGoing(options_.sequence.keepGoing);
        if (!clips_.Note().empty()) progress.Note(clips_.Note());
        if (const std::string removed = RemoveAbandonedFiles(OutputFolders()); !removed.empty()) progress.Note(removed);
        const auto run = DrawFrames(job_, instances_.all, *reader_, std::move(first), progress);
        if (!run) return run.Error();
        const FrameTotals totals = progress.Finish();
        if (clips_.Writes() && totals.failed == 0) {
            const auto finished = clips_.Finish();
            if (!finished) return finished.Error();
            if (*finished && !options_.json) PrintResult(options_.output + "\n");
        }
        if (options_.json) {
            const SequenceFacts facts{options_.input, options_.output, renderer_.Name()};
            PrintResult(SequenceReport(facts, plan_, job_.shape, progress, clips_.Report()));
        }
        if (totals.failed == 0) return ExitCode::kDone;
        if (options_.sequence.keepGoing) return ExitCode::kEffectFailed;
        return totals.firstFailure;
    }

    std::set<std::filesystem::path> OutputFolders() const {
        if (clips_.Writes()) return {FolderOf(options_.output)};
        std::set<std::filesystem::path> folders;
        for (const PlannedFrame& frame : plan_.frames) folders.insert(FolderOf(frame.output));
        return folders;
    }

    void TellMisbehaviour() const {
        for (const EffectSession* session : instances_.all) {
            for (const std::string& misstep : session->Misbehaviour()) {
                std::fputs(("the effect misbehaved: " + misstep + "\n").c_str(), stderr);
            }
        }
    }

    RenderOptions options_;
    ClipEnds clips_;
    std::optional<LayerReader> reader_;
    FramePlan plan_;
    FrameJob job_;
    RendererDecision renderer_;
    Instances instances_;
};

}  // namespace

double SecondsOfProgress(const SequenceOptions& options) {
    if (options.quiet) return 0;
    const bool isNumber = options.progress.find_first_not_of("0123456789.") == std::string::npos;
    return options.progress.empty() || !isNumber ? -1 : std::stod(options.progress);
}

Result<bool> MeansSequence(const RenderOptions& options) {
    if (auto fits = CheckClipOptions(options); !fits) return fits.Error();
    if (IsClipName(options.input) || IsClipName(options.texture)) return true;
    const auto request = RequestOf(options);
    if (!request) return request.Error();
    const auto many = MeansSequence(*request);
    if (many && !*many && IsClipName(options.output)) {
        return Failure{ExitCode::kUsage,
                       fmt::format("'{}' is a clip, but '{}' is a single picture; say which frames to "
                                   "draw with --frames",
                                   options.output, options.input)};
    }
    return many;
}

Result<std::vector<FrameNumber>> FramesOf(const RenderOptions& options) {
    if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    if (!options.compression.empty() || !IsClipName(options.output)) {
        if (auto known = CheckStorage(options); !known) return known.Error();
    }
    if (IsClipName(options.output)) {
        return Failure{
            ExitCode::kUsage,
            fmt::format("the tasks of a job draw frames with files of their own, and '{}' is one file; let them "
                        "draw pictures, and then make a clip of those",
                        options.output)};
    }
    auto request = RequestOf(options);
    if (!request) return request.Error();
    ClipEnds clips;
    if (auto open = clips.Open(options, *request); !open) return open.Error();
    return WholeFrameSet(*request);
}

Result<ExitCode> RenderSequence(const RenderOptions& options) {
    if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    return SequenceRender(options).Run();
}
