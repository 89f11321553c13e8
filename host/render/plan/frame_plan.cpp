// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <numeric>
#include <set>
#include <system_error>

#include "host/image/picture.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

/// What to call a frame that is not there, and why it is not.
void NameMissing(const FrameSource& source, const FrameFile& found, PlannedFrame& frame) {
    frame.missing = fmt::format("'{}'", found.path);
    frame.missingReason = "there is no such file";
    if (!source.clipFrames) return;
    frame.missing = fmt::format("frame {} of '{}'", found.wanted, source.path);
    frame.missingReason = fmt::format("its frames are 0 to {}", *source.clipFrames - 1);
}

/// All frames that are asked for, before they are divided into chunks.
Result<std::vector<FrameNumber>> WholeSet(const PlanRequest& request, const FrameSource& input,
                                          const FrameSource& texture) {
    if (request.frames) return *request.frames;
    for (const FrameSource* source : {&input, &texture}) {
        if (!source->HasFrames()) continue;
        if (source->onDisk.empty()) {
            return Failure{ErrorKind::kFile, fmt::format("cannot read '{}': no file has such a name", source->path)};
        }
        std::vector<FrameNumber> frames;
        for (const int frame : source->onDisk) frames.emplace_back(frame - source->offset);
        return frames;
    }
    return Failure{ErrorKind::kUsage,
                   "neither the input nor the texture is a sequence; choose the frames with --frames"};
}

/// A name with a frame field for this one: "out.png" becomes "out.####.png".
std::string WithField(const fs::path& path) {
    return (path.parent_path() / (path.stem().string() + ".####" + path.extension().string())).string();
}

Result<std::optional<FramePattern>> OutputPattern(const PlanRequest& request, const std::vector<FrameNumber>& frames) {
    if (request.outputIsClip || request.writesNothing) return std::optional<FramePattern>();
    auto pattern = FramePattern::Find(request.output);
    if (!pattern) return pattern;
    if (!*pattern && frames.size() > 1) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' has no field for the frame's number, and there are {} frames; write it as "
                                   "'{}'",
                                   request.output, frames.size(), WithField(request.output))};
    }
    return pattern;
}

/// A file apart from the names that lead to it, or its name while it does not exist.
std::string IdentityOf(const std::string& path) {
    std::error_code error;
    const fs::path canonical = fs::weakly_canonical(path, error);
    return error ? path : canonical.string();
}

Failure SameFile(const std::string& output) {
    return {ErrorKind::kUsage, fmt::format("'{}' is both input and output; give the output another name", output)};
}

Result<Done> CheckOutputs(const std::vector<PlannedFrame>& frames, bool isClip) {
    std::set<std::string> read;
    for (const PlannedFrame& frame : frames) {
        read.insert(IdentityOf(frame.input));
        if (!frame.texture.empty()) read.insert(IdentityOf(frame.texture));
    }
    for (const PlannedFrame& frame : frames) {
        if (read.contains(IdentityOf(frame.output))) return SameFile(frame.output);
    }
    if (frames.empty()) return Done{};
    return isClip ? CheckPlace(frames.front().output) : CheckWritable(frames.front().output);
}

/// Expresses frames' times in a unit that each of them is a whole number of.
struct FrameTimes {
    std::int64_t common = FrameNumber::kParts;  ///< parts of a frame that every frame is a multiple of
    FrameRate asked{};
    FrameRate finest{};  ///< the same rate, in units of `common` parts
    int zeroFrame = 0;

    std::int64_t TimeOf(const FrameNumber& frame) const {
        return (frame.Parts() - FrameNumber(zeroFrame).Parts()) / common * asked.step;
    }
};

/// Fails unless times are whole numbers of 32 bits.
Result<FrameTimes> TimesOf(const std::vector<FrameNumber>& frames, const PlanRequest& request) {
    FrameTimes times{FrameNumber::kParts, request.rate, request.rate, request.zeroFrame};
    for (const FrameNumber& frame : frames) times.common = std::gcd(times.common, frame.Parts());
    const std::int64_t finer = FrameNumber::kParts / times.common;
    const std::int64_t scale = finer * request.rate.scale;
    const std::int64_t step = finer * request.rate.step;
    if (scale > std::numeric_limits<A_u_long>::max() || step > std::numeric_limits<A_long>::max()) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("a rate of {}/{} cannot be divided by {}, which these frames need",
                                   request.rate.scale, request.rate.step, finer)};
    }
    times.finest = {static_cast<A_u_long>(scale), static_cast<A_long>(step)};
    for (const FrameNumber& frame : frames) {
        if (std::abs(times.TimeOf(frame)) + step <= std::numeric_limits<A_long>::max()) continue;
        return Failure{ErrorKind::kUsage,
                       fmt::format("frame {} is too far from frame {}, which is at time 0, for a rate of {}/{}", frame,
                                   request.zeroFrame, times.finest.scale, times.finest.step)};
    }
    return times;
}

PlannedFrame PlanFrame(const PlanRequest& request, const FrameSource& input, const FrameSource& texture,
                       const FrameNumber& number) {
    PlannedFrame frame;
    frame.number = number;
    // Between two frames of an input the one that has begun is shown.
    const FrameFile layer = input.FileAt(number.Begun(), request.missing);
    frame.input = layer.path;
    frame.inputClipFrame = layer.clipFrame;
    frame.heldInput = layer.held;
    FrameFile picture;
    if (!texture.path.empty()) picture = texture.FileAt(number.Begun(), request.missing);
    frame.texture = picture.path;
    frame.textureClipFrame = picture.clipFrame;
    frame.heldTexture = picture.held;
    if (layer.exists && picture.exists) return frame;
    NameMissing(layer.exists ? texture : input, layer.exists ? picture : layer, frame);
    frame.state =
        request.missing == MissingFrames::kSkip ? PlannedFrame::State::kSkipped : PlannedFrame::State::kMissing;
    return frame;
}

