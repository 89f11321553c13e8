// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Every way in which the library says no, with its sentence and its code.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <limits>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using umbrant::Effect;
using umbrant::EffectOptions;
using umbrant::FrameOptions;
using umbrant::ImageView;
using umbrant::PixelFormat;
using umbrant::Renderer;

const Pixels<std::uint8_t> kLayer = Disc8(6, 5);

TEST(LibraryFailures, AModuleThatCannotBeLoaded) {
    const auto make = [](const std::string& module) {
        return Thrown([&] { Effect({module, Renderer::kAuto, false, {}}); });
    };
    EXPECT_EQ(make("nowhere.so"),
              "4: cannot load the module 'nowhere.so': there is no such file; name the module's file");
    EXPECT_THAT(make(TestModule("no_export")), StartsWith("4: cannot load the module '"));
    EXPECT_THAT(make(TestModule("SetupError")), StartsWith("1: "));
    // What failed once fails again, and does not stand in the way of others.
    EXPECT_THAT(make(TestModule("SetupError")), StartsWith("1: "));
    EXPECT_EQ(Thrown([] { Painter(); }), "");
}

TEST(LibraryFailures, NoModuleIsFound) {
    ::unsetenv("UMBRANT_MODULE");
    const std::string thrown = Thrown([] { Effect(); });
    // Where this project is installed, that module is found.
    if (!thrown.empty()) {
        EXPECT_THAT(thrown, StartsWith("4: no module was found in '"));
        EXPECT_THAT(thrown, HasSubstr("'; name one with EffectOptions::module or the environment variable "
                                      "UMBRANT_MODULE"));
        EffectOptions options;
        options.moduleAdvice = "ask the person who gave you this program";
        EXPECT_THAT(Thrown([&] { Effect{options}; }), EndsWith("'; ask the person who gave you this program"));
    }
    ::setenv("UMBRANT_MODULE", TestModule("painter").c_str(), 1);
    EXPECT_EQ(Effect().ModuleFile(), TestModule("painter"));
    ::unsetenv("UMBRANT_MODULE");
}

TEST(LibraryFailures, TheRenderer) {
    const auto make = [&](Renderer renderer) { return Effect({TestModule("painter"), renderer, false, {}}); };
    ::setenv("UMBRANT_RENDERER", "abacus", 1);
    EXPECT_EQ(Thrown([&] { make(Renderer::kAuto); }),
              "2: UMBRANT_RENDERER is \"abacus\"; it must be \"gl\", \"cpu\" or \"auto\"");
    // Who says what draws is not asked what the variable says.
    EXPECT_EQ(make(Renderer::kProcessor).ChosenRenderer(), Renderer::kProcessor);
    ::setenv("UMBRANT_RENDERER", "gl", 1);
    EXPECT_EQ(make(Renderer::kAuto).ChosenRenderer(), Renderer::kOpenGL);
    ::unsetenv("UMBRANT_RENDERER");
}

