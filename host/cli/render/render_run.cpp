// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/render_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "host/cli/render/frame_progress.h"
#include "host/cli/render/render_report.h"
#include "host/cli/render/sequence_report.h"
#include "host/cli/results.h"
#include "host/compositing/memory_recycler.h"
#include "host/compositing/rectangles.h"
#include "host/process/files/abandoned_files.h"
#include "host/render/plan/frame_footprint.h"
#include "host/render/plan/memory_plan.h"

namespace umbrant::host {

namespace {

Result<Done> WriteToStandardOutput(const Drawn& drawn, const Placement& place, const WriteOptions& kept) {
    const auto bytes = TRY(EncodePicture(drawn.pixels, place, kept));
    PrintResult(bytes);
    return Done{};
}

}  // namespace

Result<ExitCode> RenderRun::Run() {
    Stopwatch whole;
    auto planned = TRY(isImage_ ? PlanImageRender(options_) : PlanSequenceRender(options_));
    plan_ = std::move(planned);
    if (again_) LeaveOutUnchanged();
    if (!allFrames_.empty() && plan_->frames.frames.empty()) return ExitCode::kDone;
    const auto preference = TRY(ReadRendererPreference(options_.renderer));
    if (!options_.background.empty()) background_ = TRY(Background::Read(options_.background));
    if (isImage_) image_.emplace(SecondsOfProgress(options_.sequence), options_.verbose);
    FillJob();
    Say("reading the images");
    auto first = ReadFirst(plan_->frames, *plan_->reader, options_.sequence.keepGoing);
    if (!first) return first.error();
    // Without a frame there is nothing to draw, and the summary says so.
    if (!first->layers.input) return options_.dryRun ? DryRun(*first, nullptr, 0) : DrawSequence(std::move(*first));
    ReportNotesOf(first->layers);
    const ImageFacts image{first->readTime, first->layers.input->pixels.Width(), first->layers.input->pixels.Height(),
                           first->layers.input->pixels.PixelDepth()};

    Say("loading and setting up the module");
    auto opened = TRY(OpenWithValues(options_, first->layers.input->width, first->layers.input->height,
                                     plan_->frames.frames[first->frame].position));
    EffectSession& session = opened.Session();
    renderer_ = DecideRenderer(preference, ReadGpuStrings(session.Params()));
    session.SetRenderer(renderer_.Request());
    TRY(FindCanvas(opened, *first));
    if (again_) {
        TRY(CompareCanvas(*first));
    }
    TRY(StartInstances(session, *first));
    if (options_.dryRun) {
        PrepareRecipe(opened);
        auto measured = DryRun(*first, &session, whole.Lap() / 1000);
        auto ended = instances_.End();
        return measured && !ended ? ended.error() : std::move(measured);
    }
    TRY(FindTightCanvas());
    PrepareRecipe(opened);
    TRY(BeginClip(*first));
    auto outcome = isImage_ ? DrawImage(std::move(*first)) : DrawSequence(std::move(*first));
    if (isImage_ && !outcome) return outcome;
    auto ended = instances_.End();
    if (options_.verbose) ReportMisbehaviour();
    if (outcome && !ended) return ended.error();
    if (isImage_) PrintImage(image, session, whole.Lap());
    return outcome;
}

void RenderRun::FillJob() {
    job_.plan = &plan_->frames;
    job_.settings.downsample = options_.downsample;
    job_.settings.canvas = plan_->canvas.kind == CanvasChoice::Kind::kLayer ? Canvas::kLayer : Canvas::kGrow;
    std::tie(job_.settings.textureX, job_.settings.textureY) =
        ParsePoint(options_.textureAt).value_or(std::pair(0.0, 0.0));
    job_.keepGoing = options_.sequence.keepGoing;
    if (options_.colors) options_.colors->Connect(job_);
    job_.explain = [this](const Failure& failure, const EffectSession& session) {
        return renderer_.processor ? failure : Explain(failure, session);
    };
    job_.finish = [this](Drawn& image, const WriteOptions& kept) { return FinishImage(image, kept); };
    if (plan_->clips.Writes()) {
        job_.write = [this](const Drawn& drawn, const Placement& place, const WriteOptions&) {
            return plan_->clips.Write(drawn, place);
        };
    } else if (options_.output == "-") {
        job_.write = WriteToStandardOutput;
    }
    job_.shape = plan_->clips.Shape(ShapeFor(1));
}

Result<Done> RenderRun::StartInstances(EffectSession& session, const FirstFrame& first) {
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
        std::fputs(
            fmt::format("{}\nthreads: {} reading, {} drawing, {} writing; at most {} frames in progress, which take "
                        "up to {} MiB\n",
                        RendererText(renderer_), shape.readers, shape.drawers, shape.writers, shape.underWay,
                        (MostBytes(shape, footprint) >> 20) + 1)
                .c_str(),
            stderr);
    }
    return Done{};
}

