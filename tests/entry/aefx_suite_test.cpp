// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The one-suite functions, the drawing bundle and the scoped holder: messages to the byte, balances on every path.

#include "entry/suites/aefx_suite.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "entry/suites/suite_scoper.h"
#include "hostapi/suites/handle_suite.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

namespace {

using Lines = std::vector<std::string>;

const char* const kBundle[] = {"DRAWBOT Draw Suite", "DRAWBOT Supplier Suite", "DRAWBOT Surface Suite",
                               "DRAWBOT Path Suite"};

struct AefxSuiteTest : ::testing::Test {
    AefxSuiteTest() {
        for (int i = 0; i < 4; ++i) host.Offer(kBundle[i], 1, &tables[i]);
        host.outData.out_flags = 1;
    }
    void TearDown() override {
        std::string why;
        EXPECT_TRUE(host.Balanced(&why)) << why;
    }
    void ExpectReported(const char* message) {
        EXPECT_EQ(host.outData.out_flags, 1 | 256) << "the bit is added to what is there";
        EXPECT_STREQ(host.outData.return_msg, message);
    }
    void ExpectSilence() {
        EXPECT_EQ(host.outData.out_flags, 1);
        EXPECT_STREQ(host.outData.return_msg, "");
    }
    TestHost host;
    char tables[4] = {};
    void* suite = this;
};

TEST_F(AefxSuiteTest, AcquireAndRelease) {
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, &host.outData, "PF Handle Suite", 2, "text", &suite), 0);
    EXPECT_EQ(suite, &host.handleSuite);
    EXPECT_EQ(AEFX_ReleaseSuite(&host.inData, &host.outData, "PF Handle Suite", 2, "text", &suite), 0);
    EXPECT_EQ(suite, nullptr);
    EXPECT_EQ(host.calls, (Lines{"AcquireSuite PF Handle Suite 2", "ReleaseSuite PF Handle Suite 2"}));
    ExpectSilence();
}

SPErr FailingRelease(const char* name, int32_t version) {
    TestHost::Current().Log(std::string("ReleaseSuite ") + name + " " + std::to_string(version));
    --TestHost::Current().suiteBalance[{name, version}];
    return 4711 + TestHost::Current().CountOf("ReleaseSuite");
}

TEST_F(AefxSuiteTest, TheHostsErrorOfAReleaseComesBack) {
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, &host.outData, "PF Handle Suite", 2, nullptr, &suite), 0);
    host.basic.ReleaseSuite = FailingRelease;
    EXPECT_EQ(AEFX_ReleaseSuite(&host.inData, &host.outData, "PF Handle Suite", 2, "text", &suite), 4712);
    EXPECT_EQ(suite, nullptr) << "it is not released again";
    ExpectSilence();
}

TEST_F(AefxSuiteTest, AFailedAcquireReports) {
    host.Refuse("PF Handle Suite", 99);
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, &host.outData, "PF Handle Suite", 2, nullptr, &suite), 516);
    EXPECT_EQ(suite, nullptr);
    ExpectReported("Not able to acquire AEFX Suite.");
}

TEST_F(AefxSuiteTest, AFailedAcquireReportsTheCallersText) {
    host.Refuse("PF Handle Suite");
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, &host.outData, "PF Handle Suite", 2, "100 %s mine", &suite), 516);
    ExpectReported("100 %s mine");
}

TEST_F(AefxSuiteTest, ANullSuiteIsAFailure) {
    host.OfferNull("PF Handle Suite", 2);
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, &host.outData, "PF Handle Suite", 2, nullptr, &suite), 516);
    ExpectReported("Not able to acquire AEFX Suite.");
}

