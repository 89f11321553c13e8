// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Any bytes as a preset: it is taken whole or refused whole, and what was taken is written so that it can be read
// again.

#include <cstring>

#include "host/animation/preset.h"
#include "tests/fuzz/target.h"

using namespace umbrant::host;

namespace {

PF_ParamDef Row(PF_ParamType type, const char* name) {
    PF_ParamDef def{};
    def.param_type = type;
    std::strncpy(def.name_do_not_use_directly, name, sizeof(def.name_do_not_use_directly) - 1);
    return def;
}

/// A row of every type that a value can be given to.
ParamSet EveryType() {
    ParamSet params;
    PF_ParamDef group = Row(PF_Param_GROUP_START, "Style");
    params.Add(-1, &group);
    PF_ParamDef popup = Row(PF_Param_POPUP, "Blend Mode");
    popup.u.pd.num_choices = 4;
    popup.u.pd.dephault = 1;
    popup.u.pd.value = 1;
    popup.u.pd.u.namesptr = "Normal|(-|Soft Light|Ease In & Out";
    params.Add(-1, &popup);
    PF_ParamDef angle = Row(PF_Param_ANGLE, "Angle");
    params.Add(-1, &angle);
    PF_ParamDef point = Row(PF_Param_POINT, "Origin");
    params.Add(-1, &point);
    PF_ParamDef slider = Row(PF_Param_FLOAT_SLIDER, "Distance");
    slider.u.fs_d.valid_max = slider.u.fs_d.slider_max = 2000;
    slider.u.fs_d.precision = 1;
    params.Add(-1, &slider);
    PF_ParamDef percent = slider;
    std::strcpy(percent.name_do_not_use_directly, "Strength");
    percent.u.fs_d.valid_max = percent.u.fs_d.slider_max = 100;
    percent.u.fs_d.display_flags = PF_ValueDisplayFlag_PERCENT;
    params.Add(-1, &percent);
    PF_ParamDef whole = Row(PF_Param_SLIDER, "Samples");
    whole.u.sd.valid_min = whole.u.sd.dephault = whole.u.sd.value = 1;
    whole.u.sd.valid_max = 256;
    params.Add(-1, &whole);
    PF_ParamDef colour = Row(PF_Param_COLOR, "Color");
    params.Add(-1, &colour);
    PF_ParamDef box = Row(PF_Param_CHECKBOX, "Offset Shadow");
    box.u.bd.u.nameptr = "On";
    params.Add(-1, &box);
    PF_ParamDef end = Row(PF_Param_GROUP_END, "");
    params.Add(-1, &end);
    PF_ParamDef unnamed = slider;
    unnamed.name_do_not_use_directly[0] = '\0';
    params.Add(-1, &unnamed);
    params.Finish();
    return params;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFile file("preset.json");
    static const AnimatedParams declared{EveryType(), {}};
    file.Write({data, size});
    AnimatedParams params = declared;
    const auto applied = ApplyPreset(file.Path(), params);
    const std::string text = PresetText(params);
    if (!applied) {
        Promise(!applied.error().sentence.empty(), "a refusal says why");
        Promise(text == PresetText(declared), "a preset that is refused changes nothing");
        return 0;
    }
    static const ScratchFile written("written.json");
    written.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    AnimatedParams again = declared;
    const auto reread = ApplyPreset(written.Path(), again);
    Promise(bool(reread), reread ? "" : "what was written can be read: " + reread.error().sentence);
    Promise(PresetText(again) == text, "what was written says the same when it is read");
    // Every moment has values that the rows take.
    for (const double frame : {-1e6, 0.0, 1.5, 24.0, 1e6}) params.animation.ValuesAt(params.values, frame, {});
    return 0;
}
