// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/gl_context.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "gl/context.h"
#include "platform/gl_api.h"

namespace {

GLuint Shader(GLenum kind, const char* source) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

/// A program that draws, over all of the target, a texture of two texels from the middle of one to that of the other.
GLuint RampProgram() {
    const GLuint program = glCreateProgram();
    const GLuint shaders[] = {Shader(GL_VERTEX_SHADER,
                                     "#version 330 core\n"
                                     "out float along;\n"
                                     "void main() {\n"
                                     "    vec2 at = vec2(gl_VertexID & 1, gl_VertexID >> 1);\n"
                                     "    along = at.x;\n"
                                     "    gl_Position = vec4(2.0 * at - 1.0, 0.0, 1.0);\n"
                                     "}\n"),
                              Shader(GL_FRAGMENT_SHADER,
                                     "#version 330 core\n"
                                     "in float along;\n"
                                     "uniform sampler2D texels;\n"
                                     "out vec4 color;\n"
                                     "void main() { color = texture(texels, vec2(0.25 + 0.5 * along, 0.5)); }\n")};
    for (const GLuint shader : shaders) glAttachShader(program, shader);
    glLinkProgram(program);
    for (const GLuint shader : shaders) glDeleteShader(shader);
    return program;
}

GLuint FloatTexture(GLsizei width, const float* values) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R32F, width, 1, 0, GL_RED, GL_FLOAT, values);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    return texture;
}

}  // namespace

double FilterError() {
    // Four times as many places as weights of 8 bits have, and not a multiple of them.
    std::array<float, 1021> drawn{};
    constexpr auto kWidth = static_cast<GLsizei>(drawn.size());
    const float texels[] = {0, 1};
    const GLuint target = FloatTexture(kWidth, nullptr);
    const GLuint source = FloatTexture(2, texels);
    const GLuint program = RampProgram();
    GLuint framebuffer = 0;
    GLuint vertices = 0;
    glGenFramebuffers(1, &framebuffer);
    glGenVertexArrays(1, &vertices);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target, 0);
    glBindVertexArray(vertices);
    glUseProgram(program);
    glViewport(0, 0, kWidth, 1);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glReadPixels(0, 0, kWidth, 1, GL_RED, GL_FLOAT, drawn.data());
    glUseProgram(0);
    glBindVertexArray(0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteProgram(program);
    glDeleteVertexArrays(1, &vertices);
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &source);
    glDeleteTextures(1, &target);
    double worst = 0;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        const double exact = (static_cast<double>(i) + 0.5) / kWidth;
        worst = std::max(worst, std::abs(static_cast<double>(drawn[i]) - exact));
    }
    return worst;
}

bool GLAvailable(const char** reason) {
    static const bool available = [] {
        CGLContextObj context = CreateContext(nullptr, nullptr);
        DeleteContext(context);
        return context != nullptr;
    }();
    *reason = available ? "" : "no OpenGL 3.3 core context can be made on this machine";
    return available;
}

void GLContextTest::SetUp() {
    const char* reason = nullptr;
    if (!GLAvailable(&reason)) GTEST_SKIP() << reason;
    context_ = CreateContext(nullptr, nullptr);
    ASSERT_NE(context_, nullptr);
    SetCurrentContext(context_);
    ASSERT_EQ(GetCurrentContext(), context_);
}

void GLContextTest::TearDown() {
    if (!context_) return;
    SetCurrentContext(context_);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    DeleteContext(context_);
}
