// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render`: a plan of one image or of many frames, and everything from the plan to the last file.

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

#include "host/cli/clip_endpoints.h"
#include "host/cli/frame_progress.h"
#include "host/cli/image_progress.h"
#include "host/cli/output_folder.h"
#include "host/cli/render_options.h"
#include "host/cli/render_plan.h"
#include "host/cli/render_report.h"
#include "host/cli/results.h"
#include "host/cli/sequence_report.h"
#include "host/compositing/memory_recycler.h"
#include "host/compositing/rectangles.h"
#include "host/process/abandoned_files.h"
#include "host/render/effect_instances.h"
#include "host/render/frame_footprint.h"
#include "host/render/memory_plan.h"
#include "host/render/set_canvas.h"
#include "host/render/worker.h"
#include "host/session/renderer.h"

namespace {

/// A render from its plan to its last file.
class RenderRun {
 public:
    RenderRun(RenderOptions options, bool isImage) : options_(std::move(options)), isImage_(isImage) {}

    Result<ExitCode> Run() {
        Stopwatch whole;
        auto planned = isImage_ ? PlanImageRender(options_) : PlanSequenceRender(options_);
        if (!planned) return planned.Error();
        plan_ = std::move(*planned);
        const auto preference = ReadRendererPreference(options_.renderer);
        if (!preference) return preference.Error();
        if (isImage_) image_.emplace(SecondsOfProgress(options_.sequence), options_.verbose);
        FillJob();
        Say("reading the images");
        auto first = ReadFirst(plan_->frames, *plan_->reader, options_.sequence.keepGoing);
        if (!first) return first.Error();
        // Without a frame there is nothing to draw, and the summary says so.
        if (!first->layers.input) return DrawSequence(std::move(*first));
        TellNotesOf(first->layers);
        const ImageFacts image{first->readTime, first->layers.input->pixels.Width(),
                               first->layers.input->pixels.Height(), first->layers.input->pixels.PixelDepth()};

        Say("loading and setting up the module");
        auto opened = OpenWithValues(options_, first->layers.input->width, first->layers.input->height,
                                     plan_->frames.frames[first->frame].position);
        if (!opened) return opened.Error();
        EffectSession& session = opened->Session();
        renderer_ = DecideRenderer(*preference, ReadGpuStrings(session.Params()));
        session.SetRenderer(renderer_.Request());
        if (auto found = FindCanvas(*opened, *first); !found) return found.Error();
        if (auto started = StartInstances(session, *first); !started) return started.Error();
        if (auto begun = BeginClip(*first); !begun) return begun.Error();
        auto outcome = isImage_ ? DrawImage(std::move(*first)) : DrawSequence(std::move(*first));
        if (isImage_ && !outcome) return outcome;
        auto ended = instances_.End();
        if (options_.verbose) TellMisbehaviour();
        if (outcome && !ended) return ended.Error();
        if (isImage_) PrintImage(image, session, whole.Lap());
        return outcome;
    }

