// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "host/compositing/memory_shortage.h"
#include "host/image/channels/channel_pixels.h"
#include "host/image/channels/picture_channels.h"
#include "host/image/codec.h"
#include "host/image/encoded_file.h"
#include "host/image/metadata.h"
#include "host/image/picture.h"
#include "host/process/start_threads.h"
#include "host/why_no_file.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

Failure NoMemoryFor(const fs::path& file) {
    return NotEnoughMemory(fmt::format("'{}'", file.string()));
}

Failure CannotRead(const fs::path& file, std::string_view reason) {
    if (SaysNoMemory(std::string(reason))) return NoMemoryFor(file);
    return {SaysNoThread(std::string(reason)) ? ErrorKind::kInternal : ErrorKind::kFile,
            fmt::format("cannot read '{}': {}", file.string(), reason)};
}

/// The library's message as part of one sentence: its first line, without the file's name again or a full stop.
std::string Reason(std::string message, const fs::path& file) {
    message = message.substr(0, message.find('\n'));
    for (const std::string& name : {fmt::format(" \"{}\"", file.string()), fmt::format(" (\"{}\")", file.string()),
                                    fmt::format("\"{}\" ", file.string())}) {
        if (const auto at = message.find(name); at != std::string::npos) message.erase(at, name.size());
    }
    while (!message.empty() && (message.back() == '.' || message.back() == ' ')) message.pop_back();
    return message.empty() ? "the contents are damaged" : message;
}

/// Why there is no file of a picture to read at a path, or nothing when there is one.
std::optional<std::string> WhyNoPicture(const fs::path& file) {
    if (auto reason = WhyNoFile(file)) return reason;
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::is_directory(status)) return "a folder, not an image";
    if (!fs::is_regular_file(status)) return "not a regular file";
    const auto size = fs::file_size(file, error);
    if (!error && size == 0) return "the file is empty";
    return std::nullopt;
}

/// Why a picture of this size is refused, or nothing. A damaged or hostile file may claim any size, so this is asked
/// before any memory is taken.
std::optional<std::string> WhyTooLarge(int width, int height, int channels) {
    if (width > PF_MAX_WORLD_WIDTH || height > PF_MAX_WORLD_HEIGHT) {
        return fmt::format("too large: {} x {} pixels; no side may be longer than {}", width, height,
                           PF_MAX_WORLD_WIDTH);
    }
    constexpr std::int64_t kMostValues = std::int64_t{1} << 30;
    if (std::int64_t{width} * height > kMostValues / std::max(channels, 4)) {
        return fmt::format("too large: {} x {} pixels with {} channels; at most {} values are allowed", width, height,
                           channels, kMostValues);
    }
    return std::nullopt;
}

/// An offset of pixels, unless it is absurd.
PF_Point OffsetOf(const ImageLayout& layout) {
    constexpr int kFarthest = 1 << 24;
    PF_Point offset{};
    if (std::abs(std::int64_t{layout.x}) > kFarthest || std::abs(std::int64_t{layout.y}) > kFarthest) return offset;
    offset.x = layout.x;
    offset.y = layout.y;
    return offset;
}

/// The content of the header: an image without pixels and metadata.
Result<Picture> ReadHeader(const ImageReader& input, const fs::path& file, const ChannelChoice& choice) {
    const ImageLayout& layout = input.Layout();
    if (layout.depth > 1) return CannotRead(file, "a volume, not a flat image");
    if (layout.width <= 0 || layout.height <= 0 || layout.channels.empty())
        return CannotRead(file, "the image has no pixels");
    Picture picture;
    picture.format = input.FormatName();
    const bool hasWindows = picture.format == "openexr";
    picture.bits = layout.Number("oiio:BitsPerSample", layout.channelBytes * 8);
    picture.window = {0, 0, layout.width, layout.height};
    picture.frameWidth = layout.width;
    picture.frameHeight = layout.height;
    if (hasWindows && layout.fullWidth > 0 && layout.fullHeight > 0) {
        picture.window = {layout.x - layout.fullX, layout.y - layout.fullY, layout.x - layout.fullX + layout.width,
                          layout.y - layout.fullY + layout.height};
        picture.frameWidth = layout.fullWidth;
        picture.frameHeight = layout.fullHeight;
        picture.frameOrigin.x = layout.fullX;
        picture.frameOrigin.y = layout.fullY;
    }
    // A format without a frame has the frame begin where its pixels do.
    if (picture.format == "png") picture.frameOrigin = OffsetOf(layout);
    const auto [begin, end] = RangeOf(choice.channels);
    if (const auto reason = WhyTooLarge(layout.width, layout.height, end - begin)) return CannotRead(file, *reason);
    if (const auto reason = WhyTooLarge(picture.frameWidth, picture.frameHeight, 4)) return CannotRead(file, *reason);
    picture.isHalf = layout.isHalf;
    picture.note = choice.note;
    return picture;
}

Result<Picture> ReadOpened(ImageReader& input, const fs::path& file, const ChannelChoice& choice) {
    auto picture = ReadHeader(input, file, choice);
    if (!picture) return picture;
    const ImageLayout& layout = input.Layout();
    const bool eight = layout.channelBytes == 1;
    picture->metadata = std::make_shared<const PictureMetadata>(MetadataOf(layout, picture->format));
    picture->pixels = World::Create(layout.width, layout.height, eight ? Depth::k8 : Depth::k32);
    if (picture->pixels.IsNull()) {
        return NotEnoughMemory(fmt::format("'{}'", file.string()), layout.width, layout.height,
                               eight ? Depth::k8 : Depth::k32);
    }
    if (!picture->metadata->dropped.empty()) {
        picture->metadataNote =
            fmt::format("the colour profile of '{}' is left out: {}", file.string(), picture->metadata->dropped);
    }

    if (const auto problem = ReadPixels(input, choice.channels, picture->pixels)) {
        return CannotRead(file, Reason(*problem, file));
    }
    return picture;
}

