// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_picture.h"

#include <cairo.h>

#include <cmath>

#include "host/compositing/memory_shortage.h"
#include "host/panel/cairo_picture.h"
#include "host/panel/panel_painter.h"
#include "host/session/remote_session.h"
#include "host/suites/drawbot_canvas.h"

namespace {

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
Result<Done> DrawOwnRow(EffectSession& session, const PanelItem& item, cairo_t* cairo,
                        const PanelPictureOptions& options) {
    cairo_save(cairo);
    cairo_rectangle(cairo, 0, item.top, options.width, item.height);
    cairo_clip(cairo);
    Result<Done> outcome = Done{};
    {
        DrawbotCanvas canvas(cairo, static_cast<float>(options.scale));
        for (const PF_EventType type : {PF_Event_NEW_CONTEXT, PF_Event_DRAW, PF_Event_CLOSE_CONTEXT}) {
            PF_EventExtra event = EventFor(item, options.width, &canvas);
            event.e_type = type;
            auto sent = session.SendEvent(&event);
            if (!sent && outcome) outcome = sent;
        }
    }
    cairo_restore(cairo);
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
        if (!pixels) return pixels.Error();
        picture.pixels = std::move(*pixels);
        return picture;
    }
    const double height = PanelHeight(picture.items);
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, options.width * options.scale,
                                                          static_cast<int>(std::ceil(height)) * options.scale));
    const CairoPen cairo(cairo_create(surface.get()));
    const Failure noMemory = NotEnoughMemory("a picture of the panel", std::int64_t{options.width} * options.scale,
                                             static_cast<std::int64_t>(std::ceil(height)) * options.scale, Depth::k8);
    if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS) return noMemory;
    cairo_scale(cairo.get(), options.scale, options.scale);

    PanelPainter painter(cairo.get(), *options.theme, options.width);
    painter.DrawHeader(options.effectName, std::ceil(height));
    for (const PanelItem& item : picture.items) {
        painter.DrawRow(item);
        if (item.control != PanelControl::kOwn || !session.WantsPanelEvents()) continue;
        if (auto drawn = DrawOwnRow(session, item, cairo.get(), options); !drawn) return drawn.Error();
    }
    picture.pixels = WorldOf(surface.get());
    if (picture.pixels.IsNull()) return noMemory;
    return picture;
}