    /// See CanvasOfSet.
    Result<std::string> FindCanvasOfSet() {
        options_.sequence.skipExisting = false;
        options_.sequence.keepGoing = true;
        auto planned = PlanSequenceRender(options_);
        if (!planned) return planned.Error();
        plan_ = std::move(*planned);
        FillJob();
        const bool changes = plan_->frames.input.pattern || plan_->frames.texture.pattern || !options_.preset.empty();
        if (plan_->canvas.kind != CanvasChoice::Kind::kGrow || !changes) return std::string();
        const auto first = ReadFirst(plan_->frames, *plan_->reader, true);
        if (!first || !first->layers.input) return CannotFind("none of the input's frames can be read yet");
        auto opened = OpenWithValues(options_, first->layers.input->width, first->layers.input->height,
                                     plan_->frames.frames[first->frame].position);
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
            fmt::format("umbrant: the canvas of the whole set is not known here: {}; each task determines its own "
                        "from the frames that exist then; --canvas LEFT,TOP,RIGHT,BOTTOM fixes it\n",
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
        switch (plan_->canvas.kind) {
            case CanvasChoice::Kind::kFrame:
                return Done{};
            case CanvasChoice::Kind::kLayer:
                // Layers may differ in size, except in a clip.
                if (plan_->clips.Writes()) job_.picture = layer;
                return Done{};
            case CanvasChoice::Kind::kRectangle:
                job_.picture = DrawnCanvas(plan_->canvas.rectangle, options_.downsample);
                break;
            case CanvasChoice::Kind::kGrow: {
                // A single image covers what is drawn in it.
                if (isImage_) return Done{};
                PF_LRect all = SetCanvas(job_, first.layers, effect.Session(), options_.read);
                if (plan_->clips.Writes()) {
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

    void FillJob() {
        job_.plan = &plan_->frames;
        job_.settings.downsample = options_.downsample;
        job_.settings.canvas = plan_->canvas.kind == CanvasChoice::Kind::kLayer ? Canvas::kLayer : Canvas::kGrow;
        std::tie(job_.settings.textureX, job_.settings.textureY) =
            ParsePoint(options_.textureAt).value_or(std::pair(0.0, 0.0));
        job_.keepGoing = options_.sequence.keepGoing;
        job_.explain = [this](const Failure& failure, const EffectSession& session) {
            return renderer_.processor ? failure : Explain(failure, session);
        };
        if (plan_->clips.Writes()) {
            job_.write = [this](const Drawn& drawn, const Placement& place, const WriteOptions&) {
                return plan_->clips.Write(drawn, place);
            };
        } else if (options_.output == "-") {
            job_.write = WriteToStandardOutput;
        }
        job_.shape = plan_->clips.Shape(ShapeFor(1));
    }

    static Result<Done> WriteToStandardOutput(const Drawn& drawn, const Placement& place, const WriteOptions& kept) {
        const auto bytes = EncodePicture(drawn.pixels, place, kept);
        if (!bytes) return bytes.Error();
        PrintResult(*bytes);
        return Done{};
    }

    Result<Done> StartInstances(EffectSession& session, const FirstFrame& first) {
        if (isImage_) {
            if (options_.verbose) {
                image_->Print(CommandsText(session.Commands()) + RendererText(renderer_) + "\n");
            }
            return instances_.Start(session, 1);
        }
        const FrameFootprint footprint = Footprint(job_, first, session);
        MachineLimits machine = ThisMachine();
        machine.mostDrawers = MostDrawers(renderer_, ReadGpuStrings(session.Params()));
        int drawers = options_.sequence.threads > 0 ? options_.sequence.threads : DrawersFor(machine, footprint);
        drawers =
            std::min<int>(drawers, static_cast<int>(std::min<std::size_t>(plan_->frames.frames.size(), kMostThreads)));
        if (auto started = instances_.Start(session, drawers); !started) return started;
        job_.shape = plan_->clips.Shape(ShapeFor(static_cast<int>(instances_.All().size())));
        // Who names the number of threads has counted.
        if (options_.sequence.threads == 0) job_.shape = FitInto(job_.shape, footprint, MemoryForFrames(machine));
        PipelineShape alone = job_.shape;
        alone.underWay = 1;
        alone.drawers = 1;
        job_.frameBytes = MostBytes(alone, footprint);
        if (options_.verbose) {
            const PipelineShape& shape = job_.shape;
            std::fputs(fmt::format(
                           "{}\nthreads: {} reading, {} drawing, {} writing; at most {} frames in progress, which take "
                           "up to {} MiB\n",
                           RendererText(renderer_), shape.readers, shape.drawers, shape.writers, shape.underWay,
                           (MostBytes(shape, footprint) >> 20) + 1)
                           .c_str(),
                       stderr);
        }
        return Done{};
    }

    Result<Done> BeginClip(const FirstFrame& first) {
        if (!plan_->clips.Writes()) return Done{};
        return plan_->clips.Begin(plan_->frames, *job_.picture, first.layers.input->pixels, !options_.sequence.noSound);
    }

    /// The layer of a single image, for its report.
    struct ImageFacts {
        double load = 0;  ///< milliseconds
        int width = 0;
        int height = 0;
        Depth depth = Depth::k8;
    };

    /// Draws and writes a single image.
    Result<ExitCode> DrawImage(FirstFrame first) {
        const auto run = DrawFrames(job_, instances_.All(), *plan_->reader, std::move(first), *image_);
        if (!run) return run.Error();
        if (image_->Outcome().failure) return *image_->Outcome().failure;
        return ExitCode::kDone;
    }

    /// Prints the path of a single image that was written, or its report.
    void PrintImage(const ImageFacts& image, const EffectSession& session, double total) {
        image_->Stop();
        if (options_.output == "-") return;
        if (!options_.json) return PrintResult(options_.output + "\n");
        RenderFacts facts;
        facts.input = options_.input;
        facts.output = options_.output;
        facts.layerWidth = image.width;
        facts.layerHeight = image.height;
        facts.depth = static_cast<int>(image.depth);
        facts.downsample = options_.downsample;
        facts.canvas = options_.canvas.empty() ? "grow" : options_.canvas;
        facts.picture = image_->Outcome().picture;
        facts.load = image.load;
        facts.save = image_->SaveTime();
        facts.total = total;
        PrintResult(RenderReport(facts, renderer_, image_->Record(), session));
    }

    Result<ExitCode> DrawSequence(FirstFrame first) {
        auto form = ReadProgress(options_.sequence.progress, options_.sequence.quiet).value_or(ProgressOptions{});
        form.canvas = Covered();
        FrameProgress progress(plan_->frames, form, !options_.json && !plan_->clips.Writes());
        progress.SetKeepsGoing(options_.sequence.keepGoing);
        if (!plan_->clips.Note().empty()) progress.Note(plan_->clips.Note());
        if (const std::string removed = RemoveAbandonedFiles(OutputFolders()); !removed.empty()) progress.Note(removed);
        const MemoryRecycler recycler;
        const auto run = DrawFrames(job_, instances_.All(), *plan_->reader, std::move(first), progress);
        if (!run) return run.Error();
        const FrameTotals totals = progress.Finish();
        if (plan_->clips.Writes() && totals.failed == 0) {
            const auto finished = plan_->clips.Finish();
            if (!finished) return finished.Error();
            if (*finished && !options_.json) PrintResult(options_.output + "\n");
        }
        if (options_.json) {
            const std::string canvas = !options_.canvas.empty() ? options_.canvas
                                       : plan_->clips.Writes()  ? "layer"
                                                                : "grow";
            const SequenceFacts facts{options_.input, options_.output, renderer_.Name(), canvas, Covered()};
            PrintResult(SequenceReport(facts, plan_->frames, job_.shape, progress.Outcomes(), progress.Seconds(),
                                       plan_->clips.Report()));
        }
        if (totals.failed == 0) return ExitCode::kDone;
        if (options_.sequence.keepGoing) return ExitCode::kEffectFailed;
        return totals.failure;
    }

    std::set<std::filesystem::path> OutputFolders() const {
        if (plan_->clips.Writes()) return {FolderOf(options_.output)};
        std::set<std::filesystem::path> folders;
        for (const PlannedFrame& frame : plan_->frames.frames) folders.insert(FolderOf(frame.output));
        return folders;
    }

    void TellMisbehaviour() {
        for (const EffectSession* session : instances_.All()) {
            for (const std::string& misstep : session->Misbehaviour()) {
                const std::string line = "the effect misbehaved: " + misstep + "\n";
                image_ ? image_->Print(line) : static_cast<void>(std::fputs(line.c_str(), stderr));
            }
        }
    }

    /// What a single image is at; a sequence has its own progress.
    void Say(const char* stage) {
        if (image_) image_->Say(stage);
    }

    void TellNotesOf(const FrameLayers& layers) const {
        TellNotes(options_, layers.input->note, layers.input->metadataNote);
        if (layers.texture && isImage_) TellNotes(options_, layers.texture->note, "");
    }

    RenderOptions options_;
    const bool isImage_;
    std::unique_ptr<RenderPlan> plan_;
    FrameJob job_;
    RendererDecision renderer_;
    EffectInstances instances_;
    std::optional<ImageProgress> image_;
};

}  // namespace

Result<std::string> CanvasOfSet(const RenderOptions& options) {
    return RenderRun(options, false).FindCanvasOfSet();
}

Result<ExitCode> Render(const RenderOptions& options) {
    const auto many = MeansSequence(options);
    if (!many) return many.Error();
    if (*many) {
        if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    }
    return RenderRun(options, !*many).Run();
}
