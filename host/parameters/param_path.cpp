// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/parameters/param_path.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace umbrant::host {

std::string PathForm(std::string_view name) {
    std::string form;
    bool gap = false;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        // Letters of other scripts keep their bytes: a name must not vanish because it is not English.
        if (!std::isalnum(byte) && byte < 0x80) {
            gap = true;
            continue;
        }
        if (gap && !form.empty()) form += '-';
        gap = false;
        form += byte < 0x80 ? static_cast<char>(std::tolower(byte)) : character;
    }
    return form;
}

int EditDistance(std::string_view a, std::string_view b) {
    std::vector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

std::vector<std::string> Nearest(std::string_view typed, const std::vector<std::string>& candidates,
                                 std::size_t count) {
    // No name is that long, and the distance takes time in proportion to the length.
    constexpr std::size_t kLongestCompared = 256;
    typed = typed.substr(0, kLongestCompared);
    // A name typed without its groups is as near as its last part is.
    const auto distance = [&](const std::string& candidate) {
        const std::string_view whole = candidate;
        const std::size_t slash = whole.rfind('/');
        const std::string_view last = slash == std::string_view::npos ? whole : whole.substr(slash + 1);
        return std::min(EditDistance(typed, whole), EditDistance(typed, last));
    };
    std::vector<std::pair<int, std::string>> sorted;
    for (const std::string& candidate : candidates) sorted.emplace_back(distance(candidate), candidate);
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    // A name that shares less than half of its letters with what was typed was not meant. A part of a name may be, and
    // so may its beginning with a mistake in it.
    const int most = std::max(1, static_cast<int>(typed.size()) / 2);
    const auto isNear = [&](const std::string& candidate) {
        if (distance(candidate) <= most) return true;
        constexpr std::size_t kShort = 3;
        if (typed.size() < kShort) return false;
        const std::string_view beginning = std::string_view(candidate).substr(0, typed.size());
        return candidate.find(typed) != std::string::npos || EditDistance(typed, beginning) <= most / 2;
    };
    std::erase_if(sorted, [&](const auto& each) { return !isNear(each.second); });
    // Next to a name that is nearly right, one that is far off would only distract.
    constexpr int kSlack = 2;
    std::vector<std::string> nearest;
    for (auto& [far, name] : sorted) {
        if (nearest.size() == count || far > sorted.front().first + kSlack) break;
        nearest.push_back(std::move(name));
    }
    return nearest;
}

}  // namespace umbrant::host
