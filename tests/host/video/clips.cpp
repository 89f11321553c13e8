// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What ffprobe says about a clip: apart from the rest of Clips, which most tests use without it.

#include "tests/host/video/clips.h"

#include "tests/support/json.h"

namespace umbrant::host {

nlohmann::json Clips::Probe(const std::string& clip) const {
    return ParseJson(
        Run({"ffprobe", "-v", "error", "-of", "json", "-show_streams", "-show_format", "file:" + clip}).output);
}

nlohmann::json Clips::Pictures(const std::string& clip) const {
    const nlohmann::json probed = Probe(clip);
    for (const auto& stream : probed["streams"]) {
        if (stream["codec_type"] == "video") return stream;
    }
    return {};
}

}  // namespace umbrant::host
