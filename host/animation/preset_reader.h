// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the parts of a preset are read with. Inside host/animation only.

#include <filesystem>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/animation/animation.h"
#include "host/animation/located_json.h"
#include "host/parameters/echo_text.h"

namespace umbrant::host {

/// What is wrong with a preset: the first mistakes of its text, and how many there are.
class PresetMistakes {
 public:
    /// Most mistakes that a failure lists.
    static constexpr std::size_t kMostListed = 20;

    /// Counts a mistake. `sentence` is a text, or a function that makes it, which is called only when it will be
    /// listed.
    template <typename Sentence>
    void Add(TextPlace place, Sentence&& sentence) {
        ++count_;
        if (list_.size() == kMostListed && !(place < list_.back().first)) return;
        if constexpr (std::is_invocable_v<Sentence>) {
            Insert(place, sentence());
        } else {
            Insert(place, std::forward<Sentence>(sentence));
        }
    }
    bool IsEmpty() const { return count_ == 0; }
    /// The first of them in the order of the text, and the number of the others, as one failure with
    /// `ErrorKind::kUsage`. There is at least one.
    Failure AsFailure(const std::filesystem::path& file) const;

 private:
    void Insert(TextPlace place, std::string sentence);

    std::vector<std::pair<TextPlace, std::string>> list_;  ///< in the order of the text
    std::size_t count_ = 0;
};

/// Notes keys that come twice.
void CheckTwice(const LocatedJson& object, PresetMistakes& mistakes);

/// Notes keys that come twice, and of those that `what` ("a preset") does not have.
void CheckKeys(const LocatedJson& object, const std::vector<std::string>& known, const std::string& what,
               PresetMistakes& mistakes);

/// A value in the form that `--set` takes; nothing for one that has no such form.
std::optional<std::string> ValueTextOf(const LocatedJson& value);

/// The track that a member of "keyframes" describes. Mistakes are added to the list; a track is returned only when
/// there are none. `scratch` has the effect's rows, whose values it changes.
std::optional<RowTrack> ReadTrack(const LocatedJson::Member& member, int row, ParamSet& scratch,
                                  PresetMistakes& mistakes);

}  // namespace umbrant::host
