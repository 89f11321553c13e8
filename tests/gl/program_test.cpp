// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/program.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <type_traits>

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(!std::is_copy_constructible_v<Program> && !std::is_copy_assignable_v<Program>);

using ProgramTest = FakeGLTest;

std::optional<std::string> FailVertex(GLenum type, const std::string&) {
    if (type == GL_VERTEX_SHADER) return "vertex log";
    return std::nullopt;
}

std::optional<std::string> FailFragment(GLenum type, const std::string&) {
    if (type == GL_FRAGMENT_SHADER) return "fragment log";
    return std::nullopt;
}

TEST_F(ProgramTest, StartsEmpty) {
    Program program;
    EXPECT_FALSE(program.initialised);
    EXPECT_EQ(program.id, 0u);
    EXPECT_EQ(program.label, "");
}

TEST_F(ProgramTest, InitInternalCompilesLinksAndDropsTheShaders) {
    Program program;
    CaptureStdout out;
    EXPECT_TRUE(program.InitInternal("vertex text", "fragment text", &outData_));
    EXPECT_EQ(out.Text(), "");
    EXPECT_EQ(Message(), "");
    EXPECT_TRUE(program.initialised);
    EXPECT_EQ(program.id, 1u);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glCreateShader(GL_VERTEX_SHADER)", "glShaderSource(1, 1)", "glCompileShader(1)",
                            "glGetShaderiv(1, GL_COMPILE_STATUS)", "glCreateShader(GL_FRAGMENT_SHADER)",
                            "glShaderSource(2, 1)", "glCompileShader(2)", "glGetShaderiv(2, GL_COMPILE_STATUS)",
                            "glCreateProgram()", "glAttachShader(1, 1)", "glAttachShader(1, 2)", "glLinkProgram(1)",
                            "glGetProgramiv(1, GL_LINK_STATUS)", "glDetachShader(1, 1)", "glDetachShader(1, 2)",
                            "glDeleteShader(1)", "glDeleteShader(2)"));
    EXPECT_EQ(fake::Gl().shaders[1].source, "vertex text");
    EXPECT_EQ(fake::Gl().shaders[2].source, "fragment text");
}

TEST_F(ProgramTest, FailedVertexShader) {
    fake::Gl().compileFailure = FailVertex;
    fake::Gl().linkFailure = [](GLuint) { return std::nullopt; };
    Program program;
    CaptureStdout out;
    EXPECT_FALSE(program.InitInternal("v", "f", &outData_));
    EXPECT_EQ(out.Text(), "ERROR::SHADER::VERTEX::COMPILATION_FAILED\nvertex log\n");
    EXPECT_EQ(Message(), "vertex log");
    EXPECT_FALSE(program.initialised) << "a link that succeeds does not mend it";
    EXPECT_EQ(program.id, 1u) << "a failed program keeps its id";
    EXPECT_THAT(fake::CallsTo("glGetShaderInfoLog"), ElementsAre("glGetShaderInfoLog(1, 512)"));
    EXPECT_THAT(fake::CallsTo("glLinkProgram"), ElementsAre("glLinkProgram(1)"));
    EXPECT_THAT(fake::Gl().liveShaders, IsEmpty());
}

TEST_F(ProgramTest, FailedFragmentShader) {
    fake::Gl().compileFailure = FailFragment;
    fake::Gl().linkFailure = [](GLuint) { return std::nullopt; };
    Program program;
    CaptureStdout out;
    EXPECT_FALSE(program.InitInternal("v", "f", &outData_));
    EXPECT_EQ(out.Text(), "ERROR::SHADER::FRAGMENT::COMPILATION_FAILED\nfragment log\n");
    EXPECT_EQ(Message(), "fragment log");
}

TEST_F(ProgramTest, FailedLink) {
    fake::Gl().linkFailure = [](GLuint) { return std::optional<std::string>("link log"); };
    Program program;
    CaptureStdout out;
    EXPECT_FALSE(program.InitInternal("v", "f", &outData_));
    EXPECT_EQ(out.Text(), "ERROR::SHADER::PROGRAM::LINKING_FAILED\nlink log\n");
    EXPECT_EQ(Message(), "link log");
    EXPECT_EQ(program.id, 1u);
    EXPECT_THAT(fake::CallsTo("glGetProgramInfoLog"), ElementsAre("glGetProgramInfoLog(1, 512)"));
}

TEST_F(ProgramTest, BothShadersFailing) {
    fake::Gl().compileFailure = [](GLenum type, const std::string&) {
        return std::optional<std::string>(type == GL_VERTEX_SHADER ? "the longest of the logs" : "the second log");
    };
    fake::Gl().linkFailure = [](GLuint) { return std::optional<std::string>("link log"); };
    Program program;
    CaptureStdout out;
    EXPECT_FALSE(program.InitInternal("v", "f", &outData_));
    EXPECT_EQ(out.TextWithoutFlush(),
              "ERROR::SHADER::VERTEX::COMPILATION_FAILED\nthe longest of the logs\n"
              "ERROR::SHADER::FRAGMENT::COMPILATION_FAILED\nthe second log\n"
              "ERROR::SHADER::PROGRAM::LINKING_FAILED\nlink log\n");
    EXPECT_EQ(Message(), "link lognd log the logs") << "each log lies over the remains of the earlier ones";
}

TEST_F(ProgramTest, LogsAreCutTo511Characters) {
    fake::Gl().linkFailure = [](GLuint) { return std::optional<std::string>(std::string(600, 'x')); };
    Program program;
    CaptureStdout out;
    program.InitInternal("v", "f", &outData_);
    EXPECT_EQ(out.Text(), "ERROR::SHADER::PROGRAM::LINKING_FAILED\n" + std::string(511, 'x') + "\n");
    EXPECT_EQ(Message(), std::string(255, 'x'));
}

