// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/render_plan.h"

#include <fmt/format.h>

#include <utility>

#include "host/cli/color/render_colors.h"
#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

Result<OutputFolder> FolderFor(const RenderOptions& options) {
    if (options.output == "-") return OutputFolder();
    return OutputFolder::For(options.output, options.makesFolder);
}

LayerOptions LayerOptionsOf(const RenderOptions& options) {
    LayerOptions layers;
    layers.read = options.read;
    layers.outputDepth = FileDepthNamed(options.outputDepth);
    if (options.depth != 0) layers.depth = options.depth == 32 ? Depth::k32 : Depth::k8;
    layers.downsample = options.downsample;
    layers.compression = options.compression;
    layers.format = options.format;
    return layers;
}

}  // namespace

Result<PlanRequest> SequenceRequest(const RenderOptions& options) {
    const SequenceOptions& sequence = options.sequence;
    PlanRequest request;
    request.input = options.input;
    request.texture = options.texture;
    request.output = options.output;
    for (const std::string& read : {options.preset, BackgroundFile(options)}) {
        if (!read.empty()) request.alsoRead.push_back(read);
    }
    if (!sequence.frames.empty()) {
        auto frames = TRY(ParseFrames(sequence.frames));
        request.frames = std::move(frames);
    }
    if (!sequence.chunk.empty()) {
        const auto chunk = TRY(ParseChunk(sequence.chunk));
        request.chunk = chunk;
    }
    const auto rate = TRY(ParseRate(sequence.rate.empty() ? "24" : sequence.rate));
    request.rate = rate;
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

Result<std::unique_ptr<RenderPlan>> PlanSequenceRender(RenderOptions& options) {
    auto request = TRY(SequenceRequest(options));
    auto plan = std::make_unique<RenderPlan>();
    auto folder = TRY(FolderFor(options));
    plan->folder.emplace(std::move(folder));
    TRY(plan->clips.Open(options, request));
    options.sequence.rate = fmt::format("{}/{}", request.rate.scale, request.rate.step);
    const auto canvas = TRY(ParseCanvas(!options.canvas.empty() ? options.canvas
                                        : request.outputIsClip  ? "layer"
                                                                : "grow"));
    plan->canvas = canvas;
    auto frames = TRY(PlanFrames(request));
    plan->frames = std::move(frames);
    // A clip has its own ways of storing.
    if (!plan->clips.Writes() || !options.compression.empty()) {
        TRY(CheckStorage(options));
    }
    LayerOptions layers = LayerOptionsOf(options);
    plan->clips.Connect(layers);
    if (options.colors) options.colors->Connect(layers);
    plan->reader.emplace(std::move(layers));
    return plan;
}

Result<FramePlan> PlanSequenceFrames(const RenderOptions& options, const RenderPlan& plan) {
    auto request = TRY(SequenceRequest(options));
    plan.clips.AddFrames(request);
    return PlanFrames(request);
}

Result<std::unique_ptr<RenderPlan>> PlanImageRender(const RenderOptions& options) {
    const auto rate = TRY(ParseRate(options.sequence.rate.empty() ? "24" : options.sequence.rate));
    auto plan = std::make_unique<RenderPlan>();
    auto folder = TRY(FolderFor(options));
    plan->folder.emplace(std::move(folder));
    TRY(CheckOutput(options));
    const auto canvas = TRY(ParseCanvas(options.canvas.empty() ? "grow" : options.canvas));
    plan->canvas = canvas;
    const int zeroFrame = options.sequence.zeroFrame;
    const double seconds = options.frame ? (*options.frame - zeroFrame) / rate.PerSecond() : options.seconds;
    plan->frames = PlanImage({options.input, options.texture, options.output, seconds, rate, zeroFrame});
    // The values of a frame of a sequence, to the last bit.
    if (options.frame) plan->frames.frames.front().position = *options.frame;
    LayerOptions layers = LayerOptionsOf(options);
    if (options.colors) options.colors->Connect(layers);
    plan->reader.emplace(std::move(layers));
    if (options.output != "-" && !options.dryRun) CleanFolderOf(options.output, options.sequence.quiet);
    return plan;
}

Result<Done> CheckNoTime(const RenderOptions& options) {
    for (const std::string& file : {options.input, options.texture, options.output}) {
        if (file != "-") continue;
        return Failure{ErrorKind::kUsage, "'-' is a single image; the frames of a sequence need files"};
    }
    if (options.seconds == 0) return Done{};
    return Failure{ErrorKind::kUsage,
                   "--time applies to a single image; the frames of a sequence have their times "
                   "from --rate and --zero-frame"};
}

double SecondsOfProgress(const SequenceOptions& options) {
    if (options.quiet) return 0;
    const bool isNumber = options.progress.find_first_not_of("0123456789.") == std::string::npos;
    return options.progress.empty() || !isNumber ? -1 : std::stod(options.progress);
}

Result<bool> MeansSequence(const RenderOptions& options) {
    TRY(CheckClipOptions(options));
    if (IsClipName(options.input) || IsClipName(options.texture)) return true;
    const auto request = TRY(SequenceRequest(options));
    auto many = MeansSequence(request);
    if (many && !*many && IsWrittenAsClip(options.output)) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' is a clip, but '{}' is a single image; choose the frames to "
                                   "draw with --frames",
                                   options.output, options.input)};
    }
    return many;
}

Result<std::vector<FrameNumber>> FramesOf(const RenderOptions& options) {
    TRY(CheckNoTime(options));
    if (!options.compression.empty() || !IsWrittenAsClip(options.output)) {
        TRY(CheckStorage(options));
    }
    if (options.canvas == "tight") {
        return Failure{ErrorKind::kUsage,
                       "--canvas tight is found by drawing all frames, which each task of a job would have to do; give "
                       "the job --canvas LEFT,TOP,RIGHT,BOTTOM, or use grow"};
    }
    if (IsWrittenAsClip(options.output)) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("the tasks of a job need one file per frame, and '{}' is a single file; render "
                                   "images, then make a clip of them",
                                   options.output)};
    }
    const auto folder = TRY(OutputFolder::For(options.output, options.makesFolder));
    auto request = TRY(SequenceRequest(options));
    ClipEndpoints clips;
    TRY(clips.Open(options, request));
    return WholeFrameSet(request);
}

}  // namespace umbrant::host
