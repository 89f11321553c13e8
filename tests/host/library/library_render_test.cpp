// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library draws what the program draws, byte for byte, out of and into all kinds of memory.

#include <algorithm>
#include <cmath>

#include "host/compositing/resample.h"
#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using umbrant::Canvas;
using umbrant::Effect;
using umbrant::FrameOptions;
using umbrant::Image;
using umbrant::ImageView;
using umbrant::MutableImageView;
using umbrant::Rectangle;
using Settings = std::vector<std::pair<std::string, std::string>>;

constexpr int kWidth = 61;
constexpr int kHeight = 47;

class LibraryRender : public testing::Test {
 protected:
    /// What `umbrant render` makes of in.tif with these arguments.
    Picture ByTheProgram(std::vector<std::string> arguments) {
        std::vector<std::string> all = {"render", "in.tif", "-o", "out.tif", "--renderer", "cpu"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome outcome = RunUmbrant(folder_, all, {{std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE}, ""});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return Read(folder_ / "out.tif");
    }

    const Folder folder_;
};

struct SameCase {
    const char* what;
    Settings settings;
    Canvas canvas;
    bool isFloat;
};

const SameCase kSameCases[] = {
    {"the defaults", {}, Canvas::kGrow, false},
    {"the layer's frame", {{"style/distance", "20"}, {"style/softness", "6"}}, Canvas::kLayer, false},
    {"floats", {{"style/distance", "25"}, {"style/color", "#804020"}}, Canvas::kGrow, true},
    {"floats in the layer's frame", {{"style/angle", "270"}, {"style/distance", "9"}}, Canvas::kLayer, true},
    {"an inner shadow", {{"style/shadow-type", "inner"}, {"style/distance", "12"}}, Canvas::kGrow, false},
    {"a radial shadow", {{"style/shadow-type", "radial"}, {"style/origin", "10,40"}}, Canvas::kGrow, false},
    {"a radial shadow of floats", {{"style/shadow-type", "radial"}}, Canvas::kLayer, true},
};

TEST_F(LibraryRender, DrawsWhatTheProgramDraws) {
    for (const SameCase& row : kSameCases) {
        SCOPED_TRACE(row.what);
        const auto bytes = Disc8(kWidth, kHeight);
        const auto floats = DiscFloat(kWidth, kHeight);
        row.isFloat ? WritePixels(folder_ / "in.tif", floats) : WritePixels(folder_ / "in.tif", bytes);
        std::vector<std::string> arguments = {"--canvas", row.canvas == Canvas::kLayer ? "layer" : "grow"};
        Effect effect = RealEffect();
        for (const auto& [path, value] : row.settings) {
            effect.Set(path, value);
            arguments.insert(arguments.end(), {"--set", path + "=" + value});
        }
        FrameOptions options;
        options.canvas = row.canvas;
        const Image image = effect.Render(row.isFloat ? floats.View() : bytes.View(), options);
        const Picture expected = ByTheProgram(arguments);
        EXPECT_EQ(DifferentPixels(expected.pixels, image.View()), 0);
        EXPECT_EQ(image.Place(), effect.Place(row.isFloat ? floats.View() : bytes.View(), options));
        if (row.canvas == Canvas::kLayer) {
            EXPECT_EQ(image.Place(), (Rectangle{0, 0, kWidth, kHeight}));
        }
    }
}

TEST_F(LibraryRender, TheShadowIsThere) {
    // The other tests compare; this one says that there is something to compare.
    Effect effect = RealEffect();
    effect.Set("style/distance", 30);
    effect.Set("style/softness", 4);
    effect.Set("style/angle", 135);
    const Image image = effect.Render(Disc8(kWidth, kHeight).View());
    EXPECT_GT(image.Place().right, kWidth);
    EXPECT_GT(image.Place().bottom, kHeight);
    int dark = 0;
    for (std::size_t i = 0; i < image.PixelCount(); ++i) {
        const std::uint8_t* pixel = image.Bytes() + 4 * i;
        dark += pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0 && pixel[3] > 60;
    }
    EXPECT_GT(dark, 200);
}

TEST_F(LibraryRender, TheTextureLiesWhereItIsPut) {
    const auto layer = Disc8(kWidth, kHeight);
    const auto texture = DiscFloat(40, 90);
    WritePixels(folder_ / "in.tif", layer);
    WritePixels(folder_ / "texture.tif", texture);
    Effect effect = RealEffect();
    effect.Set("texture/blend-mode", "normal");
    effect.Set("style/distance", "15");
    FrameOptions options;
    options.texture = texture.View();
    options.textureX = 12;
    options.textureY = -7;
    const Image image = effect.Render(layer.View(), options);
    const Picture expected = ByTheProgram({"--texture", "texture.tif", "--texture-at", "12,-7", "--set",
                                           "texture/blend-mode=normal", "--set", "style/distance=15"});
    EXPECT_EQ(DifferentPixels(expected.pixels, image.View()), 0);
    EXPECT_NE(DifferentBytes(image, effect.Render(layer.View())), 0u);
}

TEST_F(LibraryRender, ASmallerLayerHasTheDistancesOfTheWholeOne) {
    const auto whole = Disc8(kWidth, kHeight);
    WritePixels(folder_ / "in.tif", whole);
    const World half = Downsample(WorldOfPixels(whole), 2);
    Pixels<std::uint8_t> small{half.Width(), half.Height(),
                               std::vector<std::uint8_t>(4u * half.Width() * half.Height())};
    for (int y = 0; y < small.height; ++y) {
        for (int x = 0; x < small.width; ++x) {
            PF_Pixel pixel;
            std::memcpy(&pixel, half.Row(y) + 4 * x, 4);
            const std::uint8_t rgba[] = {pixel.red, pixel.green, pixel.blue, pixel.alpha};
            std::memcpy(small.At(x, y), rgba, 4);
        }
    }
    Effect effect = RealEffect();
    effect.Set("style/distance", 40);
    FrameOptions options;
    options.downsample = 2;
    options.layerWidth = kWidth;
    options.layerHeight = kHeight;
    const Image image = effect.Render(small.View(), options);
    const Picture expected = ByTheProgram({"--downsample", "2", "--set", "style/distance=40"});
    EXPECT_EQ(DifferentPixels(expected.pixels, image.View()), 0);
}

TEST_F(LibraryRender, KeyframesFollowTheTime) {
    const auto layer = Disc8(kWidth, kHeight);
    WritePixels(folder_ / "in.tif", layer);
    Effect effect = RealEffect();
    const std::string preset = std::string(PRESETS) + "/turning-title.json";
    effect.LoadPreset(preset);
    FrameOptions options;
    options.seconds = 1.25;
    const Image image = effect.Render(layer.View(), options);
    const Picture expected = ByTheProgram({"--preset", preset, "--time", "1.25"});
    EXPECT_EQ(DifferentPixels(expected.pixels, image.View()), 0);
    options.seconds = 0.5;
    EXPECT_NE(DifferentBytes(effect.Render(layer.View(), options), image), 0u);
    // The same moment where a second has other frames, and frames begin elsewhere: 1.25 s is frame 30 of 24.
    options.seconds = 2;
    options.rate = {10, 1};
    options.zeroFrame = 10;
    EXPECT_EQ(DifferentBytes(effect.Render(layer.View(), options), image), 0u);
}

TEST_F(LibraryRender, ACollapsedLayerIsPresentedAsOne) {
    const auto layer = Disc8(kWidth, kHeight);
    WritePixels(folder_ / "in.tif", layer);
    Effect effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, true, {}});
    effect.Set("style/shadow-type", "radial");
    const Picture expected = ByTheProgram({"--collapsed", "--set", "style/shadow-type=radial"});
    const Image image = effect.Render(layer.View());
    EXPECT_EQ(DifferentPixels(expected.pixels, image.View()), 0);
    Effect other = RealEffect();
    other.Set("style/shadow-type", "radial");
    EXPECT_NE(DifferentBytes(other.Render(layer.View()), image), 0u);
}

