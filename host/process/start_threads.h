// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Starting threads where the system may refuse one: a limit of processes, a container's limit of tasks, no memory for
// a stack. What was started goes on; nothing is thrown.

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace umbrant::host {

/// One thread; nothing when the system refuses it for a tenth of a second. It is joined when its object ends.
std::optional<std::jthread> StartThread(std::function<void()> work);

/// Starts `count` threads one by one, of which the i-th runs `work(i)`, and ends the attempts with the first that is
/// refused. The caller gets those that run, which may be none. They are joined when the vector ends, so what they use
/// is declared before it.
std::vector<std::jthread> StartThreads(int count, std::function<void(int index)> work);

/// Whether a library's message reports that the system refused a thread.
bool SaysNoThread(const std::string& message);

/// How many threads were wanted, and how many of them the system allowed.
struct ThreadShortage {
    int wanted = 0;
    int allowed = 0;
};

/// What is done about shortages: `report` is called for the first one after this, on the thread that met it. Without a
/// report, as in a library, shortages pass silently. Null takes it away.
void ReportThreadShortage(void (*report)(const ThreadShortage&));
/// Called by who got fewer threads than it asked for and goes on. Throws nothing: those threads may wait for the
/// caller.
void NoteThreadShortage(const ThreadShortage& shortage) noexcept;

}  // namespace umbrant::host
