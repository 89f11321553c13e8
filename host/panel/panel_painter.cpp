// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_painter.h"

#include <algorithm>
#include <cmath>

#include "host/suites/drawbot/text.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTypeSize = 11.5;
constexpr double kSmallType = 9.5;
constexpr double kFaint = 0.38;  ///< what is left of a disabled row
constexpr char kBoldFamily[] = "Inter Semi Bold";

using Metrics = PanelMetrics;

}  // namespace

PanelPainter::PanelPainter(Drawing& drawing, const PanelTheme& theme, int width)
    : drawing_(drawing),
      theme_(theme),
      width_(width),
      controlLeft_(Metrics::ControlLeft(width)),
      right_(width - Metrics::kMargin) {
    drawing_.SetUnhintedText();
    drawing_.SetRoundCaps();
    drawing_.SetRoundJoins();
}

void PanelPainter::SetColor(const PanelColor& color, double alpha) {
    drawing_.SetColor(color.red, color.green, color.blue, alpha * strength_);
}

void PanelPainter::RoundedRect(double left, double top, double width, double height, double radius) {
    drawing_.NewPath();
    drawing_.AddArc(left + width - radius, top + radius, radius, -kPi / 2, 0);
    drawing_.AddArc(left + width - radius, top + height - radius, radius, 0, kPi / 2);
    drawing_.AddArc(left + radius, top + height - radius, radius, kPi / 2, kPi);
    drawing_.AddArc(left + radius, top + radius, radius, kPi, 3 * kPi / 2);
    drawing_.Close();
}

void PanelPainter::SetType(double size, Weight weight) {
    drawing_.SetFont(weight == Weight::kBold ? kBoldFamily : kPanelTypeface, size);
}

double PanelPainter::DrawText(const std::string& text, double left, double middle, double room) {
    const std::string fitted = FitText(drawing_, text, room, kDRAWBOT_TextTruncation_EndEllipsis);
    drawing_.DrawText(fitted, left, middle + (drawing_.FontAscent() - drawing_.FontDescent()) / 2 - 0.3);
    return drawing_.TextWidth(fitted);
}

void PanelPainter::DrawHeader(const std::string& effectName, double panelHeight) {
    strength_ = 1;
    SetColor(theme_.ground);
    drawing_.AddRect(0, 0, width_, panelHeight);
    drawing_.Fill();
    SetColor(theme_.header);
    drawing_.AddRect(0, 0, width_, Metrics::kHeader);
    drawing_.Fill();

    const double middle = Metrics::kHeader / 2;
    DrawTwirl(Metrics::kTwirlLeft, middle, true);
    SetColor(theme_.value);
    RoundedRect(Metrics::kNameLeft, middle - 6.5, 18, 13, 3);
    drawing_.Fill();
    SetType(9, Weight::kBold);
    SetColor(theme_.ground);
    DrawText("fx", Metrics::kNameLeft + 4.6, middle, 18);

    SetType(kTypeSize + 0.5, Weight::kBold);
    SetColor(theme_.text);
    const double nameLeft = Metrics::kNameLeft + 25;
    DrawText(effectName, nameLeft, middle, controlLeft_ - nameLeft - 6);
    SetType(kTypeSize);
    SetColor(theme_.value);
    DrawText("Reset", controlLeft_, middle, 60);
    DrawText("About\u2026", right_ - drawing_.TextWidth("About\u2026"), middle, 60);
}

void PanelPainter::DrawRow(const PanelItem& item) {
    strength_ = 1;
    if (item.control == PanelControl::kSpacer) return;
    if (item.control == PanelControl::kGroup && item.depth == 0) {
        SetColor(theme_.strip);
        drawing_.AddRect(0, item.top, width_, item.height);
        drawing_.Fill();
        SetColor(theme_.line);
        drawing_.AddRect(0, item.top, width_, 1);
        drawing_.Fill();
    }
    strength_ = item.disabled ? kFaint : 1;
    DrawName(item);
    DrawControl(item);
}

