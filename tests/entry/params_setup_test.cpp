// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The whole declaration, row by row, and what ends it early.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "entry/global_data.h"
#include "tests/entry/entry_fixture.h"
#include "tests/entry/expected_params.h"

namespace umbrant::effect {

namespace {

/// What the host saw of one `add_param`.
struct Added {
    PF_ProgPtr effectRef;
    PF_ParamIndex position;
    PF_ParamDef def;
    std::string text;  ///< items or label, read while the call lasted; the pointer in `def` is cleared
};

struct Host {
    std::vector<Added> added;
    int failAt = 0;
    PF_Err error = 0;
    std::vector<PF_CustomUIInfo> registered;
    size_t addedWhenRegistered = 0;
    PF_ProgPtr registeredRef = nullptr;
    PF_Err registerError = 0;
};
Host seen;

PF_Err AddParam(PF_ProgPtr effectRef, PF_ParamIndex position, PF_ParamDefPtr def) {
    Added added;
    added.effectRef = effectRef;
    added.position = position;
    std::memcpy(&added.def, def, sizeof(added.def));
    if (def->param_type == POPUP) {
        added.text = def->u.pd.u.namesptr;
        added.def.u.pd.u.namesptr = nullptr;
    } else if (def->param_type == BUTTON) {
        added.text = def->u.button_d.u.namesptr;
        added.def.u.button_d.u.namesptr = nullptr;
    }
    seen.added.push_back(added);
    return static_cast<int>(seen.added.size()) == seen.failAt ? seen.error : PF_Err_NONE;
}

PF_Err RegisterUI(PF_ProgPtr effectRef, PF_CustomUIInfo* info) {
    seen.registered.push_back(*info);
    seen.registeredRef = effectRef;
    seen.addedWhenRegistered = seen.added.size();
    return seen.registerError;
}

class ParamsSetupTest : public EntryTest {
 protected:
    ParamsSetupTest() {
        seen = {};
        host.inData.inter.add_param = AddParam;
        host.inData.inter.register_ui = RegisterUI;
        host.outData.num_params = -7;
        handle_ = host.inData.global_data = host.MakeHandle(sizeof(GlobalData));
        writtenRecords.Note(handle_);
        SetDriver("3.3 Test", "The Vendor", "The Renderer", "3.30");
    }

    ~ParamsSetupTest() override {
        writtenRecords.Forget(handle_);
        ExpectBalanced();
    }

    GlobalData& Record() { return *static_cast<GlobalData*>(host.BytesOf(handle_)); }
    void SetDriver(const char* version, const char* vendor, const char* renderer, const char* shading) {
        std::strcpy(Record().gl_version, version);
        std::strcpy(Record().gl_vendor, vendor);
        std::strcpy(Record().gl_renderer, renderer);
        std::strcpy(Record().glsl_version, shading);
    }
    PF_Err Declare() { return Call(PF_Cmd_PARAMS_SETUP); }
    const Added& Row(int index) { return seen.added.at(static_cast<size_t>(index) - 1); }
    void ExpectDriverRows(const char* vendor, const char* renderer, const char* version, const char* shading) {
        EXPECT_EQ(Row(6).text, vendor);
        EXPECT_EQ(Row(7).text, renderer);
        EXPECT_EQ(Row(8).text, version);
        EXPECT_EQ(Row(9).text, shading);
    }

