// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A whole render with neither host nor driver: the order of host and GL calls, and what each pass gets.

#include "render/smart_render.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

TEST_F(SmartRenderTest, CallsTheHostInOrder) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    std::vector<std::string> calls;
    for (const std::string& call : host_.calls) {
        if (call.rfind("check", 0) == 0 && call.find("param") != std::string::npos) continue;
        if (call.rfind("ReleaseSuite", 0) == 0) continue;
        calls.push_back(call);
    }
    EXPECT_THAT(
        calls, ElementsAre("checkout_layer_pixels 1", "checkout_layer_pixels 39", "checkout_output", "fill clear whole",
                           "AcquireSuite PF ColorParamSuite 1", "PF_GetFloatingPointColorFromColorDef",
                           "AcquireSuite Umbrant Host Suite 1", "AcquireSuite PF Handle Suite 2", "host_lock_handle",
                           "host_unlock_handle", "host_new_handle 1200", "host_lock_handle",
                           "AcquireSuite PF Iterate8 Suite 1", "iterate8 0 30", "host_unlock_handle",
                           "host_dispose_handle", "host_new_handle 3000", "host_lock_handle", "iterate8 0 50",
                           "host_unlock_handle", "host_dispose_handle", "AcquireSuite PF World Transform Suite 1",
                           "transfer_rect 2", "checkin_layer_pixels 39", "checkin_layer_pixels 1"));
    EXPECT_EQ(host_.CountOf("checkout_param"), 59);
    EXPECT_EQ(host_.CountOf("checkout_param 39"), 0);
    EXPECT_EQ(host_.CountOf("ReleaseSuite"), 4);
}

TEST_F(SmartRenderTest, DrawsThreePassesPerSample) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Draws().size(), 6u);
    for (const std::string& draw : Draws()) EXPECT_EQ(draw, "glDrawArrays(GL_TRIANGLE_FAN, 0, 4)");
    EXPECT_EQ(fake::CallsTo("glFinish").size(), 1u);
    EXPECT_EQ(fake::CallsTo("glReadPixels").size(), 1u);
    EXPECT_THAT(fake::CallsTo("glBlendFunc"), ElementsAre("glBlendFunc(GL_ONE_MINUS_DST_COLOR, GL_ONE)"));
    // Only the placing blends, and every draw is limited to where something is.
    const std::vector<std::string> sample = {"glDisable(GL_BLEND)",        "glEnable(GL_SCISSOR_TEST)",
                                             "glDisable(GL_SCISSOR_TEST)", "glEnable(GL_SCISSOR_TEST)",
                                             "glDisable(GL_SCISSOR_TEST)", "glEnable(GL_BLEND)",
                                             "glEnable(GL_SCISSOR_TEST)",  "glDisable(GL_SCISSOR_TEST)"};
    std::vector<std::string> expected = {"glEnable(GL_BLEND)"};
    for (int i = 0; i < 2; ++i) expected.insert(expected.end(), sample.begin(), sample.end());
    std::vector<std::string> switches;
    for (const std::string& call : fake::Calls()) {
        if (call.rfind("glEnable(", 0) == 0 || call.rfind("glDisable(", 0) == 0) switches.push_back(call);
    }
    EXPECT_EQ(switches, expected);
    // Two clears per sample for the blurs, one for the accumulation's first.
    EXPECT_EQ(fake::CallsTo("glClear(").size(), 5u);
    EXPECT_EQ(fake::Gl().callsWithoutContext, 0);
}

