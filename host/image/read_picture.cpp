// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "host/image/metadata.h"
#include "host/image/picture.h"
#include "hostapi/limits.h"

namespace {

namespace fs = std::filesystem;

Failure CannotRead(const fs::path& file, std::string_view reason) {
    return {ExitCode::kFile, fmt::format("cannot read '{}': {}", file.string(), reason)};
}

/// The library's message as part of one sentence: its first line, without the file's name again or a full stop.
std::string Reason(std::string message, const fs::path& file) {
    message = message.substr(0, message.find('\n'));
    for (const std::string& name : {fmt::format(" \"{}\"", file.string()), fmt::format(" (\"{}\")", file.string()),
                                    fmt::format("\"{}\" ", file.string())}) {
        if (const auto at = message.find(name); at != std::string::npos) message.erase(at, name.size());
    }
    while (!message.empty() && (message.back() == '.' || message.back() == ' ')) message.pop_back();
    return message.empty() ? "its contents are damaged" : message;
}

/// Which of a file's channels are which; -1 for none.
struct Channels {
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = -1;
};

int ChannelNamed(const OIIO::ImageSpec& layout, std::string_view name) {
    for (int i = 0; i < layout.nchannels; ++i) {
        const std::string& candidate = layout.channelnames[static_cast<std::size_t>(i)];
        if (candidate.size() == name.size() &&
            std::equal(candidate.begin(), candidate.end(), name.begin(),
                       [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); })) {
            return i;
        }
    }
    return -1;
}

/// Colour channels by name where they are named, else the first three; one channel is grey, two are red and green.
Channels FindChannels(const OIIO::ImageSpec& layout) {
    Channels found;
    found.alpha = layout.alpha_channel;
    found.red = ChannelNamed(layout, "R");
    found.green = ChannelNamed(layout, "G");
    found.blue = ChannelNamed(layout, "B");
    if (found.red >= 0 && found.green >= 0 && found.blue >= 0) return found;

    std::vector<int> colours;
    for (int i = 0; i < layout.nchannels; ++i) {
        if (i != found.alpha) colours.push_back(i);
    }
    if (colours.size() >= 3) return {colours[0], colours[1], colours[2], found.alpha};
    if (colours.size() == 2) return {colours[0], colours[1], -1, found.alpha};
    if (colours.size() == 1) return {colours[0], colours[0], colours[0], found.alpha};
    return {-1, -1, -1, found.alpha};
}

/// Puts one row of the file's channels into a world's row. A colour channel that the file lacks is 0, or full in a file
/// of alpha alone; a missing alpha is full.
template <typename Pixel, typename Channel>
void FillRow(const Channel* from, int channelCount, const Channels& channels, Channel full, Pixel* to, int width) {
    const Channel missing = channels.red < 0 ? full : Channel{0};
    for (int x = 0; x < width; ++x, from += channelCount) {
        to[x].alpha = channels.alpha < 0 ? full : from[channels.alpha];
        to[x].red = channels.red < 0 ? missing : from[channels.red];
        to[x].green = channels.green < 0 ? missing : from[channels.green];
        to[x].blue = channels.blue < 0 ? missing : from[channels.blue];
    }
}

void Unpremultiply(PF_PixelFloat* row, int width) {
    for (int x = 0; x < width; ++x) {
        PF_PixelFloat& pixel = row[x];
        if (!(pixel.alpha > 0.0f)) continue;
        pixel.red /= pixel.alpha;
        pixel.green /= pixel.alpha;
        pixel.blue /= pixel.alpha;
    }
}

void Unpremultiply(PF_Pixel* row, int width) {
    for (int x = 0; x < width; ++x) {
        PF_Pixel& pixel = row[x];
        if (pixel.alpha == 0) continue;
        const auto divide = [&pixel](A_u_char channel) {
            return static_cast<A_u_char>(std::min(255, (channel * 255 + pixel.alpha / 2) / pixel.alpha));
        };
        pixel.red = divide(pixel.red);
        pixel.green = divide(pixel.green);
        pixel.blue = divide(pixel.blue);
    }
}

/// Reads all pixels in the file's own channels, `Channel` being what they are converted to.
template <typename Pixel, typename Channel>
std::optional<std::string> ReadPixels(OIIO::ImageInput& input, const OIIO::ImageSpec& layout, OIIO::TypeDesc type,
                                      Channel full, World& world) {
    const std::size_t rowValues = static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(layout.nchannels);
    // Zeroed by the system page by page, as they are written: a small file that claims to be large costs nothing.
    const std::unique_ptr<Channel, decltype(&std::free)> values(
        static_cast<Channel*>(std::calloc(rowValues * static_cast<std::size_t>(layout.height), sizeof(Channel))),
        &std::free);
    if (!values) throw std::bad_alloc();
    const bool read = input.read_image(0, 0, 0, layout.nchannels, type, values.get());
    // Some readers deliver what they have of a truncated file and only leave a message.
    const std::string message = input.geterror();
    if (!read || !message.empty()) return message;

    const Channels channels = FindChannels(layout);
    const bool hasBoth = channels.alpha >= 0 && channels.red >= 0;
    const bool straight = !hasBoth || layout.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
    for (int y = 0; y < layout.height; ++y) {
        auto* row = static_cast<Pixel*>(static_cast<void*>(world.Row(y)));
        FillRow(values.get() + rowValues * static_cast<std::size_t>(y), layout.nchannels, channels, full, row,
                layout.width);
        if (!straight) Unpremultiply(row, layout.width);
    }
    return std::nullopt;
}

