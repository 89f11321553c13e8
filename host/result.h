// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the host program reports failure: a value, or one sentence for a person with the exit code it leads to. Only
// main prints and exits.

#include <cstdlib>
#include <string>
#include <utility>
#include <variant>

namespace umbrant::host {

/// Exit codes of every subcommand; they are part of the command line's contract.
enum class ExitCode {
    kDone = 0,
    kEffectFailed = 1,  ///< the effect returned an error
    kUsage = 2,         ///< wrong usage or a bad value
    kFile = 3,          ///< a file cannot be read or written
    kModule = 4,        ///< the module cannot be loaded
    kInternal = 5,      ///< an error of the program itself
    kInterrupted = 130,
};

/// Why something could not be done: one sentence that names the input, the reason and what would be right.
struct Failure {
    ExitCode code;
    std::string sentence;
};

/// A value or a Failure. Asking a failed result for its value is a bug and ends the program.
template <typename T>
class [[nodiscard]] Result {
 public:
    Result(T value) : state_(std::move(value)) {}            // NOLINT(google-explicit-constructor): reads as the value
    Result(Failure failure) : state_(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return std::holds_alternative<T>(state_); }
    T& operator*() & { return Value(); }
    const T& operator*() const& { return const_cast<Result*>(this)->Value(); }
    T&& operator*() && { return std::move(Value()); }
    T* operator->() { return &Value(); }
    const T* operator->() const { return &const_cast<Result*>(this)->Value(); }
    const Failure& Error() const { return std::get<Failure>(state_); }

 private:
    T& Value() {
        T* value = std::get_if<T>(&state_);
        if (!value) std::abort();
        return *value;
    }
    std::variant<T, Failure> state_;
};

/// Success without a value.
struct Done {};

}  // namespace umbrant::host
