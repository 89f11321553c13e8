// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/pattern.h"

#include <regex>

namespace umbrant::host {

struct Pattern::Compiled {
    std::regex expression;
};

std::optional<Pattern> Pattern::Of(const std::string& text) {
    Pattern pattern;
    try {
        pattern.compiled_ = std::make_shared<const Compiled>(Compiled{std::regex(text)});
    } catch (const std::regex_error&) {
        return std::nullopt;
    }
    return pattern;
}

bool Pattern::IsIn(const std::string& text) const {
    return std::regex_search(text, compiled_->expression);
}

}  // namespace umbrant::host
