// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the program ends early: by a signal, or because nobody reads its results any more. One thread waits for the
// signals, which are blocked in all others, so that cleaning up is ordinary code; whichever way the end comes, it
// cleans up once and leaves a plain exit code of 128 plus the signal. Only the program uses this; the library leaves
// the signals of the program that it is in as they are.

#include <csignal>

namespace umbrant::host {

/// Takes over SIGHUP, SIGINT, SIGQUIT and SIGTERM, and SIGPIPE, which then does nothing: a write to a pipe that nobody
/// reads fails with EPIPE. A SIGHUP that is ignored stays ignored, as `nohup` asks for. `clean` is called once, on any
/// thread. To be called once, before the process has a second thread. Where no thread can be started, signals end the
/// process as usual, without cleaning up.
///
/// A child made with fork() has the signals as they were before this call, and cleans nothing up.
void HandleInterruptions(void (*clean)());

/// Cleans up and ends the process with this exit code. From any thread; another end that is under way wins.
[[noreturn]] void EndProcess(int code);

/// Does not return while the process is being ended: what an interruption broke is no failure to report.
void StayWhileEnding();

/// The signals that a child started with posix_spawn is to block: those that this process blocked when it was started.
sigset_t SignalMaskForChildren();

/// While it lives, what this thread starts has the signals as this process was started with them. For calls into code
/// that may start programs of its own. An interruption still ends the process as usual.
class SignalsOfTheStart {
 public:
    SignalsOfTheStart();
    ~SignalsOfTheStart();
    SignalsOfTheStart(const SignalsOfTheStart&) = delete;
    SignalsOfTheStart& operator=(const SignalsOfTheStart&) = delete;

 private:
    sigset_t before_;
};

}  // namespace umbrant::host
