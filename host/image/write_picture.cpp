// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

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
    bool hasWindows;  ///< a data window apart from the display window
};

constexpr std::array<Format, 6> kFormats = {{
    {".png", Form::kStraight, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT16, false},
    {".tif", Form::kStraight, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::FLOAT, false},
    {".tiff", Form::kStraight, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::FLOAT, false},
    {".exr", Form::kPremultiplied, OIIO::TypeDesc::HALF, OIIO::TypeDesc::FLOAT, true},
    {".jpg", Form::kOnWhite, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT8, false},
    {".jpeg", Form::kOnWhite, OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT8, false},
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

OIIO::ImageSpec SpecOf(const Format& format, const World& world, const Placement& place) {
    const auto type = world.PixelDepth() == Depth::k8 ? format.fromEight : format.fromFloat;
    OIIO::ImageSpec spec(world.Width(), world.Height(), format.form == Form::kOnWhite ? 3 : 4, OIIO::TypeDesc(type));
    if (format.form == Form::kStraight) spec.attribute("oiio:UnassociatedAlpha", 1);
    if (format.form == Form::kOnWhite) spec.attribute("Compression", "jpeg:95");
    if (format.hasWindows) {
        spec.attribute("compression", "zip");
        spec.x = place.window.left;
        spec.y = place.window.top;
        spec.full_x = 0;
        spec.full_y = 0;
        spec.full_width = place.frameWidth > 0 ? place.frameWidth : world.Width();
        spec.full_height = place.frameHeight > 0 ? place.frameHeight : world.Height();
    }
    return spec;
}

/// Writes to a name that nobody looks at yet. Returns why it could not.
std::optional<std::string> WriteTo(const fs::path& name, const OIIO::ImageSpec& spec,
                                   const std::vector<float>& values) {
    const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(name.string());
    if (!output) return OIIO::geterror();
    if (!output->open(name.string(), spec)) return output->geterror();
    const bool written = output->write_image(OIIO::TypeDesc::FLOAT, values.data());
    const bool closed = output->close();
    if (written && closed) return std::nullopt;
    return output->geterror();
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

Result<Done> WritePicture(const fs::path& file, const World& world, const Placement& place) {
    if (auto writable = CheckWritable(file); !writable) return writable;
    if (world.IsNull() || world.Width() == 0 || world.Height() == 0) {
        return CannotWrite(file, "there is nothing in the picture");
    }
    const Format& format = *FormatOf(file);
    TemporaryFile temporary(file);
    try {
        const OIIO::ImageSpec spec = SpecOf(format, world, place);
        if (const auto problem = WriteTo(temporary.Name(), spec, FileValues(world, format.form))) {
            return CannotWrite(file, problem->empty() ? "the disk or folder refuses it"
                                                      : std::string_view(*problem).substr(0, problem->find('\n')));
        }
    } catch (const std::exception& problem) {
        return CannotWrite(file, problem.what());
    }
    return temporary.PutInPlace();
}
