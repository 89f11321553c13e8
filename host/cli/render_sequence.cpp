// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` over many frames.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "host/cli/frame_progress.h"
#include "host/cli/render_options.h"
#include "host/cli/results.h"
#include "host/cli/sequence_report.h"
#include "host/sequence/draw_frames.h"
#include "host/sequence/memory_plan.h"
#include "host/session/renderer.h"

namespace {

constexpr int kMostThreads = 16;

std::string Reason(const Failure& failure) {
    return failure.sentence;
}

/// The check of an option whose text one of the parsers of frame_numbers.h reads.
template <typename Parse>
auto Readable(Parse parse) {
    return [parse](const std::string& text) {
        const auto parsed = parse(text);
        return parsed ? std::string() : Reason(parsed.Error());
    };
}

std::string WhyNoProgress(const std::string& text) {
    if (!text.empty() && ReadProgress(text, false)) return "";
    return fmt::format("'{}' is neither bar, lines, json nor a number of seconds from 0 to 86400", text);
}

Result<PlanRequest> RequestOf(const RenderOptions& options) {
    const SequenceOptions& sequence = options.sequence;
    PlanRequest request;
    request.input = options.input;
    request.texture = options.texture;
    request.output = options.output;
    if (!sequence.frames.empty()) {
        auto frames = ParseFrames(sequence.frames);
        if (!frames) return frames.Error();
        request.frames = std::move(*frames);
    }
    if (!sequence.chunk.empty()) {
        const auto chunk = ParseChunk(sequence.chunk);
        if (!chunk) return chunk.Error();
        request.chunk = *chunk;
    }
    const auto rate = ParseRate(sequence.rate);
    if (!rate) return rate.Error();
    request.rate = *rate;
    request.inputOffset = sequence.inputOffset;
    request.textureOffset = sequence.textureOffset;
    request.missing = sequence.missing == "hold"   ? MissingFrames::kHold
                      : sequence.missing == "skip" ? MissingFrames::kSkip
                                                   : MissingFrames::kError;
    request.keepGoing = sequence.keepGoing;
    request.skipExisting = sequence.skipExisting;
    request.zeroFrame = sequence.zeroFrame;
    return request;
}

Result<Done> CheckNoTime(const RenderOptions& options) {
    if (options.seconds == 0) return Done{};
    return Failure{ExitCode::kUsage,
                   "--time is about a single picture; the frames of a sequence have their times "
                   "from --rate and --zero-frame"};
}

/// The first frame that is to be drawn and can be read: the session is about its size. Without one there is nothing to
/// draw.
Result<FirstFrame> ReadFirst(const FramePlan& plan, LayerReader& reader, bool keepGoing) {
    for (std::size_t i = 0; i < plan.frames.size(); ++i) {
        if (plan.frames[i].state != PlannedFrame::State::kDraw) continue;
        auto layers = reader.Read(plan.frames[i]);
        if (layers) return FirstFrame{i, std::move(*layers)};
        if (!keepGoing) {
            return Failure{layers.Error().code,
                           fmt::format("frame {}: {}", plan.frames[i].number, layers.Error().sentence)};
        }
    }
    return FirstFrame{};
}

std::uint64_t BytesOf(const World& world) {
    return static_cast<std::uint64_t>(world.Height()) * static_cast<std::uint64_t>(world.Def().rowbytes);
}

std::uint64_t AreaOf(const PF_LRect& rect) {
    const auto side = [](A_long low, A_long high) {
        return static_cast<std::uint64_t>(std::max<std::int64_t>(0, std::int64_t{high} - low));
    };
    return side(rect.left, rect.right) * side(rect.top, rect.bottom);
}

/// Pixels of the largest picture that the effect makes of these layers, asked with the values of some of the frames,
/// which may move. An effect that fails when it is asked will fail in that frame again, and be told of there; its
/// picture is taken for as large as the layer.
std::uint64_t LargestArea(const FrameJob& job, const FirstFrame& first, EffectSession& session) {
    constexpr std::size_t kAsked = 64;
    const World& layer = first.layers.input->pixels;
    const auto& frames = job.plan->frames;
    const std::size_t asked = job.values ? std::min(frames.size(), kAsked) : 1;
    std::uint64_t largest = AreaOf({0, 0, layer.Width(), layer.Height()});
    for (std::size_t i = 0; i < asked; ++i) {
        const PlannedFrame& frame = job.values ? frames[i * frames.size() / asked] : frames[first.frame];
        std::optional<ParamSet> values;
        if (job.values) values = job.values(frame.number.Value(), session.Params());
        const auto answer = session.PreRender(RequestFor(job, frame, first.layers, values ? &*values : nullptr));
        if (!answer) continue;
        largest = std::max(largest, AreaOf(job.canvas == Canvas::kGrow ? answer->maxRect : answer->resultRect));
    }
    return largest;
}

/// What a frame costs, judged by the layers of the first one.
FrameFootprint Footprint(const FrameJob& job, const FirstFrame& first, EffectSession& session) {
    const Layer& layer = *first.layers.input;
    FrameFootprint footprint;
    footprint.file =
        static_cast<std::uint64_t>(layer.width) * static_cast<std::uint64_t>(layer.height) * (layer.bits > 8 ? 16 : 4);
    footprint.layer = BytesOf(layer.pixels);
    if (first.layers.texture) footprint.texture = BytesOf(first.layers.texture->pixels);
    footprint.outputPixels = LargestArea(job, first, session);
    footprint.output = footprint.outputPixels * static_cast<std::uint64_t>(BytesPerPixel(layer.pixels.PixelDepth()));
    return footprint;
}

/// Software OpenGL has the cores for itself, and each drawing thread has buffers of its own: one frame in the effect
/// and one outside of it is all that is gained.
int MostDrawers(const RendererDecision& renderer, const GpuStrings& gpu) {
    return !renderer.processor && IsSoftware(gpu) ? 2 : kMostThreads;
}

/// The sessions of the drawing threads; the first is the module's own.
struct Instances {
    std::vector<EffectSession> others;
    std::vector<EffectSession*> all;

