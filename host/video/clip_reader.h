// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The pictures of a clip, one after the other. ffmpeg decodes while others draw.

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "host/image/picture.h"
#include "host/process/child_process.h"
#include "host/video/clip_facts.h"
#include "host/video/raw_pixels.h"

namespace umbrant::host {

/// Safe on every thread, but made for frames that are asked for in rising order: to go back, the clip is begun again.
class ClipReader {
 public:
    /// Frames are counted at `rate`, from 0. Starts nothing yet.
    ClipReader(ClipFacts facts, FrameRate rate);

    const ClipFacts& Facts() const { return facts_; }
    /// How many frames there are at the rate.
    int Frames() const;

    /// A frame, straight as pictures are; one without alpha is opaque. Fails with `ErrorKind::kFile`: ffmpeg is
    /// missing, dies, or delivers less than the file promised.
    Result<Picture> Read(int frame);

 private:
    Result<Done> Start(int first);
    Failure WhyNoMore(int index);

    const ClipFacts facts_;
    const FrameRate rate_;
    const RawFormat format_;
    std::mutex mutex_;
    std::unique_ptr<ChildProcess> decoder_;
    int next_ = 0;       ///< the file's frame that comes next through the pipe
    int inBuffer_ = -1;  ///< the one that came last
    std::vector<std::byte> buffer_;
};

}  // namespace umbrant::host
