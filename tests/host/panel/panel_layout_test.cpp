// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Rows of other effects: kinds that Umbrant's panel does not have, and groups within groups.

#include "host/panel/panel_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

/// A declaration and the panel that it begins with.
struct Panel {
    Panel& Row(PF_ParamType type, const char* name, PF_ParamDefUnion u = {}, PF_ParamFlags flags = 0,
               PF_ParamUIFlags uiFlags = 0) {
        PF_ParamDef def{};
        def.param_type = type;
        std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "%s", name);
        def.u = u;
        def.flags = flags;
        def.ui_flags = uiFlags;
        def.ui_width = 40;
        def.ui_height = 30;
        EXPECT_EQ(params.Add(-1, &def), 0);
        return *this;
    }
    std::vector<PanelItem> Items() {
        if (rows.empty()) {
            for (const ParamRow& row : params.Rows()) rows.push_back(DeclaredPanelRow(row.def));
        }
        return LayOutPanel(params, rows, {100, 50, {1, 1}, {1, 1}}, 400);
    }
    std::vector<int> Indices() {
        std::vector<int> indices;
        for (const PanelItem& item : Items()) indices.push_back(item.index);
        return indices;
    }

    ParamSet params;
    std::vector<PanelRow> rows;
};

TEST(PanelLayout, AHiddenGroupHidesWhatIsInIt) {
    Panel panel;
    panel.Row(PF_Param_GROUP_START, "Outer").Row(PF_Param_GROUP_START, "Inner").Row(PF_Param_COLOR, "Color");
    panel.Row(PF_Param_GROUP_END, "").Row(PF_Param_COLOR, "Second").Row(PF_Param_GROUP_END, "");
    panel.Row(PF_Param_COLOR, "Last");
    EXPECT_THAT(panel.Indices(), ElementsAre(1, 2, 3, 5, 7));
    panel.rows[2].hidden = true;
    EXPECT_THAT(panel.Indices(), ElementsAre(1, 5, 7));
    panel.rows[2].hidden = false;
    panel.rows[1].hidden = true;
    EXPECT_THAT(panel.Indices(), ElementsAre(7));
    panel.rows[1].hidden = false;
    panel.rows[1].collapsed = true;
    EXPECT_THAT(panel.Indices(), ElementsAre(1, 7)) << "a closed one too, but for itself";
    panel.rows[1].collapsed = false;
    panel.rows[2].collapsed = true;
    EXPECT_THAT(panel.Indices(), ElementsAre(1, 2, 5, 7));
}

TEST(PanelLayout, KnowsEveryKindOfRow) {
    PF_ParamDefUnion whole{}, fixed{}, box{}, pixels{};
    whole.sd.value = whole.sd.dephault = 5;
    whole.sd.valid_max = 10;
    whole.sd.slider_max = 20;
    fixed.fd.value = fixed.fd.dephault = 3 << 15;
    fixed.fd.slider_max = fixed.fd.valid_max = 6 << 16;
    fixed.fd.precision = 1;
    box.bd.value = 1;
    box.bd.dephault = 1;
    box.bd.u.nameptr = "On";
    pixels.fs_d.value = -2.5;
    pixels.fs_d.slider_min = pixels.fs_d.valid_min = -5;
    pixels.fs_d.slider_max = pixels.fs_d.valid_max = -5;  // a track without length
    pixels.fs_d.dephault = -5;
    pixels.fs_d.precision = 2;
    pixels.fs_d.display_flags = PF_ValueDisplayFlag_PIXEL;
    Panel panel;
    panel.Row(PF_Param_SLIDER, "Whole", whole).Row(PF_Param_FIX_SLIDER, "Fixed", fixed);
    panel.Row(PF_Param_CHECKBOX, "Box", box).Row(PF_Param_FLOAT_SLIDER, "Pixels", pixels);
    panel.Row(PF_Param_NO_DATA, "Nothing").Row(PF_Param_POINT, "Point", {}, PF_ParamFlag_CANNOT_TIME_VARY);
    panel.Row(PF_Param_ARBITRARY_DATA, "Own", {}, 0, PF_PUI_CONTROL);
    panel.Row(PF_Param_COLOR, "Unseen", {}, 0, PF_PUI_NO_ECW_UI);
    const std::vector<PanelItem> items = panel.Items();
    ASSERT_EQ(items.size(), 7u);
    EXPECT_EQ(items[0].value, "5");
    EXPECT_EQ(items[0].position, 0.25);
    EXPECT_EQ(items[1].value, "1.5");
    EXPECT_EQ(items[1].position, 0.25);
    EXPECT_EQ(items[2].control, PanelControl::kCheckBox);
    EXPECT_TRUE(items[2].checked);
    EXPECT_EQ(items[2].value, "On");
    EXPECT_EQ(items[3].low, "-5 px");
    EXPECT_EQ(items[3].position, 0.0);
    EXPECT_EQ(items[4].control, PanelControl::kNothing);
    EXPECT_FALSE(items[4].clock);
    EXPECT_EQ(items[5].value, "0.0, 0.0");
    EXPECT_FALSE(items[5].clock);
    EXPECT_EQ(items[6].control, PanelControl::kOwn);
    EXPECT_EQ(items[6].frame.left, static_cast<int>(PanelMetrics::ControlLeft(400))) << "beside its name";
    EXPECT_EQ(items[6].frame.right - items[6].frame.left, 40);
    EXPECT_EQ(items[6].frame.bottom - items[6].frame.top, 30);
}

TEST(PanelLayout, ClosedSlidersAndAnglesAreOneLine) {
    PF_ParamDefUnion slider{};
    slider.fs_d.slider_max = slider.fs_d.valid_max = 1;
    Panel panel;
    panel.Row(PF_Param_FLOAT_SLIDER, "Slider", slider).Row(PF_Param_ANGLE, "Angle");
    EXPECT_EQ(panel.Items()[0].height, PanelMetrics::kRow + PanelMetrics::kTrack);
    EXPECT_EQ(panel.Items()[1].height, PanelMetrics::kRow + PanelMetrics::kDial);
    panel.rows[1].collapsed = panel.rows[2].collapsed = true;
    EXPECT_EQ(panel.Items()[0].height, PanelMetrics::kRow);
    EXPECT_EQ(panel.Items()[1].height, PanelMetrics::kRow);
    EXPECT_FALSE(panel.Items()[1].open);
}

}  // namespace

}  // namespace umbrant::host
