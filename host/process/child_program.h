// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A copy of this program as a child with one socket to it. The child has a process group of its own, no blocked
// signals, the default dispositions, and no descriptor but its standard streams and the socket. What it does is up to
// its arguments.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/process/child_process.h"
#include "host/result.h"

namespace umbrant::host {

/// The descriptor under which a child finds its socket.
inline constexpr int kChildSocket = kPassedDescriptor;

/// The file of the running program, whatever the working folder is.
std::filesystem::path ProgramForChildren();

/// A child that runs. Not for several threads at once.
class ChildProgram {
 public:
    /// Starts `program`, an absolute path, with these arguments after its name. Standard input is empty, the two
    /// outputs are this process's. Fails with `ErrorKind::kInternal`.
    static Result<std::unique_ptr<ChildProgram>> Start(const std::filesystem::path& program,
                                                       const std::vector<std::string>& arguments);
    /// Ends it and its process group.
    ~ChildProgram();
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    /// The child itself, a process.
    ChildProcess& Child() const { return *child_; }
    /// This end of the socket; the child's end closes with the child.
    int Socket() const { return socket_; }

 private:
    ChildProgram() = default;

    std::unique_ptr<ChildProcess> child_;
    int socket_ = -1;
};

/// For the child: ends its process group when the other end of the socket closes, which happens at the latest when the
/// parent ends, however it ends. Calls `each` every 200 milliseconds. The thread runs until the process ends.
void EndWithParent(int socket, void (*each)());

}  // namespace umbrant::host
