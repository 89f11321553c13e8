// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The whole panel as a picture, with the areas that the effect draws itself drawn by the effect.

#include <string>
#include <vector>

#include "host/compositing/world.h"
#include "host/panel/panel_layout.h"
#include "host/panel/panel_theme.h"
#include "host/result.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

struct PanelPictureOptions {
    int width = PanelMetrics::kUsualWidth;  ///< panel pixels
    int scale = 1;                          ///< pixels of the picture per panel pixel
    const PanelTheme* theme = &kDarkTheme;
    std::string effectName = {};
};

/// The panel and what is on it.
struct PanelPicture {
    World pixels;  ///< 8 bits, opaque
    std::vector<PanelItem> items;
};

/// The visible rows as they are now.
std::vector<PanelItem> PanelItems(const EffectSession& session, int width);

/// Draws the panel in the state in which it is: the effect must have been asked to update it. Rows that the effect
/// draws get a new context, a draw event and the context's end. Fails with the effect's message when it cannot draw,
/// and with `ErrorKind::kInternal` when there is no memory.
Result<PanelPicture> DrawPanel(EffectSession& session, const PanelPictureOptions& options);

}  // namespace umbrant::host
