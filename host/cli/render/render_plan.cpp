// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/render_plan.h"

#include <fmt/format.h>

#include <utility>

#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

Result<PlanRequest> SequenceRequest(const RenderOptions& options) {
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
    const auto rate = ParseRate(sequence.rate.empty() ? "24" : sequence.rate);
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

Result<std::unique_ptr<RenderPlan>> PlanSequenceRender(RenderOptions& options) {
    auto request = SequenceRequest(options);
    if (!request) return request.Error();
    auto plan = std::make_unique<RenderPlan>();
    auto folder = FolderFor(options);
    if (!folder) return folder.Error();
    plan->folder.emplace(std::move(*folder));
    if (auto open = plan->clips.Open(options, *request); !open) return open.Error();
    options.sequence.rate = fmt::format("{}/{}", request->rate.scale, request->rate.step);
    const auto canvas = ParseCanvas(!options.canvas.empty() ? options.canvas
                                    : request->outputIsClip ? "layer"
                                                            : "grow");
    if (!canvas) return canvas.Error();
    plan->canvas = *canvas;
    auto frames = PlanFrames(*request);
    if (!frames) return frames.Error();
    plan->frames = std::move(*frames);
    if (!options.preset.empty()) {
        for (const PlannedFrame& frame : plan->frames.frames) {
            if (auto apart = CheckApart(options.preset, frame.output); !apart) return apart.Error();
        }
    }
    // A clip has its own ways of storing.
    if (!plan->clips.Writes() || !options.compression.empty()) {
        if (auto known = CheckStorage(options); !known) return known.Error();
    }
    LayerOptions layers = LayerOptionsOf(options);
    plan->clips.Connect(layers);
    plan->reader.emplace(std::move(layers));
    return plan;
}

Result<std::unique_ptr<RenderPlan>> PlanImageRender(const RenderOptions& options) {
    const auto rate = ParseRate(options.sequence.rate.empty() ? "24" : options.sequence.rate);
    if (!rate) return rate.Error();
    auto plan = std::make_unique<RenderPlan>();
    auto folder = FolderFor(options);
    if (!folder) return folder.Error();
    plan->folder.emplace(std::move(*folder));
    if (auto usable = CheckOutput(options); !usable) return usable.Error();
    const auto canvas = ParseCanvas(options.canvas.empty() ? "grow" : options.canvas);
    if (!canvas) return canvas.Error();
    plan->canvas = *canvas;
    plan->frames =
        PlanImage({options.input, options.texture, options.output, options.seconds, *rate, options.sequence.zeroFrame});
    plan->reader.emplace(LayerOptionsOf(options));
    if (options.output != "-") CleanFolderOf(options.output, options.sequence.quiet);
    return plan;
}

Result<Done> CheckNoTime(const RenderOptions& options) {
    for (const std::string& file : {options.input, options.texture, options.output}) {
        if (file != "-") continue;
        return Failure{ExitCode::kUsage, "'-' is a single image; the frames of a sequence need files"};
    }
    if (options.seconds == 0) return Done{};
    return Failure{ExitCode::kUsage,
                   "--time applies to a single image; the frames of a sequence have their times "
                   "from --rate and --zero-frame"};
}

double SecondsOfProgress(const SequenceOptions& options) {
    if (options.quiet) return 0;
    const bool isNumber = options.progress.find_first_not_of("0123456789.") == std::string::npos;
    return options.progress.empty() || !isNumber ? -1 : std::stod(options.progress);
}

Result<bool> MeansSequence(const RenderOptions& options) {
    if (auto fits = CheckClipOptions(options); !fits) return fits.Error();
    if (IsClipName(options.input) || IsClipName(options.texture)) return true;
    const auto request = SequenceRequest(options);
    if (!request) return request.Error();
    const auto many = MeansSequence(*request);
    if (many && !*many && IsClipName(options.output)) {
        return Failure{ExitCode::kUsage, fmt::format("'{}' is a clip, but '{}' is a single image; choose the frames to "
                                                     "draw with --frames",
                                                     options.output, options.input)};
    }
    return many;
}

Result<std::vector<FrameNumber>> FramesOf(const RenderOptions& options) {
    if (auto usable = CheckNoTime(options); !usable) return usable.Error();
    if (!options.compression.empty() || !IsClipName(options.output)) {
        if (auto known = CheckStorage(options); !known) return known.Error();
    }
    if (IsClipName(options.output)) {
        return Failure{ExitCode::kUsage,
                       fmt::format("the tasks of a job need one file per frame, and '{}' is a single file; render "
                                   "images, then make a clip of them",
                                   options.output)};
    }
    const auto folder = OutputFolder::For(options.output, options.makesFolder);
    if (!folder) return folder.Error();
    auto request = SequenceRequest(options);
    if (!request) return request.Error();
    ClipEndpoints clips;
    if (auto open = clips.Open(options, *request); !open) return open.Error();
    return WholeFrameSet(*request);
}

}  // namespace umbrant::host
