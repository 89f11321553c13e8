// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The rows that follow "Shadow Type", and the buttons.

#include "entry/panel.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "entry/addresses.h"
#include "tests/entry/panel_host.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class PanelTest : public PanelHostTest {};

void AddHiding(int index, bool hide, std::vector<std::string>* calls) {
    const std::string row = std::to_string(index);
    calls->push_back("GetStream 0 " + row);
    calls->push_back("SetFlag " + row + " 2 0 " + (hide ? "1" : "0"));
    calls->push_back("DisposeStream " + row);
}

/// Everything that one update asks of the host, in order.
std::vector<std::string> ExpectedCalls(A_long type) {
    std::vector<std::string> calls = {"GetNewEffectForEffect 0 own"};
    for (int index = 53; index <= 60; ++index) AddHiding(index, true, &calls);
    AddHiding(46, true, &calls);
    AddHiding(20, type != 2, &calls);
    const std::string looks = type == 2 ? " disabled collapsed" : " enabled collapsed";
    calls.push_back("UpdateParamUI 49" + looks);
    calls.push_back("UpdateParamUI 50" + looks);
    if (type < 3) {
        AddHiding(15, false, &calls);
        AddHiding(16, true, &calls);
        calls.push_back("UpdateParamUI 50 enabled collapsed");
    } else {
        calls.push_back("UpdateParamUI 15 enabled collapsed");
        AddHiding(15, true, &calls);
        AddHiding(16, false, &calls);
        calls.push_back("UpdateParamUI 50 disabled collapsed");
    }
    calls.push_back("DisposeEffect");
    return calls;
}

struct TypeRow {
    const char* name;
    A_long type;
    bool blendModeHidden, angleHidden, angleCollapsed, originHidden, sourceOpacityDisabled, offsetShadowDisabled;
};

const TypeRow kTypes[] = {
    {"Normal", 1, true, false, false, true, false, false},
    {"Inner", 2, false, false, false, true, true, false},
    {"Radial", 3, true, true, true, false, false, true},
    {"a type below the first", 0, true, false, false, true, false, false},
    {"a type above the last", 4, true, true, true, false, false, true},
};

TEST_F(PanelTest, RowsFollowTheShadowType) {
    for (const TypeRow& row : kTypes) {
        SCOPED_TRACE(row.name);
        rows.clear();
        host.calls.clear();
        EXPECT_EQ(Update(row.type), PF_Err_NONE);
        EXPECT_EQ(rows[20].hidden, row.blendModeHidden);
        EXPECT_EQ(rows[15].hidden, row.angleHidden);
        EXPECT_EQ(rows[15].collapsed, row.angleCollapsed);
        EXPECT_EQ(rows[16].hidden, row.originHidden);
        EXPECT_EQ(rows[49].disabled, row.sourceOpacityDisabled);
        EXPECT_EQ(rows[50].disabled, row.offsetShadowDisabled);
        EXPECT_FALSE(rows[15].disabled || rows[16].disabled || rows[20].disabled);
        for (int index : {46, 53, 54, 55, 56, 57, 58, 59, 60}) EXPECT_TRUE(rows[index].hidden) << index;
        EXPECT_EQ(rows.size(), 14u) << "no other row is touched";
        EXPECT_THAT(HostCalls(), ElementsAreArray(ExpectedCalls(row.type)));
        EXPECT_EQ(openEffects, 0);
        EXPECT_EQ(openStreams, 0);
        ExpectBalanced();
    }
}

TEST_F(PanelTest, NothingOpensTheTwirlOfAngleAgain) {
    EXPECT_EQ(Update(3), PF_Err_NONE);
    EXPECT_TRUE(rows[15].collapsed);
    EXPECT_EQ(Update(1), PF_Err_NONE);
    EXPECT_TRUE(rows[15].collapsed);
    EXPECT_FALSE(rows[15].hidden);
    EXPECT_TRUE(rows[16].hidden);
    EXPECT_FALSE(rows[50].disabled);
}

TEST_F(PanelTest, AnInnerShadowDisablesOffsetShadowAndEnablesItAgain) {
    EXPECT_EQ(Update(2), PF_Err_NONE);
    std::vector<std::string> calls;
    for (const std::string& call : HostCalls()) {
        if (call.starts_with("UpdateParamUI 50")) calls.push_back(call);
    }
    EXPECT_THAT(calls, ElementsAre("UpdateParamUI 50 disabled collapsed", "UpdateParamUI 50 enabled collapsed"));
}

