// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Framebuffers with real pixels: what the textures are, which way up images go, and how they come back.

#include "gl/framebuffer.h"

#include <array>
#include <cmath>
#include <stdexcept>

#include "gl/program.h"
#include "gl/quad.h"
#include "tests/gl/quad_vertex.h"
#include "tests/support/gl_context.h"
#include "tests/support/test_host.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

namespace {

constexpr char kCopy[] = R"(#version 330
in vec2 at;
out float colour;
uniform sampler2D source;
void main() { colour = texture(source, at).r; }
)";

/// Writes the value at a fixed place of the source everywhere.
constexpr char kProbe[] = R"(#version 330
in vec2 at;
out float colour;
uniform sampler2D source;
uniform vec2 place;
void main() { colour = texture(source, place).r; }
)";

GLint LevelParameter(GLenum name) {
    GLint value = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &value);
    return value;
}

GLint Parameter(GLenum name) {
    GLint value = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    return value;
}

class FramebufferGL : public GLContextTest {
 protected:
    void SetUp() override {
        GLContextTest::SetUp();
        if (!context_) return;
        InitQuad(&vao_, &vbo_);
        params_.in_data = &host_.inData;
        params_.suites = &suites_;
    }
    void TearDown() override {
        if (context_) DeleteQuad(&vao_, &vbo_);
        suites_.ReleaseAllSuites();
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        GLContextTest::TearDown();
    }

    PF_Err Upload(Framebuffer& fb, TestWorld& world, int16_t depth) {
        params_.bitDepth = depth;
        return fb.FBO_Init_PF_World(&world.world, &params_, &out_);
    }
    PF_Err Download(Framebuffer& fb, TestWorld& world) {
        return fb.DownloadBuffer(&host_.inData, suites_, &colourF_, &colour8_, &world.world, &out_);
    }
    void Draw(const char* fragment, float x = 0, float y = 0) {
        Program program;
        ASSERT_TRUE(program.InitInternal(kVertex, fragment, &out_)) << out_.return_msg;
        program.Use(&out_);
        glUniform2f(glGetUniformLocation(program.Get(&out_), "place"), x, y);
        glBindVertexArray(vao_);
        glDrawArrays(GL_TRIANGLE_FAN, 0, kQuadVertices);
        glUseProgram(0);
    }
    /// The source's value at a texture coordinate, through a byte buffer of one pixel.
    int ValueAt(Framebuffer& source, float x, float y) {
        Framebuffer target;
        target.FramebufferInit(1, 1, 1, 8, &out_);
        target.BindFBO(PING, true, &out_);
        source.BindTAO(PING, &out_);
        Draw(kProbe, x, y);
        TestWorld world(1, 1, sizeof(PF_Pixel));
        Download(target, world);
        return world.At8(0, 0).alpha;
    }

    TestHost host_;
    AEGP_SuiteHandler suites_{&host_.basic};
    myParams params_;
    PF_OutData out_{};
    PF_PixelFloat colourF_{0, 0.25f, 0.5f, 0.75f};
    PF_Pixel colour8_{0, 11, 22, 33};
    GLuint vao_ = 0;
    GLuint vbo_ = 0;
};

TEST_F(FramebufferGL, PingPongTexturesAre16BitNormalisedAndMirrorAtEveryDepth) {
    for (unsigned short depth : {8, 32}) {
        SCOPED_TRACE(depth);
        Framebuffer fb;
        ASSERT_TRUE(fb.FramebufferInit(6, 4, 2, depth, &out_)) << out_.return_msg;
        for (GLuint texture : fb.textures) {
            glBindTexture(GL_TEXTURE_2D, texture);
            EXPECT_EQ(LevelParameter(GL_TEXTURE_INTERNAL_FORMAT), GL_R16);
            EXPECT_EQ(LevelParameter(GL_TEXTURE_RED_SIZE), 16);
            EXPECT_EQ(LevelParameter(GL_TEXTURE_WIDTH), 6);
            EXPECT_EQ(LevelParameter(GL_TEXTURE_HEIGHT), 4);
            EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR);
            EXPECT_EQ(Parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
            EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_MIRRORED_REPEAT);
            EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_T), GL_MIRRORED_REPEAT);
        }
        glBindTexture(GL_TEXTURE_2D, 0);
    }
}

