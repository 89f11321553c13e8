// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A whole render with neither host nor driver: the fakes record what is asked of both, and whatever happens, every
// balance is checked at the end.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gl/context.h"
#include "gl/thread_state.h"
#include "platform/fake/call_log.h"
#include "platform/fake/cgl_fake.h"
#include "platform/fake/gl_fake.h"
#include "render/smart_render.h"
#include "tests/render/render_host.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

class SmartRenderTest : public ::testing::Test {
 protected:
    SmartRenderTest() {
        local_render_data.reset();
        fake::Reset();
        fake::Gl().strings[GL_RENDERER] = "Fake Renderer";
        host_.global->context = CreateContext(nullptr, nullptr);
        host_.input = &input_.world;
        host_.output = &output_.world;
        input_.world.origin_x = 3;
        input_.world.origin_y = 4;
        output_.world.origin_x = -10;
        output_.world.origin_y = -20;
        output_.world.extent_hint = {0, 0, 60, 50};
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) input_.At8(x, y) = {255, 0, 0, 0};
        }
        host_.record.centreOffsetX = -7;
        host_.record.centreOffsetY = 2;
        Slide(PARAM_SAMPLES, 2);
        Slide(PARAM_SOFTNESS, 10);
        Slide(PARAM_DISTANCE, 20);
        Slide(PARAM_EASE, 0);
    }
    ~SmartRenderTest() override {
        local_render_data.reset();
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        EXPECT_EQ(host_.layersOut, 0);
        EXPECT_EQ(host_.paramsOut, 0);
        EXPECT_TRUE(fake::Gl().liveTextures.empty());
        EXPECT_TRUE(fake::Gl().liveFramebuffers.empty());
        EXPECT_TRUE(output_.PaddingIntact());
    }

    PF_Err Run() { return SmartRender(&host_.inData, &host_.outData, &host_.renderExtra); }
    void Slide(ParamIndex index, double value) { host_.panel[index].u.fs_d.value = value; }
    std::string Message() const { return host_.outData.return_msg; }
    static std::vector<std::string> Draws() { return fake::CallsTo("glDrawArrays"); }

    // The host's calls but for the parameters and the releases.
    std::vector<std::string> HostCalls() const {
        std::vector<std::string> calls;
        for (const std::string& call : host_.calls) {
            if (call.rfind("check", 0) == 0 && call.find("param") != std::string::npos) continue;
            if (call.rfind("ReleaseSuite", 0) == 0) continue;
            calls.push_back(call);
        }
        return calls;
    }

    // Pixels that a fill has not reached.
    void Soil() {
        for (int y = 0; y < 50; ++y) {
            for (int x = 0; x < 60; ++x) output_.At8(x, y) = {1, 2, 3, 4};
        }
    }
    bool Transparent() {
        for (int y = 0; y < 50; ++y) {
            for (int x = 0; x < 60; ++x) {
                const PF_Pixel& p = output_.At8(x, y);
                if (p.alpha || p.red || p.green || p.blue) return false;
            }
        }
        return true;
    }

    RenderHost host_;
    TestWorld input_{40, 30, sizeof(PF_Pixel)};
    TestWorld output_{60, 50, sizeof(PF_Pixel)};
};

}  // namespace umbrant::effect
