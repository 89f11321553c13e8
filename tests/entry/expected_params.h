// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The declaration as it has to reach the host, written out by hand in plain numbers and texts: nothing here derives
// from the module's own table. A change to a row here is a change to what projects mean.

#include "hostapi/basic_types.h"

namespace umbrant::effect {

// Flag words by number.
enum { CTV = 0x2, COL = 0x20, SUP = 0x40, DIS = 0x20, SELF_DRAWN = 0x82 };
// Parameter types by number.
enum { LAYER = 0, ANGLE = 3, COLOR = 5, POINT = 6, POPUP = 7, SLIDER = 10, ARB = 11, GS = 13, GE = 14, BUTTON = 15 };

struct ExpectedRow {
    int index;
    A_long id;
    A_long type;
    const char* name;
    A_long flags = 0, uiFlags = 0;
};

inline const ExpectedRow kRows[] = {
    {1, 54, GS, "About & Support", COL},
    {2, 55, ARB, "", CTV, SELF_DRAWN},
    {3, 56, BUTTON, "Umbrant 2 v1.3.3", SUP},
    {4, 57, BUTTON, "", SUP},
    {5, 58, BUTTON, "GPU Spec:", SUP},
    {6, 60, POPUP, "Vendor", CTV, DIS},
    {7, 61, POPUP, "Renderer", CTV, DIS},
    {8, 59, POPUP, "OpenGL Version", CTV, DIS},
    {9, 62, POPUP, "Shader Version", CTV, DIS},
    {10, 63, GS, "", 0, DIS},
    {11, 64, GE, ""},
    {12, 65, GE, ""},
    {13, 46, GS, "Style"},
    {14, 11, POPUP, "Shadow Type", CTV},
    {15, 2, ANGLE, "Angle"},
    {16, 3, POINT, "Origin"},
    {17, 4, SLIDER, "Distance"},
    {18, 5, SLIDER, "Softness"},
    {19, 6, COLOR, "Color"},
    {20, 7, POPUP, "Blend Mode"},
    {21, 47, GE, ""},
    {22, 48, GS, "Opacity"},
    {23, 8, SLIDER, "Opacity Start"},
    {24, 9, SLIDER, "Opacity End"},
    {25, 44, SLIDER, "Opacity Master"},
    {26, 49, GE, ""},
    {27, 10, GS, "Easing", COL},
    {28, 11, POPUP, "Mode"},
    {29, 12, SLIDER, "Ease"},
    {30, 13, GS, "Advanced", COL},
    {31, 14, GS, "Easing Per Attribute"},
    {32, 15, GE, ""},
    {33, 16, SLIDER, "Distance"},
    {34, 17, SLIDER, "Softness"},
    {35, 18, SLIDER, "Opacity"},
    {36, 19, GE, ""},
    {37, 20, GE, ""},
    {38, 39, GS, "Texture", COL},
    {39, 40, LAYER, "Layer"},
    {40, 41, POPUP, "Blend Mode"},
    {41, 42, SLIDER, "Strength"},
    {42, 43, GE, ""},
    {43, 21, GS, "Quality", COL},
    {44, 22, SLIDER, "Samples"},
    {45, 23, POPUP, "Resolution"},
    {46, 24, POPUP, "Prioritise", CTV},
    {47, 25, GE, ""},
    {48, 26, GS, "Compositing", COL},
    {49, 27, SLIDER, "Source Opacity"},
    {50, 28, SLIDER, "Offset Shadow"},
    {51, 50, SLIDER, "Buffer Expansion"},
    {52, 29, GE, ""},
    {53, 51, GS, "Debug"},
    {54, 30, SLIDER, "Left"},
    {55, 31, SLIDER, "Top"},
    {56, 32, SLIDER, "Right"},
    {57, 33, SLIDER, "Bottom"},
    {58, 52, SLIDER, "Buffer Opacity"},
    {59, 45, SLIDER, "Counter", 0, DIS},
    {60, 53, GE, ""},
};

struct ExpectedSlider {
    int index;
    float validMin, validMax, sliderMin, sliderMax, initial;
    A_short precision;
    A_short display;
};

inline const ExpectedSlider kSliders[] = {
    {17, 0, 2000, 0, 200, 250, 2, 0},      {18, 0, 500, 0, 200, 250, 2, 0},       {23, 0, 100, 0, 100, 20, 2, 1},
    {24, 0, 100, 0, 100, 50, 2, 1},        {25, 0, 100, 0, 100, 100, 2, 1},       {29, 0, 100, 0, 100, 100, 2, 1},
    {33, 0, 100, 0, 500, 80, 2, 1},        {34, 0, 100, 0, 500, 100, 2, 1},       {35, 0, 100, 0, 500, 100, 2, 1},
    {41, 0, 100, 0, 100, 100, 2, 1},       {44, 1, 256, 0, 64, 36, 0, 0},         {49, 0, 100, 0, 100, 100, 2, 1},
    {50, 0, 100, 0, 500, 1, 2, 0},         {51, 0, 1000, 0, 100, 0, 0, 0},        {54, -5000, 5000, -500, 500, 0, 2, 0},
    {55, -5000, 5000, -500, 500, 0, 2, 0}, {56, -5000, 5000, -500, 500, 0, 2, 0}, {57, -5000, 5000, -500, 500, 0, 2, 0},
    {58, 0, 100, 0, 100, 0, 2, 1},         {59, 0, 99999, 0, 99999, 0, 0, 0},
};

struct ExpectedPopup {
    int index;
    const char* items;
    A_short count, initial;
};

inline const ExpectedPopup kPopups[] = {
    {6, "The Vendor", 1, 1},
    {7, "The Renderer", 1, 1},
    {8, "3.3 Test", 1, 1},
    {9, "3.30", 1, 1},
    {14, "Normal|Inner|Radial", 3, 1},
    {20,
     "Normal|(-|Add|Screen|(-|Overlay|Soft Light|Hard Light|(-|Darken|Multiply|Color Burn|Classic Color Burn|Linear "
     "Burn|Darker Color",
     15, 1},
    {28, "Ease In|Ease In & Out", 2, 1},
    {40,
     "Normal|(-|Multiply|Color Burn|(-|Add|Screen|(-|Overlay|Soft Light|(-|Stencil Alpha|Stencil Luma|Silhouette "
     "Alpha|Silhouette Luma",
     15, 15},
    {45, "Draft|Low|Moderate|High|Extreme", 5, 3},
    {46, "Speed|Memory Usage", 2, 1},
};

}  // namespace umbrant::effect
