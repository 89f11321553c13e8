// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/sheet/sheet_frames.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "host/cli/presets/named_presets.h"
#include "host/cli/render/progress.h"
#include "host/cli/render/render_plan.h"
#include "host/cli/settings.h"
#include "host/compositing/memory_shortage.h"
#include "host/compositing/rectangles.h"
#include "host/compositing/resample.h"
#include "host/compositing/resize.h"
#include "host/render/plan/frame_numbers.h"
#include "host/render/plan/output_check.h"
#include "host/render/set_canvas.h"
#include "host/render/tight_canvas.h"

namespace umbrant::host {

namespace {

/// Knows which frame is written, and keeps the first failure.
class SheetWatcher : public FrameWatcher {
 public:
    void Begins(std::size_t frame, FrameStep step, const EffectSession*) override {
        if (step == FrameStep::kWrite) written_ = frame;
    }
    void Ends(std::size_t frame, const FrameOutcome& outcome) override {
        if (!outcome.failure || failure_) return;
        failure_ = outcome.failure;
        failed_ = frame;
    }
    std::size_t Written() const { return written_; }
    Result<Done> Outcome(const FramePlan& plan) const {
        if (!failure_) return Done{};
        if (plan.isImage) return *failure_;
        return Failure{failure_->kind, fmt::format("frame {}: {}", plan.frames[failed_].number, failure_->sentence)};
    }

