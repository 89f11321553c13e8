// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A count of the calls in progress, and a flag that is set when there shall be no others.

#include "python/call_gate.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>

namespace umbrant::python {

namespace {

std::atomic<int> calls = 0;
std::atomic<bool> isClosed = false;
thread_local bool closedHere = false;

void Leave() {
    --calls;
    if (isClosed) calls.notify_all();
}

}  // namespace

CallInProgress::CallInProgress() {
    ++calls;
    if (isClosed && !closedHere) {
        Leave();
        WaitForTheEnd();
    }
}

CallInProgress::~CallInProgress() {
    Leave();
}

void CloseGate() {
    closedHere = true;
    isClosed = true;
    for (int number = calls; number != 0; number = calls) calls.wait(number);
}

void WatchForks() {
    [[maybe_unused]] static const int once = pthread_atfork(nullptr, nullptr, [] { calls = 0; });
}

void WaitForTheEnd() {
    for (;;) pause();
}

}  // namespace umbrant::python
