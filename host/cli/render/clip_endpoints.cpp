// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/clip_endpoints.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/cli/color/render_colors.h"
#include "host/compositing/memory_shortage.h"
#include "host/compositing/resample.h"
#include "host/render/plan/output_check.h"

namespace umbrant::host {

namespace {

/// The clip at a path, or nothing when it is none.
Result<std::optional<ClipFacts>> FactsOf(const std::string& path) {
    if (!IsClipName(path)) return std::optional<ClipFacts>();
    auto facts = TRY(ReadClipFacts(path));
    return std::optional(std::move(facts));
}

std::string RateText(const FrameRate& rate) {
    return rate.step == 1 ? fmt::format("{}", rate.scale) : fmt::format("{}/{}", rate.scale, rate.step);
}

}  // namespace

Result<Done> CheckClipOptions(const RenderOptions& options) {
    const SequenceOptions& sequence = options.sequence;
    const std::string& output = options.output;
    if (!IsWrittenAsClip(output)) {
        if (!sequence.codec.empty()) {
            return Usage(
                fmt::format("--codec applies to clips only, and '{}' is an image; clips are .mov, .mkv, .webm, .mp4, "
                            ".webp or .apng",
                            output));
        }
        return Done{};
    }
    const ClipCodec* codec = TRY(CodecFor(output, sequence.codec));
    if (!codec->keepsAlpha && options.background.empty()) {
        return Usage(
            fmt::format("'{}' cannot hold alpha, so it needs something behind the result: add --background "
                        "white, another colour, an image or checker",
                        output));
    }
    if (options.canvas == "frame") {
        return Usage(
            fmt::format("--canvas frame gives each frame its own size, and all frames of a clip have one size; for "
                        "'{}' use grow, layer or LEFT,TOP,RIGHT,BOTTOM",
                        output));
    }
    if (!options.compression.empty()) {
        return Usage("--compression applies to images only; --codec chooses how a clip is stored");
    }
    if (!sequence.chunk.empty()) {
        return Usage(
            fmt::format("--chunk needs one file per frame, and '{}' is a single file; render the chunks to "
                        "images, then make a clip of them",
                        output));
    }
    if (sequence.keepGoing) {
        return Usage(
            fmt::format("--keep-going leaves out frames that fail, and '{}' cannot have gaps; render "
                        "images, then make a clip of them",
                        output));
    }
    return Done{};
}

Result<Done> ClipEndpoints::Open(const RenderOptions& options, PlanRequest& request) {
    output_ = options.output;
    if (options.colors) colors_ = options.colors->Tags();
    request.outputIsClip = IsWrittenAsClip(output_);
    if (request.outputIsClip) {
        for (const std::string& read : {options.input, options.texture, BackgroundFile(options)}) {
            if (auto apart = CheckApart(read, output_); !read.empty() && !apart) return apart.error();
        }
        TRY(CheckPlace(output_));
        const auto codec = TRY(CodecFor(output_, options.sequence.codec));
        codec_ = codec;
        TRY(CheckEncoder(*codec_, output_));
    }
    auto input = FactsOf(options.input);
    if (!input) return input.error();
    auto texture = TRY(FactsOf(options.texture));
    const std::optional<ClipFacts>& leads = *input ? *input : texture;
    if (leads && options.sequence.rate.empty()) {
        if (!leads->isConstant) {
            return Usage(
                fmt::format("the frame rate of '{}' varies: {} frames a second, {:.4g} on average; choose one "
                            "rate, such as --rate {}",
                            leads->path, RatesText(leads->times), leads->rate.PerSecond(), RateText(leads->rate)));
        }
        request.rate = leads->rate;
    }
    rate_ = request.rate;
    const auto open = [&](std::optional<ClipFacts>& facts, std::unique_ptr<ClipReader>& reader,
                          std::optional<int>& frames) {
        if (!facts) return;
        reader = std::make_unique<ClipReader>(std::move(*facts), rate_);
        frames = reader->Frames();
    };
    open(*input, input_, request.inputClip);
    open(texture, texture_, request.textureClip);
    return Done{};
}

void ClipEndpoints::AddFrames(PlanRequest& request) const {
    request.outputIsClip = Writes();
    request.rate = rate_;
    if (input_) request.inputClip = input_->Frames();
    if (texture_) request.textureClip = texture_->Frames();
}

void ClipEndpoints::Connect(LayerOptions& options) {
    if (input_) options.inputClip = [this](int frame) { return input_->Read(frame); };
    if (texture_) options.textureClip = [this](int frame) { return texture_->Read(frame); };
}

PF_LRect ClipEndpoints::Padded(PF_LRect canvas) const {
    if (!codec_ || !codec_->needsEvenSize) return canvas;
    canvas.right += (canvas.right - canvas.left) % 2;
    canvas.bottom += (canvas.bottom - canvas.top) % 2;
    return canvas;
}

PipelineShape ClipEndpoints::Shape(PipelineShape shape) const {
    if (Reads()) shape.readers = 1;
    if (Writes()) {
        shape.writers = 1;
        shape.inOrder = true;
    }
    shape.underWay = static_cast<std::size_t>(shape.readers + shape.drawers + shape.writers + 1);
    return shape;
}

/// Sound stays with its pictures: all of it, or the part of the frames that are drawn when they follow one another.
ClipEndpoints::Sound ClipEndpoints::SoundFor(const FramePlan& plan) const {
    if (!input_ || input_->Facts().sound.empty() || plan.frames.empty()) return {};
    const PlannedFrame& first = plan.frames.front();
    for (std::size_t i = 0; i < plan.frames.size(); ++i) {
        const PlannedFrame& frame = plan.frames[i];
        const bool follows = frame.state == PlannedFrame::State::kDraw && !frame.heldInput && first.inputClipFrame &&
                             frame.inputClipFrame == *first.inputClipFrame + static_cast<int>(i);
        if (follows) continue;
        return {false,
                {},
                fmt::format("the sound of '{}' is left out: the order of the frames is not the "
                            "clip's",
                            input_->Facts().path)};
    }
    if (!HoldsSound(output_)) {
        return {false,
                {},
                fmt::format("the sound of '{}' is left out: '{}' cannot hold sound", input_->Facts().path, output_)};
    }
    Sound sound{true, {}, PlanSound(input_->Facts(), output_).note};
    const auto count = static_cast<int>(plan.frames.size());
    if (*first.inputClipFrame != 0 || count != input_->Frames()) {
        sound.part = std::pair(*first.inputClipFrame / rate_.PerSecond(), count / rate_.PerSecond());
    }
    return sound;
}

Result<Done> ClipEndpoints::Begin(const FramePlan& plan, const PF_LRect& canvas, const World& layer, bool wantsSound,
                                  const std::string& recipe) {
    if (wantsSound) sound_ = SoundFor(plan);
    canvas_ = canvas;
    layerWidth_ = layer.Width();
    layerHeight_ = layer.Height();
    depth_ = layer.PixelDepth();
    ClipTarget target;
    target.path = output_;
    target.codec = codec_;
    target.width = canvas.right - canvas.left;
    target.height = canvas.bottom - canvas.top;
    // No codec here holds floats, and their rounding is ours, which is exact.
    target.raw = depth_ == Depth::k8 ? RawFormat::k8 : RawFormat::k16;
    target.rate = rate_;
    target.from = input_ ? &input_->Facts() : nullptr;
    target.keepsSound = sound_.kept;
    target.part = sound_.part;
    target.recipe = recipe;
    target.colors = colors_;
    auto writer = TRY(ClipWriter::Start(std::move(target)));
    writer_ = std::move(writer);
    return Done{};
}

Result<Done> ClipEndpoints::Write(const Drawn& drawn, const Placement& place) {
    if (place.frameWidth != layerWidth_ || place.frameHeight != layerHeight_) {
        return Failure{ErrorKind::kFile, fmt::format("the layer is {} x {}, but all frames of a clip have the size of "
                                                     "the first one, {} x {}",
                                                     place.frameWidth, place.frameHeight, layerWidth_, layerHeight_)};
    }
    const PF_LRect& rect = drawn.rect;
    const bool fits = rect.left == canvas_.left && rect.top == canvas_.top && rect.right == canvas_.right &&
                      rect.bottom == canvas_.bottom;
    if (fits && drawn.pixels.PixelDepth() == depth_) return writer_->Write(drawn.pixels);
    World cut = CutToFrame(drawn.pixels, rect.left - canvas_.left, rect.top - canvas_.top, canvas_.right - canvas_.left,
                           canvas_.bottom - canvas_.top);
    if (!cut.IsNull() && cut.PixelDepth() != depth_) cut = ConvertDepth(cut, depth_);
    if (cut.IsNull()) {
        return NotEnoughMemory("the frame", canvas_.right - canvas_.left, canvas_.bottom - canvas_.top, depth_);
    }
    return writer_->Write(cut);
}

Result<bool> ClipEndpoints::Finish() {
    if (!writer_) return false;
    TRY(writer_->Finish());
    return true;
}

nlohmann::ordered_json ClipEndpoints::Report() const {
    if (!writer_) return nullptr;
    nlohmann::ordered_json report = {{"codec", codec_->name},
                                     {"rate", RateText(rate_)},
                                     {"left", canvas_.left},
                                     {"top", canvas_.top},
                                     {"right", canvas_.right},
                                     {"bottom", canvas_.bottom},
                                     {"sound", sound_.kept ? input_->Facts().sound.size() : 0}};
    if (!sound_.note.empty()) report["note"] = sound_.note;
    return report;
}

}  // namespace umbrant::host
