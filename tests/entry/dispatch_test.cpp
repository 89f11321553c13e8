// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which command goes where, how failures come back, and what is held while a frame renders.

#include <array>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstring>
#include <future>
#include <new>
#include <stdexcept>
#include <thread>

#include "entry/global_setup.h"
#include "hostapi/smart_render.h"
#include "tests/entry/entry_fixture.h"

namespace umbrant::effect {

namespace {

// A pre-render or render begins by checking out parameters, so this callback represents everything inside.
std::function<PF_Err()> insideTheCommand;
PF_Err CheckoutParam(PF_ProgPtr, PF_ParamIndex, A_long, A_long, A_u_long, PF_ParamDef*) {
    return insideTheCommand();
}
PF_Err CheckinParam(PF_ProgPtr, PF_ParamDef*) {
    return PF_Err_NONE;
}

class DispatchTest : public EntryTest {
 protected:
    DispatchTest() {
        host.inData.inter.checkout_param = CheckoutParam;
        host.inData.inter.checkin_param = CheckinParam;
        host.inData.downsample_x = {1, 1};
        host.inData.downsample_y = {1, 1};
    }

    PF_Err PreRenderCommand() {
        PF_PreRenderInput input{};
        PF_PreRenderOutput output{};
        PF_PreRenderCallbacks callbacks{};
        PF_PreRenderExtra extra = {&input, &output, &callbacks};
        return Call(PF_Cmd_SMART_PRE_RENDER, &extra);
    }
    PF_Err RenderCommand() {
        PF_SmartRenderInput input{};
        PF_SmartRenderCallbacks callbacks{};
        PF_SmartRenderExtra extra = {&input, &callbacks};
        return Call(PF_Cmd_SMART_RENDER, &extra);
    }
    PF_Err EventCommand(PF_EventType type) {
        PF_EventExtra event{};
        event.e_type = type;
        return Call(PF_Cmd_EVENT, &event);
    }
    PF_Err ButtonCommand(PF_ParamIndex index) {
        PF_UserChangedParamExtra changed = {index};
        return Call(PF_Cmd_USER_CHANGED_PARAM, &changed);
    }
};

TEST_F(DispatchTest, OtherCommandsDoNothing) {
    const PF_Cmd commands[] = {2,  5,  6,  7,  8,  9,  10, 11, 12, 16, 17,  18, 19, 20,  21,   22,      25,
                               26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 255, -1, -2, 100, 1000, INT_MAX, INT_MIN};
    PF_Pixel pixels[4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}};
    for (const bool withBasicSuite : {true, false}) {
        if (!withBasicSuite) host.inData.pica_basicP = nullptr;
        for (const PF_Cmd cmd : commands) {
            PF_LayerDef output{};
            output.data = pixels;
            output.width = output.height = 2;
            output.rowbytes = 8;
            std::memset(&host.outData, 0x3C, sizeof(host.outData));
            const PF_OutData outBefore = host.outData;
            const PF_InData inBefore = host.inData;
            const PF_LayerDef outputBefore = output;
            EXPECT_EQ(Call(cmd, nullptr, &output), PF_Err_NONE) << cmd;
            EXPECT_EQ(std::memcmp(&host.outData, &outBefore, sizeof(outBefore)), 0) << cmd;
            EXPECT_EQ(std::memcmp(&host.inData, &inBefore, sizeof(inBefore)), 0) << cmd;
            EXPECT_EQ(std::memcmp(&output, &outputBefore, sizeof(output)), 0) << cmd;
        }
    }
    for (int i = 0; i < 16; ++i) EXPECT_EQ(reinterpret_cast<uint8_t*>(pixels)[i], i + 1) << "no pixel is written";
    EXPECT_TRUE(host.calls.empty());
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(DispatchTest, EveryCommandWithoutABasicSuite) {
    host.inData.pica_basicP = nullptr;
    insideTheCommand = [] { return PF_Err{77}; };
    EXPECT_EQ(Call(PF_Cmd_ABOUT), 516);
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETUP), 516);
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), 516);
    EXPECT_EQ(ButtonCommand(3), 516);
    EXPECT_EQ(ButtonCommand(14), 516);
    EXPECT_EQ(Call(PF_Cmd_UPDATE_PARAMS_UI), 516);
    EXPECT_EQ(EventCommand(PF_Event_DRAW), 516);
    EXPECT_EQ(PreRenderCommand(), 516);
    EXPECT_EQ(RenderCommand(), 516);
    host.inData.inter.add_param = [](PF_ProgPtr, PF_ParamIndex, PF_ParamDefPtr) { return PF_Err{}; };
    host.inData.inter.register_ui = [](PF_ProgPtr, PF_CustomUIInfo*) { return PF_Err{}; };
    EXPECT_EQ(Call(PF_Cmd_PARAMS_SETUP), 516);
    // These use no suite.
    EXPECT_EQ(Call(PF_Cmd_QUERY_DYNAMIC_FLAGS), PF_Err_NONE);
    for (PF_EventType type : {-1, 0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 99}) {
        EXPECT_EQ(EventCommand(type), PF_Err_NONE) << type;
    }
}

