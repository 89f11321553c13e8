// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// `umbrant render --watch`: draws, and draws again whenever the input, the texture or the preset has changed.

#include <functional>

#include "host/cli/exit_code.h"
#include "host/cli/render/render_options.h"
#include "host/result.h"

namespace umbrant::host {

/// What a test of the watch replaces.
struct WatchHooks {
    bool polls = false;           ///< the kernel is not asked for changes
    double pace = 1;              ///< pauses take so many times their time
    std::function<bool()> waits;  ///< called before each wait for a change; false ends the watch
};

/// Draws once and then after each change, until the process ends. Fails as Render does for the first time, and with
/// `ErrorKind::kUsage` where standard input or output is a file of the render. Later failures are printed.
Result<ExitCode> WatchRender(const RenderOptions& asked, const WatchHooks& hooks = {});

}  // namespace umbrant::host
