// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect's whole life on one screen: which command goes where, and how a failure becomes the host's error.

#include <mutex>

#include "entry/about.h"
#include "entry/entry_points.h"
#include "entry/global_setup.h"
#include "entry/panel.h"
#include "entry/panel_drawing.h"
#include "entry/params_setup.h"
#include "render/pre_render/pre_render.h"
#include "render/smart_render.h"

using namespace umbrant::effect;

namespace {

/// Whether what the command is about was left out, as hosts with faults of their own have done.
bool LacksItsArgument(PF_Cmd cmd, PF_ParamDef** params, const void* extra) {
    switch (cmd) {
        case PF_Cmd_UPDATE_PARAMS_UI:
            return params == nullptr;
        case PF_Cmd_USER_CHANGED_PARAM:
        case PF_Cmd_EVENT:
        case PF_Cmd_SMART_PRE_RENDER:
        case PF_Cmd_SMART_RENDER:
            return extra == nullptr;
        default:
            return false;
    }
}

}  // namespace

PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[], PF_LayerDef*,
                  void* extra) {
    try {
        if (LacksItsArgument(cmd, params, extra)) return PF_Err_BAD_CALLBACK_PARAM;
        switch (cmd) {
            case PF_Cmd_ABOUT:
                return About(in_data, out_data);
            case PF_Cmd_GLOBAL_SETUP:
                return GlobalSetup(in_data, out_data);
            case PF_Cmd_GLOBAL_SETDOWN:
                return GlobalSetdown(in_data);
            case PF_Cmd_PARAMS_SETUP:
                return ParamsSetup(in_data, out_data);
            case PF_Cmd_USER_CHANGED_PARAM:
                return UserChangedParam(in_data, static_cast<PF_UserChangedParamExtra*>(extra));
            case PF_Cmd_UPDATE_PARAMS_UI:
                return UpdateParamsUI(in_data, params);
            case PF_Cmd_EVENT:
                return HandleEvent(in_data, out_data, static_cast<PF_EventExtra*>(extra));
            // No flag depends on anything: the ones of global set-up hold.
            case PF_Cmd_QUERY_DYNAMIC_FLAGS:
                return PF_Err_NONE;
            case PF_Cmd_SMART_PRE_RENDER:
                return PreRender(in_data, out_data, static_cast<PF_PreRenderExtra*>(extra));
            case PF_Cmd_SMART_RENDER: {
                const std::lock_guard<std::recursive_mutex> lock(globalMutex);
                return SmartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
            }
            // Intended: also PF_Cmd_RENDER. The effect renders through the smart render alone.
            default:
                return PF_Err_NONE;
        }
    } catch (PF_Err err) {
        return err;
    } catch (...) {
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}