/// A picture in memory of its own shape.
struct Memory {
    const char* what;
    std::ptrdiff_t stride;
    std::ptrdiff_t first;  ///< where the top row begins
};

constexpr Memory kMemories[] = {
    {"rows without gaps", 4 * kWidth, 0},
    {"rows with gaps", 4 * kWidth + 36, 8},
    {"odd addresses", 4 * kWidth + 1, 3},
    {"the top row last", -(4 * kWidth + 20), (4 * kWidth + 20) * (kHeight - 1)},
};

TEST_F(LibraryRender, AnyStrideWillDo) {
    const auto layer = Disc8(kWidth, kHeight);
    Effect effect = RealEffect();
    effect.Set("style/distance", 10);
    FrameOptions options;
    options.canvas = Canvas::kLayer;
    const Image expected = effect.Render(layer.View(), options);
    for (const Memory& row : kMemories) {
        SCOPED_TRACE(row.what);
        std::vector<std::uint8_t> from((4 * kWidth + 40) * (kHeight + 1), 0xEE), to = from;
        const ImageView view{from.data() + row.first, kWidth, kHeight, row.stride};
        for (int y = 0; y < kHeight; ++y)
            std::memcpy(from.data() + row.first + y * row.stride, layer.At(0, y), 4 * kWidth);
        const MutableImageView target{to.data() + row.first, kWidth, kHeight, row.stride};
        EXPECT_EQ(effect.RenderInto(view, target, options), expected.Place());
        int different = 0;
        std::vector<bool> written(to.size());
        for (int y = 0; y < kHeight; ++y) {
            different += std::memcmp(target.Row(y), expected.View().Row(y), 4 * kWidth) != 0;
            const auto begin = written.begin() + row.first + y * row.stride;
            std::fill(begin, begin + 4 * kWidth, true);
        }
        EXPECT_EQ(different, 0);
        for (std::size_t i = 0; i < to.size(); ++i) different += !written[i] && to[i] != 0xEE;
        EXPECT_EQ(different, 0) << "bytes between the rows were written";
    }
}

