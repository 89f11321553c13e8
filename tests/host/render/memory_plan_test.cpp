// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/memory_plan.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace umbrant::host {

namespace {

constexpr std::uint64_t kMiB = 1 << 20;

/// A layer of 1920 x 1080 at 8 bits that grew to 2120 x 1280.
constexpr FrameFootprint kFrame = {1920 * 1080 * 4, 1920 * 1080 * 4, 0, 2120 * 1280 * 4, 2120 * 1280};

TEST(MemoryPlan, ShapesHaveAFrameForEachThreadAndOneAtHand) {
    const struct {
        int drawers, readers, writers;
        std::size_t underWay;
    } rows[] = {{1, 1, 1, 4}, {2, 1, 2, 6}, {4, 2, 4, 11}, {16, 8, 16, 41}};
    for (const auto& row : rows) {
        const PipelineShape shape = ShapeFor(row.drawers);
        EXPECT_EQ(shape.drawers, row.drawers);
        EXPECT_EQ(shape.readers, row.readers);
        EXPECT_EQ(shape.writers, row.writers);
        EXPECT_EQ(shape.underWay, row.underWay);
    }
}

TEST(MemoryPlan, TheFormulaIsTheDocumentedOne) {
    const PipelineShape shape = ShapeFor(2);
    const std::uint64_t layer = kFrame.layer, output = kFrame.output, pixels = kFrame.outputPixels;
    EXPECT_EQ(MostBytes(shape, kFrame),
              6 * (layer + output) + 1 * 2 * kFrame.file + 2 * (layer + output + 64 * pixels) + 2 * 24 * pixels);
}

TEST(MemoryPlan, AProcessOfAModuleKeepsItsCopiesFromFrameToFrame) {
    FrameFootprint shared = kFrame;
    shared.copies = kFrame.layer + kFrame.texture + kFrame.output;
    for (const int drawers : {1, 2, 5}) {
        PipelineShape shape = ShapeFor(drawers);
        const std::uint64_t copies = static_cast<std::uint64_t>(drawers) * shared.copies;
        EXPECT_EQ(MostBytes(shape, shared), MostBytes(shape, kFrame) + copies);
        // With fewer frames than threads the processes of all threads keep the copies of their last frames.
        shape.underWay = 1;
        EXPECT_EQ(MostBytes(shape, shared), MostBytes(shape, kFrame) + copies);
    }
    const MachineLimits machine{6, 2 * MostBytes(ShapeFor(2), kFrame), 16};
    EXPECT_EQ(DrawersFor(machine, kFrame), 2);
    EXPECT_EQ(DrawersFor(machine, shared), 1);
}

TEST(MemoryPlan, ThreadsFollowCoresRendererAndMemory) {
    const std::uint64_t two = MostBytes(ShapeFor(2), kFrame);
    const struct {
        const char* name;
        MachineLimits machine;
        int drawers;
    } rows[] = {
        {"one core", {1, 0, 16}, 1},
        {"as many as cores", {6, 1000 * 1024 * kMiB, 16}, 6},
        {"no more than the renderer gains", {6, 1000 * 1024 * kMiB, 2}, 2},
        {"memory for two in its half", {6, 2 * two, 16}, 2},
        {"not quite memory for two", {6, 2 * two - 1, 16}, 1},
        {"hardly any memory", {6, kMiB, 16}, 1},
        {"nobody knows the memory", {6, 0, 16}, 6},
    };
    for (const auto& row : rows) EXPECT_EQ(DrawersFor(row.machine, kFrame), row.drawers) << row.name;
}

TEST(MemoryPlan, FramesUnderWayFollowTheMemory) {
    const auto with = [](std::size_t frames) {
        PipelineShape shape = ShapeFor(1);
        shape.underWay = frames;
        return MostBytes(shape, kFrame);
    };
    const struct {
        const char* name;
        std::uint64_t memory;
        std::size_t underWay;
    } rows[] = {
        {"nobody knows the memory", 0, 4}, {"room for all", with(4), 4},    {"not quite", with(4) - 1, 3},
        {"room for two", with(2), 2},      {"not for two", with(2) - 1, 1}, {"hardly any", 1, 1},
    };
    for (const auto& row : rows) EXPECT_EQ(FitInto(ShapeFor(1), kFrame, row.memory).underWay, row.underWay) << row.name;
    // A frame alone is in one step at a time.
    EXPECT_EQ(with(1), kFrame.layer + kFrame.output + kFrame.layer + kFrame.output + 64 * kFrame.outputPixels);
}

TEST(MemoryPlan, TheNarrowestLimitCounts) {
    const struct {
        const char* name;
        MemoryRoom room;
        std::uint64_t least;
    } rows[] = {
        {"nothing known", {}, 0},         {"the system's", {5, 0, 0, 0}, 5},
        {"the group's", {5, 4, 9, 9}, 4}, {"the address space", {5, 9, 3, 9}, 3},
        {"the data", {5, 9, 9, 2}, 2},
    };
    for (const auto& row : rows) EXPECT_EQ(LeastOf(row.room), row.least) << row.name;
}

TEST(MemoryPlan, EveryGroupAboveTheProcessMayLimitIt) {
    namespace fs = std::filesystem;
    const fs::path root = fs::path(testing::TempDir()) / ("memory_groups_" + std::to_string(getpid()));
    fs::create_directories(root / "outer" / "inner");
    const auto put = [&](const char* folder, const char* limit, const char* used) {
        std::ofstream(root / folder / "memory.max") << limit << "\n";
        std::ofstream(root / folder / "memory.current") << used << "\n";
    };
    EXPECT_EQ(GroupMemory(root, "/outer/inner"), 0u) << "no files at all";
    put("outer/inner", "max", "10");
    EXPECT_EQ(GroupMemory(root, "/outer/inner"), 0u);
    put("outer", "1000", "300");
    EXPECT_EQ(GroupMemory(root, "/outer/inner"), 700u);
    put("outer/inner", "500", "100");
    EXPECT_EQ(GroupMemory(root, "/outer/inner"), 400u);
    put(".", "600", "599");
    EXPECT_EQ(GroupMemory(root, "/outer/inner"), 1u);
    EXPECT_EQ(GroupMemory(root, "/"), 1u);
    put(".", "600", "700");
    EXPECT_EQ(GroupMemory(root, "/"), 1u) << "0 would stand for no limit";
    fs::remove_all(root);
}

TEST(MemoryPlan, ALimitOfTheAddressSpaceIsSeen) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr std::uint64_t kRoom = 64 * kMiB;
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlim_t limit = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + kRoom;
        const rlimit narrow{limit, limit};
        if (setrlimit(RLIMIT_AS, &narrow) != 0) _exit(2);
        const std::uint64_t memory = ThisMachine().memory;
        _exit(memory > 0 && memory <= kRoom ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(MemoryPlan, KnowsThisMachine) {
    const MachineLimits machine = ThisMachine();
    EXPECT_GE(machine.cores, 1);
    EXPECT_GT(machine.memory, kMiB);
}

}  // namespace

}  // namespace umbrant::host