TEST_F(PanelTest, AsksForEachOfFiveSuitesWhereItIsNeeded) {
    EXPECT_EQ(Update(3), PF_Err_NONE);
    EXPECT_THAT(Suites("AcquireSuite"),
                ElementsAre("AEGP PF Interface Suite", "AEGP Stream Suite", "AEGP Dynamic Stream Suite",
                            "PF Param Utils Suite", "AEGP Effect Suite"));
    EXPECT_EQ(Suites("ReleaseSuite").size(), 5u);
    const auto place = [this](const std::string& call) {
        return std::find(host.calls.begin(), host.calls.end(), call) - host.calls.begin();
    };
    EXPECT_EQ(place("AcquireSuite AEGP PF Interface Suite 1"), 0);
    EXPECT_EQ(place("AcquireSuite AEGP Stream Suite 7") + 1, place("GetStream 0 53"));
    EXPECT_EQ(place("GetStream 0 53") + 1, place("AcquireSuite AEGP Dynamic Stream Suite 2")) << "the stream first";
    EXPECT_EQ(place("AcquireSuite AEGP Dynamic Stream Suite 2") + 1, place("SetFlag 53 2 0 1"));
    EXPECT_EQ(place("AcquireSuite PF Param Utils Suite 3") + 1, place("UpdateParamUI 49 enabled collapsed"));
    EXPECT_EQ(place("AcquireSuite AEGP Effect Suite 2") + 1, place("DisposeEffect"));
}

// Every call of every type, failed in its turn: its error comes back, nothing but the disposal of the effect follows.
TEST_F(PanelTest, StopsAtTheFirstError) {
    for (const TypeRow& row : kTypes) {
        const std::vector<std::string> all = ExpectedCalls(row.type);
        for (size_t at = 0; at + 1 < all.size(); ++at) {
            SCOPED_TRACE(std::string(row.name) + ", call " + std::to_string(at) + ": " + all[at]);
            failing = all[at].substr(0, all[at].find(' '));
            failingCount = 0;
            for (size_t i = 0; i <= at; ++i) failingCount += all[i].starts_with(failing + " ");
            failure = 4711;
            openStreams = 0;
            host.calls.clear();
            ResetCounts();
            EXPECT_EQ(Update(row.type), 4711);
            std::vector<std::string> expected(all.begin(), all.begin() + static_cast<ptrdiff_t>(at) + 1);
            const bool obtained = at > 0;
            if (obtained) expected.push_back("DisposeEffect");
            EXPECT_THAT(HostCalls(), ElementsAreArray(expected));
            EXPECT_EQ(openEffects, 0);
            // The stream of a flag that cannot be set is left behind, and no other.
            EXPECT_EQ(openStreams, failing == "SetFlag" ? 1 : 0);
            ExpectBalanced();
        }
    }
}

TEST_F(PanelTest, TheDisposalsErrorComesBackWhenThereIsNoOther) {
    failing = "DisposeEffect";
    failure = 88;
    EXPECT_EQ(Update(1), 88);
    EXPECT_EQ(HostCalls().back(), "DisposeEffect");

    // With an earlier error, that one.
    ResetCounts();
    alsoFailing = "UpdateParamUI";
    EXPECT_EQ(Update(1), 99);
    EXPECT_EQ(HostCalls().back(), "DisposeEffect");
    ExpectBalanced();
}

TEST_F(PanelTest, NullReferencesAreNotDisposedOf) {
    giveNoEffect = giveNoStream = true;
    EXPECT_EQ(Update(1), PF_Err_NONE);
    EXPECT_EQ(host.CountOf("DisposeEffect"), 0);
    EXPECT_EQ(host.CountOf("DisposeStream"), 0);
    EXPECT_EQ(host.CountOf("SetFlag"), 12) << "set all the same";
    ExpectBalanced();
}

TEST_F(PanelTest, EveryMissingSuiteIs516AndLeavesNothingOpen) {
    for (const char* name :
         {"AEGP PF Interface Suite", "AEGP Stream Suite", "AEGP Dynamic Stream Suite", "PF Param Utils Suite"}) {
        SCOPED_TRACE(name);
        host.Refuse(name);
        EXPECT_EQ(Update(1), 516);
        EXPECT_EQ(openEffects, 0);
        EXPECT_EQ(openStreams, 0);
        ExpectBalanced();
        host.Allow(name);
    }
}

// It is needed for the disposal alone, so the rows have changed; without it the reference cannot be given back.
TEST_F(PanelTest, AMissingEffectSuiteLeavesTheRowsChanged) {
    host.Refuse("AEGP Effect Suite");
    for (const TypeRow& row : kTypes) {
        SCOPED_TRACE(row.name);
        host.calls.clear();
        EXPECT_EQ(Update(row.type), 516);
        std::vector<std::string> expected = ExpectedCalls(row.type);
        expected.pop_back();
        EXPECT_THAT(HostCalls(), ElementsAreArray(expected));
        ExpectBalanced();
    }
    failing = "SetFlag";
    failure = 4711;
    ResetCounts();
    EXPECT_EQ(Update(1), 4711) << "an earlier error wins";
}

