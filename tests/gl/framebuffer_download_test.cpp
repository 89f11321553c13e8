// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Reading a framebuffer back into a world: what is asked of the host and of OpenGL, and what each failure gives.

#include <cstring>

#include "gl/framebuffer.h"
#include "tests/gl/transfer_fixture.h"
#include "tests/support/test_world.h"
#include "tests/support/thrown_code.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

}  // namespace umbrant::effect
