// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where the frames of an input or a texture come from: one image for all, a file for each, or a clip.

#include <optional>
#include <string>
#include <vector>

#include "host/render/plan/frame_pattern.h"
#include "host/result.h"

namespace umbrant::host {

/// What to do about a frame whose file is not there.
enum class MissingFrames {
    kError,  ///< nothing is drawn
    kHold,   ///< the nearest frame before it is shown, else the nearest after it
    kSkip,   ///< it is left out
};

/// What shows at a frame.
struct FrameFile {
    std::string path;
    std::optional<int> clipFrame;  ///< of a clip: which of its frames
    std::optional<int> held;       ///< the source's frame that replaces a missing one
    bool exists = true;            ///< or is replaced
    int wanted = 0;                ///< the source's frame
};

/// One image for all frames, or an image for each.
struct FrameSource {
    std::string path;  ///< empty for none
    std::optional<FramePattern> pattern{};
    std::vector<int> onDisk{};        ///< of the pattern, rising
    int offset = 0;                   ///< frame f is the pattern's frame f + offset
    std::optional<int> clipFrames{};  ///< how many frames the clip has that it is; `onDisk` has their numbers

    /// The source with this path. An existing file of the very name is that file, and a weak pattern without files is a
    /// name. Fails with `ErrorKind::kUsage` on a wrong pattern.
    static Result<FrameSource> Find(const std::string& path, int offset, std::optional<int> clipFrames = {});

    bool HasFrames() const { return pattern || clipFrames; }

    FrameFile FileAt(int frame, MissingFrames missing) const;
    /// The file that shows at a frame: its own, else that of the nearest before it, else the first.
    std::string ShownAt(int frame) const;
    /// The same of a clip: its frame; nothing of images.
    std::optional<int> ClipFrameShownAt(int frame) const;
    /// Whether a frame has an image of its own: always where there is one image for all, or none.
    bool Has(int frame) const;
};

}  // namespace umbrant::host
