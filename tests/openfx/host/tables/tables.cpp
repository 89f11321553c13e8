// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Look-ups in the tables of the standard.

#include "tests/openfx/host/tables/tables.h"

#include <map>

#include "tests/openfx/host/abi.h"

namespace umbrant::ofx {

const PropertyRow* FindProperty(std::string_view name) {
    static const std::map<std::string_view, const PropertyRow*> byName = [] {
        std::map<std::string_view, const PropertyRow*> rows;
        for (const PropertyRow& row : PropertyTable()) rows[row.name] = &row;
        return rows;
    }();
    if (const auto found = byName.find(name); found != byName.end()) return found->second;
    for (const PropertyRow& row : PropertyTable()) {
        if (row.name.ends_with('_') && name.starts_with(row.name)) return &row;
    }
    return nullptr;
}

const ActionRow* FindAction(std::string_view name) {
    for (const ActionRow& row : ActionTable()) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

bool LivesIn(const PropertyRow& row, std::string_view kind) {
    for (const std::string& place : Split(row.where, "; ")) {
        // "outArgs of GetRegionsOfInterest" belongs to "outArgs" as well.
        if (place == kind || place.starts_with(std::string(kind) + " of ")) return true;
    }
    return false;
}

std::string StatusName(int status) {
    static const std::map<int, std::string> names = {
        {kOfxStatOK, "OK"},
        {kOfxStatFailed, "Failed"},
        {kOfxStatErrFatal, "ErrFatal"},
        {kOfxStatErrUnknown, "ErrUnknown"},
        {kOfxStatErrMissingHostFeature, "ErrMissingHostFeature"},
        {kOfxStatErrUnsupported, "ErrUnsupported"},
        {kOfxStatErrExists, "ErrExists"},
        {kOfxStatErrFormat, "ErrFormat"},
        {kOfxStatErrMemory, "ErrMemory"},
        {kOfxStatErrBadHandle, "ErrBadHandle"},
        {kOfxStatErrBadIndex, "ErrBadIndex"},
        {kOfxStatErrValue, "ErrValue"},
        {kOfxStatReplyYes, "ReplyYes"},
        {kOfxStatReplyNo, "ReplyNo"},
        {kOfxStatReplyDefault, "ReplyDefault"},
        {kOfxStatUnlicensed, "Unlicensed"},
        {kOfxStatErrImageFormat, "ErrImageFormat"},
    };
    const auto found = names.find(status);
    return found != names.end() ? found->second : std::to_string(status);
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        if (end > begin) parts.emplace_back(text.substr(begin, end - begin));
        begin = end + separator.size();
    }
    return parts;
}

}  // namespace umbrant::ofx
