// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect's panel in every shadow type: which rows it shows, and what they say.

#include "tests/host/panel/panel_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct TypeRow {
    const char* type;
    bool angle, origin, blendMode, sourceOpacityDisabled, offsetShadowDisabled;
};

const TypeRow kTypes[] = {
    {"normal", true, false, false, false, false},
    {"inner", true, false, true, true, false},
    {"radial", false, true, false, false, true},
};

TEST_F(PanelSessionTest, EveryVisibleRowOfEveryType) {
    Start();
    for (const TypeRow& row : kTypes) {
        SCOPED_TRACE(row.type);
        Update(row.type);
        ASSERT_TRUE(Twirl(*session, "all", true));
        std::vector<int> expected;
        for (int i = 1; i <= 52; ++i) {
            const bool isEnd = session->Params().Row(i).def.param_type == PF_Param_GROUP_END;
            const bool absent =
                i == 46 || (i == 15 && !row.angle) || (i == 16 && !row.origin) || (i == 20 && !row.blendMode);
            if (!isEnd && !absent) expected.push_back(i);
        }
        const std::vector<PanelItem> items = Items();
        EXPECT_THAT(Indices(items), ElementsAreArray(expected));
        for (const PanelItem& item : items) {
            const bool gpu = item.index >= 6 && item.index <= 9;
            const bool disabled = gpu || item.index == 10 || (item.index == 49 && row.sourceOpacityDisabled) ||
                                  (item.index == 50 && row.offsetShadowDisabled);
            EXPECT_EQ(item.disabled, disabled) << item.index << " " << item.name;
        }
    }
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
}

TEST_F(PanelSessionTest, OpensWithTheGroupsThatAreDeclaredOpen) {
    Start();
    Update("normal");
    EXPECT_THAT(Indices(Items()), ElementsAre(1, 13, 14, 15, 17, 18, 19, 22, 23, 24, 25, 27, 38, 43, 48));
    EXPECT_FALSE(Find(Items(), 1)->open);
    EXPECT_TRUE(Find(Items(), 13)->open);
    ASSERT_TRUE(Twirl(*session, "about-support", true));
    ASSERT_TRUE(Twirl(*session, "style", false));
    EXPECT_THAT(Indices(Items()), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 22, 23, 24, 25, 27, 38, 43, 48));
    ASSERT_TRUE(Twirl(*session, "all", false));
    EXPECT_THAT(Indices(Items()), ElementsAre(1, 13, 22, 27, 38, 43, 48));
}

TEST_F(PanelSessionTest, TheTypesChangeKeepsTheTwirlOfAngleClosed) {
    Start();
    Update("normal");
    EXPECT_TRUE(Find(Items(), 15)->open);
    Update("radial");
    EXPECT_EQ(Find(Items(), 15), nullptr);
    Update("normal");
    ASSERT_NE(Find(Items(), 15), nullptr);
    EXPECT_FALSE(Find(Items(), 15)->open);
}

struct ValueRow {
    const char* path;
    const char* text;
    const char* shown;
};

TEST_F(PanelSessionTest, ValuesAreShownAsEditorsShowThem) {
    Start();
    const ValueRow rows[] = {
        {"style/distance", "12.345", "12.35"},
        {"opacity/opacity-end", "7.5", "7.50%"},
        {"quality/samples", "64", "64"},
        {"style/angle", "135", "0x +135.0\u00B0"},
        {"style/angle", "-45.25", "0x -45.2\u00B0"},
        {"style/angle", "450", "1x +90.0\u00B0"},
        {"style/angle", "-720", "-2x +0.0\u00B0"},
        {"style/origin", "960,-12.5", "960.0, -12.5"},
        {"style/blend-mode", "soft-light", "Soft Light"},
        {"easing/mode", "ease-in-out", "Ease In & Out"},
        {"texture/blend-mode", "silhouette-luma", "Silhouette Luma"},
    };
    for (const ValueRow& row : rows) {
        SCOPED_TRACE(std::string(row.path) + "=" + row.text);
        ASSERT_TRUE(session->Params().SetFromText(row.path, row.text));
        Update(std::string(row.path) == "style/origin" ? "radial" : "inner");
        ASSERT_TRUE(Twirl(*session, "all", true));
        const auto index = session->Params().Find(row.path);
        const std::vector<PanelItem> items = Items();
        ASSERT_NE(Find(items, *index), nullptr);
        EXPECT_EQ(Find(items, *index)->value, row.shown);
    }
}

