// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which container format a clip is in. Its first bytes decide, never its name and never ffmpeg's own guess: playlists
// and manifests are formats to ffmpeg too, and make it open whatever files they name.

#include <string>
#include <string_view>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// ffmpeg's name of the demuxer for a file that begins with these bytes; empty when they begin no container that is
/// read. The longer the beginning, up to kContainerBytes, the surer the answer.
std::string DemuxerOf(std::string_view beginning);
inline constexpr std::size_t kContainerBytes = 1 << 16;

/// The same for a file. Fails with `ErrorKind::kFile` when the file cannot be read or is in no such format.
Result<std::string> ReadDemuxer(const std::string& path);

/// The arguments by which ffprobe and ffmpeg open a clip as an input: this format alone, this file alone.
std::vector<std::string> InputArguments(const std::string& path, const std::string& demuxer);

}  // namespace umbrant::host
