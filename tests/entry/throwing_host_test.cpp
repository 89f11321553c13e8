// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Every command against a host each of whose calls throws in its turn. A command runs once undisturbed, to count its
// calls, and then once per call and kind of exception. The throwing call does nothing but throw. Whatever is thrown,
// the command returns an error, and everything that it took is given back.

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "entry/global_data.h"
#include "gl/context.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/pre_render/pre_render.h"
#include "tests/entry/panel_host.h"
#include "tests/render/render_host.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

namespace {

using Lines = std::vector<std::string>;

struct Kind {
    const char* name;
    void (*raise)();
    PF_Err result;  ///< what the command makes of it
};

const Kind kKinds[] = {
    {"an integer", [] { throw PF_Err{4711}; }, 4711},
    {"a standard exception", [] { throw std::runtime_error("inside the host"); }, 512},
    {"something else", [] { throw 3.5; }, 512},
};

/// Whether a call gives something back. One that throws has been made all the same, and is not made again.
bool GivesBack(const std::string& call) {
    const char* const names[] = {"ReleaseSuite ", "host_unlock_handle", "host_dispose_handle", "PF_DisposeWorld",
                                 "checkin_",      "DisposeEffect",      "DisposeStream ",      "ReleaseObject"};
    return std::any_of(std::begin(names), std::end(names), [&](const char* name) { return call.starts_with(name); });
}

/// What the host has open, by the calls that close it.
std::map<std::string, int> OpenThings(const TestHost& host) {
    std::map<std::string, int> open;
    const auto add = [&](const std::string& call, int count) {
        if (count != 0) open[call] = count;
    };
    for (const auto& [key, count] : host.suiteBalance) {
        add("ReleaseSuite " + key.first + " " + std::to_string(key.second), count);
    }
    add("host_unlock_handle", host.liveLocks);
    add("host_dispose_handle", host.liveHandles);
    add("PF_DisposeWorld", host.liveWorlds);
    // A handle whose unlock throws may be disposed of with its lock.
    add("misuse", std::max(0, host.misuses - host.liveLocks));
    return open;
}

void ForgetOpenThings(TestHost* host) {
    host->suiteBalance.clear();
    host->liveLocks = host->liveHandles = host->liveWorlds = host->misuses = 0;
    host->calls.clear();
    host->outData = {};
}

/// A command and what belongs to it.
struct Trial {
    TestHost* host;
    std::function<PF_Err()> command;
    std::function<void()> prepare = [] {};  ///< before each run, with a host that throws nothing
    /// After each run: other balances. The call that threw is given.
    std::function<void(const std::string& call)> check = [](const std::string&) {};
    std::function<bool(const Lines& calls, size_t at, bool fromThereOn)> leftOut = [](const Lines&, size_t, bool) {
        return false;
    };
};

/// Sends the command with each of its calls throwing in its turn: the call alone, and every call from it on.
void ThrowInEveryCall(const Trial& trial) {
    TestHost* host = trial.host;
    ForgetOpenThings(host);
    trial.prepare();
    host->calls.clear();
    const PF_Err undisturbed = trial.command();
    const Lines calls = host->calls;
    ASSERT_FALSE(calls.empty());
    ForgetOpenThings(host);

    for (size_t at = 0; at < calls.size(); ++at) {
        for (const Kind& kind : kKinds) {
            for (const bool fromThereOn : {false, true}) {
                if (trial.leftOut(calls, at, fromThereOn)) continue;
                const std::string& call = calls[at];
                SCOPED_TRACE(call + ", call " + std::to_string(at) + (fromThereOn ? " and all after it" : "") +
                             ", throws " + kind.name);
                trial.prepare();
                host->calls.clear();
                size_t count = 0;
                host->onCall = [&](const std::string&) {
                    ++count;
                    if (fromThereOn ? count > at : count == at + 1) kind.raise();
                };
                PF_Err result = 0;
                EXPECT_NO_THROW(result = trial.command());
                host->onCall = nullptr;
                EXPECT_GT(count, at) << "the call was made";
                EXPECT_TRUE(result == kind.result || (GivesBack(call) && result == undisturbed)) << result;
                if (!fromThereOn) {
                    std::map<std::string, int> expected;
                    if (GivesBack(call) && OpenThings(*host).count(call)) expected[call] = 1;
                    EXPECT_EQ(OpenThings(*host), expected);
                    trial.check(call);
                }
                ForgetOpenThings(host);
            }
        }
    }
}

int LoggedSprintf(A_char*, const A_char*, ...) {
    TestHost::Current().Log("sprintf");
    return 0;
}

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

class ThrowingRenderHost : public ::testing::Test {
 protected:
    ThrowingRenderHost() {
        local_render_data.reset();
        fake::Reset();
        fake::Gl().strings[GL_RENDERER] = "Fake Renderer";
        host.global->context = CreateContext(nullptr, nullptr);
        host.utils.ansi.sprintf = LoggedSprintf;
        for (const ParamIndex index : {PARAM_SAMPLES, PARAM_SOFTNESS, PARAM_DISTANCE}) {
            host.panel[index].u.fs_d.value = 3;
        }
    }
    ~ThrowingRenderHost() override {
        local_render_data.reset();
        DeleteContext(host.global->context);
        fake::Renderer() = RendererChoice::kOpenGL;
        fake::Reset();
    }