    Result<Done> Start(EffectSession& first, int count) {
        all = {&first};
        // Effects that do not say so may not be called from several threads.
        if (!(first.OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING)) count = 1;
        others.reserve(static_cast<std::size_t>(count));
        for (int i = 1; i < count; ++i) {
            auto another = EffectSession::StartInstance(first);
            if (!another) return another.Error();
            others.push_back(std::move(*another));
            all.push_back(&others.back());
            if (auto updated = others.back().UpdateParamsUI(); !updated) return updated.Error();
        }
        return Done{};
    }

    /// The first instance last.
    Result<Done> End() {
        Result<Done> outcome = Done{};
        for (auto session = all.rbegin(); session != all.rend(); ++session) {
            auto ended = (*session)->End();
            if (!ended && outcome) outcome = ended;
        }
        return outcome;
    }
};

/// A sequence from its plan to its last picture.
class SequenceRender {
 public:
    explicit SequenceRender(const RenderOptions& options)
        : options_(options),
          reader_({options.depth == 0    ? std::nullopt
                   : options.depth == 32 ? std::optional(Depth::k32)
                                         : std::optional(Depth::k8),
                   options.downsample, options.compression}) {}

    Result<ExitCode> Run() {
        const auto wish = ReadRendererWish(options_.renderer);
        if (!wish) return wish.Error();
        const auto request = RequestOf(options_);
        if (!request) return request.Error();
        auto planned = PlanFrames(*request);
        if (!planned) return planned.Error();
        plan_ = std::move(*planned);
        if (!options_.compression.empty()) {
            if (auto known = CheckCompression(options_.output, options_.compression); !known) return known.Error();
        }
        auto first = ReadFirst(plan_, reader_, options_.sequence.keepGoing);
        if (!first) return first.Error();
        FillJob();
        if (!first->layers.input) return Draw(std::move(*first));

        const PlannedFrame& frame = plan_.frames[first->frame];
        auto opened =
            OpenWithValues(options_, first->layers.input->width, first->layers.input->height, frame.number.Value());
        if (!opened) return opened.Error();
        renderer_ = DecideRenderer(*wish, ReadGpuStrings(opened->Session().Params()));
        TellRenderer(renderer_);
        if (!opened->params.animation.IsEmpty()) {
            // What the effect itself keeps in its rows stays; only what moves is set for each frame.
            job_.values = [&effect = *opened](double each, const ParamSet& params) {
                return effect.params.animation.ValuesAt(params, each, effect.clock);
            };
        }
        if (auto started = StartInstances(opened->Session(), *first); !started) return started.Error();
        auto outcome = Draw(std::move(*first));
        if (options_.verbose) TellMisbehaviour();
        auto ended = instances_.End();
        if (outcome && !ended) return ended.Error();
        return outcome;
    }

 private:
    void FillJob() {
        job_.plan = &plan_;
        job_.downsample = options_.downsample;
        job_.canvas = options_.canvas == "layer" ? Canvas::kLayer : Canvas::kGrow;
        std::tie(job_.textureX, job_.textureY) = PlaceOf(options_.textureAt).value_or(std::pair(0.0, 0.0));
        job_.keepGoing = options_.sequence.keepGoing;
        job_.explain = [this](const Failure& failure, const EffectSession& session) {
            return renderer_.processor ? failure : Explain(failure, session);
        };
        job_.shape = ShapeFor(1);
    }

    Result<Done> StartInstances(EffectSession& session, const FirstFrame& first) {
        const FrameFootprint footprint = Footprint(job_, first, session);
        MachineLimits machine = ThisMachine();
        machine.mostDrawers = MostDrawers(renderer_, ReadGpuStrings(session.Params()));
        int drawers = options_.sequence.threads > 0 ? options_.sequence.threads : DrawersFor(machine, footprint);
        drawers = std::min<int>(drawers, static_cast<int>(std::min<std::size_t>(plan_.frames.size(), kMostThreads)));
        if (auto started = instances_.Start(session, drawers); !started) return started;
        job_.shape = ShapeFor(static_cast<int>(instances_.all.size()));
        if (options_.verbose) {
            const PipelineShape& shape = job_.shape;
            std::fputs(
                fmt::format("{}\nthreads: {} reading, {} drawing, {} writing; at most {} frames under way, which take "
                            "up to {} MiB\n",
                            RendererText(renderer_), shape.readers, shape.drawers, shape.writers, shape.underWay,
                            (MostBytes(shape, footprint) >> 20) + 1)
                    .c_str(),
                stderr);
        }
        return Done{};
    }

