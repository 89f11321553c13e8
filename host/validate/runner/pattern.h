// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Regular expressions of options and waivers. Compiled apart: the code of the standard library's takes longer to
// compile than any file that searches.

#include <memory>
#include <optional>
#include <string>

namespace umbrant::host {

/// A regular expression in the syntax of ECMAScript. Copies share what it was compiled to.
class Pattern {
 public:
    /// No value if the text is not a regular expression.
    static std::optional<Pattern> Of(const std::string& text);

    /// Whether a part of the text matches.
    bool IsIn(const std::string& text) const;

 private:
    struct Compiled;
    std::shared_ptr<const Compiled> compiled_;
};

}  // namespace umbrant::host