TEST_F(FramebufferGL, LayerTexturesHaveTheWorldsDepthAndClamp) {
    const struct {
        int16_t depth;
        size_t pixelBytes;
        GLint format;
    } rows[] = {{8, sizeof(PF_Pixel), GL_R8}, {32, sizeof(PF_PixelFloat), GL_R32F}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.depth);
        TestWorld world(5, 3, row.pixelBytes);
        Framebuffer fb;
        ASSERT_EQ(Upload(fb, world, row.depth), PF_Err_NONE);
        fb.BindTAO(PING, &out_);
        EXPECT_EQ(LevelParameter(GL_TEXTURE_INTERNAL_FORMAT), row.format);
        EXPECT_EQ(LevelParameter(GL_TEXTURE_WIDTH), 5);
        EXPECT_EQ(LevelParameter(GL_TEXTURE_HEIGHT), 3);
        EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR);
        EXPECT_EQ(Parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
        EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
        EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
        EXPECT_THROW(fb.BindFBO(PING, false, &out_), std::out_of_range);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
}

TEST_F(FramebufferGL, RowZeroOfAWorldIsAtVZero) {
    TestWorld world(2, 2, sizeof(PF_Pixel));
    world.At8(0, 0).alpha = 10;
    world.At8(1, 0).alpha = 20;
    world.At8(0, 1).alpha = 30;
    world.At8(1, 1).alpha = 40;
    Framebuffer layer;
    ASSERT_EQ(Upload(layer, world, 8), PF_Err_NONE);
    EXPECT_EQ(ValueAt(layer, 0.25f, 0.25f), 10);
    EXPECT_EQ(ValueAt(layer, 0.75f, 0.25f), 20);
    EXPECT_EQ(ValueAt(layer, 0.25f, 0.75f), 30);
    EXPECT_EQ(ValueAt(layer, 0.75f, 0.75f), 40);
}

TEST_F(FramebufferGL, LayersClampAtTheirEdges) {
    TestWorld world(2, 1, sizeof(PF_Pixel));
    world.At8(0, 0).alpha = 100;
    world.At8(1, 0).alpha = 200;
    Framebuffer layer;
    ASSERT_EQ(Upload(layer, world, 8), PF_Err_NONE);
    EXPECT_EQ(ValueAt(layer, -0.75f, 0.5f), 100);
    EXPECT_EQ(ValueAt(layer, 1.75f, 0.5f), 200);
    EXPECT_EQ(ValueAt(layer, 0.5f, 0.5f), 150) << "sampled linearly between the two";
}

TEST_F(FramebufferGL, PingPongBuffersMirrorAtTheirEdges) {
    TestWorld world(2, 1, sizeof(PF_Pixel));
    world.At8(0, 0).alpha = 100;
    world.At8(1, 0).alpha = 200;
    Framebuffer layer;
    ASSERT_EQ(Upload(layer, world, 8), PF_Err_NONE);
    Framebuffer fb;
    ASSERT_TRUE(fb.FramebufferInit(2, 1, 1, 8, &out_));
    fb.BindFBO(PING, true, &out_);
    layer.BindTAO(PING, &out_);
    Draw(kCopy);
    EXPECT_EQ(ValueAt(fb, -0.75f, 0.5f), 200);
    EXPECT_EQ(ValueAt(fb, -0.25f, 0.5f), 100);
    EXPECT_EQ(ValueAt(fb, 1.75f, 0.5f), 100);
}

TEST_F(FramebufferGL, BytesGoThroughBothBuffersAndComeBackExactly) {
    constexpr int kWidth = 7;
    constexpr int kHeight = 5;
    TestWorld world(kWidth, kHeight, sizeof(PF_Pixel), 5);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) world.At8(x, y) = {static_cast<A_u_char>(7 * (y * kWidth + x)), 1, 2, 3};
    }
    Framebuffer layer;
    ASSERT_EQ(Upload(layer, world, 8), PF_Err_NONE);
    Framebuffer fb;
    ASSERT_TRUE(fb.FramebufferInit(kWidth, kHeight, 2, 8, &out_));
    fb.BindFBO(PONG, true, &out_);
    layer.BindTAO(PING, &out_);
    Draw(kCopy);
    fb.BindFBO(PING, true, &out_);
    fb.BindTAO(PONG, &out_);
    Draw(kCopy);
    TestWorld result(kWidth, kHeight, sizeof(PF_Pixel), 1);
    EXPECT_EQ(Download(fb, result), PF_Err_NONE);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const PF_Pixel& pixel = result.At8(x, y);
            EXPECT_EQ(pixel.alpha, world.At8(x, y).alpha) << x << " " << y;
            EXPECT_EQ(pixel.red, 11);
            EXPECT_EQ(pixel.green, 22);
            EXPECT_EQ(pixel.blue, 33);
        }
    }
    EXPECT_TRUE(result.PaddingIntact());
    EXPECT_TRUE(world.PaddingIntact());
    GLint alignment = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    EXPECT_EQ(alignment, 1) << "left as the upload set it";
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    EXPECT_EQ(alignment, 1);
}

