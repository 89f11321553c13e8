// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/memory_plan.h"

#include <gtest/gtest.h>

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

TEST(MemoryPlan, KnowsThisMachine) {
    const MachineLimits machine = ThisMachine();
    EXPECT_GE(machine.cores, 1);
    EXPECT_GT(machine.memory, kMiB);
}

}  // namespace
