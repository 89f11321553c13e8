// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/accounting/ledger.h"

#include <map>
#include <optional>
#include <utility>

namespace umbrant::host {

namespace {

/// Which value of an event names the thing.
enum class Key { kSuite, kResult, kBefore, kAfter, kOne };

struct Rule {
    const char* callee;
    Resource resource;
    bool takes;
    Key key;
    std::size_t argument = 0;
};

constexpr Rule kRules[] = {
    {"SP Basic Suite.AcquireSuite", Resource::kSuite, true, Key::kSuite},
    {"SP Basic Suite.ReleaseSuite", Resource::kSuite, false, Key::kSuite},
    {"SP Basic Suite.AllocateBlock", Resource::kBlock, true, Key::kAfter, 1},
    {"SP Basic Suite.ReallocateBlock", Resource::kBlock, false, Key::kBefore, 0},
    {"SP Basic Suite.ReallocateBlock", Resource::kBlock, true, Key::kAfter, 2},
    {"SP Basic Suite.FreeBlock", Resource::kBlock, false, Key::kBefore, 0},
    {"PF Handle Suite.host_new_handle", Resource::kHandle, true, Key::kResult},
    {"PF Handle Suite.host_dispose_handle", Resource::kHandle, false, Key::kBefore, 0},
    {"PF Handle Suite.host_lock_handle", Resource::kLock, true, Key::kBefore, 0},
    {"PF Handle Suite.host_unlock_handle", Resource::kLock, false, Key::kBefore, 0},
    {"utils.host_new_handle", Resource::kHandle, true, Key::kResult},
    {"utils.host_dispose_handle", Resource::kHandle, false, Key::kBefore, 0},
    {"utils.host_lock_handle", Resource::kLock, true, Key::kBefore, 0},
    {"utils.host_unlock_handle", Resource::kLock, false, Key::kBefore, 0},
    {"PF World Suite.PF_NewWorld", Resource::kWorld, true, Key::kAfter, 5},
    {"PF World Suite.PF_DisposeWorld", Resource::kWorld, false, Key::kBefore, 1},
    {"utils.new_world", Resource::kWorld, true, Key::kAfter, 4},
    {"utils.dispose_world", Resource::kWorld, false, Key::kBefore, 1},
    {"interact.checkout_param", Resource::kParam, true, Key::kOne},
    {"interact.checkin_param", Resource::kParam, false, Key::kOne},
    {"smart-render.checkout_layer_pixels", Resource::kLayerPixels, true, Key::kBefore, 1},
    {"smart-render.checkin_layer_pixels", Resource::kLayerPixels, false, Key::kBefore, 1},
    {"AEGP PF Interface Suite.AEGP_GetNewEffectForEffect", Resource::kEffectRef, true, Key::kAfter, 2},
    {"AEGP Effect Suite.AEGP_DisposeEffect", Resource::kEffectRef, false, Key::kBefore, 0},
    {"AEGP Stream Suite.AEGP_GetNewEffectStreamByIndex", Resource::kStream, true, Key::kAfter, 3},
    {"AEGP Stream Suite.AEGP_DisposeStream", Resource::kStream, false, Key::kBefore, 0},
    {"DRAWBOT Supplier Suite.NewPen", Resource::kDrawObject, true, Key::kAfter, 3},
    {"DRAWBOT Supplier Suite.NewBrush", Resource::kDrawObject, true, Key::kAfter, 2},
    {"DRAWBOT Supplier Suite.NewDefaultFont", Resource::kDrawObject, true, Key::kAfter, 2},
    {"DRAWBOT Supplier Suite.NewImageFromBuffer", Resource::kDrawObject, true, Key::kAfter, 6},
    {"DRAWBOT Supplier Suite.NewPath", Resource::kDrawObject, true, Key::kAfter, 1},
    {"DRAWBOT Supplier Suite.RetainObject", Resource::kDrawObject, true, Key::kBefore, 0},
    {"DRAWBOT Supplier Suite.ReleaseObject", Resource::kDrawObject, false, Key::kBefore, 0},
};

bool ReturnsPointer(const Rule& rule) {
    return rule.key == Key::kResult || (rule.resource == Resource::kLock && rule.takes);
}

bool ReturnsNothing(const Rule& rule) {
    return !rule.takes && (rule.resource == Resource::kHandle || rule.resource == Resource::kLock);
}

/// The address or text that names the thing; nothing when the call took or gave nothing.
std::optional<std::pair<std::uint64_t, std::string>> KeyOf(const Rule& rule, const Event& event) {
    if (ReturnsPointer(rule) ? event.result == 0 : !ReturnsNothing(rule) && event.result != 0) {
        // What the effect tried to give back while the host refused on purpose, it did not keep.
        if (rule.takes || !event.faulted) return std::nullopt;
    }
    const auto argument = [&](std::size_t i) -> const EventValue& { return event.arguments.at(i); };
    switch (rule.key) {
        case Key::kSuite:
            if (rule.takes && argument(2).after == 0) return std::nullopt;
            return std::pair(std::uint64_t{0}, argument(0).text + " " + std::to_string(argument(1).before));
        case Key::kResult:
            return std::pair(static_cast<std::uint64_t>(event.result), std::string());
        case Key::kBefore:
            if (rule.resource != Resource::kLayerPixels && argument(rule.argument).before == 0) return std::nullopt;
            return std::pair(argument(rule.argument).before, std::string());
        case Key::kAfter:
            if (argument(rule.argument).after == 0) return std::nullopt;
            return std::pair(argument(rule.argument).after, std::string());
        case Key::kOne:
            return std::pair(std::uint64_t{0}, std::string());
    }
    return std::nullopt;
}

/// Layer check-outs are the frame's, so an id names another thing in another command.
std::uint64_t ScopeOf(const Rule& rule, const Event& event) {
    return rule.resource == Resource::kLayerPixels ? event.command : 0;
}

std::string Times(int count) {
    return count == 1 ? "1 time" : std::to_string(count) + " times";
}

std::string Singular(Resource resource) {
    static constexpr const char* kNames[kResourceCount] = {
        "suite",           "handle",           "lock",   "world",         "block", "parameter check-out",
        "layer check-out", "effect reference", "stream", "drawing object"};
    return kNames[static_cast<std::size_t>(resource)];
}

std::string Sentence(const LedgerRow& row, const std::string& command) {
    return Singular(row.resource) + (row.what.empty() ? "" : " " + row.what) + " was acquired " + Times(row.taken) +
           " and released " + Times(row.given) + (command.empty() ? "" : " (" + command + ")");
}

}  // namespace

std::vector<LedgerRow> KeepBooks(const std::vector<Event>& events) {
    using ThingKey = std::pair<std::pair<Resource, std::uint64_t>, std::pair<std::uint64_t, std::string>>;
    std::map<ThingKey, std::size_t> places;
    std::map<std::uint64_t, std::string> commands;
    std::vector<LedgerRow> rows;
    int numbers[kResourceCount] = {};
    for (const Event& event : events) {
        if (event.isCommand) commands[event.sequence] = event.callee;
        for (const Rule& rule : kRules) {
            if (event.callee != rule.callee) continue;
            const auto key = KeyOf(rule, event);
            if (!key) continue;
            const ThingKey thing{{rule.resource, ScopeOf(rule, event)}, *key};
            const auto [place, fresh] = places.emplace(thing, rows.size());
            if (fresh) {
                LedgerRow row;
                row.resource = rule.resource;
                const int number = ++numbers[static_cast<std::size_t>(rule.resource)];
                if (rule.key == Key::kSuite) {
                    row.what = key->second;
                } else if (rule.resource == Resource::kLayerPixels) {
                    row.what = "id " + std::to_string(key->first);
                } else if (rule.key != Key::kOne) {
                    row.what = "#" + std::to_string(number);
                }
                rows.push_back(row);
            }
            LedgerRow& row = rows[place->second];
            ++(rule.takes ? row.taken : row.given);
            if (rule.takes || row.taken < row.given) row.command = event.command;
        }
    }
    for (LedgerRow& row : rows) row.sentence = Sentence(row, commands[row.command]);
    return rows;
}

std::vector<LedgerRow> UnevenRows(const std::vector<Event>& events) {
    std::vector<LedgerRow> rows = KeepBooks(events);
    std::erase_if(rows, [](const LedgerRow& row) { return row.IsBalanced(); });
    return rows;
}

Balance BalanceOf(const std::vector<Event>& events) {
    Balance balance;
    for (const LedgerRow& row : KeepBooks(events)) {
        balance.open[static_cast<std::size_t>(row.resource)] += row.taken - row.given;
    }
    return balance;
}

}  // namespace umbrant::host
