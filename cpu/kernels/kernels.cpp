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

}  // namespace

std::vector<const CpuKernels*> RunnableKernels() {
    std::vector<const CpuKernels*> runnable{&kBaselineKernels};
#if defined(__x86_64__)
    const InstructionSets sets = ReadInstructionSets();
    if (sets.avx2) runnable.push_back(&kAvx2Kernels);
    if (sets.avx512) runnable.push_back(&kAvx512Kernels);
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
