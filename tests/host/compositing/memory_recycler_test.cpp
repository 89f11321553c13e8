// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/memory_recycler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <thread>
#include <vector>

#include "host/compositing/guarded_memory.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

TEST(MemoryRecycler, UsesTheBlockAgain) {
    const MemoryRecycler recycler;
    std::byte* first = nullptr;
    {
        const GuardedBytes bytes = GuardedBytes::Create(8 * kMiB, false);
        first = bytes.Data();
        ASSERT_NE(first, nullptr);
        std::memset(first, 7, 8 * kMiB);
        EXPECT_EQ(MemoryRecycler::Kept(), 0u);
    }
    EXPECT_EQ(MemoryRecycler::Kept(), 8 * kMiB);
    const GuardedBytes again = GuardedBytes::Create(7 * kMiB, true);
    EXPECT_EQ(again.Data(), first) << "somewhat smaller";
    EXPECT_EQ(again.Size(), 7 * kMiB);
    EXPECT_TRUE(std::all_of(again.Data(), again.Data() + 7 * kMiB, [](std::byte b) { return b == std::byte{0}; }));
    EXPECT_EQ(MemoryRecycler::Kept(), 0u);
}

TEST(MemoryRecycler, KeepsNothingWithoutOne) {
    { const GuardedBytes bytes = GuardedBytes::Create(8 * kMiB, false); }
    EXPECT_EQ(MemoryRecycler::Kept(), 0u);
    std::optional<GuardedBytes> late;
    {
        const MemoryRecycler recycler;
        { const GuardedBytes bytes = GuardedBytes::Create(8 * kMiB, false); }
        EXPECT_EQ(MemoryRecycler::Kept(), 8 * kMiB);
        late = GuardedBytes::Create(2 * kMiB, false);
    }
    EXPECT_EQ(MemoryRecycler::Kept(), 0u);
    late.reset();
    EXPECT_EQ(MemoryRecycler::Kept(), 0u) << "a block that is given back afterwards";
}

TEST(MemoryRecycler, SmallBlocksAndBlocksOfAnotherSizeAreNew) {
    const MemoryRecycler recycler;
    { const GuardedBytes small = GuardedBytes::Create(kMiB - 1, false); }
    EXPECT_EQ(MemoryRecycler::Kept(), 0u);
    { const GuardedBytes bytes = GuardedBytes::Create(8 * kMiB, false); }
    const GuardedBytes smaller = GuardedBytes::Create(6 * kMiB, false);
    EXPECT_LE(MemoryRecycler::Kept(), 2 * kMiB) << "it would waste a third";
    const GuardedBytes larger = GuardedBytes::Create(9 * kMiB, false);
    EXPECT_EQ(MemoryRecycler::Kept(), 0u);
}

TEST(MemoryRecycler, NeverHoldsMoreThanWasUsedAtOnce) {
    const MemoryRecycler recycler;
    for (std::size_t size = 2; size < 40; size += 3) {
        const GuardedBytes bytes = GuardedBytes::Create(size * kMiB, false);
        EXPECT_EQ(MemoryRecycler::Kept(), 0u) << size << ": the smaller one went";
    }
    EXPECT_LE(MemoryRecycler::Kept(), 38 * kMiB);
    std::vector<GuardedBytes> three;
    for (int i = 0; i < 3; ++i) three.push_back(GuardedBytes::Create(38 * kMiB, false));
    three.clear();
    EXPECT_EQ(MemoryRecycler::Kept(), 3 * 38 * kMiB);
}

TEST(MemoryRecycler, ManyThreads) {
    const MemoryRecycler recycler;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (std::size_t i = 0; i < 200; ++i) {
                const std::size_t size = kMiB + (i * 7919 + static_cast<std::size_t>(thread)) % kMiB;
                const GuardedBytes bytes = GuardedBytes::Create(size, i % 2 == 0);
                const auto mark = static_cast<std::byte>(thread + 1);
                bytes.Data()[0] = bytes.Data()[size - 1] = mark;
                std::this_thread::yield();
                EXPECT_EQ(bytes.Data()[0], mark);
                EXPECT_EQ(bytes.Data()[size - 1], mark);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_LE(MemoryRecycler::Kept(), 8 * kMiB);
}

}  // namespace

}  // namespace umbrant::host
