// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which process has a file under construction. A file's hidden name carries that, so that a later run can find out
// whether somebody still writes to it: nothing can be cleaned up by a process that is killed, or whose machine loses
// power.

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace umbrant::host {

/// A process among all that may write to a shared folder. Hashes of a few bits, as the name is short.
struct FileOwner {
    std::uint64_t host = 0;     ///< hash of the host's name and id and of the process's namespaces; 35 bits
    std::uint64_t boot = 0;     ///< hash of the id that the system takes at each boot; 15 bits
    std::uint64_t process = 0;  ///< its id; 30 bits
    std::uint64_t start = 0;    ///< when it was started, in ticks since the boot; the lowest 35 bits
};

/// This process.
FileOwner ThisProcess();

/// ".umbrant-", 26 letters and digits, ".part": 40 bytes, whatever the file's name will be. `count` separates the
/// files of a process; its lowest 15 bits are taken.
std::string HiddenName(const FileOwner& owner, unsigned count);

/// Whose file it is by its name; nothing when HiddenName does not make such names.
std::optional<FileOwner> OwnerOf(std::string_view name);

enum class OwnerState {
    kAlive,
    kGone,
    kUnknown,  ///< on another host, or not to be seen from here
};

/// Whether the process still runs that owns a file which was last written to at `written`.
OwnerState StateOf(const FileOwner& owner, std::time_t written);

}  // namespace umbrant::host
