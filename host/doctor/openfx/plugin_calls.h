// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Calls of a plug-in's functions: each is noted before it is made, and what it throws or answers becomes one sentence.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/doctor/openfx/property_set.h"
#include "host/result.h"
#include "openfx/abi/core.h"

namespace umbrant::host {

/// Notes what is about to be done, as "during OfxActionLoad", for whoever learns that the process has ended.
using NoteStep = std::function<void(const std::string& when)>;

/// The accepted statuses of an action that a plug-in need not implement.
inline const std::vector<OfxStatus> kOptionalStatuses = {kOfxStatOK, kOfxStatReplyDefault};

/// A plug-in of a bundle that is loaded.
class PluginCalls {
 public:
    PluginCalls(const OfxPlugin& plugin, std::string bundle, NoteStep note)
        : plugin_(plugin), bundle_(std::move(bundle)), note_(std::move(note)) {}

    /// An action. Fails with `ErrorKind::kEffect` when it throws or answers a status that is not among `accepted`.
    Result<OfxStatus> Action(const char* action, const void* handle, PropertySet* in, PropertySet* out,
                             const std::vector<OfxStatus>& accepted);
    /// Hands over the host.
    Result<Done> SetHost();

    std::string Identifier() const { return plugin_.pluginIdentifier; }
    /// A failure of this plug-in: what it did, as "wrote no pixel", with the message that it left.
    Failure Failed(const std::string& what) const;

 private:
    const OfxPlugin& plugin_;
    std::string bundle_;
    NoteStep note_;
};

/// "Failed (1)".
std::string StatusText(OfxStatus status);

}  // namespace umbrant::host
