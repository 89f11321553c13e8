// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A preset's file read and checked as a whole.

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/animation/preset.h"
#include "host/animation/preset_reader.h"
#include "host/parameters/param_path.h"
#include "host/why_no_file.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using Kind = LocatedJson::Kind;

constexpr int kNewestVersion = 2;
constexpr std::size_t kMostBytes = std::size_t{64} << 20;

Failure CannotRead(const fs::path& file, std::string_view reason) {
    return {ErrorKind::kFile, fmt::format("cannot read the preset '{}': {}", file.string(), reason)};
}

/// Reads a bounded part of what has no end: a pipe, or a device.
Result<std::string> ReadText(const fs::path& file) {
    if (const auto reason = WhyNoFile(file)) return CannotRead(file, *reason);
    std::error_code error;
    if (fs::is_directory(file, error)) return CannotRead(file, "a folder, not a file");
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return CannotRead(file, "the file cannot be opened");
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    std::string text;
    while (stream && text.size() <= kMostBytes) {
        const std::size_t before = text.size();
        text.resize(before + kPiece);
        stream.read(text.data() + before, kPiece);
        text.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    if (text.size() > kMostBytes) {
        return CannotRead(file, fmt::format("the file is larger than {} MiB", kMostBytes >> 20));
    }
    if (stream.bad()) return CannotRead(file, "reading failed");
    return text;
}

/// The version; adds a mistake when this program cannot read it.
int VersionOf(const LocatedJson& preset, PresetMistakes& mistakes) {
    const LocatedJson* version = preset.Find("version");
    if (!version) {
        mistakes.Add(preset.place, "\"version\" is missing; this program reads versions 1 and 2");
        return kNewestVersion;
    }
    if (version->kind == Kind::kNumber && (version->number == 1 || version->number == 2)) {
        return static_cast<int>(version->number);
    }
    const bool isNewer = version->kind == Kind::kNumber && version->number > kNewestVersion;
    const std::string shown = version->kind == Kind::kString   ? fmt::format("\"{}\"", EchoText(version->text))
                              : version->kind == Kind::kNumber ? EchoText(version->text)
                                                               : std::string(version->KindName());
    mistakes.Add(
        version->place,
        fmt::format("version {} is not supported; this program reads versions 1 and 2{}", shown,
                    isNewer
                        ? ", and a newer version of it wrote this file; save the preset there without newer features"
                        : ""));
    return isNewer ? static_cast<int>(std::min(version->number, 1e6)) : kNewestVersion;
}

void CheckTopKeys(const LocatedJson& preset, int version, PresetMistakes& mistakes) {
    const std::vector<std::string> known = {"version", "values", "keyframes"};
    CheckKeys(preset, known, "a preset", mistakes);
    for (const LocatedJson::Member& member : preset.members) {
        if (member.key == "keyframes" && version < 2) {
            mistakes.Add(member.place, "a preset of version 1 cannot have keyframes; write \"version\": 2");
        }
    }
}

/// The rows that a preset has named so far.
class NamedRows {
 public:
    NamedRows(const ParamSet& params, PresetMistakes& mistakes) : params_(params), mistakes_(mistakes) {
        for (const ParamRow& row : params.Rows()) {
            if (row.path.empty()) continue;
            const auto [known, isNew] = rows_.emplace(row.path, row.index);
            if (!isNew) known->second = kSeveral;
        }
    }

    /// The row that a member is about, unless nothing is or something else was.
    std::optional<int> Find(const LocatedJson::Member& member) {
        const auto index = IndexOf(member.key);
        if (!index) {
            // The closest names are looked for only when they will be shown.
            mistakes_.Add(member.place, [&] { return params_.Find(member.key).error().sentence; });
            return std::nullopt;
        }
        const auto [other, first] = named_.emplace(*index, member.key);
        if (first || other->second == member.key) return *index;
        mistakes_.Add(member.place, fmt::format("'{}' and '{}' are the same parameter", EchoText(other->second),
                                                EchoText(member.key)));
        return *index;
    }
    bool Has(int row) const { return named_.contains(row); }

 private:
    static constexpr int kSeveral = -1;  ///< rows share the path

    std::optional<int> IndexOf(const std::string& key) const {
        if (key.starts_with('#')) {
            const auto index = params_.Find(key);
            return index ? std::optional(*index) : std::nullopt;
        }
        const auto known = rows_.find(key);
        return known == rows_.end() || known->second == kSeveral ? std::nullopt : std::optional(known->second);
    }

    const ParamSet& params_;
    PresetMistakes& mistakes_;
    std::unordered_map<std::string, int> rows_;
    std::map<int, std::string> named_;
};

void ReadValues(const LocatedJson& values, AnimatedParams& params, NamedRows& named, PresetMistakes& mistakes) {
    for (const LocatedJson::Member& member : values.members) {
        const auto row = named.Find(member);
        if (!row) continue;
        const auto text = ValueTextOf(member.value);
        if (!text) {
            mistakes.Add(member.value.place, fmt::format("'{}' takes a string or a number, not {}",
                                                         EchoText(member.key), member.value.KindName()));
            continue;
        }
        const auto set = params.values.SetFromText(fmt::format("#{}", *row), *text);
        if (!set) mistakes.Add(member.value.place, set.error().sentence);
        params.animation.Remove(*row);
    }
}

void ReadTracks(const LocatedJson& tracks, AnimatedParams& params, const NamedRows& still, PresetMistakes& mistakes) {
    NamedRows named(params.values, mistakes);
    ParamSet scratch = params.values;
    for (const LocatedJson::Member& member : tracks.members) {
        const auto row = named.Find(member);
        if (!row) continue;
        if (still.Has(*row)) {
            mistakes.Add(member.place,
                         fmt::format("'{}' has a value and keyframes; remove one of them", EchoText(member.key)));
        }
        auto track = ReadTrack(member, *row, scratch, mistakes);
        if (track) params.animation.Put(std::move(*track));
    }
}

void ReadPreset(const LocatedJson& preset, AnimatedParams& params, PresetMistakes& mistakes) {
    const int version = VersionOf(preset, mistakes);
    // The other content of a newer version is unknown here.
    if (version > kNewestVersion) return;
    CheckTopKeys(preset, version, mistakes);
    NamedRows named(params.values, mistakes);
    const LocatedJson* values = preset.Find("values");
    const LocatedJson* tracks = preset.Find("keyframes");
    if (values && values->kind != Kind::kObject) {
        mistakes.Add(values->place, "\"values\" is not an object of paths and values");
    } else if (values) {
        CheckTwice(*values, mistakes);
        ReadValues(*values, params, named, mistakes);
    } else if (!tracks) {
        mistakes.Add(preset.place, version == 1 ? "\"values\" is missing" : "\"values\" and \"keyframes\" are missing");
    }
    if (tracks && tracks->kind != Kind::kObject) {
        mistakes.Add(tracks->place, "\"keyframes\" is not an object of paths and lists");
    } else if (tracks && version >= 2) {
        CheckTwice(*tracks, mistakes);
        ReadTracks(*tracks, params, named, mistakes);
    }
}

}  // namespace

