// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a command that takes long is at, told on standard error while it works: "umbrant: 12 s, the effect draws". On a
// terminal one line that changes and goes at the end, elsewhere a line each time.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "host/session/effect_session.h"

/// Tells from its construction to its destruction.
class Progress {
 public:
    /// Tells for the first time after `seconds`, and again each time as many have passed; 0 never. A negative number
    /// takes what fits standard error: 2 and then 1 on a terminal, 10 elsewhere.
    explicit Progress(double seconds);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// What is done from here on.
    void Say(std::string stage);
    /// Takes the words from the function each time, on another thread. Say ends it.
    void Follow(std::function<std::string()> stage);
    /// Prints text that ends in a line break to standard error, in the place of the line that changes.
    void Print(const std::string& text);
    /// Ends the telling, and the line that changes is gone: something else may be printed.
    void Stop();

 private:
    void Tell();
    void Erase();

    const bool isTerminal_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::chrono::duration<double> first_{};
    std::chrono::duration<double> next_{};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<std::string()> stage_;
    bool ended_ = false;
    bool told_ = false;
    std::thread thread_;
};

/// What a session's effect is doing, in words.
std::string ActivityText(const EffectSession& session);