    Result<ExitCode> Draw(FirstFrame first) {
        FrameProgress progress(
            plan_, ReadProgress(options_.sequence.progress, options_.sequence.quiet).value_or(ProgressOptions{}),
            !options_.json);
        progress.SetKeepsGoing(options_.sequence.keepGoing);
        DrawFrames(job_, instances_.all, reader_, std::move(first), progress);
        const FrameTotals totals = progress.Finish();
        if (options_.json) {
            const SequenceFacts facts{options_.input, options_.output, renderer_.Name()};
            PrintResult(SequenceReport(facts, plan_, job_.shape, progress));
        }
        if (totals.failed == 0) return ExitCode::kDone;
        if (options_.sequence.keepGoing) return ExitCode::kEffectFailed;
        return totals.firstFailure;
    }

    void TellMisbehaviour() const {
        for (const EffectSession* session : instances_.all) {
            for (const std::string& misstep : session->Misbehaviour()) {
                std::fputs(("the effect misbehaved: " + misstep + "\n").c_str(), stderr);
            }
        }
    }

    const RenderOptions& options_;
    LayerReader reader_;
    FramePlan plan_;
    FrameJob job_;
    RendererDecision renderer_;
    Instances instances_;
};

}  // namespace

void AddSequenceOptions(CLI::App& app, SequenceOptions& options) {
    app.add_option("--frames", options.frames,
                   "Which frames: 1-10, 1-240x2 (every second), 1-10x0.25 (quarters of frames), 1-100y5 (all but every "
                   "fifth), 1-100:8 (from coarse to "
                   "fine), several with commas; without it all that INPUT has")
        ->check(Readable(ParseFrames))
        ->type_name("FRAMES");
    app.add_option("--rate", options.rate, "Frames per second, as 24, 29.97 or 30000/1001")
        ->check(Readable(ParseRate))
        ->capture_default_str()
        ->type_name("RATE");
    app.add_option("--zero-frame", options.zeroFrame, "The frame at time 0")
        ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
        ->capture_default_str()
        ->type_name("FRAME");
    app.add_option("--input-offset", options.inputOffset, "Frame f shows the input's frame f + N")
        ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
        ->capture_default_str()
        ->type_name("N");
    app.add_option("--texture-offset", options.textureOffset, "Frame f shows the texture's frame f + N")
        ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
        ->capture_default_str()
        ->needs("--texture")
        ->type_name("N");
    app.add_option("--missing", options.missing,
                   "A frame without a file: error (default) draws nothing at all, hold shows the one before it, skip "
                   "leaves it out")
        ->check(CLI::IsMember({"error", "hold", "skip"}))
        ->type_name("error|hold|skip");
    app.add_flag("--skip-existing", options.skipExisting, "Leave out frames whose picture is there");
    app.add_flag("--keep-going", options.keepGoing, "Draw the other frames when one fails; exit code 1 in the end");
    app.add_option("--chunk", options.chunk, "The I-th of N parts of the frames, for several machines")
        ->check(Readable(ParseChunk))
        ->type_name("I/N");
    app.add_option("--threads", options.threads,
                   "Frames drawn at once; without it as many as suit the cores, the renderer and the memory")
        ->check(CLI::Range(1, kMostThreads))
        ->type_name("N");
    app.add_option(
           "--progress", options.progress,
           "How to tell of the frames: bar on a terminal, else lines; json for programs. Or how often a frame that "
           "takes long is told about: SECONDS, 0 for never, 10 without it")
        ->check(WhyNoProgress)
        ->type_name("bar|lines|json|SECONDS");
    app.add_flag("--quiet", options.quiet, "Tell of failures alone");
}

double SecondsOfProgress(const SequenceOptions& options) {
    if (options.quiet) return 0;
    const bool isNumber = options.progress.find_first_not_of("0123456789.") == std::string::npos;
    return options.progress.empty() || !isNumber ? -1 : std::stod(options.progress);
}

Result<bool> MeansSequence(const RenderOptions& options) {
    const auto request = RequestOf(options);
    if (!request) return request.Error();
    return MeansSequence(*request);
}

Result<std::vector<FrameNumber>> FramesOf(const RenderOptions& options) {
    if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    if (!options.compression.empty()) {
        if (auto known = CheckCompression(options.output, options.compression); !known) return known.Error();
    }
    const auto request = RequestOf(options);
    if (!request) return request.Error();
    return WholeFrameSet(*request);
}

Result<ExitCode> RenderSequence(const RenderOptions& options) {
    if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    return SequenceRender(options).Run();
}