TEST_F(AefxSuiteTest, NoBasicSuite) {
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, &host.outData, "PF Handle Suite", 2, nullptr, &suite), 516);
    ExpectReported("Not able to acquire AEFX Suite.");
    EXPECT_EQ(AEFX_ReleaseSuite(&host.inData, &host.outData, "PF Handle Suite", 2, nullptr, &suite), 516);
    ExpectReported("Not able to release AEFX Suite.");
    EXPECT_EQ(AEFX_ReleaseSuite(&host.inData, &host.outData, "PF Handle Suite", 2, "own", nullptr), 516);
    ExpectReported("own");
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(AefxSuiteTest, WithoutOutDataNobodyIsTold) {
    host.inData.pica_basicP = nullptr;
    host.inData.utils = nullptr;
    EXPECT_EQ(AEFX_AcquireSuite(&host.inData, nullptr, "PF Handle Suite", 2, "text", &suite), 516);
    EXPECT_EQ(AEFX_ReleaseSuite(&host.inData, nullptr, "PF Handle Suite", 2, "text", &suite), 516);
    ExpectSilence();
}

TEST_F(AefxSuiteTest, BundleInOrder) {
    AEFX_DrawbotSuites suites;
    EXPECT_EQ(AEFX_AcquireDrawbotSuites(&host.inData, &host.outData, &suites), 0);
    EXPECT_EQ(static_cast<const void*>(suites.draw), &tables[0]);
    EXPECT_EQ(static_cast<const void*>(suites.supplier), &tables[1]);
    EXPECT_EQ(static_cast<const void*>(suites.surface), &tables[2]);
    EXPECT_EQ(static_cast<const void*>(suites.path), &tables[3]);
    EXPECT_EQ(host.calls, (Lines{"AcquireSuite DRAWBOT Draw Suite 1", "AcquireSuite DRAWBOT Supplier Suite 1",
                                 "AcquireSuite DRAWBOT Surface Suite 1", "AcquireSuite DRAWBOT Path Suite 1"}));
    host.calls.clear();
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 0);
    EXPECT_EQ(host.calls, (Lines{"ReleaseSuite DRAWBOT Draw Suite 1", "ReleaseSuite DRAWBOT Supplier Suite 1",
                                 "ReleaseSuite DRAWBOT Surface Suite 1", "ReleaseSuite DRAWBOT Path Suite 1"}));
    ExpectSilence();
    host.calls.clear();
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 0);
    EXPECT_TRUE(host.calls.empty()) << "nothing is released twice";
}

// The record carries what was acquired until then, and the release function takes it from there.
TEST_F(AefxSuiteTest, BundleStopsAtTheFirstFailure) {
    for (int missing = 0; missing < 4; ++missing) {
        SCOPED_TRACE(kBundle[missing]);
        host.outData.return_msg[0] = '\0';
        host.outData.out_flags = 1;
        host.calls.clear();
        for (int i = 0; i < 4; ++i) host.Offer(kBundle[i], 1, i == missing ? nullptr : &tables[i]);
        AEFX_DrawbotSuites suites;
        std::memset(&suites, 0x7F, sizeof(suites));
        EXPECT_EQ(AEFX_AcquireDrawbotSuites(&host.inData, &host.outData, &suites), 516);
        ExpectReported("Not able to acquire AEFX Suite.");
        EXPECT_EQ(host.CountOf("AcquireSuite"), missing + 1) << "stopped there";
        EXPECT_EQ(host.CountOf("ReleaseSuite"), 0) << "the record still holds them";
        const void* const fields[] = {suites.draw, suites.supplier, suites.surface, suites.path};
        for (int i = 0; i < 4; ++i) EXPECT_EQ(fields[i], i < missing ? &tables[i] : nullptr) << i;

        EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 0);
        EXPECT_EQ(host.CountOf("ReleaseSuite"), missing) << "each that was acquired, and no other";
        EXPECT_TRUE(host.Balanced());
        EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 0);
        EXPECT_EQ(host.CountOf("ReleaseSuite"), missing) << "nothing is released twice";
    }
}

