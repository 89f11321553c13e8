// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_painter.h"

#include <algorithm>
#include <cmath>

#include "host/suites/drawbot_text.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTypeSize = 11.5;
constexpr double kSmallType = 9.5;
constexpr double kFaint = 0.38;  ///< what is left of a disabled row
constexpr char kBoldFamily[] = "Inter Semi Bold";

using Metrics = PanelMetrics;

}  // namespace

PanelPainter::PanelPainter(cairo_t* cairo, const PanelTheme& theme, int width)
    : cairo_(cairo),
      theme_(theme),
      width_(width),
      controlLeft_(Metrics::ControlLeft(width)),
      right_(width - Metrics::kMargin) {
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(cairo_, options);
    cairo_font_options_destroy(options);
    cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
}

void PanelPainter::SetColor(const PanelColor& color, double alpha) {
    cairo_set_source_rgba(cairo_, color.red, color.green, color.blue, alpha * strength_);
}

void PanelPainter::RoundedRect(double left, double top, double width, double height, double radius) {
    cairo_new_path(cairo_);
    cairo_arc(cairo_, left + width - radius, top + radius, radius, -kPi / 2, 0);
    cairo_arc(cairo_, left + width - radius, top + height - radius, radius, 0, kPi / 2);
    cairo_arc(cairo_, left + radius, top + height - radius, radius, kPi / 2, kPi);
    cairo_arc(cairo_, left + radius, top + radius, radius, kPi, 3 * kPi / 2);
    cairo_close_path(cairo_);
}

void PanelPainter::SetType(double size, Weight weight) {
    cairo_select_font_face(cairo_, weight == Weight::kBold ? kBoldFamily : kPanelTypeface, CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo_, size);
}

double PanelPainter::DrawText(const std::string& text, double left, double middle, double room) {
    cairo_font_extents_t font;
    cairo_font_extents(cairo_, &font);
    const std::string fitted = FitText(cairo_, text, room, kDRAWBOT_TextTruncation_EndEllipsis);
    cairo_move_to(cairo_, left, middle + (font.ascent - font.descent) / 2 - 0.3);
    cairo_show_text(cairo_, fitted.c_str());
    cairo_new_path(cairo_);
    return TextWidth(cairo_, fitted);
}

void PanelPainter::DrawHeader(const std::string& effectName, double panelHeight) {
    strength_ = 1;
    SetColor(theme_.ground);
    cairo_rectangle(cairo_, 0, 0, width_, panelHeight);
    cairo_fill(cairo_);
    SetColor(theme_.header);
    cairo_rectangle(cairo_, 0, 0, width_, Metrics::kHeader);
    cairo_fill(cairo_);

    const double middle = Metrics::kHeader / 2;
    DrawTwirl(Metrics::kTwirlLeft, middle, true);
    SetColor(theme_.value);
    RoundedRect(Metrics::kNameLeft, middle - 6.5, 18, 13, 3);
    cairo_fill(cairo_);
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
    DrawText("About\u2026", right_ - TextWidth(cairo_, "About\u2026"), middle, 60);
}

