// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Memory between shut pages: what may be touched, what is found out.

#include "host/compositing/lent_memory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/compositing/world.h"

namespace {

class LentMemory : public ::testing::TestWithParam<MemoryPlacement> {
 protected:
    void SetUp() override { SetLendingRules({GetParam(), {}}); }
    void TearDown() override { SetLendingRules({}); }
};

TEST_P(LentMemory, AllBytesMayBeWritten) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{16}, std::size_t{4095}, std::size_t{4096}, std::size_t{100000}}) {
        const LentBytes bytes = LentBytes::Create(size, true);
        ASSERT_NE(bytes.Data(), nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes.Data()) % 16, 0u);
        std::memset(bytes.Data(), 1, size);
        EXPECT_TRUE(bytes.SlackIsWhole());
    }
}

TEST_P(LentMemory, ImpossibleSizesGiveNull) {
    EXPECT_EQ(LentBytes::Create(~std::size_t{0}, false).Data(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Placements, LentMemory,
                         ::testing::Values(MemoryPlacement::kPlain, MemoryPlacement::kFlushLeft,
                                           MemoryPlacement::kFlushRight));

/// Touches memory under the rules, in a process of its own.
void Touch(MemoryPlacement placement, void (*touch)(LentBytes&)) {
    SetLendingRules({placement, {}});
    LentBytes bytes = LentBytes::Create(64, false);
    touch(bytes);
}

TEST(LentMemoryDeathTest, BytesBesideItEndTheProcess) {
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushRight, [](LentBytes& b) { b.Data()[64] = std::byte{1}; }), "");
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushLeft, [](LentBytes& b) { b.Data()[-1] = std::byte{1}; }), "");
}

TEST(LentMemoryDeathTest, ReadOnlyBytesCannotBeWritten) {
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushLeft,
                       [](LentBytes& b) {
                           b.SetReadOnly(true);
                           b.Data()[0] = std::byte{1};
                       }),
                 "");
}

TEST(LentMemoryDeathTest, BytesGivenBackCannotBeTouched) {
    EXPECT_DEATH(Touch(MemoryPlacement::kFlushRight,
                       [](LentBytes& b) {
                           std::byte* data = b.Data();
                           b = LentBytes();
                           *data = std::byte{1};
                       }),
                 "");
}

TEST(LentMemoryRules, BytesBetweenBlockAndPageAreWatched) {
    SetLendingRules({MemoryPlacement::kFlushRight, {}});
    const LentBytes bytes = LentBytes::Create(60, false);
    bytes.Data()[60] = std::byte{1};
    EXPECT_FALSE(bytes.SlackIsWhole());
    SetLendingRules({});
}

TEST(LentMemoryRules, RowsGetTheirPadding) {
    SetLendingRules({MemoryPlacement::kPlain, 4});
    EXPECT_EQ(World::Create(10, 2, Depth::k8).Def().rowbytes, 44);
    SetLendingRules({});
    EXPECT_EQ(World::Create(10, 2, Depth::k8).Def().rowbytes, 48);
}

}  // namespace
