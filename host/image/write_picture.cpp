// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "host/compositing/memory_shortage.h"
#include "host/image/codec.h"
#include "host/image/encoded_file.h"
#include "host/image/metadata.h"
#include "host/image/picture.h"
#include "host/image/picture_format.h"
#include "host/image/picture_place.h"
#include "host/image/recipe/recipe_text.h"
#include "host/process/files/temporary_file.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

Failure CannotWrite(const fs::path& file, std::string_view reason) {
    if (SaysNoMemory(std::string(reason))) return NotEnoughMemory(fmt::format("writing '{}'", file.string()));
    return {SaysNoThread(std::string(reason)) ? ErrorKind::kInternal : ErrorKind::kFile,
            fmt::format("cannot write '{}': {}", file.string(), reason)};
}

/// Alpha, red, green, blue as 0..1 and beyond.
struct Sample {
    float alpha, red, green, blue;
};

Sample SampleOf(const PF_Pixel& p) {
    return {static_cast<float>(p.alpha) / 255.0f, static_cast<float>(p.red) / 255.0f,
            static_cast<float>(p.green) / 255.0f, static_cast<float>(p.blue) / 255.0f};
}

Sample SampleOf(const PF_Pixel16& p) {
    return {static_cast<float>(p.alpha) / 32768.0f, static_cast<float>(p.red) / 32768.0f,
            static_cast<float>(p.green) / 32768.0f, static_cast<float>(p.blue) / 32768.0f};
}

Sample SampleOf(const PF_PixelFloat& p) {
    return {p.alpha, p.red, p.green, p.blue};
}

/// The file's values of one row: three channels without alpha, else four with alpha last. Returns where they end.
template <Form form, typename Pixel>
float* RowValues(const std::byte* row, int width, float* to) {
    const auto* pixel = static_cast<const Pixel*>(static_cast<const void*>(row));
    for (int x = 0; x < width; ++x) {
        const Sample s = SampleOf(pixel[x]);
        const float weight = form == Form::kStraight ? 1.0f : s.alpha;
        const float ground = form == Form::kOnWhite ? 1.0f - s.alpha : 0.0f;
        // Nothing of an infinite colour is seen under no alpha, and a product would not be a number.
        const auto value = [=](float colour) { return weight == 0.0f ? ground : colour * weight + ground; };
        *to++ = value(s.red);
        *to++ = value(s.green);
        *to++ = value(s.blue);
        if (form != Form::kOnWhite) *to++ = s.alpha;
    }
    return to;
}

template <Form form>
float* RowValues(const World& world, int y, float* to) {
    switch (world.PixelDepth()) {
        case Depth::k8:
            return RowValues<form, PF_Pixel>(world.Row(y), world.Width(), to);
        case Depth::k16:
            return RowValues<form, PF_Pixel16>(world.Row(y), world.Width(), to);
        case Depth::k32:
            return RowValues<form, PF_PixelFloat>(world.Row(y), world.Width(), to);
    }
    return to;
}

/// The file's values of some rows of a world.
void FileValues(const World& world, Form form, int begin, int end, std::vector<float>& values) {
    const std::size_t channels = form == Form::kOnWhite ? 3 : 4;
    values.resize(static_cast<std::size_t>(world.Width()) * static_cast<std::size_t>(end - begin) * channels);
    float* to = values.data();
    for (int y = begin; y < end; ++y) {
        switch (form) {
            case Form::kStraight:
                to = RowValues<Form::kStraight>(world, y, to);
                break;
            case Form::kPremultiplied:
                to = RowValues<Form::kPremultiplied>(world, y, to);
                break;
            case Form::kOnWhite:
                to = RowValues<Form::kOnWhite>(world, y, to);
                break;
        }
    }
}

/// The chosen compression, else the one that the picture came with, else the format's own.
std::string CompressionFor(const Format& format, const WriteOptions& options) {
    if (!options.compression.empty()) return options.compression;
    const PictureMetadata* from = options.metadata.get();
    if (from && from->format == format.name && HasCompression(format, from->compression)) return from->compression;
    if (format.form == Form::kOnWhite) return "jpeg:95";
    if (format.compressions.empty()) return "";
    return std::string(format.compressions.substr(1, format.compressions.find(' ', 1) - 1));
}

FileDepth DepthFor(const Format& format, Depth depth, const WriteOptions& options) {
    if (options.depth != FileDepth::kAuto) return options.depth;
    if (format.place == PlaceKind::kWindows && options.half) return FileDepth::kHalf;
    return depth == Depth::k8 ? format.fromEight : format.fromFloat;
}

/// Whether the codec of a format writes a text under any name.
bool KeepsTexts(const Format& format) {
    return format.name == "png" || format.name == "openexr";
}

