// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_reader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include "host/compositing/row_pool.h"
#include "host/image/exr/exr_attributes.h"
#include "host/image/exr/exr_blocks.h"
#include "host/image/exr/exr_channels.h"
#include "host/image/exr/exr_file.h"
#include "host/process/files/read_at.h"

namespace umbrant::host {

namespace {

std::int64_t ReadBytes(exr_const_context_t, void* user, void* buffer, std::uint64_t size, std::uint64_t offset,
                       exr_stream_error_func_ptr_t) {
    return ReadAt(*static_cast<const int*>(user), static_cast<off_t>(offset), {static_cast<std::byte*>(buffer), size});
}

std::int64_t SizeOf(exr_const_context_t, void* user) {
    struct stat status {};
    return fstat(*static_cast<const int*>(user), &status) == 0 ? status.st_size : -1;
}

/// The compressions that are read here: those whose blocks can be taken one by one, and that are nearly always met.
bool IsKnown(exr_compression_t compression) {
    switch (compression) {
        case EXR_COMPRESSION_NONE:
        case EXR_COMPRESSION_RLE:
        case EXR_COMPRESSION_ZIPS:
        case EXR_COMPRESSION_ZIP:
        case EXR_COMPRESSION_PIZ:
            return true;
        default:
            return false;
    }
}

const char* NameOf(exr_compression_t compression) {
    switch (compression) {
        case EXR_COMPRESSION_RLE:
            return "rle";
        case EXR_COMPRESSION_ZIPS:
            return "zips";
        case EXR_COMPRESSION_ZIP:
            return "zip";
        case EXR_COMPRESSION_PIZ:
            return "piz";
        default:
            return "none";
    }
}

class ExrReader : public ImageReader {
 public:
    explicit ExrReader(int descriptor) : descriptor_(dup(descriptor)) {}
    ~ExrReader() override {
        file_.reset();
        if (descriptor_ >= 0) close(descriptor_);
    }

    std::string FormatName() const override { return "openexr"; }
    const ImageLayout& Layout() const override { return layout_; }

    bool IsSpread() const override {
        constexpr std::int64_t kLarge = std::int64_t{1} << 20;
        return std::int64_t{layout_.width} * layout_.height * layout_.ChannelCount() > kLarge;
    }

    /// Reads the header. False for a file that this cannot read.
    bool Open() {
        if (descriptor_ < 0) return false;
        exr_context_initializer_t context = QuietExr();
        context.user_data = const_cast<int*>(&descriptor_);
        context.read_fn = ReadBytes;
        context.size_fn = SizeOf;
        exr_context_t file = nullptr;
        if (exr_start_read(&file, "image", &context) != EXR_ERR_SUCCESS) return false;
        file_.reset(file);
        int parts = 0;
        if (exr_get_count(file, &parts) != EXR_ERR_SUCCESS || parts != 1) return false;
        return TakeStorage() && TakeChannels() && TakeWindows() && TakeExrAttributes(file, layout_);
    }

    std::optional<std::string> Read(int begin, int end, bool, void* values) override {
        const int blocks = isTiled_ ? tilesAcross_ * tilesDown_ : (layout_.height + rowsPerBlock_ - 1) / rowsPerBlock_;
        std::vector<std::unique_ptr<ExrBlockReader>> readers(static_cast<std::size_t>(RowThreads()));
        std::atomic<exr_result_t> failure = EXR_ERR_SUCCESS;
        const auto read = [&](int index, int thread) {
            auto& reader = readers[static_cast<std::size_t>(thread)];
            if (!reader) reader = std::make_unique<ExrBlockReader>(file_.get(), compression_);
            exr_chunk_info_t block{};
            exr_result_t result = FindBlock(index, &block);
            std::span<const std::byte> bytes;
            if (result == EXR_ERR_SUCCESS) result = reader->Read(block, BytesOf(block), bytes);
            if (result != EXR_ERR_SUCCESS) {
                failure = result;
                return false;
            }
            Unpack(block, bytes, begin, end, static_cast<float*>(values));
            return true;
        };
        if (IsSpread()) {
            RunRows(blocks, read);
        } else {
            for (int index = 0; index < blocks && read(index, 0); ++index) continue;
        }
        if (failure != EXR_ERR_SUCCESS) return ExrReason(failure);
        return std::nullopt;
    }

 private:
    bool TakeStorage() {
        exr_storage_t storage{};
        exr_compression_t compression{};
        if (exr_get_storage(file_.get(), 0, &storage) != EXR_ERR_SUCCESS ||
            exr_get_compression(file_.get(), 0, &compression) != EXR_ERR_SUCCESS || !IsKnown(compression)) {
            return false;
        }
        compression_ = compression;
        layout_.SetText("compression", NameOf(compression));
        if (storage == EXR_STORAGE_SCANLINE) {
            return exr_get_scanlines_per_chunk(file_.get(), 0, &rowsPerBlock_) == EXR_ERR_SUCCESS && rowsPerBlock_ > 0;
        }
        if (storage != EXR_STORAGE_TILED) return false;
        isTiled_ = true;
        std::uint32_t width = 0, height = 0;
        exr_tile_level_mode_t levels{};
        exr_tile_round_mode_t rounding{};
        if (exr_get_tile_descriptor(file_.get(), 0, &width, &height, &levels, &rounding) != EXR_ERR_SUCCESS) {
            return false;
        }
        constexpr std::uint32_t kLargest = 1u << 16;
        if (width == 0 || height == 0 || width > kLargest || height > kLargest) return false;
        tileWidth_ = static_cast<int>(width);
        tileHeight_ = static_cast<int>(height);
        return true;
    }

