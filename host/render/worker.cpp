// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/worker.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <new>
#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

/// Milliseconds since it was made.
class Timer {
 public:
    double Taken() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin_).count();
    }

 private:
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

/// The layers that an effect asks for while it draws a frame, each read once for it.
class OtherTimes {
 public:
    OtherTimes(const FramePlan& plan, LayerReader& reader, const FrameLayers& own)
        : plan_(plan), reader_(reader), own_(own) {}

    Result<MomentLayers> LayersAt(const Moment& moment) {
        const int number = FrameShownAt(plan_, moment);
        auto known = read_.find(number);
        if (known == read_.end()) {
            PlannedFrame frame;
            frame.input = plan_.input.ShownAt(number);
            if (!plan_.texture.path.empty()) frame.texture = plan_.texture.ShownAt(number);
            frame.inputClipFrame = plan_.input.ClipFrameShownAt(number);
            frame.textureClipFrame = plan_.texture.ClipFrameShownAt(number);
            frame.inputChanges = plan_.input.HasFrames();
            frame.textureChanges = plan_.texture.HasFrames();
            auto layers = reader_.Read(frame, own_.input->pixels.PixelDepth());
            if (!layers) {
                return Failure{layers.error().kind,
                               fmt::format("the effect requests frame {}: {}", number, layers.error().sentence)};
            }
            known = read_.emplace(number, std::move(*layers)).first;
        }
        return WorldsOf(known->second);
    }

 private:
    const FramePlan& plan_;
    LayerReader& reader_;
    const FrameLayers& own_;
    std::map<int, FrameLayers> read_;
};

/// A frame under way.
struct Underway {
    FrameLayers layers;
    Drawn drawn;
    Placement place;
    WriteOptions kept;
    FrameOutcome outcome;
};

class FrameWorker {
 public:
    FrameWorker(const FrameJob& job, const std::vector<EffectSession*>& sessions, LayerReader& reader, FirstFrame first,
                FrameWatcher& watcher)
        : job_(job),
          sessions_(sessions),
          reader_(reader),
          watcher_(watcher),
          first_(std::move(first)),
          underway_(job.plan->frames.size()) {}

    AfterStep Read(std::size_t index) {
        const PlannedFrame& frame = job_.plan->frames[index];
        underway_[index] = std::make_unique<Underway>();
        Underway& work = *underway_[index];
        switch (frame.state) {
            case PlannedFrame::State::kExists:
                return End(index, FrameOutcome::Kind::kExists);
            case PlannedFrame::State::kSkipped:
                return End(index, FrameOutcome::Kind::kSkipped);
            case PlannedFrame::State::kMissing:
                return Fail(index,
                            {ErrorKind::kFile, fmt::format("cannot read {}: {}", frame.missing, frame.missingReason)});
            case PlannedFrame::State::kDraw:
                break;
        }
        watcher_.Begins(index, FrameStep::kRead, nullptr);
        const Timer timer;
        if (index == first_.frame && first_.layers.input) {
            work.layers = std::move(first_.layers);
            work.outcome.readTime = first_.readTime;
        } else {
            auto layers = reader_.Read(frame);
            if (!layers) return Fail(index, layers.error());
            work.layers = std::move(*layers);
            work.outcome.readTime = timer.Taken();
        }
        work.outcome.layerWidth = work.layers.input->width;
        work.outcome.layerHeight = work.layers.input->height;
        work.outcome.bits = work.layers.input->bits;
        return AfterStep::kGoOn;
    }

    AfterStep Draw(std::size_t index, int thread) {
        EffectSession& session = *sessions_[static_cast<std::size_t>(thread)];
        const PlannedFrame& frame = job_.plan->frames[index];
        Underway& work = *underway_[index];
        watcher_.Begins(index, FrameStep::kDraw, &session);
        const Timer timer;
        std::optional<ParamSet> values;
        if (job_.values) values = job_.values(frame.position, session.Params());
        FrameRequest request = RequestFor(job_, frame, work.layers, values ? &*values : nullptr);
        OtherTimes others(*job_.plan, reader_, work.layers);
        request.layersAt = [&](const Moment& moment) { return others.LayersAt(moment); };
        if (job_.values) {
            request.valuesAt = [&](const Moment& moment) {
                return job_.values(FrameAt(*job_.plan, moment), session.Params());
            };
        }
        auto drawn = session.Render(request);
        if (!drawn) return Fail(index, job_.explain ? job_.explain(drawn.error(), session) : drawn.error());
        watcher_.Draws(index, *drawn, session);
        work.outcome.message = drawn->message;
        const World& layer = work.layers.input->pixels;
        std::optional<PF_LRect> canvas = job_.picture;
        if (!canvas && job_.settings.canvas == Canvas::kLayer) canvas = PF_LRect{0, 0, layer.Width(), layer.Height()};
        auto picture = PictureOf(*drawn, canvas, layer.Width(), layer.Height(), layer.PixelDepth());
        if (!picture) return Fail(index, picture.error());
        work.drawn = std::move(*picture);
        work.kept = work.layers.input->kept;
        if (job_.recipe) work.kept.recipe = job_.recipe(frame);
        // A background is mixed with the values that are stored.
        if (job_.convert) {
            if (auto converted = job_.convert(work.drawn.pixels); !converted) return Fail(index, converted.error());
        }
        if (job_.finish) {
            if (auto finished = job_.finish(work.drawn, work.kept); !finished) return Fail(index, finished.error());
        }
        work.place = {work.drawn.rect, layer.Width(), layer.Height(), work.layers.input->frameOrigin};
        work.outcome.picture = work.drawn.rect;
        work.outcome.drawTime = timer.Taken();
        work.layers = {};
        return AfterStep::kGoOn;
    }

