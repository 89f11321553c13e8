// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A preset's file read and judged as a whole.

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>

#include "host/animation/preset.h"
#include "host/animation/preset_reader.h"

namespace {

namespace fs = std::filesystem;
using Kind = LocatedJson::Kind;

constexpr int kNewestVersion = 2;

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

/// The version, told as a mistake when there is none that this program reads.
int VersionOf(const LocatedJson& preset, PresetMistakes& mistakes) {
    const LocatedJson* version = preset.Find("version");
    if (!version) {
        mistakes.Add(preset.place, "it has no \"version\"; this program reads versions 1 and 2");
        return kNewestVersion;
    }
    if (version->kind == Kind::kNumber && (version->number == 1 || version->number == 2)) {
        return static_cast<int>(version->number);
    }
    const bool isNewer = version->kind == Kind::kNumber && version->number > kNewestVersion;
    const std::string shown = version->kind == Kind::kString   ? fmt::format("\"{}\"", version->text)
                              : version->kind == Kind::kNumber ? version->text
                                                               : std::string(version->KindName());
    mistakes.Add(version->place,
                 fmt::format("it has the version {}; this program reads versions 1 and 2{}", shown,
                             isNewer ? ", and a newer one wrote this; save it there without what is new" : ""));
    return isNewer ? static_cast<int>(std::min(version->number, 1e6)) : kNewestVersion;
}

void CheckTopKeys(const LocatedJson& preset, int version, PresetMistakes& mistakes) {
    const std::vector<std::string> known = {"version", "values", "keyframes"};
    CheckKeys(preset, known, "a preset", mistakes);
    for (const LocatedJson::Member& member : preset.members) {
        if (member.key == "keyframes" && version < 2) {
            mistakes.Add(member.place, "a preset of version 1 has no keyframes; write \"version\": 2");
        }
    }
}

/// The rows that a preset has named so far.
class NamedRows {
 public:
    NamedRows(const ParamSet& params, PresetMistakes& mistakes) : params_(params), mistakes_(mistakes) {}

    /// The row that a member is about, unless nothing is or something else was.
    std::optional<int> Find(const LocatedJson::Member& member) {
        const auto index = params_.Find(member.key);
        if (!index) {
            mistakes_.Add(member.place, index.Error().sentence);
            return std::nullopt;
        }
        const auto [other, first] = named_.emplace(*index, member.key);
        if (first) return *index;
        if (other->second == member.key) return *index;
        mistakes_.Add(member.place, fmt::format("'{}' and '{}' are the same parameter", other->second, member.key));
        return *index;
    }
    bool Has(int row) const { return named_.contains(row); }

 private:
    const ParamSet& params_;
    PresetMistakes& mistakes_;
    std::map<int, std::string> named_;
};

void ReadValues(const LocatedJson& values, AnimatedParams& params, NamedRows& named, PresetMistakes& mistakes) {
    for (const LocatedJson::Member& member : values.members) {
        const auto row = named.Find(member);
        if (!row) continue;
        const auto text = ValueTextOf(member.value);
        if (!text) {
            mistakes.Add(member.value.place, fmt::format("'{}' takes a text or a number, not what JSON calls {}",
                                                         member.key, member.value.KindName()));
            continue;
        }
        const auto set = params.values.SetFromText(member.key, *text);
        if (!set) mistakes.Add(member.value.place, set.Error().sentence);
        params.animation.Remove(*row);
    }
}

void ReadTracks(const LocatedJson& tracks, AnimatedParams& params, const NamedRows& still, PresetMistakes& mistakes) {
    NamedRows named(params.values, mistakes);
    for (const LocatedJson::Member& member : tracks.members) {
        const auto row = named.Find(member);
        if (!row) continue;
        if (still.Has(*row)) {
            mistakes.Add(member.place, fmt::format("'{}' has a value and keyframes; leave one of them", member.key));
        }
        auto track = ReadTrack(member, *row, params.values, mistakes);
        if (track) params.animation.Put(std::move(*track));
    }
}

void ReadPreset(const LocatedJson& preset, AnimatedParams& params, PresetMistakes& mistakes) {
    const int version = VersionOf(preset, mistakes);
    // What a newer version has beside its number means nothing here.
    if (version > kNewestVersion) return;
    CheckTopKeys(preset, version, mistakes);
    NamedRows named(params.values, mistakes);
    const LocatedJson* values = preset.Find("values");
    const LocatedJson* tracks = preset.Find("keyframes");
    if (values && values->kind != Kind::kObject) {
        mistakes.Add(values->place, "its \"values\" are not an object of paths and values");
    } else if (values) {
        CheckTwice(*values, mistakes);
        ReadValues(*values, params, named, mistakes);
    } else if (!tracks) {
        mistakes.Add(preset.place,
                     version == 1 ? "it has no \"values\"" : "it has neither \"values\" nor \"keyframes\"");
    }
    if (tracks && tracks->kind != Kind::kObject) {
        mistakes.Add(tracks->place, "its \"keyframes\" are not an object of paths and lists");
    } else if (tracks && version >= 2) {
        CheckTwice(*tracks, mistakes);
        ReadTracks(*tracks, params, named, mistakes);
    }
}

}  // namespace

