// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/fbo_helper.h"

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using FBOHelper = FakeGLTest;

struct FormatCase {
    const char* name;
    int internalFormat;
    const char* filter;
    const char* allocation;
    const char* printed;
};

void PrintTo(const FormatCase& row, std::ostream* out) {
    *out << row.name;
}

class RenderBufferFormat : public FakeGLTest, public ::testing::WithParamInterface<FormatCase> {};

TEST_P(RenderBufferFormat, ChoosesUploadAndFilter) {
    const FormatCase& row = GetParam();
    CaptureStdout out;
    const GLRenderBuffer buffer = CreateTextureRenderBuffer(6, 4, row.internalFormat);
    EXPECT_EQ(out.TextWithoutFlush(), row.printed);
    EXPECT_EQ(buffer.width, 6u);
    EXPECT_EQ(buffer.height, 4u);
    EXPECT_EQ(buffer.count, 1u);
    EXPECT_EQ(buffer.internalFormat, static_cast<uint32_t>(row.internalFormat));
    EXPECT_EQ(buffer.id, 1u);
    EXPECT_EQ(buffer.target, static_cast<uint32_t>(GL_TEXTURE_2D));
    EXPECT_TRUE(buffer.isTexture);
    const std::string filter = row.filter;
    EXPECT_THAT(fake::Calls(), ElementsAre("glGenTextures(1)", "glBindTexture(GL_TEXTURE_2D, 1)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, " + filter + ")",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, " + filter + ")",
                                           row.allocation, "glBindTexture(GL_TEXTURE_2D, 0)"));
}

INSTANTIATE_TEST_SUITE_P(
    All, RenderBufferFormat,
    ::testing::Values(
        FormatCase{"depth", GL_DEPTH_COMPONENT32F, "GL_NEAREST",
                   "glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT32F, 6, 4, 0, GL_DEPTH_COMPONENT, GL_FLOAT, 0)",
                   ""},
        FormatCase{"depth and stencil", GL_DEPTH32F_STENCIL8, "GL_NEAREST",
                   "glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH32F_STENCIL8, 6, 4, 0, GL_DEPTH_COMPONENT, GL_FLOAT, 0)",
                   ""},
        FormatCase{"integers", GL_RGBA32I, "GL_NEAREST",
                   "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32I, 6, 4, 0, GL_RGBA_INTEGER, GL_INT, 0)",
                   "Image Type is INT\n"},
        FormatCase{"bytes", GL_RGBA8, "GL_LINEAR",
                   "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 6, 4, 0, GL_RGBA, GL_FLOAT, 0)", ""},
        FormatCase{"floats", GL_RGBA32F, "GL_LINEAR",
                   "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, 6, 4, 0, GL_RGBA, GL_FLOAT, 0)", ""}));

TEST_F(FBOHelper, CreateFBOAttachesAndLeavesItBound) {
    EXPECT_EQ(CreateFBO({6, 4, 1, GL_RGBA8, 3, GL_TEXTURE_2D, true}), 1u);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glGenFramebuffers(1)", "glBindFramebuffer(GL_FRAMEBUFFER, 1)",
                            "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 3, 0)",
                            "glCheckFramebufferStatus(GL_FRAMEBUFFER)"));
}

TEST_F(FBOHelper, CreateFBOWithoutTextureAttachesNothing) {
    CreateFBO({6, 4, 1, GL_RGBA8, 0, GL_TEXTURE_2D, true});
    EXPECT_THAT(fake::CallsTo("glFramebufferTexture2D"), IsEmpty());
}

TEST_F(FBOHelper, IncompleteFBOIsPrintedAndDeleted) {
    fake::Gl().framebufferStatus = {0x8CD7};
    CaptureStdout out;
    EXPECT_EQ(CreateFBO({6, 4, 1, GL_RGBA8, 3, GL_TEXTURE_2D, true}), 0u);
    EXPECT_EQ(out.TextWithoutFlush(), "Framebuffer Error - GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENTCode: 36055\n");
    EXPECT_THAT(fake::Gl().liveFramebuffers, IsEmpty());
}

TEST_F(FBOHelper, CreateTextureFBOIgnoresItsLastArgument) {
    const PX_FBO fbo = CreateTextureFBO(6, 4, GL_RGBA8, 12345);
    EXPECT_EQ(fbo.fbo, 1u);
    EXPECT_EQ(fbo.colour.id, 1u);
    EXPECT_EQ(fbo.colour.width, 6u);
    for (const std::string& call : fake::Calls()) EXPECT_EQ(call.find("12345"), std::string::npos) << call;
}

