// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host calls of one command, for checks of locks: one of them can be kept waiting while another command is sent, or
// a command can be sent from inside of it.

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "hostapi/commands.h"

namespace umbrant::host {

/// Follows the host calls of one thread during one command; keeps one of them waiting, or sends a command from it.
class FollowedCalls {
 public:
    /// Follows the calling thread from now on.
    void Follow(PF_Cmd command) {
        const std::lock_guard lock(mutex_);
        thread_ = std::this_thread::get_id();
        command_ = command;
        calls_.clear();
        depth_ = 0;
    }
    void Before(PF_Cmd command) {
        if (std::this_thread::get_id() == thread_ && command == command_) ++depth_;
    }
    void After(PF_Cmd command) {
        if (std::this_thread::get_id() == thread_ && command == command_) --depth_;
    }
    void Call(std::string_view call);
    /// The n-th call waits, from 1, until Release.
    void HoldCall(std::size_t n) {
        const std::lock_guard lock(mutex_);
        target_ = n;
    }
    void Release() {
        const std::lock_guard lock(mutex_);
        target_ = 0;
        changed_.notify_all();
    }
    bool Waits() const { return waits_; }
    void SendFromInside(std::function<void()> send) { inside_ = std::move(send); }
    /// The calls so far. For when the followed thread is at rest.
    const std::vector<std::string>& Calls() const { return calls_; }

 private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<std::thread::id> thread_;
    PF_Cmd command_ = PF_Cmd_ABOUT;
    std::size_t target_ = 0;
    std::atomic<bool> waits_{false};
    // Of the followed thread.
    std::vector<std::string> calls_;
    std::function<void()> inside_;
    int depth_ = 0;
    bool isNested_ = false;
};

}  // namespace umbrant::host
