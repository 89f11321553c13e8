// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the parts of a preset are read with. Inside host/animation only.

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/animation/animation.h"
#include "host/animation/located_json.h"

/// Everything that is wrong with a preset.
class PresetMistakes {
 public:
    void Add(TextPlace place, std::string sentence) { list_.emplace_back(place, std::move(sentence)); }
    bool IsEmpty() const { return list_.empty(); }
    /// All of them in the order of the text, as one failure with `ExitCode::kUsage`. There is at least one.
    Failure Told(const std::filesystem::path& file);

 private:
    std::vector<std::pair<TextPlace, std::string>> list_;
};

/// Tells of keys that come twice.
void CheckTwice(const LocatedJson& object, PresetMistakes& mistakes);

/// Tells of keys that come twice, and of those that `what` ("a preset") does not have.
void CheckKeys(const LocatedJson& object, const std::vector<std::string>& known, const std::string& what,
               PresetMistakes& mistakes);

/// A value in the form that `--set` takes; nothing for one that has no such form.
std::optional<std::string> ValueTextOf(const LocatedJson& value);

/// The track that a member of "keyframes" describes. What is wrong with it is told; a track comes back only when
/// nothing is.
std::optional<RowTrack> ReadTrack(const LocatedJson::Member& member, int row, const ParamSet& params,
                                  PresetMistakes& mistakes);
