// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/panel_events.h"

#include <fmt/format.h>

#include <stdexcept>
#include <utility>

#include "host/drawing/new_drawing.h"

namespace umbrant::host {

namespace {

constexpr int kWidth = 300;
constexpr int kHeight = 120;

std::unique_ptr<Drawing> Made() {
    auto drawing = NewDrawing(kCanvasName, kWidth, kHeight);
    if (!drawing) throw std::runtime_error(drawing.error().sentence);
    return std::move(*drawing);
}

}  // namespace

UnseenCanvas::UnseenCanvas() : drawing_(Made()), canvas_(*drawing_, 1.0f) {}

PF_EventExtra UnseenCanvas::Event(PF_EventType type, PF_ParamIndex row, const PF_UnionableRect& frame) {
    PF_EventExtra event{};
    event.contextH = canvas_.Context();
    event.e_type = type;
    event.effect_win.index = row;
    event.effect_win.area = PF_EA_CONTROL;
    event.effect_win.current_frame = frame;
    event.effect_win.param_title_frame = {0, frame.top, frame.left, frame.bottom};
    event.effect_win.horiz_offset = frame.left;
    if (type == PF_Event_DRAW) {
        event.u.draw.update_rect = frame;
        event.u.draw.depth = 32;
    }
    return event;
}

std::vector<int> SelfDrawnRows(const EffectSession& session) {
    std::vector<int> rows;
    if (!session.WantsPanelEvents()) return rows;
    for (const ParamRow& row : session.Params().Rows()) {
        if (row.def.ui_flags & (PF_PUI_CONTROL | PF_PUI_TOPIC)) rows.push_back(row.index);
    }
    return rows;
}

void SendDrawEvents(CheckRun& run, CheckFixture& fixture) {
    for (const int row : SelfDrawnRows(fixture.Session())) {
        UnseenCanvas canvas;
        for (const PF_EventType type : {PF_Event_NEW_CONTEXT, PF_Event_DRAW, PF_Event_CLOSE_CONTEXT}) {
            PF_EventExtra event = canvas.Event(type, row, {100, 0, kWidth, kHeight});
            if (const auto sent = fixture.Session().SendEvent(&event); !sent) {
                run.Fail(fmt::format("event {} on row #{}: {}", type, row, sent.error().sentence));
            }
        }
    }
}

}  // namespace umbrant::host
