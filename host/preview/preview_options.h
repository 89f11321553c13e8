// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a preview is started with.

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/animation/preset.h"
#include "host/compositing/world.h"
#include "host/preview/time/shots.h"
#include "host/render/canvas_choice.h"
#include "host/result.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// What a file that the page saves was drawn with.
struct DrawnFile {
    AnimatedParams params;
    std::string canvas{};   ///< the text of --canvas that gives the same one
    std::string texture{};  ///< its name; empty for none
    std::string rate{};     ///< of a timeline, as --rate takes it; empty for a single image, and where it is a clip's
    int downsample = 1;
    std::optional<double> frame{};  ///< of a timeline; nothing for a single image
};

/// An effect that is set up, with its renderer chosen.
struct PreviewEffect {
    std::shared_ptr<void> owner;       ///< of the session
    EffectSession* session = nullptr;  ///< with the effect's default values
    std::string name;
    std::string drawnBy;  ///< "gl" or "cpu"
    /// Replaces an effect's failure with a more helpful one.
    std::function<Failure(const Failure&, const EffectSession&)> explain;
    /// The text of a file's recipe, empty where it is too long for one. Without it files have none.
    std::function<std::string(const DrawnFile&)> recipe{};
};

/// A preset that the page offers.
struct OfferedPreset {
    std::string name;
    std::string file;
    bool isUsers = false;
};

struct PreviewOptions {
    /// Sets the effect up for layers of this full size, on the thread that calls Preview::Run.
    std::function<Result<PreviewEffect>(int layerWidth, int layerHeight)> open;
    /// Sets the values and keyframes with which the page begins. Reads their file every time.
    std::function<Result<Done>(AnimatedParams&)> setValues;
    std::string preset{};  ///< that file; empty for none
    /// The presets that have a name, as they are now; without it none. Called from several threads.
    std::function<Result<std::vector<OfferedPreset>>()> presets{};
    ShotOptions shot{};            ///< frames of the input and the texture
    CanvasChoice canvas{};         ///< what frames cover
    double textureX = 0;           ///< the texture's left edge, in pixels of the full-size layer
    double textureY = 0;           ///< its top edge
    std::optional<Depth> depth{};  ///< of the render; without it the layer's own
    std::string input{};           ///< the layer's file; empty for none
    std::string texture{};
    int port = 0;                                     ///< 0 for a free one
    std::optional<std::chrono::milliseconds> idle{};  ///< ends when no page was connected for so long
    std::vector<std::string> renderArguments{};       ///< what else `umbrant render` needs to draw the same
};

}  // namespace umbrant::host