TEST_F(PanelTest, CollapseParamChangesOneFlagOfACopy) {
    AEGP_SuiteHandler suites(&host.basic);
    for (const unsigned char collapse : {0, 1, 200}) {
        for (const PF_ParamFlags before : {0, 0x20, -1, 0x7FFFFFDF}) {
            params[33].flags = before;
            const PF_ParamDef untouched = params[33];
            EXPECT_EQ(collapseParam(&host.inData, &suites, pointers.data(), PF_Param_ANGLE, 33, collapse), 0);
            EXPECT_EQ(std::memcmp(&params[33], &untouched, sizeof(untouched)), 0) << "the original stays";
            PF_ParamDef expected = untouched;
            expected.param_type = PF_Param_ANGLE;
            expected.flags = collapse ? before | 0x20 : before & ~0x20;
            EXPECT_EQ(std::memcmp(&updates.back(), &expected, sizeof(expected)), 0);
        }
    }
    EXPECT_TRUE(HostCalls().back().starts_with("UpdateParamUI 33")) << HostCalls().back();
    failing = "UpdateParamUI";
    failure = 5;
    EXPECT_EQ(collapseParam(&host.inData, &suites, pointers.data(), PF_Param_ANGLE, 33, 1), 5);
}

TEST_F(PanelTest, DisableParamAlwaysCollapses) {
    AEGP_SuiteHandler suites(&host.basic);
    for (const unsigned char disable : {0, 1, 200}) {
        for (const PF_ParamUIFlags before : {0, 0x20, -1, 0x7FFFFFDF}) {
            params[49].flags = before;
            params[49].ui_flags = before;
            const PF_ParamDef untouched = params[49];
            EXPECT_EQ(disableParam(&host.inData, &suites, pointers.data(), PF_Param_FLOAT_SLIDER, 49, disable), 0);
            EXPECT_EQ(std::memcmp(&params[49], &untouched, sizeof(untouched)), 0) << "the original stays";
            PF_ParamDef expected = untouched;
            expected.param_type = PF_Param_FLOAT_SLIDER;
            expected.flags = before | PF_ParamFlag_COLLAPSE_TWIRLY;
            expected.ui_flags = disable ? before | PF_PUI_DISABLED : before & ~PF_PUI_DISABLED;
            EXPECT_EQ(std::memcmp(&updates.back(), &expected, sizeof(expected)), 0);
        }
    }
    failing = "UpdateParamUI";
    failure = 6;
    EXPECT_EQ(disableParam(&host.inData, &suites, pointers.data(), PF_Param_FLOAT_SLIDER, 49, 1), 6);
}

TEST_F(PanelTest, HideStreamHandsTheFlagOn) {
    AEGP_SuiteHandler suites(&host.basic);
    AEGP_EffectRefH effect = nullptr;
    ASSERT_EQ(host.inData.pica_basicP, &host.basic);
    giveNoEffect = true;  // any reference will do
    EXPECT_EQ(hideStream(&suites, 7, &effect, 1), 0);
    EXPECT_EQ(hideStream(&suites, 8, &effect, 0), 0);
    EXPECT_THAT(HostCalls(), ElementsAre("GetStream 0 7", "SetFlag 7 2 0 1", "DisposeStream 7",  //
                                         "GetStream 0 8", "SetFlag 8 2 0 0", "DisposeStream 8"));
    EXPECT_EQ(Suites("AcquireSuite").size(), 2u) << "kept by the caller's cache";
    EXPECT_THAT(Suites("ReleaseSuite"), IsEmpty());
    failing = "DisposeStream";
    failure = 12;
    EXPECT_EQ(hideStream(&suites, 9, &effect, 1), 12);
}

struct ButtonRow {
    PF_ParamIndex index;
    const char* address;
};

TEST_F(PanelTest, ButtonsOpenTheirPages) {
    const ButtonRow buttons[] = {{3, kProductUrl}, {4, kFreePluginsUrl}, {5, kSupportUrl}};
    for (const ButtonRow& button : buttons) {
        fake::ClearCalls();
        EXPECT_EQ(Press(button.index), PF_Err_NONE);
        EXPECT_THAT(fake::Calls(), ElementsAre(std::string("OpenUrl ") + button.address));
    }
    EXPECT_STRNE(kProductUrl, kFreePluginsUrl);
    EXPECT_STRNE(kProductUrl, kSupportUrl);
    EXPECT_STRNE(kFreePluginsUrl, kSupportUrl);
    EXPECT_THAT(HostCalls(), IsEmpty());
    ExpectBalanced();
}

TEST_F(PanelTest, OtherRowsOpenNothing) {
    for (PF_ParamIndex index = -3; index <= 70; ++index) {
        if (index >= 3 && index <= 5) continue;
        EXPECT_EQ(Press(index), PF_Err_NONE) << index;
    }
    EXPECT_THAT(fake::Calls(), IsEmpty());
    host.inData.pica_basicP = nullptr;
    for (PF_ParamIndex index : {2, 3, 4, 5, 14}) EXPECT_EQ(Press(index), 516) << index;
    EXPECT_THAT(fake::Calls(), IsEmpty()) << "a button without a host opens nothing either";
}

}  // namespace

}  // namespace umbrant::effect
