// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The CPU renderer's kernels one at a time, on one core and in its nearest caches as in a frame, for every
// instruction set that this machine runs; beside them what bounds them: a pure multiply-add loop in registers, and a
// streaming copy through memory. A blur's "taps" are those that its definition reads (outputs x (2 steps + 1)), its
// "fma" the multiply-adds that are left once neighbouring taps on one input are folded; a placement's are the pixels it
// makes.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "cpu/buffer.h"
#include "cpu/kernels/kernels.h"
#include "cpu/taps.h"

using namespace umbrant::effect;

namespace {

using benchmark::Counter;

constexpr int kColumns = 512;    ///< outputs of a blur across
constexpr int kRows = 64;        ///< outputs of a blur down
constexpr int kRowPitch = 544;   ///< floats from row to row there, as PitchFor has them
constexpr double kPitch = 1.25;  ///< inputs from output to output across: nearly what a default frame has

/// Aligned as the renderer's are.
class Values {
 public:
    explicit Values(size_t count, float value = 0) { std::fill_n(values_.Reserve(count), count, value); }
    float* data() const { return values_.Get(); }

 private:
    Buffer<float> values_;
};

struct Folded {
    TapList taps;
    double weights = 0;  ///< multiply-adds for one row or column of outputs
    int inputs = 0;
};

// The taps of `outputs` neighbouring outputs in the middle of many inputs.
Folded Fold(int outputs, double pitch, int steps, int unit) {
    Folded folded;
    const Kernel kernel = MakeKernel(steps, pitch, 1);
    const int reach = static_cast<int>(kernel.Reach()) + 2;
    folded.inputs = static_cast<int>(outputs * pitch) + 2 * reach + 2;
    const Look look{static_cast<double>(reach) + 0.3, pitch, folded.inputs, Edge::kClamp};
    TapFolder folder;
    folder.Prepare(folded.inputs);
    const KeptInputs kept{{0, folded.inputs}, {0, folded.inputs}, 0, unit};
    for (int output = 0; output < outputs; ++output) {
        folder.Fold(output % kTapOutputs, look.At(output), kernel, look);
        if (output % kTapOutputs == kTapOutputs - 1) folder.Flush(kept, &folded.taps);
    }
    const TapBlocks blocks = folded.taps.View();
    folded.weights = static_cast<double>(kTapOutputs) * blocks.starts[blocks.count];
    return folded;
}

void BlurAcross(benchmark::State& state, const CpuKernels& kernels) {
    const int steps = static_cast<int>(state.range(0));
    const Folded folded = Fold(kColumns, kPitch, steps, kTileRows);
    const Values tile(static_cast<size_t>(folded.inputs) * kTileRows + kSlack, 1000);
    const Values out(static_cast<size_t>(kRowPitch) * kTileRows + kSlack);
    for (auto _ : state) {
        kernels.blurColumns(tile.data(), folded.taps.View(), kTileRows, out.data(), kRowPitch);
        benchmark::ClobberMemory();
    }
    state.counters["taps"] = Counter(kTileRows * kColumns * (2.0 * steps + 1), Counter::kIsIterationInvariantRate);
    state.counters["fma"] = Counter(kTileRows * folded.weights, Counter::kIsIterationInvariantRate);
}

void BlurDown(benchmark::State& state, const CpuKernels& kernels) {
    const int steps = static_cast<int>(state.range(0));
    const Folded folded = Fold(kRows, 1, steps, kRowPitch);
    const Values in(static_cast<size_t>(folded.inputs) * kRowPitch + kSlack, 1000);
    const Values out(static_cast<size_t>(kRows) * kRowPitch + kSlack);
    for (auto _ : state) {
        kernels.blurRows(in.data(), folded.taps.View(), 0, folded.taps.Count(), kColumns, out.data(), kRowPitch);
        benchmark::ClobberMemory();
    }
    state.counters["taps"] = Counter(kColumns * kRows * (2.0 * steps + 1), Counter::kIsIterationInvariantRate);
    state.counters["fma"] = Counter(kColumns * folded.weights, Counter::kIsIterationInvariantRate);
}

void Place(benchmark::State& state, const CpuKernels& kernels) {
    constexpr int kPixels = 2048;
    std::vector<int32_t> texels(kPixels);
    std::vector<float> fractions(kPixels);
    for (int i = 0; i < kPixels; ++i) {
        texels[static_cast<size_t>(i)] = static_cast<int32_t>(i * 0.6);
        fractions[static_cast<size_t>(i)] = static_cast<float>(i * 0.6 - static_cast<int32_t>(i * 0.6));
    }
    const PlaceColumns columns{texels.data(), fractions.data(), kPixels, true};
    std::vector<float> row(kPixels + kSlack, 300.0f);
    std::vector<uint16_t> sum(kPixels + kSlack);
    for (auto _ : state) {
        kernels.placeRow(row.data(), columns, sum.data());
        benchmark::ClobberMemory();
    }
    state.counters["pixels"] = Counter(kPixels, Counter::kIsIterationInvariantRate);
}

// Bytes read and written; larger than any cache.
void StreamingCopy(benchmark::State& state) {
    const std::vector<char> from(size_t{256} << 20, 1);
    std::vector<char> to(from.size());
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::ClobberMemory();
    }
    state.counters["bytes"] = Counter(2.0 * static_cast<double>(from.size()), Counter::kIsIterationInvariantRate);
}