Failure PresetMistakes::Told(const fs::path& file) {
    std::stable_sort(list_.begin(), list_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    const auto line = [](const auto& mistake) {
        return fmt::format("line {}, column {}: {}", mistake.first.line, mistake.first.column, mistake.second);
    };
    if (list_.size() == 1) {
        return {ExitCode::kUsage, fmt::format("the preset '{}' is wrong: {}", file.string(), line(list_.front()))};
    }
    std::string text = fmt::format("the preset '{}' has {} mistakes:", file.string(), list_.size());
    for (const auto& mistake : list_) text += "\n  " + line(mistake);
    return {ExitCode::kUsage, text};
}

void CheckTwice(const LocatedJson& object, PresetMistakes& mistakes) {
    std::set<std::string> seen;
    for (const LocatedJson::Member& member : object.members) {
        if (seen.insert(member.key).second) continue;
        mistakes.Add(member.place, fmt::format("'{}' stands there twice", member.key));
    }
}

void CheckKeys(const LocatedJson& object, const std::vector<std::string>& known, const std::string& what,
               PresetMistakes& mistakes) {
    CheckTwice(object, mistakes);
    for (const LocatedJson::Member& member : object.members) {
        if (std::find(known.begin(), known.end(), member.key) != known.end()) continue;
        const auto near = Nearest(member.key, known, 1);
        mistakes.Add(member.place, near.empty() ? fmt::format("there is no key '{}' in {}; the keys are: {}",
                                                              member.key, what, fmt::join(known, ", "))
                                                : fmt::format("there is no key '{}' in {}; nearest: '{}'", member.key,
                                                              what, near.front()));
    }
}

std::optional<std::string> ValueTextOf(const LocatedJson& value) {
    if (value.kind == Kind::kString || value.kind == Kind::kNumber) return value.text;
    if (value.kind == Kind::kBoolean) return value.boolean ? "on" : "off";
    return std::nullopt;
}

Result<Done> ApplyPreset(const fs::path& file, AnimatedParams& params) {
    const auto text = ReadText(file);
    if (!text) return text.Error();
    return ApplyPresetText(*text, file.string(), params);
}

Result<Done> ApplyPresetText(const std::string& text, const std::string& name, AnimatedParams& params) {
    const auto preset = ParseLocatedJson(text);
    if (!preset) return CannotRead(name, fmt::format("it is not JSON ({})", preset.Error().sentence));
    PresetMistakes mistakes;
    AnimatedParams changed = params;
    if (preset->kind == Kind::kObject) {
        ReadPreset(*preset, changed, mistakes);
    } else {
        mistakes.Add(preset->place, "it is not an object with \"version\" and \"values\"");
    }
    if (!mistakes.IsEmpty()) return mistakes.Told(name);
    params = std::move(changed);
    return Done{};
}
