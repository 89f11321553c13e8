// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pre-render and render against a host each of whose calls throws in its turn.

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "entry/global_data.h"
#include "gl/context.h"
#include "gl/thread_state.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/pre_render/pre_render.h"
#include "tests/entry/panel_host.h"
#include "tests/entry/throwing_calls.h"
#include "tests/render/render_host.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

namespace {

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
