// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The images that a preview draws: named on the command line, or sent by the page. Each has a number from 1 on.

#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "host/image/picture.h"
#include "host/result.h"

namespace umbrant::host {

/// The most pixels of an image.
constexpr std::int64_t kMostPixels = 40'000'000;
/// How many images are kept; the one that was used longest ago makes room.
constexpr std::size_t kMostLayers = 6;
/// The most pixels of all that are kept: a layer and a texture of any size.
constexpr std::int64_t kMostKeptPixels = 2 * kMostPixels;

/// Fails with `ErrorKind::kFile` when an image has more than kMostPixels. Looks at its sizes only.
Result<Done> CheckPreviewSize(const std::string& name, const Picture& header);

/// An image in the sizes that it is drawn in. For one thread at a time, except for what is constant.
class PreviewLayer {
 public:
    PreviewLayer(int number, std::string name, Picture picture, bool isMoving = false)
        : number_(number), name_(std::move(name)), picture_(std::move(picture)), isMoving_(isMoving) {}

    int Number() const { return number_; }
    const std::string& Name() const { return name_; }
    int Width() const { return picture_.frameWidth; }
    int Height() const { return picture_.frameHeight; }
    int Bits() const { return picture_.bits; }
    Depth OwnDepth() const { return picture_.pixels.PixelDepth(); }
    double Pixels() const { return static_cast<double>(Width()) * Height(); }
    /// The first frame of a sequence or a clip, in the place of all.
    bool IsMoving() const { return isMoving_; }
    const Picture& Whole() const { return picture_; }

    /// The layer at one n-th of its resolution; kept for the full size and for one other. Fails as LayerOf does.
    Result<const World*> At(Depth depth, int downsample);

 private:
    using Key = std::pair<Depth, int>;
    const int number_;
    const std::string name_;
    const Picture picture_;
    const bool isMoving_;
    std::list<std::pair<Key, World>> worlds_;  ///< newest first
};

/// Any thread.
class LayerStore {
 public:
    explicit LayerStore(std::int64_t mostPixels = kMostKeptPixels) : mostPixels_(mostPixels) {}

    /// Keeps an image's file that the page sent. Fails as ReadPicture does, and with `ErrorKind::kFile` when it has
    /// more than kMostPixels, which is found out before they are decoded.
    Result<std::shared_ptr<PreviewLayer>> AddBytes(const std::string& name, const std::string& bytes);
    /// Keeps the image in a file.
    Result<std::shared_ptr<PreviewLayer>> AddFile(const std::filesystem::path& file);
    /// Keeps the first frame of a sequence or a clip of this name.
    std::shared_ptr<PreviewLayer> AddMoving(const std::string& name, Picture first);
    /// Null when the image is not kept any more.
    std::shared_ptr<PreviewLayer> Find(int number);

 private:
    std::shared_ptr<PreviewLayer> Add(const std::string& name, Picture picture, bool isMoving = false);

    const std::int64_t mostPixels_;
    std::mutex mutex_;
    std::list<std::shared_ptr<PreviewLayer>> layers_;  ///< the one that was used last first
    int last_ = 0;
};

}  // namespace umbrant::host
