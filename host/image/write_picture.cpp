// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <OpenImageIO/imageio.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "host/image/checked_file.h"
#include "host/image/metadata.h"
#include "host/image/picture.h"
#include "host/image/temporary_file.h"

namespace {

namespace fs = std::filesystem;

/// How pixels leave the program.
enum class Form {
    kStraight,       ///< colours as they are, with alpha
    kPremultiplied,  ///< colours times alpha, with alpha
    kOnWhite,        ///< no alpha
};

struct Format {
    std::string_view extension;
    Form form;
    OIIO::TypeDesc::BASETYPE fromEight;  ///< the file's channels when the world has 8 bits
    OIIO::TypeDesc::BASETYPE fromFloat;
    bool hasWindows;                ///< a data window apart from the display window
    std::string_view name;          ///< as the image library has it
    std::string_view compressions;  ///< what may be chosen, in spaces; the first is taken when nothing else is said
};

constexpr std::string_view kTiffCompressions = " zip lzw packbits none ";
constexpr std::string_view kExrCompressions = " zip zips piz rle pxr24 b44 b44a dwaa dwab none ";

constexpr std::array<Format, 6> kFormats = {{
    {".png", Form::kStraight, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT16, false, "png", ""},
    {".tif", Form::kStraight, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::FLOAT, false, "tiff", kTiffCompressions},
    {".tiff", Form::kStraight, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::FLOAT, false, "tiff", kTiffCompressions},
    {".exr", Form::kPremultiplied, OIIO::TypeDesc::HALF, OIIO::TypeDesc::FLOAT, true, "openexr", kExrCompressions},
    {".jpg", Form::kOnWhite, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT8, false, "jpeg", ""},
    {".jpeg", Form::kOnWhite, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT8, false, "jpeg", ""},
}};

const Format* FormatOf(const fs::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const Format& format : kFormats) {
        if (format.extension == extension) return &format;
    }
    return nullptr;
}

Failure CannotWrite(const fs::path& file, std::string_view reason) {
    return {ExitCode::kFile, fmt::format("cannot write '{}': {}", file.string(), reason)};
}

Failure UnknownFormat(const fs::path& file) {
    const std::string extension = file.extension().string();
    const std::string what = extension.empty() ? "its name has no extension"
                                               : fmt::format("'{}' is not a format that can be written", extension);
    return CannotWrite(file, fmt::format("{}; use {}", what, WritableFormats()));
}

/// Alpha, red, green, blue as 0..1 and beyond.
struct Sample {
    float alpha, red, green, blue;
};

Sample SampleAt(const World& world, int x, int y) {
    const std::byte* at = world.Row(y) + static_cast<std::ptrdiff_t>(x) * BytesPerPixel(world.PixelDepth());
    const void* pixel = at;
    switch (world.PixelDepth()) {
        case Depth::k8: {
            const auto& p = *static_cast<const PF_Pixel*>(pixel);
            return {static_cast<float>(p.alpha) / 255.0f, static_cast<float>(p.red) / 255.0f,
                    static_cast<float>(p.green) / 255.0f, static_cast<float>(p.blue) / 255.0f};
        }
        case Depth::k16: {
            const auto& p = *static_cast<const PF_Pixel16*>(pixel);
            return {static_cast<float>(p.alpha) / 32768.0f, static_cast<float>(p.red) / 32768.0f,
                    static_cast<float>(p.green) / 32768.0f, static_cast<float>(p.blue) / 32768.0f};
        }
        case Depth::k32: {
            const auto& p = *static_cast<const PF_PixelFloat*>(pixel);
            return {p.alpha, p.red, p.green, p.blue};
        }
    }
    return {};
}

/// The file's values of a world, row by row: three channels without alpha, else four with alpha last.
std::vector<float> FileValues(const World& world, Form form) {
    std::vector<float> values;
    values.reserve(static_cast<std::size_t>(world.Width()) * static_cast<std::size_t>(world.Height()) * 4);
    for (int y = 0; y < world.Height(); ++y) {
        for (int x = 0; x < world.Width(); ++x) {
            const Sample s = SampleAt(world, x, y);
            const float weight = form == Form::kStraight ? 1.0f : s.alpha;
            const float ground = form == Form::kOnWhite ? 1.0f - s.alpha : 0.0f;
            // Nothing of an infinite colour is seen under no alpha, and a product would not be a number.
            const auto value = [=](float colour) { return weight == 0.0f ? ground : colour * weight + ground; };
            values.insert(values.end(), {value(s.red), value(s.green), value(s.blue)});
            if (form != Form::kOnWhite) values.push_back(s.alpha);
        }
    }
    return values;
}

/// A number from 1 to 100 after "jpeg:".
bool IsJpegQuality(std::string_view compression) {
    constexpr std::string_view kPrefix = "jpeg:";
    if (!compression.starts_with(kPrefix)) return false;
    compression.remove_prefix(kPrefix.size());
    int quality = 0;
    const char* end = compression.data() + compression.size();
    const auto [stop, error] = std::from_chars(compression.data(), end, quality);
    return error == std::errc() && stop == end && quality >= 1 && quality <= 100;
}