// Independent sums, which hide the latency of an addition.
constexpr int kChains = 6;
constexpr int kTurns = 4096;

template <class Vector>
inline __attribute__((always_inline)) void MultiplyAdd(float* result) {
    Vector sums[kChains] = {};
    Vector factors[kChains];
    float start = 0;
#pragma GCC unroll 6
    for (Vector& factor : factors) factor = Vector{} + (start += *result);
    const Vector value = Vector{} + *result;
    const Vector* other = &value;
    for (int turn = 0; turn < kTurns; ++turn) {
        // As if it were another one in each turn, or the compiler would multiply only once.
        __asm__("" : "+r"(other));
#pragma GCC unroll 6
        for (int i = 0; i < kChains; ++i) sums[i] += factors[i] * *other;
    }
    Vector all = {};
#pragma GCC unroll 6
    for (const Vector& sum : sums) all += sum;
    *result = all[0] + 1;
}

typedef float Four __attribute__((vector_size(16)));
typedef float Eight __attribute__((vector_size(32)));
typedef float Sixteen __attribute__((vector_size(64)));

void MultiplyAddBaseline(float* result) {
    MultiplyAdd<Four>(result);
}
#if defined(__x86_64__)
__attribute__((target("avx2,fma"))) void MultiplyAddAvx2(float* result) {
    MultiplyAdd<Eight>(result);
}
__attribute__((target("avx512f"))) void MultiplyAddAvx512(float* result) {
    MultiplyAdd<Sixteen>(result);
}
#endif

void PureLoop(benchmark::State& state, void (*loop)(float*), int lanes) {
    float result = 0.999f;
    for (auto _ : state) {
        loop(&result);
        benchmark::DoNotOptimize(result);
    }
    state.counters["fma"] = Counter(static_cast<double>(kTurns) * kChains * lanes, Counter::kIsIterationInvariantRate);
}

void RegisterLoop(const std::string& set) {
    void (*loop)(float*) = MultiplyAddBaseline;
    int lanes = 4;
#if defined(__x86_64__)
    if (set == "AVX2" || set == "AVX-512/256") loop = MultiplyAddAvx2, lanes = 8;
    if (set == "AVX-512") loop = MultiplyAddAvx512, lanes = 16;
#endif
    benchmark::RegisterBenchmark((set + "/pure-multiply-add").c_str(),
                                 [loop, lanes](benchmark::State& state) { PureLoop(state, loop, lanes); });
}

void RegisterBlur(const std::string& name, void (*blur)(benchmark::State&, const CpuKernels&),
                  const CpuKernels* kernels) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { blur(state, *kernels); })
        ->ArgName("steps")
        ->Arg(1)
        ->Arg(15)
        ->Arg(75)
        ->Arg(150);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::RegisterBenchmark("streaming-copy", StreamingCopy);
    for (const CpuKernels* kernels : RunnableKernels()) {
        const std::string set = kernels->name;
        RegisterLoop(set);
        RegisterBlur(set + "/blur-across", BlurAcross, kernels);
        RegisterBlur(set + "/blur-down", BlurDown, kernels);
        benchmark::RegisterBenchmark((set + "/place").c_str(),
                                     [kernels](benchmark::State& state) { Place(state, *kernels); });
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