TEST_F(PanelSessionTest, ControlsAreThoseOfTheTypes) {
    Start();
    Update("inner");
    ASSERT_TRUE(Twirl(*session, "all", true));
    const std::vector<PanelItem> items = Items();
    const std::pair<int, PanelControl> controls[] = {
        {1, PanelControl::kGroup},    {2, PanelControl::kOwn},     {3, PanelControl::kButton},
        {6, PanelControl::kPopup},    {10, PanelControl::kSpacer}, {15, PanelControl::kAngle},
        {17, PanelControl::kSlider},  {19, PanelControl::kColor},  {20, PanelControl::kPopup},
        {31, PanelControl::kHeading}, {39, PanelControl::kLayer},  {30, PanelControl::kGroup},
    };
    for (const auto& [index, control] : controls) EXPECT_EQ(Find(items, index)->control, control) << index;
    EXPECT_EQ(Find(items, 3)->name, "Umbrant 2 v1.3.3");
    EXPECT_EQ(Find(items, 3)->value, "Product Page");
    EXPECT_EQ(Find(items, 4)->name, "");
    EXPECT_EQ(Find(items, 4)->value, "Free Plugins");
    EXPECT_EQ(Find(items, 5)->name, "GPU Spec:");
    EXPECT_EQ(Find(items, 5)->value, "Get Support");
    EXPECT_EQ(Find(items, 39)->value, "None");
    EXPECT_EQ(Find(items, 31)->name, "Easing Per Attribute");
    EXPECT_EQ(Find(items, 33)->depth, 2);
    EXPECT_TRUE(Find(items, 17)->clock);
    EXPECT_FALSE(Find(items, 14)->clock) << "the type does not change over time";
    EXPECT_FALSE(Find(items, 3)->clock);
}

TEST_F(PanelSessionTest, KnobsStayOnTheirTracks) {
    Start();
    Update("normal");
    ASSERT_TRUE(Twirl(*session, "all", true));
    const std::vector<PanelItem> items = Items();
    EXPECT_EQ(Find(items, 17)->position, 1.0) << "250 on a track up to 200";
    EXPECT_EQ(Find(items, 17)->high, "200");
    EXPECT_EQ(Find(items, 23)->position, 0.2);
    EXPECT_EQ(Find(items, 23)->low, "0%");
    EXPECT_EQ(Find(items, 33)->high, "500%");
    EXPECT_EQ(Find(items, 33)->position, 0.16);
    EXPECT_EQ(Find(items, 51)->position, 0.0);
}

TEST_F(PanelSessionTest, RowsFollowEachOther) {
    Start();
    Update("inner");
    ASSERT_TRUE(Twirl(*session, "all", true));
    double end = PanelMetrics::kHeader;
    for (const PanelItem& item : Items()) {
        EXPECT_GE(item.top, end) << item.index;
        EXPECT_LE(item.top, end + PanelMetrics::kGroupGap) << item.index;
        EXPECT_GT(item.height, 0);
        end = item.top + item.height;
    }
    EXPECT_EQ(PanelHeight(Items()), end + PanelMetrics::kMargin);
    EXPECT_EQ(PanelHeight({}), PanelMetrics::kHeader + PanelMetrics::kMargin);
}

TEST_F(PanelSessionTest, TheBannerGetsTheAreaThatItAskedFor) {
    Start();
    Update("normal");
    ASSERT_TRUE(Twirl(*session, "about-support", true));
    for (const int width : {PanelMetrics::kLeastWidth, PanelMetrics::kUsualWidth, 900}) {
        const std::vector<PanelItem> items = Items(width);
        const PanelItem* banner = Find(items, 2);
        ASSERT_NE(banner, nullptr);
        EXPECT_EQ(banner->frame.right - banner->frame.left, 250);
        EXPECT_EQ(banner->frame.bottom - banner->frame.top, 75);
        EXPECT_EQ(banner->frame.left, 62) << "where the banner begins, but for half a pixel";
        EXPECT_GE(banner->frame.top, banner->top);
        EXPECT_LE(banner->frame.bottom, banner->top + banner->height);
    }
}