void PresetMistakes::Insert(TextPlace place, std::string sentence) {
    const auto after = std::upper_bound(list_.begin(), list_.end(), place,
                                        [](const TextPlace& one, const auto& other) { return one < other.first; });
    list_.emplace(after, place, std::move(sentence));
    if (list_.size() > kMostListed) list_.pop_back();
}

Failure PresetMistakes::AsFailure(const fs::path& file) const {
    const auto line = [](const auto& mistake) {
        return fmt::format("line {}, column {}: {}", mistake.first.line, mistake.first.column, mistake.second);
    };
    if (count_ == 1) {
        return {ErrorKind::kUsage,
                fmt::format("the preset '{}' has a mistake: {}", file.string(), line(list_.front()))};
    }
    std::string text = fmt::format("the preset '{}' has {} mistakes:", file.string(), count_);
    for (const auto& mistake : list_) text += "\n  " + line(mistake);
    if (count_ > list_.size()) text += fmt::format("\n  and {} more", count_ - list_.size());
    return {ErrorKind::kUsage, text};
}

void CheckTwice(const LocatedJson& object, PresetMistakes& mistakes) {
    std::unordered_set<std::string_view> seen;
    for (const LocatedJson::Member& member : object.members) {
        if (seen.insert(member.key).second) continue;
        mistakes.Add(member.place, fmt::format("the key '{}' is repeated", EchoText(member.key)));
    }
}

void CheckKeys(const LocatedJson& object, const std::vector<std::string>& known, const std::string& what,
               PresetMistakes& mistakes) {
    CheckTwice(object, mistakes);
    for (const LocatedJson::Member& member : object.members) {
        if (std::find(known.begin(), known.end(), member.key) != known.end()) continue;
        mistakes.Add(member.place, [&] {
            const auto near = Nearest(member.key, known, 1);
            return near.empty() ? fmt::format("there is no key '{}' in {}; the keys are: {}", EchoText(member.key),
                                              what, fmt::join(known, ", "))
                                : fmt::format("there is no key '{}' in {}; closest: '{}'", EchoText(member.key), what,
                                              near.front());
        });
    }
}

std::optional<std::string> ValueTextOf(const LocatedJson& value) {
    if (value.kind == Kind::kString || value.kind == Kind::kNumber) return value.text;
    if (value.kind == Kind::kBoolean) return value.boolean ? "on" : "off";
    return std::nullopt;
}

Result<Done> ApplyPreset(const fs::path& file, AnimatedParams& params) {
    const auto text = TRY(ReadText(file));
    return ApplyPresetText(text, file.string(), params);
}

Result<Done> ApplyPresetText(const std::string& text, const std::string& name, AnimatedParams& params) {
    const auto preset = ParseLocatedJson(text);
    if (!preset) return CannotRead(name, fmt::format("not valid JSON ({})", preset.error().sentence));
    PresetMistakes mistakes;
    AnimatedParams changed = params;
    if (preset->kind == Kind::kObject) {
        ReadPreset(*preset, changed, mistakes);
    } else {
        mistakes.Add(preset->place, "the file is not an object with \"version\" and \"values\"");
    }
    if (!mistakes.IsEmpty()) return mistakes.AsFailure(name);
    params = std::move(changed);
    return Done{};
}

}  // namespace umbrant::host
