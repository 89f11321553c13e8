// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Programs, quads, data-driven draws and the framebuffer helper on a real driver.

#include <array>
#include <cstring>
#include <fstream>

#include "gl/context.h"
#include "gl/fbo_helper.h"
#include "gl/gl_error.h"
#include "gl/pod.h"
#include "gl/program.h"
#include "gl/program_list.h"
#include "gl/quad.h"
#include "tests/gl/quad_vertex.h"
#include "tests/support/capture_stdout.h"
#include "tests/support/gl_context.h"

namespace umbrant::effect {

namespace {

constexpr char kFragment[] = R"(#version 330
in vec2 at;
out vec4 colour;
uniform sampler2D first;
uniform sampler2D second;
uniform vec4 tint;
uniform mat4 matrix;
void main() { colour = matrix * (texture(first, at) + texture(second, at)) * tint; }
)";

constexpr char kShowUV[] = R"(#version 330
in vec2 at;
out vec4 colour;
void main() { colour = vec4(at, 1.0, 1.0); }
)";

constexpr char kBroken[] = "#version 330\nthis is no shader\n";

using Pixel = std::array<unsigned char, 4>;

class Toolkit : public GLContextTest {
 protected:
    Pixel PixelAt(const PX_FBO& fbo, int x, int y) {
        Pixel pixel{};
        glBindFramebuffer(GL_FRAMEBUFFER, fbo.fbo);
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        return pixel;
    }
    PF_OutData out_{};
};

TEST_F(Toolkit, ContextsAreCoreProfile) {
    GLint profile = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_EQ(profile, GL_CONTEXT_CORE_PROFILE_BIT);
}

TEST_F(Toolkit, ProgramTellsOfBothShadersAndTheLink) {
    Program program;
    CaptureStdout out;
    EXPECT_FALSE(program.InitInternal(kBroken, kBroken, &out_));
    const std::string text = out.Text();
    const size_t vertex = text.find("ERROR::SHADER::VERTEX::COMPILATION_FAILED\n");
    const size_t fragment = text.find("ERROR::SHADER::FRAGMENT::COMPILATION_FAILED\n");
    const size_t link = text.find("ERROR::SHADER::PROGRAM::LINKING_FAILED\n");
    EXPECT_EQ(vertex, 0u);
    EXPECT_LT(vertex, fragment);
    EXPECT_LT(fragment, link);
    EXPECT_LT(link, text.size());
    EXPECT_NE(out_.return_msg[0], '\0');
    EXPECT_NE(program.id, 0u);
}

TEST_F(Toolkit, ProgramFromFiles) {
    const std::string base = ::testing::TempDir() + "umbrant_toolkit_shader";
    std::ofstream(base + ".vs") << kVertex;
    std::ofstream(base + ".fs") << kShowUV;
    Program program;
    program.InitExternal(base, base, &out_);
    EXPECT_TRUE(program.initialised) << out_.return_msg;
    program.Use(&out_);
    GLint current = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(static_cast<GLuint>(current), program.Get(&out_));
    int programs = 0;
    for (GLuint name = 1; name <= program.id; ++name) programs += glIsProgram(name);
    EXPECT_EQ(programs, 2) << "the first object is kept";
    std::remove((base + ".vs").c_str());
    std::remove((base + ".fs").c_str());
}

TEST_F(Toolkit, ProgramListWithPreambleAndEmptyList) {
    const char* vertex = "layout(location = 0) in vec3 position; void main() { gl_Position = vec4(position, 1.0); }";
    const char* fragment = "out vec4 colour; void main() { colour = vec4(1.0); }";
    const uint64_t list[] = {GL_VERTEX_SHADER, reinterpret_cast<uintptr_t>(vertex), GL_FRAGMENT_SHADER,
                             reinterpret_cast<uintptr_t>(fragment), 0};
    GLuint program = CreateProgram(list, "#version 330\n");
    EXPECT_NE(program, 0u);
    DeleteProgram(&program);
    EXPECT_EQ(program, 0u);
    CaptureStdout out;
    const uint64_t broken[] = {GL_VERTEX_SHADER, reinterpret_cast<uintptr_t>("no shader"), 0};
    CreateProgram(broken, "#version 330\n");
    EXPECT_EQ(out.Text().rfind("Compile Shader Failed - ", 0), 0u);
    while (glGetError() != GL_NO_ERROR) continue;
}

