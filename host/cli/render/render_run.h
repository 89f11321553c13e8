// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One run of `umbrant render`, from its plan to its last file, for a single image as for a sequence.

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "host/cli/color/render_colors.h"
#include "host/cli/recipe/like.h"
#include "host/cli/render/image_progress.h"
#include "host/cli/render/progress_text.h"
#include "host/cli/render/render_options.h"
#include "host/cli/render/render_plan.h"
#include "host/render/background.h"
#include "host/render/effect_instances.h"
#include "host/render/worker.h"
#include "host/session/renderer.h"

namespace umbrant::host {

class RenderRun {
 public:
    RenderRun(RenderOptions options, bool isImage) : options_(std::move(options)), isImage_(isImage) {}

    /// Draws everything. Fails before the first frame, or as its frames did.
    Result<ExitCode> Run();
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
    /// Draws and writes a single image.
    Result<ExitCode> DrawImage(FirstFrame first);
    /// Prints the path of a single image that was written, or its report.
    void PrintImage(const ImageFacts& image, const EffectSession& session, double total);
    Result<ExitCode> DrawSequence(FirstFrame first);
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
};

}  // namespace umbrant::host
