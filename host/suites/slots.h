// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How a suite's table is filled. Every slot is either Served, a host function behind the fault hook and behind a
// barrier for exceptions, or Missing, a function that reports which call was made and returns an error. Both take the
// slot's type from the slot.

#include <cstddef>
#include <string>
#include <type_traits>

#include "host/suites/services.h"
#include "hostapi/errors.h"

/// A text as a template argument.
template <std::size_t N>
struct FixedText {
    char text[N]{};
    constexpr FixedText(const char (&from)[N]) {  // NOLINT(google-explicit-constructor): written as a literal
        for (std::size_t i = 0; i < N; ++i) text[i] = from[i];
    }
};

/// "table.call".
template <FixedText Table, FixedText Call>
const std::string& CallName() {
    static const std::string name = std::string(Table.text) + "." + Call.text;
    return name;
}

/// What a call that could not be made returns: the error where it returns one, else zero or null.
template <typename R>
R Refusal([[maybe_unused]] PF_Err error) {
    if constexpr (std::is_same_v<R, PF_Err>) {
        return error;
    } else {
        return R();
    }
}

/// A slot that this host has nothing behind.
template <FixedText Table, FixedText Call>
class Missing {
    template <typename R, typename... A>
    using Plain = R (*)(A...);
    template <typename R, typename... A>
    using Variadic = R (*)(A..., ...);

    template <typename R>
    static R Refuse() {
        Report(CallName<Table, Call>() + " was called, which this host does not implement");
        return Refusal<R>(PF_Err_INVALID_CALLBACK);
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
/// effect, whose frames lie between.
template <FixedText Table, FixedText Call, auto Function>
class Served {
    template <typename R, typename... A>
    using Plain = R (*)(A...);

    template <typename R, typename... A>
    static R Answer(A... arguments) {
        try {
            if (const PF_Err fault = FaultOf(CallName<Table, Call>())) return Refusal<R>(fault);
            return Function(arguments...);
        } catch (...) {
            Report(CallName<Table, Call>() + " failed inside the host");
            return Refusal<R>(PF_Err_OUT_OF_MEMORY);
        }
    }

 public:
    template <typename R, typename... A>
    constexpr operator Plain<R, A...>() const {  // NOLINT(google-explicit-constructor): becomes the slot's function
        return &Answer<R, A...>;
    }
};