TEST_F(Toolkit, CheckOpenGLErrorPrintsWhatGLSays) {
    CaptureStdout out;
    CheckOpenGLError("nothing", "file", 1);
    EXPECT_EQ(out.Text(), "");
    glEnable(0xFFFF);
    CheckOpenGLError("enabling", "file", 2);
    EXPECT_EQ(out.Text(), "OpenGL error 00000500, at file:2 - for enabling\n\n");
}

struct QuadCase {
    const char* name;
    float w, h;  ///< 0: the whole quad
    int x, y;    ///< where to look in 8 x 8 pixels
    bool covered;
    Pixel colour;
};

TEST_F(Toolkit, QuadsCoverWhatTheySay) {
    const QuadCase rows[] = {{"whole, lower left", 0, 0, 0, 0, true, {16, 16, 255, 255}},
                             {"whole, upper right", 0, 0, 7, 7, true, {239, 239, 255, 255}},
                             {"whole, upper left", 0, 0, 0, 7, true, {16, 239, 255, 255}},
                             {"half, at its right edge", 0.5f, 1, 3, 0, true, {223, 16, 255, 255}},
                             {"half, beyond its right edge", 0.5f, 1, 4, 0, false, {0, 0, 0, 0}},
                             {"quarter, at its top", 0.5f, 0.5f, 0, 3, true, {32, 223, 255, 255}},
                             {"quarter, above its top", 0.5f, 0.5f, 0, 4, false, {0, 0, 0, 0}}};
    Program program;
    ASSERT_TRUE(program.InitInternal(kVertex, kShowUV, &out_)) << out_.return_msg;
    PX_FBO fbo = CreateTextureFBO(8, 8, GL_RGBA8, 0);
    ASSERT_NE(fbo.fbo, 0u);
    for (const QuadCase& row : rows) {
        SCOPED_TRACE(row.name);
        GLuint vao = 0;
        GLuint vbo = 0;
        if (row.w > 0) {
            InitQuadRatio(&vao, &vbo, row.w, row.h);
        } else {
            InitQuad(&vao, &vbo);
        }
        ClearFBO(&fbo);
        glBindFramebuffer(GL_FRAMEBUFFER, fbo.fbo);
        glViewport(0, 0, 8, 8);
        program.Use(&out_);
        glBindVertexArray(vao);
        glDrawArrays(GL_TRIANGLE_FAN, 0, kQuadVertices);
        glBindVertexArray(0);
        const Pixel pixel = PixelAt(fbo, row.x, row.y);
        for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(pixel[i], row.colour[i], 1) << i;
        DeleteQuad(&vao, &vbo);
        EXPECT_FALSE(glIsVertexArray(vao));
        EXPECT_FALSE(glIsBuffer(vbo));
    }
    DeleteGenericFBO(&fbo);
    EXPECT_EQ(fbo.fbo, 0u);
}

GLuint TextureOf(unsigned char red, unsigned char green) {
    const unsigned char pixel[4] = {red, green, 0, 0};
    GLRenderBuffer texture = CreateTextureRenderBuffer(1, 1, GL_RGBA8);
    UploadToTexture(texture.id, const_cast<unsigned char*>(pixel), 4, 8, 1, 1);
    return texture.id;
}

