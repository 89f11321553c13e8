// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The frames of a page's timeline: their numbers and times, and the images that they are made of. One thread.

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/preview/draw_request.h"
#include "host/preview/layer_store.h"
#include "host/render/plan/frame_plan.h"
#include "host/result.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// The most frames of a timeline.
constexpr std::size_t kMostShotFrames = 20'000;
/// The most pixels of a sequence's images that are kept.
constexpr double kMostMovingPixels = 40e6;

/// The sequences and clips of the command line.
struct ShotOptions {
    /// Its input and texture count where they have frames, its frames and rate where a page has none.
    PlanRequest request{};
    /// A frame of the clip that the input is, and of the one that the texture is.
    std::function<Result<Picture>(int)> inputClip{};
    std::function<Result<Picture>(int)> textureClip{};
    bool inputMoves = false;  ///< the input is a sequence or a clip
    bool textureMoves = false;
    bool isAsked = false;       ///< the page begins with a timeline
    bool hasFixedRate = false;  ///< the rate is a clip's
};

/// A frame of a timeline.
struct ShotMoment {
    const FramePlan* plan = nullptr;
    const PlannedFrame* frame = nullptr;
};

class Shots {
 public:
    explicit Shots(const ShotOptions& options) : options_(options) {}

    /// The plan of a timeline, its frames in rising order; stays until the next call. Files that are missing are
    /// frames that cannot be drawn. Fails with `ErrorKind::kUsage` for frames or a rate that mean nothing, and for too
    /// many frames.
    Result<const FramePlan*> PlanFor(const DrawRequest& request, bool inputMoves, bool textureMoves);
    /// Looks for files again at the next call.
    void Forget() { plans_.clear(); }
    /// The frame of a request. Fails as PlanFor does, and where there is no such frame or its file is missing.
    Result<ShotMoment> MomentOf(const DrawRequest& request, bool inputMoves, bool textureMoves);

    /// The input's or the texture's image of a frame. Fails as ReadPicture does, and as LayerStore where it is too
    /// large.
    Result<std::shared_ptr<PreviewLayer>> LayerAt(const PlannedFrame& frame, bool isTexture);
    /// The image that shows at another time.
    Result<std::shared_ptr<PreviewLayer>> LayerShownAt(const FramePlan& plan, const Moment& moment, bool isTexture);

 private:
    using Source = std::pair<std::string, int>;  ///< a file, and which frame of it
    Result<std::shared_ptr<PreviewLayer>> Read(const std::string& path, std::optional<int> clipFrame, bool isTexture);

    const ShotOptions& options_;
    std::list<std::pair<std::string, FramePlan>> plans_;  ///< newest first
    std::list<std::pair<Source, std::shared_ptr<PreviewLayer>>> images_;
};

}  // namespace umbrant::host
