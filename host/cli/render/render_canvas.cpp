// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the images of a run cover.

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "host/cli/render/render_run.h"
#include "host/compositing/rectangles.h"
#include "host/render/set_canvas.h"

namespace umbrant::host {

namespace {

std::string CannotFind(const std::string& reason) {
    std::fputs(fmt::format("umbrant: the canvas of the whole set is not known here: {}; each task determines its own "
                           "from the frames that exist then; --canvas LEFT,TOP,RIGHT,BOTTOM fixes it\n",
                           reason)
                   .c_str(),
               stderr);
    return "";
}

}  // namespace

Result<Done> RenderRun::FindCanvas(OpenedEffect& effect, const FirstFrame& first) {
    if (!effect.params.animation.IsEmpty()) {
        // What the effect itself keeps in its rows stays; only what moves is set for each frame.
        job_.values = [&effect, colors = options_.colors](double each, const ParamSet& params) {
            ParamSet values = effect.params.animation.ValuesAt(params, each, effect.clock);
            // Those that keep still are in the session, converted already.
            if (colors) colors->ConvertValues(values, &effect.params.animation);
            return values;
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
                all = {std::min(all.left, layer.left), std::min(all.top, layer.top), std::max(all.right, layer.right),
                       std::max(all.bottom, layer.bottom)};
            }
            job_.picture = all;
            break;
        }
    }
    return CheckCanvas(*job_.picture, options_.downsample);
}

std::optional<CanvasFacts> RenderRun::Covered() const {
    if (!job_.picture) return std::nullopt;
    return CanvasFacts{FullSizeCanvas(*job_.picture, options_.downsample), WidthOf(*job_.picture),
                       HeightOf(*job_.picture)};
}

Result<std::string> RenderRun::FindCanvasOfSet() {
    options_.sequence.skipExisting = false;
    options_.sequence.keepGoing = true;
    auto planned = TRY(PlanSequenceRender(options_));
    plan_ = std::move(planned);
    FillJob();
    const bool changes = plan_->frames.input.pattern || plan_->frames.texture.pattern || !options_.preset.empty();
    if (plan_->canvas.kind != CanvasChoice::Kind::kGrow || !changes) return std::string();
    const auto first = ReadFirst(plan_->frames, *plan_->reader, true);
    if (!first || !first->layers.input) return CannotFind("none of the input's frames can be read yet");
    auto opened = OpenWithValues(options_, first->layers.input->width, first->layers.input->height,
                                 plan_->frames.frames[first->frame].position);
    // The machines of a farm may have a module that this one lacks.
    if (!opened && opened.error().kind == ErrorKind::kModule) return CannotFind(opened.error().sentence);
    if (!opened) return opened.error();
    TRY(FindCanvas(*opened, *first));
    TRY(opened->Session().End());
    return CanvasText(FullSizeCanvas(*job_.picture, options_.downsample));
}

Result<std::string> CanvasOfSet(const RenderOptions& options) {
    return RenderRun(options, false).FindCanvasOfSet();
}

}  // namespace umbrant::host
