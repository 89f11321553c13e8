// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Events for the rows that an effect draws itself, on a canvas that nobody sees.

#include <memory>
#include <vector>

#include "host/drawing/drawing.h"
#include "host/suites/drawbot/canvas.h"
#include "host/validate/checks/check_fixture.h"

namespace umbrant::host {

/// What canvases are called in messages.
inline constexpr char kCanvasName[] = "the canvas of a draw event";
/// Checks of lower levels send no draw events.
inline constexpr int kFirstDrawingLevel = 3;

/// Something to draw on, as long as an event goes on.
class UnseenCanvas {
 public:
    /// Throws std::runtime_error when no drawing can be made.
    UnseenCanvas();
    /// An event on a row, its own rectangle given.
    PF_EventExtra Event(PF_EventType type, PF_ParamIndex row, const PF_UnionableRect& frame);

 private:
    std::unique_ptr<Drawing> drawing_;
    DrawbotCanvas canvas_;
};

/// The rows that the effect draws itself; empty when it asked for no events.
std::vector<int> SelfDrawnRows(const EffectSession& session);

/// One window's life for every such row: opened, drawn, closed. Errors fail the run.
void SendDrawEvents(CheckRun& run, CheckFixture& fixture);

}  // namespace umbrant::host
