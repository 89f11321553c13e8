// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/memory_plan.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace umbrant::host {

namespace {

/// What the system says it could hand out without hardship, in bytes; 0 where it does not say.
std::uint64_t AvailableMemory() {
    std::ifstream stream("/proc/meminfo");
    std::string name;
    std::uint64_t kibibytes = 0;
    std::string unit;
    while (stream >> name >> kibibytes) {
        if (name == "MemAvailable:") return kibibytes * 1024;
        std::getline(stream, unit);
    }
    return 0;
}

/// The folder of this process below the root of the control groups of version 2, "/" where it does not say.
std::string OwnGroup() {
    std::ifstream stream("/proc/self/cgroup");
    std::string line;
    while (std::getline(stream, line)) {
        if (line.rfind("0::", 0) == 0) return line.substr(3);
    }
    return "/";
}

/// A size of this process as /proc/self/status has it, "VmSize:"; 0 where it does not say.
std::uint64_t OwnSize(const std::string& wanted) {
    std::ifstream stream("/proc/self/status");
    std::string line;
    while (std::getline(stream, line)) {
        if (line.rfind(wanted, 0) == 0) return std::strtoull(line.c_str() + wanted.size(), nullptr, 10) * 1024;
    }
    return 0;
}

/// What a limit leaves after what is used: at least 1, as 0 means no limit.
std::uint64_t Left(std::uint64_t limit, std::uint64_t used) {
    return limit > used ? limit - used : 1;
}

std::uint64_t LeftByLimit(int resource, const std::string& size) {
    rlimit limit{};
    if (getrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return 0;
    return Left(limit.rlim_cur, OwnSize(size));
}

}  // namespace

std::uint64_t GroupMemory(const std::filesystem::path& root, const std::string& folder) {
    std::uint64_t least = 0;
    std::filesystem::path path = std::filesystem::path(folder).relative_path();
    for (;; path = path.parent_path()) {
        std::uint64_t limit = 0, used = 0;
        std::ifstream(root / path / "memory.max") >> limit;
        std::ifstream(root / path / "memory.current") >> used;
        if (limit != 0) least = least == 0 ? Left(limit, used) : std::min(least, Left(limit, used));
        if (path.empty()) return least;
    }
}

std::uint64_t LeastOf(const MemoryRoom& room) {
    std::uint64_t least = 0;
    for (const std::uint64_t bytes : {room.available, room.group, room.address, room.data}) {
        if (bytes != 0 && (least == 0 || bytes < least)) least = bytes;
    }
    return least;
}

MachineLimits ThisMachine() {
    MachineLimits machine;
    machine.cores = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    machine.memory = LeastOf({AvailableMemory(), GroupMemory("/sys/fs/cgroup", OwnGroup()),
                              LeftByLimit(RLIMIT_AS, "VmSize:"), LeftByLimit(RLIMIT_DATA, "VmData:")});
    return machine;
}

PipelineShape ShapeFor(int drawers) {
    PipelineShape shape;
    shape.drawers = drawers;
    shape.readers = std::max(1, drawers / 2);
    shape.writers = drawers;
    // Each thread has a frame, and one is at hand.
    shape.underWay = static_cast<std::size_t>(shape.readers + shape.drawers + shape.writers + 1);
    return shape;
}

std::uint64_t MostBytes(const PipelineShape& shape, const FrameFootprint& frame) {
    // The file's values and an image of them, in addition to the layer.
    const std::uint64_t reading = 2 * frame.file;
    // The effect's copies of what it is given, and its sums in single precision: four of them, four channels.
    const std::uint64_t drawing = frame.layer + frame.texture + frame.output + 64 * frame.outputPixels;
    // The values as the file's format takes them, in single precision and then in the file's own.
    const std::uint64_t writing = 24 * frame.outputPixels;
    // With fewer frames than threads some of the threads have none.
    const auto busy = [&](int threads) { return std::min(static_cast<std::size_t>(threads), shape.underWay); };
    const std::uint64_t steps = shape.underWay == 1 ? std::max({reading, drawing, writing})
                                                    : busy(shape.readers) * reading + busy(shape.drawers) * drawing +
                                                          busy(shape.writers) * writing;
    const auto processes = static_cast<std::uint64_t>(shape.drawers);
    return shape.underWay * (frame.layer + frame.texture + frame.output) + steps + processes * frame.copies;
}

std::uint64_t MemoryForFrames(const MachineLimits& machine) {
    return machine.memory == 0 ? 0 : std::max<std::uint64_t>(machine.memory / 2, 1);
}

PipelineShape FitInto(PipelineShape shape, const FrameFootprint& frame, std::uint64_t memory) {
    while (memory != 0 && shape.underWay > 1 && MostBytes(shape, frame) > memory) --shape.underWay;
    return shape;
}

int DrawersFor(const MachineLimits& machine, const FrameFootprint& frame) {
    int drawers = std::clamp(machine.cores, 1, std::max(1, machine.mostDrawers));
    const std::uint64_t memory = MemoryForFrames(machine);
    while (memory != 0 && drawers > 1 && MostBytes(ShapeFor(drawers), frame) > memory) --drawers;
    return drawers;
}

}  // namespace umbrant::host
