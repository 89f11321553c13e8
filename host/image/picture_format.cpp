// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/picture_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "host/image/exr/compression_names.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPngCompressions = " default fast small ";
constexpr std::string_view kTiffCompressions = " zip lzw packbits none ";
constexpr std::string_view kExrCompressions = " zip zips piz rle pxr24 b44 b44a dwaa dwab none ";

constexpr Format Tiff(std::string_view extension) {
    return {extension,        Form::kStraight, FileDepth::k8,     FileDepth::kFloat,
            PlaceKind::kNone, "tiff",          kTiffCompressions, " 8 16 float "};
}

constexpr Format Jpeg(std::string_view extension) {
    return {extension, Form::kOnWhite, FileDepth::k8, FileDepth::k8, PlaceKind::kNone, "jpeg", "", " 8 "};
}

constexpr std::array<Format, 6> kFormats = {{
    {".png", Form::kStraight, FileDepth::k8, FileDepth::k16, PlaceKind::kOffset, "png", kPngCompressions, " 8 16 "},
    Tiff(".tif"),
    Tiff(".tiff"),
    {".exr", Form::kPremultiplied, FileDepth::kHalf, FileDepth::kFloat, PlaceKind::kWindows, "openexr",
     kExrCompressions, " half float "},
    Jpeg(".jpg"),
    Jpeg(".jpeg"),
}};

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
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

/// Whether a list in spaces has the name.
bool Lists(std::string_view list, std::string_view name) {
    return !name.empty() && name.find(' ') == std::string_view::npos &&
           list.find(" " + std::string(name) + " ") != std::string_view::npos;
}

std::string_view NameOf(FileDepth depth) {
    switch (depth) {
        case FileDepth::kAuto:
            break;
        case FileDepth::k8:
            return "8";
        case FileDepth::k16:
            return "16";
        case FileDepth::kHalf:
            return "half";
        case FileDepth::kFloat:
            return "float";
    }
    return "";
}

Failure UnknownFormat(const fs::path& file) {
    const std::string extension = Lower(file.extension().string());
    std::string what = extension.empty() ? "the name has no extension"
                                         : fmt::format("'{}' is not a format that can be written", extension);
    what += fmt::format("; use {}", WritableFormats());
    if (extension == ".gif") {
        what += "; for an animation write a clip, .mov, .mkv or .webm, which `ffmpeg -i clip.mov clip.gif` converts";
    }
    return {ErrorKind::kFile, fmt::format("cannot write '{}': {}", file.string(), what)};
}

Failure UnknownFormatName(const std::string& name) {
    if (name.empty()) {
        return {ErrorKind::kUsage,
                "standard output has no extension; name its format with --format png, tif, exr or "
                "jpg"};
    }
    return {ErrorKind::kUsage,
            fmt::format("'{}' is not a format that can be written; use --format png, tif, exr or jpg", name)};
}

/// The format of an output, or why there is none.
Result<const Format*> WantedFormat(const fs::path& file, const std::string& name) {
    if (const Format* format = FormatOf(file, name)) return format;
    if (file == "-") return UnknownFormatName(name);
    return UnknownFormat(file);
}

}  // namespace

const Format* FormatOf(const fs::path& file, const std::string& name) {
    const std::string extension = file == "-" ? "." + Lower(name) : Lower(file.extension().string());
    for (const Format& format : kFormats) {
        if (format.extension == extension) return &format;
    }
    return nullptr;
}

bool HasCompression(const Format& format, std::string_view compression) {
    if (format.form == Form::kOnWhite) return IsJpegQuality(compression);
    return Lists(format.compressions, compression);
}

std::string WritableFormats() {
    std::string text;
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        if (i > 0) text += i + 1 == kFormats.size() ? " or " : ", ";
        text += kFormats[i].extension;
    }
    return text;
}

Result<Done> CheckFormat(const fs::path& file, const std::string& name) {
    TRY(WantedFormat(file, name));
    return Done{};
}

Result<Done> CheckCompression(const fs::path& file, const std::string& compression, const std::string& name) {
    const auto wanted = TRY(WantedFormat(file, name));
    const Format& format = *wanted;
    if (HasCompression(format, compression)) return Done{};
    if (format.form == Form::kOnWhite) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' is not a compression of {}; use 'jpeg:1' to 'jpeg:100', its quality",
                                   compression, format.extension)};
    }
    return Failure{ErrorKind::kUsage,
                   fmt::format("'{}' is not a compression of {}; use one of:{}", compression, format.extension,
                               format.compressions.substr(0, format.compressions.size() - 1))};
}

Result<Done> CheckFileDepth(const fs::path& file, FileDepth depth, const std::string& name) {
    const auto wanted = TRY(WantedFormat(file, name));
    const Format& format = *wanted;
    if (depth == FileDepth::kAuto || Lists(format.depths, NameOf(depth))) return Done{};
    return Failure{ErrorKind::kUsage,
                   fmt::format("{} has no channels of '{}'; use --output-depth with one of:{}", format.extension,
                               NameOf(depth), format.depths.substr(0, format.depths.size() - 1))};
}

FileDepth FileDepthNamed(const std::string& name) {
    for (const FileDepth depth : {FileDepth::k8, FileDepth::k16, FileDepth::kHalf, FileDepth::kFloat}) {
        if (NameOf(depth) == name) return depth;
    }
    return FileDepth::kAuto;
}

std::vector<std::string> CompressionNames() {
    std::vector<std::string> names;
    std::istringstream words(std::string(kPngCompressions) + std::string(kTiffCompressions) +
                             std::string(kExrCompressions));
    for (std::string word; words >> word;) {
        if (std::find(names.begin(), names.end(), word) == names.end()) names.push_back(word);
    }
    return names;
}

}  // namespace umbrant::host
