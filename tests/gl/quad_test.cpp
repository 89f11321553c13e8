// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/quad.h"

#include <cstring>

#include "gl/gl_error.h"
#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using QuadTest = FakeGLTest;

std::vector<float> Uploaded() {
    const std::vector<uint8_t>& bytes = fake::Gl().uploads.back();
    std::vector<float> floats(bytes.size() / sizeof(float));
    std::memcpy(floats.data(), bytes.data(), bytes.size());
    return floats;
}

TEST_F(QuadTest, InitQuadUploadsFourVerticesClockwise) {
    GLuint vao = 0;
    GLuint vbo = 0;
    InitQuad(&vao, &vbo);
    EXPECT_EQ(vao, 1u);
    EXPECT_EQ(vbo, 1u);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glGenVertexArrays(1)", "glBindVertexArray(1)", "glGenBuffers(1)",
                            "glBindBuffer(GL_ARRAY_BUFFER, 1)", "glBufferData(GL_ARRAY_BUFFER, 80, GL_STATIC_DRAW)",
                            "glEnableVertexAttribArray(0)", "glVertexAttribPointer(0, 3, GL_FLOAT, 0, 20, 0)",
                            "glEnableVertexAttribArray(1)", "glVertexAttribPointer(1, 2, GL_FLOAT, 0, 20, 12)",
                            "glBindVertexArray(0)"))
        << "the array buffer stays bound";
    EXPECT_EQ(Uploaded(), (std::vector<float>{-1, -1, 0, 0, 0,  //
                                              -1, 1,  0, 0, 1,  //
                                              1,  1,  0, 1, 1,  //
                                              1,  -1, 0, 1, 0}));
}

TEST_F(QuadTest, InitQuadRatioCoversAFractionWithTheWholeTexture) {
    GLuint vao = 0;
    GLuint vbo = 0;
    InitQuadRatio(&vao, &vbo, 0.5f, 1.0f);
    EXPECT_EQ(Uploaded(), (std::vector<float>{-1, -1, 0, 0, 0,  //
                                              0,  -1, 0, 1, 0,  //
                                              0,  1,  0, 1, 1,  //
                                              -1, 1,  0, 0, 1}));
    InitQuadRatio(&vao, &vbo, 0.25f, 0.75f);
    EXPECT_EQ(Uploaded(), (std::vector<float>{-1,    -1,   0, 0, 0,  //
                                              -0.5f, -1,   0, 1, 0,  //
                                              -0.5f, 0.5f, 0, 1, 1,  //
                                              -1,    0.5f, 0, 0, 1}));
}

TEST_F(QuadTest, DeleteQuadDeletesWhatThereIsAndKeepsTheNames) {
    GLuint vao = 4;
    GLuint vbo = 5;
    DeleteQuad(&vao, &vbo);
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteVertexArrays(4)", "glDeleteBuffers(5)"));
    EXPECT_EQ(vao, 4u);
    EXPECT_EQ(vbo, 5u);
    fake::ClearCalls();
    GLuint none = 0;
    DeleteQuad(&none, &none);
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

using GLErrorTest = FakeGLTest;

TEST_F(GLErrorTest, WithoutErrorNothingIsPrinted) {
    CaptureStdout out;
    CheckOpenGLError("drawing", "file.cpp", 12);
    EXPECT_EQ(out.Text(), "");
}

TEST_F(GLErrorTest, OneErrorIsTakenAndPrintedWithTwoNewlines) {
    fake::Gl().errors = {GL_INVALID_ENUM, GL_INVALID_VALUE};
    CaptureStdout out;
    CheckOpenGLError("drawing", "file.cpp", 12);
    EXPECT_EQ(out.TextWithoutFlush(), "OpenGL error 00000500, at file.cpp:12 - for drawing\n\n");
    EXPECT_EQ(fake::Gl().errors.size(), 1u) << "further errors wait for later calls";
}

TEST_F(GLErrorTest, LongTextsAreNotCut) {
    fake::Gl().errors = {GL_INVALID_ENUM};
    const std::string what(2000, 'w');
    CaptureStdout out;
    CheckOpenGLError(what.c_str(), "f", 1);
    EXPECT_EQ(out.Text(), "OpenGL error 00000500, at f:1 - for " + what + "\n\n");
}

TEST_F(GLErrorTest, TheSecondProbeDoesNothing) {
    fake::Gl().errors = {GL_INVALID_ENUM};
    CaptureStdout out;
    glCheckError_("file.cpp", 12);
    EXPECT_EQ(out.Text(), "");
    EXPECT_EQ(fake::Gl().errors.size(), 1u);
}

}  // namespace

}  // namespace umbrant::effect
