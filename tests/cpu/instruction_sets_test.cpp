// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The processor's own answer against that of the compiler's library.

#include "cpu/kernels/instruction_sets.h"

#include <gtest/gtest.h>

#include <string>

#include "cpu/kernels/kernels.h"

namespace umbrant::effect {

namespace {

#if defined(__x86_64__)
TEST(InstructionSets, AreWhatTheCompilerFinds) {
    __builtin_cpu_init();
    const InstructionSets sets = ReadInstructionSets();
    EXPECT_EQ(sets.avx2, __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"));
    EXPECT_EQ(sets.avx512, __builtin_cpu_supports("fma") && __builtin_cpu_supports("avx512f") &&
                               __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
                               __builtin_cpu_supports("avx512vl"));
    EXPECT_EQ(sets.halves, sets.avx512 && __builtin_cpu_is("amdfam19h"));
}

TEST(InstructionSets, DecideWhichAvx512KernelsAreTheBest) {
    const InstructionSets sets = ReadInstructionSets();
    const std::string best = BestKernels().name;
    if (sets.avx512) {
        EXPECT_EQ(best, sets.halves ? "AVX-512/256" : "AVX-512");
    } else {
        EXPECT_EQ(best, sets.avx2 ? "AVX2" : "baseline");
    }
}
#else
TEST(InstructionSets, OfOtherProcessorsAreNone) {
    EXPECT_FALSE(ReadInstructionSets().avx2);
    EXPECT_FALSE(ReadInstructionSets().avx512);
}
#endif

}  // namespace

}  // namespace umbrant::effect
