// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The module's life around real renders: a thread's state goes with the thread, also when that is after set-down or
// after the host has let go of the module.

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "hostapi/smart_render.h"
#include "hostapi/suites/color_param_suite.h"
#include "hostapi/suites/world_transform_suite.h"
#include "tests/hostapi/loaded_module.h"
#include "tests/support/gl_context.h"
#include "tests/support/test_host.h"
#include "tests/support/test_world.h"

namespace {

constexpr int kSize = 12;
constexpr A_long kTextureId = 39;

std::vector<PF_ParamDef> params;
PF_EffectWorld* inputWorld = nullptr;
PF_EffectWorld* outputWorld = nullptr;

PF_Err AddParam(PF_ProgPtr, PF_ParamIndex, PF_ParamDefPtr def) {
    params.push_back(*def);
    return PF_Err_NONE;
}
PF_Err RegisterUI(PF_ProgPtr, PF_CustomUIInfo*) {
    return PF_Err_NONE;
}
PF_Err CheckoutParam(PF_ProgPtr, PF_ParamIndex index, A_long, A_long, A_u_long, PF_ParamDef* param) {
    *param = params.at(static_cast<size_t>(index));
    return PF_Err_NONE;
}
PF_Err CheckinParam(PF_ProgPtr, PF_ParamDef*) {
    return PF_Err_NONE;
}
PF_Err CheckoutLayer(PF_ProgPtr, PF_ParamIndex, A_long, const PF_RenderRequest*, A_long, A_long, A_u_long,
                     PF_CheckoutResult* result) {
    result->result_rect = result->max_result_rect = {0, 0, kSize, kSize};
    return PF_Err_NONE;
}
PF_Err CheckoutPixels(PF_ProgPtr, A_long id, PF_EffectWorld** pixels) {
    *pixels = id == kTextureId ? nullptr : inputWorld;
    return PF_Err_NONE;
}
PF_Err CheckinPixels(PF_ProgPtr, A_long) {
    return PF_Err_NONE;
}
PF_Err CheckoutOutput(PF_ProgPtr, PF_EffectWorld** output) {
    *output = outputWorld;
    return PF_Err_NONE;
}
PF_Err Fill(PF_ProgPtr, const PF_Pixel*, const PF_Rect*, PF_EffectWorld*) {
    return PF_Err_NONE;
}  // clear already
PF_Err Black(PF_ProgPtr, const PF_ParamDef*, PF_PixelFloat* color) {
    *color = {1, 0, 0, 0};
    return PF_Err_NONE;
}
PF_Err NoTransfer(PF_ProgPtr, PF_Quality, PF_ModeFlags, PF_Field, const PF_Rect*, const PF_EffectWorld*,
                  const PF_CompositeMode*, const PF_MaskWorld*, A_long, A_long, PF_EffectWorld*) {
    return PF_Err_NONE;
}

/// One effect in a loaded module, from set-up on; renders an opaque square whose shadow lies right under it.
class Session {
 public:
    explicit Session(const LoadedModule& module) : module_(module) {
        host.inData.inter.add_param = AddParam;
        host.inData.inter.register_ui = RegisterUI;
        host.inData.inter.checkout_param = CheckoutParam;
        host.inData.inter.checkin_param = CheckinParam;
        host.utils.fill = Fill;
        host.inData.width = host.inData.height = kSize;
        host.inData.downsample_x = host.inData.downsample_y = {1, 1};
        host.inData.time_scale = 1;
        color_.PF_GetFloatingPointColorFromColorDef = Black;
        transform_.transfer_rect = NoTransfer;
        host.Offer(kPFColorParamSuiteName, kPFColorParamSuiteVersion1, &color_);
        host.Offer(kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1, &transform_);
        EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETUP), 0);
        host.inData.global_data = host.outData.global_data;
        params.assign(1, PF_ParamDef{});
        EXPECT_EQ(Call(PF_Cmd_PARAMS_SETUP), 0);
        for (int index : {17, 18, 50}) params[static_cast<size_t>(index)].u.fs_d.value = 0;
        params[44].u.fs_d.value = 2;
    }
    ~Session() {
        std::string why;
        EXPECT_TRUE(host.Balanced(&why)) << why;
    }

    PF_Err Call(PF_Cmd cmd, void* extra = nullptr) {
        return module_.main(cmd, &host.inData, &host.outData, nullptr, nullptr, extra);
    }
    PF_Err SetDown() { return Call(PF_Cmd_GLOBAL_SETDOWN); }

    void Render() {
        TestWorld input(kSize, kSize, sizeof(PF_Pixel)), output(kSize, kSize, sizeof(PF_Pixel));
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) input.At8(x, y) = {255, 9, 9, 9};
        }
        inputWorld = &input.world;
        outputWorld = &output.world;

        PF_PreRenderInput preInput{};
        preInput.output_request.rect = {0, 0, kSize, kSize};
        preInput.bitdepth = 8;
        PF_PreRenderOutput preOutput{};
        PF_PreRenderCallbacks preCallbacks = {CheckoutLayer, nullptr};
        PF_PreRenderExtra preExtra = {&preInput, &preOutput, &preCallbacks};
        ASSERT_EQ(Call(PF_Cmd_SMART_PRE_RENDER, &preExtra), 0);

        PF_SmartRenderInput renderInput{};
        renderInput.bitdepth = 8;
        renderInput.pre_render_data = preOutput.pre_render_data;
        PF_SmartRenderCallbacks callbacks = {CheckoutPixels, CheckinPixels, CheckoutOutput};
        PF_SmartRenderExtra extra = {&renderInput, &callbacks};
        EXPECT_EQ(Call(PF_Cmd_SMART_RENDER, &extra), 0) << host.outData.return_msg;
        EXPECT_GT(output.At8(kSize / 2, kSize / 2).alpha, 0) << "a shadow was drawn";
        EXPECT_TRUE(output.PaddingIntact());
        if (preOutput.delete_pre_render_data_func) preOutput.delete_pre_render_data_func(preOutput.pre_render_data);
    }

    TestHost host;

 private:
    const LoadedModule& module_;
    PF_ColorParamSuite1 color_{};
    PF_WorldTransformSuite1 transform_{};
};

