// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How a suite's table is filled. Every slot is either Served, a host function that is written into the session's log
// and called behind the fault hook and a barrier for exceptions, or Missing, a function that reports which call
// was made and returns an error. Both take the slot's type from the slot.

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "host/accounting/event_log.h"
#include "host/suites/services.h"
#include "hostapi/errors.h"

namespace umbrant::host {

/// A text as a template argument.
template <std::size_t N>
struct FixedText {
    char text[N]{};
    constexpr FixedText(const char (&from)[N]) {  // NOLINT(google-explicit-constructor): written as a literal
        for (std::size_t i = 0; i < N; ++i) text[i] = from[i];
    }
};

template <std::size_t N, std::size_t M>
constexpr FixedText<N + M> Dotted(const FixedText<N>& table, const FixedText<M>& call) {
    char text[N + M]{};
    for (std::size_t i = 0; i + 1 < N; ++i) text[i] = table.text[i];
    text[N - 1] = '.';
    for (std::size_t i = 0; i < M; ++i) text[N + i] = call.text[i];
    return text;
}

template <FixedText Table, FixedText Call>
inline constexpr FixedText kCallName = Dotted(Table, Call);

/// "table.call". A constant: for a static object of a function, a child of fork() would wait forever if a thread of its
/// parent was creating it.
template <FixedText Table, FixedText Call>
constexpr std::string_view CallName() {
    return kCallName<Table, Call>.text;
}

/// What a call that could not be made returns: the error where it returns one, else zero or null.
template <typename R>
auto Refusal([[maybe_unused]] PF_Err error) {
    if constexpr (std::is_same_v<R, PF_Err>) {
        return error;
    } else if constexpr (std::is_void_v<R>) {
        return 0;
    } else {
        return R();
    }
}

/// One host call in the session's log; costs nothing when there is none.
class EventScope {
 public:
    template <typename... A>
    explicit EventScope(std::string_view callee, const A&... arguments) : log_(CurrentEventLog()) {
        if (log_) {
            sequence_ = log_->Begin(false, CurrentCommandEvent(), std::string(callee), ValuesOf(false, arguments...));
        }
    }
    EventScope(const EventScope&) = delete;
    EventScope& operator=(const EventScope&) = delete;

    void Fault() { faulted_ = true; }
    /// Writes down what the call gives back, and gives it back.
    template <typename R, typename... A>
    R Return(R result, const A&... arguments) {
        if (log_) log_->End(sequence_, ResultValue(result), faulted_, ValuesOf(true, arguments...));
        return result;
    }

 private:
    EventLog* const log_;
    std::uint64_t sequence_ = 0;
    bool faulted_ = false;
};

/// A slot that this host has nothing behind.
template <FixedText Table, FixedText Call>
class Missing {
    template <typename R, typename... A>
    using Plain = R (*)(A...);
    template <typename R, typename... A>
    using Variadic = R (*)(A..., ...);

    template <typename R>
    static R Refuse() {
        Report(std::string(CallName<Table, Call>()) + " was called, which this host does not implement");
        return static_cast<R>(Refusal<R>(PF_Err_INVALID_CALLBACK));
    }
    template <typename R, typename... A>
    static R Answer(A...) {
        return Refuse<R>();
    }
    template <typename R, typename... A>
    static R AnswerVariadic(A..., ...) {
        return Refuse<R>();
    }

 public:
    template <typename R, typename... A>
    constexpr operator Plain<R, A...>() const {  // NOLINT(google-explicit-constructor): becomes the slot's function
        return &Answer<R, A...>;
    }
    template <typename R, typename... A>
    constexpr operator Variadic<R, A...>() const {  // NOLINT(google-explicit-constructor)
        return &AnswerVariadic<R, A...>;
    }
};

/// A slot that `Function` answers. An exception in it becomes `PF_Err_OUT_OF_MEMORY` and a report: none may reach the
/// effect, whose frames are in between.
template <FixedText Table, FixedText Call, auto Function>
class Served {
    template <typename R, typename... A>
    using Plain = R (*)(A...);

    template <typename R, typename... A>
    static R Answer(A... arguments) {
        constexpr std::string_view name = CallName<Table, Call>();
        EventScope event(name, arguments...);
        try {
            if (const PF_Err fault = FaultOf(name)) {
                event.Fault();
                return static_cast<R>(event.Return(Refusal<R>(fault), arguments...));
            }
            if constexpr (std::is_void_v<R>) {
                Function(arguments...);
                event.Return(0, arguments...);
            } else {
                return event.Return(Function(arguments...), arguments...);
            }
        } catch (...) {
            Report(std::string(name) + " failed inside the host");
            return static_cast<R>(event.Return(Refusal<R>(PF_Err_OUT_OF_MEMORY), arguments...));
        }
    }

 public:
    template <typename R, typename... A>
    constexpr operator Plain<R, A...>() const {  // NOLINT(google-explicit-constructor): becomes the slot's function
        return &Answer<R, A...>;
    }
};

}  // namespace umbrant::host
