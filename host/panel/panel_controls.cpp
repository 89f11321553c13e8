// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The controls of the panel's rows.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/panel/panel_painter.h"
#include "host/suites/drawbot/text.h"

namespace umbrant::host {

namespace {

constexpr double kSmallType = 9.5;

using Metrics = PanelMetrics;

}  // namespace

void PanelPainter::DrawNumber(const PanelItem& item, double left, double middle) {
    SetType(kTypeSize);
    SetColor(theme_.value);
    const double width = DrawText(item.value, left, middle, right_ - left);
    // A dotted line shows that the number can be dragged.
    SetColor(theme_.value, 0.55);
    drawing_.SetLineWidth(1);
    drawing_.Save();
    drawing_.SetDashes(0.01, 2.6);
    drawing_.MoveTo(left + 0.5, middle + 7);
    drawing_.LineTo(left + width, middle + 7);
    drawing_.Stroke();
    drawing_.Restore();
}

void PanelPainter::DrawTrack(const PanelItem& item) {
    const double top = item.top + Metrics::kRow;
    const double y = top + 5;
    const double left = controlLeft_ + 1;
    const double knob = left + item.position * (right_ - left);
    drawing_.SetLineWidth(2);
    SetColor(theme_.track);
    drawing_.MoveTo(left, y);
    drawing_.LineTo(right_, y);
    drawing_.Stroke();
    SetColor(theme_.value, 0.8);
    if (knob > left + 0.5) {
        drawing_.MoveTo(left, y);
        drawing_.LineTo(knob, y);
        drawing_.Stroke();
    }
    SetColor(theme_.knob);
    drawing_.NewPath();
    drawing_.AddArc(std::clamp(knob, left + 3.6, right_ - 3.6), y, 4.6, 0, 2 * std::numbers::pi);
    drawing_.Fill();
    SetType(kSmallType);
    SetColor(theme_.dim);
    DrawText(item.low, left, y + 11.5, 80);
    DrawText(item.high, right_ - drawing_.TextWidth(item.high), y + 11.5, 80);
}

void PanelPainter::DrawDial(const PanelItem& item) {
    constexpr double kRadius = 24;
    const double x = controlLeft_ + kRadius + 1;
    const double y = item.top + Metrics::kRow + Metrics::kDial / 2 - 2;
    SetColor(theme_.control);
    drawing_.NewPath();
    drawing_.AddArc(x, y, kRadius, 0, 2 * std::numbers::pi);
    drawing_.FillAndKeep();
    SetColor(theme_.edge);
    drawing_.SetLineWidth(1.2);
    drawing_.Stroke();
    for (int tick = 0; tick < 8; ++tick) {
        const double turn = tick * std::numbers::pi / 4;
        const double inner = kRadius - (tick % 2 ? 3.5 : 5);
        drawing_.MoveTo(x + inner * std::sin(turn), y - inner * std::cos(turn));
        drawing_.LineTo(x + (kRadius - 2) * std::sin(turn), y - (kRadius - 2) * std::cos(turn));
        drawing_.Stroke();
    }
    const double turn = item.degrees * std::numbers::pi / 180;
    SetColor(theme_.value);
    drawing_.SetLineWidth(1.8);
    drawing_.MoveTo(x, y);
    drawing_.LineTo(x + (kRadius - 1) * std::sin(turn), y - (kRadius - 1) * std::cos(turn));
    drawing_.Stroke();
    drawing_.AddArc(x, y, 2.2, 0, 2 * std::numbers::pi);
    drawing_.Fill();
}

void PanelPainter::DrawPopup(const PanelItem& item, double middle) {
    const double width = right_ - controlLeft_;
    RoundedRect(controlLeft_ + 0.5, middle - 8.5, width - 1, 17, 3);
    SetColor(theme_.control);
    drawing_.FillAndKeep();
    SetColor(theme_.edge);
    drawing_.SetLineWidth(1);
    drawing_.Stroke();
    SetType(kTypeSize);
    SetColor(theme_.text);
    DrawText(item.value, controlLeft_ + 7, middle, width - 27);
    SetColor(theme_.dim);
    drawing_.SetLineWidth(1.4);
    drawing_.MoveTo(right_ - 13, middle - 1.6);
    drawing_.LineTo(right_ - 9.8, middle + 1.6);
    drawing_.LineTo(right_ - 6.6, middle - 1.6);
    drawing_.Stroke();
}

void PanelPainter::DrawButton(const PanelItem& item, double middle) {
    SetType(kTypeSize);
    const double width = std::min(right_ - controlLeft_, std::max(104.0, drawing_.TextWidth(item.value) + 28));
    RoundedRect(controlLeft_ + 0.5, middle - 8.5, width - 1, 17, 8.5);
    SetColor(theme_.header);
    drawing_.FillAndKeep();
    SetColor(theme_.edge);
    drawing_.SetLineWidth(1);
    drawing_.Stroke();
    SetColor(theme_.text);
    const double text = std::min(drawing_.TextWidth(item.value), width - 12);
    DrawText(item.value, controlLeft_ + (width - text) / 2, middle, width - 12);
}

void PanelPainter::DrawPoint(const PanelItem& item, double middle) {
    SetColor(theme_.dim);
    drawing_.SetLineWidth(1.2);
    const double x = controlLeft_ + 7;
    drawing_.NewPath();
    drawing_.AddArc(x, middle, 4, 0, 2 * std::numbers::pi);
    drawing_.Stroke();
    for (int side = 0; side < 4; ++side) {
        const double dx = std::sin(side * std::numbers::pi / 2), dy = std::cos(side * std::numbers::pi / 2);
        drawing_.MoveTo(x + 2.2 * dx, middle + 2.2 * dy);
        drawing_.LineTo(x + 6.6 * dx, middle + 6.6 * dy);
        drawing_.Stroke();
    }
    DrawNumber(item, controlLeft_ + 20, middle);
}

void PanelPainter::DrawSwatch(const PanelItem& item, double middle) {
    RoundedRect(controlLeft_ + 0.5, middle - 7.5, 33, 15, 2.5);
    SetColor({item.color.red / 255.0, item.color.green / 255.0, item.color.blue / 255.0});
    drawing_.FillAndKeep();
    SetColor(theme_.edge);
    drawing_.SetLineWidth(1);
    drawing_.Stroke();
    // The dropper next to it.
    SetColor(theme_.dim);
    const double x = controlLeft_ + 44;
    drawing_.SetLineWidth(1.3);
    drawing_.MoveTo(x, middle + 5);
    drawing_.LineTo(x + 5.5, middle - 0.5);
    drawing_.Stroke();
    drawing_.SetLineWidth(3.2);
    drawing_.MoveTo(x + 7, middle - 2);
    drawing_.LineTo(x + 8.6, middle - 3.6);
    drawing_.Stroke();
    drawing_.SetLineWidth(1.3);
    drawing_.MoveTo(x + 3.6, middle - 2.6);
    drawing_.LineTo(x + 7.6, middle + 1.4);
    drawing_.Stroke();
}

void PanelPainter::DrawCheckBox(const PanelItem& item, double middle) {
    RoundedRect(controlLeft_ + 0.5, middle - 6.5, 13, 13, 2.5);
    SetColor(item.checked ? theme_.value : theme_.control);
    drawing_.FillAndKeep();
    SetColor(theme_.edge);
    drawing_.SetLineWidth(1);
    drawing_.Stroke();
    if (item.checked) {
        SetColor(theme_.ground);
        drawing_.SetLineWidth(1.8);
        drawing_.MoveTo(controlLeft_ + 3.6, middle);
        drawing_.LineTo(controlLeft_ + 6.2, middle + 2.8);
        drawing_.LineTo(controlLeft_ + 10.6, middle - 2.8);
        drawing_.Stroke();
    }
    SetType(kTypeSize);
    SetColor(theme_.text);
    DrawText(item.value, controlLeft_ + 20, middle, right_ - controlLeft_ - 20);
}

}  // namespace umbrant::host
