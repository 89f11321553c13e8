// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/sheet/vary.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/parameters/echo_text.h"

namespace umbrant::host {

Result<SheetAxis> ParseVary(const std::string& text) {
    const std::size_t equals = text.find('=');
    const auto wrong = [&](const char* reason) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'--vary {}' {}; write --vary PATH=VALUE,VALUE, or --vary preset=NAME,NAME",
                                   EchoText(text), reason)};
    };
    if (equals == std::string::npos || equals == 0) return wrong("names no values");
    SheetAxis axis;
    axis.key = text.substr(0, equals);
    const char between = text.find(';') == std::string::npos ? ',' : ';';
    for (std::size_t begin = equals + 1, end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(between, begin);
        std::string value = text.substr(begin, end == std::string::npos ? end : end - begin);
        if (value.find_first_not_of(' ') == std::string::npos) return wrong("has an empty value");
        axis.values.push_back(std::move(value));
    }
    return axis;
}

Result<std::vector<SheetAxis>> ParseVaries(const std::vector<std::string>& texts) {
    std::vector<SheetAxis> axes;
    for (const std::string& text : texts) {
        auto axis = TRY(ParseVary(text));
        const bool again = std::any_of(axes.begin(), axes.end(), [&](const auto& one) { return one.key == axis.key; });
        if (again) {
            return Failure{ErrorKind::kUsage,
                           fmt::format("'{}' is varied twice; give all of its values in one --vary", axis.key)};
        }
        axes.push_back(std::move(axis));
    }
    return axes;
}

std::vector<SheetCombination> Combinations(const std::vector<SheetAxis>& axes, const SheetCombination& common) {
    std::vector<SheetCombination> all = {common};
    for (const SheetAxis& axis : axes) {
        std::vector<SheetCombination> more;
        for (const SheetCombination& one : all) {
            for (const std::string& value : axis.values) {
                more.push_back(one);
                if (axis.key == "preset") {
                    more.back().preset = value;
                } else {
                    more.back().settings.push_back(axis.key + "=" + value);
                }
            }
        }
        all = std::move(more);
    }
    return all;
}

}  // namespace umbrant::host