 private:
    std::size_t written_ = 0;
    std::size_t failed_ = 0;
    std::optional<Failure> failure_;
};

PF_LRect UnionOf(const PF_LRect& a, const PF_LRect& b) {
    if (IsEmpty(a)) return b;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

/// A part larger on all sides.
PF_LRect WithMargin(const PF_LRect& rect) {
    constexpr double kPart = 0.04;
    const auto margin = static_cast<A_long>(std::ceil(kPart * std::max(WidthOf(rect), HeightOf(rect))));
    return {rect.left - margin, rect.top - margin, rect.right + margin, rect.bottom + margin};
}

/// One frame after the other: the effect itself draws with all cores.
PipelineShape OneByOne() {
    PipelineShape shape;
    shape.underWay = 2;
    shape.inOrder = true;
    return shape;
}

}  // namespace

Result<std::unique_ptr<SheetFrames>> SheetFrames::Open(SheetJob job) {
    std::unique_ptr<SheetFrames> frames(new SheetFrames(std::move(job)));
    TRY(frames->Plan());
    TRY(frames->ReadValues());
    return frames;
}

Result<Done> SheetFrames::Plan() {
    RenderOptions render = job_.render;
    render.preset.clear();
    render.settings.clear();
    render.output.clear();
    choice_ = TRY(ParseCanvas(render.canvas.empty() ? "tight" : render.canvas));
    if (choice_.kind == CanvasChoice::Kind::kFrame) {
        return Failure{ErrorKind::kUsage,
                       "--canvas frame gives each frame its own size, and all images of a sheet have one size; use "
                       "grow, layer, tight or LEFT,TOP,RIGHT,BOTTOM"};
    }
    const bool isPattern = TRY(MeansSequence(render));
    const bool many = !job_.layer && isPattern;
    PlanRequest request = TRY(SequenceRequest(render));
    if (many) {
        TRY(CheckNoTime(render));
        TRY(clips_.Open(render, request));
        request.writesNothing = true;
        plan_ = TRY(PlanFrames(request));
    } else {
        plan_ = PlanImage({render.input, render.texture, "", render.seconds, request.rate, request.zeroFrame});
        plan_.wholeSet = {{FrameNumber(0), plan_.frames[0].time}};
    }
    LayerOptions layers;
    layers.read = render.read;
    if (render.depth != 0) layers.depth = render.depth == 32 ? Depth::k32 : Depth::k8;
    layers.downsample = render.downsample;
    clips_.Connect(layers);
    reader_.emplace(std::move(layers));
    background_ = TRY(Background::Read(render.background));
    if (job_.layer) {
        first_.layers.input = job_.layer;
    } else {
        first_ = TRY(ReadFirst(plan_, *reader_, false));
        if (!first_.layers.input) return Failure{ErrorKind::kFile, "no frame of the input can be read"};
        TellNotes(render, first_.layers.input->note, "");
    }
    effect_ = TRY(OpenWithValues(render, first_.layers.input->width, first_.layers.input->height,
                                 plan_.frames[first_.frame].position));
    defaults_ = effect_->params.values;
    const auto preference = TRY(ReadRendererPreference(render.renderer));
    renderer_ = DecideRenderer(preference, ReadGpuStrings(effect_->Session().Params()));
    effect_->Session().SetRenderer(renderer_.Request());
    return Done{};
}

Result<Done> SheetFrames::ReadValues() {
    for (const SheetCombination& combination : job_.combinations) {
        AnimatedParams params{defaults_, {}};
        const std::string preset = TRY(PresetFile(combination.preset));
        TRY(ApplyValues(preset, combination.settings, params));
        values_.push_back(std::move(params));
    }
    return Done{};
}

std::vector<std::string> SheetFrames::FrameLabels() const {
    std::vector<std::string> labels;
    if (plan_.isImage) return labels;
    for (const PlannedFrame& frame : plan_.frames) labels.push_back(fmt::format("Frame {}", frame.number));
    return labels;
}

Result<Done> SheetFrames::CheckApartFrom(const std::string& output) const {
    for (const PlannedFrame& frame : plan_.frames) {
        for (const std::string& read : {frame.input, frame.texture}) {
            if (read.empty() || read == "-") continue;
            TRY(CheckApart(read, output));
        }
    }
    return Done{};
}

double SheetFrames::PositionOf(const AnimatedParams& params) const {
    if (!job_.showsMiddle || params.animation.IsEmpty()) return plan_.frames[0].position;
    double first = 0;
    double last = 0;
    bool isBegun = false;
    for (const RowTrack& track : params.animation.Tracks()) {
        const double begin = track.track.FrameOf(track.track.keys.front(), effect_->clock);
        const double end = track.track.FrameOf(track.track.keys.back(), effect_->clock);
        first = isBegun ? std::min(first, begin) : begin;
        last = isBegun ? std::max(last, end) : end;
        isBegun = true;
    }
    return (first + last) / 2;
}

Result<FrameJob> SheetFrames::JobOf(std::size_t combination) {
    const AnimatedParams& params = values_[combination];
    const double position = PositionOf(params);
    EffectSession& session = effect_->Session();
    session.Params() = params.animation.ValuesAt(params.values, position, effect_->clock);
    if (auto updated = session.UpdateParamsUI(); !updated) return Explain(updated.error(), session);
    FrameJob job;
    job.plan = &plan_;
    job.settings.downsample = job_.render.downsample;
    job.settings.canvas = choice_.kind == CanvasChoice::Kind::kLayer ? Canvas::kLayer : Canvas::kGrow;
    std::tie(job.settings.textureX, job.settings.textureY) =
        ParsePoint(job_.render.textureAt).value_or(std::pair(0.0, 0.0));
    if (!params.animation.IsEmpty()) {
        job.values = [this, &params, position](double frame, const ParamSet& base) {
            return params.animation.ValuesAt(base, plan_.isImage ? position : frame, effect_->clock);
        };
    }
    job.explain = [this](const Failure& failure, const EffectSession& drawing) {
        return renderer_.processor ? failure : Explain(failure, drawing);
    };
    job.shape = OneByOne();
    return job;
}

Result<Done> SheetFrames::FindCanvas() {
    const World& layer = first_.layers.input->pixels;
    const int downsample = job_.render.downsample;
    canvas_ = {};
    if (choice_.kind == CanvasChoice::Kind::kLayer) {
        canvas_ = {0, 0, layer.Width(), layer.Height()};
    } else if (choice_.kind == CanvasChoice::Kind::kRectangle) {
        canvas_ = DrawnCanvas(choice_.rectangle, downsample);
    } else if (choice_.kind == CanvasChoice::Kind::kGrow) {
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const FrameJob job = TRY(JobOf(i));
            canvas_ = UnionOf(canvas_, SetCanvas(job, first_.layers, effect_->Session(), job_.render.read));
        }
    } else {
        VisibleUnion visible;
        for (std::size_t i = 0; i < values_.size(); ++i) {
            FrameJob job = TRY(JobOf(i));
            job.write = [&](const Drawn& image, const Placement&, const WriteOptions&) -> Result<Done> {
                // Cells have 8 bits.
                visible.Add(VisibleRect(image, LeastAlpha(FileDepth::k8)));
                return Done{};
            };
            SheetWatcher watcher;
            TRY(DrawFrames(job, {&effect_->Session()}, *reader_, first_, watcher));
            TRY(watcher.Outcome(plan_));
        }
        canvas_ = visible.Rectangle();
        // What touches the edges of an image looks cut off.
        if (job_.render.canvas.empty()) canvas_ = WithMargin(canvas_);
    }
    TRY(CheckCanvas(canvas_, downsample));
    const double width = WidthOf(canvas_);
    const double height = HeightOf(canvas_);
    const double scale = std::min(1.0, job_.cell / std::max(width, height));
    cellWidth_ = std::max(1, static_cast<int>(std::lround(width * scale)));
    cellHeight_ = std::max(1, static_cast<int>(std::lround(height * scale)));
    return Done{};
}

Result<std::vector<World>> SheetFrames::Draw() {
    std::vector<World> cells(Count());
    std::size_t done = 0;
    StatusLine line;
    const bool isTerminal = isatty(STDERR_FILENO) != 0;
    line.Start(std::chrono::seconds(isTerminal ? 2 : 10), std::chrono::seconds(isTerminal ? 1 : 10), [&] {
        const std::string text = fmt::format("umbrant: {} of {} images drawn", done, cells.size());
        isTerminal ? line.Show(text) : line.Print(text + "\n");
    });
    for (std::size_t i = 0; i < values_.size(); ++i) {
        FrameJob job = TRY(JobOf(i));
        SheetWatcher watcher;
        job.picture = canvas_;
        job.write = [&](const Drawn& drawn, const Placement&, const WriteOptions&) -> Result<Done> {
            const WorldPart whole{0, 0, static_cast<double>(WidthOf(canvas_)), static_cast<double>(HeightOf(canvas_))};
            Drawn cell{Resize(drawn.pixels, whole, cellWidth_, cellHeight_), {0, 0, cellWidth_, cellHeight_}};
            if (!cell.pixels.IsNull() && cell.pixels.PixelDepth() != Depth::k8) {
                cell.pixels = ConvertDepth(cell.pixels, Depth::k8);
            }
            if (cell.pixels.IsNull()) return NotEnoughMemory("an image of the sheet");
            TRY(background_->PutBehind(cell));
            const std::lock_guard lock(line.Mutex());
            cells[i * plan_.frames.size() + watcher.Written()] = std::move(cell.pixels);
            ++done;
            return Done{};
        };
        TRY(DrawFrames(job, {&effect_->Session()}, *reader_, first_, watcher));
        TRY(watcher.Outcome(plan_));
    }
    line.Stop();
    TRY(effect_->Session().End());
    return cells;
}

}  // namespace umbrant::host