TEST_F(Toolkit, PodDrawsWithTwoTexturesATintAndAMatrix) {
    const float positions[] = {-1, -1, 0, 3, -1, 0, -1, 3, 0};
    const float uvs[] = {0, 0, 2, 0, 0, 2};
    GLuint positionBuffer = CreateBuffer(positions, sizeof positions, GL_ARRAY_BUFFER, GL_STATIC_DRAW);
    GLuint uvBuffer = CreateBuffer(uvs, sizeof uvs, GL_ARRAY_BUFFER, GL_STATIC_DRAW);
    Program program;
    ASSERT_TRUE(program.InitInternal(kVertex, kFragment, &out_)) << out_.return_msg;
    // Not transposed: the second column's first element carries green into red.
    Matrix44f matrix{};
    for (int i = 0; i < 4; ++i) matrix.m[5 * i] = 1;
    matrix.m[4] = 1;
    GL_Pod pod{};
    pod.draw[DRAW_MODE] = GL_TRIANGLES;
    pod.draw[DRAW_COUNT] = 3;
    pod.draw[DRAW_INSTANCES] = 1;
    pod.draw[DRAW_PROGRAM] = program.id;
    const GLuint first = TextureOf(40, 0);
    const GLuint second = TextureOf(20, 60);
    pod.uniforms = {{"first", TEX2D(first)},
                    {"second", TEX2D(second)},
                    {"tint", VEC4({1, 0.5f, 1, 1})},
                    {"matrix", MAT44(matrix)},
                    {"unknown", VEC(1)}};
    pod.attributes = {{"position", CreateAttribute(positionBuffer, 3, GL_FLOAT)},
                      {"uv", make_attrib(uvBuffer, 2, GL_FLOAT, 8, 0, 0)}};
    PX_FBO fbo = CreateTextureFBO(2, 2, GL_RGBA8, 0);
    CaptureStdout out;
    RenderPOD(fbo.fbo, {0, 0, 2, 2}, pod);
    EXPECT_EQ(out.Text(), "");
    const Pixel pixel = PixelAt(fbo, 1, 1);
    EXPECT_NEAR(pixel[0], 120, 1);
    EXPECT_NEAR(pixel[1], 30, 1);

    pod.draw[DRAW_INSTANCES] = 0;
    ClearFBO(&fbo);
    RenderPOD(fbo.fbo, {0, 0, 2, 2}, pod);
    EXPECT_EQ(PixelAt(fbo, 1, 1), (Pixel{0, 0, 0, 0})) << "no instance, nothing drawn";

    ClearAttribBuffers(pod.attributes);
    EXPECT_FALSE(glIsBuffer(positionBuffer));
    glDeleteTextures(1, &first);
    glDeleteTextures(1, &second);
    DeleteGenericFBO(&fbo);
}

TEST_F(Toolkit, PodDrawsWithIndicesAndTransformFeedback) {
    const float positions[] = {9, 9, 9, -1, -1, 0, 3, -1, 0, -1, 3, 0};
    const uint32_t indices[] = {1, 2, 3};
    const GLuint source = CreateBuffer(positions, sizeof positions, GL_ARRAY_BUFFER, GL_STATIC_DRAW);
    const GLuint elements = CreateBuffer(indices, sizeof indices, GL_ARRAY_BUFFER, GL_STATIC_DRAW);
    const GLuint target = CreateBuffer(nullptr, 3 * sizeof(float), GL_ARRAY_BUFFER, GL_STATIC_DRAW);
    const char* text = "#version 330\nin vec3 position; out float sum; void main() { sum = dot(position, vec3(1.0)); }";
    const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLuint program = glCreateProgram();
    glAttachShader(program, shader);
    const char* captured = "sum";
    glTransformFeedbackVaryings(program, 1, &captured, GL_INTERLEAVED_ATTRIBS);
    glLinkProgram(program);

    GL_Pod pod{};
    pod.draw[DRAW_MODE] = GL_TRIANGLES;
    pod.draw[DRAW_COUNT] = 3;
    pod.draw[DRAW_ELEMENT_BUFFER] = elements;
    pod.draw[DRAW_FEEDBACK_BUFFER] = target;
    pod.draw[DRAW_INSTANCES] = 1;
    pod.draw[DRAW_FEEDBACK_MODE] = GL_TRIANGLES;
    pod.draw[DRAW_RESTART_INDEX] = 77;
    pod.draw[DRAW_CULL_FACE] = GL_BACK;
    pod.draw[DRAW_PROGRAM] = program;
    pod.attributes = {{"position", {source, 3, GL_FLOAT, 0}}};
    PX_FBO fbo = CreateTextureFBO(2, 2, GL_RGBA8, 0);
    CaptureStdout out;
    RenderPOD(fbo.fbo, {0, 0, 2, 2}, pod);
    EXPECT_EQ(out.Text(), "No Active Uniforms for prog: " + std::to_string(program) + "\n");
    std::array<float, 3> sums{};
    glBindBuffer(GL_ARRAY_BUFFER, target);
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, sizeof sums, sums.data());
    EXPECT_EQ(sums, (std::array<float, 3>{-2, 2, 2}));
    for (GLenum capability : {GL_CULL_FACE, GL_PRIMITIVE_RESTART, GL_RASTERIZER_DISCARD}) {
        EXPECT_FALSE(glIsEnabled(capability));
    }
    DeleteBuffer(source);
    DeleteBuffer(elements);
    DeleteBuffer(target);
    DeleteProgram(&program);
    glDeleteShader(shader);
    DeleteGenericFBO(&fbo);
}