TEST_F(SmartRenderTest, EachPassIsTargetSourceProgramUniformsDraw) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    // From the blend function to the first draw of each pass, by the kinds of call.
    std::vector<std::string> kinds;
    bool on = false;
    for (const std::string& call : fake::Calls()) {
        const std::string kind = call.substr(0, call.find('('));
        if (kind == "glFinish") break;
        if (on && kind != "glGetUniformLocation" && kind != "glClearColor") kinds.push_back(kind);
        if (kind == "glBlendFunc") on = true;
    }
    const std::vector<std::string> sample = {
        "glDisable", "glBindFramebuffer", "glViewport", "glClear", "glBindTexture", "glUseProgram", "glUniform1f",
        "glUniformMatrix4fv", "glUniform1i", "glUniform1f", "glUniform1f", "glUniform1f", "glEnable", "glScissor",
        "glDrawArrays", "glDisable",
        // down
        "glBindFramebuffer", "glViewport", "glClear", "glBindTexture", "glUseProgram", "glUniform1i", "glUniform1f",
        "glUniformMatrix4fv", "glEnable", "glScissor", "glDrawArrays", "glDisable",
        // place
        "glEnable", "glUseProgram", "glUniformMatrix4fv", "glBindFramebuffer", "glViewport", "glClear", "glBindTexture",
        "glEnable", "glScissor", "glDrawArrays", "glDisable"};
    ASSERT_GE(kinds.size(), sample.size());
    EXPECT_EQ(std::vector<std::string>(kinds.begin(), kinds.begin() + static_cast<long>(sample.size())), sample);
}

TEST_F(SmartRenderTest, LastSamplesUniforms) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    // Sample 1 of 2: half the travel, half the softness, the end opacity; "Moderate" takes 0.6 taps per pixel.
    const auto value = [](const char* name) { return fake::Gl().uniformValues.at(name); };
    EXPECT_THAT(value("opacityF"), ElementsAre(0.5f));
    EXPECT_THAT(value("steps"), ElementsAre(4)) << "3.0000000000000004 rounds up";
    EXPECT_THAT(value("stride"), ElementsAre(static_cast<float>(5.0 / 4 / 40))) << "down: the padded height, 30 + 10";
    EXPECT_THAT(value("scaleW"), ElementsAre(50 / 40.0f));
    EXPECT_THAT(value("scaleH"), ElementsAre(static_cast<float>(40 / 30.0)));
    const float angle = 135.0f * 0.0174533f;
    const double x = 10 * std::sin(angle) + std::sin(static_cast<double>(angle)) - 7;
    const double y = -10 * std::cos(angle) - std::cos(static_cast<double>(angle)) + 2;
    const std::vector<double> xform = value("xform");
    ASSERT_EQ(xform.size(), 16u);
    EXPECT_FLOAT_EQ(static_cast<float>(xform[0]), 50 / 60.0f);
    EXPECT_FLOAT_EQ(static_cast<float>(xform[5]), 40 / 50.0f);
    EXPECT_EQ(xform[10], 1);
    EXPECT_NEAR(xform[12], 2.0 / 60 * x, 1e-6) << "the translation is in the last row";
    EXPECT_NEAR(xform[13], 2.0 / 50 * y, 1e-6);
    EXPECT_EQ(xform[15], 1);
    EXPECT_EQ(xform[3], 0);
    EXPECT_EQ(xform[7], 0);
}

TEST_F(SmartRenderTest, MatricesGoUpTransposed) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    const std::vector<std::string> uploads = fake::CallsTo("glUniformMatrix4fv");
    ASSERT_EQ(uploads.size(), 6u);
    for (const std::string& upload : uploads) {
        int location = -1, count = -1, transposed = -1;
        ASSERT_EQ(std::sscanf(upload.c_str(), "glUniformMatrix4fv(%d, %d, %d,", &location, &count, &transposed), 3)
            << upload;
        EXPECT_EQ(count, 1) << upload;
        EXPECT_EQ(transposed, GL_TRUE) << upload;
    }
}

TEST_F(SmartRenderTest, SourceIsLaidInFront) {
    Slide(PARAM_SOURCE_OPACITY, 50);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ASSERT_EQ(host_.transfers.size(), 1u);
    const RenderHost::Transfer& t = host_.transfers[0];
    EXPECT_EQ(t.mode.xfer, PF_Xfer_IN_FRONT);
    EXPECT_EQ(t.mode.opacity, 127);
    EXPECT_EQ(t.mode.rgb_only, 0);
    EXPECT_EQ(t.flags, PF_MF_Alpha_STRAIGHT);
    EXPECT_EQ(t.quality, PF_Quality_HI);
    EXPECT_EQ(t.field, PF_Field_FRAME);
    EXPECT_EQ(t.source, &input_.world);
    EXPECT_EQ(t.destination, &output_.world);
    EXPECT_EQ(t.mask, nullptr);
    EXPECT_EQ(t.x, 13);
    EXPECT_EQ(t.y, 24);
    EXPECT_EQ(t.area.left, 0);
    EXPECT_EQ(t.area.right, 60);
    EXPECT_EQ(t.area.bottom, 50);
}

