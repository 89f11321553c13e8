// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/time/shots.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "host/render/worker.h"

namespace umbrant::host {

namespace {

/// Pages that are open at once may have different timelines.
constexpr std::size_t kKeptPlans = 4;

}  // namespace

Result<const FramePlan*> Shots::PlanFor(const DrawRequest& request, bool inputMoves, bool textureMoves) {
    const std::string key = fmt::format("{} {} {} {}", request.frames, request.rate, inputMoves, textureMoves);
    const auto known = std::find_if(plans_.begin(), plans_.end(), [&](const auto& each) { return each.first == key; });
    if (known != plans_.end()) {
        plans_.splice(plans_.begin(), plans_, known);
        return &plans_.front().second;
    }
    PlanRequest asked = options_.request;
    asked.writesNothing = true;
    // A frame without a file is one that cannot be shown; the others can.
    asked.keepGoing = true;
    if (!inputMoves) {
        asked.input.clear();
        asked.inputClip.reset();
    }
    if (!textureMoves) {
        asked.texture.clear();
        asked.textureClip.reset();
    }
    if (!request.frames.empty()) {
        auto frames = TRY(ParseFrames(request.frames));
        asked.frames = std::move(frames);
    }
    if (!request.rate.empty() && !options_.hasFixedRate) {
        const auto rate = TRY(ParseRate(request.rate));
        asked.rate = rate;
    }
    if (asked.frames && asked.frames->size() > kMostShotFrames) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("a timeline has at most {} frames, and these are {}; choose fewer", kMostShotFrames,
                                   asked.frames->size())};
    }
    auto plan = TRY(PlanFrames(asked));
    if (plan.frames.size() > kMostShotFrames) {
        return Failure{ErrorKind::kUsage, fmt::format("a timeline has at most {} frames, and there are {}; choose some "
                                                      "with --frames",
                                                      kMostShotFrames, plan.frames.size())};
    }
    if (plan.leavesOutMissing) {
        std::erase_if(plan.frames, [](const auto& frame) { return frame.state == PlannedFrame::State::kSkipped; });
    }
    if (plan.frames.empty()) return Failure{ErrorKind::kFile, "no frame of the timeline has a file"};
    std::sort(plan.frames.begin(), plan.frames.end(),
              [](const auto& one, const auto& other) { return one.number < other.number; });
    plans_.emplace_front(key, std::move(plan));
    if (plans_.size() > kKeptPlans) plans_.pop_back();
    return &plans_.front().second;
}

Result<ShotMoment> Shots::MomentOf(const DrawRequest& request, bool inputMoves, bool textureMoves) {
    const auto plan = TRY(PlanFor(request, inputMoves, textureMoves));
    const auto& frames = plan->frames;
    if (request.frame < 0 || static_cast<std::size_t>(request.frame) >= frames.size()) {
        return Failure{ErrorKind::kUsage, fmt::format("the timeline has {} frames, and there is none of index {}",
                                                      frames.size(), request.frame)};
    }
    const PlannedFrame& frame = frames[static_cast<std::size_t>(request.frame)];
    if (frame.state == PlannedFrame::State::kDraw) return ShotMoment{plan, &frame};
    return Failure{ErrorKind::kFile,
                   fmt::format("frame {}: cannot read {}: {}; --missing hold shows the previous frame instead",
                               frame.number, frame.missing, frame.missingReason)};
}

Result<std::shared_ptr<PreviewLayer>> Shots::LayerAt(const PlannedFrame& frame, bool isTexture) {
    return isTexture ? Read(frame.texture, frame.textureClipFrame, true)
                     : Read(frame.input, frame.inputClipFrame, false);
}

Result<std::shared_ptr<PreviewLayer>> Shots::LayerShownAt(const FramePlan& plan, const Moment& moment, bool isTexture) {
    const int number = FrameShownAt(plan, moment);
    const FrameSource& source = isTexture ? plan.texture : plan.input;
    auto layer = Read(source.ShownAt(number), source.ClipFrameShownAt(number), isTexture);
    if (layer) return layer;
    return Failure{layer.error().kind, fmt::format("the effect requests frame {}: {}", number, layer.error().sentence)};
}

Result<std::shared_ptr<PreviewLayer>> Shots::Read(const std::string& path, std::optional<int> clipFrame,
                                                  bool isTexture) {
    const Source source{path, clipFrame.value_or(-1)};
    const auto known =
        std::find_if(images_.begin(), images_.end(), [&](const auto& each) { return each.first == source; });
    if (known != images_.end()) {
        images_.splice(images_.begin(), images_, known);
        return images_.front().second;
    }
    if (!clipFrame) {
        const auto header = TRY(ReadPictureHeader(path));
        TRY(CheckPreviewSize(path, header));
    }
    const auto& clip = isTexture ? options_.textureClip : options_.inputClip;
    auto picture = TRY(clipFrame ? clip(*clipFrame) : ReadPicture(path));
    images_.emplace_front(source, std::make_shared<PreviewLayer>(0, path, std::move(picture)));
    const auto pixels = [&] {
        return std::accumulate(images_.begin(), images_.end(), 0.0,
                               [](double sum, const auto& each) { return sum + each.second->Pixels(); });
    };
    while (images_.size() > 1 && pixels() > kMostMovingPixels) images_.pop_back();
    return images_.front().second;
}

}  // namespace umbrant::host
