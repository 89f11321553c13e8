// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Lists of pointers, written by hand, as the format's public description defines each opcode.

#include "tests/packaging/mapped/dyld_opcodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ::testing::ElementsAre;
using Place = std::pair<unsigned, std::uint64_t>;

std::vector<std::byte> Bytes(std::initializer_list<int> values) {
    std::vector<std::byte> bytes;
    for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

std::vector<Place> Rebased(std::initializer_list<int> opcodes) {
    std::vector<Place> places;
    RunRebaseOpcodes(Bytes(opcodes), [&](unsigned segment, std::uint64_t offset) {
        places.push_back({segment, offset});
    });
    return places;
}

std::vector<std::string> Bound(std::initializer_list<int> opcodes) {
    std::vector<std::string> lines;
    RunBindOpcodes(Bytes(opcodes),
                   [&](unsigned segment, std::uint64_t offset, const std::string& name, std::int64_t addend) {
                       lines.push_back(name + " " + std::to_string(segment) + ":" + std::to_string(offset) + " " +
                                       std::to_string(addend));
                   });
    return lines;
}

TEST(DyldOpcodes, Rebase) {
    EXPECT_THAT(Rebased({0x11, 0x22, 0x90, 0x01, 0x52, 0x00}), ElementsAre(Place{2, 144}, Place{2, 152}));
    EXPECT_THAT(Rebased({0x21, 0x08, 0x60, 0x02, 0x42, 0x51}), ElementsAre(Place{1, 8}, Place{1, 16}, Place{1, 40}));
    EXPECT_THAT(Rebased({0x21, 0x00, 0x70, 0x10, 0x30, 0x04, 0x51}), ElementsAre(Place{1, 0}, Place{1, 28}));
    EXPECT_THAT(Rebased({0x23, 0x00, 0x80, 0x03, 0x08}), ElementsAre(Place{3, 0}, Place{3, 16}, Place{3, 32}));
    EXPECT_THAT(Rebased({0x00, 0x51}), ElementsAre()) << "nothing after the end";
}

TEST(DyldOpcodes, Bind) {
    EXPECT_THAT(Bound({0x11, 0x40, '_', 'a', 0x00, 0x51, 0x72, 0x10, 0x90, 0x90}),
                ElementsAre("_a 2:16 0", "_a 2:24 0"));
    EXPECT_THAT(Bound({0x40, 'b', 0x00, 0x60, 0x7F, 0x71, 0x00, 0xA0, 0x08, 0xB1, 0x80, 0x04, 0x90}),
                ElementsAre("b 1:0 -1", "b 1:16 -1", "b 1:36 -1"));
    EXPECT_THAT(Bound({0x3E, 0x40, 'c', 0x00, 0x71, 0x00, 0xC0, 0x02, 0x10}), ElementsAre("c 1:0 0", "c 1:24 0"));
    EXPECT_THAT(Bound({0x72, 0x00, 0x11, 0x40, 'd', 0x00, 0x90, 0x00, 0x72, 0x08, 0x20, 0x02, 0x40, 'e', 0x00, 0x90}),
                ElementsAre("d 2:0 0", "e 2:8 0"))
        << "a lazy list ends each of its entries";
}

TEST(DyldOpcodes, WhatIsUnknownIsRefused) {
    EXPECT_THROW(Rebased({0x12}), std::runtime_error) << "not a pointer";
    EXPECT_THROW(Rebased({0x90}), std::runtime_error);
    EXPECT_THROW(Bound({0xD0}), std::runtime_error) << "threaded lists";
    EXPECT_THROW(Bound({0x40, 'a'}), std::runtime_error) << "cut off";
}

}  // namespace
