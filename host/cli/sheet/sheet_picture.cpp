// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/sheet/sheet_picture.h"

#include <cstring>
#include <memory>

#include "host/drawing/new_drawing.h"
#include "host/suites/drawbot/text.h"

namespace umbrant::host {

namespace {

constexpr char kPicture[] = "a contact sheet";
constexpr char kBoldTypeface[] = "Inter Semi Bold";

struct Ink {
    double red, green, blue;
};
constexpr Ink kGround{0.975, 0.973, 0.968};
constexpr Ink kText{0.13, 0.13, 0.16};
constexpr Ink kFaintText{0.42, 0.42, 0.47};
constexpr Ink kEdge{0.72, 0.72, 0.74};

struct Type {
    const char* family;
    double size;
    const Ink* ink;
};

Type TypeOf(SheetText kind) {
    switch (kind) {
        case SheetText::kTitle:
            return {kBoldTypeface, 21, &kText};
        case SheetText::kHeading:
            return {kBoldTypeface, 15, &kText};
        case SheetText::kSettings:
            return {kPanelTypeface, 13, &kFaintText};
        case SheetText::kLabel:
            break;
    }
    return {kPanelTypeface, 13, &kText};
}

void SetType(Drawing& drawing, const Type& type) {
    drawing.SetFont(type.family, type.size);
    drawing.SetColor(type.ink->red, type.ink->green, type.ink->blue);
}

Result<SheetLayout> MeasuredLayout(const SheetContent& content) {
    const auto ruler = TRY(NewDrawing(kPicture, 1, 1));
    return LayOutSheet(content, [&](SheetText kind, const std::string& text) {
        SetType(*ruler, TypeOf(kind));
        return ruler->TextWidth(text);
    });
}

/// A frame with a diagonal, where an image is missing.
void DrawMissing(Drawing& drawing, const SheetPlace& place, const SheetContent& content) {
    drawing.SetColor(kEdge.red, kEdge.green, kEdge.blue);
    drawing.SetLineWidth(1);
    drawing.AddRect(place.x + 0.5, place.y + 0.5, content.cellWidth - 1, content.cellHeight - 1);
    drawing.MoveTo(place.x, place.y + content.cellHeight);
    drawing.LineTo(place.x + content.cellWidth, place.y);
    drawing.Stroke();
}

}  // namespace

Result<Done> CheckSheet(const SheetContent& content) {
    TRY(MeasuredLayout(content));
    return Done{};
}

Result<World> DrawSheet(const SheetContent& content, const std::vector<World>& cells) {
    const SheetLayout layout = TRY(MeasuredLayout(content));
    const auto made = TRY(NewDrawing(kPicture, layout.width, layout.height));
    Drawing& drawing = *made;
    drawing.SetColor(kGround.red, kGround.green, kGround.blue);
    drawing.AddRect(0, 0, layout.width, layout.height);
    drawing.Fill();
    for (const SheetLabel& label : layout.labels) {
        SetType(drawing, TypeOf(label.kind));
        drawing.DrawText(FitText(drawing, label.text, label.room, kDRAWBOT_TextTruncation_EndEllipsis), label.x,
                         label.y);
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].IsNull()) DrawMissing(drawing, layout.cells[i], content);
    }
    World sheet = TRY(WorldOf(kPicture, drawing));
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].IsNull()) continue;
        const auto bytes = static_cast<std::size_t>(cells[i].Width()) * sizeof(PF_Pixel);
        for (int y = 0; y < cells[i].Height(); ++y) {
            auto* row = static_cast<PF_Pixel*>(static_cast<void*>(sheet.Row(layout.cells[i].y + y)));
            std::memcpy(row + layout.cells[i].x, cells[i].Row(y), bytes);
        }
    }
    return sheet;
}

}  // namespace umbrant::host