TEST_F(SmartRenderTest, NoSourceOpacityLeavesTheShadowAlone) {
    Slide(PARAM_SOURCE_OPACITY, 0);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(host_.transfers.empty());
}

TEST_F(SmartRenderTest, TextureColoursTheShadowFirst) {
    TestWorld texture(50, 70, sizeof(PF_Pixel));
    texture.world.origin_x = -2;
    texture.world.origin_y = 5;
    host_.texture = &texture.world;
    Slide(PARAM_TEXTURE_STRENGTH, 29);
    host_.panel[PARAM_TEXTURE_BLEND_MODE].u.pd.value = 1;
    ASSERT_EQ(Run(), PF_Err_NONE);
    ASSERT_EQ(host_.transfers.size(), 2u);
    const RenderHost::Transfer& t = host_.transfers[0];
    EXPECT_EQ(t.source, &texture.world);
    EXPECT_EQ(t.mode.xfer, PF_Xfer_IN_FRONT);
    EXPECT_EQ(t.mode.opacity, 73);
    EXPECT_EQ(t.mode.rgb_only, 1);
    EXPECT_EQ(t.area.right, 50);
    EXPECT_EQ(t.area.bottom, 50);
    EXPECT_EQ(t.x, 8);
    EXPECT_EQ(t.y, 25);
    EXPECT_EQ(host_.transfers[1].source, &input_.world);
}

TEST_F(SmartRenderTest, TransferErrorsEndTheComposite) {
    TestWorld texture(50, 70, sizeof(PF_Pixel));
    host_.texture = &texture.world;
    host_.failTransfer = 1;
    EXPECT_EQ(Run(), RenderHost::kInjected);
    EXPECT_EQ(host_.transfers.size(), 1u) << "no source after a failed texture";
    host_.failTransfer = 3;
    EXPECT_EQ(Run(), RenderHost::kInjected);
    EXPECT_EQ(host_.transfers.size(), 3u);
}

TEST_F(SmartRenderTest, ShadowPixelsHaveAlphaFromTheBufferAndTheColour) {
    host_.panel[PARAM_COLOR].u.cd.value = {0, 11, 22, 33};
    fake::Gl().readPixels.assign(60 * 50, 77);
    fake::Gl().readPixels[60] = 200;
    ASSERT_EQ(Run(), PF_Err_NONE);
    const PF_Pixel& p = output_.At8(0, 1);
    EXPECT_EQ(p.alpha, 200) << "row 1 of the buffer is row 1 of the world";
    EXPECT_EQ(p.red, 11);
    EXPECT_EQ(p.green, 22);
    EXPECT_EQ(p.blue, 33);
    EXPECT_EQ(output_.At8(59, 49).alpha, 77);
}

TEST_F(SmartRenderTest, UploadsTheAlphaTightly) {
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) input_.At8(x, y) = {static_cast<A_u_char>(y * 8), 0, 0, 0};
    }
    ASSERT_EQ(Run(), PF_Err_NONE);
    bool found = false;
    for (const auto& upload : fake::Gl().uploads) {
        if (upload.size() != 1200) continue;
        found = true;
        EXPECT_EQ(upload[0], 0);
        EXPECT_EQ(upload[40], 8);
        EXPECT_EQ(upload[1199], 29 * 8);
    }
    EXPECT_TRUE(found);
}

TEST_F(SmartRenderTest, WithoutOutputNothingHappens) {
    host_.output = nullptr;
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(host_.CountOf("fill clear whole"), 0);
    EXPECT_TRUE(Draws().empty());
}

TEST_F(SmartRenderTest, WithoutInputOrRecordTheOutputIsTransparent) {
    Soil();
    host_.input = nullptr;
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Transparent());
    host_.input = &input_.world;
    host_.renderInput.pre_render_data = nullptr;
    Soil();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Transparent());
    EXPECT_TRUE(Draws().empty());
    EXPECT_TRUE(host_.transfers.empty());
}

