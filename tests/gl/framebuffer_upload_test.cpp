// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Uploading a world into a texture: what is asked of the host and of OpenGL, and what each failure gives.

#include <cstring>

#include "gl/framebuffer.h"
#include "pixel/locked_handle.h"
#include "tests/gl/transfer_fixture.h"
#include "tests/support/test_world.h"
#include "tests/support/thrown_code.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ElementBytes, AreFormedIn64Bits) {
    EXPECT_EQ(ElementBytes(3, 5, 4), 60u);
    EXPECT_EQ(ElementBytes(60000, 60000, 4), 14400000000u);
    EXPECT_EQ(ElementBytes(0, 5, 4), 0u);
    EXPECT_EQ(ElementBytes(-3, -5, 4), 0u);
}

using UploadTest = TransferTest;

struct DepthCase {
    const char* name;
    int16_t depth;
    size_t pixelBytes;
    const char* handle;
    const char* iterate;
    const char* suite;
    const char* allocation;
    const char* upload;
};

void PrintTo(const DepthCase& row, std::ostream* out) {
    *out << row.name;
}

const DepthCase kDepths[] = {
    {"bytes", 8, sizeof(PF_Pixel), "host_new_handle 6", "iterate8 0 2", "PF Iterate8 Suite",
     "glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, 3, 2, 0, GL_RED, GL_UNSIGNED_BYTE, 0)",
     "glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 3, 2, GL_RED, GL_UNSIGNED_BYTE)"},
    {"floats", 32, sizeof(PF_PixelFloat), "host_new_handle 24", "iterateFloat 0 2", "PF iterateFloat Suite",
     "glTexImage2D(GL_TEXTURE_2D, 0, GL_R32F, 3, 2, 0, GL_RED, GL_FLOAT, 0)",
     "glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 3, 2, GL_RED, GL_FLOAT)"},
};

class UploadDepths : public TransferTest, public ::testing::WithParamInterface<DepthCase> {};

TEST_P(UploadDepths, GoThroughAHandleIntoOneTexture) {
    const DepthCase& row = GetParam();
    params_.bitDepth = row.depth;
    TestWorld world(3, 2, row.pixelBytes);
    Framebuffer fb;
    fb.bitDepth = 77;
    EXPECT_EQ(Upload(fb, world), PF_Err_NONE);
    EXPECT_TRUE(fb.initialised);
    EXPECT_EQ(fb.width, 3);
    EXPECT_EQ(fb.height, 2);
    EXPECT_EQ(fb.numBuffers, 1);
    EXPECT_EQ(fb.bitDepth, 77) << "not changed here";
    EXPECT_THAT(fb.textures, ElementsAre(1u));
    EXPECT_THAT(fb.fbos, IsEmpty());
    EXPECT_THAT(host_.calls, ElementsAre("AcquireSuite PF Handle Suite 2", row.handle, "host_lock_handle",
                                         std::string("AcquireSuite ") + row.suite + " 1", row.iterate,
                                         "host_unlock_handle", "host_dispose_handle"));
    EXPECT_THAT(fake::Calls(), ElementsAre("glGenTextures(1)", "glBindTexture(GL_TEXTURE_2D, 1)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)",
                                           "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE)",
                                           "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)",
                                           "glPixelStorei(GL_UNPACK_ROW_LENGTH, 3)", row.allocation, row.upload,
                                           "glPixelStorei(GL_UNPACK_ROW_LENGTH, 0)", "glBindTexture(GL_TEXTURE_2D, 0)"))
        << "the unpack alignment stays 1";
    EXPECT_EQ(host_.lastIterate.inData, &host_.inData);
    EXPECT_EQ(host_.lastIterate.source, &world.world);
    EXPECT_EQ(host_.lastIterate.destination, &world.world);
    EXPECT_EQ(host_.lastIterate.area, nullptr);
}

INSTANTIATE_TEST_SUITE_P(All, UploadDepths, ::testing::ValuesIn(kDepths));

TEST_F(UploadTest, TheAlphaGoesUpRowByRowWithoutPadding) {
    TestWorld world(3, 2, sizeof(PF_Pixel));
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) world.At8(x, y) = {static_cast<A_u_char>(10 * y + x + 1), 200, 201, 202};
    }
    Framebuffer fb;
    Upload(fb, world);
    EXPECT_THAT(fake::Gl().uploads.back(), ElementsAre(1, 2, 3, 11, 12, 13));
}

