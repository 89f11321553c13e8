// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_reader.h"

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <tuple>
#include <utility>

#include "host/compositing/row_pool.h"
#include "host/image/exr/exr_attributes.h"
#include "host/image/exr/exr_blocks.h"
#include "host/image/exr/exr_file.h"

namespace umbrant::host {

namespace {

std::int64_t ReadAt(exr_const_context_t, void* user, void* buffer, std::uint64_t size, std::uint64_t offset,
                    exr_stream_error_func_ptr_t) {
    const int descriptor = *static_cast<const int*>(user);
    auto* to = static_cast<char*>(buffer);
    std::uint64_t done = 0;
    while (done < size) {
        const ssize_t count = pread(descriptor, to + done, size - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return -1;
        if (count == 0) break;
        done += static_cast<std::uint64_t>(count);
    }
    return static_cast<std::int64_t>(done);
}

std::int64_t SizeOf(exr_const_context_t, void* user) {
    struct stat status {};
    return fstat(*static_cast<const int*>(user), &status) == 0 ? status.st_size : -1;
}

/// A channel of the file.
struct Channel {
    std::string name, layer, suffix;
    int rank = 0;  ///< among those of its layer
    exr_pixel_type_t type = EXR_PIXEL_HALF;
    int number = 0;  ///< in the file's order

    std::size_t Size() const { return type == EXR_PIXEL_HALF ? 2 : 4; }
};

/// The position of a channel among those of its layer; equal positions are in alphabetical order. X, Y and Z
/// are a vector where X and another of them are there; else Z is a depth, and Y a luminance.
int RankOf(const std::string& suffix, bool isVector) {
    constexpr const char* kVector[] = {"R", "Red",   "G",  "Green", "B",  "Blue", "X",  "Y",  "Z",     "real", "imag",
                                       "A", "Alpha", "AR", "RA",    "AG", "GA",   "AB", "BA", "Depth", "Zback"};
    constexpr const char* kPlain[] = {"R",     "Red", "G",  "Green", "B",  "Blue", "Y",  "real", "imag",  "A",
                                      "Alpha", "AR",  "RA", "AG",    "GA", "AB",   "BA", "Z",    "Depth", "Zback"};
    const auto rank = [&](const auto& order) {
        return std::distance(std::begin(order), std::find_if(std::begin(order), std::end(order), [&](const char* one) {
                                 return strcasecmp(suffix.c_str(), one) == 0;
                             }));
    };
    return static_cast<int>(isVector ? rank(kVector) : rank(kPlain));
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
        context.read_fn = ReadAt;
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
            const std::byte* bytes = nullptr;
            if (result == EXR_ERR_SUCCESS) result = reader->Read(block, BytesOf(block), &bytes);
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
        const exr_attr_chlist_t* list = nullptr;
        if (exr_get_channels(file_.get(), 0, &list) != EXR_ERR_SUCCESS || list->num_channels < 1) return false;
        for (int i = 0; i < list->num_channels; ++i) {
            const exr_attr_chlist_entry_t& entry = list->entries[i];
            if (entry.pixel_type == EXR_PIXEL_UINT || entry.x_sampling != 1 || entry.y_sampling != 1) return false;
            Channel channel;
            channel.name = std::string(entry.name.str, static_cast<std::size_t>(entry.name.length));
            const std::size_t dot = channel.name.rfind('.');
            channel.layer = dot == std::string::npos ? "" : channel.name.substr(0, dot + 1);
            channel.suffix = dot == std::string::npos ? channel.name : channel.name.substr(dot + 1);
            channel.type = entry.pixel_type;
            channel.number = i;
            rowBytesPerPixel_ += channel.Size();
            channels_.push_back(std::move(channel));
        }
        for (Channel& channel : channels_) {
            const auto has = [&](const char* suffix) {
                return std::any_of(channels_.begin(), channels_.end(), [&](const Channel& other) {
                    return other.layer == channel.layer && strcasecmp(other.suffix.c_str(), suffix) == 0;
                });
            };
            channel.rank = RankOf(channel.suffix, has("X") && (has("Y") || has("Z")));
        }
        std::vector<Channel> ordered = channels_;
        std::sort(ordered.begin(), ordered.end(), [](const Channel& a, const Channel& b) {
            return std::tie(a.layer, a.rank, a.name) < std::tie(b.layer, b.rank, b.name);
        });
        const auto isSame = [](const Channel& a, const Channel& b) { return a.name == b.name; };
        if (std::adjacent_find(ordered.begin(), ordered.end(), isSame) != ordered.end()) return false;
        places_.resize(ordered.size());
        layout_.isHalf = true;
        for (std::size_t i = 0; i < ordered.size(); ++i) {
            const Channel& channel = ordered[i];
            places_[static_cast<std::size_t>(channel.number)] = static_cast<int>(i);
            layout_.channels.push_back(channel.name);
            if (channel.type != EXR_PIXEL_HALF) layout_.isHalf = false;
            const bool isAlpha =
                strcasecmp(channel.suffix.c_str(), "A") == 0 || strcasecmp(channel.suffix.c_str(), "Alpha") == 0;
            if (isAlpha && layout_.alphaChannel < 0) layout_.alphaChannel = static_cast<int>(i);
        }
        layout_.channelBytes = layout_.isHalf ? 2 : 4;
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
    void Unpack(const exr_chunk_info_t& block, const std::byte* bytes, int begin, int end, float* values) const {
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
                    UnpackExrRow(bytes, size, width, row + (place - begin), count);
                }
                bytes += size * width;
            }
        }
    }

    const int descriptor_;
    ExrFile file_;
    ImageLayout layout_;
    std::vector<Channel> channels_;  ///< in the file's order
    std::vector<int> places_;        ///< of each of them in the layout
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
    if (ReadAt(nullptr, &descriptor, begin, sizeof begin, 0, nullptr) != sizeof begin ||
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
