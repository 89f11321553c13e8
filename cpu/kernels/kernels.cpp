// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which kernels this processor runs.

#include "cpu/kernels/kernels.h"

#include <atomic>

#include "cpu/kernels/instruction_sets.h"
#include "cpu/kernels/kernel_sets.h"

namespace umbrant::effect {

namespace {

std::atomic<const CpuKernels*> forced{nullptr};

#if defined(__x86_64__)
/// A processor that does the two halves of 512 bits one after the other adds up no more at a time with them, and reads
/// its inputs more slowly: the sums take halves.
const CpuKernels& HalfSumKernels() {
    static const CpuKernels kernels = [] {
        CpuKernels mixed = kAvx512Kernels;
        mixed.name = kAvx512HalfKernels.name;
        mixed.blurColumns = kAvx512HalfKernels.blurColumns;
        mixed.blurRows = kAvx512HalfKernels.blurRows;
        mixed.sumColumns = kAvx512HalfKernels.sumColumns;
        mixed.sumRows = kAvx512HalfKernels.sumRows;
        return mixed;
    }();
    return kernels;
}
#endif

}  // namespace

std::vector<const CpuKernels*> RunnableKernels() {
    std::vector<const CpuKernels*> runnable{&kBaselineKernels};
#if defined(__x86_64__)
    const InstructionSets sets = ReadInstructionSets();
    if (sets.avx2) runnable.push_back(&kAvx2Kernels);
    if (sets.avx512) {
        runnable.push_back(sets.halves ? &kAvx512Kernels : &HalfSumKernels());
        runnable.push_back(sets.halves ? &HalfSumKernels() : &kAvx512Kernels);
    }
#endif
    return runnable;
}

const CpuKernels& BestKernels() {
    static const CpuKernels* const best = RunnableKernels().back();
    return *best;
}

void UseKernels(const CpuKernels* kernels) {
    forced = kernels;
}

const CpuKernels& CurrentKernels() {
    const CpuKernels* kernels = forced.load(std::memory_order_relaxed);
    return kernels ? *kernels : BestKernels();
}

}  // namespace umbrant::effect
