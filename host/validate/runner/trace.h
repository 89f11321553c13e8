// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The log of events in the Chrome trace format, which chrome://tracing and Perfetto open. Several processes add to one
// file, one after the other: the format lets a list of events end without its bracket.

#include <filesystem>
#include <string>
#include <vector>

#include "host/accounting/event_log.h"

namespace umbrant::host {

/// Begins a file; false when it cannot be written.
bool BeginTrace(const std::filesystem::path& file);
/// Adds the events of this process, under its process id.
void AppendTrace(const std::filesystem::path& file, const std::vector<Event>& events);
/// Gives this process's lines a name in the viewer.
void NameTraceProcess(const std::filesystem::path& file, const std::string& name);
/// Closes the list.
void EndTrace(const std::filesystem::path& file);

}  // namespace umbrant::host
