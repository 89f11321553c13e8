// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The banner: what is asked of the host for it, and in which order.

#include "entry/panel_drawing.h"

#include <gmock/gmock.h>

#include <climits>
#include <fstream>
#include <iterator>

#include "entry/banner.h"
#include "tests/entry/panel_host.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr char kCannotAcquire[] = "Not able to acquire AEFX Suite.";

class PanelDrawingTest : public PanelHostTest {
 protected:
    PanelDrawingTest() {
        event.contextH = reinterpret_cast<PF_ContextH>(77);
        event.e_type = PF_Event_DRAW;
        event.effect_win.area = PF_EA_CONTROL;
        event.effect_win.current_frame = {0, 40, 250, 115};
    }

    /// Draws, and says that the event was handled.
    bool Handled(PF_Err expected = PF_Err_NONE) {
        event.evt_out_flags = PF_EO_NONE;
        EXPECT_EQ(Send(&event), expected);
        EXPECT_EQ(openImages, 0);
        ExpectBalanced();
        EXPECT_TRUE(event.evt_out_flags == PF_EO_NONE || event.evt_out_flags == PF_EO_HANDLED_EVENT);
        return event.evt_out_flags == PF_EO_HANDLED_EVENT;
    }

    PF_EventExtra event{};
};

const std::vector<std::string> kControlCalls = {
    "GetDrawingReference 77",
    "GetSupplier",
    "GetSurface",
    "host_new_handle 300000",
    "host_lock_handle",
    "NewImageFromBuffer 500 150 2000 6",
    "Transform 0.5 0 0 0 0.5 0 0 0 0.5",
    "DrawImage 125 80 1",
    "Transform 2 0 0 0 2 0 0 0 2",
    "ReleaseObject",
    "host_unlock_handle",
    "host_dispose_handle",
};

TEST_F(PanelDrawingTest, DrawsTheBannerInTheControl) {
    EXPECT_TRUE(Handled());
    EXPECT_THAT(HostCalls(), ElementsAreArray(kControlCalls));
    ASSERT_EQ(imageBytes.size(), 300000u);
    EXPECT_EQ(std::memcmp(imageBytes.data(), um2_map, 300000), 0);
    EXPECT_EQ(host.outData.out_flags, PF_OutFlag_NONE);
    EXPECT_STREQ(host.outData.return_msg, "");
}

// Whatever the flags were before: they are set, not added to.
TEST_F(PanelDrawingTest, TheOutFlagsAreHandledAlone) {
    for (const PF_EffectArea area : {PF_EA_CONTROL, PF_EA_PARAM_TITLE}) {
        event.effect_win.area = area;
        for (const PF_EventOutFlags before : {0, 1, 2, 6, -1}) {
            event.evt_out_flags = before;
            EXPECT_EQ(Send(&event), PF_Err_NONE);
            EXPECT_EQ(event.evt_out_flags, 1) << before;
        }
    }
    failing = "GetSupplier";
    failure = 3;
    event.evt_out_flags = 6;
    EXPECT_EQ(Send(&event), 3);
    EXPECT_EQ(event.evt_out_flags, 6) << "untouched by a failure";
}

TEST_F(PanelDrawingTest, TakesTheSuitesInOrderAndGivesThemBackInReverse) {
    EXPECT_TRUE(Handled());
    EXPECT_THAT(Suites("AcquireSuite"),
                ElementsAre("DRAWBOT Draw Suite", "DRAWBOT Supplier Suite", "DRAWBOT Surface Suite",
                            "PF Effect Custom UI Suite", "PF Handle Suite"));
    const std::vector<std::string> released = Suites("ReleaseSuite");
    ASSERT_EQ(released.size(), 5u);
    EXPECT_THAT(std::vector(released.begin(), released.begin() + 3),
                ElementsAre("DRAWBOT Surface Suite", "DRAWBOT Supplier Suite", "DRAWBOT Draw Suite"));
}

TEST_F(PanelDrawingTest, AnyOtherAreaDrawsNothingAndIsHandled) {
    for (const PF_EffectArea area : {PF_EA_PARAM_TITLE, PF_EA_NONE, 3, -1}) {
        SCOPED_TRACE(area);
        host.calls.clear();
        event.effect_win.area = area;
        EXPECT_TRUE(Handled());
        EXPECT_THAT(HostCalls(), ElementsAre("GetDrawingReference 77", "GetSupplier", "GetSurface"));
        EXPECT_THAT(Suites("AcquireSuite"), ElementsAre("DRAWBOT Draw Suite", "DRAWBOT Supplier Suite",
                                                        "DRAWBOT Surface Suite", "PF Effect Custom UI Suite"));
    }
}

