// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which parts of its passes a sample needs: what falls on the output, and of that what is not 0.

#include <vector>

#include "cpu/stack_drawer.h"

struct SampleParts {
    const StackSample* sample = nullptr;
    Range columns;     ///< columns of the copy
    Range acrossRows;  ///< rows of it that the blur across makes
    Range downRows;    ///< rows that the blur down makes
    Range outColumns;  ///< pixels of the output
    Range outRows;

    bool Empty() const { return columns.Empty() || acrossRows.Empty() || outColumns.Empty() || outRows.Empty(); }
};

SampleParts PlanSample(const StackSample& sample, int outputWidth, int outputHeight);