Result<Done> RenderRun::BeginClip(const FirstFrame& first) {
    if (!plan_->clips.Writes()) return Done{};
    const PF_LRect padded = plan_->clips.Padded(*job_.picture);
    if (!Same(padded, *job_.picture)) {
        TellNotes(options_,
                  fmt::format("the clip has {} x {} pixels, as its codec has even sides only; the result has {} x {}",
                              WidthOf(padded), HeightOf(padded), WidthOf(*job_.picture), HeightOf(*job_.picture)),
                  "");
        job_.picture = padded;
    }
    return plan_->clips.Begin(plan_->frames, *job_.picture, first.layers.input->pixels, !options_.sequence.noSound,
                              recipe_->WholeText());
}

void RenderRun::PrepareRecipe(const OpenedEffect& effect) {
    const auto covered = Covered();
    const std::string canvas = covered ? CanvasText(covered->layer) : ResolvedCanvas();
    Recipe recipe = RecipeOf(options_, effect.module, effect.params, renderer_, canvas);
    if (isImage_) recipe.frame = options_.frame;
    ReportDifferences(options_, recipe);
    recipe_.emplace(options_, std::move(recipe), !effect.params.animation.IsEmpty());
    job_.recipe = [this](const PlannedFrame& frame) { return recipe_->TextOf(frame, isImage_); };
}

std::string RenderRun::ResolvedCanvas() const {
    return !options_.canvas.empty() ? options_.canvas : plan_->clips.Writes() ? "layer" : "grow";
}

Result<ExitCode> RenderRun::DrawImage(FirstFrame first) {
    TRY(DrawFrames(job_, instances_.All(), *plan_->reader, std::move(first), *image_));
    if (image_->Outcome().failure) return *image_->Outcome().failure;
    return ExitCode::kDone;
}

void RenderRun::PrintImage(const ImageFacts& image, const EffectSession& session, double total) {
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

Result<ExitCode> RenderRun::DrawSequence(FirstFrame first) {
    auto form = ReadProgress(options_.sequence.progress, options_.sequence.quiet).value_or(ProgressOptions{});
    form.canvas = Covered();
    FrameProgress progress(plan_->frames, form, !options_.json && !plan_->clips.Writes());
    progress.SetKeepsGoing(options_.sequence.keepGoing);
    if (!plan_->clips.Note().empty()) progress.Note(plan_->clips.Note());
    if (const std::string removed = RemoveAbandonedFiles(OutputFolders()); !removed.empty()) progress.Note(removed);
    const MemoryRecycler recycler;
    TRY(DrawFrames(job_, instances_.All(), *plan_->reader, std::move(first), progress));
    const FrameTotals totals = progress.Finish();
    if (plan_->clips.Writes() && totals.failed == 0) {
        const auto finished = TRY(plan_->clips.Finish());
        if (finished && !options_.json) PrintResult(options_.output + "\n");
    }
    if (options_.json) {
        const SequenceFacts facts{options_.input, options_.output, renderer_.Name(), ResolvedCanvas(), Covered()};
        PrintResult(
            SequenceReport(facts, plan_->frames, job_.shape, progress.Outcomes(), progress.Seconds(), plan_->clips));
    }
    if (totals.failed == 0) return ExitCode::kDone;
    if (options_.sequence.keepGoing) return ExitCode::kEffectFailed;
    return totals.failure;
}

std::set<std::filesystem::path> RenderRun::OutputFolders() const {
    if (plan_->frames.frames.empty()) return {};
    // The frame's number is in the name of the file, so one folder has all of them.
    return {FolderOf(options_.output)};
}

void RenderRun::ReportMisbehaviour() {
    for (const EffectSession* session : instances_.All()) {
        for (const std::string& misstep : session->Misbehaviour()) {
            const std::string line = "the effect misbehaved: " + misstep + "\n";
            image_ ? image_->Print(line) : static_cast<void>(std::fputs(line.c_str(), stderr));
        }
    }
}

void RenderRun::ReportNotesOf(const FrameLayers& layers) const {
    TellNotes(options_, layers.input->note, layers.input->metadataNote);
    const WriteOptions& kept = layers.input->kept;
    TellNotes(options_,
              ColorNote(kept.metadata.get(), options_.input, options_.output, options_.format,
                        options_.colors != nullptr, kept.colors),
              "");
    if (layers.texture && isImage_) TellNotes(options_, layers.texture->note, "");
}

void RenderRun::Say(const char* stage) {
    if (image_) image_->Say(stage);
}

Result<RenderOptions> WholeOptions(const RenderOptions& asked) {
    const RenderOptions like = TRY(WithRecipe(asked));
    return WithColors(like);
}

Result<ExitCode> Render(const RenderOptions& asked) {
    const RenderOptions options = TRY(WholeOptions(asked));
    const auto many = TRY(MeansSequence(options));
    if (many) {
        TRY(CheckNoTime(options));
    }
    return RenderRun(options, !many).Run();
}

}  // namespace umbrant::host
