// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The real module draws frames in the real host. Pixels are checked elsewhere; this is about the protocol: sizes,
// placement, balance, messages.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "host/compositing/rectangles.h"
#include "host/session/effect_session.h"
#include "tests/host/session/unchanged_layers.h"

namespace umbrant::host {

namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

class UmbrantDraws : public ::testing::TestWithParam<Depth> {
 protected:
    UmbrantDraws() : module_(Module::Load(UMBRANT_MODULE_FILE)) {}

    void SetUp() override { Open({}); }
    void Open(SessionOptions options) {
        ASSERT_TRUE(module_) << module_.error().sentence;
        session.reset();
        Result<EffectSession> started = EffectSession::Start(*module_, std::move(options));
        ASSERT_TRUE(started) << started.error().sentence;
        session.emplace(*std::move(started));
        constexpr int kVendorRow = 6;
        const char* renderer = std::getenv("UMBRANT_RENDERER");
        const bool processor = renderer && std::string_view(renderer) == "cpu";
        if (!processor && session->Params().Row(kVendorRow).items == std::vector<std::string>{"NULL"}) {
            GTEST_SKIP() << "no OpenGL context can be made on this machine";
        }
        for (const auto& [path, text] : {std::pair{"style/distance", "10"},
                                         {"style/softness", "4"},
                                         {"quality/samples", "4"},
                                         {"style/angle", "135"}}) {
            ASSERT_TRUE(session->Params().SetFromText(path, text));
        }
    }

    /// An opaque square of 8 x 8 in a layer of 12 x 12.
    static World Square(Depth depth) {
        World layer = World::Create(12, 12, depth);
        for (int y = 2; y < 10; ++y) {
            for (int x = 2; x < 10; ++x) {
                if (depth == Depth::k8) RowOf<PF_Pixel>(layer.Def(), y)[x] = {255, 200, 100, 50};
                if (depth == Depth::k32) RowOf<PF_PixelFloat>(layer.Def(), y)[x] = {1, 0.75f, 0.5f, 0.25f};
            }
        }
        return layer;
    }
    static float AlphaAt(const Frame& frame, int x, int y) {
        const PF_EffectWorld& world = frame.output.Def();
        x -= frame.rect.left;
        y -= frame.rect.top;
        return frame.output.PixelDepth() == Depth::k8 ? static_cast<float>(RowOf<PF_Pixel>(world, y)[x].alpha) / 255
                                                      : RowOf<PF_PixelFloat>(world, y)[x].alpha;
    }

    Result<Module> module_;
    std::optional<EffectSession> session;
};

TEST_P(UmbrantDraws, AShadowBesideItsLayer) {
    const World layer = Square(GetParam());
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame) << frame.error().sentence;
    EXPECT_EQ(frame->output.Width(), WidthOf(frame->rect));
    EXPECT_EQ(frame->output.Height(), HeightOf(frame->rect));
    EXPECT_TRUE(Same(frame->rect, frame->maxRect)) << "everything was asked for";
    EXPECT_LE(frame->rect.left, 0);
    EXPECT_GE(frame->rect.right, 12 + 7) << "135 degrees is down to the right";
    EXPECT_GE(frame->rect.bottom, 12 + 7);
    EXPECT_NEAR(AlphaAt(*frame, 5, 5), 1, 0.004) << "the layer in front";
    EXPECT_GT(AlphaAt(*frame, 12, 12), 0.05) << "the shadow beside it";
    EXPECT_NEAR(AlphaAt(*frame, frame->rect.left, frame->rect.top), 0, 0.004);
    EXPECT_EQ(frame->message, "");
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
    EXPECT_THAT(session->RefusedSuites(), IsEmpty());
    EXPECT_THAT(frame->suites, Contains("PF World Transform Suite 1"));
    for (const CommandRecord& record : frame->commands)
        EXPECT_TRUE(record.balance.IsBalanced()) << record.balance.Text();
    EXPECT_TRUE(session->End());
    EXPECT_TRUE(session->Open().IsBalanced()) << session->Open().Text();
}

TEST_P(UmbrantDraws, EveryShadowTypeWithATextureAndNothingLeftOpen) {
    const World layer = Square(GetParam());
    const World texture = Square(GetParam());
    for (const char* type : {"normal", "inner", "radial"}) {
        ASSERT_TRUE(session->Params().SetFromText("style/shadow-type", type));
        const Result<Frame> frame =
            session->Render({.layer = &layer, .texture = &texture, .textureOrigin = {{3}, {-2}}});
        EXPECT_TRUE(frame) << type << ": " << frame.error().sentence;
    }
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
}

TEST_P(UmbrantDraws, WritesIntoNoLayer) {
    ExpectLayersUnchanged(*session, GetParam());
}

TEST_P(UmbrantDraws, ARegionIsTheSamePictureSmaller) {
    const World layer = Square(GetParam());
    const Result<Frame> whole = session->Render({.layer = &layer, .canvas = Canvas::kLayer});
    const Result<Frame> again = session->Render({.layer = &layer, .region = PF_LRect{0, 0, 12, 12}});
    ASSERT_TRUE(whole && again);
    EXPECT_TRUE(Same(whole->rect, again->rect));
    for (int i = 0; i < 12; ++i) EXPECT_EQ(AlphaAt(*whole, i, 11 - i), AlphaAt(*again, i, 11 - i));
}

TEST_P(UmbrantDraws, AFailingHostCallEndsTheRenderWithItsErrorAndNothingOpen) {
    struct Row {
        const char* call;
        PF_Err error;
    };
    const Row rows[] = {
        {"interact.checkout_param", 513},
        {"pre-render.checkout_layer", 517},
        {"smart-render.checkout_layer_pixels", 4},
        {"smart-render.checkout_output", 4},
        {"smart-render.checkout_output", 515},
        {"utils.fill", 516},
        {"PF World Transform Suite.transfer_rect", 516},
        {"AcquireSuite:PF World Transform Suite", 13},
    };
    const World layer = Square(GetParam());
    for (const Row& row : rows) {
        SessionOptions options;
        options.fault = [row](std::string_view call) { return call == row.call ? row.error : 0; };
        Open(options);
        const Result<Frame> frame = session->Render({.layer = &layer});
        ASSERT_FALSE(frame) << row.call;
        if (row.error == PF_Err_OUT_OF_MEMORY) {
            // The same message as for any other want of memory.
            EXPECT_EQ(frame.error().kind, ErrorKind::kInternal) << row.call;
            EXPECT_THAT(frame.error().sentence, ::testing::StartsWith("not enough memory for drawing an image of "));
            EXPECT_THAT(session->Misbehaviour(), IsEmpty()) << row.call;
            continue;
        }
        EXPECT_EQ(frame.error().kind, ErrorKind::kEffect);
        // A suite that is missing is always the same error to the effect.
        const int expected = std::string_view(row.call).starts_with("AcquireSuite") ? 516 : row.error;
        EXPECT_THAT(frame.error().sentence, ::testing::HasSubstr("error " + std::to_string(expected) + ","))
            << row.call;
        EXPECT_THAT(session->Misbehaviour(), IsEmpty()) << row.call;
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, UmbrantDraws, ::testing::Values(Depth::k8, Depth::k32),
                         [](const auto& row) { return "Bits" + std::to_string(static_cast<int>(row.param)); });

}  // namespace

}  // namespace umbrant::host
