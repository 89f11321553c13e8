// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The inner loops of the CPU renderer, compiled once per instruction set from cpu/kernels/kernel_loops.inc and chosen
// when the module first draws. Values are 16-bit alphas (0..65535) kept as whole floats, so that no pass converts.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace umbrant::effect {

/// Outputs that share one list of taps.
inline constexpr int kTapOutputs = 4;
/// Rows of a column tile: neighbours in memory, so that one tap reads them all at once.
inline constexpr int kTileRows = 32;
/// `blurColumns` makes a multiple of these rows.
inline constexpr int kRowStep = 16;
/// Columns that `blurRows` works on at a time; its rows are readable and writable up to the next multiple.
inline constexpr int kColumnChunk = 32;
/// The largest alpha that is calculated with. It is full wherever a tap sees any of it, as an infinite one is, and its
/// products with weights and gains stay finite: infinity times a weight of 0 would be no number, and where such weights
/// fall depends on the bounds.
inline constexpr float kMostAlpha = 1e30f;
/// Elements past the last that the loops may read, and the row loops write.
inline constexpr int kSlack = 64;

/// Weighted sums to form: block b makes kTapOutputs neighbouring outputs, each the sum over e in
/// [starts[b], starts[b + 1]) of weights[kTapOutputs e + output] x input[offsets[e] - base].
struct TapBlocks {
    const int32_t* starts;
    const int32_t* offsets;
    const float* weights;
    int count;         ///< blocks
    int32_t base = 0;  ///< where the part of the input that is given begins
};

/// How a row of a blurred copy is stretched over output columns: output `i` lies `fractions[i]` of the way from texel
/// `texels[i]` - `base` to the next.
struct PlaceColumns {
    const int32_t* texels;
    const float* fractions;
    int count;
    bool gentle;       ///< the texels of n neighbouring outputs never span more than n
    int32_t base = 0;  ///< where the part of the row that is given begins
};

/// Neighbouring coefficients that a spline is evaluated from: six of a quintic one, four of a cubic one.
inline constexpr int kQuinticSpan = 6;
inline constexpr int kCubicSpan = 4;

/// How a coarse row is evaluated over output columns: output `i` is the sum over k of weights[k pitch + i] x
/// coefficient texels[i] - base + k.
struct SplineColumns {
    const int32_t* texels;
    const float* weights;
    ptrdiff_t pitch;
    int count;
    bool gentle;       ///< the texels of n neighbouring outputs never span more than n
    int32_t base = 0;  ///< where the part of the row that is given begins
};

struct CpuKernels {
    const char* name;

    /// A row between two of a source: out[i] = a[i] + fraction (b[i] - a[i]), of alphas as AlphaValue makes them
    /// finite.
    void (*mixBytes)(const uint8_t* a, const uint8_t* b, float fraction, int count, float* out);
    void (*mixFloats)(const float* a, const float* b, float fraction, int count, float* out);
    /// kTileRows rows, `pitch` floats apart, become a column tile: row r of column c goes to out[kTileRows c + r].
    void (*turnRows)(const float* rows, ptrdiff_t pitch, int columns, float* out);
    /// Every second row of a column tile's columns: row r is the sum over k < 11, or 7, of weights[k] x row `first` +
    /// 2 r + k of `tiles`, which are `pitch` floats apart.
    void (*thinByEleven)(const float* tiles, ptrdiff_t pitch, int first, const float* weights, ptrdiff_t columns,
                         float* out);
    void (*thinBySeven)(const float* tiles, ptrdiff_t pitch, int first, const float* weights, ptrdiff_t columns,
                        float* out);

    /// Blur across. `tile` is a column tile: input `j` is its kTileRows floats from 32 j on, and the offsets count
    /// floats. Block b goes to columns 4 b of `rows` rows, a multiple of kRowStep, `pitch` floats apart; rounded and
    /// limited to 0..65535.
    void (*blurColumns)(const float* tile, const TapBlocks& taps, int rows, float* out, ptrdiff_t pitch);

    /// Blur down. The offsets count floats from `in` to input rows. Blocks [first, last) make four rows each,
    /// `outPitch` apart from `out` on, `columns` wide; rounded and limited.
    void (*blurRows)(const float* in, const TapBlocks& taps, int first, int last, int columns, float* out,
                     ptrdiff_t outPitch);

    /// out[i] = a[i] + fraction (b[i] - a[i]).
    void (*mixRows)(const float* a, const float* b, float fraction, int count, float* out);

    /// Adds a stretched row to `accumulated` (0..65535): s (1 - d) + d, rounded.
    void (*placeRow)(const float* texels, const PlaceColumns& columns, uint16_t* accumulated);

    /// blurColumns and blurRows, neither rounded nor limited.
    void (*sumColumns)(const float* tile, const TapBlocks& taps, int rows, float* out, ptrdiff_t pitch);
    void (*sumRows)(const float* in, const TapBlocks& taps, int first, int last, int columns, float* out,
                    ptrdiff_t outPitch);

    /// out[i] is the sum over k of weights[k] x in[i + k].
    void (*filterRow)(const float* in, const float* weights, int taps, int count, float* out);

    /// Evaluates a coarse row; writes whole vectors.
    void (*stretchSpline)(const float* coefficients, const SplineColumns& columns, float* out);

    /// Adds a row to `accumulated` as placeRow does: the weighted sum of kCubicSpan rows, limited to 0..65535.
    void (*placeSpline)(const float* const* rows, const float* weights, int count, uint16_t* accumulated);

    /// 16 bits to 8, nearest.
    void (*toBytes)(const uint16_t* values, size_t count, uint8_t* out);
    /// 16 bits to 0..1.
    void (*toFloats)(const uint16_t* values, size_t count, float* out);

    /// The first of every four bytes, and of every four floats: the alphas of pixels.
    void (*takeBytes)(const uint8_t* pixels, size_t count, uint8_t* out);
    void (*takeFloats)(const float* pixels, size_t count, float* out);
    /// Pixels of four bytes, and of four floats: the alpha as toBytes and toFloats have it, and the last three of
    /// `colour`.
    void (*colourBytes)(const uint16_t* values, size_t count, const uint8_t* colour, uint8_t* pixels);
    void (*colourFloats)(const uint16_t* values, size_t count, const float* colour, float* pixels);
};

/// The fastest kernels that this processor runs.
const CpuKernels& BestKernels();

/// All kernels that this processor runs, slowest first.
std::vector<const CpuKernels*> RunnableKernels();

/// Makes the following draws use `kernels`; null goes back to the best. For tests and measurements.
void UseKernels(const CpuKernels* kernels);

/// What draws use now.
const CpuKernels& CurrentKernels();

}  // namespace umbrant::effect
