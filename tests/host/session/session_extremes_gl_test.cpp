// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What users come upon sooner or later: layers of no pixels and of very many, pixels that are not numbers, many threads
// at once and threads that live for one frame. UMBRANT_SOAK in the environment makes the counts those of a long run.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/compositing/rectangles.h"
#include "host/session/effect_session.h"
#include "hostapi/errors.h"
#include "hostapi/limits.h"
#include "tests/support/resident_memory.h"

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::array<const char*, 3> kTypes = {"normal", "inner", "radial"};

/// How often something is done: `light` in a test run, `heavy` in a soak.
int Times(int light, int heavy) {
    return std::getenv("UMBRANT_SOAK") ? heavy : light;
}

/// Every byte of the pixels, without what lies between rows.
std::vector<std::byte> PixelsOf(const World& world) {
    std::vector<std::byte> bytes;
    const int row = world.Width() * BytesPerPixel(world.PixelDepth());
    for (int y = 0; y < world.Height(); ++y) bytes.insert(bytes.end(), world.Row(y), world.Row(y) + row);
    return bytes;
}

class Extremes : public ::testing::Test {
 protected:
    void SetUp() override {
        module_.emplace(Module::Load(UMBRANT_MODULE_FILE));
        ASSERT_TRUE(*module_) << module_->error().sentence;
        Result<EffectSession> started = EffectSession::Start(**module_);
        ASSERT_TRUE(started) << started.error().sentence;
        session_.emplace(*std::move(started));
        constexpr int kVendorRow = 6;
        if (session_->Params().Row(kVendorRow).items == std::vector<std::string>{"NULL"}) {
            GTEST_SKIP() << "no OpenGL context can be made on this machine";
        }
        for (const auto& [path, text] : {std::pair{"style/distance", "10"},
                                         {"style/softness", "8"},
                                         {"quality/samples", "3"},
                                         {"quality/resolution", "extreme"}}) {
            Set(path, text);
        }
    }
    void TearDown() override {
        if (!session_) return;
        EXPECT_THAT(session_->Misbehaviour(), IsEmpty());
        session_.reset();
    }

    void Set(const std::string& path, const std::string& text) {
        const Result<Done> set = session_->Params().SetFromText(path, text);
        ASSERT_TRUE(set) << set.error().sentence;
    }

    /// A layer with an opaque middle.
    static World Square(int width, int height, Depth depth) {
        World layer = World::Create(width, height, depth);
        for (int y = height / 4; y < height - height / 4; ++y) {
            for (int x = width / 4; x < width - width / 4; ++x) {
                if (depth == Depth::k8) RowOf<PF_Pixel>(layer.Def(), y)[x] = {255, 200, 100, 50};
                if (depth == Depth::k32) RowOf<PF_PixelFloat>(layer.Def(), y)[x] = {1, 0.75f, 0.5f, 0.25f};
            }
        }
        return layer;
    }

    static void ExpectEven(const Frame& frame) {
        for (const CommandRecord& record : frame.commands) {
            EXPECT_TRUE(record.balance.IsBalanced()) << record.balance.Text();
        }
    }

    std::optional<Result<Module>> module_;
    std::optional<EffectSession> session_;
};

TEST_F(Extremes, LayersOfNoOrOnePixelAreDrawn) {
    const std::array<PF_Point, 7> sizes = {
        {{{0}, {0}}, {{0}, {5}}, {{5}, {0}}, {{1}, {1}}, {{1}, {40}}, {{40}, {1}}, {{2}, {2}}}};
    for (const char* type : kTypes) {
        Set("style/shadow-type", type);
        for (const Depth depth : {Depth::k8, Depth::k32}) {
            for (const PF_Point& size : sizes) {
                SCOPED_TRACE(std::string(type) + " " + std::to_string(size.x) + " x " + std::to_string(size.y) +
                             " at " + std::to_string(static_cast<int>(depth)) + " bits");
                const World layer = World::Create(size.x, size.y, depth);
                const auto frame = session_->Render({.layer = &layer});
                ASSERT_TRUE(frame) << frame.error().sentence;
                ExpectEven(*frame);
                if (size.x == 0 || size.y == 0) {
                    EXPECT_THAT(frame->message, ::testing::AnyOf("", "UM2 Error: in/out FBO too small"));
                } else {
                    EXPECT_EQ(frame->message, "");
                }
                EXPECT_THAT(PixelsOf(frame->output), ::testing::Each(std::byte{0})) << "a clear layer has no shadow";
            }
        }
    }
}

