// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/interruption.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>

namespace umbrant::host {

namespace {

constexpr int kSignalBase = 128;

/// Enough for the cleaning, also under a sanitizer. Each thread's stack counts against a limit on memory.
constexpr std::size_t kStackBytes = std::size_t{512} << 10;

constexpr std::array<int, 4> kEnding = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

void (*cleaning)() = nullptr;
std::atomic<bool> ending{false};
bool handled = false;
pthread_t waiter;

/// What the process was started with.
sigset_t startMask;
struct sigaction startPipe;
struct sigaction startActions[kEnding.size()];

/// Those of the signals above that are waited for.
sigset_t endingSignals;

void Set(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

/// For a thread that has unblocked the signals: the thread that waits for them takes this one too.
extern "C" void PassOn(int signal) {
    pthread_kill(waiter, signal);
}

/// An empty handler instead of SIG_IGN, which programs that are started would inherit.
extern "C" void DoNothing(int) {}

extern "C" void* WaitForSignals(void*) {
    int signal = 0;
    while (sigwait(&endingSignals, &signal) != 0) {
    }
    EndProcess(kSignalBase + signal);
}

bool StartWaiting() {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_attr_setstacksize(&attributes, kStackBytes);
    const int error = pthread_create(&waiter, &attributes, WaitForSignals, nullptr);
    pthread_attr_destroy(&attributes);
    return error == 0;
}

/// In a child made with fork() there is no thread that waits, and the files under construction are its parent's.
void BecomeChildOfFork() {
    cleaning = nullptr;
    handled = false;
    for (std::size_t i = 0; i < kEnding.size(); ++i) sigaction(kEnding[i], &startActions[i], nullptr);
    sigaction(SIGPIPE, &startPipe, nullptr);
    pthread_sigmask(SIG_SETMASK, &startMask, nullptr);
}

}  // namespace

void HandleInterruptions(void (*clean)()) {
    cleaning = clean;
    sigemptyset(&endingSignals);
    for (std::size_t i = 0; i < kEnding.size(); ++i) {
        sigaction(kEnding[i], nullptr, &startActions[i]);
        if (kEnding[i] == SIGHUP && startActions[i].sa_handler == SIG_IGN) continue;
        sigaddset(&endingSignals, kEnding[i]);
    }
    sigaction(SIGPIPE, nullptr, &startPipe);
    Set(SIGPIPE, DoNothing);
    pthread_sigmask(SIG_BLOCK, &endingSignals, &startMask);
    handled = StartWaiting();
    for (const int signal : kEnding) {
        if (sigismember(&endingSignals, signal) == 1) Set(signal, handled ? PassOn : SIG_DFL);
    }
    if (!handled) pthread_sigmask(SIG_SETMASK, &startMask, nullptr);
    pthread_atfork(nullptr, nullptr, BecomeChildOfFork);
}

void EndProcess(int code) {
    if (ending.exchange(true)) StayWhileEnding();
    if (cleaning) cleaning();
    _exit(code);
}

void StayWhileEnding() {
    while (ending) pause();
}

sigset_t SignalMaskForChildren() {
    if (handled) return startMask;
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return mask;
}

SignalsOfTheStart::SignalsOfTheStart() {
    pthread_sigmask(SIG_SETMASK, nullptr, &before_);
    const sigset_t mask = SignalMaskForChildren();
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

SignalsOfTheStart::~SignalsOfTheStart() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace umbrant::host