void PanelPainter::DrawRow(const PanelItem& item) {
    strength_ = 1;
    if (item.control == PanelControl::kSpacer) return;
    if (item.control == PanelControl::kGroup && item.depth == 0) {
        SetColor(theme_.strip);
        cairo_rectangle(cairo_, 0, item.top, width_, item.height);
        cairo_fill(cairo_);
        SetColor(theme_.line);
        cairo_rectangle(cairo_, 0, item.top, width_, 1);
        cairo_fill(cairo_);
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
    cairo_set_line_width(cairo_, 1.4);
    const double x = left + 4;
    if (open) {
        cairo_move_to(cairo_, x - 3.2, middle - 1.7);
        cairo_line_to(cairo_, x, middle + 1.7);
        cairo_line_to(cairo_, x + 3.2, middle - 1.7);
    } else {
        cairo_move_to(cairo_, x - 1.5, middle - 3.2);
        cairo_line_to(cairo_, x + 1.9, middle);
        cairo_line_to(cairo_, x - 1.5, middle + 3.2);
    }
    cairo_stroke(cairo_);
}

void PanelPainter::DrawClock(double left, double middle) {
    SetColor(theme_.dim, 0.85);
    cairo_set_line_width(cairo_, 1);
    const double x = left + 4.5;
    const double y = middle + 0.6;
    cairo_new_path(cairo_);
    cairo_arc(cairo_, x, y, 3.9, 0, 2 * kPi);
    cairo_stroke(cairo_);
    cairo_move_to(cairo_, x, y);
    cairo_line_to(cairo_, x, y - 2.2);
    cairo_move_to(cairo_, x - 1.3, y - 5.7);
    cairo_line_to(cairo_, x + 1.3, y - 5.7);
    cairo_stroke(cairo_);
}

void PanelPainter::DrawNumber(const PanelItem& item, double left, double middle) {
    SetType(kTypeSize);
    SetColor(theme_.value);
    const double width = DrawText(item.value, left, middle, right_ - left);
    // A dotted line says that the number can be dragged.
    SetColor(theme_.value, 0.55);
    cairo_set_line_width(cairo_, 1);
    const double dots[] = {0.01, 2.6};
    cairo_save(cairo_);
    cairo_set_dash(cairo_, dots, 2, 0);
    cairo_move_to(cairo_, left + 0.5, middle + 7);
    cairo_line_to(cairo_, left + width, middle + 7);
    cairo_stroke(cairo_);
    cairo_restore(cairo_);
}

void PanelPainter::DrawTrack(const PanelItem& item) {
    const double top = item.top + Metrics::kRow;
    const double y = top + 5;
    const double left = controlLeft_ + 1;
    const double knob = left + item.position * (right_ - left);
    cairo_set_line_width(cairo_, 2);
    SetColor(theme_.track);
    cairo_move_to(cairo_, left, y);
    cairo_line_to(cairo_, right_, y);
    cairo_stroke(cairo_);
    SetColor(theme_.value, 0.8);
    if (knob > left + 0.5) {
        cairo_move_to(cairo_, left, y);
        cairo_line_to(cairo_, knob, y);
        cairo_stroke(cairo_);
    }
    SetColor(theme_.knob);
    cairo_new_path(cairo_);
    cairo_arc(cairo_, std::clamp(knob, left + 3.6, right_ - 3.6), y, 4.6, 0, 2 * kPi);
    cairo_fill(cairo_);
    SetType(kSmallType);
    SetColor(theme_.dim);
    DrawText(item.low, left, y + 11.5, 80);
    DrawText(item.high, right_ - TextWidth(cairo_, item.high), y + 11.5, 80);
}

void PanelPainter::DrawDial(const PanelItem& item) {
    constexpr double kRadius = 24;
    const double x = controlLeft_ + kRadius + 1;
    const double y = item.top + Metrics::kRow + Metrics::kDial / 2 - 2;
    SetColor(theme_.control);
    cairo_new_path(cairo_);
    cairo_arc(cairo_, x, y, kRadius, 0, 2 * kPi);
    cairo_fill_preserve(cairo_);
    SetColor(theme_.edge);
    cairo_set_line_width(cairo_, 1.2);
    cairo_stroke(cairo_);
    for (int tick = 0; tick < 8; ++tick) {
        const double turn = tick * kPi / 4;
        const double inner = kRadius - (tick % 2 ? 3.5 : 5);
        cairo_move_to(cairo_, x + inner * std::sin(turn), y - inner * std::cos(turn));
        cairo_line_to(cairo_, x + (kRadius - 2) * std::sin(turn), y - (kRadius - 2) * std::cos(turn));
        cairo_stroke(cairo_);
    }
    const double turn = item.degrees * kPi / 180;
    SetColor(theme_.value);
    cairo_set_line_width(cairo_, 1.8);
    cairo_move_to(cairo_, x, y);
    cairo_line_to(cairo_, x + (kRadius - 1) * std::sin(turn), y - (kRadius - 1) * std::cos(turn));
    cairo_stroke(cairo_);
    cairo_arc(cairo_, x, y, 2.2, 0, 2 * kPi);
    cairo_fill(cairo_);
}

void PanelPainter::DrawPopup(const PanelItem& item, double middle) {
    const double width = right_ - controlLeft_;
    RoundedRect(controlLeft_ + 0.5, middle - 8.5, width - 1, 17, 3);
    SetColor(theme_.control);
    cairo_fill_preserve(cairo_);
    SetColor(theme_.edge);
    cairo_set_line_width(cairo_, 1);
    cairo_stroke(cairo_);
    SetType(kTypeSize);
    SetColor(theme_.text);
    DrawText(item.value, controlLeft_ + 7, middle, width - 27);
    SetColor(theme_.dim);
    cairo_set_line_width(cairo_, 1.4);
    cairo_move_to(cairo_, right_ - 13, middle - 1.6);
    cairo_line_to(cairo_, right_ - 9.8, middle + 1.6);
    cairo_line_to(cairo_, right_ - 6.6, middle - 1.6);
    cairo_stroke(cairo_);
}

void PanelPainter::DrawButton(const PanelItem& item, double middle) {
    SetType(kTypeSize);
    const double width = std::min(right_ - controlLeft_, std::max(104.0, TextWidth(cairo_, item.value) + 28));
    RoundedRect(controlLeft_ + 0.5, middle - 8.5, width - 1, 17, 8.5);
    SetColor(theme_.header);
    cairo_fill_preserve(cairo_);
    SetColor(theme_.edge);
    cairo_set_line_width(cairo_, 1);
    cairo_stroke(cairo_);
    SetColor(theme_.text);
    const double text = std::min(TextWidth(cairo_, item.value), width - 12);
    DrawText(item.value, controlLeft_ + (width - text) / 2, middle, width - 12);
}

void PanelPainter::DrawPoint(const PanelItem& item, double middle) {
    SetColor(theme_.dim);
    cairo_set_line_width(cairo_, 1.2);
    const double x = controlLeft_ + 7;
    cairo_new_path(cairo_);
    cairo_arc(cairo_, x, middle, 4, 0, 2 * kPi);
    cairo_stroke(cairo_);
    for (int side = 0; side < 4; ++side) {
        const double dx = std::sin(side * kPi / 2), dy = std::cos(side * kPi / 2);
        cairo_move_to(cairo_, x + 2.2 * dx, middle + 2.2 * dy);
        cairo_line_to(cairo_, x + 6.6 * dx, middle + 6.6 * dy);
        cairo_stroke(cairo_);
    }
    DrawNumber(item, controlLeft_ + 20, middle);
}

void PanelPainter::DrawSwatch(const PanelItem& item, double middle) {
    RoundedRect(controlLeft_ + 0.5, middle - 7.5, 33, 15, 2.5);
    SetColor({item.color.red / 255.0, item.color.green / 255.0, item.color.blue / 255.0});
    cairo_fill_preserve(cairo_);
    SetColor(theme_.edge);
    cairo_set_line_width(cairo_, 1);
    cairo_stroke(cairo_);
    // The dropper beside it.
    SetColor(theme_.dim);
    const double x = controlLeft_ + 44;
    cairo_set_line_width(cairo_, 1.3);
    cairo_move_to(cairo_, x, middle + 5);
    cairo_line_to(cairo_, x + 5.5, middle - 0.5);
    cairo_stroke(cairo_);
    cairo_set_line_width(cairo_, 3.2);
    cairo_move_to(cairo_, x + 7, middle - 2);
    cairo_line_to(cairo_, x + 8.6, middle - 3.6);
    cairo_stroke(cairo_);
    cairo_set_line_width(cairo_, 1.3);
    cairo_move_to(cairo_, x + 3.6, middle - 2.6);
    cairo_line_to(cairo_, x + 7.6, middle + 1.4);
    cairo_stroke(cairo_);
}

void PanelPainter::DrawCheckBox(const PanelItem& item, double middle) {
    RoundedRect(controlLeft_ + 0.5, middle - 6.5, 13, 13, 2.5);
    SetColor(item.checked ? theme_.value : theme_.control);
    cairo_fill_preserve(cairo_);
    SetColor(theme_.edge);
    cairo_set_line_width(cairo_, 1);
    cairo_stroke(cairo_);
    if (item.checked) {
        SetColor(theme_.ground);
        cairo_set_line_width(cairo_, 1.8);
        cairo_move_to(cairo_, controlLeft_ + 3.6, middle);
        cairo_line_to(cairo_, controlLeft_ + 6.2, middle + 2.8);
        cairo_line_to(cairo_, controlLeft_ + 10.6, middle - 2.8);
        cairo_stroke(cairo_);
    }
    SetType(kTypeSize);
    SetColor(theme_.text);
    DrawText(item.value, controlLeft_ + 20, middle, right_ - controlLeft_ - 20);
}
