// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What an effect took and gave back, asked of the log of events: one row for each thing, so that a leak is named and
// not only counted.

#include <cstdint>
#include <string>
#include <vector>

#include "host/accounting/balance.h"
#include "host/accounting/event_log.h"

namespace umbrant::host {

/// One thing and how often it was taken and given back. A thing is a suite by name and version, a handle, a lock on
/// one, a world, a layer check-out by id, a stream, an effect reference, a drawing object; parameter check-outs are one
/// thing, because a definition may be checked in through a copy.
struct LedgerRow {
    Resource resource{};
    std::string what;  ///< "PF World Suite 2", "id 39", "#3" for the third of its kind
    int taken = 0;
    int given = 0;
    std::uint64_t command = 0;  ///< the command that took it last, or gave it back when it never was taken
    bool IsBalanced() const { return taken == given; }
    /// "the suite PF World Suite 2 was taken 2 times and given back 1 time in PF_Cmd_SMART_RENDER".
    std::string sentence;
};

/// The books over some events. Things that an effect hands on to the host (global and sequence data) are open until
/// set-down, as they should be.
std::vector<LedgerRow> KeepBooks(const std::vector<Event>& events);
/// Only what is not even.
std::vector<LedgerRow> UnevenRows(const std::vector<Event>& events);
/// The same as numbers by kind, comparable with what a session counts.
Balance BalanceOf(const std::vector<Event>& events);

}  // namespace umbrant::host