class OpenFile {
 public:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int Descriptor() const { return descriptor_; }

 private:
    const int descriptor_;
};

/// The format that a file's first bytes announce, as the library has it, or nothing.
std::string FormatByContent(int descriptor) {
    using namespace std::string_view_literals;
    constexpr std::pair<std::string_view, const char*> kMagic[] = {
        {"\x89PNG"sv, "png"},
        {"\xff\xd8\xff"sv, "jpeg"},
        {"II*\0"sv, "tiff"},
        {"MM\0*"sv, "tiff"},
        {"II+\0"sv, "tiff"},
        {"MM\0+"sv, "tiff"},
        {"\x76\x2f\x31\x01"sv, "openexr"},
    };
    char begin[4]{};
    if (pread(descriptor, begin, sizeof begin, 0) != sizeof begin) return "";
    for (const auto& [magic, format] : kMagic) {
        if (std::string_view(begin, magic.size()) == magic) return format;
    }
    return "";
}

/// Reads all of standard input into a file in memory. Returns the reason on failure.
std::optional<std::string> TakeStandardInput(int file) {
    constexpr std::int64_t kMost = std::int64_t{1} << 32;  // more than an image that may be drawn
    std::vector<std::byte> block(std::size_t{1} << 20);
    for (std::int64_t taken = 0; taken <= kMost;) {
        const ssize_t count = read(STDIN_FILENO, block.data(), block.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::strerror(errno);
        if (count == 0) return taken == 0 ? std::optional<std::string>("standard input is empty") : std::nullopt;
        taken += count;
        if (auto problem = WriteAll(file, std::span(block).first(static_cast<std::size_t>(count)))) return problem;
    }
    return "standard input is longer than 4 GiB";
}

/// Chooses part and channels, and lets `read` make a picture of them.
template <typename Read>
Result<Picture> ChooseAnd(ImageReader& input, const fs::path& file, const ReadOptions& options, Read read) {
    auto partNote = ChoosePart(input, options.part, file.string());
    if (!partNote) return partNote.error();
    if (input.Layout().isDeep) return CannotRead(file, "a deep image; flatten it first");
    auto choice = TRY(ChooseChannels(input.Layout(), options.layer, file.string()));
    if (!partNote->empty()) choice.note = *partNote + (choice.note.empty() ? "" : "; " + choice.note);
    return read(input, file, choice);
}

/// Lets `read` make a picture of an open file. Without `isNamed` the file's name does not lead to it.
template <typename Read>
Result<Picture> DecodeAnd(int descriptor, const fs::path& file, bool isNamed, const ReadOptions& options, Read read) {
    ImageFile image{descriptor, file.string(), ""};
    if (!isNamed) {
        image.name = fmt::format("/dev/fd/{}", descriptor);
        image.format = FormatByContent(descriptor);
    }
    try {
        const auto codec = CodecToRead(descriptor);
        if (const auto* problem = std::get_if<std::string>(&codec)) return CannotRead(file, *problem);
        const OpenedImage input = std::get<const Codec*>(codec)->open(image);
        if (const auto* problem = std::get_if<std::string>(&input)) {
            return CannotRead(file, fmt::format("not an image that can be read ({})", Reason(*problem, image.name)));
        }
        return ChooseAnd(*std::get<std::unique_ptr<ImageReader>>(input), file, options, read);
    } catch (const std::bad_alloc&) {
        return NoMemoryFor(file);
    } catch (const std::exception& problem) {
        return CannotRead(file, Reason(problem.what(), image.name));
    }
}

/// Opens the file and lets `read` make a picture of it.
template <typename Read>
Result<Picture> OpenAnd(const fs::path& file, const ReadOptions& options, Read read) {
    const bool isStandardInput = file == "-";
    if (!isStandardInput) {
        if (const auto reason = WhyNoPicture(file)) return CannotRead(file, *reason);
    }
    const OpenFile opened(isStandardInput ? memfd_create("umbrant", MFD_CLOEXEC)
                                          : open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.Descriptor() < 0) return CannotRead(file, std::strerror(errno));
    if (isStandardInput) {
        if (const auto problem = TakeStandardInput(opened.Descriptor())) return CannotRead(file, *problem);
    }
    // The image library takes what follows a '?' in a name for arguments.
    const bool isNamed = !isStandardInput && file.string().find('?') == std::string::npos;
    return DecodeAnd(opened.Descriptor(), file, isNamed, options, read);
}

}  // namespace

Result<Picture> ReadPicture(const fs::path& file, const ReadOptions& options) {
    return OpenAnd(file, options, ReadOpened);
}

Result<Picture> ReadPictureHeader(const fs::path& file, const ReadOptions& options) {
    return OpenAnd(file, options, ReadHeader);
}

Result<Picture> ReadOpenPicture(int descriptor, const std::string& name) {
    return DecodeAnd(descriptor, name, false, {}, ReadOpened);
}

Result<Picture> ReadOpenPictureHeader(int descriptor, const std::string& name) {
    return DecodeAnd(descriptor, name, false, {}, ReadHeader);
}

}  // namespace umbrant::host