ImageLayout LayoutOf(const Format& format, const World& world, const Placement& place, const WriteOptions& options) {
    ImageLayout layout;
    layout.width = world.Width();
    layout.height = world.Height();
    layout.channels = {"R", "G", "B"};
    if (format.form != Form::kOnWhite) {
        layout.channels.emplace_back("A");
        layout.alphaChannel = 3;
    }
    if (options.metadata) AddMetadata(*options.metadata, layout);
    if (options.colors) SetColors(*options.colors, format.place == PlaceKind::kWindows, layout);
    FixDate(layout);
    if (!options.recipe.empty() && KeepsTexts(format)) layout.SetText(kRecipeName, options.recipe);
    layout.isStraight = format.form == Form::kStraight;
    if (format.place != PlaceKind::kNone) {
        layout.x = place.frameOrigin.x + place.window.left;
        layout.y = place.frameOrigin.y + place.window.top;
    }
    if (format.place == PlaceKind::kWindows) {
        layout.fullX = place.frameOrigin.x;
        layout.fullY = place.frameOrigin.y;
        layout.fullWidth = place.frameWidth > 0 ? place.frameWidth : world.Width();
        layout.fullHeight = place.frameHeight > 0 ? place.frameHeight : world.Height();
    }
    return layout;
}

/// Returns the file's bytes. A failure has only the reason.
std::optional<std::string> EncodeTo(EncodedFile& encoded, const Format& format, const World& world,
                                    const Placement& place, const WriteOptions& options) {
    try {
        const auto codec = CodecToWrite(format);
        if (const auto* problem = std::get_if<std::string>(&codec)) return *problem;
        const ImageLayout layout = LayoutOf(format, world, place, options);
        const ImageToWrite image = {format,
                                    layout,
                                    DepthFor(format, world.PixelDepth(), options),
                                    CompressionFor(format, options),
                                    world,
                                    [&](int begin, int end, std::vector<float>& values) {
                                        FileValues(world, format.form, begin, end, values);
                                    }};
        const auto problem = std::get<const Codec*>(codec)->encode(image, encoded);
        if (!options.recipe.empty() && !KeepsTexts(format) && !problem) PutRecipe(options.recipe, encoded);
        if (!encoded.Problem() && !problem) return std::nullopt;
        std::string reason = encoded.Problem().value_or(problem.value_or(""));
        reason.erase(std::find(reason.begin(), reason.end(), '\n'), reason.end());
        return reason.empty() ? "the image cannot be encoded" : reason;
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& problem) {
        return problem.what();
    }
}

constexpr char kNothing[] = "the image is empty";

bool HasPixels(const World& world) {
    return !world.IsNull() && world.Width() > 0 && world.Height() > 0;
}

}  // namespace

FileDepth DepthInFile(const fs::path& file, Depth depth, const WriteOptions& options) {
    const Format* format = FormatOf(file, options.format);
    return format ? DepthFor(*format, depth, options) : options.depth;
}

Result<Done> CheckWritable(const fs::path& file) {
    if (file.empty()) return Failure{ErrorKind::kFile, "cannot write: the output's name is empty"};
    if (auto known = CheckFormat(file); !known) return known;
    return CheckPlace(file);
}

Result<std::string> EncodePicture(const World& world, const Placement& place, const WriteOptions& options) {
    const fs::path output = "-";
    TRY(CheckFormat(output, options.format));
    if (!HasPixels(world)) return CannotWrite(output, kNothing);
    EncodedFile encoded;
    if (const auto problem = EncodeTo(encoded, *FormatOf(output, options.format), world, place, options)) {
        return CannotWrite(output, *problem);
    }
    std::string bytes(encoded.Size(), '\0');
    encoded.Read(0, std::as_writable_bytes(std::span(bytes)));
    return bytes;
}

Result<Done> WritePicture(const fs::path& file, const World& world, const Placement& place,
                          const WriteOptions& options) {
    if (auto writable = CheckWritable(file); !writable) return writable;
    if (!HasPixels(world)) return CannotWrite(file, kNothing);
    // Made before the encoding, so that a folder that takes no file is found out at once.
    const fs::path behind = BehindLinks(file);
    TemporaryFile temporary(behind);
    if (const auto problem = temporary.Problem()) return CannotWrite(file, *problem);
    EncodedFile encoded;
    if (const auto problem = EncodeTo(encoded, *FormatOf(file), world, place, options)) {
        return CannotWrite(file, *problem);
    }
    if (const auto problem = encoded.CopyTo(temporary.Descriptor())) return CannotWrite(file, *problem);
    // Some file systems report a failed write only here.
    if (const int copy = dup(temporary.Descriptor()); copy >= 0 && close(copy) != 0) {
        return CannotWrite(file, std::strerror(errno));
    }
    TakeModeOf(behind, temporary.Descriptor());
    return temporary.PutInPlace();
}

}  // namespace umbrant::host
