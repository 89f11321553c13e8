// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a session keeps, and how it sends a command. Inside host/session only.

#include <chrono>
#include <deque>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "host/module/module.h"
#include "host/parameters/param_set.h"
#include "host/process/fork_lock.h"
#include "host/session/effect_session.h"
#include "host/suites/services.h"
#include "hostapi/commands.h"

namespace umbrant::host {

struct FrameRecord;

/// One session. Lives on the heap: `ref` is what the effect points at.
struct SessionState {
    SessionState(const Module& loaded, SessionOptions chosen);

    const Module& module;
    const SessionOptions options;
    Services services;
    EffectRef ref{&services, nullptr};
    ParamSet params;
    int declaredRows = 0;  ///< rows of `params`, for frames while somebody may set values

    PF_Handle globalData = nullptr;
    PF_Handle sequenceData = nullptr;
    PF_OutFlags outFlags = PF_OutFlag_NONE;
    PF_OutFlags2 outFlags2 = PF_OutFlag2_NONE;
    A_u_long effectVersion = 0;
    bool globalUp = false;
    bool sequenceUp = false;
    /// Rows may be added: parameter set-up is under way.
    bool declaring = false;
    std::vector<PF_CustomUIInfo> customUIs;

    /// A command under way; its notes live as long as it is in the list.
    struct Running {
        PF_Cmd command;
        std::chrono::steady_clock::time_point begin;
        const CommandNotes* notes;
    };
    mutable ForkLock runningMutex{ForkRank::kSession};
    std::list<Running> running;  ///< the oldest first

    ForkLock commandsMutex;
    std::deque<CommandRecord> commands;  ///< outside of frames, the last ones

    LayerGeometry PanelGeometry() const { return {options.layerWidth, options.layerHeight, {1, 1}, {1, 1}}; }
};

/// What came back from a command.
struct Answer {
    PF_OutData out{};
    CommandRecord record;
    std::string exception;            ///< what left the module, when an exception did
    std::vector<std::string> suites;  ///< acquired in the command
    bool Failed() const { return record.error != PF_Err_NONE; }
};

/// Sends a command on the calling thread. `frame` is null outside of frames; the record of a command outside of a frame
/// is kept in the session, that of a frame's in the frame.
Answer SendCommand(SessionState& state, PF_Cmd command, FrameRecord* frame, PF_ParamDef* params[], void* extra,
                   PF_LayerDef* output = nullptr);

/// A command's error as a failure: the effect's message, the code and its name.
Failure FailureOf(const SessionState& state, const Answer& answer);

/// `in_data->inter`: parameters, progress, custom interface.
extern const PF_InteractCallbacks kInteractCallbacks;

/// What goes into an event's record.
extern const PF_EventCallbacks kEventCallbacks;

/// Draws, or only asks about, one frame: see EffectSession.
Result<PreRendered> PreRenderFrame(SessionState& state, const FrameRequest& request);
Result<Frame> RenderFrame(SessionState& state, const FrameRequest& request);

}  // namespace umbrant::host
