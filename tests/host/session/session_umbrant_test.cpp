// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The real module, driven as far as it goes without drawing: a machine without OpenGL passes these too.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "host/compositing/rectangles.h"
#include "host/session/effect_session.h"
#include "tests/host/session/unchanged_layers.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSubsetOf;

class UmbrantTest : public ::testing::Test {
 protected:
    UmbrantTest() : module_(Module::Load(UMBRANT_MODULE_FILE)) {}

    void SetUp() override {
        ASSERT_TRUE(module_) << module_.error().sentence;
        Result<EffectSession> started = EffectSession::Start(*module_);
        ASSERT_TRUE(started) << started.error().sentence;
        session.emplace(*std::move(started));
    }
    void TearDown() override {
        ASSERT_TRUE(session->End());
        EXPECT_TRUE(session->Open().IsBalanced()) << session->Open().Text();
        EXPECT_THAT(session->Misbehaviour(), IsEmpty());
        EXPECT_THAT(session->RefusedSuites(), IsEmpty());
    }
    void Set(const char* path, const char* text) {
        const Result<Done> set = session->Params().SetFromText(path, text);
        ASSERT_TRUE(set) << set.error().sentence;
    }

    Result<Module> module_;
    std::optional<EffectSession> session;
};

TEST_F(UmbrantTest, SaysWhatItIs) {
    EXPECT_EQ(module_->Effect().name, "Umbrant 2");
    EXPECT_EQ(module_->Effect().matchName, "KAUM2");
    EXPECT_EQ(module_->Effect().category, "Halvane");
    EXPECT_EQ(*session->About(), "Umbrant 2 v1.3.3\nSimulates a variety of shadow styles.\n\n");
    EXPECT_EQ(session->EffectVersion(), 0x99801u);
    EXPECT_EQ(session->OutFlags(), 0x04008000);
    EXPECT_EQ(session->OutFlags2(), 0x08201409);
}

TEST_F(UmbrantTest, WritesIntoNoLayer) {
    SessionOptions options;
    options.renderer = UMBRANT_Renderer_PROCESSOR;
    Result<EffectSession> drawing = EffectSession::Start(*module_, options);
    ASSERT_TRUE(drawing) << drawing.error().sentence;
    for (const Depth depth : {Depth::k8, Depth::k32}) ExpectLayersUnchanged(*drawing, depth);
}

TEST_F(UmbrantTest, IsReachedByPaths) {
    const ParamSet& params = session->Params();
    ASSERT_EQ(params.Count(), 61);
    const std::map<const char*, int> rows = {
        {"about-support", 1},
        {"about-support/umbrant-2-v1-3-3", 3},
        {"style/shadow-type", 14},
        {"style/angle", 15},
        {"style/origin", 16},
        {"style/distance", 17},
        {"style/blend-mode", 20},
        {"opacity/opacity-master", 25},
        {"easing/mode", 28},
        {"easing/advanced/distance", 33},
        {"easing/advanced/easing-per-attribute", 31},
        {"texture/layer", 39},
        {"texture/blend-mode", 40},
        {"quality/samples", 44},
        {"compositing/buffer-expansion", 51},
        {"debug/counter", 59},
    };
    for (const auto& [path, index] : rows) {
        const Result<int> found = params.Find(path);
        ASSERT_TRUE(found) << found.error().sentence;
        EXPECT_EQ(*found, index) << path;
    }
    std::set<std::string> paths;
    for (const ParamRow& row : params.Rows()) {
        if (row.path.empty()) continue;
        EXPECT_TRUE(paths.insert(row.path).second) << row.path << " is no name for one row";
    }
    EXPECT_EQ(params.ValueText(14), "normal");
    EXPECT_EQ(params.ValueText(17), "250");
    EXPECT_EQ(params.ValueText(40), "silhouette-luma");
    EXPECT_EQ(params.Row(20).items.size(), 15u);
}

TEST_F(UmbrantTest, LeavesNothingOpenInAnyCommand) {
    ASSERT_TRUE(session->UpdateParamsUI());
    ASSERT_TRUE(session->About());
    for (const CommandRecord& record : session->Commands()) {
        Balance expected;
        if (record.command == PF_Cmd_GLOBAL_SETUP) expected.open[static_cast<std::size_t>(Resource::kHandle)] = 1;
        EXPECT_EQ(record.balance, expected) << record.command << ": " << record.balance.Text();
        EXPECT_EQ(record.error, 0) << record.command;
    }
}

TEST_F(UmbrantTest, PreRenderSaysHowFarTheShadowReaches) {
    Set("style/distance", "0");
    Set("compositing/offset-shadow", "0");
    Set("style/softness", "40");
    const World layer = World::Create(30, 20, Depth::k8);
    const Result<PreRendered> answer = session->PreRender({.layer = &layer});
    ASSERT_TRUE(answer) << answer.error().sentence;
    EXPECT_TRUE(Same(answer->maxRect, {-30, -30, 60, 50})) << "a quarter and a half of the softness on every side";
    EXPECT_TRUE(Same(answer->resultRect, answer->maxRect));
    EXPECT_EQ(answer->flags, PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS);
    ASSERT_EQ(answer->commands.size(), 1u);
    EXPECT_TRUE(answer->commands[0].balance.IsBalanced()) << answer->commands[0].balance.Text();
}

TEST_F(UmbrantTest, PreRenderHalvesAtHalfResolution) {
    Set("style/distance", "0");
    Set("compositing/offset-shadow", "0");
    Set("style/softness", "40");
    const World layer = World::Create(15, 10, Depth::k8);
    const Result<PreRendered> answer = session->PreRender(
        {.layer = &layer, .layerWidth = 30, .layerHeight = 20, .downsampleX = {1, 2}, .downsampleY = {1, 2}});
    ASSERT_TRUE(answer) << answer.error().sentence;
    EXPECT_TRUE(Same(answer->maxRect, {-15, -15, 30, 25}));
}

TEST_F(UmbrantTest, AsksForNoSuiteThatIsNotOffered) {
    ASSERT_TRUE(session->UpdateParamsUI());
    const World layer = World::Create(4, 4, Depth::k8);
    ASSERT_TRUE(session->PreRender({.layer = &layer}));
    EXPECT_THAT(
        session->AcquiredSuites(),
        IsSubsetOf({"AEGP Dynamic Stream Suite 2", "AEGP Effect Suite 2", "AEGP Layer Suite 13",
                    "AEGP PF Interface Suite 1", "AEGP Stream Suite 7", "PF ANSI Suite 1", "PF Effect UI Suite 1",
                    "PF Handle Suite 2", "PF Param Utils Suite 3", "Umbrant Host Suite 1"}));
}

}  // namespace

}  // namespace umbrant::host
