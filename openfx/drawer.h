// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The effect of the process. All instances draw with the same one and give each frame its own values, so that an
// instance costs nothing: some hosts make one for every frame.

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <umbrant/effect.h>

namespace umbrant::openfx {

class Drawer {
 public:
    /// The one of the process, kept until Release and until the last instance lets go of it. Throws Error, and Refusal
    /// where the module's file is missing. [main]
    static std::shared_ptr<Drawer> Shared();
    /// Lets go of it; nothing where there is none. [main]
    static void Release() noexcept;

    explicit Drawer(const EffectOptions& options);

    const Effect& TheEffect() const { return effect_; }
    /// The default values; a copy is cheap.
    const Values& Defaults() const { return defaults_; }
    /// The panel's row of the parameter at this place of the table; -1 for one that is not the effect's.
    int RowOf(std::size_t place) const { return rows_[place]; }
    /// "the CPU renderer: OpenGL is software, llvmpipe".
    std::string RendererText() const;

    /// For each place of the table whether the effect hides it when its popups have these texts (empty: the default).
    /// [any]
    std::vector<bool> Hidden(const std::vector<std::string>& popupTexts);

    /// The values that a preset gives, for each place of the table the text that Values::Set takes; empty where the
    /// preset leaves the value, which is given in the same form, as it is. `hasKeyframes` becomes whether the preset
    /// has any. Throws Error. [any]
    std::vector<std::string> PresetTexts(const std::string& file, const Values& current, bool& hasKeyframes);

 private:
    Effect effect_;
    Values defaults_;
    std::vector<int> rows_;
    std::mutex panel_;  ///< around what sets values of the effect's own
};

}  // namespace umbrant::openfx
