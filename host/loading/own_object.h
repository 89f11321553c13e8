// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Shared objects of the program's own, which keep libraries away from it until something needs them. Any thread.

#include <string>
#include <variant>

namespace umbrant::host {

/// A shared object that is installed with the program.
struct OwnObject {
    const char* file;     ///< its name without a folder
    const char* purpose;  ///< for the message of a failure: "which has the codecs of this format"
    const char* entry;    ///< the one function that it exports
};

/// Opens the object: from the program's folder, from the folder of its installation, or from where the system's loader
/// looks. Returns the address of its entry, or one sentence without a full stop: what failed and what would work. It is
/// never closed.
std::variant<void*, std::string> OpenOwnObject(const OwnObject& object);

}  // namespace umbrant::host
