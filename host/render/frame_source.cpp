// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/frame_source.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <system_error>

namespace umbrant::host {

namespace {

bool IsFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

}  // namespace

Result<FrameSource> FrameSource::Find(const std::string& path, int offset, std::optional<int> clipFrames) {
    FrameSource source{path, {}, {}, offset, clipFrames};
    if (clipFrames) {
        source.onDisk.resize(static_cast<std::size_t>(*clipFrames));
        std::iota(source.onDisk.begin(), source.onDisk.end(), 0);
        return source;
    }
    if (path.empty() || IsFile(path)) return source;
    auto pattern = TRY(FramePattern::Find(path));
    source.pattern = pattern;
    if (source.pattern) source.onDisk = source.pattern->FramesOnDisk();
    if (source.pattern && source.pattern->IsWeak() && source.onDisk.empty()) source.pattern.reset();
    return source;
}

FrameFile FrameSource::FileAt(int frame, MissingFrames missing) const {
    if (!HasFrames()) return {path, {}, {}, true, frame};
    const int wanted = frame + offset;
    const auto after = std::lower_bound(onDisk.begin(), onDisk.end(), wanted);
    const bool exists = after != onDisk.end() && *after == wanted;
    const bool isHeld = !exists && missing == MissingFrames::kHold && !onDisk.empty();
    const int shown = !isHeld ? wanted : after != onDisk.begin() ? *std::prev(after) : *after;
    FrameFile found{path, {}, {}, exists || isHeld, wanted};
    if (isHeld) found.held = shown;
    if (pattern) found.path = pattern->PathOf(shown);
    if (clipFrames) found.clipFrame = shown;
    return found;
}

std::string FrameSource::ShownAt(int frame) const {
    return FileAt(frame, MissingFrames::kHold).path;
}

std::optional<int> FrameSource::ClipFrameShownAt(int frame) const {
    return FileAt(frame, MissingFrames::kHold).clipFrame;
}

bool FrameSource::Has(int frame) const {
    return !HasFrames() || std::binary_search(onDisk.begin(), onDisk.end(), frame + offset);
}

}  // namespace umbrant::host
