// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which frames: sets of frame numbers as people and farms write them, parts of such a set, and frame rates.
//
//   1-10          every frame, 10-1 from the last to the first
//   1-10x3        every third: 1 4 7 10
//   1-10y3        the others: 2 3 5 6 8 9
//   1-10:4        all, from coarse to fine: 1 5 9, 3 7, 2 4 6 8 10
//   7, -3, -10--5 single frames and frames below zero; parts are joined with commas
//   1-2x0.25      between frames: 1 1.25 1.5 1.75 2; also 7.5

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/render/plan/frame_number.h"
#include "host/result.h"
#include "hostapi/basic_types.h"

namespace umbrant::host {

/// The largest distance of a frame from zero.
inline constexpr int kFarthestFrame = 999999;

/// No set has more frames than this.
inline constexpr int kMostFrames = 2 * kFarthestFrame + 1;

/// The frames in the order in which they are written, each once: where a frame comes up again it is left out. Fails
/// with `ErrorKind::kUsage`.
Result<std::vector<FrameNumber>> ParseFrames(std::string_view text);

/// Frames as a person reads them, in rising order: "1-4, 7, 9-12"; of more than a few runs only the first ones, and
/// how many are left.
std::string FramesText(std::vector<FrameNumber> frames);

/// Frames as ParseFrames reads them, in their order: "1-4,7,9-12".
std::string FrameSetText(const std::vector<FrameNumber>& frames);

/// One of several parts of a set.
struct Chunk {
    int number = 1;  ///< from 1 to `count`
    int count = 1;
};

/// "2/4". Fails with `ErrorKind::kUsage`.
Result<Chunk> ParseChunk(std::string_view text);

/// The chunk's part of a set of `size` frames, from the first index to behind the last: neighbours in the set's order.
/// All chunks together are the set, and their sizes differ by one at most.
std::pair<std::size_t, std::size_t> ChunkRange(std::size_t size, const Chunk& chunk);

/// Frames per second as a fraction, and so the unit of time: a frame takes `step` units of 1/`scale` seconds.
struct FrameRate {
    A_u_long scale = 24;
    A_long step = 1;
    double PerSecond() const { return static_cast<double>(scale) / step; }
    bool operator==(const FrameRate&) const = default;
};

/// "24", "12.5", "30000/1001"; the short forms of the rates of broadcasting (23.976, 29.97, 47.952, 59.94, 119.88) mean
/// their fractions over 1001. From 0.1 to 1000. Fails with `ErrorKind::kUsage`.
Result<FrameRate> ParseRate(std::string_view text);

}  // namespace umbrant::host
