// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "DRAWBOT Path Suite" 1: builds the figures of a path.

#include "hostapi/suites/drawbot_path_suite.h"

#include <cmath>

#include "host/suites/drawbot/objects.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

constexpr double kRadians = 3.14159265358979323846 / 180.0;

/// The figures of a path, when the path is one and all numbers are finite; null otherwise.
template <typename... Numbers>
DrawnPath* PathFor(DRAWBOT_PathRef reference, const char* call, Numbers... numbers) {
    const auto* path = FindDrawObjectOf<DrawPath>(reference, call);
    return path && (std::isfinite(numbers) && ...) ? path->figures.get() : nullptr;
}

SPErr MoveTo(DRAWBOT_PathRef path, float x, float y) {
    DrawnPath* figures = PathFor(path, "MoveTo", x, y);
    if (!figures) return PF_Err_BAD_CALLBACK_PARAM;
    figures->MoveTo(x, y);
    return kSPNoError;
}

SPErr LineTo(DRAWBOT_PathRef path, float x, float y) {
    DrawnPath* figures = PathFor(path, "LineTo", x, y);
    if (!figures) return PF_Err_BAD_CALLBACK_PARAM;
    figures->LineTo(x, y);
    return kSPNoError;
}

SPErr BezierTo(DRAWBOT_PathRef path, const DRAWBOT_PointF32* first, const DRAWBOT_PointF32* second,
               const DRAWBOT_PointF32* end) {
    if (!first || !second || !end) return PF_Err_BAD_CALLBACK_PARAM;
    DrawnPath* figures = PathFor(path, "BezierTo", first->x, first->y, second->x, second->y, end->x, end->y);
    if (!figures) return PF_Err_BAD_CALLBACK_PARAM;
    figures->CurveTo(first->x, first->y, second->x, second->y, end->x, end->y);
    return kSPNoError;
}

SPErr AddRect(DRAWBOT_PathRef path, const DRAWBOT_RectF32* rect) {
    if (!rect) return PF_Err_BAD_CALLBACK_PARAM;
    DrawnPath* figures = PathFor(path, "AddRect", rect->left, rect->top, rect->width, rect->height);
    if (!figures) return PF_Err_BAD_CALLBACK_PARAM;
    figures->AddRect(rect->left, rect->top, rect->width, rect->height);
    return kSPNoError;
}

/// Angles grow clockwise from the right, as y grows downwards. A line leads to the arc from the current point.
SPErr AddArc(DRAWBOT_PathRef path, const DRAWBOT_PointF32* centre, float radius, float start, float sweep) {
    if (!centre) return PF_Err_BAD_CALLBACK_PARAM;
    DrawnPath* figures = PathFor(path, "AddArc", centre->x, centre->y, radius, start, sweep);
    if (!figures || radius < 0) return PF_Err_BAD_CALLBACK_PARAM;
    const double from = start * kRadians;
    const double to = (double{start} + sweep) * kRadians;
    figures->AddArc(centre->x, centre->y, radius, from, to, sweep < 0);
    return kSPNoError;
}

SPErr Close(DRAWBOT_PathRef path) {
    DrawnPath* figures = PathFor(path, "Close");
    if (!figures) return PF_Err_BAD_CALLBACK_PARAM;
    figures->Close();
    return kSPNoError;
}

template <FixedText Call, auto Function>
using Slot = Served<kDRAWBOT_PathSuiteName, Call, Function>;

}  // namespace

const DRAWBOT_PathSuite1 kDrawbotPathSuite = {
    .MoveTo = Slot<"MoveTo", MoveTo>(),
    .LineTo = Slot<"LineTo", LineTo>(),
    .BezierTo = Slot<"BezierTo", BezierTo>(),
    .AddRect = Slot<"AddRect", AddRect>(),
    .AddArc = Slot<"AddArc", AddArc>(),
    .Close = Slot<"Close", Close>(),
};

}  // namespace umbrant::host
