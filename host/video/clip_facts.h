// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The facts of a clip from ffprobe: the size, rate and colours of its frames, and its sound.

#include <string>
#include <string_view>
#include <vector>

#include "host/result.h"
#include "host/video/clip_timing.h"

namespace umbrant::host {

/// What a clip says about the meaning of its colours, in ffmpeg's names; empty where it says nothing.
struct ColorTags {
    std::string primaries{};
    std::string transfer{};
    std::string matrix{};
    std::string range{};  ///< "tv" or "pc"
    bool operator==(const ColorTags&) const = default;
};

struct ClipFacts {
    std::string path;
    std::string demuxer;  ///< ffmpeg's name of the container's format
    int stream = 0;       ///< which of the file's streams has the pictures
    int width = 0;        ///< as it is shown: turned by what the file says about that
    int height = 0;
    int bits = 8;          ///< of a channel; 32 for floats
    bool isRgb = false;    ///< its channels are red, green and blue, and not a matrix's
    std::string decoder;   ///< empty for ffmpeg's own choice
    std::string aspect{};  ///< of a pixel, "64:45"; empty for square ones
    ColorTags color{};
    FrameRate rate{};        ///< the clip's own
    bool isConstant = true;  ///< its frames keep to that rate; else it is their mean, or as near as it can be said
    ClipTimes times{};
    double start = 0;                  ///< seconds from the beginning of the file to the first picture
    std::vector<std::string> sound{};  ///< the codec of each sound stream
    std::string timecode{};            ///< of the first picture; empty for none
    int FramesInFile() const { return static_cast<int>(times.seconds.size()); }
};

/// Whether a path means a clip, by its extension.
bool IsClipName(std::string_view path);

/// Bits of a channel of one of ffmpeg's pixel formats.
int BitsOfPixelFormat(std::string_view name);

/// Asks ffprobe. Reads the whole file once, for the times of its pictures. Fails with `ErrorKind::kFile`: no file, no
/// clip, no pictures in it, pictures too large; no ffprobe.
Result<ClipFacts> ReadClipFacts(const std::string& path);

}  // namespace umbrant::host