TEST_F(FramebufferGL, FloatsComeBackInStepsOf16Bits) {
    TestWorld world(3, 2, sizeof(PF_PixelFloat));
    const std::array<float, 6> values = {0, 0.1f, 0.33333f, 0.9f, 1.0f, 1.5f};
    for (int i = 0; i < 6; ++i) world.AtFloat(i % 3, i / 3) = {values[static_cast<size_t>(i)], 9, 9, 9};
    Framebuffer layer;
    ASSERT_EQ(Upload(layer, world, 32), PF_Err_NONE);
    Framebuffer fb;
    ASSERT_TRUE(fb.FramebufferInit(3, 2, 1, 32, &out_));
    fb.BindFBO(PING, true, &out_);
    layer.BindTAO(PING, &out_);
    Draw(kCopy);
    TestWorld result(3, 2, sizeof(PF_PixelFloat));
    EXPECT_EQ(Download(fb, result), PF_Err_NONE);
    for (int i = 0; i < 6; ++i) {
        const PF_PixelFloat& pixel = result.AtFloat(i % 3, i / 3);
        const float clamped = std::min(values[static_cast<size_t>(i)], 1.0f);
        EXPECT_NEAR(pixel.alpha, clamped, 1.0 / 65535) << i;
        const double steps = static_cast<double>(pixel.alpha) * 65535;
        EXPECT_NEAR(steps, std::round(steps), 0.01) << "a 16-bit step, not a float: " << i;
        EXPECT_EQ(pixel.red, 0.25f);
        EXPECT_EQ(pixel.green, 0.5f);
        EXPECT_EQ(pixel.blue, 0.75f);
    }
    EXPECT_TRUE(result.PaddingIntact());
}

TEST_F(FramebufferGL, BindFBOSetsTheViewportAndClears) {
    Framebuffer fb;
    ASSERT_TRUE(fb.FramebufferInit(6, 4, 2, 8, &out_));
    glViewport(1, 2, 3, 4);
    glClearColor(1, 1, 1, 1);
    fb.BindFBO(PONG, true, &out_);
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 6, 4}));
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<GLuint>(bound), fb.fbos[1]);
    unsigned char red = 99;
    glReadPixels(2, 2, 1, 1, GL_RED, GL_UNSIGNED_BYTE, &red);
    EXPECT_EQ(red, 0);
}

TEST_F(FramebufferGL, InitsAndUploadsLeaveNothingBound) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 2, 8, &out_);
    TestWorld world(3, 3, sizeof(PF_Pixel));
    Framebuffer layer;
    Upload(layer, world, 8);
    GLint value = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &value);
    EXPECT_EQ(value, 0);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &value);
    EXPECT_EQ(value, 0);
    glGetIntegerv(GL_UNPACK_ROW_LENGTH, &value);
    EXPECT_EQ(value, 0);
}

TEST_F(FramebufferGL, InitAfterCleanUpWorksAndKeepsThePlaceholders) {
    Framebuffer fb;
    ASSERT_TRUE(fb.FramebufferInit(6, 4, 2, 8, &out_));
    fb.CleanUp();
    ASSERT_TRUE(fb.FramebufferInit(3, 2, 2, 8, &out_)) << out_.return_msg;
    ASSERT_EQ(fb.fbos.size(), 4u);
    EXPECT_EQ(fb.fbos[2], 0u);
    EXPECT_EQ(fb.fbos[3], 1u);
    ASSERT_EQ(fb.textures.size(), 4u);
    EXPECT_EQ(fb.textures[3], 1u);
    fb.BindFBO(PONG, true, &out_);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
}

TEST_F(FramebufferGL, CleanUpDeletesTheObjects) {
    Framebuffer fb;
    ASSERT_TRUE(fb.FramebufferInit(6, 4, 2, 8, &out_));
    const std::vector<GLuint> fbos = fb.fbos;
    const std::vector<GLuint> textures = fb.textures;
    fb.CleanUp();
    for (GLuint name : fbos) EXPECT_FALSE(glIsFramebuffer(name));
    for (GLuint name : textures) EXPECT_FALSE(glIsTexture(name));
}

TEST_F(FramebufferGL, SizesBeyondTheDriverAreReported) {
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    Framebuffer fb;
    EXPECT_FALSE(fb.FramebufferInit(limit + 1, 1, 1, 8, &out_));
    EXPECT_EQ(std::string(out_.return_msg), "FBO bad, res: " + std::to_string(limit + 1) + " 1");
    EXPECT_FALSE(fb.initialised);
    while (glGetError() != GL_NO_ERROR) continue;
}

}  // namespace

}  // namespace umbrant::effect