TEST_F(UploadTest, FloatAlphaGoesUpUnchanged) {
    params_.bitDepth = 32;
    TestWorld world(2, 1, sizeof(PF_PixelFloat));
    world.AtFloat(0, 0) = {1.75f, 0, 0, 0};
    world.AtFloat(1, 0) = {-0.125f, 0, 0, 0};
    Framebuffer fb;
    Upload(fb, world);
    float floats[2];
    ASSERT_EQ(fake::Gl().uploads.back().size(), sizeof floats);
    std::memcpy(floats, fake::Gl().uploads.back().data(), sizeof floats);
    EXPECT_THAT(floats, ElementsAre(1.75f, -0.125f));
}

TEST_F(UploadTest, OtherDepthsAreRefused) {
    for (int16_t depth : {16, 0, 24}) {
        SCOPED_TRACE(depth);
        params_.bitDepth = depth;
        TestWorld world(3, 2, sizeof(PF_Pixel16));
        Framebuffer fb;
        outData_ = {};
        EXPECT_EQ(Upload(fb, world), PF_Err_INTERNAL_STRUCT_DAMAGED);
        EXPECT_EQ(Message(), "Init world called on PF_EffectWorld of incompatible depth, likely 16bpc");
        EXPECT_FALSE(fb.initialised);
        EXPECT_THAT(host_.calls, IsEmpty());
        EXPECT_THAT(fake::Calls(), IsEmpty());
    }
}

TEST_F(UploadTest, SecondInitIsRefusedWithoutAMessage) {
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    Upload(fb, world);
    EXPECT_EQ(Upload(fb, world), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(Message(), "");
    EXPECT_EQ(fb.lastError, "FBO init called on already allocated FBO");
}

TEST_F(UploadTest, SuchAnObjectBindsItsTextureButNoFramebuffer) {
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    Upload(fb, world);
    fb.BindTAO(PING, &outData_);
    EXPECT_EQ(fake::Calls().back(), "glBindTexture(GL_TEXTURE_2D, 1)");
    EXPECT_THROW(fb.BindFBO(PING, false, &outData_), std::out_of_range);
}

TEST_F(UploadTest, NoMemory) {
    host_.failNewHandle = 1;
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    EXPECT_EQ(Upload(fb, world), PF_Err_OUT_OF_MEMORY);
    EXPECT_FALSE(fb.initialised);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    EXPECT_EQ(host_.CountOf("host_lock_handle"), 0);
}

TEST_F(UploadTest, NoAddressFromTheLock) {
    host_.failLock = 1;
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    EXPECT_EQ(Upload(fb, world), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(host_.CountOf("host_unlock_handle"), 0);
    EXPECT_EQ(host_.CountOf("host_dispose_handle"), 1);
}

TEST_F(UploadTest, AFailingIterationIsReturnedAndTheObjectIsInitialisedAllTheSame) {
    host_.iterateError = 517;
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    EXPECT_EQ(Upload(fb, world), 517);
    EXPECT_TRUE(fb.initialised);
    EXPECT_EQ(fake::CallsTo("glTexSubImage2D").size(), 1u);
}

TEST_F(UploadTest, AMissingIterateSuiteLeavesNothingLocked) {
    host_.Refuse("PF Iterate8 Suite");
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    try {
        Upload(fb, world);
        FAIL() << "nothing thrown";
    } catch (int error) {
        EXPECT_EQ(error, 516);
    }
    EXPECT_FALSE(fb.initialised);
    EXPECT_EQ(host_.liveHandles, 0);
    EXPECT_EQ(host_.liveLocks, 0);
    EXPECT_EQ(fake::Calls().back(), "glBindTexture(GL_TEXTURE_2D, 0)");
    EXPECT_THAT(fake::Calls(), ::testing::Contains("glPixelStorei(GL_UNPACK_ROW_LENGTH, 0)"));
}

TEST_F(UploadTest, AMissingHandleSuiteThrows) {
    host_.Refuse("PF Handle Suite");
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    EXPECT_EQ(ThrownBy([&] { Upload(fb, world); }), 516);
}

TEST_F(UploadTest, AWorldWithoutPixelsIsNotedAsZeroSized) {
    TestWorld world(0, 2, sizeof(PF_Pixel));
    Framebuffer fb;
    Upload(fb, world);
    EXPECT_TRUE(fb.zeroSized);
    EXPECT_EQ(host_.CountOf("host_new_handle 0"), 1);
}

}  // namespace

}  // namespace umbrant::effect