bool HasCompression(const Format& format, std::string_view compression) {
    if (format.form == Form::kOnWhite) return IsJpegQuality(compression);
    return !compression.empty() && compression.find(' ') == std::string_view::npos &&
           format.compressions.find(" " + std::string(compression) + " ") != std::string_view::npos;
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

OIIO::ImageSpec LayoutOf(const Format& format, const World& world, const Placement& place,
                         const WriteOptions& options) {
    auto type = world.PixelDepth() == Depth::k8 ? format.fromEight : format.fromFloat;
    if (format.hasWindows && options.half) type = OIIO::TypeDesc::HALF;
    OIIO::ImageSpec layout(world.Width(), world.Height(), format.form == Form::kOnWhite ? 3 : 4, OIIO::TypeDesc(type));
    if (options.metadata) AddMetadata(*options.metadata, layout);
    if (format.form == Form::kStraight) layout.attribute("oiio:UnassociatedAlpha", 1);
    if (const std::string compression = CompressionFor(format, options); !compression.empty()) {
        layout.attribute("compression", compression);
    }
    if (format.hasWindows) {
        layout.x = place.frameOrigin.x + place.window.left;
        layout.y = place.frameOrigin.y + place.window.top;
        layout.full_x = place.frameOrigin.x;
        layout.full_y = place.frameOrigin.y;
        layout.full_width = place.frameWidth > 0 ? place.frameWidth : world.Width();
        layout.full_height = place.frameHeight > 0 ? place.frameHeight : world.Height();
    }
    return layout;
}

/// Why nothing more can be written to the file, or nothing when it can. What it holds is of no use any more.
std::optional<std::string> WhyNoMore(int file) {
    const std::vector<char> block(std::size_t{4} << 20, '\1');
    std::size_t done = 0;
    lseek(file, 0, SEEK_END);
    while (done < block.size()) {
        const auto count = write(file, block.data() + done, block.size() - done);
        if (count < 0) return std::strerror(errno);
        done += static_cast<std::size_t>(count);
    }
    return std::nullopt;
}

/// Writes to a file that nobody looks at yet, never by its name: the library would make the file anew that an
/// interruption has just removed. Returns why it could not.
std::optional<std::string> WriteTo(const Format& format, const TemporaryFile& file, const OIIO::ImageSpec& layout,
                                   const std::vector<float>& values) {
    if (auto problem = file.Problem()) return problem;
    // Outlives the output, which may write once more when it goes.
    std::optional<CheckedFile> checked;
    const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(file.Name().string());
    if (!output) return OIIO::geterror();
    // Through a proxy the library loses a TIFF file's first directory when there is one for metadata beside it.
    if (format.name != "tiff") {
        checked.emplace(file.Name(), file.Descriptor());
        if (!output->set_ioproxy(&*checked)) return output->geterror();
    }
    bool whole = output->open(checked ? file.Name().string() : file.OpenName(), layout);
    whole = whole && output->write_image(OIIO::TypeDesc::FLOAT, values.data());
    whole = output->close() && whole;
    if (checked) {
        if (const auto problem = checked->Finish()) return problem;
    } else if (!whole) {
        if (const auto problem = WhyNoMore(file.Descriptor())) return problem;
    }
    return whole ? std::nullopt : std::optional(output->geterror());
}

}  // namespace

std::string WritableFormats() {
    std::string text;
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        if (i > 0) text += i + 1 == kFormats.size() ? " or " : ", ";
        text += kFormats[i].extension;
    }
    return text;
}

Result<Done> CheckWritable(const fs::path& file) {
    if (file.empty()) return Failure{ExitCode::kFile, "cannot write: the output's name is empty"};
    if (!FormatOf(file)) return UnknownFormat(file);
    return CheckPlace(file);
}

Result<Done> CheckPlace(const fs::path& file) {
    std::error_code error;
    if (fs::is_directory(file, error)) return CannotWrite(file, "there is a folder of that name");
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    if (!fs::exists(folder, error)) {
        return CannotWrite(file, fmt::format("there is no folder '{}'", folder.string()));
    }
    if (!fs::is_directory(folder, error)) {
        return CannotWrite(file, fmt::format("'{}' is not a folder", folder.string()));
    }
    return Done{};
}

Result<Done> CheckCompression(const fs::path& file, const std::string& compression) {
    const Format* format = FormatOf(file);
    if (!format) return UnknownFormat(file);
    if (HasCompression(*format, compression)) return Done{};
    const std::string extension(format->extension);
    if (format->form == Form::kOnWhite) {
        return Failure{ExitCode::kUsage,
                       fmt::format("'{}' is no compression of {}; use 'jpeg:1' to 'jpeg:100', its quality", compression,
                                   extension)};
    }
    if (format->compressions.empty()) {
        return Failure{ExitCode::kUsage,
                       fmt::format("{} has one compression only; there is nothing to choose", extension)};
    }
    return Failure{ExitCode::kUsage, fmt::format("'{}' is no compression of {}; use one of:{}", compression, extension,
                                                 format->compressions.substr(0, format->compressions.size() - 1))};
}

Result<Done> WritePicture(const fs::path& file, const World& world, const Placement& place,
                          const WriteOptions& options) {
    if (auto writable = CheckWritable(file); !writable) return writable;
    if (world.IsNull() || world.Width() == 0 || world.Height() == 0) {
        return CannotWrite(file, "there is nothing in the picture");
    }
    const Format& format = *FormatOf(file);
    TemporaryFile temporary(file);
    try {
        const OIIO::ImageSpec layout = LayoutOf(format, world, place, options);
        if (const auto problem = WriteTo(format, temporary, layout, FileValues(world, format.form))) {
            return CannotWrite(file, problem->empty() ? "the disk or folder refuses it"
                                                      : std::string_view(*problem).substr(0, problem->find('\n')));
        }
    } catch (const std::exception& problem) {
        return CannotWrite(file, problem.what());
    }
    return temporary.PutInPlace();
}
