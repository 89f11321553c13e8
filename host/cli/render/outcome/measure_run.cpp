// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Draws a few frames of a run, writes none, and counts what they take.

#include <sys/resource.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <system_error>

#include "host/cli/render/outcome/frame_cost.h"
#include "host/cli/render/render_run.h"
#include "host/cli/results.h"
#include "host/compositing/rectangles.h"
#include "host/process/files/abandoned_files.h"
#include "host/render/plan/frame_footprint.h"
#include "host/render/plan/memory_plan.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Frames take seconds where many samples are drawn at a large size; then fewer are measured.
constexpr double kEnoughSeconds = 5;

/// Keeps what became of the last frame.
class LastOutcome : public FrameWatcher {
 public:
    void Begins(std::size_t, FrameStep, const EffectSession*) override {}
    void Ends(std::size_t, const FrameOutcome& outcome) override { outcome_ = outcome; }
    const FrameOutcome& Outcome() const { return outcome_; }

 private:
    FrameOutcome outcome_;
};

/// The first, the middle and the last of the frames that are to be drawn; of a clip, which is read in its order, the
/// first ones.
std::vector<std::size_t> FramesToMeasure(const FramePlan& plan, std::size_t first) {
    std::vector<std::size_t> drawn;
    for (std::size_t i = first; i < plan.frames.size(); ++i) {
        if (plan.frames[i].state == PlannedFrame::State::kDraw) drawn.push_back(i);
    }
    if (drawn.size() <= 3) return drawn;
    if (plan.input.clipFrames || plan.texture.clipFrames) return {drawn[0], drawn[1], drawn[2]};
    return {drawn.front(), drawn[drawn.size() / 2], drawn.back()};
}

/// The name by which EncodePicture knows the format of a file.
std::string FormatOf(const std::string& output, const std::string& format) {
    if (!format.empty()) return format;
    std::string extension = fs::path(output).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".tiff") return "tif";
    if (extension == ".jpeg") return "jpg";
    return extension.empty() ? extension : extension.substr(1);
}

std::uint64_t LargestSize() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<std::uint64_t>(used.ru_maxrss) * 1024;
}

}  // namespace

Result<Done> RenderRun::MeasureFrames(const FirstFrame& first, RenderCost& cost) {
    // The same plan with one frame. There may be a million others, which are not copied.
    std::vector<PlannedFrame> all;
    all.swap(plan_->frames.frames);
    FramePlan one = plan_->frames;
    all.swap(plan_->frames.frames);
    FrameJob job = job_;
    job.plan = &one;
    job.shape = {1, 1, 1, 1};
    job.keepGoing = true;
    std::uint64_t bytes = 0;
    const std::string format = FormatOf(options_.output, options_.format);
    job.write = [&](const Drawn& drawn, const Placement& place, const WriteOptions& kept) -> Result<Done> {
        if (plan_->clips.Writes()) return Done{};
        WriteOptions options = kept;
        options.format = format;
        const auto encoded = TRY(EncodePicture(drawn.pixels, place, options));
        bytes = encoded.size();
        return Done{};
    };
    std::vector<std::size_t> frames = FramesToMeasure(plan_->frames, first.frame);
    // What the first frame makes for all is not counted for each.
    bool warmsUp = cost.frames > 1;
    if (warmsUp) frames.insert(frames.begin(), first.frame);
    const auto begin = Clock::now();
    for (const std::size_t index : frames) {
        const bool isEnough = std::chrono::duration<double>(Clock::now() - begin).count() > kEnoughSeconds;
        if (isEnough && !cost.measured.empty()) break;
        one.frames.assign(1, plan_->frames.frames[index]);
        LastOutcome watcher;
        FirstFrame here{0, {}, 0};
        if (index == first.frame && (warmsUp || cost.frames == 1)) here = {0, first.layers, first.readTime};
        TRY(DrawFrames(job, {instances_.All().front()}, *plan_->reader, std::move(here), watcher));
        const FrameOutcome& outcome = watcher.Outcome();
        if (outcome.failure && !warmsUp) {
            if (cost.failures.Count() == 0) cost.failure = *outcome.failure;
            cost.failures.Add(plan_->frames, plan_->frames.frames[index], *outcome.failure);
        }
        if (outcome.kind == FrameOutcome::Kind::kDrawn && !warmsUp) {
            cost.measured.push_back({one.frames[0].number, WidthOf(outcome.picture), HeightOf(outcome.picture),
                                     outcome.readTime, outcome.drawTime, outcome.writeTime, bytes});
        }
        warmsUp = false;
    }
    return Done{};
}

Result<RenderCost> RenderRun::CostOf(const FirstFrame& first, EffectSession* session, double startSeconds) {
    RenderCost cost;
    cost.isImage = isImage_;
    cost.isClip = plan_->clips.Writes();
    for (const PlannedFrame& frame : plan_->frames.frames) {
        ++(frame.state == PlannedFrame::State::kDraw ? cost.frames : cost.left);
    }
    if (!session) {
        // Those that are to be drawn cannot be read.
        if (cost.frames > 0) {
            TRY(ReadFirst(plan_->frames, *plan_->reader, false));
        }
        return cost;
    }
    cost.startSeconds = startSeconds;
    if (const auto covered = Covered()) cost.canvas = "--canvas " + CanvasText(covered->layer);
    cost.shape = isImage_ ? PipelineShape{1, 1, 1, 1} : job_.shape;
    cost.frameMemory = MostBytes(cost.shape, Footprint(job_, first, *session));
    TRY(MeasureFrames(first, cost));
    if (cost.measured.empty()) {
        return isImage_ ? cost.failure : Failure{cost.failure.kind, cost.failures.Text()};
    }
    cost.processMemory = LargestSize();
    if (options_.output != "-") {
        cost.folder = FolderOf(options_.output).string();
        std::error_code error;
        const fs::space_info space = fs::space(cost.folder, error);
        if (!error) cost.freeBytes = space.available;
    }
    return cost;
}

Result<ExitCode> RenderRun::DryRun(const FirstFrame& first, EffectSession* session, double startSeconds) {
    auto cost = TRY(CostOf(first, session, startSeconds));
    if (image_) image_->Stop();
    if (cost_) {
        *cost_ = std::move(cost);
        return ExitCode::kDone;
    }
    PrintResult(options_.json ? CostReport(cost) : CostText(cost));
    return ExitCode::kDone;
}

Result<RenderCost> MeasureRender(RenderOptions options) {
    const auto many = TRY(MeansSequence(options));
    options.dryRun = true;
    RenderCost cost;
    RenderRun run(std::move(options), !many);
    run.KeepCost(cost);
    TRY(run.Run());
    return cost;
}

}  // namespace umbrant::host
