// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Global set-up where the host or the platform chooses the renderer: no driver for the CPU renderer.

#include "hostapi/suites/umbrant_host_suite.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/entry/global_setup_fixture.h"

namespace umbrant::effect {

namespace {

UMBRANT_Renderer preference = UMBRANT_Renderer_ANY;
PF_Err preferenceError = PF_Err_NONE;

PF_Err GetRenderer(PF_ProgPtr effect_ref, UMBRANT_Renderer* renderer) {
    EXPECT_EQ(effect_ref, TestHost::Current().inData.effect_ref);
    *renderer = preference;
    return preferenceError;
}

/// A host that says what draws, and a platform that does.
class SetupForARenderer : public GlobalSetupTest {
 protected:
    SetupForARenderer() {
        preference = UMBRANT_Renderer_ANY;
        preferenceError = PF_Err_NONE;
    }
    ~SetupForARenderer() override { fake::Renderer() = RendererChoice::kOpenGL; }

    void OfferSuite() { host.Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1, &suite_); }

    /// Sets up and down; whether the driver was asked.
    bool Probes() {
        fake::ClearCalls();
        EXPECT_EQ(SetUpModule(), PF_Err_NONE);
        const bool probed = Record().context != nullptr;
        EXPECT_EQ(probed, !fake::Calls().empty());
        EXPECT_EQ(Record().withoutOpenGL, probed ? 0 : 1);
        EXPECT_EQ(SetDownModule(), PF_Err_NONE);
        EXPECT_EQ(probed, !fake::CallsTo("CGLSetCurrentContext").empty());
        EXPECT_EQ(fake::Cgl().liveContexts, 0);
        ExpectBalanced();
        return probed;
    }

    const UMBRANT_HostSuite1 suite_{GetRenderer};
};

TEST_F(SetupForARenderer, TheProcessorNeedsNoDriver) {
    OfferSuite();
    preference = UMBRANT_Renderer_PROCESSOR;
    fake::ClearCalls();
    ASSERT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(fake::Calls(), Lines{}) << "nothing loads a driver";
    EXPECT_EQ(Record().context, nullptr);
    EXPECT_STREQ(Record().gl_vendor, "Umbrant");
    EXPECT_EQ(Record().gl_renderer, ProcessorName());
    EXPECT_STREQ(Record().gl_version, "not used");
    EXPECT_STREQ(Record().glsl_version, "not used");
    EXPECT_EQ(host.outData.my_version, 0x99801u);
    EXPECT_EQ(host.outData.out_flags2, 0x08201409) << "the rest as elsewhere";
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    EXPECT_EQ(fake::Calls(), Lines{});
    ExpectBalanced();
}

TEST_F(SetupForARenderer, TheHostIsAskedAndThenThePlatform) {
    fake::Renderer() = RendererChoice::kProcessor;
    EXPECT_FALSE(Probes()) << "by the platform, in a host that does not know the suite";
    OfferSuite();
    EXPECT_FALSE(Probes()) << "a host without a preference";
    preference = UMBRANT_Renderer_OPENGL;
    EXPECT_TRUE(Probes());
    fake::Renderer() = RendererChoice::kOpenGL;
    preference = UMBRANT_Renderer_PROCESSOR;
    EXPECT_FALSE(Probes());
    for (const UMBRANT_Renderer none : {UMBRANT_Renderer{UMBRANT_Renderer_ANY}, UMBRANT_Renderer{7}}) {
        preference = none;
        EXPECT_TRUE(Probes()) << none;
    }
    fake::Renderer() = RendererChoice::kRefused;
    EXPECT_TRUE(Probes()) << "each frame says what is wrong with the variable";
}

TEST_F(SetupForARenderer, TheErrorOfAHostThatCannotSayItIsHandedBack) {
    OfferSuite();
    preference = UMBRANT_Renderer_PROCESSOR;
    preferenceError = PF_Err_OUT_OF_MEMORY;
    fake::ClearCalls();
    EXPECT_EQ(SetUpModule(), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(host.outData.global_data, nullptr);
    EXPECT_EQ(fake::Calls(), Lines{});
    ExpectBalanced();
}

}  // namespace

}  // namespace umbrant::effect