TEST_F(SmartRenderTest, NoSamplesGiveNoShadowButTheSource) {
    for (double n : {0.0, 0.9, -5.0}) {
        SCOPED_TRACE(n);
        Slide(PARAM_SAMPLES, n);
        host_.transfers.clear();
        Soil();
        EXPECT_EQ(Run(), PF_Err_NONE);
        EXPECT_TRUE(Transparent());
        EXPECT_TRUE(Draws().empty());
        EXPECT_EQ(host_.transfers.size(), 1u);
    }
}

TEST_F(SmartRenderTest, ZeroSizedInputIsToldAndComposited) {
    input_.world.width = 0;
    Soil();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Message(), "UM2 Error: in/out FBO too small");
    EXPECT_TRUE(Transparent());
    EXPECT_TRUE(Draws().empty());
    EXPECT_EQ(host_.transfers.size(), 1u) << "the composite still follows";
}

TEST_F(SmartRenderTest, ZeroSizedOutputIsTold) {
    output_.world.height = 0;
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Message(), "UM2 Error: in/out FBO too small");
    output_.world.height = 50;
}

TEST_F(SmartRenderTest, ZeroSizedSampleBufferSkipsTheSampleButClears) {
    // A one-pixel layer at "Draft": the first framebuffer truncates to nothing.
    input_.world.width = 1;
    input_.world.height = 1;
    host_.panel[PARAM_RESOLUTION].u.pd.value = 1;
    Slide(PARAM_SOFTNESS, 3);
    Slide(PARAM_SAMPLES, 4);
    EXPECT_EQ(Run(), PF_Err_NONE);
    // pad 2 and 3: 5 and 7 pixels, a fifth of which is 1 (0.2 x 5 = 1) and 1.
    EXPECT_EQ(Draws().size(), 12u);

    Slide(PARAM_SOFTNESS, 1);
    fake::ClearCalls();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Draws().empty()) << "both framebuffers are empty";
    EXPECT_EQ(fake::CallsTo("glClear(").size(), 1u) << "the first sample clears though it is skipped";
    EXPECT_EQ(fake::CallsTo("glReadPixels").size(), 1u);
    EXPECT_EQ(Message(), "");
}

TEST_F(SmartRenderTest, RendererIsRecordedOnce) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_STREQ(host_.global->gl_renderer, "Fake Renderer");
    EXPECT_EQ(host_.global->rendererRecorded, 1);
    fake::Gl().strings[GL_RENDERER] = "Another";
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_STREQ(host_.global->gl_renderer, "Fake Renderer");
}

// The thread's state has read the handle without a lock before; from then on the pointer may be gone.
TEST_F(SmartRenderTest, RendererIsRecordedUnderALock) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    host_.global->rendererRecorded = 0;
    fake::Gl().strings[GL_RENDERER] = "Another";
    host_.PointUnlockedHandlesTo(nullptr);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_STREQ(host_.global->gl_renderer, "Another");
    EXPECT_EQ(host_.global->rendererRecorded, 1);
}

TEST_F(SmartRenderTest, RendererIsNotRecordedWhereSetUpWroteNothing) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    host_.global->rendererRecorded = 0;
    writtenRecords.Forget(host_.inData.global_data);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(host_.global->rendererRecorded, 0);
}

TEST_F(SmartRenderTest, LongRendererIsCutToTheField) {
    fake::Gl().strings[GL_RENDERER] = std::string(150, 'r');
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(std::string(host_.global->gl_renderer), std::string(99, 'r'));
    EXPECT_NE(host_.global->context, nullptr);
}

TEST_F(SmartRenderTest, SecondFrameCompilesNothing) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    fake::ClearCalls();
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(fake::CallsTo("glCompileShader").empty());
    EXPECT_TRUE(fake::CallsTo("glGenVertexArrays").empty());
    EXPECT_TRUE(fake::CallsTo("CGLCreateContext").empty());
}

TEST_F(SmartRenderTest, UncompiledProgramsWarnAndGoOn) {
    fake::Gl().compileFailure = [](GLenum, const std::string&) { return std::optional<std::string>("log"); };
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_THAT(Message(), StartsWith("Warning: called"));
}

}  // namespace

}  // namespace umbrant::effect
