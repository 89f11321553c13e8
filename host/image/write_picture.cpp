// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <OpenImageIO/imageio.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/start_threads.h"
#include "host/image/encoded_file.h"
#include "host/image/metadata.h"
#include "host/image/picture.h"
#include "host/image/picture_format.h"
#include "host/image/picture_place.h"
#include "host/process/temporary_file.h"

namespace {

namespace fs = std::filesystem;

Failure CannotWrite(const fs::path& file, std::string_view reason) {
    if (SaysNoMemory(std::string(reason))) return NotEnoughMemory(fmt::format("writing '{}'", file.string()));
    return {SaysNoThread(std::string(reason)) ? ExitCode::kInternal : ExitCode::kFile,
            fmt::format("cannot write '{}': {}", file.string(), reason)};
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

/// The file's values of some rows of a world: three channels without alpha, else four with alpha last.
void FileValues(const World& world, Form form, int begin, int end, std::vector<float>& values) {
    values.clear();
    for (int y = begin; y < end; ++y) {
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

FileDepth DepthFor(const Format& format, const World& world, const WriteOptions& options) {
    if (options.depth != FileDepth::kAuto) return options.depth;
    if (format.place == PlaceKind::kWindows && options.half) return FileDepth::kHalf;
    return world.PixelDepth() == Depth::k8 ? format.fromEight : format.fromFloat;
}

OIIO::ImageSpec LayoutOf(const Format& format, const World& world, const Placement& place,
                         const WriteOptions& options) {
    OIIO::ImageSpec layout(world.Width(), world.Height(), format.form == Form::kOnWhite ? 3 : 4,
                           TypeOf(DepthFor(format, world, options)));
    if (options.metadata) AddMetadata(*options.metadata, layout);
    FixDate(layout);
    if (format.form == Form::kStraight) layout.attribute("oiio:UnassociatedAlpha", 1);
    if (const std::string compression = CompressionFor(format, options); !compression.empty()) {
        layout.attribute("compression", compression);
    }
    if (format.place != PlaceKind::kNone) {
        layout.x = place.frameOrigin.x + place.window.left;
        layout.y = place.frameOrigin.y + place.window.top;
    }
    if (format.place == PlaceKind::kWindows) {
        layout.full_x = place.frameOrigin.x;
        layout.full_y = place.frameOrigin.y;
        layout.full_width = place.frameWidth > 0 ? place.frameWidth : world.Width();
        layout.full_height = place.frameHeight > 0 ? place.frameHeight : world.Height();
    }
    return layout;
}

/// Lets the library write the image, through `proxy` or, without one, to a file of that name. Returns why it could not.
std::optional<std::string> Encode(const Format& format, const World& world, const OIIO::ImageSpec& layout,
                                  const std::string& name, OIIO::Filesystem::IOProxy* proxy) {
    const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(std::string(format.name));
    if (!output) return OIIO::geterror();
    if (proxy && !output->set_ioproxy(proxy)) return output->geterror();
    if (!output->open(name, layout)) return output->geterror();
    // In bands, which take less memory than all values at once. Each is a multiple of every format's own.
    constexpr int kBand = 256;
    std::vector<float> values;
    bool whole = true;
    for (int begin = 0; whole && begin < world.Height(); begin += kBand) {
        const int end = std::min(begin + kBand, world.Height());
        FileValues(world, format.form, begin, end, values);
        whole = output->write_scanlines(layout.y + begin, layout.y + end, 0, OIIO::TypeDesc::FLOAT, values.data());
    }
    whole = output->close() && whole;
    return whole ? std::nullopt : std::optional(output->geterror());
}

/// The same for TIFF, whose metadata may have a directory of their own, for which the library reads what it wrote, and
/// never through a proxy. The image goes to a file without a place on a disk; where files may not grow, nothing is
/// begun that would not fit: after a failed write the library may not end.
std::optional<std::string> EncodeTiff(const Format& format, const World& world, const OIIO::ImageSpec& layout,
                                      EncodedFile& encoded) {
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        OIIO::ImageSpec plain(layout.width, layout.height, layout.nchannels, layout.format);
        plain.attribute("compression", layout.get_string_attribute("compression"));
        std::size_t metadata = 1024;
        for (const OIIO::ParamValue& attribute : layout.extra_attribs) {
            metadata += static_cast<std::size_t>(attribute.datasize()) + 64;
        }
        EncodedFile measured(std::string(format.name));
        if (auto problem = Encode(format, world, plain, "measured", &measured)) return problem;
        if (measured.size() + metadata > limit.rlim_cur) return std::strerror(EFBIG);
    }
    const int file = memfd_create("umbrant", MFD_CLOEXEC);
    if (file < 0) return std::strerror(errno);
    auto problem = Encode(format, world, layout, fmt::format("/dev/fd/{}", file), nullptr);
    if (!problem) encoded.CopyFrom(file);
    close(file);
    return problem;
}

/// The file's bytes. Fails with the reason alone.
std::optional<std::string> EncodeTo(EncodedFile& encoded, const Format& format, const World& world,
                                    const Placement& place, const WriteOptions& options) {
    // What the library says to its own developers would appear on the standard streams.
    static const bool quiet = OIIO::attribute("debug", 0);
    (void)quiet;
    try {
        const OIIO::ImageSpec layout = LayoutOf(format, world, place, options);
        auto problem = format.name == "tiff" ? EncodeTiff(format, world, layout, encoded)
                                             : Encode(format, world, layout, std::string(format.name), &encoded);
        if (!encoded.Problem() && !problem) return std::nullopt;
        const std::string reason = encoded.Problem().value_or(problem.value_or(""));
        return reason.empty() ? "it cannot be encoded" : reason.substr(0, reason.find('\n'));
    } catch (const std::bad_alloc&) {
        return "there is not enough memory for it";
    } catch (const std::exception& problem) {
        return problem.what();
    }
}

constexpr char kNothing[] = "there is nothing in the picture";

bool HasPixels(const World& world) {
    return !world.IsNull() && world.Width() > 0 && world.Height() > 0;
}

}  // namespace

Result<Done> CheckWritable(const fs::path& file) {
    if (file.empty()) return Failure{ExitCode::kFile, "cannot write: the output's name is empty"};
    if (auto known = CheckFormat(file); !known) return known;
    return CheckPlace(file);
}

Result<std::string> EncodePicture(const World& world, const Placement& place, const WriteOptions& options) {
    const fs::path output = "-";
    if (auto known = CheckFormat(output, options.format); !known) return known.Error();
    if (!HasPixels(world)) return CannotWrite(output, kNothing);
    EncodedFile encoded(options.format);
    if (const auto problem = EncodeTo(encoded, *FormatOf(output, options.format), world, place, options)) {
        return CannotWrite(output, *problem);
    }
    std::string bytes(encoded.size(), '\0');
    encoded.pread(bytes.data(), bytes.size(), 0);
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
    EncodedFile encoded(file.string());
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
