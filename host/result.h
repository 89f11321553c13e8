// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the host program reports failure: a value, or the kind of the failure with one sentence for a person. The command
// line alone makes exit codes of kinds (host/cli/exit_code.h).

#include <cstdlib>
#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace umbrant::host {

/// What kind of thing went wrong.
enum class ErrorKind {
    kEffect = 1,  ///< the effect returned an error
    kUsage,       ///< wrong usage or a bad value
    kFile,        ///< a file cannot be read or written
    kModule,      ///< the module cannot be loaded
    kInternal,    ///< an error of the program itself
};

/// Why something could not be done: one sentence that names the input, the reason and what would be right.
struct Failure {
    ErrorKind kind;
    std::string sentence;
};

/// Wrong usage or a bad value.
inline Failure Usage(std::string sentence) {
    return {ErrorKind::kUsage, std::move(sentence)};
}

/// A value or a Failure, with `and_then`, `map` and the rest of tl::expected. Asking a failed result for its value is a
/// bug and ends the program, in every kind of build.
template <typename T>
class [[nodiscard]] Result : public tl::expected<T, Failure> {
    using Base = tl::expected<T, Failure>;

 public:
    Result(T made) : Base(std::move(made)) {}                          // NOLINT(google-explicit-constructor)
    Result(Failure failed) : Base(tl::unexpect, std::move(failed)) {}  // NOLINT(google-explicit-constructor)
    Result(Base result) : Base(std::move(result)) {}                   // NOLINT(google-explicit-constructor)

    T& operator*() & { return Checked(); }
    const T& operator*() const& { return const_cast<Result*>(this)->Checked(); }
    T&& operator*() && { return std::move(Checked()); }
    T* operator->() { return &Checked(); }
    const T* operator->() const { return &const_cast<Result*>(this)->Checked(); }

 private:
    T& Checked() {
        if (!this->has_value()) std::abort();
        return Base::operator*();
    }
};

/// Success without a value.
struct Done {};

/// The value of a result; a failed one is returned from the calling function, as its failure.
#define TRY(...)                                                               \
    __extension__({                                                            \
        auto tried = (__VA_ARGS__);                                            \
        if (!tried) return ::umbrant::host::Failure(std::move(tried).error()); \
        *std::move(tried);                                                     \
    })

}  // namespace umbrant::host
