// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <cstring>

#include "gl/framebuffer.h"
#include "pixel/locked_handle.h"
#include "tests/gl/fake_fixture.h"
#include "tests/support/test_host.h"
#include "tests/support/test_world.h"
#include "tests/support/thrown_code.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ElementBytes, AreFormedIn64Bits) {
    EXPECT_EQ(ElementBytes(3, 5, 4), 60u);
    EXPECT_EQ(ElementBytes(60000, 60000, 4), 14400000000u);
    EXPECT_EQ(ElementBytes(0, 5, 4), 0u);
    EXPECT_EQ(ElementBytes(-3, -5, 4), 0u);
}

/// A host beside the fakes, and the settings that the upload reads.
class TransferTest : public FakeGLTest {
 protected:
    void SetUp() override {
        FakeGLTest::SetUp();
        params_.in_data = &host_.inData;
        params_.suites = &suites_;
        params_.bitDepth = 8;
    }
    void TearDown() override {
        suites_.ReleaseAllSuites();
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        FakeGLTest::TearDown();
    }
    PF_Err Upload(Framebuffer& fb, TestWorld& world) { return fb.FBO_Init_PF_World(&world.world, &params_, &outData_); }

    TestHost host_;
    AEGP_SuiteHandler suites_{&host_.basic};
    myParams params_;
};

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

/// Reading back: an initialised two-buffer object of 3 x 2.
class DownloadTest : public TransferTest {
 protected:
    void Init(unsigned short depth) {
        fb_.FramebufferInit(3, 2, 2, depth, &outData_);
        fake::ClearCalls();
    }
    PF_Err Download(TestWorld& world) {
        return fb_.DownloadBuffer(&host_.inData, suites_, &colourF_, &colour8_, &world.world, &outData_);
    }

    Framebuffer fb_;
    PF_PixelFloat colourF_{0.5f, 0.25f, 0.75f, 2.0f};
    PF_Pixel colour8_{0, 10, 20, 30};
};

TEST_F(DownloadTest, BytesBecomeTheAlphaOfAPaddedWorld) {
    Init(8);
    fake::Gl().readPixels = {1, 2, 3, 4, 5, 6};
    TestWorld world(3, 2, sizeof(PF_Pixel));
    EXPECT_EQ(Download(world), PF_Err_NONE);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const PF_Pixel& pixel = world.At8(x, y);
            EXPECT_EQ(pixel.alpha, 3 * y + x + 1);
            EXPECT_EQ(pixel.red, 10);
            EXPECT_EQ(pixel.green, 20);
            EXPECT_EQ(pixel.blue, 30);
        }
    }
    EXPECT_TRUE(world.PaddingIntact());
    EXPECT_THAT(host_.calls, ElementsAre("AcquireSuite PF Handle Suite 2", "host_new_handle 6", "host_lock_handle",
                                         "AcquireSuite PF Iterate8 Suite 1", "iterate8 0 2", "host_unlock_handle",
                                         "host_dispose_handle"));
    EXPECT_THAT(fake::Calls(),
                ElementsAre("glBindFramebuffer(GL_FRAMEBUFFER, 1)", "glPixelStorei(GL_PACK_ROW_LENGTH, 3)",
                            "glPixelStorei(GL_PACK_ALIGNMENT, 1)", "glReadPixels(0, 0, 3, 2, GL_RED, GL_UNSIGNED_BYTE)",
                            "glPixelStorei(GL_PACK_ROW_LENGTH, 0)"));
    EXPECT_EQ(fb_.downloadHandle, nullptr);
    EXPECT_EQ(host_.lastIterate.inData, &host_.inData);
    EXPECT_EQ(host_.lastIterate.source, &world.world);
    EXPECT_EQ(host_.lastIterate.destination, &world.world);
    EXPECT_EQ(host_.lastIterate.area, nullptr);
}

TEST_F(DownloadTest, FloatsBecomeTheAlphaOfAFloatWorld) {
    Init(32);
    const float values[6] = {0, 0.25f, 0.5f, 0.75f, 1, 2};
    fake::Gl().readPixels.resize(sizeof values);
    std::memcpy(fake::Gl().readPixels.data(), values, sizeof values);
    TestWorld world(3, 2, sizeof(PF_PixelFloat));
    EXPECT_EQ(Download(world), PF_Err_NONE);
    for (int i = 0; i < 6; ++i) {
        const PF_PixelFloat& pixel = world.AtFloat(i % 3, i / 3);
        EXPECT_EQ(pixel.alpha, values[i]);
        EXPECT_EQ(pixel.red, 0.25f);
        EXPECT_EQ(pixel.green, 0.75f);
        EXPECT_EQ(pixel.blue, 2.0f);
    }
    EXPECT_EQ(host_.CountOf("host_new_handle 24"), 1);
    EXPECT_EQ(host_.CountOf("iterateFloat 0 2"), 1);
    EXPECT_THAT(fake::CallsTo("glReadPixels"), ElementsAre("glReadPixels(0, 0, 3, 2, GL_RED, GL_FLOAT)"));
}

TEST_F(DownloadTest, TooEarlyIsReportedWithoutAnError) {
    TestWorld world(3, 2, sizeof(PF_Pixel));
    EXPECT_EQ(Download(world), PF_Err_NONE);
    EXPECT_EQ(Message(), "Error: tried to download an uninitialised FBO");
    EXPECT_THAT(fake::Calls(), IsEmpty());
    EXPECT_THAT(host_.calls, IsEmpty());
}

