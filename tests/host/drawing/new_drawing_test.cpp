// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Drawings as their makers get them: pixels, and what is reported when there are none.

#include "host/drawing/new_drawing.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>

#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

TEST(NewDrawing, BeginsBlackOrTransparent) {
    for (const auto& [pixels, first] : {std::pair{DrawnPixels::kOpaque, 0u}, {DrawnPixels::kWithAlpha, 0xFF000000u}}) {
        auto made = NewDrawing("a picture", 3, 2, pixels);
        ASSERT_TRUE(made) << made.error().sentence;
        Drawing& drawing = **made;
        EXPECT_EQ(drawing.Width(), 3);
        EXPECT_EQ(drawing.Height(), 2);
        // An opaque drawing's highest byte has no meaning.
        for (int x = 0; x < 3; ++x) EXPECT_EQ(drawing.Row(1)[x] & (first | 0xFFFFFFu), 0u);
    }
}

TEST(NewDrawing, BecomesAnOpaqueWorld) {
    auto made = NewDrawing("a picture", 2, 2);
    ASSERT_TRUE(made) << made.error().sentence;
    (*made)->SetColor(1, 0.4, 0);
    (*made)->AddRect(1, 0, 1, 1);
    (*made)->Fill();
    const auto world = WorldOf("a picture", **made);
    ASSERT_TRUE(world) << world.error().sentence;
    const auto* row = reinterpret_cast<const PF_Pixel*>(world->Row(0));
    EXPECT_EQ(row[0].alpha, 255);
    EXPECT_EQ(row[0].red, 0);
    EXPECT_EQ(row[1].alpha, 255);
    EXPECT_EQ(row[1].red, 255);
    EXPECT_EQ(row[1].green, 102);
    EXPECT_EQ(row[1].blue, 0);
}

TEST(NewDrawing, RefusesWhatIsTooLarge) {
    const auto made = NewDrawing("a picture", 1 << 20, 1 << 20);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().kind, ErrorKind::kInternal);
    EXPECT_EQ(made.error().sentence, "not enough memory for a picture, 4194304 MiB");
}

TEST(NewDrawing, SaysThatMemoryIsShortWhileItsLibrariesAreLoaded) {
    if (kIsSanitized) GTEST_SKIP() << "a sanitizer reserves the whole address space, so no limit of it can be set";
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    rlimit narrow = before;
    narrow.rlim_cur = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + (1 << 20);
    ASSERT_EQ(setrlimit(RLIMIT_AS, &narrow), 0);
    const auto refused = CheckCanDraw("a picture");
    ASSERT_EQ(setrlimit(RLIMIT_AS, &before), 0);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, ErrorKind::kInternal);
    EXPECT_TRUE(refused.error().sentence.starts_with("not enough memory for a picture, more than the "))
        << refused.error().sentence;
    // What is short now may be there the next time.
    EXPECT_TRUE(CheckCanDraw("a picture"));
}

}  // namespace

}  // namespace umbrant::host
