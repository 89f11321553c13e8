// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How many frames may be under way at once: what they cost in memory, and what the machine has.

#include <cstdint>
#include <filesystem>
#include <string>

#include "host/render/pipeline.h"

namespace umbrant::host {

/// As many frames may be drawn at once.
inline constexpr int kMostThreads = 16;

/// Bytes of one frame's pictures. See docs/sequences.md for the formula that is made of them.
struct FrameFootprint {
    std::uint64_t file = 0;          ///< the input's pixels at full size, at the depth of its file
    std::uint64_t layer = 0;         ///< the layer as it is drawn
    std::uint64_t texture = 0;       ///< the texture as it is drawn
    std::uint64_t output = 0;        ///< the drawn picture
    std::uint64_t outputPixels = 0;  ///< its pixels
    /// What each drawing thread's process keeps of them from frame to frame; 0 for a module of this process.
    std::uint64_t copies = 0;
};

/// What a machine lends.
struct MachineLimits {
    int cores = 1;
    std::uint64_t memory = 0;  ///< bytes that can be had; 0 when nobody knows
    int mostDrawers = 64;      ///< beyond it the renderer gains nothing
};

/// The machine that this runs on.
MachineLimits ThisMachine();

/// The shape for `drawers` drawing threads: readers, writers, and the frames in work.
PipelineShape ShapeFor(int drawers);

/// The shape with as few frames under way as `memory` bytes have room for, at least 1; as it is where that is 0.
PipelineShape FitInto(PipelineShape shape, const FrameFootprint& frame, std::uint64_t memory);

/// The part of the machine's free memory that frames may take; 0 when nobody knows.
std::uint64_t MemoryForFrames(const MachineLimits& machine);

/// What a process with these limits and this use can still take. In bytes; 0 means no limit.
struct MemoryRoom {
    std::uint64_t available = 0;  ///< what the system says that it could hand out
    std::uint64_t group = 0;      ///< what the process's control groups leave
    std::uint64_t address = 0;    ///< what the limit of its address space leaves
    std::uint64_t data = 0;       ///< what the limit of its data leaves
};
/// The least of what is known.
std::uint64_t LeastOf(const MemoryRoom& room);
/// What control groups leave to a process: the least of the folders from `folder` up to `root`, each with a file
/// memory.max ("max" for no limit) and memory.current; 0 where none sets a limit.
std::uint64_t GroupMemory(const std::filesystem::path& root, const std::string& folder);

/// The most memory that frames take at once, in addition to the program's own.
std::uint64_t MostBytes(const PipelineShape& shape, const FrameFootprint& frame);

/// Drawing threads that suit the machine: one a core, as far as the renderer gains, and as half of its free memory has
/// room for; at least 1.
int DrawersFor(const MachineLimits& machine, const FrameFootprint& frame);

}  // namespace umbrant::host
