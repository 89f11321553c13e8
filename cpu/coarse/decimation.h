// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which samples of a stack are blurred on coarse grids, and how coarse. Decided from predicted errors, so that the
// whole stack keeps its bounds against the exact arithmetic: 1.5 units of 1/65535 a sample, and a mean that moves at
// most 1 % of the pixels by one step of 8 bits.

#include <vector>

namespace umbrant::effect {

/// The grids of a sample: every `columns`-th column and every 2^`level`-th row of its buffer.
struct Decimation {
    int columns = 1;
    int level = 0;  ///< 0: the sample is drawn exactly

    bool IsWide() const { return level > 0; }
    int Rows() const { return 1 << level; }
};

/// Whether all samples are drawn exactly, the reference for the others: if UMBRANT_CPU_EXACT was "1" when this was
/// first asked, or a test wants it.
bool DrawsExactly();
void SetDrawsExactly(bool exactly);

/// One blur of a sample along one axis.
struct BlurReach {
    double reach = 0;   ///< texels of the buffer
    double stride = 1;  ///< of the taps, in texels of the buffer
    int texels = 0;     ///< of the buffer
};

/// What the choice depends on.
struct DecimationCase {
    double opacity = 0;
    BlurReach across;
    BlurReach down;
    double work = 0;  ///< multiply-adds of the exact blurs
};

/// Units of 1/65535.
struct PredictedError {
    double most = 0;
    double mean = 0;
};

/// The coarsest grids whose own error is small beside that of the taps' uneven places; none for a blur of less than 14
/// texels or that reaches across its whole buffer.
Decimation GridsFor(const DecimationCase& sample);

/// What drawing the sample on these grids adds to the error, at most at thin lines in the source.
PredictedError PredictError(const DecimationCase& sample, const Decimation& grids);

/// The grids of each sample. Those are decimated that save most work for their error, while the sum of their largest
/// errors keeps within 1.5 units a sample (up to 3 where more than 8 samples cannot all meet in one pixel), and the sum
/// of their means within 2.57 units.
std::vector<Decimation> ChooseDecimation(const std::vector<DecimationCase>& samples);

}  // namespace umbrant::effect
