// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/memory_plan.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <thread>

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

/// What this process's group of processes may still take; 0 where there is no limit.
std::uint64_t GroupMemory() {
    std::uint64_t limit = 0, used = 0;
    std::ifstream("/sys/fs/cgroup/memory.max") >> limit;
    std::ifstream("/sys/fs/cgroup/memory.current") >> used;
    if (limit == 0) return 0;
    return limit > used ? limit - used : 1;
}

}  // namespace

MachineLimits ThisMachine() {
    MachineLimits machine;
    machine.cores = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    machine.memory = AvailableMemory();
    const std::uint64_t group = GroupMemory();
    if (group != 0 && (machine.memory == 0 || group < machine.memory)) machine.memory = group;
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
    // The file's values and a picture of them, beside the layer.
    const std::uint64_t reading = 2 * frame.file;
    // The effect's copies of what it is given, and its sums in single precision: four of them, four channels.
    const std::uint64_t drawing = frame.layer + frame.texture + frame.output + 64 * frame.outputPixels;
    // The values as the file's format takes them, in single precision and then in the file's own.
    const std::uint64_t writing = 24 * frame.outputPixels;
    const auto times = [](int threads, std::uint64_t bytes) { return static_cast<std::uint64_t>(threads) * bytes; };
    return shape.underWay * (frame.layer + frame.texture + frame.output) + times(shape.readers, reading) +
           times(shape.drawers, drawing) + times(shape.writers, writing);
}

int DrawersFor(const MachineLimits& machine, const FrameFootprint& frame) {
    int drawers = std::clamp(machine.cores, 1, std::max(1, machine.mostDrawers));
    if (machine.memory == 0) return drawers;
    while (drawers > 1 && MostBytes(ShapeFor(drawers), frame) > machine.memory / 2) --drawers;
    return drawers;
}
