// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Presets for an effect of which rows of every kind are made up here, and what the rows show at a time.

#include "host/animation/preset.h"
#include "tests/host/session/session_fixture.h"
#include "tests/support/folder.h"

namespace umbrant::host {

inline constexpr AnimationClock kClock{10, 0};

/// Presets for an effect of which rows of every kind are made up here.
class PresetTest : public testing::Test {
 protected:
    PresetTest() {
        Add(PF_Param_FLOAT_SLIDER, "Size", [](PF_ParamDef& def) {
            def.u.fs_d.valid_min = 0;
            def.u.fs_d.valid_max = 100;
        });
        Add(PF_Param_SLIDER, "Count", [](PF_ParamDef& def) { def.u.sd.valid_max = 50; });
        Add(PF_Param_FIX_SLIDER, "Strength", [](PF_ParamDef& def) {
            def.u.fd.valid_max = 100 << 16;
            def.u.fd.display_flags = PF_ValueDisplayFlag_PERCENT;
        });
        Add(PF_Param_ANGLE, "Angle", [](PF_ParamDef&) {});
        Add(PF_Param_POINT, "Centre", [](PF_ParamDef&) {});
        Add(PF_Param_COLOR, "Colour", [](PF_ParamDef&) {});
        Add(PF_Param_POPUP, "Mode", [](PF_ParamDef& def) { def.u.pd = {1, 3, 1, {"Soft|Hard|Very Hard"}}; });
        Add(PF_Param_CHECKBOX, "On", [](PF_ParamDef& def) { def.u.bd.u.nameptr = "yes"; });
        Add(PF_Param_POPUP, "Kind", [](PF_ParamDef& def) {
            def.u.pd = {1, 2, 1, {"One|Two"}};
            def.flags = PF_ParamFlag_CANNOT_TIME_VARY;
        });
        Add(PF_Param_BUTTON, "Press", [](PF_ParamDef& def) { def.u.button_d.u.namesptr = "Press"; });
    }

    template <typename Fill>
    void Add(PF_ParamType type, const char* name, Fill fill) {
        PF_ParamDef def{};
        def.param_type = type;
        std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "%s", name);
        fill(def);
        ASSERT_EQ(params_.values.Add(-1, &def), PF_Err_NONE);
    }

    Result<Done> Apply(const std::string& text) {
        WriteBytes(folder_ / "p.json", text);
        return ApplyPreset(folder_ / "p.json", params_);
    }
    void MustApply(const std::string& text) {
        const auto applied = Apply(text);
        ASSERT_TRUE(applied) << applied.error().sentence;
    }
    /// What a row shows at a frame.
    std::string At(const char* path, double frame) const {
        const ParamSet values = params_.animation.ValuesAt(params_.values, frame, kClock);
        return values.ValueText(*values.Find(path));
    }
    /// A preset of version 2 with these keyframes.
    static std::string Moving(const std::string& keyframes) {
        return R"({"version": 2, "keyframes": {)" + keyframes + "}}";
    }

    const Folder folder_;
    AnimatedParams params_;
};

}  // namespace umbrant::host