TEST_F(PanelSessionTest, ButtonsAreFoundByEveryName) {
    Start();
    Update("normal");
    const std::pair<const char*, int> names[] = {
        {"product-page", 3},
        {"about-support/product-page", 3},
        {"about-support/umbrant-2-v1-3-3", 3},
        {"#3", 3},
        {"free-plugins", 4},
        {"about-support/free-plugins", 4},
        {"#4", 4},
        {"get-support", 5},
        {"about-support/gpu-spec", 5},
        {"Product Page", 3},
        {"Free Plugins", 4},
        {"About & Support/Get Support", 5},
    };
    for (const auto& [name, index] : names) {
        const auto found = FindButton(*session, name);
        ASSERT_TRUE(found) << name << ": " << found.error().sentence;
        EXPECT_EQ(*found, index) << name;
    }
    for (const char* name : {"product-pages", "style/distance", "#14", "#2", "", "#"}) {
        const auto found = FindButton(*session, name);
        ASSERT_FALSE(found) << name;
        EXPECT_EQ(found.error().kind, ErrorKind::kUsage);
    }
    EXPECT_EQ(FindButton(*session, "zyxw").error().sentence.substr(0, 51),
              "there is no button 'zyxw'; the buttons are: 'produc");
    EXPECT_THAT(FindButton(*session, "product-pages").error().sentence,
                ::testing::HasSubstr("there is no button 'product-pages'; closest: 'product-page'"));
}

TEST_F(PanelSessionTest, OnlyGroupsSlidersAndAnglesHaveTwirls) {
    Start();
    for (const char* name : {"style", "style/angle", "style/distance", "#17", "easing/advanced"}) {
        EXPECT_TRUE(Twirl(*session, name, true)) << name;
    }
    for (const char* name : {"style/shadow-type", "style/color", "#3", "#2", "#21", "no-row", "#99"}) {
        const auto twirled = Twirl(*session, name, true);
        ASSERT_FALSE(twirled) << name;
        EXPECT_EQ(twirled.error().kind, ErrorKind::kUsage);
    }
    EXPECT_EQ(Twirl(*session, "style/color", true).error().sentence, "'style/color' cannot be opened or closed");
}

TEST_F(PanelSessionTest, TheEffectAsksForEventsOfItsPanelOnly) {
    Start();
    EXPECT_TRUE(session->WantsPanelEvents());
    PF_EventExtra click{};
    click.e_type = PF_Event_DO_CLICK;
    click.evt_out_flags = 2;
    ASSERT_TRUE(session->SendEvent(&click));
    EXPECT_EQ(click.evt_out_flags, 2);

    // What comes with an event: layer, composition and window are one and the same.
    PF_FixedPoint point{123, 456};
    PF_FloatMatrix matrix{};
    A_long exists = 0;
    EXPECT_EQ(click.cbs.layer_to_comp(click.cbs.refcon, nullptr, 0, 1, &point), 0);
    EXPECT_EQ(click.cbs.comp_to_layer(click.cbs.refcon, nullptr, 0, 1, &point), 0);
    EXPECT_EQ(click.cbs.source_to_frame(click.cbs.refcon, nullptr, &point), 0);
    EXPECT_EQ(click.cbs.frame_to_source(click.cbs.refcon, nullptr, &point), 0);
    EXPECT_EQ(point.x, 123);
    EXPECT_EQ(point.y, 456);
    EXPECT_EQ(click.cbs.get_comp2layer_xform(click.cbs.refcon, nullptr, 0, 1, &exists, &matrix), 0);
    EXPECT_EQ(exists, 1);
    EXPECT_EQ(matrix.mat[1][1], 1.0);
    EXPECT_EQ(click.cbs.get_layer2comp_xform(click.cbs.refcon, nullptr, 0, 1, &matrix), 0);
    EXPECT_EQ(click.cbs.info_draw_color(click.cbs.refcon, {}), 0);
    EXPECT_EQ(click.cbs.info_draw_text(click.cbs.refcon, "a", nullptr), 0);
    EXPECT_NE(click.cbs.layer_to_comp(click.cbs.refcon, nullptr, 0, 1, nullptr), 0);
    EXPECT_NE(click.cbs.source_to_frame(click.cbs.refcon, nullptr, nullptr), 0);
    EXPECT_NE(click.cbs.get_comp2layer_xform(click.cbs.refcon, nullptr, 0, 1, nullptr, &matrix), 0);
    EXPECT_NE(click.cbs.get_layer2comp_xform(click.cbs.refcon, nullptr, 0, 1, nullptr), 0);
}

}  // namespace

}  // namespace umbrant::host
