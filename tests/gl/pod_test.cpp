// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/pod.h"

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;

using Draw = std::array<unsigned, DRAW_SLOTS>;
using PodTest = FakeGLTest;

static_assert(DRAW_SLOTS == 11);

TEST_F(PodTest, PlainDrawEnablesNothing) {
    Draw draw{};
    draw[0] = GL_TRIANGLE_FAN;
    draw[1] = 2;
    draw[2] = 4;
    draw[3] = 99;
    draw[6] = 3;
    draw[7] = GL_TRIANGLES;
    draw[10] = 98;
    RenderGeneric({1, 2, 30, 40}, draw, 5, 6, 7);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glViewport(1, 2, 30, 40)", "glBindFramebuffer(GL_FRAMEBUFFER, 6)", "glUseProgram(7)",
                            "glBindVertexArray(5)", "glDrawArraysInstanced(GL_TRIANGLE_FAN, 2, 4, 3)",
                            "glBindVertexArray(0)", "glUseProgram(0)", "glBindFramebuffer(GL_FRAMEBUFFER, 0)"));
}

TEST_F(PodTest, EverySlotAtWork) {
    Draw draw{};
    draw[0] = GL_TRIANGLES;
    draw[1] = 2;
    draw[2] = 6;
    draw[4] = 11;
    draw[5] = 12;
    draw[6] = 1;
    draw[7] = GL_TRIANGLES;
    draw[8] = 65535;
    draw[9] = GL_BACK;
    RenderGeneric({0, 0, 8, 8}, draw, 5, 6, 7);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glEnable(GL_CULL_FACE)", "glCullFace(GL_BACK)", "glEnable(GL_PRIMITIVE_RESTART)",
                            "glPrimitiveRestartIndex(65535)", "glViewport(0, 0, 8, 8)",
                            "glBindFramebuffer(GL_FRAMEBUFFER, 6)", "glUseProgram(7)", "glBindVertexArray(5)",
                            "glEnable(GL_RASTERIZER_DISCARD)", "glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, 12)",
                            "glBeginTransformFeedback(GL_TRIANGLES)", "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 11)",
                            "glDrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_INT, 0, 1)",
                            "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)", "glEndTransformFeedback()",
                            "glDisable(GL_RASTERIZER_DISCARD)", "glBindTransformFeedback(GL_TRANSFORM_FEEDBACK, 0)",
                            "glDisable(GL_PRIMITIVE_RESTART)", "glDisable(GL_CULL_FACE)", "glBindVertexArray(0)",
                            "glUseProgram(0)", "glBindFramebuffer(GL_FRAMEBUFFER, 0)"));
    EXPECT_TRUE(fake::Gl().enabled.empty());
}

TEST_F(PodTest, RenderPODUsesAVertexArrayOfItsOwn) {
    fake::Gl().uniforms = {{"value", 1}};
    fake::Gl().attributes = {{"position", 0}};
    GL_Pod pod{};
    pod.draw[0] = GL_TRIANGLES;
    pod.draw[2] = 3;
    pod.draw[6] = 1;
    pod.draw[10] = 21;
    pod.uniforms = {{"value", VEC(0.5f)}};
    pod.attributes = {{"position", {4, 3, GL_FLOAT, 0}}};
    const GLuint framebuffer = 6;
    RenderPOD(framebuffer, {0, 0, 8, 8}, pod);
    EXPECT_EQ(fake::Calls().front(), "glGenVertexArrays(1)");
    EXPECT_EQ(fake::Calls().back(), "glDeleteVertexArrays(1)");
    EXPECT_THAT(fake::CallsTo("glBindVertexArray"), ElementsAre("glBindVertexArray(1)", "glBindVertexArray(0)",
                                                                "glBindVertexArray(1)", "glBindVertexArray(0)"));
    EXPECT_THAT(fake::CallsTo("glUseProgram"), ElementsAre("glUseProgram(21)", "glUseProgram(21)", "glUseProgram(0)"));
    EXPECT_THAT(fake::CallsTo("glUniform"), ElementsAre("glUniform1f(1, 0.5)"));
    EXPECT_THAT(fake::CallsTo("glDraw"), ElementsAre("glDrawArraysInstanced(GL_TRIANGLES, 0, 3, 1)"));
}

struct UploadCase {
    const char* name;
    int depth;
    unsigned long rowBytes;
    const char* rowLength;
    const char* upload;
};

void PrintTo(const UploadCase& row, std::ostream* out) {
    *out << row.name;
}

class Upload : public FakeGLTest, public ::testing::WithParamInterface<UploadCase> {};

TEST_P(Upload, ReplacesTheRegionWithTheRowLengthInPixels) {
    std::vector<uint8_t> pixels(2 * 3 * 16);
    UploadToTexture(4, pixels.data(), GetParam().rowBytes, GetParam().depth, 2, 3);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glBindTexture(GL_TEXTURE_2D, 4)", GetParam().rowLength, GetParam().upload,
                            "glBindTexture(GL_TEXTURE_2D, 0)", "glPixelStorei(GL_UNPACK_ROW_LENGTH, 0)"));
}

INSTANTIATE_TEST_SUITE_P(
    All, Upload,
    ::testing::Values(UploadCase{"bytes", 8, 20, "glPixelStorei(GL_UNPACK_ROW_LENGTH, 5)",
                                 "glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 2, 3, GL_RGBA, GL_UNSIGNED_BYTE)"},
                      UploadCase{"floats", 32, 48, "glPixelStorei(GL_UNPACK_ROW_LENGTH, 3)",
                                 "glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 2, 3, GL_RGBA, GL_FLOAT)"}));

}  // namespace

}  // namespace umbrant::effect
