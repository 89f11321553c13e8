// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// An effect that misbehaves is caught, named, and never takes the host down; what pre-render handed over always goes
// back.

#include "tests/host/session/session_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Flawed {
    const char* flaw;
    const char* failure;  ///< the sentence, or null when the frame is drawn all the same
    const char* report;   ///< what the host noticed, or null
};

void PrintTo(const Flawed& row, std::ostream* stream) {
    *stream << row.flaw;
}

class Flaws : public SessionTest, public ::testing::WithParamInterface<Flawed> {};

TEST_P(Flaws, AreCaughtAndNamed) {
    const Flawed& row = GetParam();
    Start();
    Set("flaw", row.flaw);
    const World layer = Picture(3, 3);
    const Result<Frame> frame = session->Render({.layer = &layer});
    if (row.failure) {
        ASSERT_FALSE(frame);
        EXPECT_EQ(frame.error().kind, ErrorKind::kEffect);
        EXPECT_EQ(frame.error().sentence, std::string("Painter ") + row.failure);
    } else {
        EXPECT_TRUE(frame) << frame.error().sentence;
    }
    if (row.report) {
        EXPECT_THAT(session->Misbehaviour(), Contains(row.report));
    } else {
        EXPECT_THAT(session->Misbehaviour(), IsEmpty());
    }
    EXPECT_EQ(seen->deleted, seen->allocated);

    Set("flaw", "none");
    EXPECT_TRUE(session->Render({.layer = &layer})) << "the next frame is drawn";
}

INSTANTIATE_TEST_SUITE_P(
    All, Flaws,
    ::testing::Values(
        Flawed{"none", nullptr, nullptr},
        Flawed{"throw", "failed in PF_Cmd_SMART_RENDER: it threw an exception (the painter is out of paint)",
               "PF_Cmd_SMART_RENDER threw an exception: the painter is out of paint"},
        Flawed{"throw-number", "failed in PF_Cmd_SMART_RENDER: it threw an exception (the number 77)",
               "PF_Cmd_SMART_RENDER threw an exception: the number 77"},
        Flawed{"error-with-message", "failed in PF_Cmd_SMART_RENDER: No paint 4 (error 13, A_Err_MISSING_SUITE)",
               nullptr},
        Flawed{"pre-render-error", "failed in PF_Cmd_SMART_PRE_RENDER: error 4, PF_Err_OUT_OF_MEMORY", nullptr},
        Flawed{"long-message", nullptr, nullptr},
        Flawed{"leak", nullptr, "still open after drawing a frame: handles 1, locks 1"},
        Flawed{"unknown-checkout", "failed in PF_Cmd_SMART_RENDER: error 516, PF_Err_BAD_CALLBACK_PARAM",
               "checkout_layer_pixels was called with the id 99, which pre-render did not use"},
        Flawed{"checkout-twice", "failed in PF_Cmd_SMART_RENDER: error 516, PF_Err_BAD_CALLBACK_PARAM",
               "checkout_layer_pixels was called twice for the id 7"},
        Flawed{"same-id", "failed in PF_Cmd_SMART_PRE_RENDER: error 516, PF_Err_BAD_CALLBACK_PARAM",
               "checkout_layer was called with the id 7, which is negative or in use"},
        Flawed{"no-checkin", nullptr, "still open after drawing a frame: layer check-outs 2"},
        Flawed{"late-checkout", nullptr, "checkin_layer_pixels was called with the id 7, which is not checked out"},
        Flawed{"no-output", nullptr, "PF_Cmd_SMART_RENDER ended without checking out its output"},
        Flawed{"too-large", "requests an image larger than 30000 x 30000 pixels", nullptr},
        Flawed{"unknown-suite", "failed in PF_Cmd_SMART_RENDER: error 13, A_Err_MISSING_SUITE", nullptr},
        Flawed{"missing-slot", "failed in PF_Cmd_SMART_RENDER: error 515, PF_Err_INVALID_CALLBACK",
               "PF World Transform Suite.convolve was called, which this host does not implement"},
        Flawed{"bad-reference", "failed in PF_Cmd_SMART_RENDER: error 516, PF_Err_BAD_CALLBACK_PARAM",
               "fill was called with an invalid effect reference"},
        Flawed{"throw-in-pixels", "failed in PF_Cmd_SMART_RENDER: error 512, PF_Err_INTERNAL_STRUCT_DAMAGED",
               "a pixel function of the effect threw an exception"},
        Flawed{"error-in-pixels", "failed in PF_Cmd_SMART_RENDER: error 1234, unknown error", nullptr}));

TEST_F(SessionTest, AMessageWithoutATerminatorIsReadToItsField) {
    Start();
    Set("flaw", "long-message");
    const World layer = Picture(1, 1);
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->message, std::string(255, 'm'));
    EXPECT_FALSE(frame->messageIsError);
}

TEST_F(SessionTest, AFrameThatCouldNotBeDrawnLeavesItsRecord) {
    Start();
    Set("flaw", "unknown-suite");
    const World layer = Picture(1, 1);
    ASSERT_FALSE(session->Render({.layer = &layer}));
    EXPECT_THAT(session->RefusedSuites(), ElementsAre("PF Suite Of Dreams 3"));
}

TEST_F(SessionTest, SuitesOfAFrameAreListed) {
    Start();
    Set("flaw", "leak");
    const World layer = Picture(1, 1);
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame);
    EXPECT_THAT(frame->suites, ElementsAre("PF Handle Suite 2"));
    EXPECT_THAT(session->AcquiredSuites(), ElementsAre("PF Handle Suite 2"));
    EXPECT_THAT(session->RefusedSuites(), IsEmpty());
    EXPECT_TRUE(session->End());
    EXPECT_THAT(session->Misbehaviour(), Contains("still open after global set-down: handles 1, locks 1"));
}

struct Fault {
    const char* call;
    PF_Err error;
    const char* sentence;
};

class Faults : public SessionTest, public ::testing::WithParamInterface<Fault> {};

TEST_P(Faults, AreReturnedByTheCall) {
    SessionOptions options;
    options.fault = [](std::string_view call) { return call == GetParam().call ? GetParam().error : 0; };
    Start(options);
    const World layer = Picture(2, 2);
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_FALSE(frame);
    EXPECT_EQ(frame.error().sentence, GetParam().sentence);
    EXPECT_EQ(seen->deleted, seen->allocated);
    EXPECT_EQ(session->Open()[Resource::kLayerPixels], 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, Faults,
    ::testing::Values(
        Fault{"pre-render.checkout_layer", 517,
              "Painter failed in PF_Cmd_SMART_PRE_RENDER: error 517, PF_Interrupt_CANCEL"},
        Fault{"smart-render.checkout_layer_pixels", 4, "not enough memory for drawing an image of 2 x 2 pixels, 1 MiB"},
        Fault{"smart-render.checkout_output", 4, "not enough memory for drawing an image of 2 x 2 pixels, 1 MiB"},
        Fault{"utils.fill", 516, "Painter failed in PF_Cmd_SMART_RENDER: error 516, PF_Err_BAD_CALLBACK_PARAM"}));

}  // namespace

}  // namespace umbrant::host
