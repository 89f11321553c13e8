// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// `--like FILE`: options and values from the recipe of a file; and the recipe of what is drawn.

#include <string>

#include "host/cli/recipe/recipe.h"
#include "host/cli/render/render_options.h"
#include "host/render/plan/frame_plan.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// Declares --like and --no-recipe, and lets the options remember which of them were given.
void AddRecipeOptions(CLI::App& app, const std::shared_ptr<RenderOptions>& options);

/// The options with those of the recipe that --like names, where the command line has none of that name. Sets
/// UMBRANT_CPU_EXACT as the recipe's pixel version needs it. Without --like the options themselves. Fails as ReadRecipe
/// does, and with `ErrorKind::kUsage` for an option that is unknown or has a wrong value.
Result<RenderOptions> WithRecipe(const RenderOptions& options);

/// Sets the values of the recipe that --like names, if it names one. Fails with `ErrorKind::kUsage` for parameters that
/// the module does not have and values that it does not take.
Result<Done> ApplyRecipeValues(const RenderOptions& options, AnimatedParams& params);

/// The recipe of what these options draw with a module and its values, `canvas` being the text of --canvas that gives
/// the same one.
Recipe RecipeOf(const RenderOptions& options, const OpenedModule& module, const AnimatedParams& params,
                const RendererDecision& renderer, const std::string& canvas);

/// How this run draws otherwise than the file that --like names, as a line on standard error for each difference.
void ReportDifferences(const RenderOptions& options, const Recipe& drawn);

/// The texts of a run's frames.
class RecipeWriter {
 public:
    /// `moves`: values differ between frames. Reports on standard error, unless the options are quiet, a recipe that is
    /// too long for a file.
    RecipeWriter(const RenderOptions& options, Recipe recipe, bool moves);
    /// Empty where no recipe is written. Any thread.
    std::string TextOf(const PlannedFrame& frame, bool isImage) const;
    /// That of a clip as a whole.
    std::string WholeText() const;

 private:
    Recipe recipe_;
    bool writes_ = false;
    bool moves_ = false;
};

}  // namespace umbrant::host