TEST_F(PanelDrawingTest, OtherEventsAreNotItsBusiness) {
    for (PF_EventType type : {-1, 0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12}) {
        event.e_type = type;
        event.evt_out_flags = 6;
        EXPECT_EQ(Send(&event), PF_Err_NONE);
        EXPECT_EQ(event.evt_out_flags, 6) << type;
    }
    EXPECT_THAT(host.calls, IsEmpty());
}

struct FrameRow {
    const char* name;
    PF_UnionableRect frame;
    float x, y;
};

TEST_F(PanelDrawingTest, TheOriginIsExact) {
    const FrameRow frames[] = {
        {"250 wide", {0, 0, 250, 75}, 125.0f, 0.0f},  // 62.5 panel pixels from the left
        {"the left never shifts it", {300, 0, 550, 75}, 125.0f, 0.0f},
        {"the bottom has no part in it", {0, 9, 250, -1000}, 125.0f, 18.0f},
        {"narrow", {0, 12, 100, 87}, -25.0f, 24.0f},
        {"above the panel", {10, -7, 11, 0}, -124.0f, -14.0f},
        {"left and right exchanged", {250, 3, 0, 78}, -375.0f, 6.0f},
        {"a width that single precision rounds", {0, 0, 16777217, 1}, 16777091.0f, 0.0f},
        {"a top whose double leaves the integers", {0, INT_MAX, 250, 0}, 125.0f, 4294967294.0f},
        {"the widest frame", {INT_MIN, INT_MIN, INT_MAX, 0}, 4294967295.0f - 125.0f, -4294967296.0f},
    };
    for (const FrameRow& row : frames) {
        SCOPED_TRACE(row.name);
        host.calls.clear();
        event.effect_win.current_frame = row.frame;
        EXPECT_TRUE(Handled());
        EXPECT_EQ(drawnAt.x, row.x);
        EXPECT_EQ(drawnAt.y, row.y);
    }
}

struct FailRow {
    const char* call;
    int count;
    std::vector<std::string> calls;  ///< everything that is asked, the failing call included
};

TEST_F(PanelDrawingTest, StopsAtTheFirstErrorAndReturnsIt) {
    const auto until = [](size_t last, std::vector<std::string> then) {
        std::vector<std::string> calls(kControlCalls.begin(), kControlCalls.begin() + static_cast<ptrdiff_t>(last));
        calls.insert(calls.end(), then.begin(), then.end());
        return calls;
    };
    const std::vector<std::string> bytes = {"host_new_handle 300000", "host_lock_handle", "host_unlock_handle",
                                            "host_dispose_handle"};
    const std::vector<std::string> cleanUp = {"ReleaseObject", "host_unlock_handle", "host_dispose_handle"};
    const FailRow failures[] = {
        {"GetDrawingReference", 1, until(1, {})},
        // The banner's copy does not wait for something to draw it on.
        {"GetSupplier", 1, until(2, bytes)},
        {"GetSurface", 1, until(3, bytes)},
        {"NewImageFromBuffer", 1, until(6, {"host_unlock_handle", "host_dispose_handle"})},
        {"Transform", 1, until(7, cleanUp)},
        {"DrawImage", 1, until(8, cleanUp)},
        {"Transform", 2, until(9, cleanUp)},
        {"ReleaseObject", 1, kControlCalls},
    };
    for (const FailRow& row : failures) {
        SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.count));
        host.calls.clear();
        ResetCounts();
        failing = row.call;
        failingCount = row.count;
        failure = 4711;
        EXPECT_FALSE(Handled(4711));
        EXPECT_THAT(HostCalls(), ElementsAreArray(row.calls));
    }
}

TEST_F(PanelDrawingTest, AFailureWithoutAControlComesBackToo) {
    event.effect_win.area = PF_EA_PARAM_TITLE;
    for (const char* call : {"GetDrawingReference", "GetSupplier", "GetSurface"}) {
        ResetCounts();
        failing = call;
        failure = 3;
        EXPECT_FALSE(Handled(3));
    }
}

