// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The pens, brushes, fonts, paths and images that the supplier hands out. Each counts its users and is counted in the
// session's books until the last one is gone. [main]

#include <memory>
#include <variant>

#include "host/drawing/drawing.h"
#include "hostapi/drawbot_types.h"

namespace umbrant::host {

struct DrawPen {
    DRAWBOT_ColorRGBA color;
    float width;
};
struct DrawBrush {
    DRAWBOT_ColorRGBA color;
};
struct DrawFont {
    float size;
};
struct DrawPath {
    std::unique_ptr<DrawnPath> figures;
};
struct DrawImage {
    std::unique_ptr<DrawnImage> pixels;
};

using DrawObject = std::variant<DrawPen, DrawBrush, DrawFont, DrawPath, DrawImage>;

/// A new object with one user. The pointer is what the effect gets, whatever the type of the reference.
DRAWBOT_ObjectRef NewDrawObject(DrawObject object);
/// One user more. False, with a report, when it is not a live object.
bool RetainDrawObject(DRAWBOT_ObjectRef reference);
/// One user less; frees the object at the last. False, with a report, when it is not a live object.
bool ReleaseDrawObject(DRAWBOT_ObjectRef reference);
/// The object behind a reference, of whatever kind; null, with a report that names the call, when it is not a live one.
DrawObject* FindDrawObject(const void* reference, const char* call);
/// Reports an object of another kind than the call needs.
void ReportWrongKind(const char* call);

/// The object behind a reference when it is a live one of that kind; null, with a report, otherwise.
template <typename Kind>
Kind* FindDrawObjectOf(const void* reference, const char* call) {
    DrawObject* object = FindDrawObject(reference, call);
    if (object == nullptr) return nullptr;
    auto* kind = std::get_if<Kind>(object);
    if (kind == nullptr) ReportWrongKind(call);
    return kind;
}

/// An image for `drawing` from memory in one of the eight layouts, top row first; null when the numbers make no picture
/// or there is no memory. The bytes are copied.
std::unique_ptr<DrawnImage> ImageFromBytes(const Drawing& drawing, int width, int height, int rowBytes,
                                           DRAWBOT_PixelLayout layout, const void* bytes);

}  // namespace umbrant::host
