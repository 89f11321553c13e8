// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/session/session_steps.h"

#include <fmt/format.h>

#include <initializer_list>
#include <utility>

namespace umbrant::host {

namespace {

using Step = std::optional<Failure> (*)(SessionState&);

/// Global set-up: flags, version, global data.
std::optional<Failure> GlobalSetup(SessionState& state) {
    const Answer answer = SendCommand(state, PF_Cmd_GLOBAL_SETUP, nullptr, nullptr, nullptr);
    if (answer.Failed()) return FailureOf(state, answer);
    state.globalUp = true;
    state.globalData = answer.out.global_data;
    state.outFlags = answer.out.out_flags;
    state.outFlags2 = answer.out.out_flags2;
    state.effectVersion = answer.out.my_version;
    if (!(state.outFlags2 & PF_OutFlag2_SUPPORTS_SMART_RENDER)) {
        return Failure{
            ErrorKind::kEffect,
            fmt::format("{} does not support smart rendering, the only kind of rendering that this host supports",
                        state.module.Effect().name)};
    }
    return std::nullopt;
}

/// Parameter set-up: the whole declaration, which must add up.
std::optional<Failure> ParamsSetup(SessionState& state) {
    state.declaring = true;
    const Answer answer = SendCommand(state, PF_Cmd_PARAMS_SETUP, nullptr, nullptr, nullptr);
    state.declaring = false;
    if (answer.Failed()) return FailureOf(state, answer);
    const std::string& name = state.module.Effect().name;
    if (answer.out.num_params != state.params.Count()) {
        return Failure{ErrorKind::kEffect,
                       fmt::format("{} reports {} parameters, but declared {} (the layer counts as one)", name,
                                   answer.out.num_params, state.params.Count())};
    }
    const std::string problem = state.params.Finish();
    if (!problem.empty()) return Failure{ErrorKind::kEffect, fmt::format("{}: {}", name, problem)};

    state.declaredRows = state.params.Count();
    state.services.panel.Reset(DeclaredPanel(state.params));
    return std::nullopt;
}

std::optional<Failure> SequenceSetup(SessionState& state) {
    const Answer answer = SendCommand(state, PF_Cmd_SEQUENCE_SETUP, nullptr, nullptr, nullptr);
    if (answer.Failed()) return FailureOf(state, answer);
    state.sequenceUp = true;
    state.sequenceData = answer.out.sequence_data;
    return std::nullopt;
}

/// Lets an effect that wants to be asked say which of its flags hold for this instance.
std::optional<Failure> QueryFlags(SessionState& state) {
    if (!(state.outFlags2 & PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS)) return std::nullopt;
    const Answer answer = SendCommand(state, PF_Cmd_QUERY_DYNAMIC_FLAGS, nullptr, nullptr, nullptr);
    if (answer.Failed()) return FailureOf(state, answer);
    state.outFlags = answer.out.out_flags;
    state.outFlags2 = answer.out.out_flags2;
    return std::nullopt;
}

/// Takes the steps in turn; the first failure sets down what was set up.
std::optional<Failure> TakeSteps(SessionState& state, std::initializer_list<Step> steps) {
    for (const Step step : steps) {
        if (std::optional<Failure> failure = step(state)) {
            SetDown(state);
            return failure;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<Failure> SetUpAll(SessionState& state) {
    return TakeSteps(state, {GlobalSetup, ParamsSetup, SequenceSetup, QueryFlags});
}

std::optional<Failure> SetUpInstance(SessionState& state) {
    return TakeSteps(state, {SequenceSetup, QueryFlags});
}

std::optional<Failure> SetDown(SessionState& state) {
    std::optional<Failure> failure;
    if (std::exchange(state.sequenceUp, false)) {
        const Answer answer = SendCommand(state, PF_Cmd_SEQUENCE_SETDOWN, nullptr, nullptr, nullptr);
        state.sequenceData = nullptr;
        if (answer.Failed()) failure = FailureOf(state, answer);
    }
    if (std::exchange(state.globalUp, false)) {
        const Answer answer = SendCommand(state, PF_Cmd_GLOBAL_SETDOWN, nullptr, nullptr, nullptr);
        state.globalData = nullptr;
        if (answer.Failed() && !failure) failure = FailureOf(state, answer);
        const Balance open = state.services.tally.Snapshot();
        if (!open.IsBalanced()) state.services.Report("still open after global set-down: " + open.Text());
    }
    return failure;
}

std::vector<PanelRow> DeclaredPanel(const ParamSet& params) {
    std::vector<PanelRow> rows;
    for (const ParamRow& row : params.Rows()) rows.push_back(DeclaredPanelRow(row.def));
    return rows;
}

}  // namespace umbrant::host
