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
#include "host/cli/output_folder.h"
#include "host/cli/render_options.h"
#include "host/cli/results.h"
#include "host/cli/sequence_report.h"
#include "host/compositing/memory_recycler.h"
#include "host/compositing/rectangles.h"
#include "host/process/abandoned_files.h"
#include "host/render/draw_frames.h"
#include "host/render/frame_footprint.h"
#include "host/render/memory_plan.h"
#include "host/render/sequence_canvas.h"
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
        if (auto found = FindCanvas(*opened, *first); !found) return found.Error();
        if (auto started = StartInstances(opened->Session(), *first); !started) return started.Error();
        if (auto begun = BeginClip(*first); !begun) return begun.Error();
        auto outcome = Draw(std::move(*first));
        if (options_.verbose) TellMisbehaviour();
        auto ended = instances_.End();
        if (outcome && !ended) return ended.Error();
        return outcome;
    }

    /// See CanvasOfSet.
    Result<std::string> FindCanvasOfSet() {
        options_.sequence.skipExisting = false;
        options_.sequence.keepGoing = true;
        if (auto planned = Plan(); !planned) return planned.Error();
        FillJob();
        const bool changes = plan_.input.pattern || plan_.texture.pattern || !options_.preset.empty();
        if (canvas_.kind != CanvasChoice::Kind::kGrow || !changes) return std::string();
        const auto first = ReadFirst(plan_, *reader_, true);
        if (!first || !first->layers.input) return CannotFind("none of the input's frames can be read yet");
        auto opened = OpenWithValues(options_, first->layers.input->width, first->layers.input->height,
                                     plan_.frames[first->frame].number.Value());
        // The machines of a farm may have a module that this one lacks.
        if (!opened && opened.Error().code == ExitCode::kModule) return CannotFind(opened.Error().sentence);
        if (!opened) return opened.Error();
        if (auto found = FindCanvas(*opened, *first); !found) return found.Error();
        if (auto ended = opened->Session().End(); !ended) return ended.Error();
        return CanvasText(FullSizeCanvas(*job_.picture, options_.downsample));
    }

 private:
    static std::string CannotFind(const std::string& reason) {
        std::fputs(
            fmt::format("umbrant: the canvas of the whole set is not known here: {}; each task finds one itself, "
                        "from the frames that are there then; --canvas LEFT,TOP,RIGHT,BOTTOM fixes it\n",
                        reason)
                .c_str(),
            stderr);
        return "";
    }

    /// Sets what all images cover, unless each covers what is drawn in it; and the values that move.
    Result<Done> FindCanvas(OpenedEffect& effect, const FirstFrame& first) {
        if (!effect.params.animation.IsEmpty()) {
            // What the effect itself keeps in its rows stays; only what moves is set for each frame.
            job_.values = [&effect](double each, const ParamSet& params) {
                return effect.params.animation.ValuesAt(params, each, effect.clock);
            };
        }
        const World& pixels = first.layers.input->pixels;
        const PF_LRect layer{0, 0, pixels.Width(), pixels.Height()};
        switch (canvas_.kind) {
            case CanvasChoice::Kind::kFrame:
                return Done{};
            case CanvasChoice::Kind::kLayer:
                // Layers may differ in size, except in a clip.
                if (clips_.Writes()) job_.picture = layer;
                return Done{};
            case CanvasChoice::Kind::kRectangle:
                job_.picture = DrawnCanvas(canvas_.rectangle, options_.downsample);
                break;
            case CanvasChoice::Kind::kGrow: {
                PF_LRect all = SetCanvas(job_, first.layers, effect.Session(), options_.read);
                if (clips_.Writes()) {
                    all = {std::min(all.left, layer.left), std::min(all.top, layer.top),
                           std::max(all.right, layer.right), std::max(all.bottom, layer.bottom)};
                }
                job_.picture = all;
                break;
            }
        }
        return CheckCanvas(*job_.picture, options_.downsample);
    }

    std::optional<CanvasFacts> Covered() const {
        if (!job_.picture) return std::nullopt;
        return CanvasFacts{FullSizeCanvas(*job_.picture, options_.downsample), WidthOf(*job_.picture),
                           HeightOf(*job_.picture)};
    }

    Result<Done> Plan() {
        auto request = RequestOf(options_);
        if (!request) return request.Error();
        auto folder = OutputFolder::For(options_.output, options_.makesFolder);
        if (!folder) return folder.Error();
        folder_.emplace(std::move(*folder));
        if (auto open = clips_.Open(options_, *request); !open) return open;
        options_.sequence.rate = fmt::format("{}/{}", request->rate.scale, request->rate.step);
        const auto canvas = ParseCanvas(!options_.canvas.empty() ? options_.canvas
                                        : request->outputIsClip  ? "layer"
                                                                 : "grow");
        if (!canvas) return canvas.Error();
        canvas_ = *canvas;
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
        job_.canvas = canvas_.kind == CanvasChoice::Kind::kLayer ? Canvas::kLayer : Canvas::kGrow;
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
        alone.drawers = 1;
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

    Result<Done> BeginClip(const FirstFrame& first) {
        if (!clips_.Writes()) return Done{};
        return clips_.Begin(plan_, *job_.picture, first.layers.input->pixels, !options_.sequence.noSound);
    }

    Result<ExitCode> Draw(FirstFrame first) {
        auto form = ReadProgress(options_.sequence.progress, options_.sequence.quiet).value_or(ProgressOptions{});
        form.canvas = Covered();
        FrameProgress progress(plan_, form, !options_.json && !clips_.Writes());
        progress.SetKeepsGoing(options_.sequence.keepGoing);
        if (!clips_.Note().empty()) progress.Note(clips_.Note());
        if (const std::string removed = RemoveAbandonedFiles(OutputFolders()); !removed.empty()) progress.Note(removed);
        const MemoryRecycler recycler;
        const auto run = DrawFrames(job_, instances_.all, *reader_, std::move(first), progress);
        if (!run) return run.Error();
        const FrameTotals totals = progress.Finish();
        if (clips_.Writes() && totals.failed == 0) {
            const auto finished = clips_.Finish();
            if (!finished) return finished.Error();
            if (*finished && !options_.json) PrintResult(options_.output + "\n");
        }
        if (options_.json) {
            const std::string canvas = !options_.canvas.empty() ? options_.canvas : clips_.Writes() ? "layer" : "grow";
            const SequenceFacts facts{options_.input, options_.output, renderer_.Name(), canvas, Covered()};
            PrintResult(SequenceReport(facts, plan_, job_.shape, progress, clips_.Report()));
        }
        if (totals.failed == 0) return ExitCode::kDone;
        if (options_.sequence.keepGoing) return ExitCode::kEffectFailed;
        return totals.failure;
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
    std::optional<OutputFolder> folder_;
    CanvasChoice canvas_;
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
    const auto folder = OutputFolder::For(options.output, options.makesFolder);
    if (!folder) return folder.Error();
    auto request = RequestOf(options);
    if (!request) return request.Error();
    ClipEnds clips;
    if (auto open = clips.Open(options, *request); !open) return open.Error();
    return WholeFrameSet(*request);
}

Result<std::string> CanvasOfSet(const RenderOptions& options) {
    return SequenceRender(options).FindCanvasOfSet();
}

Result<ExitCode> RenderSequence(const RenderOptions& options) {
    if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    return SequenceRender(options).Run();
}