    Trial TrialOf(std::function<PF_Err()> command) {
        Trial trial{.host = &host, .command = std::move(command)};
        trial.prepare = [this] { host.layersOut = host.paramsOut = 0; };
        trial.check = [this](const std::string& call) {
            EXPECT_EQ(host.paramsOut, call == "checkin_param" ? 1 : 0);
            EXPECT_EQ(host.layersOut, call.starts_with("checkin_layer_pixels ") ? 1 : 0);
            EXPECT_TRUE(fake::Gl().liveTextures.empty());
            EXPECT_TRUE(fake::Gl().liveFramebuffers.empty());
        };
        trial.leftOut = LeftOut;
        return trial;
    }

    /// All parameters are checked out alike. Intended: an exception inside the destructor of a temporary world ends the
    /// program, and from the construction of one on that destructor calls the host.
    static bool LeftOut(const Lines& calls, size_t at, bool fromThereOn) {
        const bool ofParameter = calls[at].find("_param") != std::string::npos;
        if (ofParameter && calls[at] != "checkin_param" && calls[at] != "checkout_param 1") return true;
        if (calls[at] == "checkin_param" && calls[at - 1] != "checkout_param 1") return true;
        const auto format = std::find(calls.begin(), calls.end(), "PF_GetPixelFormat") - calls.begin();
        if (fromThereOn) return static_cast<ptrdiff_t>(at) > format;
        if (calls[at] == "PF_DisposeWorld") return true;
        return calls[at] == "AcquireSuite PF World Suite 2" && calls[at + 1] == "PF_DisposeWorld";
    }

    PF_Err Send(PF_Cmd command, void* extra) {
        return EffectMain(command, &host.inData, &host.outData, nullptr, nullptr, extra);
    }

    RenderHost host;
};

TEST_F(ThrowingRenderHost, PreRender) {
    for (const A_long type : {1, 2, 3}) {
        host.panel[PARAM_SHADOW_TYPE].u.pd.value = type;
        Trial trial = TrialOf([this] {
            const PF_Err err = Send(PF_Cmd_SMART_PRE_RENDER, &host.preExtra);
            // The host owns the record from the moment that it has it, whatever comes of the command.
            if (host.preOutput.pre_render_data) {
                host.preOutput.delete_pre_render_data_func(host.preOutput.pre_render_data);
            }
            host.preOutput = {};
            return err;
        });
        ThrowInEveryCall(trial);
    }
}

TEST_F(ThrowingRenderHost, Render) {
    TestWorld input8(24, 20, sizeof(PF_Pixel)), input32(24, 20, sizeof(PF_PixelFloat));
    TestWorld output8(32, 28, sizeof(PF_Pixel)), output32(32, 28, sizeof(PF_PixelFloat));
    TestWorld texture8(9, 9, sizeof(PF_Pixel)), texture32(9, 9, sizeof(PF_PixelFloat));
    const struct {
        short depth;
        PF_PixelFormat format;
        TestWorld &input, &texture, &output;
    } depths[] = {{8, PF_PixelFormat_ARGB32, input8, texture8, output8},
                  {32, PF_PixelFormat_ARGB128, input32, texture32, output32}};
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 24; ++x) {
            input8.At8(x, y).alpha = 255;
            input32.AtFloat(x, y).alpha = 1;
        }
    }
    for (const auto& depth : depths) {
        host.renderInput.bitdepth = depth.depth;
        host.pixelFormat = depth.format;
        host.input = &depth.input.world;
        host.texture = &depth.texture.world;
        host.output = &depth.output.world;
        for (const RendererChoice renderer : {RendererChoice::kOpenGL, RendererChoice::kProcessor}) {
            fake::Renderer() = renderer;
            for (const A_long type : {1, 2, 3}) {
                SCOPED_TRACE("depth " + std::to_string(depth.depth) + ", type " + std::to_string(type) +
                             (renderer == RendererChoice::kProcessor ? ", processor" : ", OpenGL"));
                host.panel[PARAM_SHADOW_TYPE].u.pd.value = type;
                ThrowInEveryCall(TrialOf([this] { return Send(PF_Cmd_SMART_RENDER, &host.renderExtra); }));
            }
        }
    }
}

// The messages about buffers that are too small go through the host as well.
TEST_F(ThrowingRenderHost, RenderOfAnEmptyLayer) {
    TestWorld input(24, 20, sizeof(PF_Pixel)), output(32, 28, sizeof(PF_Pixel));
    input.world.width = 0;
    host.input = &input.world;
    host.output = &output.world;
    for (const RendererChoice renderer : {RendererChoice::kOpenGL, RendererChoice::kProcessor}) {
        fake::Renderer() = renderer;
        for (const A_long type : {1, 3}) {
            host.panel[PARAM_SHADOW_TYPE].u.pd.value = type;
            ThrowInEveryCall(TrialOf([this] { return Send(PF_Cmd_SMART_RENDER, &host.renderExtra); }));
        }
    }
}

}  // namespace

}  // namespace umbrant::effect
