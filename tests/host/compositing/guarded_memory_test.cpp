// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Memory between guard pages: what may be touched, what is detected.

#include "host/compositing/guarded_memory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/compositing/world.h"

namespace umbrant::host {

namespace {

class GuardedMemory : public ::testing::TestWithParam<MemoryPlacement> {
 protected:
    void SetUp() override { SetGuardRules({GetParam(), {}}); }
    void TearDown() override { SetGuardRules({}); }
};

TEST_P(GuardedMemory, AllBytesMayBeWritten) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{16}, std::size_t{4095}, std::size_t{4096}, std::size_t{100000}}) {
        const GuardedBytes bytes = GuardedBytes::Create(size, true);
        ASSERT_NE(bytes.Data(), nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes.Data()) % 16, 0u);
        std::memset(bytes.Data(), 1, size);
        EXPECT_TRUE(bytes.SlackIsWhole());
    }
}

TEST_P(GuardedMemory, ImpossibleSizesGiveNull) {
    EXPECT_EQ(GuardedBytes::Create(~std::size_t{0}, false).Data(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Placements, GuardedMemory,
                         ::testing::Values(MemoryPlacement::kPlain, MemoryPlacement::kFlushLeft,
                                           MemoryPlacement::kFlushRight));

/// Touches memory under the rules, in a process of its own.
void Touch(MemoryPlacement placement, void (*touch)(GuardedBytes&)) {
    SetGuardRules({placement, {}});
    GuardedBytes bytes = GuardedBytes::Create(64, false);
    touch(bytes);
}

TEST(LentMemoryDeathTest, BytesBesideItEndTheProcess) {
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushRight, [](GuardedBytes& b) { b.Data()[64] = std::byte{1}; }), "");
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushLeft, [](GuardedBytes& b) { b.Data()[-1] = std::byte{1}; }), "");
}

TEST(LentMemoryDeathTest, ReadOnlyBytesCannotBeWritten) {
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushLeft,
                       [](GuardedBytes& b) {
                           b.SetReadOnly(true);
                           b.Data()[0] = std::byte{1};
                       }),
                 "");
}

TEST(LentMemoryDeathTest, BytesGivenBackCannotBeTouched) {
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushRight,
                       [](GuardedBytes& b) {
                           std::byte* data = b.Data();
                           b = GuardedBytes();
                           *data = std::byte{1};
                       }),
                 "");
}

TEST(LentMemoryRules, BytesBetweenBlockAndPageAreWatched) {
    SetGuardRules({MemoryPlacement::kFlushRight, {}});
    const GuardedBytes bytes = GuardedBytes::Create(60, false);
    bytes.Data()[60] = std::byte{1};
    EXPECT_FALSE(bytes.SlackIsWhole());
    SetGuardRules({});
}

TEST(LentMemoryRules, RowsGetTheirPadding) {
    SetGuardRules({MemoryPlacement::kPlain, 4});
    EXPECT_EQ(World::Create(10, 2, Depth::k8).Def().rowbytes, 44);
    SetGuardRules({});
    EXPECT_EQ(World::Create(10, 2, Depth::k8).Def().rowbytes, 48);
}

}  // namespace

}  // namespace umbrant::host
