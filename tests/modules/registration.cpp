// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Modules that go wrong when they are scanned or set up. REGISTRATION_FLAW chooses how.

#include "hostapi/registration.h"

#include <cstring>
#include <stdexcept>
#include <string>

#include "hostapi/commands.h"

#define MODULE_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

enum Flaw {
    kThrows,
    kThrowsNumber,
    kReturnsError,
    kRegistersNothing,
    kRegistersTwice,
    kWrongKind,
    kWrongEntry,
    kNullName,
    kLongName,
    kNoSmartRender,
    kSetupError,
    kParamsError,
    kWrongCount,
    kOpenGroup,
    kStrayGroupEnd,
    kBadParamType,
    kSetupThrows
};
constexpr Flaw kFlaw = REGISTRATION_FLAW;

/// 300 bytes, of which the 253rd begins a character of two.
const std::string& LongName() {
    static const std::string name = std::string(251, 'n') + "\xc3\xa4" + std::string(47, 'n');
    return name;
}

PF_Err AddRow(PF_InData* in, PF_ParamType type) {
    PF_ParamDef def{};
    def.param_type = type;
    return in->inter.add_param(in->effect_ref, -1, &def);
}

PF_Err ParamsSetup(PF_InData* in, PF_OutData* out) {
    out->num_params = kFlaw == kWrongCount ? 5 : 2;
    if (kFlaw == kParamsError) {
        std::memcpy(out->return_msg, "no parameters today", 19);
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (kFlaw == kOpenGroup) return AddRow(in, PF_Param_GROUP_START);
    if (kFlaw == kStrayGroupEnd) return AddRow(in, PF_Param_GROUP_END);
    if (kFlaw == kBadParamType) return AddRow(in, 99);
    return AddRow(in, PF_Param_ANGLE);
}

}  // namespace

MODULE_EXPORT PF_Err FlawedMain(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef*[], PF_LayerDef*, void*) {
    if (command == PF_Cmd_GLOBAL_SETUP) {
        if (kFlaw == kSetupError) return PF_Err_INTERNAL_STRUCT_DAMAGED;
        if (kFlaw == kSetupThrows) throw std::runtime_error("no set-up today");
        out->out_flags2 = kFlaw == kNoSmartRender ? PF_OutFlag2_NONE : PF_OutFlag2_SUPPORTS_SMART_RENDER;
        out->global_data = in->utils->host_new_handle(8);
    }
    if (command == PF_Cmd_GLOBAL_SETDOWN) in->utils->host_dispose_handle(in->global_data);
    if (command == PF_Cmd_PARAMS_SETUP) return ParamsSetup(in, out);
    return PF_Err_NONE;
}

MODULE_EXPORT PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer, PF_PluginDataCB callback, SPBasicSuite*,
                                             const char*, const char*) {
    if (kFlaw == kThrows) throw std::runtime_error("no registration today");
    if (kFlaw == kThrowsNumber) throw 12;
    if (kFlaw == kReturnsError) return 25;
    if (kFlaw == kRegistersNothing) return PF_Err_NONE;
    const auto text = [](const char* characters) { return reinterpret_cast<const A_u_char*>(characters); };
    const A_u_char* name = kFlaw == kNullName ? nullptr : text(kFlaw == kLongName ? LongName().c_str() : "Flawed");
    const A_u_char* entry = text(kFlaw == kWrongEntry ? "ElsewhereMain" : "FlawedMain");
    const A_long kind = kFlaw == kWrongKind ? 0x41454750 : kPluginKind_Effect;
    const int times = kFlaw == kRegistersTwice ? 2 : 1;
    for (int i = 0; i < times; ++i) {
        callback(pointer, name, text("TEST flawed"), text("Tests"), entry, kind, 13, 28, 8);
    }
    return PF_Err_NONE;
}
