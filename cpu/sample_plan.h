// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which parts of its passes a sample needs: what falls on the output, and of that what is not 0.

#include <vector>

#include "cpu/stack_drawer.h"

struct SamplePlan {
    const StackSample* sample = nullptr;
    Range columns;     ///< columns of the copy
    Range acrossRows;  ///< rows of it that the blur across makes
    Range downRows;    ///< rows that the blur down makes
    Range outColumns;  ///< pixels of the output
    Range outRows;

    bool Empty() const { return columns.Empty() || acrossRows.Empty() || outColumns.Empty() || outRows.Empty(); }
};

/// An output pixel's place in a copy: between texels `floor(At)` and the next.
struct Stretch {
    explicit Stretch(const Placement& place)
        : scale(place.texels / place.length), offset((0.5 - place.start) * scale - 0.5) {}
    double At(int pixel) const { return pixel * scale + offset; }

    double scale;
    double offset;
};

SamplePlan PlanSample(const StackSample& sample, int outputWidth, int outputHeight);
