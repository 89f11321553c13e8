// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Frames of the plug-in, to the byte those of the library and of the program.

#include <cstring>
#include <thread>

#include "tests/host/cli/program.h"
#include "tests/openfx/plugin/plugin_fixture.h"

namespace umbrant::ofx {
namespace {

constexpr OfxRectI kAtZero{0, 0, 64, 48};
constexpr OfxRectI kElsewhere{-7, 11, 57, 59};

Settings With(Settings settings, const Settings& more) {
    settings.insert(settings.end(), more.begin(), more.end());
    return settings;
}

TEST(OpenFxFrame, IsTheLibrarys) {
    const struct {
        const char* name;
        Settings settings;
    } rows[] = {
        {"defaults", {}},
        {"many settings", ManySettings()},
        {"inner", With(ManySettings(), {{"style/shadow-type", "inner"}})},
        {"radial from a point", With(ManySettings(), {{"style/shadow-type", "radial"}, {"style/origin", "20,30"}})},
        {"radial from the default origin", {{"style/shadow-type", "radial"}, {"style/distance", "20"}}},
        {"a long shadow of draft quality", {{"style/distance", "120"}, {"quality/resolution", "draft"}}},
        {"without the source", {{"compositing/source-opacity", "0"}, {"style/distance", "20"}}},
        {"a bigger buffer", {{"compositing/buffer-expansion", "12"}, {"style/distance", "5"}}},
    };
    for (const auto& row : rows) {
        for (const std::string context : {kFilter, kGeneral}) {
            SCOPED_TRACE(std::string(row.name) + ", " + context);
            Session session({}, context);
            const Picture source = Disc(kAtZero);
            EXPECT_EQ(Difference(FromPlugIn(session, {source}, row.settings), FromLibrary(source, row.settings)), "");
        }
    }
}

TEST(OpenFxFrame, IsTheSameWithRowsFromTheTop) {
    Session session;
    FrameOptions options;
    options.negativeRows = true;
    options.gap = 20;
    const Picture source = Disc(kAtZero);
    EXPECT_EQ(Difference(FromPlugIn(session, {source}, ManySettings(), options), FromLibrary(source, ManySettings())),
              "");
}

TEST(OpenFxFrame, FollowsASourceThatBeginsElsewhere) {
    const Settings radial = With(ManySettings(), {{"style/shadow-type", "radial"}, {"style/origin", "20,30"}});
    for (const Settings& settings : {ManySettings(), radial}) {
        Session session;
        const Picture source = Disc(kElsewhere);
        EXPECT_EQ(Difference(FromPlugIn(session, {source}, settings), FromLibrary(source, settings)), "");
    }
}

TEST(OpenFxFrame, OfAHostWithFixedSizesIsTheLayers) {
    HostOptions options;
    options.multiResolution = false;
    Session session(options);
    const Picture source = Disc(kAtZero);
    umbrant::FrameOptions layer;
    layer.canvas = umbrant::Canvas::kLayer;
    EXPECT_EQ(Difference(FromPlugIn(session, {source}, ManySettings()), FromLibrary(source, ManySettings(), layer)),
              "");
}

TEST(OpenFxFrame, OfAWindowIsThatPartOfTheWhole) {
    Session session;
    const Picture source = Disc(kElsewhere);
    const Picture whole = FromPlugIn(session, {source}, ManySettings());
    const OfxRectI windows[] = {{-3, 20, 30, 41}, {-7, 11, -6, 12}, {whole.bounds.x1, whole.bounds.y1, 10, 30}};
    for (const OfxRectI& window : windows) {
        FrameOptions options;
        options.window = window;
        const Frame frame = session.TheInstance().Render(options);
        ASSERT_EQ(frame.status, kOfxStatOK);
        Picture part(window, source.depth), expected(window, source.depth);
        for (int y = window.y1; y < window.y2; ++y) {
            const auto count = static_cast<std::size_t>(4 * WidthOf(window));
            std::copy_n(frame.output.At(window.x1, y), count, part.At(window.x1, y));
            std::copy_n(whole.At(window.x1, y), count, expected.At(window.x1, y));
        }
        EXPECT_EQ(Difference(part, expected), "");
    }
}

/// With red and blue exchanged.
Picture Exchanged(Picture picture) {
    for (std::size_t i = 0; i < picture.channels.size(); i += 4)
        std::swap(picture.channels[i], picture.channels[i + 2]);
    return picture;
}

TEST(OpenFxFrame, OfAHostThatHasBlueFirst) {
    for (const Depth depth : {Depth::kByte, Depth::kFloat}) {
        HostOptions options;
        options.extensions = true;
        Session session(options);
        const Picture source = Disc(kAtZero, depth);
        const Picture expected = FromLibrary(source, ManySettings());
        EXPECT_EQ(Difference(FromPlugIn(session, {source}, ManySettings()), expected), "");
        Inputs inputs{Exchanged(source)};
        inputs.pixelOrder = "OfxImagePixelOrderBGRA";
        EXPECT_EQ(Difference(FromPlugIn(session, inputs, ManySettings()), Exchanged(expected)), "");
    }
}

TEST(OpenFxFrame, InFloatsIsTheLibrarys) {
    Session session;
    const Picture source = Disc(kElsewhere, Depth::kFloat);
    EXPECT_EQ(Difference(FromPlugIn(session, {source}, ManySettings()), FromLibrary(source, ManySettings())), "");
}

Picture Premultiplied(Picture picture) {
    for (std::size_t i = 0; i < picture.channels.size(); i += 4) {
        for (std::size_t c = 0; c < 3; ++c) picture.channels[i + c] *= picture.channels[i + 3];
    }
    return picture;
}

TEST(OpenFxFrame, PremultipliedIsTheStraightOneMultiplied) {
    Session session;
    const Picture source = Disc(kElsewhere, Depth::kFloat);
    const Picture straight = FromPlugIn(session, {source}, ManySettings());
    EXPECT_EQ(session.TheInstance().OutputPremultiplication(), kStraight);
    Inputs inputs{Premultiplied(source)};
    inputs.premultiplication = kPremultiplied;
    const Picture multiplied = FromPlugIn(session, inputs, ManySettings());
    EXPECT_EQ(session.TheInstance().OutputPremultiplication(), kPremultiplied);
    EXPECT_EQ(Difference(multiplied, Premultiplied(straight), 1e-6f), "");
}

TEST(OpenFxFrame, AtHalfScaleIsTheLibrarysAtHalfResolution) {
    for (const OfxRectI& bounds : {OfxRectI{0, 0, 32, 24}, OfxRectI{-4, 6, 28, 30}}) {
        Session session;
        Inputs inputs{Disc(bounds)};
        inputs.scaleX = inputs.scaleY = 0.5;
        const Picture actual = FromPlugIn(session, inputs, ManySettings());
        umbrant::FrameOptions half;
        half.downsample = 2;
        const Picture expected = FromLibrary(inputs.source, ManySettings(), half);
        // The region may be larger by what rounding to whole canonical pixels adds; there is nothing there.
        Picture placed(actual.bounds, actual.depth);
        for (int y = expected.bounds.y1; y < expected.bounds.y2; ++y) {
            for (int x = expected.bounds.x1; x < expected.bounds.x2; ++x) {
                ASSERT_TRUE(Contains(placed.bounds, x, y)) << "the region is too small at " << x << ", " << y;
                std::copy_n(expected.At(x, y), 4, placed.At(x, y));
            }
        }
        EXPECT_EQ(Difference(actual, placed), "");
    }
}

TEST(OpenFxFrame, HasATexture) {
    const Settings settings = With(ManySettings(), {{"texture/blend-mode", "multiply"}, {"texture/strength", "80"}});
    Picture texture = Disc(kAtZero);
    std::reverse(texture.channels.begin(), texture.channels.end());
    const Picture source = Disc(kAtZero);
    for (const std::string context : {kFilter, kGeneral}) {
        Session session({}, context);
        Inputs inputs{source, texture};
        const Picture actual = FromPlugIn(session, inputs, settings);
        EXPECT_EQ(Difference(actual, FromLibrary(source, settings, {}, &texture)), "");
        EXPECT_NE(Difference(actual, FromLibrary(source, settings)), "") << "the texture changes nothing";
        session.TheInstance().Connect({source});
        EXPECT_EQ(Difference(session.TheInstance().Render().output, FromLibrary(source, settings)), "");
    }
}

TEST(OpenFxFrame, FollowsKeys) {
    Session session;
    const Picture source = Disc(kAtZero);
    session.TheInstance().Connect({source});
    session.Apply(ManySettings(), source.bounds);
    session.TheInstance().FindParam("style_distance")->SetKey(0, {10.0});
    session.TheInstance().FindParam("style_distance")->SetKey(10, {30.0});
    session.TheInstance().FindParam("style_color")->SetKey(0, {0.0, 0.0, 0.0});
    session.TheInstance().FindParam("style_color")->SetKey(4, {0.0, 1.0, 0.2});
    FrameOptions options;
    options.time = 4;
    const Frame frame = session.TheInstance().Render(options);
    EXPECT_EQ(frame.status, kOfxStatOK);
    const Settings then = With(ManySettings(), {{"style/distance", "18"}, {"style/color", "#00ff33"}});
    EXPECT_EQ(Difference(frame.output, FromLibrary(source, then)), "");
}

TEST(OpenFxFrame, EightAtOnce) {
    Session session;
    const Picture source = Disc(kElsewhere);
    session.TheInstance().Connect({source});
    session.Apply(ManySettings(), source.bounds);
    session.TheInstance().FindParam("style_distance")->SetKey(0, {10.0});
    session.TheInstance().FindParam("style_distance")->SetKey(10, {20.0});
    std::vector<Frame> frames(8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            FrameOptions options;
            options.time = i;
            options.negativeRows = i % 2 == 1;
            frames[static_cast<std::size_t>(i)] = session.TheInstance().Render(options);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < 8; ++i) {
        const Frame& frame = frames[static_cast<std::size_t>(i)];
        EXPECT_EQ(frame.status, kOfxStatOK);
        const Settings then = With(ManySettings(), {{"style/distance", std::to_string(10 + i)}});
        EXPECT_EQ(Difference(frame.output, FromLibrary(source, then)), "") << i;
    }
}

TEST(OpenFxFrame, IsTheOneOfTheProgram) {
    const Picture source = Disc(kAtZero);
    const host::Folder folder;
    host::World layer = host::World::Create(64, 48, host::Depth::k8);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const float* from = source.At(x, 47 - y);
            const auto byte = [&](int c) { return static_cast<std::uint8_t>(from[c]); };
            const std::uint8_t argb[] = {byte(3), byte(0), byte(1), byte(2)};
            std::memcpy(layer.Row(y) + 4 * x, argb, 4);
        }
    }
    ASSERT_TRUE(host::WritePicture(folder / "in.png", std::move(layer), {{0, 0, 64, 48}, 64, 48}));
    std::vector<std::string> arguments = {"render",     "in.png", "-o", "out.png", "--module", UMBRANT_MODULE_FILE,
                                          "--renderer", "cpu"};
    for (const auto& [path, value] : ManySettings()) arguments.insert(arguments.end(), {"--set", path + "=" + value});
    const host::Outcome outcome = host::RunUmbrant(folder, arguments);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    host::Picture drawn = host::Read(folder / "out.png");
    Session session;
    const Picture actual = FromPlugIn(session, {source}, ManySettings());
    Picture expected(actual.bounds, Depth::kByte);
    ASSERT_EQ(drawn.pixels.Width(), WidthOf(actual.bounds));
    ASSERT_EQ(drawn.pixels.Height(), HeightOf(actual.bounds));
    for (int y = 0; y < HeightOf(actual.bounds); ++y) {
        for (int x = 0; x < WidthOf(actual.bounds); ++x) {
            const PF_Pixel& pixel = host::Pixel8(drawn.pixels, x, y);
            const std::uint8_t rgba[] = {pixel.red, pixel.green, pixel.blue, pixel.alpha};
            std::copy_n(rgba, 4, expected.At(actual.bounds.x1 + x, actual.bounds.y2 - 1 - y));
        }
    }
    EXPECT_EQ(Difference(actual, expected), "");
}

}  // namespace
}  // namespace umbrant::ofx