TEST_F(LibraryRender, TheTargetMayBeTheLayer) {
    auto pixels = DiscFloat(kWidth, kHeight);
    Effect effect = RealEffect();
    FrameOptions options;
    options.canvas = Canvas::kLayer;
    const Image expected = effect.Render(pixels.View(), options);
    effect.RenderInto(pixels.View(), {pixels.channels.data(), kWidth, kHeight}, options);
    EXPECT_EQ(std::memcmp(pixels.channels.data(), expected.Floats(), pixels.channels.size() * 4), 0);
}

TEST_F(LibraryRender, AGrownPictureGoesIntoTheCallersPixelsToo) {
    const auto layer = Disc8(kWidth, kHeight);
    Effect effect = RealEffect();
    effect.Set("style/distance", 33);
    const Image expected = effect.Render(layer.View());
    const Rectangle place = effect.Place(layer.View());
    std::vector<std::uint8_t> target(4u * place.Width() * place.Height());
    EXPECT_EQ(effect.RenderInto(layer.View(), {target.data(), place.Width(), place.Height()}), place);
    EXPECT_EQ(place, expected.Place());
    EXPECT_EQ(std::memcmp(target.data(), expected.Bytes(), target.size()), 0);
}

TEST_F(LibraryRender, AnEmptyOrTransparentLayerGivesATransparentPicture) {
    Effect effect = RealEffect();
    const Pixels<std::uint8_t> nothing{5, 4, std::vector<std::uint8_t>(80)};
    const Image image = effect.Render(nothing.View(), {Canvas::kLayer});
    ASSERT_EQ(image.Place(), (Rectangle{0, 0, 5, 4}));
    EXPECT_EQ(std::count(image.Bytes(), image.Bytes() + 80, 0), 80);
    EXPECT_EQ(effect.Render({}).PixelCount(), 0u);
    EXPECT_EQ(effect.Place({}), (Rectangle{0, 0, 0, 0}));
}

TEST_F(LibraryRender, EachEffectHasValuesOfItsOwn) {
    const auto layer = Disc8(kWidth, kHeight);
    Effect first = RealEffect(), second = RealEffect();
    first.Set("style/distance", 5);
    second.Set("style/distance", 50);
    const Image near = first.Render(layer.View()), far = second.Render(layer.View());
    EXPECT_NE(DifferentBytes(near, far), 0u);
    EXPECT_EQ(DifferentBytes(near, first.Render(layer.View())), 0u);
}

TEST_F(LibraryRender, AMovedEffectDrawsOn) {
    const auto layer = Disc8(kWidth, kHeight);
    Effect first = RealEffect();
    first.Set("style/distance", 21);
    const Image expected = first.Render(layer.View());
    Effect second = std::move(first);
    EXPECT_EQ(DifferentBytes(second.Render(layer.View()), expected), 0u);
    second = RealEffect();
    EXPECT_EQ(second.Get("style/distance"), second.Find("style/distance").defaultText);
}

TEST(Image, MovesAndSays) {
    umbrant::Image image({-2, -3, 5, 4}, umbrant::PixelFormat::kRgbaFloat);
    image.Floats()[0] = 0.5f;
    umbrant::Image other = std::move(image);
    EXPECT_EQ(image.PixelCount(), 0u);
    EXPECT_EQ(other.PixelCount(), 49u);
    EXPECT_EQ(other.View().RowBytes(), 7 * 16);
    EXPECT_EQ(other.View().format, umbrant::PixelFormat::kRgbaFloat);
    EXPECT_EQ(*static_cast<const float*>(std::as_const(other).View().pixels), 0.5f);
}

}  // namespace

}  // namespace umbrant::host
