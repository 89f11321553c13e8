// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/container.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "host/video/ffmpeg.h"

namespace umbrant::host {

namespace {

using namespace std::string_view_literals;

/// Bytes at a fixed place of the file.
struct Signature {
    std::size_t offset;
    std::string_view bytes;
    const char* demuxer;
};

constexpr Signature kSignatures[] = {
    {4, "ftyp"sv, "mov"},
    {4, "moov"sv, "mov"},
    {4, "mdat"sv, "mov"},
    {4, "wide"sv, "mov"},
    {4, "free"sv, "mov"},
    {4, "skip"sv, "mov"},
    {4, "pnot"sv, "mov"},
    {0, "\x1A\x45\xDF\xA3"sv, "matroska"},
    {8, "AVI "sv, "avi"},
    {0, "nut/multimedia container\0"sv, "nut"},
    {0, "OggS"sv, "ogg"},
    {0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, "asf"},
    {0, "FLV"sv, "flv"},
    {0, "YUV4MPEG2"sv, "yuv4mpegpipe"},
    {0, "\x00\x00\x01\xBA"sv, "mpeg"},
    {0, "\x00\x00\x01\xB3"sv, "mpegvideo"},
};

/// The key of an MXF file's first partition, which may follow up to 64 KiB of anything.
constexpr std::string_view kMxfPartition = "\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01\x02"sv;

/// Whether packets of a transport stream follow each other: 188 bytes, with 4 bytes before or 16 bytes after each.
bool IsTransportStream(std::string_view beginning) {
    constexpr char kSync = 0x47;
    constexpr std::size_t kPackets = 4;
    const struct { std::size_t first, length; } kinds[] = {{0, 188}, {4, 192}, {0, 204}};
    return std::any_of(std::begin(kinds), std::end(kinds), [&](const auto& kind) {
        std::size_t found = 0;
        for (std::size_t at = kind.first; at < beginning.size() && found < kPackets; at += kind.length) {
            if (beginning[at] != kSync) return false;
            ++found;
        }
        return found > 1;
    });
}

}  // namespace

std::string DemuxerOf(std::string_view beginning) {
    for (const Signature& signature : kSignatures) {
        if (beginning.size() < signature.offset) continue;
        if (beginning.substr(signature.offset).starts_with(signature.bytes)) return signature.demuxer;
    }
    if (IsTransportStream(beginning)) return "mpegts";
    return beginning.find(kMxfPartition) != std::string_view::npos ? "mxf" : "";
}

Result<std::string> ReadDemuxer(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::string beginning(kContainerBytes, '\0');
    in.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    if (in.bad() || (!in && !in.eof())) {
        return Failure{ErrorKind::kFile, fmt::format("cannot read '{}': {}", path, std::strerror(errno))};
    }
    beginning.resize(static_cast<std::size_t>(in.gcount()));
    const std::string demuxer = DemuxerOf(beginning);
    if (!demuxer.empty()) return demuxer;
    return Failure{ErrorKind::kFile, fmt::format("cannot read '{}': not a clip; clips are QuickTime, MP4, Matroska, "
                                                 "WebM, AVI, MXF, NUT, MPEG, Ogg, ASF, FLV and YUV4MPEG files",
                                                 path)};
}

std::vector<std::string> InputArguments(const std::string& path, const std::string& demuxer) {
    return {"-protocol_whitelist", "file,pipe", "-format_whitelist", demuxer, "-f", demuxer, "-i", FileArgument(path)};
}

}  // namespace umbrant::host