    bool TakeChannels() {
        auto channels = ExrChannelsOf(file_.get());
        if (!channels) return false;
        channels_ = std::move(*channels);
        for (const ExrChannel& channel : channels_) rowBytesPerPixel_ += channel.Size();
        auto places = NameExrChannels(channels_, layout_);
        if (!places) return false;
        places_ = std::move(*places);
        return true;
    }

    bool TakeWindows() {
        exr_attr_box2i_t data{}, display{};
        if (exr_get_data_window(file_.get(), 0, &data) != EXR_ERR_SUCCESS ||
            exr_get_display_window(file_.get(), 0, &display) != EXR_ERR_SUCCESS) {
            return false;
        }
        const auto size = [](const exr_attr_box2i_t& box) {
            return std::pair{std::int64_t{box.max.x} - box.min.x + 1, std::int64_t{box.max.y} - box.min.y + 1};
        };
        // Larger values are refused later, with the image library's message.
        constexpr std::int64_t kLargest = 1 << 20;
        const auto [width, height] = size(data);
        const auto [fullWidth, fullHeight] = size(display);
        const auto isSane = [](std::int64_t length) { return length > 0 && length <= kLargest; };
        if (!isSane(width) || !isSane(height) || !isSane(fullWidth) || !isSane(fullHeight)) return false;
        layout_.x = data.min.x;
        layout_.y = data.min.y;
        layout_.width = static_cast<int>(width);
        layout_.height = static_cast<int>(height);
        layout_.fullX = display.min.x;
        layout_.fullY = display.min.y;
        layout_.fullWidth = static_cast<int>(fullWidth);
        layout_.fullHeight = static_cast<int>(fullHeight);
        if (isTiled_) {
            tilesAcross_ = (layout_.width + tileWidth_ - 1) / tileWidth_;
            tilesDown_ = (layout_.height + tileHeight_ - 1) / tileHeight_;
        }
        return true;
    }

    exr_result_t FindBlock(int index, exr_chunk_info_t* block) const {
        if (isTiled_) {
            return exr_read_tile_chunk_info(file_.get(), 0, index % tilesAcross_, index / tilesAcross_, 0, 0, block);
        }
        return exr_read_scanline_chunk_info(file_.get(), 0, layout_.y + index * rowsPerBlock_, block);
    }

    std::size_t BytesOf(const exr_chunk_info_t& block) const {
        return static_cast<std::size_t>(block.width) * static_cast<std::size_t>(block.height) * rowBytesPerPixel_;
    }

    /// Puts a block's values where they belong among all of the channels from `begin` to before `end`.
    void Unpack(const exr_chunk_info_t& block, std::span<const std::byte> bytes, int begin, int end,
                float* values) const {
        const int left = isTiled_ ? block.start_x * tileWidth_ : 0;
        const int top = isTiled_ ? block.start_y * tileHeight_ : block.start_y - layout_.y;
        const auto count = static_cast<std::size_t>(end - begin);
        const auto width = static_cast<std::size_t>(block.width);
        for (int y = 0; y < block.height; ++y) {
            float* const row = values + (static_cast<std::size_t>(top + y) * static_cast<std::size_t>(layout_.width) +
                                         static_cast<std::size_t>(left)) *
                                            count;
            for (std::size_t i = 0; i < channels_.size(); ++i) {
                const std::size_t size = channels_[i].Size();
                if (const int place = places_[i]; place >= begin && place < end) {
                    UnpackExrRow(bytes.first(size * width), size, row + (place - begin), count);
                }
                bytes = bytes.subspan(size * width);
            }
        }
    }

    const int descriptor_;
    ExrFile file_;
    ImageLayout layout_;
    std::vector<ExrChannel> channels_;  ///< in the file's order
    std::vector<int> places_;           ///< of each of them in the layout
    std::size_t rowBytesPerPixel_ = 0;
    exr_compression_t compression_ = EXR_COMPRESSION_NONE;
    bool isTiled_ = false;
    int rowsPerBlock_ = 1;
    int tileWidth_ = 0, tileHeight_ = 0, tilesAcross_ = 0, tilesDown_ = 0;
};

}  // namespace

bool ReadsExr(int descriptor) {
    constexpr std::string_view kMagic = "\x76\x2f\x31\x01";
    char begin[4];
    if (ReadAt(descriptor, 0, std::as_writable_bytes(std::span(begin))) != sizeof begin ||
        std::string_view(begin, sizeof begin) != kMagic) {
        return false;
    }
    return ExrReader(descriptor).Open();
}

OpenedImage OpenExr(const ImageFile& file) {
    auto reader = std::make_unique<ExrReader>(file.descriptor);
    if (!reader->Open()) return ExrReason(EXR_ERR_FILE_BAD_HEADER);
    return reader;
}

}  // namespace umbrant::host