Result<Done> CheckMissing(const std::vector<PlannedFrame>& frames) {
    std::vector<FrameNumber> missing;
    const PlannedFrame* first = nullptr;
    for (const PlannedFrame& frame : frames) {
        if (frame.state != PlannedFrame::State::kMissing) continue;
        if (!first) first = &frame;
        missing.push_back(frame.number);
    }
    if (!first) return Done{};
    if (missing.size() == 1) {
        return Failure{ErrorKind::kFile, fmt::format("cannot read {}: {}; --missing hold shows another frame instead, "
                                                     "--missing skip leaves frame {} out",
                                                     first->missing, first->missingReason, first->number)};
    }
    const bool isClip = first->missing.front() != '\'';
    return Failure{ErrorKind::kFile,
                   fmt::format("cannot read {}, nor the {} of {} frames in all ({}): {}; --missing hold shows other "
                               "frames instead, --missing skip leaves these out",
                               first->missing, isClip ? "others" : "files", missing.size(), FramesText(missing),
                               isClip ? first->missingReason : "there are no such files")};
}

/// Every frame of the set, whatever the chunk: another chunk's machine may be writing what this one would read.
Result<FramePlan> WholePlan(const PlanRequest& request) {
    const auto input = TRY(FrameSource::Find(request.input, request.inputOffset, request.inputClip));
    const auto texture = TRY(FrameSource::Find(request.texture, request.textureOffset, request.textureClip));
    const auto whole = TRY(WholeSet(request, input, texture));
    const auto output = OutputPattern(request, whole);
    if (!output) return output.error();
    const auto times = TRY(TimesOf(whole, request));

    FramePlan plan;
    plan.input = input;
    plan.texture = texture;
    plan.rate = times.finest;
    plan.framesPerSecond = request.rate.PerSecond();
    plan.zeroFrame = request.zeroFrame;
    plan.leavesOutMissing = request.missing == MissingFrames::kSkip;
    std::vector<PlannedFrame>& frames = plan.frames;
    for (const FrameNumber& number : whole) {
        frames.push_back(PlanFrame(request, input, texture, number));
        PlannedFrame& frame = frames.back();
        frame.time = static_cast<A_long>(times.TimeOf(number));
        frame.position = number.Value();
        plan.wholeSet.push_back({number, frame.time});
        plan.totalTime = std::max(plan.totalTime, frame.time + plan.rate.step);
        frame.output = *output ? (*output)->PathOf(number) : request.output;
        frame.inputChanges = input.HasFrames() && !frame.heldInput;
        frame.textureChanges = texture.HasFrames() && !frame.heldTexture;
    }
    if (!request.writesNothing) {
        TRY(CheckOutputs(frames, request.outputIsClip));
    }
    return plan;
}

}  // namespace

Result<bool> MeansSequence(const PlanRequest& request) {
    if (request.frames || request.inputClip || request.textureClip) return true;
    for (const std::string& path : {request.input, request.texture}) {
        const auto source = TRY(FrameSource::Find(path, 0));
        if (source.pattern) return true;
    }
    const auto output = FramePattern::Find(request.output);
    if (!output || !*output || (*output)->IsWeak() || request.output.empty()) return false;
    return Failure{ErrorKind::kUsage,
                   fmt::format("'{}' has a field for the frame's number, but '{}' is a single image; "
                               "choose the frames with --frames",
                               request.output, request.input)};
}

Result<std::vector<FrameNumber>> WholeFrameSet(const PlanRequest& request) {
    const auto plan = TRY(WholePlan(request));
    std::vector<FrameNumber> numbers;
    for (const PlannedFrame& frame : plan.frames) numbers.push_back(frame.number);
    return numbers;
}

Result<FramePlan> PlanFrames(const PlanRequest& request) {
    auto whole = TRY(WholePlan(request));
    FramePlan plan = std::move(whole);
    std::vector<PlannedFrame> frames;
    frames.swap(plan.frames);
    const auto [begin, end] = ChunkRange(frames.size(), request.chunk);
    for (std::size_t i = begin; i < end; ++i) plan.frames.push_back(std::move(frames[i]));
    if (request.skipExisting) {
        for (PlannedFrame& frame : plan.frames) {
            std::error_code error;
            if (fs::is_regular_file(frame.output, error)) frame.state = PlannedFrame::State::kExists;
        }
    }
    if (request.missing == MissingFrames::kError && !request.keepGoing) {
        TRY(CheckMissing(plan.frames));
    }
    return plan;
}

FramePlan PlanImage(const ImageRequest& request) {
    // A thousandth of the usual frame is close to any time that is typed.
    constexpr FrameRate kClock{24000, 1000};
    FramePlan plan;
    plan.isImage = true;
    plan.rate = kClock;
    plan.framesPerSecond = request.rate.PerSecond();
    plan.zeroFrame = request.zeroFrame;
    plan.input.path = request.input;
    plan.texture.path = request.texture;
    PlannedFrame frame;
    frame.input = request.input;
    frame.texture = request.texture;
    frame.output = request.output;
    frame.inputChanges = frame.textureChanges = false;
    frame.time = static_cast<A_long>(std::lround(request.seconds * kClock.scale));
    frame.position = request.seconds * plan.framesPerSecond + request.zeroFrame;
    plan.totalTime = frame.time + kClock.step;
    plan.frames.push_back(std::move(frame));
    return plan;
}

Result<Done> CheckApart(const std::string& input, const std::string& output) {
    if (IdentityOf(input) == IdentityOf(output)) return SameFile(output);
    return Done{};
}

}  // namespace umbrant::host
