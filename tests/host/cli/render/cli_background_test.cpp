// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Results over a background: opaque, composited as stored, and what is refused.

#include <gmock/gmock.h>

#include "tests/host/cli/render/sequence_fixture.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

/// Layers of which the test module draws every pixel as it is.
class CliBackground : public CliSequence {
 protected:
    CliBackground() { WriteLayer(folder_ / "half.png", 20, 3, {128, 200, 100, 50}); }

    Outcome Draw(const std::string& background, const std::string& output = "out.png",
                 const std::string& input = "half.png", std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--background", background});
        return Render(more, input, output);
    }
    Picture Drawn(const std::string& background, const std::string& output = "out.png",
                  const std::string& input = "half.png", const std::vector<std::string>& more = {}) const {
        const Outcome outcome = Draw(background, output, input, more);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return Read(folder_ / output);
    }
};

void ExpectPixel(const PF_Pixel& pixel, int red, int green, int blue) {
    EXPECT_EQ(pixel.alpha, 255);
    EXPECT_EQ(pixel.red, red);
    EXPECT_EQ(pixel.green, green);
    EXPECT_EQ(pixel.blue, blue);
}

/// 128/255 of `front` over the rest of `behind`, rounded.
int Mixed(int front, int behind) {
    return (front * 128 + behind * 127 + 127) / 255;
}

TEST_F(CliBackground, AColorInAnyForm) {
    for (const char* text : {"#008080", "teal", "TEAL"}) {
        SCOPED_TRACE(text);
        Picture picture = Drawn(text);
        ExpectPixel(Pixel8(picture.pixels, 7, 1), Mixed(200, 0), Mixed(100, 128), Mixed(50, 128));
    }
    Picture picture = Drawn("#fff");
    ExpectPixel(Pixel8(picture.pixels, 0, 0), Mixed(200, 255), Mixed(100, 255), Mixed(50, 255));
}

TEST_F(CliBackground, FloatsKeepWhatIsBrighterThanWhite) {
    const World layer = FilledFloat(4, 2, {0.5f, 3.0f, 0.25f, 0.0f});
    ASSERT_TRUE(WritePicture(folder_ / "bright.exr", layer, {{0, 0, 4, 2}, 4, 2}));
    Picture picture = Drawn("#ff0000", "out.exr", "bright.exr");
    const PF_PixelFloat& pixel = PixelFloat(picture.pixels, 2, 1);
    EXPECT_EQ(pixel.alpha, 1.0f);
    EXPECT_FLOAT_EQ(pixel.red, 2.0f);
    EXPECT_FLOAT_EQ(pixel.green, 0.125f);
    EXPECT_FLOAT_EQ(pixel.blue, 0.0f);
    EXPECT_EQ(picture.bits, 32);
}

TEST_F(CliBackground, ACheckerboardBeginsAtTheLayersCorner) {
    Picture picture = Drawn("checker");
    ExpectPixel(Pixel8(picture.pixels, 7, 0), Mixed(200, 204), Mixed(100, 204), Mixed(50, 204));
    ExpectPixel(Pixel8(picture.pixels, 8, 0), Mixed(200, 153), Mixed(100, 153), Mixed(50, 153));
    // A canvas that begins elsewhere moves nothing.
    Picture moved = Drawn("checker", "moved.png", "half.png", {"--canvas=-3,-1,20,3"});
    ExpectPixel(Pixel8(moved.pixels, 3 + 7, 1), Mixed(200, 204), Mixed(100, 204), Mixed(50, 204));
    ExpectPixel(Pixel8(moved.pixels, 3 + 8, 1), Mixed(200, 153), Mixed(100, 153), Mixed(50, 153));
    ExpectPixel(Pixel8(moved.pixels, 0, 1), 153, 153, 153);
}

TEST_F(CliBackground, AnImageCoversTheResult) {
    // 10 x 10: the middle three tenths of it have the result's shape, scaled by 2. Its lower half is transparent red.
    World behind = Filled8(10, 10, {255, 0, 0, 255});
    for (int y = 5; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) Pixel8(behind, x, y) = {0, 255, 0, 0};
    }
    ASSERT_TRUE(WritePicture(folder_ / "behind.png", behind, {{0, 0, 10, 10}, 10, 10}));
    WriteLayer(folder_ / "clear.png", 20, 20, {0, 0, 0, 0});
    Picture picture = Drawn("behind.png", "out.png", "clear.png");
    ASSERT_EQ(picture.pixels.Width(), 20);
    ExpectPixel(Pixel8(picture.pixels, 0, 0), 0, 0, 255);
    ExpectPixel(Pixel8(picture.pixels, 19, 19), 0, 0, 0);
    // The layer's own depth counts: an 8-bit image behind floats.
    Picture deep = Drawn("behind.png", "out.exr", "clear.png", {"--depth", "32", "--output-depth", "float"});
    EXPECT_FLOAT_EQ(PixelFloat(deep.pixels, 0, 0).blue, 1.0f);
    EXPECT_FLOAT_EQ(PixelFloat(deep.pixels, 0, 0).alpha, 1.0f);
}

TEST_F(CliBackground, AColorsNameIsTheColorEvenWhereAFileHasIt) {
    WriteLayer(folder_ / "red.png", 4, 4, {255, 0, 255, 0});
    std::filesystem::rename(folder_ / "red.png", folder_ / "red");
    Picture color = Drawn("red");
    ExpectPixel(Pixel8(color.pixels, 0, 0), Mixed(200, 255), Mixed(100, 0), Mixed(50, 0));
    Picture file = Drawn("./red");
    ExpectPixel(Pixel8(file.pixels, 0, 0), Mixed(200, 0), Mixed(100, 255), Mixed(50, 0));
}

TEST_F(CliBackground, EveryFrameOfASequence) {
    WriteLayer(folder_ / "in.2.png", 5, 3, {0, 0, 0, 0});
    const Outcome outcome = Draw("#102030", "out.##.png", "in.@.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    Picture second = Read(folder_ / "out.02.png");
    ExpectPixel(Pixel8(second.pixels, 1, 1), 16, 32, 48);
    EXPECT_EQ(Red("out.03.png"), 30);
}

TEST_F(CliBackground, WrongOnesAreRefusedBeforeAnythingIsDrawn) {
    WriteBytes(folder_ / "text.png", "no image");
    const struct {
        const char* background;
        int code;
        const char* message;
    } rows[] = {
        {"", 2, "'' is no background; leave the option out for a transparent image"},
        {"-", 2, "'-' is no background"},
        {"#12345", 2, "'#12345' is no colour: a colour is #rrggbb, #rgb or a CSS name; a file of this name is "},
        {"tael", 2, "'tael' is neither checker, a colour nor a file: a colour is #rrggbb, #rgb or a CSS name"},
        {"no.png", 3, "cannot read 'no.png': there is no such file"},
        {"text.png", 3, "cannot read 'text.png'"},
        {"out.png", 2, "'out.png' is both input and output"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.background);
        const Outcome outcome = Draw(row.background);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(outcome.err, HasSubstr(row.message));
        EXPECT_FALSE(Exists("out.png"));
    }
    EXPECT_EQ(Draw("in.1.png", "in.##.png", "still.png", {"--frames", "1-2"}).code, 0);
    EXPECT_EQ(Draw("in.01.png", "in.##.png", "still.png", {"--frames", "1-2"}).code, 2) << "a frame would replace it";
}

}  // namespace

}  // namespace umbrant::host
