// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/shared_memory.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <limits>

namespace umbrant::host {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SharedMemory, TwoMappingsHaveTheSameBytes) {
    const auto block = SharedMemory::Create(5000);
    ASSERT_TRUE(block);
    EXPECT_EQ(block->Size(), 5000u);
    EXPECT_EQ(block->Data()[4999], std::byte{0});
    const auto other = SharedMemory::Open(dup(block->Descriptor()));
    ASSERT_TRUE(other);
    EXPECT_EQ(other->Size(), 5000u);
    block->Data()[4999] = std::byte{7};
    EXPECT_EQ(other->Data()[4999], std::byte{7});
}

TEST(SharedMemory, NobodyCanTakePagesAway) {
    const auto block = SharedMemory::Create(5000);
    ASSERT_TRUE(block);
    EXPECT_NE(ftruncate(block->Descriptor(), 0), 0);
    EXPECT_NE(ftruncate(block->Descriptor(), 1 << 20), 0);
}

TEST(SharedMemory, WhatIsNoBlockIsRefused) {
    EXPECT_FALSE(SharedMemory::Open(open("/dev/null", O_RDWR | O_CLOEXEC)));
    EXPECT_FALSE(SharedMemory::Open(-1));
    EXPECT_FALSE(SharedMemory::Create(0));
    EXPECT_FALSE(SharedMemory::Create(std::numeric_limits<std::size_t>::max()));
}

TEST(SharedMemoryPool, TakesABlockThatCameBackAgain) {
    const auto pool = std::make_shared<SharedMemoryPool>();
    auto block = pool->Take(10000);
    ASSERT_TRUE(block);
    const std::uint64_t id = block->Id();
    const auto second = pool->Take(10000);
    ASSERT_TRUE(second);
    EXPECT_NE(second->Id(), id) << "it is in use";
    block.reset();
    block = pool->Take(9000);
    EXPECT_EQ(block->Id(), id);
    block.reset();
    EXPECT_NE(pool->Take(10001)->Id(), id) << "it is too small";
    EXPECT_NE(pool->Take(100)->Id(), id) << "most of it would be idle";
}

TEST(SharedMemoryPool, NamesTheBlocksThatItGaveUp) {
    const auto pool = std::make_shared<SharedMemoryPool>();
    std::vector<std::shared_ptr<SharedMemory>> taken;
    std::vector<std::uint64_t> ids;
    for (int i = 0; i < 5; ++i) {
        taken.push_back(pool->Take(4096));
        ids.push_back(taken.back()->Id());
    }
    EXPECT_THAT(pool->TakeDropped(), IsEmpty());
    for (auto& block : taken) block.reset();
    EXPECT_THAT(pool->TakeDropped(), ElementsAre(ids[0], ids[1]));
    EXPECT_THAT(pool->TakeDropped(), IsEmpty());
}

TEST(SharedMemoryPool, ABlockMayOutliveIt) {
    auto pool = std::make_shared<SharedMemoryPool>();
    const auto block = pool->Take(4096);
    pool.reset();
    block->Data()[0] = std::byte{1};
    EXPECT_EQ(block->Data()[0], std::byte{1});
}

}  // namespace

}  // namespace umbrant::host