TEST_F(DispatchTest, CommandsWithoutWhatTheyAreAboutAreRefused) {
    for (const PF_Cmd cmd : {PF_Cmd_UPDATE_PARAMS_UI, PF_Cmd_USER_CHANGED_PARAM, PF_Cmd_EVENT, PF_Cmd_SMART_PRE_RENDER,
                             PF_Cmd_SMART_RENDER}) {
        EXPECT_EQ(Call(cmd), PF_Err_BAD_CALLBACK_PARAM) << cmd;
    }
    EXPECT_TRUE(host.calls.empty());
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(DispatchTest, OtherEventsLeaveTheOutFlags) {
    for (PF_EventType type : {-1, 0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12}) {
        PF_EventExtra event{};
        std::memset(&event, 0x21, sizeof(event));
        event.e_type = type;
        const PF_EventExtra before = event;
        EXPECT_EQ(Call(PF_Cmd_EVENT, &event), PF_Err_NONE) << type;
        EXPECT_EQ(std::memcmp(&event, &before, sizeof(event)), 0) << type;
    }
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(DispatchTest, ControlsWithoutAReaction) {
    for (PF_ParamIndex index : {-1, 0, 1, 2, 6, 14, 20, 60, 61, 65}) {
        EXPECT_EQ(ButtonCommand(index), PF_Err_NONE) << index;
    }
    ExpectBalanced();
}

TEST_F(DispatchTest, ErrorsOfTheHostComeBackAsTheyAre) {
    for (PF_Err err : {1, 4, 13, 512, 516, 517, -1, 4711}) {
        insideTheCommand = [err] { return err; };
        EXPECT_EQ(PreRenderCommand(), err);
        EXPECT_EQ(RenderCommand(), err);
        ExpectBalanced();
    }
}

TEST_F(DispatchTest, ExceptionsNeverLeave) {
    const struct {
        const char* name;
        PF_Err (*throwing)();
        PF_Err result;
    } rows[] = {
        {"a missing suite", []() -> PF_Err { throw PF_Err{516}; }, 516},
        {"a missing scoped suite", []() -> PF_Err { throw PF_Err{13}; }, 13},
        {"an error of the host", []() -> PF_Err { throw PF_Err{4711}; }, 4711},
        {"runtime_error", []() -> PF_Err { throw std::runtime_error("unknown"); }, 512},
        {"bad_alloc", []() -> PF_Err { throw std::bad_alloc(); }, 512},
        {"a text", []() -> PF_Err { throw "text"; }, 512},
        {"another integer type", []() -> PF_Err { throw 516L; }, 512},
        {"an unsigned integer", []() -> PF_Err { throw 516u; }, 512},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        insideTheCommand = row.throwing;
        EXPECT_EQ(PreRenderCommand(), row.result);
        EXPECT_EQ(RenderCommand(), row.result);
        EXPECT_TRUE(globalMutex.try_lock()) << "given back";
        globalMutex.unlock();
        ExpectBalanced();
    }
}

SPErr ThrowingAcquire(const char*, int32_t, const void**) {
    throw std::runtime_error("inside the host");
}
void* ThrowingLock(PF_Handle) {
    throw std::logic_error("inside the host");
}

TEST_F(DispatchTest, ExceptionsNeverLeaveTheOtherCommandsEither) {
    host.handleSuite.host_lock_handle = ThrowingLock;
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETUP), 512);
    EXPECT_EQ(host.suiteBalance.at({"PF Handle Suite", 2}), 0) << "released all the same";
    host.inData.inter.add_param = [](PF_ProgPtr, PF_ParamIndex, PF_ParamDefPtr) -> PF_Err { throw 3.5; };
    EXPECT_EQ(Call(PF_Cmd_PARAMS_SETUP), 512);
    host.basic.AcquireSuite = ThrowingAcquire;
    EXPECT_EQ(Call(PF_Cmd_ABOUT), 512);
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETUP), 512);
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), 512);
}

bool AnotherThreadGetsTheMutex() {
    return std::async(std::launch::async,
                      [] {
                          if (!globalMutex.try_lock()) return false;
                          globalMutex.unlock();
                          return true;
                      })
        .get();
}

TEST_F(DispatchTest, ARenderHoldsTheMutexAndPreRenderDoesNot) {
    bool free = true;
    insideTheCommand = [&] {
        free = AnotherThreadGetsTheMutex();
        return PF_Err{9};
    };
    EXPECT_EQ(RenderCommand(), 9);
    EXPECT_FALSE(free);
    EXPECT_TRUE(AnotherThreadGetsTheMutex()) << "given back";
    EXPECT_EQ(PreRenderCommand(), 9);
    EXPECT_TRUE(free);
}

TEST_F(DispatchTest, PreRenderRunsWhileAFrameRenders) {
    insideTheCommand = [] { return PF_Err{9}; };
    globalMutex.lock();  // a frame on this thread
    auto preRender = std::async(std::launch::async, [&] { return PreRenderCommand(); });
    const bool finished = preRender.wait_for(std::chrono::seconds(600)) == std::future_status::ready;
    globalMutex.unlock();
    EXPECT_TRUE(finished);
    EXPECT_EQ(preRender.get(), 9);
}

TEST_F(DispatchTest, TheMutexIsRecursive) {
    int depth = 0;
    insideTheCommand = [&] {
        if (++depth == 1) {
            EXPECT_EQ(RenderCommand(), 2);
        }
        return PF_Err{depth};
    };
    EXPECT_EQ(RenderCommand(), 2);
    EXPECT_EQ(depth, 2);
}

TEST_F(DispatchTest, OneRenderAtATime) {
    std::atomic<int> running = 0, most = 0;
    insideTheCommand = [&] {
        const int now = ++running;
        if (now > most) most = now;
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
        --running;
        return PF_Err{9};
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([&] { EXPECT_EQ(RenderCommand(), 9); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(most, 1);
}

}  // namespace

}  // namespace umbrant::effect
