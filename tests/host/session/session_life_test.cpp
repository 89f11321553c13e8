// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A session from set-up to set-down, and set-ups that fail.

#include "tests/host/session/session_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<PF_Cmd> Sent(const EffectSession& session) {
    std::vector<PF_Cmd> commands;
    for (const CommandRecord& record : session.Commands()) commands.push_back(record.command);
    return commands;
}

TEST_F(SessionTest, SetsUpAndDownInOrder) {
    Start();
    EXPECT_THAT(Sent(*session), ElementsAre(PF_Cmd_GLOBAL_SETUP, PF_Cmd_PARAMS_SETUP, PF_Cmd_SEQUENCE_SETUP,
                                            PF_Cmd_QUERY_DYNAMIC_FLAGS));
    EXPECT_EQ(session->EffectVersion(), 0x99801u);
    EXPECT_EQ(session->OutFlags(), PF_OutFlag_SEND_UPDATE_PARAMS_UI | PF_OutFlag_NON_PARAM_VARY)
        << "the announced flags, as changed for this instance";
    EXPECT_EQ(session->Commands()[0].balance[Resource::kHandle], 1) << "the global data";
    EXPECT_EQ(session->Open()[Resource::kHandle], 1);
    EXPECT_TRUE(session->End());
    EXPECT_TRUE(session->Open().IsBalanced()) << session->Open().Text();
    EXPECT_TRUE(session->End()) << "a second end does nothing";
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 1);
    EXPECT_EQ(seen->commands[PF_Cmd_SEQUENCE_SETDOWN], 1);
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
    session.reset();
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 1);
}

TEST_F(SessionTest, EndsWhenItIsDestroyed) {
    Start();
    session.reset();
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 1);
}

TEST_F(SessionTest, MovesAlive) {
    Start();
    EffectSession moved = std::move(*session);
    EXPECT_EQ(*moved.About(), "Painter\nfor tests\n");
    Start();
    *session = std::move(moved);
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 1) << "the one that was assigned over";
    EXPECT_EQ(*session->About(), "Painter\nfor tests\n");
}

TEST_F(SessionTest, RecordsTheDeclaration) {
    Start();
    const ParamSet& params = session->Params();
    EXPECT_EQ(params.Count(), PAINTER_COUNT);
    EXPECT_EQ(params.Row(PAINTER_BORDER).path, "paint/border");
    EXPECT_EQ(params.Row(PAINTER_FLAW).items.size(), static_cast<std::size_t>(kPainterFlawCount));
    EXPECT_EQ(params.Row(PAINTER_FLAW).items.front(), "None");
    EXPECT_EQ(params.Row(PAINTER_BUTTON).label, "Press");
    EXPECT_EQ(session->Panel().Rows().at(PAINTER_ANGLE).name, "Angle");
}

TEST_F(SessionTest, PanelCommandsCarryTheValues) {
    Start();
    EXPECT_TRUE(session->UpdateParamsUI());
    EXPECT_EQ(seen->commands[PF_Cmd_UPDATE_PARAMS_UI], 1);
    EXPECT_TRUE(session->UserChangedParam(PAINTER_ANGLE));
    EXPECT_EQ(session->Params().ValueText(PAINTER_BORDER), "0");
    EXPECT_TRUE(session->UserChangedParam(PAINTER_BUTTON));
    EXPECT_EQ(session->Params().ValueText(PAINTER_BORDER), "3") << "what the effect says it changed";
    EXPECT_EQ(session->Params().ValueText(PAINTER_CENTRE), "7,9");
    EXPECT_EQ(session->Params().ValueText(PAINTER_ANGLE), "0") << "not what it changed without saying so";
    const Result<Done> none = session->UserChangedParam(PAINTER_COUNT);
    ASSERT_FALSE(none);
    EXPECT_EQ(none.error().sentence, "there is no parameter #10");
}

TEST_F(SessionTest, ASuitelessHostHandsOutNone) {
    Start({.offerSuites = false});
    const World layer = Picture(2, 2);
    ASSERT_TRUE(session->Render({.layer = &layer}));
    EXPECT_EQ(seen->renderIn.pica_basicP, nullptr);
}

struct FailingSetup {
    const char* module;
    const char* sentence;
};

class FailingSetups : public ::testing::TestWithParam<FailingSetup> {};

TEST_P(FailingSetups, AreSaidInWords) {
    const Result<Module> module = LoadTestModule(GetParam().module);
    ASSERT_TRUE(module);
    const Result<EffectSession> session = EffectSession::Start(*module);
    ASSERT_FALSE(session);
    EXPECT_EQ(session.error().kind, ErrorKind::kEffect);
    EXPECT_EQ(session.error().sentence, GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(
    All, FailingSetups,
    ::testing::Values(
        FailingSetup{"SetupError", "Flawed failed in PF_Cmd_GLOBAL_SETUP: error 512, PF_Err_INTERNAL_STRUCT_DAMAGED"},
        FailingSetup{"SetupThrows", "Flawed failed in PF_Cmd_GLOBAL_SETUP: it threw an exception (no set-up today)"},
        FailingSetup{"NoSmartRender",
                     "Flawed does not support smart rendering, the only kind of rendering that this host supports"},
        FailingSetup{"ParamsError",
                     "Flawed failed in PF_Cmd_PARAMS_SETUP: no parameters today (error 516, "
                     "PF_Err_BAD_CALLBACK_PARAM)"},
        FailingSetup{"WrongCount", "Flawed reports 5 parameters, but declared 2 (the layer counts as one)"},
        FailingSetup{"OpenGroup", "Flawed: the group of row 1 has no end"},
        FailingSetup{"StrayGroupEnd", "Flawed: row 1 ends a group, but none is open"},
        FailingSetup{"BadParamType",
                     "Flawed failed in PF_Cmd_PARAMS_SETUP: error 514, PF_Err_UNRECOGNIZED_PARAM_TYPE"}),
    [](const auto& row) { return row.param.module; });

TEST_F(SessionTest, ARefusedRowEndsTheSetup) {
    int rows = 0;
    SessionOptions options;
    options.fault = [&](std::string_view call) { return call == "interact.add_param" && ++rows == 3 ? 4 : 0; };
    const Result<EffectSession> started = EffectSession::Start(*module_, options);
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().sentence, "Painter failed in PF_Cmd_PARAMS_SETUP: error 4, PF_Err_OUT_OF_MEMORY");
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 1) << "what was set up is set down";
}

}  // namespace

}  // namespace umbrant::host
