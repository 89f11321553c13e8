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
#include <system_error>

#include "host/image/picture.h"
#include "host/render/plan/output_check.h"

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
    for (const FrameNumber& frame : frames) {
        if (frame.Parts() % times.common != 0) times.common = std::gcd(times.common, frame.Parts());
    }
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

/// The set as a whole, of which a chunk's frames are planned one by one.
struct FrameSet {
    FrameSource input;
    FrameSource texture;
    std::vector<FrameNumber> numbers;
    std::optional<FramePattern> output;  ///< nothing where all frames go into one file, or nowhere
    FrameTimes times;
};

/// Finds and checks every frame of the set, whatever the chunk: another chunk's machine may be writing what this one
/// would read.
Result<FrameSet> FindSet(const PlanRequest& request) {
    auto input = TRY(FrameSource::Find(request.input, request.inputOffset, request.inputClip));
    auto texture = TRY(FrameSource::Find(request.texture, request.textureOffset, request.textureClip));
    auto numbers = TRY(WholeSet(request, input, texture));
    auto output = OutputPattern(request, numbers);
    if (!output) return output.error();
    const auto times = TRY(TimesOf(numbers, request));
    FrameSet set{std::move(input), std::move(texture), std::move(numbers), std::move(*output), times};
    if (request.writesNothing) return set;
    TRY(CheckNothingIsOverwritten({set.numbers, set.input, set.texture, request.missing, request.alsoRead,
                                   request.output, set.output ? &*set.output : nullptr}));
    if (set.numbers.empty()) return set;
    if (request.outputIsClip) {
        TRY(CheckPlace(request.output));
    } else {
        TRY(CheckWritable(set.output ? set.output->PathOf(set.numbers.front()) : request.output));
    }
    return set;
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
    auto set = TRY(FindSet(request));
    return std::move(set.numbers);
}

Result<FramePlan> PlanFrames(const PlanRequest& request) {
    auto set = TRY(FindSet(request));
    FramePlan plan;
    plan.rate = set.times.finest;
    plan.framesPerSecond = request.rate.PerSecond();
    plan.zeroFrame = request.zeroFrame;
    plan.leavesOutMissing = request.missing == MissingFrames::kSkip;
    plan.wholeSet.reserve(set.numbers.size());
    for (const FrameNumber& number : set.numbers) {
        plan.wholeSet.push_back({number, static_cast<A_long>(set.times.TimeOf(number))});
        plan.totalTime = std::max(plan.totalTime, plan.wholeSet.back().time + plan.rate.step);
    }
    const auto [begin, end] = ChunkRange(set.numbers.size(), request.chunk);
    plan.frames.reserve(end - begin);
    for (std::size_t i = begin; i < end; ++i) {
        const FrameNumber& number = set.numbers[i];
        PlannedFrame& frame = plan.frames.emplace_back(PlanFrame(request, set.input, set.texture, number));
        frame.time = plan.wholeSet[i].time;
        frame.position = number.Value();
        frame.output = set.output ? set.output->PathOf(number) : request.output;
        frame.inputChanges = set.input.HasFrames() && !frame.heldInput;
        frame.textureChanges = set.texture.HasFrames() && !frame.heldTexture;
    }
    plan.output = request.output;
    plan.input = std::move(set.input);
    plan.texture = std::move(set.texture);
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

}  // namespace umbrant::host
