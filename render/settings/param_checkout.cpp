// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/settings/param_checkout.h"

namespace umbrant::effect {

PF_Err CheckoutParams(PF_InData* in_data, CheckedOutParams* params) {
    *params = {};
    for (A_long index = PARAM_INPUT + 1; index < PARAM_NUM_PARAMS; ++index) {
        if (index == PARAM_TEXTURE_LAYER) continue;
        PF_ParamDef def{};
        PF_Err err = in_data->inter.checkout_param(in_data->effect_ref, index, in_data->current_time,
                                                   in_data->time_step, in_data->time_scale, &def);
        if (err) return err;
        (*params)[static_cast<size_t>(index)] = def;
        err = in_data->inter.checkin_param(in_data->effect_ref, &def);
        if (err) return err;
    }
    return PF_Err_NONE;
}

}  // namespace umbrant::effect
