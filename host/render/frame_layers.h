// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The pictures of a frame, read and made ready for the effect. A picture that many frames share is read once.

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/image/picture.h"
#include "host/render/plan/frame_plan.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// How pictures become layers.
struct LayerOptions {
    std::optional<Depth> depth{};  ///< without it the input's own
    int downsample = 1;
    std::string compression{};  ///< of the picture that will be written; see WriteOptions
    FileDepth outputDepth = FileDepth::kAuto;
    std::string format{};  ///< of standard output
    ReadOptions read{};    ///< which image of the input's files
    /// A frame of the clip that the input is, and of the one that the texture is.
    std::function<Result<Picture>(int)> inputClip{};
    std::function<Result<Picture>(int)> textureClip{};
    /// Converts the colours of a layer of floats, which every layer then is. Safe on every thread.
    std::function<Result<Done>(World&, bool isTexture)> convert{};
    /// What the output says about its colours instead of what the input says.
    std::optional<ColorWords> words{};
};

/// A picture as a layer, and what is to be kept of its file.
struct Layer {
    World pixels;
    int width = 0;  ///< full size
    int height = 0;
    PF_Point frameOrigin{};  ///< what the file calls the frame's corner; (0, 0) when it was drawn smaller
    int bits = 8;            ///< of a channel in the file
    WriteOptions kept{};
    std::string note{};  ///< as a Picture has them
    std::string metadataNote{};
};

struct FrameLayers {
    std::shared_ptr<const Layer> input;
    std::shared_ptr<const Layer> texture;  ///< null for none; in the input's depth
};

/// The layers as a request has them; they must outlive it.
MomentLayers WorldsOf(const FrameLayers& layers);

/// Safe on every thread.
class LayerReader {
 public:
    explicit LayerReader(LayerOptions options) : options_(std::move(options)) {}

    /// Fails as ReadPicture and LayerOf do.
    Result<FrameLayers> Read(const PlannedFrame& frame);
    /// The same in this depth, whatever the options say.
    Result<FrameLayers> Read(const PlannedFrame& frame, Depth depth);

 private:
    /// A picture's file, or a frame of a clip.
    struct Source {
        std::string path;
        std::optional<int> clipFrame;
        bool isTexture = false;
        bool operator==(const Source&) const = default;
    };
    Result<FrameLayers> ReadAs(const PlannedFrame& frame, std::optional<Depth> depth);
    /// The picture that was kept last.
    struct Kept {
        std::mutex mutex;
        Source source{};
        Depth depth = Depth::k8;
        std::shared_ptr<const Layer> layer;
    };
    Result<std::shared_ptr<const Layer>> ReadLayer(const Source& source, std::optional<Depth> depth) const;
    Result<std::shared_ptr<const Layer>> ReadOnce(Kept& kept, const Source& source, std::optional<Depth> depth);

    const LayerOptions options_;
    Kept input_;
    Kept texture_;
};

}  // namespace umbrant::host
