// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recipe of a clip, through the real ffmpeg, in every container.

#include "host/image/recipe/recipe_text.h"
#include "tests/host/video/clips.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

TEST_F(Clips, ARecipeDrawsTheSameClipAgain) {
    NEEDS_FFMPEG();
    WriteLayer(folder_ / "in.png", 16, 12, {255, 60, 120, 180});
    for (const char* extension : {"mov", "mkv", "webm"}) {
        SCOPED_TRACE(extension);
        const std::string first = std::string("first.") + extension, again = std::string("again.") + extension;
        ASSERT_EQ(Render("in.png", first, {"--frames", "1-2", "--set", "paint/border=3", "--canvas", "grow"}).code, 0);
        const std::string bytes = ReadBytes(folder_ / first);
        EXPECT_THAT(FindRecipe(MemoryBytes(std::as_bytes(std::span(bytes)))).text,
                    HasSubstr(R"("canvas":"-3,-3,19,15")"));
        const Outcome outcome = Render("in.png", again, {"--frames", "1-2", "--like", first});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(ReadBytes(folder_ / first), ReadBytes(folder_ / again));
        ASSERT_EQ(Render("in.png", "one.png", {"--like", first}).code, 0);
        EXPECT_EQ(Read(folder_ / "one.png").pixels.Width(), 22);

        // Neither does a clip that is drawn from it inherit the recipe, nor does ffmpeg show a tag of it.
        const std::string plain = std::string("plain.") + extension;
        ASSERT_EQ(Render(first, plain, {"--no-recipe"}).code, 0);
        const Outcome none = Render("in.png", "none.png", {"--like", plain});
        EXPECT_EQ(none.code, 2);
        EXPECT_THAT(none.err, HasSubstr("'" + plain + "' has no recipe: "));
        EXPECT_EQ(Probe(plain)["format"]["tags"].dump().find("recipe"), std::string::npos);
    }
}

TEST_F(Clips, ConvertedColoursAreTagged) {
    NEEDS_FFMPEG();
    unsetenv("OCIO");
    WriteLayer(folder_ / "in.png", 16, 12, {255, 188, 120, 180});
    const std::vector<std::string> convert = {"--frames", "1-1", "--input-space", "sRGB",
                                              "--codec",  "png", "--output-space"};
    for (const auto& [space, transfer] : {std::pair("linear", "linear"), std::pair("Gamma 2.4 Rec.709", "bt709")}) {
        auto words = convert;
        words.emplace_back(space);
        const Outcome outcome = Render("in.png", "out.mov", words);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(Pictures("out.mov")["color_primaries"], "bt709");
        EXPECT_EQ(Pictures("out.mov")["color_transfer"], transfer);
    }
    auto words = convert;
    words.emplace_back("ACEScg");
    ASSERT_EQ(Render("in.png", "out.mov", words).code, 0);
    EXPECT_FALSE(Pictures("out.mov").contains("color_transfer"));
}

}  // namespace

}  // namespace umbrant::host
