// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a program is started with: its arguments, environment, folder, streams and signals. No shell is involved.

#include <string>
#include <utility>
#include <vector>

namespace umbrant::host {

/// One of the standard streams of a program.
struct Stream {
    enum class Kind {
        kInherited,   ///< that of this process
        kNothing,     ///< /dev/null
        kPipe,        ///< the other end is in this process; not for standard error
        kFile,        ///< the file `file`; as an output it is made, or emptied
        kDescriptor,  ///< what this process has open as `descriptor`
        kAsOutput,    ///< what standard output is; for standard error alone
        kLastLine,    ///< is read all the time, and its last line is kept; for standard error alone
    };

    Kind kind = Kind::kInherited;
    std::string file{};
    int descriptor = -1;

    static Stream Inherited() { return {}; }
    static Stream Nothing() { return {Kind::kNothing}; }
    static Stream Pipe() { return {Kind::kPipe}; }
    static Stream File(std::string file) { return {Kind::kFile, std::move(file)}; }
    static Stream Descriptor(int descriptor) { return {Kind::kDescriptor, {}, descriptor}; }
    static Stream AsOutput() { return {Kind::kAsOutput}; }
    static Stream LastLine() { return {Kind::kLastLine}; }
};

/// The number under which a program finds the descriptor that it was given.
inline constexpr int kPassedDescriptor = 3;

/// A program to start. It leads a process group of its own, so that a signal of the terminal does not reach it.
struct ProgramStart {
    std::string program;                     ///< a file, or a name without a slash, which is looked for in PATH
    std::vector<std::string> arguments{};    ///< without its own name
    std::string name{};                      ///< its own name, argument 0; empty for `program`
    std::vector<std::string> environment{};  ///< "NAME=value" adds to this process's or replaces, "NAME" removes
    std::string folder{};                    ///< where it runs and finds the files below; empty for this process's
    Stream input{Stream::Kind::kNothing};
    Stream output{};
    Stream errors{};
    int descriptor = -1;  ///< one more descriptor that it has open, as kPassedDescriptor; -1 for none
    /// No signal is blocked or ignored in it, it has no descriptors but those above, and what it started ends with it.
    /// Otherwise it has the signals that this process was started with (SIGPIPE as by default), and the descriptors
    /// of this process that are not closed by a start.
    bool isIsolated = false;
};

/// The ends of pipes for a program, in this process; -1 for none.
struct ProgramPipes {
    int input = -1;
    int output = -1;
    int errors = -1;
};

/// Starts it. Returns the system's error, 0 for none; then `process` is its id, and the pipes are the caller's to
/// close. This process's standard streams have to be open, if only to /dev/null.
int StartProcess(const ProgramStart& start, int& process, ProgramPipes& pipes);

}  // namespace umbrant::host
