// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Accounting: every call between effect and host as an event. Off unless a session was given a log; then each command
// that the host sends and each host function that the effect calls leaves one record, with the arguments as far as they
// name a thing. What was taken and not given back is a question to the log: host/accounting/ledger.h.

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "host/process/fork_lock.h"
#include "hostapi/basic_types.h"
#include "hostapi/drawbot_types.h"
#include "hostapi/pixels.h"

namespace umbrant::host {

/// An argument: a number, or the address of what is meant. For a place that the call fills in (a world's record, a
/// pointer to a reference) `after` is what stood there when the call returned.
struct EventValue {
    std::uint64_t before = 0;
    std::uint64_t after = 0;
    std::string text;  ///< of a text argument
};

/// One call.
struct Event {
    std::uint64_t sequence = 0;  ///< order of beginnings, from 1
    int thread = 0;              ///< small numbers, in order of first appearance in the log
    std::uint64_t command = 0;   ///< sequence of the command that it happened in; 0 outside of commands
    bool isCommand = false;
    std::string callee;  ///< "PF World Suite.PF_NewWorld", or the command's name
    std::vector<EventValue> arguments;
    std::int64_t result = 0;
    std::int64_t begin = 0;  ///< nanoseconds of the steady clock
    std::int64_t end = 0;    ///< 0: has not returned
    bool faulted = false;    ///< made to fail by the session's fault hook

    bool Failed() const { return result != 0; }
};

/// The events of a process or a session, in the order in which they began. Every thread.
class EventLog {
 public:
    /// Opens an event; gives its sequence.
    std::uint64_t Begin(bool isCommand, std::uint64_t command, std::string callee, std::vector<EventValue> arguments);
    void End(std::uint64_t sequence, std::int64_t result, bool faulted, std::vector<EventValue> arguments);
    std::vector<Event> Events() const;
    /// How many have begun.
    std::size_t Size() const;
    void Clear();

 private:
    mutable ForkLock mutex_{ForkRank::kRecord};
    std::uint64_t last_ = 0;
    std::uint64_t firstKept_ = 1;  ///< sequence of events_[0]
    std::vector<Event> events_;
};

/// Places that the host fills in with a reference of the drawing suites.
template <typename T>
inline constexpr bool kIsDrawReferencePlace =
    std::is_same_v<T, DRAWBOT_PenRef*> || std::is_same_v<T, DRAWBOT_BrushRef*> || std::is_same_v<T, DRAWBOT_FontRef*> ||
    std::is_same_v<T, DRAWBOT_PathRef*> || std::is_same_v<T, DRAWBOT_ImageRef*>;

/// How an argument is written down.
template <typename T>
EventValue ValueOf(const T& argument, bool after) {
    EventValue value;
    if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, const A_char*>) {
        if (argument) value.text = argument;
    } else if constexpr (std::is_same_v<T, PF_EffectWorld*> || std::is_same_v<T, const PF_EffectWorld*>) {
        // A world is known by its pixels: effects copy the record around.
        value.before = argument && !after ? reinterpret_cast<std::uint64_t>(argument->data) : 0;
        value.after = argument && after ? reinterpret_cast<std::uint64_t>(argument->data) : 0;
    } else if constexpr (std::is_same_v<T, void**> || std::is_same_v<T, const void**> ||
                         std::is_same_v<T, PF_EffectWorld**> || kIsDrawReferencePlace<T>) {
        value.before = reinterpret_cast<std::uint64_t>(argument);
        if (after && argument) value.after = reinterpret_cast<std::uint64_t>(*argument);
    } else if constexpr (std::is_pointer_v<T>) {
        using Pointee = std::remove_pointer_t<T>;
        value.before = reinterpret_cast<std::uint64_t>(argument);
        // References of the application suites are pointers to pointers, and a place for one is a pointer more.
        if constexpr (std::is_pointer_v<Pointee> && std::is_pointer_v<std::remove_pointer_t<Pointee>>) {
            if (after && argument) value.after = reinterpret_cast<std::uint64_t>(*argument);
        }
    } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
        value.before = static_cast<std::uint64_t>(static_cast<std::int64_t>(argument));
    }
    return value;
}

template <typename... A>
std::vector<EventValue> ValuesOf([[maybe_unused]] bool after, const A&... arguments) {
    return {ValueOf(arguments, after)...};
}

template <typename R>
std::int64_t ResultValue(const R& result) {
    if constexpr (std::is_pointer_v<R>) {
        return static_cast<std::int64_t>(reinterpret_cast<std::uint64_t>(result));
    } else if constexpr (std::is_integral_v<R>) {
        return static_cast<std::int64_t>(result);
    } else {
        return 0;
    }
}

}  // namespace umbrant::host