class ModuleRenderGLTest : public ::testing::Test {
 protected:
    void SetUp() override {
        const char* reason = nullptr;
        if (!GLAvailable(&reason)) GTEST_SKIP() << reason;
    }
};

/// On a thread of its own, which takes the module's state with it; on the thread of all tests it would stay, and with
/// it the module.
void OnAThread(const std::function<void()>& body) {
    std::thread(body).join();
}

TEST_F(ModuleRenderGLTest, ReloadsAfterARenderThread) {
    for (int i = 0; i < 3; ++i) {
        LoadedModule module;
        ASSERT_NE(module.main, nullptr) << module.error;
        OnAThread([&] {
            Session session(module);
            std::thread([&] { session.Render(); }).join();
            EXPECT_EQ(session.SetDown(), 0);
        });
        module.Unload();
        EXPECT_EQ(LoadedModule::IsMapped(), LoadedModule::kStaysMapped) << "round " << i;
    }
}

/// Renders on a thread, runs `whileItLives`, and then lets the thread end.
void WithARenderThread(Session* session, const std::function<void()>& whileItLives) {
    std::mutex mutex;
    std::condition_variable changed;
    bool rendered = false, mayEnd = false;
    std::thread thread([&] {
        session->Render();
        std::unique_lock lock(mutex);
        rendered = true;
        changed.notify_all();
        changed.wait(lock, [&] { return mayEnd; });
    });
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return rendered; });
    }
    whileItLives();
    {
        const std::lock_guard lock(mutex);
        mayEnd = true;
    }
    changed.notify_all();
    thread.join();
}

TEST_F(ModuleRenderGLTest, ARenderThreadOutlivesSetDown) {
    LoadedModule module;
    ASSERT_NE(module.main, nullptr) << module.error;
    OnAThread([&] {
        Session session(module);
        WithARenderThread(&session, [&] { EXPECT_EQ(session.SetDown(), 0); });
    });
}

TEST_F(ModuleRenderGLTest, ARenderThreadOutlivesTheModulesHandle) {
    LoadedModule module;
    ASSERT_NE(module.main, nullptr) << module.error;
    OnAThread([&] {
        Session session(module);
        WithARenderThread(&session, [&] {
            EXPECT_EQ(session.SetDown(), 0);
            module.Unload();
            EXPECT_TRUE(LoadedModule::IsMapped()) << "the thread's state still has its code";
        });
    });
    LoadedModule again;
    ASSERT_NE(again.main, nullptr) << again.error;
    OnAThread([&] {
        Session session(again);
        std::thread([&] { session.Render(); }).join();
        EXPECT_EQ(session.SetDown(), 0);
    });
}

}  // namespace
