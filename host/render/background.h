// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What is put behind an image that must be opaque: a colour, a checkerboard, or an image.

#include <memory>
#include <mutex>
#include <string>
#include <variant>

#include "host/render/frame_pixels.h"

namespace umbrant::host {

/// Why a text cannot be a background, or an empty text. Reads no file.
std::string WhyNoBackground(const std::string& text);

/// Whether the text names an image file, and no colour or checkerboard.
bool IsBackgroundFile(const std::string& text);

/// Safe on every thread.
class Background {
 public:
    /// "checker", "#rrggbb", "#rgb", a CSS name, or else the file of an image; a file with the name of a colour is
    /// written "./teal". Fails with `ErrorKind::kUsage` for a text that is none of these, and as ReadPicture does.
    static Result<std::unique_ptr<Background>> Read(const std::string& text);

    /// Composites the image over the background, in its depth: every pixel becomes opaque. Values are mixed as they are
    /// stored. A checkerboard's squares begin at the layer's corner, so that they keep their place from frame to frame.
    /// An image is scaled to cover `image` and centred; what its own alpha leaves open is black. Fails with
    /// `ErrorKind::kInternal` when there is no memory.
    Result<Done> PutBehind(Drawn& image);

 private:
    struct Checker {};
    struct Scaled {
        int width = 0;
        int height = 0;
        Depth depth = Depth::k8;
        std::shared_ptr<const World> pixels;
    };
    using Kind = std::variant<PF_PixelFloat, Checker, World>;
    explicit Background(Kind kind) : kind_(std::move(kind)) {}
    Result<std::shared_ptr<const World>> ScaledTo(int width, int height, Depth depth);

    const Kind kind_;
    std::mutex mutex_;
    Scaled scaled_;  ///< as it was asked for last
};

}  // namespace umbrant::host
