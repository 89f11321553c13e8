// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_picture.h"

#include <cmath>

#include "host/drawing/new_drawing.h"
#include "host/panel/panel_painter.h"
#include "host/session/remote_session.h"
#include "host/suites/drawbot/canvas.h"

namespace umbrant::host {

namespace {

constexpr char kPanel[] = "an image of the panel";

PF_EventExtra EventFor(const PanelItem& item, int width, DrawbotCanvas* canvas) {
    PF_EventExtra event{};
    event.contextH = canvas->Context();
    event.effect_win.index = item.index;
    event.effect_win.area = PF_EA_CONTROL;
    event.effect_win.current_frame = item.frame;
    event.effect_win.param_title_frame = {0, item.frame.top, item.frame.left, item.frame.bottom};
    event.effect_win.horiz_offset = item.frame.left;
    event.u.draw.update_rect = {0, static_cast<A_long>(item.top), width, static_cast<A_long>(item.top + item.height)};
    event.u.draw.depth = 32;
    return event;
}

/// Lets the effect draw its row. It may use the row's whole width, as in a panel without columns.
Result<Done> DrawOwnRow(EffectSession& session, const PanelItem& item, Drawing& drawing,
                        const PanelPictureOptions& options) {
    drawing.Save();
    drawing.ClipTo(0, item.top, options.width, item.height);
    Result<Done> outcome = Done{};
    {
        DrawbotCanvas canvas(drawing, static_cast<float>(options.scale));
        for (const PF_EventType type : {PF_Event_NEW_CONTEXT, PF_Event_DRAW, PF_Event_CLOSE_CONTEXT}) {
            PF_EventExtra event = EventFor(item, options.width, &canvas);
            event.e_type = type;
            auto sent = session.SendEvent(&event);
            if (!sent && outcome) outcome = sent;
        }
    }
    drawing.Restore();
    return outcome;
}

}  // namespace

std::vector<PanelItem> PanelItems(const EffectSession& session, int width) {
    return LayOutPanel(session.Params(), session.Panel().Rows(), session.PanelGeometry(), width);
}

Result<PanelPicture> DrawPanel(EffectSession& session, const PanelPictureOptions& options) {
    PanelPicture picture;
    picture.items = PanelItems(session, options.width);
    if (RemoteSession* remote = session.Remote()) {
        auto pixels =
            remote->DrawPanel({options.width, options.scale, options.theme == &kLightTheme, options.effectName});
        if (!pixels) return pixels.error();
        picture.pixels = std::move(*pixels);
        return picture;
    }
    const int height = static_cast<int>(std::ceil(PanelHeight(picture.items)));
    const auto made = TRY(NewDrawing(kPanel, options.width * options.scale, height * options.scale));
    Drawing& drawing = *made;
    const double scale = options.scale;
    drawing.SetMatrix({.xx = scale, .yy = scale});

    PanelPainter painter(drawing, *options.theme, options.width);
    painter.DrawHeader(options.effectName, height);
    for (const PanelItem& item : picture.items) {
        painter.DrawRow(item);
        if (item.control != PanelControl::kOwn || !session.WantsPanelEvents()) continue;
        TRY(DrawOwnRow(session, item, drawing, options));
    }
    auto pixels = TRY(WorldOf(kPanel, drawing));
    picture.pixels = std::move(pixels);
    return picture;
}

}  // namespace umbrant::host
