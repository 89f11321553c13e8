// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The state behind the host's suites: per session one Services record with its counts, its panel and its list of
// misdeeds, and per command a scope that says which record the suites of this thread mean. Suites are plain tables of
// functions, and some of those get no reference to anything, so the record must be found through the thread.

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/accounting/balance.h"
#include "host/accounting/stage_clock.h"
#include "host/process/fork_lock.h"
#include "host/suites/panel_state.h"
#include "hostapi/aegp_types.h"
#include "hostapi/errors.h"
#include "hostapi/suites/umbrant_host_suite.h"

namespace umbrant::host {

class EventLog;
class World;
struct FrameRecord;
struct SessionState;

/// The role of a world for the effect that receives it.
enum class WorldRole { kInput, kTexture, kOutput, kTemporary };
/// Called when a world goes to the effect (`isHandedOut`) and when it comes back. It may change the world's record and
/// pixels.
using WorldWatch = std::function<void(World& world, WorldRole role, bool isHandedOut)>;

/// What a fault hook says for "AcquireSuite:name" when the host is to report success and return no suite, as hosts
/// have.
inline constexpr PF_Err kLendNothing = -1000001;

/// Counts of what is open, safe on every thread.
class Tally {
 public:
    void Add(Resource resource, int amount) { open_[static_cast<std::size_t>(resource)] += amount; }
    Balance Snapshot() const;

 private:
    std::array<std::atomic<int>, kResourceCount> open_{};
};

/// Which suites were asked for, "name version".
class SuiteLog {
 public:
    void Note(const std::string& suite);
    std::vector<std::string> Names() const;  ///< sorted

 private:
    mutable ForkLock mutex_{ForkRank::kRecord};
    std::set<std::string> names_;
};

/// What one command did, for its report.
struct CommandNotes {
    std::uint64_t event = 0;  ///< the command's record in the session's log; 0 without a log
    Tally tally;
    SuiteLog acquired;
    StageClock stages;
};

/// The record of one session. Every member is safe on every thread.
class Services {
 public:
    Services();
    ~Services();
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    /// Adds a sentence about something that the effect did wrong.
    void Report(std::string sentence);
    std::vector<std::string> Misbehaviour() const;

    Tally tally;
    SuiteLog acquired;
    SuiteLog refused;
    PanelState panel;
    /// How often each suite is held, by name and version. Guarded by suitesMutex.
    std::map<std::pair<std::string, int32_t>, int> suites;
    ForkLock suitesMutex{ForkRank::kSession};
    std::atomic<AEGP_LayerFlags> layerFlags{AEGP_LayerFlag_NONE};
    std::atomic<UMBRANT_Renderer> renderer{UMBRANT_Renderer_ANY};
    /// Whether the effect has acquired this host's own suite, and so writes into no layer.
    std::atomic<bool> leavesLayersAlone{false};
    /// The session that the record belongs to; null in a record without one.
    SessionState* session = nullptr;
    /// See SessionOptions::fault. Set before the first command.
    std::function<PF_Err(std::string_view call)> fault;
    /// See SessionOptions of the same names. Set before the first command.
    EventLog* log = nullptr;
    WorldWatch worldWatch;
    bool strictLending = false;

 private:
    mutable ForkLock mutex_{ForkRank::kRecord};
    std::vector<std::string> misbehaviour_;
};

/// While it lives, the suites on this thread mean `services`, and count for `notes` too when it is not null.
class ServiceScope {
 public:
    ServiceScope(Services* services, CommandNotes* notes);
    ~ServiceScope();
    ServiceScope(const ServiceScope&) = delete;
    ServiceScope& operator=(const ServiceScope&) = delete;

    /// The scope of the calling thread, to be carried to threads that work for it.
    static std::pair<Services*, CommandNotes*> Current();

 private:
    std::pair<Services*, CommandNotes*> outer_;
};

/// The calling thread's session; on a thread that an effect started itself, the session that began last. Null when
/// there is none.
Services* CurrentServices();
/// The log of the calling thread's session, and the record of its command there; null and 0 where there is none.
EventLog* CurrentEventLog();
std::uint64_t CurrentCommandEvent();
/// Counts for the calling thread's session and command.
void Count(Resource resource, int amount);
/// Reports to the calling thread's session.
void Report(std::string sentence);
/// What the fault hook says about a call: 0 lets it happen.
PF_Err FaultOf(std::string_view call);

/// What an effect's `effect_ref` points to. Registered while it lives, so that a wrong reference is distinguished from
/// a right one without touching it.
class EffectRef {
 public:
    /// `record` is null outside of frames.
    EffectRef(Services* owner, FrameRecord* record);
    ~EffectRef();
    EffectRef(const EffectRef&) = delete;
    EffectRef& operator=(const EffectRef&) = delete;

    PF_ProgPtr Pointer() { return reinterpret_cast<PF_ProgPtr>(this); }
    /// The reference behind a pointer that an effect handed in; null, with a report, when it is none of ours.
    static EffectRef* Of(PF_ProgPtr pointer, const char* call);

    Services* const services;
    FrameRecord* const frame;
};

}  // namespace umbrant::host