TEST_F(FBOHelper, StatusNames) {
    const struct {
        unsigned status;
        const char* name;
    } rows[] = {{0x8219, "GL_FRAMEBUFFER_UNDEFINED"},
                {0x8CD6, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
                {0x8CD7, "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT"},
                {0x8CD8, ""},
                {0x8CD9, ""},
                {0x8CDA, ""},
                {0x8CDB, "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER"},
                {0x8CDC, "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER"},
                {0x8CDD, "GL_FRAMEBUFFER_UNSUPPORTED"},
                {0x8D56, "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE"},
                {0x8DA8, "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS"},
                {GL_FRAMEBUFFER_COMPLETE, ""},
                {0, ""}};
    for (const auto& row : rows) EXPECT_EQ(getFrameBufferError(row.status), row.name) << std::hex << row.status;
}

TEST_F(FBOHelper, DeleteRenderBufferDeletesByKind) {
    GLRenderBuffer none{6, 4, 1, GL_RGBA8, 0, GL_TEXTURE_2D, true};
    DeleteRenderBuffer(none);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    GLRenderBuffer texture{6, 4, 1, GL_RGBA8, 3, GL_TEXTURE_2D, true};
    DeleteRenderBuffer(texture);
    GLRenderBuffer buffer{6, 4, 1, GL_RGBA8, 5, GL_TEXTURE_2D, false};
    DeleteRenderBuffer(buffer);
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteTextures(3)", "glDeleteBuffers(5)"))
        << "a buffer object's delete, not a renderbuffer's";
    EXPECT_EQ(texture.id, 0u);
    EXPECT_EQ(buffer.id, 0u);
}

TEST_F(FBOHelper, DeleteGenericFBO) {
    DeleteGenericFBO(nullptr);
    PX_FBO none{0, {6, 4, 1, GL_RGBA8, 3, GL_TEXTURE_2D, true}};
    DeleteGenericFBO(&none);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    EXPECT_EQ(none.colour.id, 3u);
    PX_FBO fbo{2, {6, 4, 1, GL_RGBA8, 3, GL_TEXTURE_2D, true}};
    DeleteGenericFBO(&fbo);
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteTextures(3)", "glDeleteFramebuffers(2)"));
    EXPECT_EQ(fbo.fbo, 0u);
    EXPECT_EQ(fbo.colour.id, 0u);
}

TEST_F(FBOHelper, ClearFBO) {
    PX_FBO fbo{};
    ClearFBO(&fbo);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    fbo.fbo = 2;
    ClearFBO(&fbo);
    EXPECT_THAT(fake::Calls(), ElementsAre("glBindFramebuffer(GL_FRAMEBUFFER, 2)", "glColorMask(1, 1, 1, 1)",
                                           "glClearColor(0, 0, 0, 0)", "glClear(GL_COLOR_BUFFER_BIT)",
                                           "glBindFramebuffer(GL_FRAMEBUFFER, 0)"));
}

TEST_F(FBOHelper, FBOtoBufferReadsWithARowLength) {
    std::vector<uint8_t> pixels(3 * 2 * 4);
    FBOtoBuffer(2, GL_COLOR_ATTACHMENT0, pixels.data(), 2, 2, 3, GL_RGBA, GL_UNSIGNED_BYTE);
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glBindBuffer(GL_PIXEL_PACK_BUFFER, 0)", "glBindFramebuffer(GL_FRAMEBUFFER, 2)",
                            "glReadBuffer(GL_COLOR_ATTACHMENT0)", "glPixelStorei(GL_PACK_ROW_LENGTH, 3)",
                            "glReadPixels(0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE)",
                            "glPixelStorei(GL_PACK_ROW_LENGTH, 0)", "glBindFramebuffer(GL_FRAMEBUFFER, 0)"));
}

struct WorldCase {
    const char* name;
    unsigned depth;
    unsigned rowBytes;
    const char* rowLength;
    const char* read;
};

void PrintTo(const WorldCase& row, std::ostream* out) {
    *out << row.name;
}

class FBOtoWorld : public FakeGLTest, public ::testing::WithParamInterface<WorldCase> {};

TEST_P(FBOtoWorld, FinishesThenReads) {
    std::vector<uint8_t> pixels(16 * 4 * 4);
    PX_FBO fbo{2, {}};
    FBOtoEffectWorld(fbo, pixels.data(), 2, 2, GetParam().rowBytes, GetParam().depth, GL_COLOR_ATTACHMENT0);
    EXPECT_EQ(fake::Calls().front(), "glFinish()");
    EXPECT_THAT(fake::CallsTo("glPixelStorei"),
                ElementsAre(GetParam().rowLength, "glPixelStorei(GL_PACK_ROW_LENGTH, 0)"));
    EXPECT_THAT(fake::CallsTo("glReadPixels"), ElementsAre(GetParam().read));
}

INSTANTIATE_TEST_SUITE_P(All, FBOtoWorld,
                         ::testing::Values(WorldCase{"8 bits", 8, 12, "glPixelStorei(GL_PACK_ROW_LENGTH, 3)",
                                                     "glReadPixels(0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE)"},
                                           WorldCase{"16 bits are taken for 8", 16, 12,
                                                     "glPixelStorei(GL_PACK_ROW_LENGTH, 3)",
                                                     "glReadPixels(0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE)"},
                                           WorldCase{"floats", 32, 48, "glPixelStorei(GL_PACK_ROW_LENGTH, 3)",
                                                     "glReadPixels(0, 0, 2, 2, GL_RGBA, GL_FLOAT)"}));

}  // namespace

}  // namespace umbrant::effect