TEST_F(ProgramTest, SecondInitAbandonsTheFirstProgramObject) {
    Program program;
    program.InitInternal("v", "f", &outData_);
    program.InitInternal("v", "f", &outData_);
    EXPECT_EQ(program.id, 2u);
    EXPECT_THAT(fake::Gl().livePrograms, ElementsAre(1u, 2u));
    program.Release();
    EXPECT_THAT(fake::Gl().livePrograms, ElementsAre(1u));
}

TEST_F(ProgramTest, UseBindsOrWarns) {
    Program program;
    program.Use(&outData_);
    EXPECT_EQ(Message(), "Warning: called Use() on uninitialised Program");
    EXPECT_THAT(fake::Calls(), IsEmpty());
    program.InitInternal("v", "f", &outData_);
    program.Use(&outData_);
    EXPECT_EQ(fake::Calls().back(), "glUseProgram(1)");
}

TEST_F(ProgramTest, GetAnswersOrWarns) {
    Program program;
    EXPECT_EQ(program.Get(&outData_), 0u);
    EXPECT_EQ(Message(), "Warning: called Get() on uninitialised Program");
    program.InitInternal("v", "f", &outData_);
    outData_ = {};
    EXPECT_EQ(program.Get(&outData_), 1u);
    EXPECT_EQ(Message(), "");
    program.Release();
    EXPECT_EQ(program.Get(&outData_), 0u);
    EXPECT_EQ(Message(), "Warning: called Get() on uninitialised Program");
}

TEST_F(ProgramTest, FailedProgramMayNotBeUsedThoughItKeepsItsId) {
    fake::Gl().linkFailure = [](GLuint) { return std::optional<std::string>(""); };
    Program program;
    CaptureStdout out;
    program.InitInternal("v", "f", &outData_);
    EXPECT_EQ(program.Get(&outData_), 0u);
    EXPECT_EQ(program.id, 1u);
}

TEST_F(ProgramTest, ReleaseDeletesOnce) {
    Program program;
    program.Release();
    EXPECT_THAT(fake::Calls(), IsEmpty()) << "id 0";
    program.InitInternal("v", "f", &outData_);
    fake::ClearCalls();
    program.Release();
    EXPECT_EQ(program.id, 0u);
    EXPECT_FALSE(program.initialised);
    program.Release();
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteProgram(1)"));
}

TEST_F(ProgramTest, DestructorDeletes) {
    {
        Program program;
        program.InitInternal("v", "f", &outData_);
        fake::ClearCalls();
    }
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteProgram(1)"));
}

/// Shader files in a folder of their own.
class ProgramFiles : public FakeGLTest {
 protected:
    void Write(const std::string& name, const std::string& text) {
        std::ofstream(Path(name), std::ios::binary) << text;
    }
    std::string Path(const std::string& name) const {
        return ::testing::TempDir() + "umbrant_program_" + std::to_string(getpid()) + "_" + name;
    }
    void TearDown() override {
        for (const char* name : {"a.vs", "a.fs"}) std::remove(Path(name).c_str());
        FakeGLTest::TearDown();
    }
};

TEST_F(ProgramFiles, InitExternalReadsBothFilesAndLeaksItsFirstProgram) {
    Write("a.vs", "line 1\nline 2");
    Write("a.fs", "\nonly\n");
    Program program;
    program.InitExternal(Path("a"), Path("a"), &outData_);
    EXPECT_TRUE(program.initialised);
    EXPECT_EQ(fake::Gl().shaders[1].source, "line 1\nline 2\n");
    EXPECT_EQ(fake::Gl().shaders[2].source, "\nonly\n");
    EXPECT_EQ(fake::Calls().front(), "glCreateProgram()");
    EXPECT_EQ(program.id, 2u);
    program.Release();
    EXPECT_THAT(fake::Gl().livePrograms, ElementsAre(1u)) << "the first object is kept on purpose";
    EXPECT_THAT(fake::Gl().liveShaders, IsEmpty());
}

TEST_F(ProgramFiles, MissingFilesAreReportedAndThenFailToCompile) {
    fake::Gl().compileFailure = [](GLenum, const std::string& source) {
        return source.empty() ? std::optional<std::string>("empty") : std::nullopt;
    };
    fake::Gl().linkFailure = [](GLuint) { return std::optional<std::string>("link"); };
    Program program;
    CaptureStdout out;
    program.InitExternal("/nowhere/v", "/nowhere/f", &outData_);
    EXPECT_FALSE(program.initialised);
    EXPECT_EQ(out.Text(),
              "ERROR::SHADER::VERTEX::COMPILATION_FAILED\nempty\n"
              "ERROR::SHADER::FRAGMENT::COMPILATION_FAILED\nempty\n"
              "ERROR::SHADER::PROGRAM::LINKING_FAILED\nlink\n");
    EXPECT_EQ(Message(), "linkye to load shader: /nowhere/f.fs");
}

TEST_F(ProgramFiles, LoadShaderEndsEveryLine) {
    Program program;
    Write("a.vs", "one\ntwo\n\nthree");
    EXPECT_EQ(program.LoadShader(Path("a.vs"), &outData_), "one\ntwo\n\nthree\n");
    Write("a.vs", "");
    EXPECT_EQ(program.LoadShader(Path("a.vs"), &outData_), "");
    EXPECT_EQ(Message(), "");
    EXPECT_EQ(program.LoadShader("/nowhere/x.vs", &outData_), "");
    EXPECT_EQ(Message(), "Unable to load shader: /nowhere/x.vs");
}

}  // namespace

}  // namespace umbrant::effect
