// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// JSON with the line and column of each value, for messages about mistakes.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// A place in a text, counted from 1; columns are characters, not bytes.
struct TextPlace {
    int line = 1;
    int column = 1;
    bool operator==(const TextPlace&) const = default;
    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 that this compares with for a pointer
    auto operator<=>(const TextPlace&) const = default;
};

struct LocatedJson {
    enum class Kind { kNull, kBoolean, kNumber, kString, kArray, kObject };
    struct Member;

    Kind kind = Kind::kNull;
    TextPlace place{};
    bool boolean = false;
    double number = 0;
    std::string text;                ///< a string's characters, a number as it is written
    std::vector<LocatedJson> items;  ///< of an array
    std::vector<Member> members;     ///< of an object, in the order of the text, also those whose key comes twice

    /// The first member of this key; null when there is none.
    const LocatedJson* Find(std::string_view key) const;
    /// "a number", "an object", ...
    const char* KindName() const;
};

struct LocatedJson::Member {
    std::string key;
    TextPlace place{};  ///< of the key
    LocatedJson value{};
};

/// Reads a whole text, in time and memory proportional to its length. Fails with `ErrorKind::kFile` and what is wrong
/// with it where.
Result<LocatedJson> ParseLocatedJson(const std::string& text);

}  // namespace umbrant::host
