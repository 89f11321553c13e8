// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The versions of the renderer's arithmetic: each has the checksum of an image. If a checksum changes, the arithmetic
// did, and kPixelVersion needs a new number (host/cli/recipe/recipe.h).

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include "host/cli/recipe/recipe.h"
#include "tests/host/cli/program.h"

namespace umbrant::host {

namespace {

class CliPixelVersion : public testing::Test {
 protected:
    CliPixelVersion() {
        World layer = World::Create(96, 64, Depth::k8);
        for (int y = 20; y < 44; ++y) {
            for (int x = 30; x < 66; ++x) {
                Pixel8(layer, x, y) = {static_cast<A_u_char>(3 * x), 230, static_cast<A_u_char>(4 * y), 40};
            }
        }
        EXPECT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, 96, 64}, 96, 64}));
    }

    /// Draws wide blurs, for which the versions differ.
    Outcome Draw(const std::vector<std::string>& more, const char* exact) const {
        std::vector<std::string> words = {"render", "in.png", "--renderer", "cpu", "--module", UMBRANT_MODULE_FILE};
        words.insert(words.end(), more.begin(), more.end());
        return RunUmbrant(folder_, words, {{std::string("UMBRANT_CPU_EXACT=") + exact}, ""});
    }
    unsigned long Checksum(const std::string& name) const {
        const Picture picture = Read(folder_ / name);
        unsigned long sum = crc32(0, nullptr, 0);
        for (int y = 0; y < picture.pixels.Height(); ++y) {
            sum = crc32(sum, reinterpret_cast<const Bytef*>(picture.pixels.Row(y)),
                        static_cast<uInt>(picture.pixels.Width()) * 4);
        }
        return sum;
    }

    const std::vector<std::string> look_ = {"--set", "style/softness=120", "--set", "style/distance=60"};
    const Folder folder_;
};

TEST_F(CliPixelVersion, EachHasItsChecksumAndIsDrawnAgain) {
    const struct {
        int version;
        const char* exact;
        unsigned long sum;
    } rows[] = {{0, "1", 1323950826}, {1, "0", 249983000}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version);
        const std::string name = "v" + std::to_string(row.version) + ".png";
        std::vector<std::string> words = {"-o", name};
        words.insert(words.end(), look_.begin(), look_.end());
        const Outcome drawn = Draw(words, row.exact);
        ASSERT_EQ(drawn.code, 0) << drawn.err;
        EXPECT_EQ(Checksum(name), row.sum);
        const auto recipe = ReadRecipe(folder_ / name);
        ASSERT_TRUE(recipe) << recipe.error().sentence;
        EXPECT_EQ(recipe->pixels, row.version);
        // Whatever the environment says, the recipe's version is drawn.
        for (const char* exact : {"0", "1"}) {
            const Outcome again = Draw({"--like", name, "-o", "again.png"}, exact);
            ASSERT_EQ(again.code, 0) << again.err;
            EXPECT_EQ(ReadBytes(folder_ / "again.png"), ReadBytes(folder_ / name)) << exact;
        }
    }
}

}  // namespace

}  // namespace umbrant::host
