// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A clip under construction: frames go through a pipe into ffmpeg, which writes under a temporary name next to the
// clip's place until it is whole.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/process/child_process.h"
#include "host/process/files/temporary_file.h"
#include "host/video/clip_format.h"

namespace umbrant::host {

/// What is to be written.
struct ClipTarget {
    std::string path;
    const ClipCodec* codec = nullptr;
    int width = 0;
    int height = 0;
    RawFormat raw = RawFormat::k8;
    FrameRate rate{};
    const ClipFacts* from = nullptr;  ///< whose tags, aspect and metadata are kept; null for pictures
    bool keepsSound = false;          ///< of `from`
    /// The part of `from` that is drawn, in seconds from its first picture: begin and length; nothing for all of it.
    std::optional<std::pair<double, double>> part{};
    std::optional<ColorTags> colors{};  ///< primaries and transfer in place of those of `from`
    std::string recipe{};               ///< empty for none, also where `from` has one
};

/// Whether this ffmpeg has the codec's encoder. Fails with `ErrorKind::kFile`, or for a codec without alpha, which
/// others can replace, with `ErrorKind::kUsage`.
Result<Done> CheckEncoder(const ClipCodec& codec, const std::string& path);

/// ffmpeg's arguments for a target whose file is to be `file`.
std::vector<std::string> EncoderArguments(const ClipTarget& target, const std::string& file);

class ClipWriter {
 public:
    /// Starts ffmpeg. Fails with `ErrorKind::kFile`.
    static Result<std::unique_ptr<ClipWriter>> Start(ClipTarget target);

    /// The next picture, of the target's size and in 8 bits where the target is, else in floats. Fails with
    /// `ErrorKind::kFile` when ffmpeg takes no more, and says why.
    Result<Done> Write(const World& picture);

    /// Ends the clip and puts it in its place: through symbolic links, with the mode of a file that it replaces.
    /// Without it nothing is left.
    Result<Done> Finish();

 private:
    explicit ClipWriter(ClipTarget target);
    Failure Died();

    const ClipTarget target_;
    const std::filesystem::path place_;  ///< the target's path behind symbolic links
    int written_ = 0;
    TemporaryFile file_;
    std::unique_ptr<ChildProcess> encoder_;  ///< ends before its file is removed
};

}  // namespace umbrant::host