TEST_F(DownloadTest, AnUploadedLayerAndAZeroSizedObjectHaveNothingToDownload) {
    TestWorld world(3, 2, sizeof(PF_Pixel));
    Framebuffer layer;
    Upload(layer, world);
    EXPECT_EQ(layer.DownloadBuffer(&host_.inData, suites_, &colourF_, &colour8_, &world.world, &outData_), PF_Err_NONE);
    EXPECT_EQ(Message(), "Error: tried to download an uninitialised FBO");
    Framebuffer zero;
    zero.FramebufferInit(0, 2, 1, 8, &outData_);
    outData_ = {};
    EXPECT_EQ(zero.DownloadBuffer(&host_.inData, suites_, &colourF_, &colour8_, &world.world, &outData_), PF_Err_NONE);
    EXPECT_EQ(Message(), "Error: tried to download an uninitialised FBO");
}

TEST_F(DownloadTest, AWorldOfAnotherSizeIsReportedWithoutAnError) {
    Init(8);
    TestWorld narrower(2, 2, sizeof(PF_Pixel));
    EXPECT_EQ(Download(narrower), PF_Err_NONE);
    EXPECT_EQ(Message(), "Error: tried to download FBO to CPU buffer of different size");
    outData_ = {};
    TestWorld higher(3, 3, sizeof(PF_Pixel));
    EXPECT_EQ(Download(higher), PF_Err_NONE);
    EXPECT_EQ(Message(), "Error: tried to download FBO to CPU buffer of different size");
    EXPECT_THAT(fake::Calls(), IsEmpty());
    EXPECT_THAT(host_.calls, IsEmpty());
}

TEST_F(DownloadTest, NoMemory) {
    Init(32);
    host_.failNewHandle = 1;
    TestWorld world(3, 2, sizeof(PF_PixelFloat));
    EXPECT_EQ(Download(world), PF_Err_OUT_OF_MEMORY);
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

TEST_F(DownloadTest, NoAddressFromTheLock) {
    Init(8);
    host_.failLock = 1;
    TestWorld world(3, 2, sizeof(PF_Pixel));
    EXPECT_EQ(Download(world), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(host_.CountOf("host_unlock_handle"), 0);
    EXPECT_EQ(host_.CountOf("host_dispose_handle"), 1);
    EXPECT_EQ(fb_.downloadHandle, nullptr);
    EXPECT_THAT(fake::CallsTo("glReadPixels"), IsEmpty());
    EXPECT_EQ(fake::Calls().back(), "glPixelStorei(GL_PACK_ROW_LENGTH, 0)");
}

TEST_F(DownloadTest, AFailingIterationIsReturned) {
    Init(8);
    host_.iterateError = 517;
    TestWorld world(3, 2, sizeof(PF_Pixel));
    EXPECT_EQ(Download(world), 517);
    EXPECT_EQ(fb_.downloadHandle, nullptr);
}

TEST_F(DownloadTest, AMissingIterateSuiteLeavesNothingLocked) {
    Init(32);
    host_.Refuse("PF iterateFloat Suite");
    TestWorld world(3, 2, sizeof(PF_PixelFloat));
    EXPECT_EQ(ThrownBy([&] { Download(world); }), 516);
    EXPECT_EQ(fb_.downloadHandle, nullptr);
    EXPECT_EQ(fake::Calls().back(), "glPixelStorei(GL_PACK_ROW_LENGTH, 0)");
}

TEST_F(DownloadTest, AnUnknownDepthKeepsTheHandleAndTheRowLength) {
    Init(16);
    TestWorld world(3, 2, sizeof(PF_Pixel16));
    EXPECT_EQ(Download(world), PF_Err_NONE);
    EXPECT_EQ(Message(), "Error: tried to download FBO of unknown bitdepth");
    EXPECT_EQ(host_.liveHandles, 1) << "kept on purpose";
    EXPECT_EQ(host_.CountOf("host_new_handle 24"), 1) << "sized as for floats";
    ASSERT_NE(fb_.downloadHandle, nullptr);
    EXPECT_THAT(fake::CallsTo("glPixelStorei"),
                ElementsAre("glPixelStorei(GL_PACK_ROW_LENGTH, 3)", "glPixelStorei(GL_PACK_ALIGNMENT, 1)"));
    host_.handleSuite.host_dispose_handle(fb_.downloadHandle);
}

TEST_F(DownloadTest, TheHalvesLockTheHandleAndLeaveItLocked) {
    Init(8);
    fb_.downloadHandle = host_.handleSuite.host_new_handle(24);
    TestWorld bytes(3, 2, sizeof(PF_Pixel));
    EXPECT_EQ(fb_.DownloadBuffer8(&host_.inData, suites_, &colour8_, &bytes.world), PF_Err_NONE);
    TestWorld floats(3, 2, sizeof(PF_PixelFloat));
    EXPECT_EQ(fb_.DownloadBuffer32(&host_.inData, suites_, &colourF_, &floats.world), PF_Err_NONE);
    EXPECT_EQ(host_.liveLocks, 2);
    host_.handleSuite.host_unlock_handle(fb_.downloadHandle);
    host_.handleSuite.host_unlock_handle(fb_.downloadHandle);
    host_.handleSuite.host_dispose_handle(fb_.downloadHandle);
    fb_.downloadHandle = nullptr;
    EXPECT_EQ(fb_.DownloadBuffer8(&host_.inData, suites_, &colour8_, &bytes.world), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(fb_.DownloadBuffer32(&host_.inData, suites_, &colourF_, &floats.world), PF_Err_OUT_OF_MEMORY);
}

}  // namespace
