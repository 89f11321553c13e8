// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/program_list.h"

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using ProgramListTest = FakeGLTest;

uint64_t Address(const char* text) {
    return reinterpret_cast<uintptr_t>(text);
}

TEST_F(ProgramListTest, CompilesEveryShaderBehindThePreamble) {
    const uint64_t list[] = {
        GL_VERTEX_SHADER, Address("v"), GL_GEOMETRY_SHADER, Address("g"), GL_FRAGMENT_SHADER, Address("f"), 0};
    CaptureStdout out;
    EXPECT_EQ(CreateProgram(list, "preamble "), 1u);
    EXPECT_EQ(out.Text(), "");
    EXPECT_EQ(fake::Gl().shaders[1].source, "preamble v");
    EXPECT_EQ(fake::Gl().shaders[2].source, "preamble g");
    EXPECT_EQ(fake::Gl().shaders[3].source, "preamble f");
    EXPECT_THAT(fake::CallsTo("glCreateShader"),
                ElementsAre("glCreateShader(GL_VERTEX_SHADER)", "glCreateShader(GL_GEOMETRY_SHADER)",
                            "glCreateShader(GL_FRAGMENT_SHADER)"));
    EXPECT_THAT(fake::Gl().programs[1].shaders, ElementsAre(1u, 2u, 3u));
    EXPECT_THAT(fake::Gl().programs[1].attached, IsEmpty());
    EXPECT_THAT(fake::Gl().liveShaders, IsEmpty());
}

TEST_F(ProgramListTest, FailedShaderIsLeftOutAndNeverDeleted) {
    fake::Gl().compileFailure = [](GLenum, const std::string& source) {
        return source == "bad" ? std::optional<std::string>(std::string(300, 'x')) : std::nullopt;
    };
    const uint64_t list[] = {GL_VERTEX_SHADER, Address("bad"), GL_FRAGMENT_SHADER, Address("good"), 0};
    CaptureStdout out;
    EXPECT_EQ(CreateProgram(list, ""), 1u);
    EXPECT_EQ(out.Text(), "Compile Shader Failed - " + std::string(255, 'x') + "\n");
    EXPECT_THAT(fake::Gl().programs[1].shaders, ElementsAre(2u));
    EXPECT_THAT(fake::Gl().liveShaders, ElementsAre(1u));
}

TEST_F(ProgramListTest, FailedLinkYieldsZeroAndDeletesNothing) {
    fake::Gl().linkFailure = [](GLuint) { return std::optional<std::string>("unresolved"); };
    const uint64_t list[] = {GL_VERTEX_SHADER, Address("v"), 0};
    CaptureStdout out;
    EXPECT_EQ(CreateProgram(list, ""), 0u);
    EXPECT_EQ(out.Text(), "Link Program Failed - unresolved\n");
    EXPECT_THAT(fake::Gl().livePrograms, ElementsAre(1u));
    EXPECT_THAT(fake::Gl().liveShaders, ElementsAre(1u));
    EXPECT_THAT(fake::Gl().programs[1].attached, ElementsAre(1u));
}

TEST_F(ProgramListTest, GLErrorIsPrinted) {
    fake::Gl().errors = {GL_INVALID_OPERATION};
    const uint64_t list[] = {0};
    CaptureStdout out;
    CreateProgram(list, "");
    EXPECT_EQ(out.Text(), "Prog Error: 1282\n");
}

TEST_F(ProgramListTest, EmptyListLinksAnEmptyProgram) {
    const uint64_t list[] = {0};
    EXPECT_EQ(CreateProgram(list, ""), 1u);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glCreateProgram()", "glLinkProgram(1)", "glGetProgramiv(1, GL_LINK_STATUS)"));
}

TEST_F(ProgramListTest, DeleteProgramIgnoresNothingToDelete) {
    DeleteProgram(nullptr);
    GLuint program = 0;
    DeleteProgram(&program);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    program = 7;
    DeleteProgram(&program);
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteProgram(7)"));
    EXPECT_EQ(program, 0u);
}

}  // namespace

}  // namespace umbrant::effect
