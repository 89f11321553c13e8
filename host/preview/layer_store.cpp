// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/layer_store.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <numeric>
#include <span>

#include "host/image/encoded_file.h"
#include "host/render/frame_pixels.h"

namespace umbrant::host {

namespace {

/// A file in memory.
class MemoryFile {
 public:
    MemoryFile() : descriptor_(memfd_create("umbrant", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int Descriptor() const { return descriptor_; }

 private:
    const int descriptor_;
};

}  // namespace

Result<Done> CheckPreviewSize(const std::string& name, const Picture& header) {
    const auto pixelsOf = [](std::int64_t width, std::int64_t height) { return width * height; };
    const std::int64_t frame = pixelsOf(header.frameWidth, header.frameHeight);
    const std::int64_t window =
        pixelsOf(header.window.right - header.window.left, header.window.bottom - header.window.top);
    if (std::max(frame, window) <= kMostPixels) return Done{};
    return Failure{
        ErrorKind::kFile,
        fmt::format("cannot preview '{}': it has {} x {} pixels, more than {} million; `umbrant render` draws it", name,
                    header.frameWidth, header.frameHeight, kMostPixels / 1'000'000)};
}

Result<const World*> PreviewLayer::At(Depth depth, int downsample) {
    const Key key{depth, downsample};
    const auto known =
        std::find_if(worlds_.begin(), worlds_.end(), [&](const auto& entry) { return entry.first == key; });
    if (known != worlds_.end()) {
        worlds_.splice(worlds_.begin(), worlds_, known);
        return &worlds_.front().second;
    }
    auto world = TRY(LayerOf(picture_, depth, downsample));
    worlds_.emplace_front(key, std::move(world));
    // The older of the others goes, but not the full size, which every change ends with.
    if (worlds_.size() > 2) {
        const auto last = std::prev(worlds_.end());
        worlds_.erase(last->first.second == 1 && downsample != 1 ? std::prev(last) : last);
    }
    return &worlds_.front().second;
}

Result<std::shared_ptr<PreviewLayer>> LayerStore::AddBytes(const std::string& name, const std::string& bytes) {
    if (bytes.empty()) return Failure{ErrorKind::kFile, fmt::format("cannot read '{}': the file is empty", name)};
    const MemoryFile file;
    std::optional<std::string> problem;
    if (file.Descriptor() < 0) {
        problem = std::strerror(errno);
    } else {
        problem = WriteAll(file.Descriptor(), std::as_bytes(std::span(bytes)));
    }
    if (problem) return Failure{ErrorKind::kInternal, fmt::format("cannot keep '{}': {}", name, *problem)};
    const auto header = TRY(ReadOpenPictureHeader(file.Descriptor(), name));
    TRY(CheckPreviewSize(name, header));
    auto picture = TRY(ReadOpenPicture(file.Descriptor(), name));
    return Add(name, std::move(picture));
}

Result<std::shared_ptr<PreviewLayer>> LayerStore::AddFile(const std::filesystem::path& file) {
    const auto header = TRY(ReadPictureHeader(file));
    TRY(CheckPreviewSize(file.string(), header));
    auto picture = TRY(ReadPicture(file));
    return Add(file.string(), std::move(picture));
}

std::shared_ptr<PreviewLayer> LayerStore::AddMoving(const std::string& name, Picture first) {
    return Add(name, std::move(first), true);
}

std::shared_ptr<PreviewLayer> LayerStore::Add(const std::string& name, Picture picture, bool isMoving) {
    const std::lock_guard lock(mutex_);
    auto layer = std::make_shared<PreviewLayer>(++last_, name, std::move(picture), isMoving);
    layers_.push_front(layer);
    const auto pixels = [&] {
        return std::accumulate(layers_.begin(), layers_.end(), 0.0,
                               [](double sum, const auto& each) { return sum + each->Pixels(); });
    };
    while (layers_.size() > kMostLayers || (layers_.size() > 1 && pixels() > static_cast<double>(mostPixels_))) {
        layers_.pop_back();
    }
    return layer;
}

std::shared_ptr<PreviewLayer> LayerStore::Find(int number) {
    const std::lock_guard lock(mutex_);
    const auto found =
        std::find_if(layers_.begin(), layers_.end(), [&](const auto& layer) { return layer->Number() == number; });
    if (found == layers_.end()) return nullptr;
    layers_.splice(layers_.begin(), layers_, found);
    return layers_.front();
}

}  // namespace umbrant::host
