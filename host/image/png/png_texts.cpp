// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png/png_texts.h"

#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

#include "host/image/png/latin_text.h"

namespace umbrant::host {

namespace {

/// Whether a name may be the key of a text.
bool IsKey(const std::string& key) {
    constexpr std::size_t kLongest = 79;
    return !key.empty() && key.size() <= kLongest && key.front() != ' ' && key.back() != ' ' &&
           std::all_of(key.begin(), key.end(), [](unsigned char c) { return c >= 32 && c < 127; });
}

}  // namespace

std::vector<PngText> PngTextsOf(const ImageLayout& layout) {
    constexpr std::pair<std::string_view, const char*> kNames[] = {
        {"ImageDescription", "Description"}, {"Artist", "Author"}, {"DocumentName", "Title"}};
    // They have separate chunks.
    constexpr std::string_view kElsewhere[] = {"DateTime", "ResolutionUnit", "oiio:ColorSpace"};
    const auto is = [](const std::string& name, std::string_view other) {
        return strcasecmp(name.c_str(), other.data()) == 0;
    };
    std::vector<PngText> texts;
    for (const Attribute& attribute : layout.attributes) {
        if (attribute.texts.size() != 1 || attribute.type.base != AttributeType::kString) continue;
        std::string key = attribute.name;
        if (std::any_of(std::begin(kElsewhere), std::end(kElsewhere), [&](auto name) { return is(key, name); }))
            continue;
        for (const auto& [ours, name] : kNames) {
            if (is(key, ours)) key = name;
        }
        if (!IsKey(key)) continue;
        const std::string& text = attribute.texts.front();
        const auto latin = LatinOfUtf8(text);
        texts.push_back({key, latin.value_or(text), !latin && IsUtf8(text)});
    }
    return texts;
}

}  // namespace umbrant::host
