// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The colour spaces of `umbrant render`: --input-space, --output-space, --working-space and --texture-space.

#include <memory>
#include <optional>
#include <string>

#include "host/cli/render/render_options.h"
#include "host/color/open_color_spaces.h"
#include "host/parameters/param_set.h"
#include "host/render/frame_layers.h"
#include "host/render/worker.h"
#include "host/video/clip_facts.h"

namespace umbrant::host {

/// The conversions of a run. Any thread.
class RenderColors {
 public:
    /// Opens the library of colours. Fails with `ErrorKind::kUsage` for a space that there is not, without
    /// --input-space, and with --depth 8; and as OpenedColorSpaces::Open does.
    static Result<std::shared_ptr<const RenderColors>> Open(const RenderOptions& options);

    /// Layers are then read as floats of the working space.
    void Connect(LayerOptions& layers) const;
    /// Frames are then written in the output space.
    void Connect(FrameJob& job) const;
    /// Converts the colours of values, given in the output space, to the working space: of all rows, or only of those
    /// that move.
    void ConvertValues(ParamSet& values, const Animation* moving = nullptr) const;
    /// What a file says about colours in the output space; nothing where the input's words remain true.
    const std::optional<ColorWords>& Words() const { return words_; }
    /// The same for a clip.
    std::optional<ColorTags> Tags() const;

 private:
    std::shared_ptr<const ColorConversion> fromInput_;
    std::shared_ptr<const ColorConversion> fromTexture_;
    std::shared_ptr<const ColorConversion> toOutput_;
    std::shared_ptr<const ColorConversion> fromValues_;
    std::optional<ColorWords> words_;
};

/// The options with their conversions, if they ask for any. Fails as RenderColors::Open does.
Result<RenderOptions> WithColors(RenderOptions options);

}  // namespace umbrant::host