TEST_F(Extremes, ThirtyThousandPixelsInARow) {
    const World whole = Square(PF_MAX_WORLD_WIDTH, 2, Depth::k8);
    const auto beyond = session_->Render({.layer = &whole, .canvas = Canvas::kLayer});
    ASSERT_FALSE(beyond) << "with its shadow it would be wider than any world";
    EXPECT_EQ(beyond.error().sentence, "Umbrant 2 requests an image larger than 30000 x 30000 pixels");

    // As wide as a layer may be for its shadow to end where worlds end.
    const World probe = Square(100, 2, Depth::k8);
    const auto asked = session_->PreRender({.layer = &probe, .canvas = Canvas::kLayer});
    ASSERT_TRUE(asked) << asked.error().sentence;
    const int growth = WidthOf(asked->resultRect) - 100;
    const World layer = Square(PF_MAX_WORLD_WIDTH - growth, 2, Depth::k8);
    const auto frame = session_->Render({.layer = &layer, .canvas = Canvas::kLayer});
    if (frame) {
        EXPECT_EQ(frame->output.Width(), PF_MAX_WORLD_WIDTH);
        ExpectEven(*frame);
        return;
    }
    EXPECT_EQ(frame.error().kind, ErrorKind::kEffect);
    EXPECT_THAT(frame.error().sentence, HasSubstr("FBO bad, res: 30000 ")) << "the effect's own words";
    EXPECT_THAT(frame.error().sentence, HasSubstr("(error 4, PF_Err_OUT_OF_MEMORY)"));
    EXPECT_THAT(frame.error().sentence, HasSubstr("many OpenGL drivers support at most 16384 x 16384"));
    // The next frame is drawn as if nothing had been.
    const World small = Square(16, 16, Depth::k8);
    const auto next = session_->Render({.layer = &small});
    ASSERT_TRUE(next) << next.error().sentence;
    EXPECT_EQ(next->message, "");
}

TEST_F(Extremes, WideRequestsOfSmallLayers) {
    const World layer = Square(16, 16, Depth::k8);
    constexpr A_long kFar = std::numeric_limits<A_long>::max();
    const std::array<PF_LRect, 5> regions = {{{-15000, -2, 15000, 2},
                                              {0, 0, 30000, 1},
                                              {-30000, -30000, 30000, 30000},
                                              {29000, 0, 30000, 10},
                                              {kFar - 10, kFar - 10, kFar, kFar}}};
    for (const char* type : kTypes) {
        Set("style/shadow-type", type);
        for (const PF_LRect& region : regions) {
            SCOPED_TRACE(std::string(type) + " from " + std::to_string(region.left) + " to " +
                         std::to_string(region.right));
            const auto frame = session_->Render({.layer = &layer, .region = region});
            ASSERT_TRUE(frame) << frame.error().sentence;
            EXPECT_LE(frame->output.Width(), 200) << "no wider than layer and shadow";
            ExpectEven(*frame);
        }
    }
}

/// A pixel of the layer that is no number must not be seen farther away than the shadow reaches.
class NoNumber : public Extremes, public ::testing::WithParamInterface<float> {};

TEST_P(NoNumber, StaysWithinTheShadowsReach) {
    constexpr int kX = 48;
    constexpr int kY = 32;
    // Distance 10, and of the softness 8 the quarter and the half that pre-render grows the frame by.
    constexpr int kReach = 10 + 8 / 4 + 8 / 2;
    const World clean = Square(96, 64, Depth::k32);
    World dirty = Square(96, 64, Depth::k32);
    const float value = GetParam();
    RowOf<PF_PixelFloat>(dirty.Def(), kY)[kX] = {value, value, value, value};
    Set("style/origin", "48,32");

    for (const char* type : kTypes) {
        SCOPED_TRACE(type);
        Set("style/shadow-type", type);
        const auto expected = session_->Render({.layer = &clean});
        const auto actual = session_->Render({.layer = &dirty});
        ASSERT_TRUE(expected) << expected.error().sentence;
        ASSERT_TRUE(actual) << actual.error().sentence;
        ASSERT_EQ(PixelsOf(actual->output).size(), PixelsOf(expected->output).size());
        int different = 0;
        for (int y = 0; y < actual->output.Height(); ++y) {
            for (int x = 0; x < actual->output.Width(); ++x) {
                const PF_PixelFloat& a = RowOf<PF_PixelFloat>(actual->output.Def(), y)[x];
                const PF_PixelFloat& e = RowOf<PF_PixelFloat>(expected->output.Def(), y)[x];
                const int layerX = x + actual->rect.left;
                const int layerY = y + actual->rect.top;
                if (layerX != kX || layerY != kY) {
                    ASSERT_TRUE(std::isfinite(a.alpha) && std::isfinite(a.red) && std::isfinite(a.green) &&
                                std::isfinite(a.blue))
                        << layerX << "," << layerY;
                }
                if (std::memcmp(&a, &e, sizeof(a)) == 0) continue;
                ++different;
                ASSERT_LE(std::abs(layerX - kX), kReach) << layerY;
                ASSERT_LE(std::abs(layerY - kY), kReach) << layerX;
            }
        }
        EXPECT_GT(different, 0) << "the pixel itself at least";
    }
}