TEST_F(AefxSuiteTest, BundleReleaseTriesAllFourAndReturnsTheFirstError) {
    AEFX_DrawbotSuites suites;
    EXPECT_EQ(AEFX_AcquireDrawbotSuites(&host.inData, &host.outData, &suites), 0);
    host.basic.ReleaseSuite = FailingRelease;
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 4712);
    EXPECT_EQ(host.CountOf("ReleaseSuite"), 4);
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 0);
    EXPECT_EQ(host.CountOf("ReleaseSuite"), 4);
    ExpectSilence();
}

TEST_F(AefxSuiteTest, BundleWithoutARecord) {
    EXPECT_EQ(AEFX_AcquireDrawbotSuites(&host.inData, &host.outData, nullptr), 514);
    ExpectReported("NULL suite pointer passed to AEFX_AcquireDrawbotSuites");
    EXPECT_TRUE(host.calls.empty());
    EXPECT_EQ(AEFX_AcquireDrawbotSuites(&host.inData, nullptr, nullptr), 514);
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, nullptr), 514);
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(AefxSuiteTest, BundleReleaseWithoutABasicSuite) {
    AEFX_DrawbotSuites suites;
    EXPECT_EQ(AEFX_AcquireDrawbotSuites(&host.inData, &host.outData, &suites), 0);
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 516);
    ExpectReported("Not able to release AEFX Suite.");
    EXPECT_EQ(static_cast<const void*>(suites.draw), &tables[0]) << "still held";
    host.inData.pica_basicP = &host.basic;
    EXPECT_EQ(AEFX_ReleaseDrawbotSuites(&host.inData, &host.outData, &suites), 0);
}

TEST_F(AefxSuiteTest, ScoperHoldsForItsScope) {
    {
        const AEFX_SuiteScoper<PF_HandleSuite1, false> handles(&host.inData, "PF Handle Suite", 2, nullptr, nullptr);
        EXPECT_EQ(handles.get(), &host.handleSuite);
        EXPECT_EQ(handles->host_new_handle, host.handleSuite.host_new_handle);
        EXPECT_EQ(host.calls, (Lines{"AcquireSuite PF Handle Suite 2"}));
    }
    EXPECT_EQ(host.calls, (Lines{"AcquireSuite PF Handle Suite 2", "ReleaseSuite PF Handle Suite 2"}));
}

int ThrownByScoper(TestHost* host, PF_OutData* outData, const char* text) {
    try {
        const AEFX_SuiteScoper<PF_HandleSuite1> handles(&host->inData, "PF Handle Suite", 2, outData, text);
    } catch (PF_Err err) {
        return err;
    }
    return 0;
}

TEST_F(AefxSuiteTest, ScoperThrows13) {
    host.Refuse("PF Handle Suite");
    EXPECT_EQ(ThrownByScoper(&host, nullptr, nullptr), 13);
    ExpectSilence();
    EXPECT_EQ(ThrownByScoper(&host, &host.outData, nullptr), 13);
    ExpectReported("Not able to acquire AEFX Suite.");
    EXPECT_EQ(ThrownByScoper(&host, &host.outData, "mine"), 13);
    ExpectReported("mine");
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(ThrownByScoper(&host, nullptr, nullptr), 13);
    EXPECT_EQ(host.CountOf("ReleaseSuite"), 0);
}

TEST_F(AefxSuiteTest, ScoperOfASuiteThatMayBeMissing) {
    host.Refuse("PF Handle Suite");
    {
        const AEFX_SuiteScoper<PF_HandleSuite1, true> handles(&host.inData, "PF Handle Suite", 2, nullptr, nullptr);
        EXPECT_EQ(handles.get(), nullptr);
    }
    EXPECT_EQ(host.CountOf("ReleaseSuite"), 0);
}

static_assert(sizeof(AEFX_DrawbotSuites) == 32 && offsetof(AEFX_DrawbotSuites, draw) == 0 &&
              offsetof(AEFX_DrawbotSuites, supplier) == 8 && offsetof(AEFX_DrawbotSuites, surface) == 16 &&
              offsetof(AEFX_DrawbotSuites, path) == 24);

}  // namespace

}  // namespace umbrant::effect