TEST_F(Toolkit, UploadsAndReadsBackPaddedRows) {
    // 3 x 2 pixels in rows of 5, bytes and floats.
    std::array<unsigned char, 5 * 2 * 4> bytes{};
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(3 * i + 1);
    PX_FBO fbo = CreateTextureFBO(3, 2, GL_RGBA8, 0);
    UploadToTexture(fbo.colour.id, bytes.data(), 20, 8, 3, 2);
    std::array<unsigned char, 4 * 2 * 4> back{};
    back.fill(0xEE);
    FBOtoEffectWorld(fbo, back.data(), 3, 2, 16, 8, GL_COLOR_ATTACHMENT0);
    for (size_t y = 0; y < 2; ++y) {
        EXPECT_EQ(std::memcmp(&back[y * 16], &bytes[y * 20], 12), 0) << y;
        for (size_t i = 12; i < 16; ++i) EXPECT_EQ(back[y * 16 + i], 0xEE) << "padding of row " << y;
    }
    DeleteGenericFBO(&fbo);

    std::array<float, 5 * 2 * 4> floats{};
    for (size_t i = 0; i < floats.size(); ++i) floats[i] = 0.5f * static_cast<float>(i) - 3;
    PX_FBO deep = CreateTextureFBO(3, 2, GL_RGBA32F, 0);
    UploadToTexture(deep.colour.id, floats.data(), 80, 32, 3, 2);
    std::array<float, 4 * 2 * 4> deepBack{};
    FBOtoEffectWorld(deep, deepBack.data(), 3, 2, 64, 32, GL_COLOR_ATTACHMENT0);
    for (size_t y = 0; y < 2; ++y) {
        for (size_t i = 0; i < 12; ++i) EXPECT_EQ(deepBack[y * 16 + i], floats[y * 20 + i]) << y << " " << i;
    }
    DeleteGenericFBO(&deep);
}

TEST_F(Toolkit, RenderBuffersAreSampledAsChosen) {
    const struct {
        const char* name;
        GLint format;
        GLint filter;
    } rows[] = {{"bytes", GL_RGBA8, GL_LINEAR},
                {"floats", GL_RGBA32F, GL_LINEAR},
                {"integers", GL_RGBA32I, GL_NEAREST},
                {"depth", GL_DEPTH_COMPONENT32F, GL_NEAREST}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CaptureStdout out;
        GLRenderBuffer buffer = CreateTextureRenderBuffer(4, 2, row.format);
        glBindTexture(GL_TEXTURE_2D, buffer.id);
        GLint value = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &value);
        EXPECT_EQ(value, row.format);
        for (GLenum name : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
            glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
            EXPECT_EQ(value, row.filter);
        }
        for (GLenum name : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
            glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
            EXPECT_EQ(value, GL_REPEAT);
        }
        DeleteRenderBuffer(buffer);
        EXPECT_EQ(buffer.id, 0u);
    }
}

TEST_F(Toolkit, FramebufferWithoutAttachmentIsIncomplete) {
    CaptureStdout out;
    EXPECT_EQ(CreateFBO({4, 2, 1, GL_RGBA8, 0, GL_TEXTURE_2D, true}), 0u);
    EXPECT_EQ(out.Text(), "Framebuffer Error - GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENTCode: 36055\n");
}

}  // namespace

}  // namespace umbrant::effect
