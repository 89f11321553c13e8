// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Events for the rows that an effect draws itself, on a canvas that nobody sees.

#include <cairo.h>

#include <memory>
#include <vector>

#include "host/suites/drawbot_canvas.h"
#include "host/validate/stage.h"

/// Something to draw on, as long as an event goes on.
class UnseenCanvas {
 public:
    UnseenCanvas();
    /// An event on a row, its own rectangle given.
    PF_EventExtra Event(PF_EventType type, PF_ParamIndex row, const PF_UnionableRect& frame);

 private:
    struct End {
        void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
    };
    std::unique_ptr<cairo_t, End> cairo_;
    DrawbotCanvas canvas_;
};

/// The rows that the effect draws itself; empty when it asked for no events.
std::vector<int> SelfDrawnRows(const EffectSession& session);

/// One window's life for every such row: opened, drawn, closed. Errors fail the trial.
void SendDrawEvents(Trial& trial, Stage& stage);
