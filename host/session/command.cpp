// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How a command is sent: the records filled, the module called, the answer read.

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>

#include "host/accounting/event_log.h"
#include "host/session/error_names.h"
#include "host/session/frame_record.h"
#include "host/session/session_state.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

/// Records that a session keeps: one that lives for days sends many.
constexpr std::size_t kKeptCommands = 1000;

/// Everything that an effect may read about where it is. Fields without a meaning for still pictures stay zero.
PF_InData InDataFor(SessionState& state, FrameRecord* frame) {
    PF_InData in{};
    in.inter = kInteractCallbacks;
    in.utils = &utilCallbacks;
    in.effect_ref = frame ? frame->ref.Pointer() : state.ref.Pointer();
    in.version = {state.options.apiMajor, state.options.apiMinor};
    in.appl_id = state.options.appId;
    in.num_params = frame ? state.declaredRows : state.params.Count();
    in.global_data = state.globalData;
    in.sequence_data = state.sequenceData;
    in.pica_basicP = state.options.offerSuites ? &basicSuite : nullptr;
    in.in_flags = PF_InFlag_NONE;

    const FrameRequest defaults;
    const FrameRequest& request = frame ? frame->request : defaults;
    const LayerGeometry geometry = frame ? frame->layers.geometry : state.PanelGeometry();
    in.quality = request.quality;
    in.field = request.field;
    in.pixel_aspect_ratio = request.pixelAspect;
    in.current_time = request.time;
    in.time_step = request.timeStep;
    in.local_time_step = request.timeStep;
    in.total_time = request.totalTime;
    in.time_scale = request.timeScale;
    in.width = geometry.width;
    in.height = geometry.height;
    in.extent_hint = frame ? frame->layers.layerBounds : PF_LRect{0, 0, geometry.width, geometry.height};
    in.downsample_x = geometry.downsampleX;
    in.downsample_y = geometry.downsampleY;
    return in;
}

/// A command in the session's list of what is under way, for as long as it lives.
class Listed {
 public:
    Listed(SessionState& state, PF_Cmd command, std::chrono::steady_clock::time_point begin, const CommandNotes& notes)
        : state_(state) {
        const std::lock_guard lock(state_.runningMutex);
        place_ = state_.running.insert(state_.running.end(), {command, begin, &notes});
    }
    ~Listed() {
        const std::lock_guard lock(state_.runningMutex);
        state_.running.erase(place_);
    }
    Listed(const Listed&) = delete;
    Listed& operator=(const Listed&) = delete;

 private:
    SessionState& state_;
    std::list<SessionState::Running>::iterator place_;
};

/// The message's bytes up to its end or the field's: an effect may have filled all of them, without a terminator.
std::string MessageOf(const PF_OutData& out) {
    const char* begin = std::begin(out.return_msg);
    return {begin, std::find(begin, std::prev(std::end(out.return_msg)), '\0')};
}

}  // namespace

SessionState::SessionState(const Module& loaded, SessionOptions chosen) : module(loaded), options(std::move(chosen)) {
    services.session = this;
    services.layerFlags = options.layerFlags;
    services.renderer = options.renderer;
    services.fault = options.fault;
    services.log = options.log;
    services.worldWatch = options.worldWatch;
    services.strictLending = options.strictLending;
}

Answer SendCommand(SessionState& state, PF_Cmd command, FrameRecord* frame, PF_ParamDef* params[], void* extra,
                   PF_LayerDef* output) {
    PF_InData in = InDataFor(state, frame);
    Answer answer;
    answer.out.global_data = state.globalData;
    answer.out.sequence_data = state.sequenceData;
    if (command == PF_Cmd_QUERY_DYNAMIC_FLAGS) {
        answer.out.out_flags = state.outFlags;
        answer.out.out_flags2 = state.outFlags2;
    }

    CommandArguments arguments{command, &in, &answer.out, params, output, extra};
    if (state.options.beforeCommand) state.options.beforeCommand(arguments);

    CommandNotes notes;
    EventLog* const log = state.options.log;
    if (log) notes.event = log->Begin(true, 0, CommandName(command), {});
    const auto begin = std::chrono::steady_clock::now();
    CallOutcome outcome;
    {
        const Listed listed(state, command, begin, notes);
        const ServiceScope scope(&state.services, &notes);
        outcome = state.module.Call(arguments.command, arguments.in, arguments.out, arguments.params, arguments.output,
                                    arguments.extra);
    }
    if (log) log->End(notes.event, outcome.error, false, {});
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;

    if (state.options.afterCommand) state.options.afterCommand(arguments, outcome.error);

    CommandRecord& record = answer.record;
    record.command = command;
    record.error = outcome.error;
    record.milliseconds = taken.count();
    record.message = MessageOf(answer.out);
    record.messageIsError = (answer.out.out_flags & PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0;
    record.balance = notes.tally.Snapshot();
    record.stages = notes.stages.Snapshot();
    answer.suites = notes.acquired.Names();
    if (outcome.exception) {
        answer.exception = *outcome.exception;
        state.services.Report(fmt::format("{} threw an exception: {}", CommandName(command), answer.exception));
    }
    if (!frame) {
        const std::lock_guard lock(state.commandsMutex);
        state.commands.push_back(record);
        if (state.commands.size() > kKeptCommands) state.commands.pop_front();
    }
    return answer;
}

Failure FailureOf(const SessionState& state, const Answer& answer) {
    const std::string& name = state.module.Effect().name;
    const char* command = CommandName(answer.record.command);
    if (!answer.exception.empty()) {
        return {ErrorKind::kEffect,
                fmt::format("{} failed in {}: it threw an exception ({})", name, command, answer.exception)};
    }
    return {ErrorKind::kEffect, fmt::format("{} failed in {}: {}", name, command,
                                            EffectErrorText(answer.record.error, answer.record.message))};
}

}  // namespace umbrant::host
