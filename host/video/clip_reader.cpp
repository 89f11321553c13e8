// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/clip_reader.h"

#include <fmt/format.h>

#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/video/clip_format.h"
#include "host/video/container.h"
#include "host/video/ffmpeg.h"

namespace umbrant::host {

namespace {

/// Frames that are decoded for nothing before it is better to let ffmpeg leave them out.
constexpr int kPassedOver = 8;

}  // namespace

ClipReader::ClipReader(ClipFacts facts, FrameRate rate)
    : facts_(std::move(facts)), rate_(rate), format_(RawFormatFor(facts_.bits)) {}

int ClipReader::Frames() const {
    return facts_.isConstant && rate_ == facts_.rate ? facts_.FramesInFile() : FrameCount(facts_.times, rate_);
}

Result<Done> ClipReader::Start(int first) {
    decoder_.reset();
    std::vector<std::string> arguments;
    if (!facts_.decoder.empty()) arguments.insert(arguments.end(), {"-c:v", facts_.decoder});
    // A damaged picture is an error, not something like a picture.
    arguments.emplace_back("-xerror");
    const std::vector<std::string> input = InputArguments(facts_.path, facts_.demuxer);
    arguments.insert(arguments.end(), input.begin(), input.end());
    arguments.insert(arguments.end(), {"-map", fmt::format("0:{}", facts_.stream), "-vf",
                                       DecoderFilters(format_, facts_.width, facts_.height, first), "-fps_mode",
                                       "passthrough", "-f", "rawvideo", "-pix_fmt", NameOf(format_), "pipe:1"});
    auto child = StartTool("ffmpeg", arguments, Piped::kOutput);
    if (!child) {
        return Failure{ErrorKind::kFile, fmt::format("cannot read '{}': {}", facts_.path, child.error().sentence)};
    }
    decoder_ = std::move(*child);
    next_ = first;
    return Done{};
}

Failure ClipReader::WhyNoMore(int index) {
    const ProcessEnd end = decoder_->Wait();
    decoder_.reset();
    if (!end.IsWell()) {
        return {ErrorKind::kFile,
                fmt::format("cannot read frame {} of '{}': {}", index, facts_.path, EndText("ffmpeg", end))};
    }
    return {ErrorKind::kFile, fmt::format("cannot read frame {} of '{}': the clip declares {} frames, but has {}",
                                          index, facts_.path, facts_.FramesInFile(), next_)};
}

Result<Picture> ClipReader::Read(int frame) {
    const std::lock_guard lock(mutex_);
    const int index = facts_.isConstant && rate_ == facts_.rate ? frame : FrameShown(facts_.times, rate_, frame);
    if (index != inBuffer_) {
        if (!decoder_ || index < next_ || index > next_ + kPassedOver) {
            TRY(Start(index));
        }
        buffer_.resize(RawSize(format_, facts_.width, facts_.height));
        for (; next_ <= index; ++next_) {
            inBuffer_ = -1;
            if (decoder_->Read(buffer_) < buffer_.size()) return WhyNoMore(index);
        }
        inBuffer_ = index;
    }
    Picture picture;
    picture.pixels = WorldFromRaw(format_, facts_.width, facts_.height, buffer_);
    if (picture.pixels.IsNull()) {
        return NotEnoughMemory(fmt::format("a frame of '{}'", facts_.path), facts_.width, facts_.height, Depth::k32);
    }
    picture.window = {0, 0, facts_.width, facts_.height};
    picture.frameWidth = facts_.width;
    picture.frameHeight = facts_.height;
    picture.format = "clip";
    picture.bits = facts_.bits;
    return picture;
}

}  // namespace umbrant::host
