// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Folding taps into weights.

#include "cpu/taps.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace umbrant::effect {

int EdgeIndex(int64_t index, int size, Edge edge) {
    if (index >= 0 && index < size) return static_cast<int>(index);
    if (edge == Edge::kClamp) return index < 0 ? 0 : size - 1;
    const int64_t period = 2 * int64_t{size};
    int64_t phase = index % period;
    if (phase < 0) phase += period;
    return static_cast<int>(phase < size ? phase : period - 1 - phase);
}

Kernel MakeKernel(int steps, double stride, double gain) {
    if (steps > kMostSteps) {
        stride *= static_cast<double>(steps) / kMostSteps;
        steps = kMostSteps;
    }
    Kernel kernel;
    kernel.steps = steps;
    kernel.stride = stride;
    kernel.weights.resize(2 * static_cast<size_t>(steps) + 1);
    double total = 0;
    for (int i = -steps; i <= steps; ++i) {
        const double x = static_cast<double>(i) / steps;
        const double weight = std::exp(-0.5 * x * x / 0.06);
        kernel.weights[static_cast<size_t>(i + steps)] = weight;
        total += weight;
    }
    for (double& weight : kernel.weights) weight *= gain / total;
    return kernel;
}

void TapList::Clear() {
    starts_.assign(1, 0);
    offsets_.clear();
    weights_.clear();
}

void TapList::AddBlock(const std::vector<float>& kernel, int first, Range stored, int unit) {
    const int size = static_cast<int>(kernel.size());
    const Range used = Intersect({first, first + size + kTapOutputs - 1}, stored);
    for (int input = used.begin; input < used.end; ++input) {
        offsets_.push_back((input - stored.begin) * unit);
        for (int output = 0; output < kTapOutputs; ++output) {
            const int tap = input - first - output;
            weights_.push_back(tap < 0 || tap >= size ? 0.0f : kernel[static_cast<size_t>(tap)]);
        }
    }
    starts_.push_back(static_cast<int32_t>(offsets_.size()));
}

TapBlocks TapList::View() const {
    return {starts_.data(), offsets_.data(), weights_.data(), Count()};
}

void TapFolder::Prepare(int inputs) {
    // Every flush leaves zeroes behind.
    sums_.resize(static_cast<size_t>(kTapOutputs) * static_cast<size_t>(inputs), 0.0f);
    low_ = inputs;
    high_ = 0;
}

void TapFolder::Fold(int output, double centre, const Kernel& kernel, const Look& look) {
    const int taps = 2 * kernel.steps + 1;
    const double start = centre - kernel.Reach();
    const double last = centre + kernel.Reach();
    // One input to spare on each side for the rounding of the places in between.
    if (start >= 1 && last < look.size - 2) {
        low_ = std::min(low_, static_cast<int>(start) - 1);
        high_ = std::max(high_, static_cast<int>(last) + 3);
        for (int i = 0; i < taps; ++i) {
            const double at = start + i * kernel.stride;
            const int input = static_cast<int>(at);
            const double weight = kernel.weights[static_cast<size_t>(i)];
            const double next = weight * (at - input);
            Add(output, input, weight - next);
            Add(output, input + 1, next);
        }
        return;
    }
    for (int i = 0; i < taps; ++i) {
        const double at = start + i * kernel.stride;
        const double floor = std::floor(at);
        const auto input = TexelAt(at);
        const int here = EdgeIndex(input, look.size, look.edge);
        const int beyond = EdgeIndex(input + 1, look.size, look.edge);
        const double weight = kernel.weights[static_cast<size_t>(i)];
        const double next = weight * (at - floor);
        Add(output, here, weight - next);
        Add(output, beyond, next);
        low_ = std::min({low_, here, beyond});
        high_ = std::max({high_, here + 1, beyond + 1});
    }
}

void TapFolder::FoldRange(Range outputs, int step, const Kernel& kernel, const Look& look, const KeptInputs& inputs,
                          TapList* list) {
    list->Clear();
    Prepare(look.size);
    for (int block = outputs.begin; block < outputs.end; block += kTapOutputs) {
        for (int output = block; output < std::min(block + kTapOutputs, outputs.end); ++output) {
            Fold(output - block, look.At(output * step), kernel, look);
        }
        Flush(inputs, list);
    }
}

// Moves the sums of inputs [begin, end) to the input `to`.
void TapFolder::Gather(int begin, int end, int to) {
    for (int input = begin; input < end; ++input) {
        for (int output = 0; output < kTapOutputs; ++output) {
            const float sum = std::exchange(At(input)[output], 0.0f);
            At(to)[output] += sum;
        }
    }
}

void TapFolder::Flush(const KeptInputs& inputs, TapList* list) {
    const Range& distinct = inputs.distinct;
    if (low_ < distinct.begin) {
        Gather(low_, std::min(high_, distinct.begin), distinct.begin);
        high_ = std::max(high_, distinct.begin + 1);
        low_ = distinct.begin;
    }
    if (high_ > distinct.end) {
        Gather(std::max(low_, distinct.end), high_, distinct.end - 1);
        low_ = std::min(low_, distinct.end - 1);
        high_ = distinct.end;
    }
    const Range used = Intersect({low_, high_}, inputs.kept);
    for (int input = used.begin; input < used.end; ++input) {
        const float* sums = At(input);
        if (sums[0] == 0 && sums[1] == 0 && sums[2] == 0 && sums[3] == 0) continue;
        list->offsets_.push_back((input - inputs.first) * inputs.unit);
        list->weights_.insert(list->weights_.end(), sums, sums + kTapOutputs);
    }
    list->starts_.push_back(static_cast<int32_t>(list->offsets_.size()));
    if (low_ < high_) std::fill(At(low_), At(high_), 0.0f);
    low_ = static_cast<int>(sums_.size() / kTapOutputs);
    high_ = 0;
}

}  // namespace umbrant::effect