INSTANTIATE_TEST_SUITE_P(Pixels, NoNumber,
                         ::testing::Values(std::numeric_limits<float>::quiet_NaN(),
                                           std::numeric_limits<float>::infinity(),
                                           -std::numeric_limits<float>::infinity()),
                         [](const auto& row) {
                             if (std::isnan(row.param)) return "NotANumber";
                             return row.param > 0 ? "Infinity" : "MinusInfinity";
                         });

TEST_F(Extremes, FourRenderThreadsAndThePanelBeside) {
    constexpr int kThreads = 4;
    const World layer = Square(64, 48, Depth::k8);
    const Balance open = session_->Open();
    std::vector<ParamSet> params;
    std::vector<std::vector<std::byte>> expected;
    for (const char* type : kTypes) {
        Set("style/shadow-type", type);
        params.push_back(session_->Params());
        const auto frame = session_->Render({.layer = &layer, .params = &params.back()});
        ASSERT_TRUE(frame) << frame.error().sentence;
        expected.push_back(PixelsOf(frame->output));
    }

    const int frames = Times(9, 600);
    std::atomic<int> atWork = kThreads;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < frames; ++i) {
                const auto type = static_cast<std::size_t>(t + i) % kTypes.size();
                const auto frame = session_->Render({.layer = &layer, .params = &params[type]});
                if (!frame || PixelsOf(frame->output) != expected[type]) ++wrong;
            }
            --atWork;
        });
    }
    int commands = 0;
    constexpr int kShadowTypeRow = 14;
    while (atWork > 0) {
        EXPECT_TRUE(session_->UpdateParamsUI());
        EXPECT_TRUE(session_->UserChangedParam(kShadowTypeRow));
        EXPECT_TRUE(session_->About());
        commands += 3;
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0) << "frames that failed or were not the same as on one thread, of " << kThreads * frames;
    EXPECT_GT(commands, 0);
    EXPECT_EQ(session_->Open(), open) << session_->Open().Text();
}

TEST_F(Extremes, ThreadsThatLiveForOneFrame) {
    const World layer = Square(32, 24, Depth::k8);
    const auto first = session_->Render({.layer = &layer});
    ASSERT_TRUE(first) << first.error().sentence;
    const std::vector<std::byte> expected = PixelsOf(first->output);
    const Balance open = session_->Open();
    const auto live = [&](int threads) {
        for (int i = 0; i < threads; ++i) {
            std::thread([&] {
                const auto frame = session_->Render({.layer = &layer});
                ASSERT_TRUE(frame) << frame.error().sentence;
                ASSERT_EQ(PixelsOf(frame->output), expected);
            }).join();
        }
    };
    live(Times(8, 100));
    const long before = ResidentBytes();
    const int threads = Times(24, 2000);
    live(threads);
    EXPECT_EQ(session_->Open(), open);
    const double growth = static_cast<double>(ResidentBytes() - before) / threads;
    RecordProperty("bytesPerThread", static_cast<int>(growth));
    std::printf("%d threads, resident memory grew by %.0f bytes a thread\n", threads, growth);
    if (std::getenv("UMBRANT_SOAK")) {
        EXPECT_LT(growth, 16384) << "the record that a thread leaves is far smaller, and so is what drivers keep";
    }
}

}  // namespace

}  // namespace umbrant::host