TEST_F(PanelDrawingTest, TheFirstErrorWinsOverTheReleases) {
    failing = "DrawImage";
    failure = 4711;
    alsoFailing = "ReleaseObject";
    EXPECT_FALSE(Handled(4711));
    failing = "";
    EXPECT_FALSE(Handled(99));
}

TEST_F(PanelDrawingTest, WithoutAReferenceThereIsNothingToDo) {
    giveNoReference = true;
    EXPECT_FALSE(Handled());
    EXPECT_THAT(HostCalls(), ElementsAre("GetDrawingReference 77"));
}

TEST_F(PanelDrawingTest, WithoutAnImageNothingIsDrawn) {
    giveNoImage = true;
    EXPECT_TRUE(Handled());
    EXPECT_EQ(host.CountOf("Transform"), 0);
    EXPECT_EQ(host.CountOf("ReleaseObject"), 0);
}

TEST_F(PanelDrawingTest, WithoutMemoryTheBannerIsNotDrawn) {
    host.failNewHandle = 1;
    EXPECT_FALSE(Handled(PF_Err_OUT_OF_MEMORY));
    host.failLock = 1;
    EXPECT_FALSE(Handled(PF_Err_OUT_OF_MEMORY));
    EXPECT_EQ(host.CountOf("NewImageFromBuffer"), 0);
}

TEST_F(PanelDrawingTest, AMissingDrawingSuiteIs13WithAMessage) {
    const char* const names[] = {"DRAWBOT Draw Suite", "DRAWBOT Supplier Suite", "DRAWBOT Surface Suite"};
    for (int i = 0; i < 3; ++i) {
        for (const bool asNull : {false, true}) {
            SCOPED_TRACE(names[i]);
            host.calls.clear();
            host.outData = {};
            host.outData.out_flags = PF_OutFlag_FORCE_RERENDER;
            asNull ? host.Refuse(names[i], kSPNoError) : host.Refuse(names[i]);
            EXPECT_FALSE(Handled(13));
            EXPECT_EQ(host.outData.out_flags, PF_OutFlag_FORCE_RERENDER | PF_OutFlag_DISPLAY_ERROR_MESSAGE);
            EXPECT_STREQ(host.outData.return_msg, kCannotAcquire);
            EXPECT_THAT(HostCalls(), IsEmpty());
            std::vector<std::string> acquired(names, names + i + 1), released(names, names + i);
            std::reverse(released.begin(), released.end());
            EXPECT_EQ(Suites("AcquireSuite"), acquired);
            EXPECT_EQ(Suites("ReleaseSuite"), released);
            host.Allow(names[i]);
        }
    }
}

TEST_F(PanelDrawingTest, AMissingSuiteOfTheCacheIs516WithoutAMessage) {
    for (const char* name : {"PF Effect Custom UI Suite", "PF Handle Suite"}) {
        SCOPED_TRACE(name);
        host.Refuse(name);
        EXPECT_FALSE(Handled(516));
        EXPECT_EQ(host.outData.out_flags, PF_OutFlag_NONE);
        EXPECT_STREQ(host.outData.return_msg, "");
        host.Allow(name);
    }
    host.Refuse("PF Handle Suite");
    event.effect_win.area = PF_EA_PARAM_TITLE;
    EXPECT_TRUE(Handled()) << "only the control needs memory";
}

TEST(Banner, IsTheFileByteForByte) {
    std::ifstream file(BANNER_FILE, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    static_assert(sizeof(um2_map) == 300000);
    ASSERT_EQ(bytes.size(), sizeof(um2_map));
    EXPECT_EQ(std::memcmp(bytes.data(), um2_map, sizeof(um2_map)), 0);
}

TEST(Banner, IsAPictureThatSuitsDarkAndLight) {
    const auto alpha = [](int x, int y) { return um2_map[(y * 500 + x) * 4 + 3]; };
    EXPECT_EQ(alpha(0, 0), 0) << "the corners are clear";
    EXPECT_EQ(alpha(499, 149), 0);
    EXPECT_EQ(alpha(250, 75), 255) << "the card has its own ground";
    int white = 0;
    for (int i = 0; i < 300000; i += 4) white += um2_map[i] + um2_map[i + 1] + um2_map[i + 2] + um2_map[i + 3] == 1020;
    EXPECT_GT(white, 4000) << "the name";
    EXPECT_LT(white, 40000);
}

}  // namespace

}  // namespace umbrant::effect
