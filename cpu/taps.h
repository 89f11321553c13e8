// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A blur pass as lists of weights: the bilinear taps of an output, at whatever fractional places they fall, folded into
// one weight per input. Edges fold too, so that the loops over pixels know of none.

#include <cstdint>
#include <vector>

#include "cpu/kernels/kernels.h"
#include "render/pass_plan.h"

namespace umbrant::effect {

/// The input index that a tap beyond the edge reads. `size` is at least 1.
int EdgeIndex(int64_t index, int size, Edge edge);

/// The most steps that a kernel has: many times what the longest blur of the panel needs. A damaged project can ask for
/// two thousand million, which no machine has the memory for.
constexpr int kMostSteps = 1 << 16;

/// A blur's taps: 2 steps + 1 of them, `stride` inputs apart, with weights that add up to `gain`.
struct Kernel {
    int steps = 1;
    double stride = 1;
    std::vector<double> weights;  ///< of tap -steps to steps

    double Reach() const { return steps * stride; }
};

/// exp(-x² / 0.12) over -1..1, normalised and multiplied with `gain`. Beyond `kMostSteps` there are that many, further
/// apart, so that the reach stays.
Kernel MakeKernel(int steps, double stride, double gain);

/// Weights of blocks of outputs, owned.
class TapList {
 public:
    void Clear();
    /// Appends a block of kTapOutputs outputs whose weights are `kernel`, one input further from output to output: the
    /// first output's begin at input `first`. Inputs outside of `stored` are 0; its first is at offset 0.
    void AddBlock(const std::vector<float>& kernel, int first, Range stored, int unit);
    TapBlocks View() const;
    int Count() const { return static_cast<int>(starts_.size()) - 1; }

 private:
    friend class TapFolder;
    std::vector<int32_t> starts_{0};
    std::vector<int32_t> offsets_;
    std::vector<float> weights_;
};

/// What is stored of a pass's inputs, and where.
struct KeptInputs {
    Range distinct;  ///< inputs before and after hold the same as the first and the last of these
    Range kept;      ///< inputs that do not hold 0: leaving the others out changes no sum
    int first = 0;   ///< the input at offset 0
    int unit = 1;    ///< floats from input to input
};

/// Collects the weights of one block of kTapOutputs outputs at a time.
class TapFolder {
 public:
    /// Ready for `inputs` inputs.
    void Prepare(int inputs);

    /// Adds the taps of an output that looks at `centre`.
    void Fold(int output, double centre, const Kernel& kernel, const Look& look);

    /// Makes `list` the blocks of the outputs `outputs`, each of which looks where output `step` times as far does.
    void FoldRange(Range outputs, int step, const Kernel& kernel, const Look& look, const KeptInputs& inputs,
                   TapList* list);

    /// Appends what was collected as a block to `list`: one entry for each input that any output weighs.
    void Flush(const KeptInputs& inputs, TapList* list);

 private:
    float* At(int input) { return sums_.data() + static_cast<ptrdiff_t>(kTapOutputs) * input; }
    void Add(int output, int input, double weight) { At(input)[output] += static_cast<float>(weight); }
    void Gather(int begin, int end, int to);

    std::vector<float> sums_;
    int low_ = 0;
    int high_ = 0;
};

}  // namespace umbrant::effect