/// What lies at a path that is not a file, or nothing when it is one.
std::optional<std::string> WhyNoFile(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) return "there is no such file";
    if (fs::is_directory(status)) return "it is a folder, not a picture";
    if (!fs::is_regular_file(status)) return "it is not a regular file";
    const auto size = fs::file_size(file, error);
    if (!error && size == 0) return "the file is empty";
    return std::nullopt;
}

/// Why a picture of this size is refused, or nothing. A damaged or hostile file may claim any size, so this is asked
/// before any memory is taken.
std::optional<std::string> WhyTooLarge(int width, int height, int channels) {
    if (width > PF_MAX_WORLD_WIDTH || height > PF_MAX_WORLD_HEIGHT) {
        return fmt::format("it is too large: {} x {} pixels, where no side may be longer than {}", width, height,
                           PF_MAX_WORLD_WIDTH);
    }
    constexpr std::int64_t kMostValues = std::int64_t{1} << 30;
    if (std::int64_t{width} * height > kMostValues / std::max(channels, 4)) {
        return fmt::format("it is too large: {} x {} pixels of {} channels, where all together may hold {} values",
                           width, height, channels, kMostValues);
    }
    return std::nullopt;
}

/// All that the header says: a picture without pixels and metadata.
Result<Picture> ReadHeader(const OIIO::ImageInput& input, const fs::path& file) {
    const OIIO::ImageSpec& layout = input.spec();
    if (layout.deep) return CannotRead(file, "it is a deep picture; flatten it first");
    if (layout.depth > 1) return CannotRead(file, "it is a volume, not a flat picture");
    if (layout.width <= 0 || layout.height <= 0 || layout.nchannels <= 0) return CannotRead(file, "it has no pixels");
    Picture picture;
    picture.format = input.format_name();
    const bool hasWindows = picture.format == "openexr";
    if (hasWindows && layout.get_int_attribute("oiio:subimages", 1) > 1) {
        return CannotRead(file, "it has several parts; save the one you need as a file of its own");
    }

    picture.bits = layout.get_int_attribute("oiio:BitsPerSample", static_cast<int>(layout.format.size()) * 8);
    picture.window = {0, 0, layout.width, layout.height};
    picture.frameWidth = layout.width;
    picture.frameHeight = layout.height;
    if (hasWindows && layout.full_width > 0 && layout.full_height > 0) {
        picture.window = {layout.x - layout.full_x, layout.y - layout.full_y, layout.x - layout.full_x + layout.width,
                          layout.y - layout.full_y + layout.height};
        picture.frameWidth = layout.full_width;
        picture.frameHeight = layout.full_height;
        picture.frameOrigin.x = layout.full_x;
        picture.frameOrigin.y = layout.full_y;
    }
    if (const auto reason = WhyTooLarge(layout.width, layout.height, layout.nchannels))
        return CannotRead(file, *reason);
    if (const auto reason = WhyTooLarge(picture.frameWidth, picture.frameHeight, 4)) return CannotRead(file, *reason);
    picture.isHalf = layout.format == OIIO::TypeDesc::HALF;
    return picture;
}

Result<Picture> ReadOpened(OIIO::ImageInput& input, const fs::path& file) {
    auto picture = ReadHeader(input, file);
    if (!picture) return picture;
    const OIIO::ImageSpec layout = input.spec();
    const bool eight = layout.format.size() == 1;
    picture->metadata = std::make_shared<const PictureMetadata>(MetadataOf(layout, picture->format));
    picture->pixels = World::Create(layout.width, layout.height, eight ? Depth::k8 : Depth::k32);
    if (picture->pixels.IsNull()) return CannotRead(file, "there is not enough memory for it");

    const auto problem =
        eight ? ReadPixels<PF_Pixel, A_u_char>(input, layout, OIIO::TypeDesc::UINT8, 255, picture->pixels)
              : ReadPixels<PF_PixelFloat, float>(input, layout, OIIO::TypeDesc::FLOAT, 1.0f, picture->pixels);
    if (problem) return CannotRead(file, Reason(*problem, file));
    return picture;
}

/// Opens the file and lets `read` make a picture of it.
template <typename Read>
Result<Picture> OpenAnd(const fs::path& file, Read read) {
    if (const auto reason = WhyNoFile(file)) return CannotRead(file, *reason);
    try {
        // Without this the library would hand over straight files premultiplied, and rounded.
        OIIO::ImageSpec config;
        config.attribute("oiio:UnassociatedAlpha", 1);
        const std::unique_ptr<OIIO::ImageInput> input = OIIO::ImageInput::open(file.string(), &config);
        if (!input) {
            const std::string message = OIIO::geterror();
            return CannotRead(file, fmt::format("it is not a picture that can be read ({})", Reason(message, file)));
        }
        return read(*input, file);
    } catch (const std::bad_alloc&) {
        return CannotRead(file, "there is not enough memory for it");
    } catch (const std::exception& problem) {
        return CannotRead(file, Reason(problem.what(), file));
    }
}

}  // namespace

Result<Picture> ReadPicture(const fs::path& file) {
    return OpenAnd(file, ReadOpened);
}

Result<Picture> ReadPictureHeader(const fs::path& file) {
    return OpenAnd(file, ReadHeader);
}
