// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Standard error while a command works: lines that stay, one line that is replaced, and a thread that renews it.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/session/effect_session.h"

namespace umbrant::host {

/// Functions marked "locked" are called with Mutex() held, which `renew` has when it is called.
class StatusLine {
 public:
    using Seconds = std::chrono::duration<double>;

    StatusLine() = default;
    ~StatusLine() { Stop(); }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Calls `renew` on a thread, first after `first` and then every `next`. Once. Without a thread nothing is renewed,
    /// and everything else works.
    void Start(Seconds first, Seconds next, std::function<void()> renew);
    /// Ends the thread and erases the line that is replaced.
    void Stop();

    std::mutex& Mutex() { return mutex_; }
    /// Prints a line that the next text replaces; without a line break. Locked.
    void Show(const std::string& line);
    /// Prints text that ends in a line break. Locked.
    void Print(const std::string& text);
    /// Removes the line that is replaced: something else may be printed to the same terminal. Locked.
    void Erase();

 private:
    std::mutex mutex_;
    std::condition_variable ending_;
    bool ended_ = false;
    bool isShown_ = false;
    std::optional<std::jthread> thread_;
};

/// What a session's effect is doing, as text.
std::string ActivityText(const EffectSession& session);

}  // namespace umbrant::host