    PF_Handle handle_;
};

TEST_F(ParamsSetupTest, EveryRowInOrder) {
    EXPECT_EQ(Declare(), PF_Err_NONE);
    EXPECT_EQ(host.outData.num_params, 61);
    ASSERT_EQ(std::size(kRows), 60u);
    ASSERT_EQ(seen.added.size(), 60u);
    for (const ExpectedRow& row : kRows) {
        SCOPED_TRACE("index " + std::to_string(row.index));
        const Added& added = Row(row.index);
        EXPECT_EQ(added.effectRef, host.inData.effect_ref);
        EXPECT_EQ(added.position, -1);
        EXPECT_EQ(added.def.uu.id, row.id);
        EXPECT_EQ(added.def.param_type, row.type);
        EXPECT_STREQ(added.def.name_do_not_use_directly, row.name);
        EXPECT_EQ(added.def.flags, row.flags);
        EXPECT_EQ(added.def.ui_flags, row.uiFlags);
        EXPECT_EQ(added.def.ui_width, row.index == 2 ? 250 : 0);
        EXPECT_EQ(added.def.ui_height, row.index == 2 ? 75 : 0);
    }
}

TEST_F(ParamsSetupTest, Sliders) {
    Declare();
    size_t sliders = 0;
    for (const Added& added : seen.added) sliders += added.def.param_type == SLIDER;
    ASSERT_EQ(sliders, std::size(kSliders));
    for (const ExpectedSlider& row : kSliders) {
        SCOPED_TRACE("index " + std::to_string(row.index));
        const PF_FloatSliderDef& slider = Row(row.index).def.u.fs_d;
        EXPECT_EQ(slider.valid_min, row.validMin);
        EXPECT_EQ(slider.valid_max, row.validMax);
        EXPECT_EQ(slider.slider_min, row.sliderMin);
        EXPECT_EQ(slider.slider_max, row.sliderMax);
        EXPECT_EQ(slider.dephault, row.initial);
        EXPECT_EQ(slider.value, static_cast<double>(row.initial));
        EXPECT_EQ(slider.precision, row.precision);
        EXPECT_EQ(slider.display_flags, row.display);
        EXPECT_EQ(slider.phase, 0.0);
        EXPECT_EQ(slider.curve_tolerance, 0.05f);
        EXPECT_EQ(slider.fs_flags, 0u);
        EXPECT_EQ(slider.useExponent, 0);
        EXPECT_EQ(slider.exponent, 0.0f);
    }
}

// Projects rely on the declared numbers; nobody is to reconcile them.
TEST_F(ParamsSetupTest, OddRangesAreKept) {
    Declare();
    for (int index : {17, 18}) EXPECT_GT(Row(index).def.u.fs_d.dephault, Row(index).def.u.fs_d.slider_max) << index;
    for (int index : {33, 34, 35, 50}) {
        EXPECT_GT(Row(index).def.u.fs_d.slider_max, Row(index).def.u.fs_d.valid_max) << index;
    }
    EXPECT_LT(Row(44).def.u.fs_d.slider_min, Row(44).def.u.fs_d.valid_min);
}

TEST_F(ParamsSetupTest, Popups) {
    Declare();
    size_t popups = 0;
    for (const Added& added : seen.added) popups += added.def.param_type == POPUP;
    ASSERT_EQ(popups, std::size(kPopups));
    for (const ExpectedPopup& row : kPopups) {
        SCOPED_TRACE("index " + std::to_string(row.index));
        EXPECT_EQ(Row(row.index).text, row.items);
        EXPECT_EQ(Row(row.index).def.u.pd.num_choices, row.count);
        EXPECT_EQ(Row(row.index).def.u.pd.dephault, row.initial);
        EXPECT_EQ(Row(row.index).def.u.pd.value, row.initial);
        EXPECT_EQ(std::count(Row(row.index).text.begin(), Row(row.index).text.end(), '|') + 1, row.count);
    }
}

/// The item of a 1-based number.
std::string Item(const std::string& items, int number) {
    size_t begin = 0;
    while (--number > 0) begin = items.find('|', begin) + 1;
    return items.substr(begin, items.find('|', begin) - begin);
}

TEST_F(ParamsSetupTest, SeparatorsTakeANumber) {
    Declare();
    EXPECT_EQ(Item(Row(20).text, 2), "(-");
    EXPECT_EQ(Item(Row(20).text, 3), "Add");
    EXPECT_EQ(Item(Row(20).text, 15), "Darker Color");
    EXPECT_EQ(Item(Row(40).text, 15), "Silhouette Luma");
    EXPECT_EQ(Item(Row(40).text, 11), "(-");
}

TEST_F(ParamsSetupTest, Buttons) {
    Declare();
    EXPECT_EQ(Row(3).text, "Product Page");
    EXPECT_EQ(Row(4).text, "Free Plugins");
    EXPECT_EQ(Row(5).text, "Get Support");
}

TEST_F(ParamsSetupTest, OtherValues) {
    Declare();
    EXPECT_EQ(Row(15).def.u.ad.value, 135 << 16);
    EXPECT_EQ(Row(15).def.u.ad.dephault, 135 << 16);
    EXPECT_EQ(Row(16).def.u.td.restrict_bounds, 0);
    const PF_ColorDef& color = Row(19).def.u.cd;
    for (const PF_Pixel& pixel : {color.value, color.dephault}) {
        EXPECT_EQ(pixel.alpha, 255);
        EXPECT_EQ(pixel.red + pixel.green + pixel.blue, 0);
    }
    EXPECT_EQ(Row(39).def.u.ld.dephault, 0);
    EXPECT_EQ(Row(2).def.u.arb_d.id, 55);
    EXPECT_EQ(Row(2).def.u.arb_d.dephault, nullptr);
    EXPECT_EQ(Row(2).def.u.arb_d.value, nullptr);
    EXPECT_EQ(Row(2).def.u.arb_d.refconPV, nullptr);
}

// Hosts read whole definitions: a byte that no row sets is zero.
TEST_F(ParamsSetupTest, NothingElseIsSet) {
    Declare();
    for (const ExpectedRow& row : kRows) {
        SCOPED_TRACE("index " + std::to_string(row.index));
        PF_ParamDef rest;
        std::memcpy(&rest, &Row(row.index).def, sizeof(rest));
        rest.uu.id = 0;
        rest.ui_flags = rest.flags = 0;
        rest.ui_width = rest.ui_height = 0;
        rest.param_type = 0;
        std::memset(rest.name_do_not_use_directly, 0, std::strlen(row.name));
        switch (row.type) {
            case SLIDER: {
                PF_FloatSliderDef& s = rest.u.fs_d;
                s.value = 0;
                s.valid_min = s.valid_max = s.slider_min = s.slider_max = s.dephault = s.curve_tolerance = 0;
                s.precision = s.display_flags = 0;
                break;
            }
            case POPUP:
                rest.u.pd.value = rest.u.pd.num_choices = rest.u.pd.dephault = 0;
                break;
            case ANGLE:
                rest.u.ad.value = rest.u.ad.dephault = 0;
                break;
            case COLOR:
                rest.u.cd.value.alpha = rest.u.cd.dephault.alpha = 0;
                break;
            case ARB:
                rest.u.arb_d.id = 0;
                break;
            default:
                break;
        }
        for (size_t i = 0; i < sizeof(rest); ++i) {
            ASSERT_EQ(reinterpret_cast<const uint8_t*>(&rest)[i], 0) << "byte " << i;
        }
    }
}

TEST_F(ParamsSetupTest, OneDiskIdIsShared) {
    Declare();
    std::map<A_long, int> uses;
    for (const Added& added : seen.added) ++uses[added.def.uu.id];
    EXPECT_EQ(uses[11], 2) << "the shadow type and the easing mode";
    EXPECT_EQ(Row(14).def.uu.id, Row(28).def.uu.id);
    for (const auto& [id, count] : uses) EXPECT_EQ(count, id == 11 ? 2 : 1) << id;
}

TEST_F(ParamsSetupTest, GroupsAreBalanced) {
    Declare();
    int depth = 0;
    for (const Added& added : seen.added) {
        if (added.def.param_type == GS) ++depth;
        if (added.def.param_type == GE) --depth;
        ASSERT_GE(depth, 0);
    }
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(Row(10).def.param_type, GS);
    EXPECT_EQ(Row(11).def.param_type, GE) << "an empty group as a spacer";
}

TEST_F(ParamsSetupTest, NoDriverNoStrings) {
    SetDriver("", "The Vendor", "The Renderer", "3.30");
    Declare();
    ExpectDriverRows("NULL", "NULL", "NULL", "NULL");
    EXPECT_EQ(Row(6).def.u.pd.num_choices, 1);
}

TEST_F(ParamsSetupTest, NoGlobalDataNoStrings) {
    host.inData.global_data = nullptr;
    EXPECT_EQ(Declare(), PF_Err_NONE);
    ExpectDriverRows("NULL", "NULL", "NULL", "NULL");
    EXPECT_EQ(host.CountOf("host_lock_handle"), 0);
    seen = {};
    host.inData.global_data = handle_;
    host.failLock = 1;
    EXPECT_EQ(Declare(), PF_Err_NONE);
    ExpectDriverRows("NULL", "NULL", "NULL", "NULL");
    EXPECT_EQ(host.CountOf("host_unlock_handle"), 0);
}

TEST_F(ParamsSetupTest, ARecordThatSetUpDidNotWriteHasNoStrings) {
    writtenRecords.Forget(handle_);
    EXPECT_EQ(Declare(), PF_Err_NONE);
    ExpectDriverRows("NULL", "NULL", "NULL", "NULL");
}

// A handle's pointer is valid only while the handle is locked.
TEST_F(ParamsSetupTest, TheRecordIsReadUnderALock) {
    host.PointUnlockedHandlesTo(nullptr);
    EXPECT_EQ(Declare(), PF_Err_NONE);
    ExpectDriverRows("The Vendor", "The Renderer", "3.3 Test", "3.30");
    EXPECT_EQ(host.calls, (std::vector<std::string>{"AcquireSuite PF Handle Suite 2", "host_lock_handle",
                                                    "host_unlock_handle", "ReleaseSuite PF Handle Suite 2"}));
}

TEST_F(ParamsSetupTest, TheVersionAloneDecides) {
    SetDriver("4.6", "", "", "");
    Declare();
    ExpectDriverRows("", "", "4.6", "");
}

// Intended: nothing guards against it, so such a string shows as more items than the one that is declared.
TEST_F(ParamsSetupTest, ABarInADriversStringIsHandedOn) {
    SetDriver("3.3", "One|Two", "A|B|C", "3.30");
    Declare();
    ExpectDriverRows("One|Two", "A|B|C", "3.3", "3.30");
    EXPECT_EQ(Row(6).def.u.pd.num_choices, 1);
    EXPECT_EQ(Row(7).def.u.pd.num_choices, 1);
}

TEST_F(ParamsSetupTest, StringsWithoutAnEndAreCut) {
    std::memset(&Record(), 'x', sizeof(GlobalData));
    EXPECT_EQ(Declare(), PF_Err_NONE);
    const std::string cut(99, 'x');
    ExpectDriverRows(cut.c_str(), cut.c_str(), cut.c_str(), cut.c_str());
}

TEST_F(ParamsSetupTest, TheRecordIsNotWritten) {
    GlobalData before;
    std::memcpy(&before, &Record(), sizeof(before));
    Declare();
    EXPECT_EQ(std::memcmp(&before, &Record(), sizeof(before)), 0);
}

TEST_F(ParamsSetupTest, PanelIsRegisteredRightAfterItsRow) {
    Declare();
    ASSERT_EQ(seen.registered.size(), 1u);
    EXPECT_EQ(seen.addedWhenRegistered, 2u);
    EXPECT_EQ(seen.registeredRef, host.inData.effect_ref);
    PF_CustomUIInfo expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.events = 4;
    EXPECT_EQ(std::memcmp(&seen.registered[0], &expected, sizeof(expected)), 0) << "effect-panel events, nothing else";
}

TEST_F(ParamsSetupTest, AFailingRegistrationIsIgnored) {
    seen.registerError = 517;
    EXPECT_EQ(Declare(), PF_Err_NONE);
    EXPECT_EQ(seen.added.size(), 60u);
    EXPECT_EQ(host.outData.num_params, 61);
}

TEST_F(ParamsSetupTest, TheFirstErrorEndsTheSetup) {
    for (int k : {1, 2, 3, 6, 14, 39, 59, 60}) {
        SCOPED_TRACE(k);
        seen = {};
        seen.failAt = k;
        seen.error = 4000 + k;
        EXPECT_EQ(Declare(), 4000 + k);
        EXPECT_EQ(seen.added.size(), static_cast<size_t>(k)) << "nothing more is added";
        EXPECT_EQ(host.outData.num_params, -7) << "the count is not set";
        EXPECT_EQ(seen.registered.size(), k > 2 ? 1u : 0u);
    }
}

TEST_F(ParamsSetupTest, MissingSuitesAre516AndNothingIsAdded) {
    host.Refuse("PF Handle Suite");
    EXPECT_EQ(Declare(), 516);
    EXPECT_EQ(seen.added.size(), 0u);
    host.inData.global_data = nullptr;
    EXPECT_EQ(Declare(), PF_Err_NONE) << "without a record there is nothing to lock";
    seen = {};
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(Declare(), 516);
    EXPECT_EQ(seen.added.size(), 0u);
}

TEST_F(ParamsSetupTest, TwiceTheSame) {
    Declare();
    const std::vector<Added> first = seen.added;
    seen = {};
    Declare();
    ASSERT_EQ(seen.added.size(), first.size());
    for (size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(std::memcmp(&first[i].def, &seen.added[i].def, sizeof(PF_ParamDef)), 0) << i;
        EXPECT_EQ(first[i].text, seen.added[i].text);
    }
}

}  // namespace

}  // namespace umbrant::effect
