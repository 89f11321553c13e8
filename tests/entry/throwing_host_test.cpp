// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Set-up, set-down and the panel against a host each of whose calls throws in its turn.

#include <string>

#include "entry/global_data.h"
#include "gl/context.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "platform/fake/renderer_choice_fake.h"
#include "tests/entry/panel_host.h"
#include "tests/entry/throwing_calls.h"

namespace umbrant::effect {

namespace {

class ThrowingPanelHost : public PanelHostTest {
 protected:
    ThrowingPanelHost() {
        host.ansiSuite.sprintf = LoggedSprintf;
        host.utils.ansi.sprintf = LoggedSprintf;
        host.inData.inter.add_param = [](PF_ProgPtr, PF_ParamIndex, PF_ParamDefPtr) {
            TestHost::Current().Log("add_param");
            return PF_Err{};
        };
        host.inData.inter.register_ui = [](PF_ProgPtr, PF_CustomUIInfo*) {
            TestHost::Current().Log("register_ui");
            return PF_Err{};
        };
    }

    void ExpectNothingOpen() {
        EXPECT_EQ(openEffects, 0);
        EXPECT_EQ(openStreams, 0);
        EXPECT_EQ(openImages, 0);
    }
};

TEST_F(ThrowingPanelHost, About) {
    ThrowInEveryCall({.host = &host, .command = [this] { return Call(PF_Cmd_ABOUT); }});
}

TEST_F(ThrowingPanelHost, GlobalSetup) {
    Trial trial{.host = &host, .command = {}};
    // What a successful set-up keeps is taken down again, by a host that throws nothing.
    trial.command = [this] {
        const PF_Err err = Call(PF_Cmd_GLOBAL_SETUP);
        host.onCall = nullptr;
        const Lines calls = host.calls;
        EXPECT_EQ(host.outData.global_data == nullptr, err != PF_Err_NONE);
        host.inData.global_data = host.outData.global_data;
        EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), PF_Err_NONE);
        host.calls = calls;
        EXPECT_EQ(fake::Cgl().liveContexts, 0);
        return err;
    };
    ThrowInEveryCall(trial);
}

TEST_F(ThrowingPanelHost, GlobalSetdown) {
    Trial trial{.host = &host, .command = {}};
    trial.prepare = [this] {
        ASSERT_EQ(Call(PF_Cmd_GLOBAL_SETUP), PF_Err_NONE);
        host.inData.global_data = host.outData.global_data;
    };
    // What cannot be locked is left as it is: a second set-down takes it down.
    trial.command = [this] {
        const PF_Err err = Call(PF_Cmd_GLOBAL_SETDOWN);
        host.onCall = nullptr;
        const Lines calls = host.calls;
        EXPECT_EQ(fake::Cgl().liveContexts, host.inData.global_data == nullptr ? 0 : 1);
        EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), PF_Err_NONE);
        host.calls = calls;
        EXPECT_EQ(fake::Cgl().liveContexts, 0);
        EXPECT_EQ(host.inData.global_data, nullptr);
        return err;
    };
    ThrowInEveryCall(trial);
}

TEST_F(ThrowingPanelHost, ParamsSetup) {
    ASSERT_EQ(Call(PF_Cmd_GLOBAL_SETUP), PF_Err_NONE);
    const PF_Handle record = host.outData.global_data;
    host.inData.global_data = record;
    Trial trial{.host = &host, .command = [this] { return Call(PF_Cmd_PARAMS_SETUP); }};
    // All rows are added alike.
    trial.leftOut = [](const Lines& calls, size_t at, bool) {
        return calls[at] == "add_param" && at > 8 && at + 4 < calls.size();
    };
    ThrowInEveryCall(trial);
    host.outData.global_data = record;
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), PF_Err_NONE);
}

// No button needs a suite, so nothing of the host's can throw there but a missing basic suite's own error.
TEST_F(ThrowingPanelHost, UserChangedParam) {
    for (const PF_ParamIndex index : {3, 4, 5, 14}) {
        host.onCall = [](const std::string&) { throw std::runtime_error("inside the host"); };
        EXPECT_EQ(Press(index), PF_Err_NONE);
        host.onCall = nullptr;
        EXPECT_TRUE(host.calls.empty());
        host.inData.pica_basicP = nullptr;
        EXPECT_EQ(Press(index), 516);
        host.inData.pica_basicP = &host.basic;
    }
}

TEST_F(ThrowingPanelHost, UpdateParamsUI) {
    for (const A_long type : {1, 2, 3}) {
        Trial trial{.host = &host, .command = [this, type] { return Update(type); }};
        trial.check = [this](const std::string& call) {
            // The suite that would give the reference back is missing then.
            if (call == "AcquireSuite AEGP Effect Suite 2") openEffects = 0;
            ExpectNothingOpen();
        };
        trial.prepare = [this] { openEffects = openStreams = 0; };
        // The rows of "Debug" are hidden alike.
        trial.leftOut = [](const Lines& calls, size_t at, bool) {
            const auto second = std::find(calls.begin(), calls.end(), "GetStream 0 54") - calls.begin();
            const auto last = std::find(calls.begin(), calls.end(), "GetStream 0 60") - calls.begin();
            return static_cast<ptrdiff_t>(at) >= second && static_cast<ptrdiff_t>(at) < last;
        };
        ThrowInEveryCall(trial);
    }
}

TEST_F(ThrowingPanelHost, Event) {
    PF_EventExtra event{};
    event.e_type = PF_Event_DRAW;
    for (const PF_EffectArea area : {PF_EA_CONTROL, PF_EA_PARAM_TITLE}) {
        event.effect_win.area = area;
        Trial trial{.host = &host, .command = [&] { return Send(&event); }};
        trial.prepare = [&] { event.evt_out_flags = 0; };
        trial.check = [&](const std::string& call) {
            ExpectNothingOpen();
            EXPECT_TRUE(event.evt_out_flags == 0 || GivesBack(call)) << "not handled";
        };
        ThrowInEveryCall(trial);
        // On the failure path too: a step before the release fails, and the release throws.
        failing = "DrawImage";
        failure = 4711;
        if (area == PF_EA_CONTROL) {
            trial.prepare = [&] {
                ResetCounts();
                event.evt_out_flags = 0;
            };
            ThrowInEveryCall(trial);
        }
        failing.clear();
    }
}

TEST_F(ThrowingPanelHost, EventWithAMissingSuite) {
    host.Refuse("DRAWBOT Surface Suite");
    PF_EventExtra event{};
    event.e_type = PF_Event_DRAW;
    ThrowInEveryCall({.host = &host, .command = [&] { return Send(&event); }});
}

}  // namespace

}  // namespace umbrant::effect