void PanelPainter::DrawName(const PanelItem& item) {
    const double middle = item.top + Metrics::kRow / 2;
    const double indent = item.depth * Metrics::kIndent;
    if (item.twirl) DrawTwirl(Metrics::kTwirlLeft + indent, middle, item.open);
    double left = Metrics::kNameLeft + indent;
    if (item.clock) DrawClock(left, middle);
    // Names begin at one line, whether or not there is a stopwatch before them.
    if (item.control != PanelControl::kGroup) left += Metrics::kClock;
    const bool group = item.control == PanelControl::kGroup || item.control == PanelControl::kHeading;
    SetType(kTypeSize, group && item.depth == 0 ? Weight::kBold : Weight::kRegular);
    SetColor(item.control == PanelControl::kHeading ? theme_.dim : theme_.text);
    DrawText(item.name, left, middle, (group ? right_ : controlLeft_ - 6) - left);
}

void PanelPainter::DrawControl(const PanelItem& item) {
    const double middle = item.top + Metrics::kRow / 2;
    switch (item.control) {
        case PanelControl::kSlider:
            DrawNumber(item, controlLeft_, middle);
            if (item.open) DrawTrack(item);
            break;
        case PanelControl::kAngle:
            DrawNumber(item, controlLeft_, middle);
            if (item.open) DrawDial(item);
            break;
        case PanelControl::kPopup:
        case PanelControl::kLayer:
            DrawPopup(item, middle);
            break;
        case PanelControl::kPoint:
            DrawPoint(item, middle);
            break;
        case PanelControl::kColor:
            DrawSwatch(item, middle);
            break;
        case PanelControl::kButton:
            DrawButton(item, middle);
            break;
        case PanelControl::kCheckBox:
            DrawCheckBox(item, middle);
            break;
        default:
            break;
    }
}

void PanelPainter::DrawTwirl(double left, double middle, bool open) {
    SetColor(theme_.dim);
    drawing_.SetLineWidth(1.4);
    const double x = left + 4;
    if (open) {
        drawing_.MoveTo(x - 3.2, middle - 1.7);
        drawing_.LineTo(x, middle + 1.7);
        drawing_.LineTo(x + 3.2, middle - 1.7);
    } else {
        drawing_.MoveTo(x - 1.5, middle - 3.2);
        drawing_.LineTo(x + 1.9, middle);
        drawing_.LineTo(x - 1.5, middle + 3.2);
    }
    drawing_.Stroke();
}

void PanelPainter::DrawClock(double left, double middle) {
    SetColor(theme_.dim, 0.85);
    drawing_.SetLineWidth(1);
    const double x = left + 4.5;
    const double y = middle + 0.6;
    drawing_.NewPath();
    drawing_.AddArc(x, y, 3.9, 0, 2 * kPi);
    drawing_.Stroke();
    drawing_.MoveTo(x, y);
    drawing_.LineTo(x, y - 2.2);
    drawing_.MoveTo(x - 1.3, y - 5.7);
    drawing_.LineTo(x + 1.3, y - 5.7);
    drawing_.Stroke();
}

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
    drawing_.AddArc(std::clamp(knob, left + 3.6, right_ - 3.6), y, 4.6, 0, 2 * kPi);
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
    drawing_.AddArc(x, y, kRadius, 0, 2 * kPi);
    drawing_.FillAndKeep();
    SetColor(theme_.edge);
    drawing_.SetLineWidth(1.2);
    drawing_.Stroke();
    for (int tick = 0; tick < 8; ++tick) {
        const double turn = tick * kPi / 4;
        const double inner = kRadius - (tick % 2 ? 3.5 : 5);
        drawing_.MoveTo(x + inner * std::sin(turn), y - inner * std::cos(turn));
        drawing_.LineTo(x + (kRadius - 2) * std::sin(turn), y - (kRadius - 2) * std::cos(turn));
        drawing_.Stroke();
    }
    const double turn = item.degrees * kPi / 180;
    SetColor(theme_.value);
    drawing_.SetLineWidth(1.8);
    drawing_.MoveTo(x, y);
    drawing_.LineTo(x + (kRadius - 1) * std::sin(turn), y - (kRadius - 1) * std::cos(turn));
    drawing_.Stroke();
    drawing_.AddArc(x, y, 2.2, 0, 2 * kPi);
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
    drawing_.AddArc(x, middle, 4, 0, 2 * kPi);
    drawing_.Stroke();
    for (int side = 0; side < 4; ++side) {
        const double dx = std::sin(side * kPi / 2), dy = std::cos(side * kPi / 2);
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
