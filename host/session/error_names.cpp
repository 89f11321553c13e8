// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/session/error_names.h"

#include <fmt/format.h>

namespace umbrant::host {

namespace {

struct Named {
    A_long number;
    const char* name;
};

/// One name per value: where both families have one, the effect's.
constexpr Named kErrors[] = {
    {PF_Err_NONE, "PF_Err_NONE"},
    {A_Err_GENERIC, "A_Err_GENERIC"},
    {A_Err_STRUCT, "A_Err_STRUCT"},
    {A_Err_PARAMETER, "A_Err_PARAMETER"},
    {PF_Err_OUT_OF_MEMORY, "PF_Err_OUT_OF_MEMORY"},
    {A_Err_WRONG_THREAD, "A_Err_WRONG_THREAD"},
    {A_Err_CONST_PROJECT_MODIFICATION, "A_Err_CONST_PROJECT_MODIFICATION"},
    {A_Err_MISSING_SUITE, "A_Err_MISSING_SUITE"},
    {A_Err_NOT_IN_CACHE_OR_COMPUTE_PENDING, "A_Err_NOT_IN_CACHE_OR_COMPUTE_PENDING"},
    {A_Err_PROJECT_LOAD_FATAL, "A_Err_PROJECT_LOAD_FATAL"},
    {A_Err_EFFECT_APPLY_FATAL, "A_Err_EFFECT_APPLY_FATAL"},
    {PF_Err_INTERNAL_STRUCT_DAMAGED, "PF_Err_INTERNAL_STRUCT_DAMAGED"},
    {PF_Err_INVALID_INDEX, "PF_Err_INVALID_INDEX"},
    {PF_Err_UNRECOGNIZED_PARAM_TYPE, "PF_Err_UNRECOGNIZED_PARAM_TYPE"},
    {PF_Err_INVALID_CALLBACK, "PF_Err_INVALID_CALLBACK"},
    {PF_Err_BAD_CALLBACK_PARAM, "PF_Err_BAD_CALLBACK_PARAM"},
    {PF_Interrupt_CANCEL, "PF_Interrupt_CANCEL"},
    {PF_Err_CANNOT_PARSE_KEYFRAME_TEXT, "PF_Err_CANNOT_PARSE_KEYFRAME_TEXT"},
};

/// The commands that this host sends.
constexpr Named kCommands[] = {
    {PF_Cmd_ABOUT, "PF_Cmd_ABOUT"},
    {PF_Cmd_GLOBAL_SETUP, "PF_Cmd_GLOBAL_SETUP"},
    {PF_Cmd_GLOBAL_SETDOWN, "PF_Cmd_GLOBAL_SETDOWN"},
    {PF_Cmd_PARAMS_SETUP, "PF_Cmd_PARAMS_SETUP"},
    {PF_Cmd_SEQUENCE_SETUP, "PF_Cmd_SEQUENCE_SETUP"},
    {PF_Cmd_SEQUENCE_SETDOWN, "PF_Cmd_SEQUENCE_SETDOWN"},
    {PF_Cmd_USER_CHANGED_PARAM, "PF_Cmd_USER_CHANGED_PARAM"},
    {PF_Cmd_UPDATE_PARAMS_UI, "PF_Cmd_UPDATE_PARAMS_UI"},
    {PF_Cmd_EVENT, "PF_Cmd_EVENT"},
    {PF_Cmd_QUERY_DYNAMIC_FLAGS, "PF_Cmd_QUERY_DYNAMIC_FLAGS"},
    {PF_Cmd_SMART_PRE_RENDER, "PF_Cmd_SMART_PRE_RENDER"},
    {PF_Cmd_SMART_RENDER, "PF_Cmd_SMART_RENDER"},
};

template <std::size_t N>
const char* NameIn(const Named (&table)[N], A_long number, const char* otherwise) {
    for (const Named& named : table) {
        if (named.number == number) return named.name;
    }
    return otherwise;
}

}  // namespace

const char* ErrorName(PF_Err error) {
    return NameIn(kErrors, error, "unknown error");
}

const char* CommandName(PF_Cmd command) {
    return NameIn(kCommands, command, "unknown command");
}

std::string EffectErrorText(PF_Err error, const std::string& message) {
    const std::string code = fmt::format("error {}, {}", error, ErrorName(error));
    const std::size_t end = message.find_last_not_of(" \r\n\t");
    return end == std::string::npos ? code : fmt::format("{} ({})", message.substr(0, end + 1), code);
}

}  // namespace umbrant::host
