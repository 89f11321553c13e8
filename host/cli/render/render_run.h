// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One run of `umbrant render`, from its plan to its last file, for a single image as for a sequence.

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/color/render_colors.h"
#include "host/cli/recipe/like.h"
#include "host/cli/render/image_progress.h"
#include "host/cli/render/outcome/frame_cost.h"
#include "host/cli/render/progress_text.h"
#include "host/cli/render/render_options.h"
#include "host/cli/render/render_plan.h"
#include "host/render/background.h"
#include "host/render/effect_instances.h"
#include "host/render/worker.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// One of several runs of the same options, after files have changed.
struct RepeatedRender {
    std::set<std::string> changed;  ///< the images that changed since the run before; empty for a run of all frames
    std::string canvas;             ///< of the run before, as CanvasText gives it; each run sets it
};

class RenderRun {
 public:
    RenderRun(RenderOptions options, bool isImage) : options_(std::move(options)), isImage_(isImage) {}

    /// Draws everything. Fails before the first frame, or as its frames did.
    Result<ExitCode> Run();
    /// For a dry run: its cost goes there instead of being printed.
    void KeepCost(RenderCost& cost) { cost_ = &cost; }
    /// Draws only frames that show a changed file, unless the canvas of all has changed. For a sequence of images.
    void Repeat(RepeatedRender& again) { again_ = &again; }
    /// See CanvasOfSet.
    Result<std::string> FindCanvasOfSet();

 private:
    /// The layer of a single image, for its report.
    struct ImageFacts {
        double load = 0;  ///< milliseconds
        int width = 0;
        int height = 0;
        Depth depth = Depth::k8;
    };

    void FillJob();
    /// Sets what all images cover, unless each covers what is drawn in it; and the values that move.
    Result<Done> FindCanvas(OpenedEffect& effect, const FirstFrame& first);
    std::optional<CanvasFacts> Covered() const;
    Result<Done> StartInstances(EffectSession& session, const FirstFrame& first);
    /// Finds the canvas that is tight around all images of a set, by drawing them once without writing them.
    Result<Done> FindTightCanvas();
    float LeastVisible(Depth depth, const WriteOptions& kept) const;
    /// What becomes of each image between drawing and writing.
    Result<Done> FinishImage(Drawn& image, const WriteOptions& kept);
    Result<Done> BeginClip(const FirstFrame& first);
    /// What every output says about how it was drawn; reports how this differs from the recipe that was asked for.
    void PrepareRecipe(const OpenedEffect& effect);
    std::string ResolvedCanvas() const;
    /// Leaves frames out of the plan that show no changed file.
    void LeaveOutUnchanged();
    /// Takes them back if the canvas is another one.
    Result<Done> CompareCanvas(FirstFrame& first);
    /// Draws and writes a single image.
    Result<ExitCode> DrawImage(FirstFrame first);
    /// Prints the path of a single image that was written, or its report.
    void PrintImage(const ImageFacts& image, const EffectSession& session, double total);
    Result<ExitCode> DrawSequence(FirstFrame first);
    /// Reports what the run costs. Without a session there is no frame to draw.
    Result<ExitCode> DryRun(const FirstFrame& first, EffectSession* session, double startSeconds);
    Result<RenderCost> CostOf(const FirstFrame& first, EffectSession* session, double startSeconds);
    Result<Done> MeasureFrames(const FirstFrame& first, RenderCost& cost);
    std::set<std::filesystem::path> OutputFolders() const;
    void ReportMisbehaviour();
    void ReportNotesOf(const FrameLayers& layers) const;
    /// What a single image is at; a sequence has its own progress.
    void Say(const char* stage);

    RenderOptions options_;
    const bool isImage_;
    std::unique_ptr<RenderPlan> plan_;
    FrameJob job_;
    RendererDecision renderer_;
    std::optional<RecipeWriter> recipe_;
    EffectInstances instances_;
    std::optional<ImageProgress> image_;
    std::unique_ptr<Background> background_;
    RenderCost* cost_ = nullptr;
    RepeatedRender* again_ = nullptr;
    std::vector<PlannedFrame> allFrames_;  ///< of a repeated run that draws some of them
};

}  // namespace umbrant::host
