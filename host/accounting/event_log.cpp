// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/accounting/event_log.h"

#include <chrono>
#include <utility>

namespace umbrant::host {

namespace {

std::int64_t Now() {
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

int ThreadNumber() {
    static std::atomic<int> threads{0};
    thread_local const int number = ++threads;
    return number;
}

}  // namespace

std::uint64_t EventLog::Begin(bool isCommand, std::uint64_t command, std::string callee,
                              std::vector<EventValue> arguments) {
    Event event;
    event.thread = ThreadNumber();
    event.isCommand = isCommand;
    event.callee = std::move(callee);
    event.arguments = std::move(arguments);
    event.begin = Now();
    const std::lock_guard lock(mutex_);
    event.sequence = ++last_;
    event.command = isCommand ? event.sequence : command;
    events_.push_back(std::move(event));
    return last_;
}

void EventLog::End(std::uint64_t sequence, std::int64_t result, bool faulted, std::vector<EventValue> arguments) {
    const std::int64_t now = Now();
    const std::lock_guard lock(mutex_);
    if (sequence < firstKept_) return;
    Event& event = events_[sequence - firstKept_];
    event.end = now;
    event.result = result;
    event.faulted = faulted;
    for (std::size_t i = 0; i < arguments.size() && i < event.arguments.size(); ++i) {
        event.arguments[i].after = arguments[i].after;
    }
}

std::vector<Event> EventLog::Events() const {
    const std::lock_guard lock(mutex_);
    return events_;
}

std::size_t EventLog::Size() const {
    const std::lock_guard lock(mutex_);
    return events_.size();
}

void EventLog::Clear() {
    const std::lock_guard lock(mutex_);
    events_.clear();
    firstKept_ = last_ + 1;
}

}  // namespace umbrant::host
