// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/trace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

namespace umbrant::host {

namespace {

using nlohmann::json;

/// One write per call, so that the lines of processes that add at the same time do not mix.
bool Append(const std::filesystem::path& file, const std::string& text, int flags) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0666);
    if (descriptor < 0) return false;
    const bool written = write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    return close(descriptor) == 0 && written;
}

std::string Line(const json& object) {
    return object.dump(-1, ' ', false, json::error_handler_t::replace) + ",\n";
}

json ArgumentsOf(const Event& event) {
    json arguments;
    arguments["result"] = event.result;
    if (event.faulted) arguments["fault"] = true;
    json values = json::array();
    for (const EventValue& value : event.arguments) {
        if (!value.text.empty()) {
            values.push_back(value.text);
        } else {
            values.push_back(value.after ? fmt::format("{:#x} -> {:#x}", value.before, value.after)
                                         : fmt::format("{:#x}", value.before));
        }
    }
    arguments["arguments"] = std::move(values);
    return arguments;
}

}  // namespace

bool BeginTrace(const std::filesystem::path& file) {
    return Append(file, "[\n", O_TRUNC);
}

void AppendTrace(const std::filesystem::path& file, const std::vector<Event>& events) {
    std::string text;
    for (const Event& event : events) {
        const std::int64_t end = event.end ? event.end : event.begin;
        text += Line({{"name", event.callee},
                      {"cat", event.isCommand ? "command" : "host"},
                      {"ph", "X"},
                      {"ts", static_cast<double>(event.begin) / 1000.0},
                      {"dur", static_cast<double>(end - event.begin) / 1000.0},
                      {"pid", getpid()},
                      {"tid", event.thread},
                      {"args", ArgumentsOf(event)}});
    }
    Append(file, text, O_APPEND);
}

void NameTraceProcess(const std::filesystem::path& file, const std::string& name) {
    Append(file, Line({{"name", "process_name"}, {"ph", "M"}, {"pid", getpid()}, {"args", {{"name", name}}}}),
           O_APPEND);
}

void EndTrace(const std::filesystem::path& file) {
    // An empty object of a kind that viewers pass over, because the line before ends in a comma.
    Append(file, "{\"name\":\"end\",\"ph\":\"M\",\"pid\":0}\n]\n", O_APPEND);
}

}  // namespace umbrant::host