    AfterStep Write(std::size_t index) {
        Underway& work = *underway_[index];
        watcher_.Begins(index, FrameStep::kWrite, nullptr);
        const Timer timer;
        const std::string& output = job_.plan->frames[index].output;
        const auto written = job_.write ? job_.write(work.drawn, work.place, work.kept)
                                        : WritePicture(output, work.drawn.pixels, work.place, work.kept);
        if (!written) return Fail(index, written.error());
        work.outcome.writeTime = timer.Taken();
        return End(index, FrameOutcome::Kind::kDrawn);
    }

    /// A step that runs out of memory is a frame that fails.
    template <typename Step>
    AfterStep Guarded(std::size_t index, Step step) {
        try {
            return step();
        } catch (const std::bad_alloc&) {
            return Fail(index, job_.frameBytes > 0 ? NotEnoughMemory("the frame", job_.frameBytes)
                                                   : NotEnoughMemory("the frame"));
        }
    }

 private:
    AfterStep End(std::size_t index, FrameOutcome::Kind kind) {
        const std::unique_ptr<Underway> work = std::move(underway_[index]);
        work->outcome.kind = kind;
        watcher_.Ends(index, work->outcome);
        const bool ends = kind == FrameOutcome::Kind::kFailed && !job_.keepGoing;
        return ends ? AfterStep::kStopAll : AfterStep::kLeave;
    }

    AfterStep Fail(std::size_t index, const Failure& failure) {
        underway_[index]->outcome.failure = failure;
        return End(index, FrameOutcome::Kind::kFailed);
    }

    const FrameJob& job_;
    const std::vector<EffectSession*>& sessions_;
    LayerReader& reader_;
    FrameWatcher& watcher_;
    FirstFrame first_;
    std::vector<std::unique_ptr<Underway>> underway_;
};

}  // namespace

double FrameAt(const FramePlan& plan, const Moment& moment) {
    return plan.zeroFrame + plan.framesPerSecond * moment.value / moment.scale;
}

int FrameShownAt(const FramePlan& plan, const Moment& moment) {
    // Whole numbers, as a rounded quotient could show the frame before: 32 bits times no more than 20, and 32 times 17.
    const std::int64_t above = std::int64_t{moment.value} * plan.rate.scale;
    const std::int64_t below = std::int64_t{moment.scale} * plan.rate.step;
    constexpr std::int64_t kFarthest = std::int64_t{2} * kFarthestFrame;
    const std::int64_t since = above / below - (above % below < 0 ? 1 : 0);
    return static_cast<int>(std::clamp<std::int64_t>(plan.zeroFrame + since, -kFarthest, kFarthest));
}

FrameRequest RequestFor(const FrameJob& job, const PlannedFrame& frame, const FrameLayers& layers,
                        const ParamSet* params) {
    const FrameRate& rate = job.plan->rate;
    return MakeFrameRequest(WorldsOf(layers), job.settings, {frame.time, rate.step, job.plan->totalTime, rate.scale},
                            params);
}

Result<FirstFrame> ReadFirst(const FramePlan& plan, LayerReader& reader, bool keepGoing) {
    for (std::size_t i = 0; i < plan.frames.size(); ++i) {
        if (plan.frames[i].state != PlannedFrame::State::kDraw) continue;
        const Timer timer;
        auto layers = reader.Read(plan.frames[i]);
        if (layers) return FirstFrame{i, std::move(*layers), timer.Taken()};
        if (keepGoing) continue;
        if (plan.isImage) return layers.error();
        return Failure{layers.error().kind,
                       fmt::format("frame {}: {}", plan.frames[i].number, layers.error().sentence)};
    }
    return FirstFrame{};
}

Result<Done> DrawFrames(const FrameJob& job, const std::vector<EffectSession*>& sessions, LayerReader& reader,
                        FirstFrame first, FrameWatcher& watcher) {
    FrameWorker worker(job, sessions, reader, std::move(first), watcher);
    return RunPipeline(
        job.plan->frames.size(), job.shape,
        [&](std::size_t frame, int) { return worker.Guarded(frame, [&] { return worker.Read(frame); }); },
        [&](std::size_t frame, int thread) {
            return worker.Guarded(frame, [&] { return worker.Draw(frame, thread); });
        },
        [&](std::size_t frame, int) { return worker.Guarded(frame, [&] { return worker.Write(frame); }); });
}

}  // namespace umbrant::host