TEST(LibraryFailures, Parameters) {
    const Folder folder;
    const std::string torn = (folder / "torn.json").string();
    std::ofstream(torn) << "{";
    struct {
        const char* what;
        std::function<void(Effect&)> call;
        std::string sentence;
    } const cases[] = {
        {"an unknown path", [](Effect& e) { e.Set("paint/colour", "#000000"); },
         "2: there is no parameter 'paint/colour'; closest: 'paint/color'"},
        {"an unknown index", [](Effect& e) { e.Get("#77"); },
         "2: there is no parameter '#77'; the effect has #0 to #9"},
        {"a bad value", [](Effect& e) { e.Set("paint/border", "wide"); },
         "2: 'paint/border' takes a number from 0 to 40000, not 'wide'"},
        {"a number out of range", [](Effect& e) { e.Set("paint/border", -1); },
         "2: 'paint/border' takes 0 to 40000, not -1"},
        {"not a number", [](Effect& e) { e.Set("paint/border", std::nan("")); },
         "2: 'paint/border' takes a number from 0 to 40000, not 'nan'"},
        {"a layer", [](Effect& e) { e.Set("paint/picture", "1"); },
         "2: 'paint/picture' is a layer; pass an image instead of a value"},
        {"a row to find", [](Effect& e) { e.Find("flow"); }, "2: there is no parameter 'flow'; closest: 'flaw'"},
        {"a preset that is no JSON", [](Effect& e) { e.ApplyPreset("{"); },
         "2: cannot read the preset 'in memory': not valid JSON (parse error at line 1, column 2: "},
        {"a preset with mistakes",
         [](Effect& e) { e.ApplyPreset(R"({"version": 1, "values": {"paint/colr": "#000000"}})"); },
         "2: the preset 'in memory' has a mistake: line 1, column "},
        {"a preset that is not there", [](Effect& e) { e.LoadPreset("none.json"); },
         "3: cannot read the preset 'none.json': there is no such file"},
        {"a preset's file that is no JSON", [&](Effect& e) { e.LoadPreset(torn); }, "3: cannot read the preset '"},
    };
    Effect effect = Painter();
    const std::string before = effect.PresetText();
    for (const auto& row : cases) {
        EXPECT_THAT(Thrown([&] { row.call(effect); }), StartsWith(row.sentence)) << row.what;
        EXPECT_EQ(effect.PresetText(), before) << row.what << " has changed something";
    }
}

TEST(LibraryFailures, Layers) {
    const std::uint8_t* pixels = kLayer.channels.data();
    struct {
        const char* what;
        ImageView layer;
        const char* sentence;
    } const cases[] = {
        {"null pixels",
         {static_cast<const std::uint8_t*>(nullptr), 6, 5},
         "2: the layer is 6 x 5 pixels, but its pixels are null"},
        {"a negative side", {pixels, -6, 5}, "2: the layer is -6 x 5 pixels; its sides must be from 0 to 30000"},
        {"a side too long", {pixels, 6, 30001}, "2: the layer is 6 x 30001 pixels; its sides must be from 0 to 30000"},
        {"rows that overlap", {pixels, 6, 5, 23}, "2: the layer has a stride of 23 bytes; a row of 6 pixels has 24"},
        {"rows that overlap upwards",
         {pixels, 6, 5, -23},
         "2: the layer has a stride of -23 bytes; a row of 6 pixels has 24"},
        {"rows that no memory holds",
         {pixels, 6, 5, std::numeric_limits<std::ptrdiff_t>::max()},
         "2: the layer has a stride of 9223372036854775807 bytes; 5 rows with this stride do not fit into memory"},
        {"rows that no memory holds upwards",
         {pixels, 6, 5, std::numeric_limits<std::ptrdiff_t>::min()},
         "2: the layer has a stride of -9223372036854775808 bytes; 5 rows with this stride do not fit into memory"},
        {"a little less",
         {pixels, 6, 5, std::numeric_limits<std::ptrdiff_t>::max() / 5},
         "2: the layer has a stride of 1844674407370955161 bytes; 5 rows with this stride do not fit into memory"},
        {"one row that is no different",
         {pixels, 6, 1, std::numeric_limits<std::ptrdiff_t>::min() + 1},
         "2: the layer has a stride of -9223372036854775807 bytes; 1 rows with this stride do not fit into memory"},
        {"another format",
         {pixels, 6, 5, static_cast<PixelFormat>(9)},
         "2: the layer has the pixel format 9; it must be kRgba8 or kRgbaFloat"},
    };
    const Effect effect = Painter();
    for (const auto& row : cases) {
        EXPECT_EQ(Thrown([&] { effect.Render(row.layer); }), row.sentence) << row.what;
        EXPECT_EQ(Thrown([&] { effect.Place(row.layer); }), row.sentence) << row.what;
        EXPECT_EQ(Thrown([&] { effect.Place(row.layer, {umbrant::Canvas::kLayer}); }), row.sentence) << row.what;
    }
    FrameOptions options;
    options.texture = {pixels, 6, 5, 3};
    EXPECT_EQ(Thrown([&] { effect.Render(kLayer.View(), options); }),
              "2: the texture has a stride of 3 bytes; a row of 6 pixels has 24");
}

TEST(LibraryFailures, Targets) {
    std::vector<std::uint8_t> memory(4 * 6 * 5);
    std::vector<float> floats(4 * 6 * 5);
    Effect effect = Painter();
    const auto into = [&](const umbrant::MutableImageView& target) {
        return Thrown([&] { effect.RenderInto(kLayer.View(), target); });
    };
    EXPECT_EQ(into({memory.data(), 6, 5}), "");
    EXPECT_EQ(
        into({memory.data(), 6, 5, std::numeric_limits<std::ptrdiff_t>::min()}),
        "2: the target has a stride of -9223372036854775808 bytes; 5 rows with this stride do not fit into memory");
    EXPECT_EQ(into({memory.data(), 6, 5, 7}), "2: the target has a stride of 7 bytes; a row of 6 pixels has 24");
    EXPECT_EQ(into({floats.data(), 6, 5}),
              "2: the pixel formats of the target and the layer differ; they must be equal");
    EXPECT_EQ(into({memory.data(), 5, 5}), "2: the target is 5 x 5 pixels; the image is 6 x 5");
    effect.Set("paint/border", 2);
    EXPECT_EQ(into({memory.data(), 6, 5}), "2: the target is 6 x 5 pixels; the image is 10 x 9");
}

TEST(LibraryFailures, Options) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct {
        std::function<void(FrameOptions&)> change;
        std::string sentence;
    } const cases[] = {
        {[](FrameOptions& o) { o.downsample = 0; }, "2: downsample is 0; it must be from 1 to 64"},
        {[](FrameOptions& o) { o.downsample = 65; }, "2: downsample is 65; it must be from 1 to 64"},
        {[](FrameOptions& o) { o.layerWidth = -1; }, "2: the layer's full size is -1 x 0; it cannot be below 0"},
        {[](FrameOptions& o) { o.seconds = 90000; }, "2: the time is 90000 s; it must be from -86400 to 86400"},
        {[=](FrameOptions& o) { o.seconds = nan; }, "2: the time is nan s; it must be from -86400 to 86400"},
        {[](FrameOptions& o) {
             o.rate = {0, 1};
         },
         "2: the rate is 0 / 1; both must be from 1 to 1000000"},
        {[](FrameOptions& o) {
             o.rate = {24, 0};
         },
         "2: the rate is 24 / 0; both must be from 1 to 1000000"},
        {[=](FrameOptions& o) { o.zeroFrame = nan; },
         "2: the frame at 0 s is nan; it must be from -1000000 to 1000000"},
        {[](FrameOptions& o) { o.textureX = 1e6; },
         "2: the texture's position is 1000000,0; both must be from -100000 to 100000"},
        {[](FrameOptions& o) {
             o.seconds = 80000;
             o.rate = {1000000, 1};
         },
         "2: the time of 80000 s at 1000000 frames in 1 s exceeds the range of an effect's clock"},
    };
    const Effect effect = Painter();
    for (const auto& row : cases) {
        FrameOptions options;
        row.change(options);
        EXPECT_EQ(Thrown([&] { effect.Render(kLayer.View(), options); }), row.sentence);
    }
}

TEST(LibraryFailures, TheEffectsOwn) {
    struct {
        const char* flaw;
        const char* sentence;
    } const cases[] = {
        {"error-with-message", "No paint 4"},
        {"pre-render-error", "1: "},
        {"throw", "1: "},
        {"too-large", "requests an image larger than 30000 x 30000 pixels"},
    };
    Effect effect = Painter();
    for (const auto& row : cases) {
        effect.Set("flaw", row.flaw);
        EXPECT_THAT(Thrown([&] { effect.Render(kLayer.View()); }),
                    testing::AllOf(StartsWith("1: "), HasSubstr(row.sentence)))
            << row.flaw;
    }
    // A frame that failed leaves the effect as it was.
    effect.Set("flaw", "none");
    EXPECT_EQ(Thrown([&] { effect.Render(kLayer.View()); }), "");
}

TEST(LibraryFailures, TheEffectsWordsAreHandedOn) {
    std::string said;
    Effect effect = Painter([&](const std::string& words) { said += words; });
    effect.Render(kLayer.View());
    EXPECT_EQ(said, "");
    effect.Set("flaw", "long-message");
    effect.Render(kLayer.View());
    EXPECT_THAT(said, StartsWith("mmmm"));
}

}  // namespace

}  // namespace umbrant::host
