// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/preset.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr int kVersion = 1;

using Mistakes = std::vector<std::string>;

Failure CannotRead(const fs::path& file, std::string_view reason) {
    return {ExitCode::kFile, fmt::format("cannot read the preset '{}': {}", file.string(), reason)};
}

Result<std::string> ReadText(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) return CannotRead(file, "there is no such file");
    if (fs::is_directory(status)) return CannotRead(file, "it is a folder");
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) return CannotRead(file, "it cannot be opened");
    return text;
}

/// The text as JSON. A key that stands twice in one object is a mistake, where the library would keep the last.
Result<Json> Parse(const fs::path& file, const std::string& text, Mistakes& mistakes) {
    std::map<int, std::set<std::string>> seen;  // by depth
    const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) seen[depth + 1].clear();
        if (event == Json::parse_event_t::key && !seen[depth].insert(parsed.get<std::string>()).second) {
            mistakes.push_back(fmt::format("'{}' stands there twice", parsed.get<std::string>()));
        }
        return true;
    };
    try {
        return Json::parse(text, watch);
    } catch (const Json::exception& problem) {  // also for a number that no double holds
        const std::string words = problem.what();
        const std::size_t name = words.find("] ");
        return CannotRead(
            file, fmt::format("it is not JSON ({})", name == std::string::npos ? words : words.substr(name + 2)));
    }
}

/// A value in the form that `--set` takes, or nothing for one that has no such form.
std::optional<std::string> TextOf(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "on" : "off";
    if (value.is_number()) return value.dump();
    return std::nullopt;
}

void CheckVersion(const Json& preset, Mistakes& mistakes) {
    const auto version = preset.find("version");
    if (version == preset.end()) {
        mistakes.push_back(fmt::format("it has no \"version\"; this program reads version {}", kVersion));
    } else if (!version->is_number_integer() || *version != kVersion) {
        mistakes.push_back(fmt::format("it has the version {}; this program reads version {}",
                                       version->dump(-1, ' ', false, Json::error_handler_t::replace), kVersion));
    }
}

void CheckKeys(const Json& preset, Mistakes& mistakes) {
    const std::vector<std::string> known = {"version", "values"};
    for (const auto& [key, value] : preset.items()) {
        if (key == known[0] || key == known[1]) continue;
        const auto near = Nearest(key, known, 1);
        mistakes.push_back(fmt::format(
            "there is no key '{}' in a preset; {}", key,
            near.empty() ? "the keys are 'version' and 'values'" : fmt::format("nearest: '{}'", near.front())));
    }
}

void SetValues(const Json& values, ParamSet& params, Mistakes& mistakes) {
    std::map<int, std::string> named;
    for (const auto& [path, value] : values.items()) {
        const auto index = params.Find(path);
        if (!index) {
            mistakes.push_back(index.Error().sentence);
            continue;
        }
        const auto [other, first] = named.emplace(*index, path);
        if (!first && other->second != path) {
            mistakes.push_back(fmt::format("'{}' and '{}' are the same parameter", other->second, path));
        }
        const auto text = TextOf(value);
        if (!text) {
            mistakes.push_back(fmt::format("'{}' takes a text or a number, not what JSON calls {} {}", path,
                                           value.is_array() || value.is_object() ? "an" : "a", value.type_name()));
            continue;
        }
        if (const auto set = params.SetFromText(path, *text); !set) mistakes.push_back(set.Error().sentence);
    }
}

Failure Explain(const fs::path& file, const Mistakes& mistakes) {
    if (mistakes.size() == 1) {
        return {ExitCode::kUsage, fmt::format("the preset '{}' is wrong: {}", file.string(), mistakes.front())};
    }
    std::string text = fmt::format("the preset '{}' has {} mistakes:", file.string(), mistakes.size());
    for (const std::string& mistake : mistakes) text += "\n  " + mistake;
    return {ExitCode::kUsage, text};
}

/// Whether the value is the user's to set: the effect keeps the others for its own words, which differ between
/// machines.
bool IsSettable(const ParamRow& row) {
    return (row.def.ui_flags & PF_PUI_DISABLED) == 0;
}

}  // namespace

Result<Done> ApplyPreset(const fs::path& file, ParamSet& params) {
    const auto text = ReadText(file);
    if (!text) return text.Error();
    Mistakes mistakes;
    const auto preset = Parse(file, *text, mistakes);
    if (!preset) return preset.Error();
    if (!preset->is_object()) return Explain(file, {"it is not an object with \"version\" and \"values\""});

    CheckVersion(*preset, mistakes);
    CheckKeys(*preset, mistakes);
    ParamSet changed = params;
    const auto values = preset->find("values");
    if (values == preset->end()) {
        mistakes.push_back("it has no \"values\"");
    } else if (!values->is_object()) {
        mistakes.push_back("its \"values\" are not an object of paths and values");
    } else {
        SetValues(*values, changed, mistakes);
    }
    if (!mistakes.empty()) return Explain(file, mistakes);
    params = std::move(changed);
    return Done{};
}

std::string PresetText(const ParamSet& params) {
    Json values = Json::object();
    for (const ParamRow& row : params.Rows()) {
        const std::string value = params.ValueText(row.index);
        if (value.empty() || !IsSettable(row)) continue;
        const bool isNamed = !row.path.empty() && params.Find(row.path);
        values[isNamed ? row.path : fmt::format("#{}", row.index)] = value;
    }
    const Json preset{{"version", kVersion}, {"values", values}};
    return preset.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}
