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
#include "host/render/tight_canvas.h"

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

constexpr char kAllTransparent[] =
    "the result is entirely transparent; --canvas tight then covers one pixel, the layer's first";

/// For frames that are only looked at.
class SilentWatcher : public FrameWatcher {
 public:
    void Begins(std::size_t, FrameStep, const EffectSession*) override {}
    void Ends(std::size_t, const FrameOutcome&) override {}
};

std::string FramesText(std::size_t count) {
    return count == 1 ? "1 frame" : fmt::format("{} frames", count);
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
        case CanvasChoice::Kind::kTight:
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

Result<Done> RenderRun::FindTightCanvas() {
    if (isImage_ || plan_->canvas.kind != CanvasChoice::Kind::kTight) return Done{};
    // All frames count, as for every canvas of a set: those of other chunks and those that are there already.
    RenderOptions all = options_;
    all.sequence.chunk.clear();
    all.sequence.skipExisting = false;
    all.sequence.keepGoing = true;
    auto planned = TRY(PlanSequenceFrames(all, *plan_));
    if (!options_.sequence.quiet) {
        std::fputs(fmt::format("umbrant: drawing {} once to find the tight canvas\n", FramesText(planned.frames.size()))
                       .c_str(),
                   stderr);
    }
    VisibleUnion visible;
    FrameJob job = job_;
    job.plan = &planned;
    // A frame that fails here fails again, and is reported, when it is drawn to be written.
    job.keepGoing = true;
    job.finish = [&](Drawn& image, const WriteOptions& kept) -> Result<Done> {
        visible.Add(VisibleRect(image, LeastVisible(image.pixels.PixelDepth(), kept)));
        return Done{};
    };
    job.write = [](const Drawn&, const Placement&, const WriteOptions&) -> Result<Done> { return Done{}; };
    SilentWatcher watcher;
    TRY(DrawFrames(job, instances_.All(), *plan_->reader, {}, watcher));
    if (visible.IsNothing()) TellNotes(options_, kAllTransparent, "");
    job_.picture = visible.Rectangle();
    return CheckCanvas(*job_.picture, options_.downsample);
}

float RenderRun::LeastVisible(Depth depth, const WriteOptions& kept) const {
    // The pixels of a clip pass as integers.
    return LeastAlpha(plan_->clips.Writes() ? FileDepth::k16 : DepthInFile(options_.output, depth, kept));
}

Result<Done> RenderRun::FinishImage(Drawn& image, const WriteOptions& kept) {
    if (isImage_ && plan_->canvas.kind == CanvasChoice::Kind::kTight) {
        PF_LRect visible = VisibleRect(image, LeastVisible(image.pixels.PixelDepth(), kept));
        if (IsEmpty(visible)) {
            if (!options_.sequence.quiet) image_->Print(fmt::format("note: {}\n", kAllTransparent));
            visible = kNothingVisible;
        }
        TRY(CutTo(visible, image));
    }
    return background_ ? background_->PutBehind(image) : Done{};
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
