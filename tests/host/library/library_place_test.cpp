// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Places of images that are not drawn: the same for pixels and for a size alone, which takes no memory.

#include <sys/resource.h>

#include <array>
#include <fstream>

#include "tests/host/library/library_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using umbrant::Canvas;
using umbrant::Effect;
using umbrant::FrameOptions;
using umbrant::PixelFormat;
using umbrant::Rectangle;
using Settings = std::vector<std::pair<std::string, std::string>>;

constexpr int kPlacedWidth = 61;
constexpr int kPlacedHeight = 47;

struct PlaceCase {
    const char* what;
    Settings settings;
    bool hasTexture;
};

const PlaceCase kPlaceCases[] = {
    {"the defaults", {}, false},
    {"far to the right", {{"style/distance", "300"}, {"style/angle", "90"}}, false},
    {"soft", {{"style/softness", "50"}, {"style/distance", "7"}}, false},
    {"a radial shadow", {{"style/shadow-type", "radial"}, {"style/origin", "10,40"}}, true},
    {"an inner shadow", {{"style/shadow-type", "inner"}}, true},
    {"expanded", {{"compositing/buffer-expansion", "33"}}, false},
};

TEST(LibraryPlace, ASizeAloneGivesThePlaceOfTheImage) {
    const auto layer = Disc8(kPlacedWidth, kPlacedHeight);
    const auto texture = Disc8(40, 90);
    for (const PlaceCase& row : kPlaceCases) {
        SCOPED_TRACE(row.what);
        Effect effect = RealEffect();
        for (const auto& [path, value] : row.settings) effect.Set(path, value);
        for (const Canvas canvas : {Canvas::kGrow, Canvas::kLayer}) {
            FrameOptions options;
            options.canvas = canvas;
            options.textureX = -30;
            if (row.hasTexture) options.texture = texture.View();
            const Rectangle drawn = effect.Render(layer.View(), options).Place();
            EXPECT_EQ(effect.Place(layer.View(), options), drawn);
            EXPECT_EQ(effect.Place(DiscFloat(kPlacedWidth, kPlacedHeight).View(), options), drawn);
            // The texture's pixels are of no importance either.
            options.texture.pixels = nullptr;
            EXPECT_EQ(effect.Place(kPlacedWidth, kPlacedHeight, options), drawn);
        }
    }
}

TEST(LibraryPlace, GrowsWithTheShadow) {
    // The other tests compare; this one says that there is something to compare.
    Effect effect = RealEffect();
    effect.Set("style/distance", 0);
    effect.Set("style/softness", 0);
    EXPECT_LE(effect.Place(kPlacedWidth, kPlacedHeight).right, kPlacedWidth + 1);
    effect.Set("style/distance", 100);
    effect.Set("style/angle", 90);
    const Rectangle place = effect.Place(kPlacedWidth, kPlacedHeight);
    EXPECT_GE(place.right, kPlacedWidth + 90);
    EXPECT_LE(place.left, 0);
}

TEST(LibraryPlace, AnEmptyLayerHasAnEmptyPlace) {
    const Effect effect = RealEffect();
    EXPECT_EQ(effect.Place(0, 0), (Rectangle{0, 0, 0, 0}));
    EXPECT_EQ(effect.Place(0, 5, {Canvas::kLayer}), (Rectangle{0, 0, 0, 5}));
}

/// Bytes of address space that this process uses.
rlim_t AddressSpace() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * 4096;
}

TEST(LibraryPlace, ASizeAloneTakesNoMemoryForAnImage) {
    // A layer of 3.4 GB, and a texture of as much.
    Effect effect = RealEffect();
    effect.Set("style/distance", 0);
    effect.Set("style/softness", 0);
    FrameOptions options;
    options.texture = {static_cast<const void*>(nullptr), 29000, 29000, PixelFormat::kRgba8};
    const Rectangle expected = effect.Place(29000, 29000, options);
    EXPECT_GE(expected.Width(), 29000);
    const auto child = [&] {
        // A sanitizer's own memory is beyond every limit.
        const rlim_t limit = AddressSpace() + (rlim_t{256} << 20);
        const rlimit limits{limit, limit};
        if (!kIsSanitized && setrlimit(RLIMIT_AS, &limits) != 0) return 1;
        if (!kIsSanitized && !World::CreateUnwritten(29000, 29000, Depth::k8).IsNull()) return 2;
        return effect.Place(29000, 29000, options) == expected ? 0 : 3;
    };
    EXPECT_EQ(RunInChild(child), 0);
}

TEST(LibraryPlace, ImpossibleSizesAreRefused) {
    const Effect effect = RealEffect();
    FrameOptions options;
    EXPECT_EQ(Thrown([&] { effect.Place(-1, 5); }), "2: the layer is -1 x 5 pixels; its sides must be from 0 to 30000");
    EXPECT_EQ(Thrown([&] { effect.Place(5, 30001, {Canvas::kLayer}); }),
              "2: the layer is 5 x 30001 pixels; its sides must be from 0 to 30000");
    options.texture.width = 30001;
    EXPECT_EQ(Thrown([&] { effect.Place(5, 5, options); }),
              "2: the texture is 30001 x 0 pixels; its sides must be from 0 to 30000");
    options = {};
    options.downsample = 0;
    EXPECT_EQ(Thrown([&] { effect.Place(5, 5, options); }), "2: downsample is 0; it must be from 1 to 64");
}

TEST(LibraryPlace, TheEffectsErrorsAreThrown) {
    Effect effect({TestModule("painter"), umbrant::Renderer::kAuto, false, {}});
    effect.Set("flaw", "pre-render-error");
    EXPECT_EQ(Thrown([&] { effect.Place(5, 5); }).substr(0, 3), "1: ");
    effect.Set("flaw", "too-large");
    EXPECT_EQ(Thrown([&] { effect.Place(5, 5); }), "1: Painter requests an image larger than 30000 x 30000 pixels");
}

}  // namespace

}  // namespace umbrant::host
