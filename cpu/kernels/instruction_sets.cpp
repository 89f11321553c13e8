// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/kernels/instruction_sets.h"

#include <cstdint>

namespace umbrant::effect {

#if defined(__x86_64__)

namespace {

struct Registers {
    std::uint32_t a = 0, b = 0, c = 0, d = 0;
};

Registers Cpuid(std::uint32_t leaf) {
    Registers answer;
    __asm__("cpuid" : "=a"(answer.a), "=b"(answer.b), "=c"(answer.c), "=d"(answer.d) : "a"(leaf), "c"(0));
    return answer;
}

/// Which registers the operating system keeps for each thread; only where CPUID says that it may be asked.
std::uint32_t KeptRegisters() {
    std::uint32_t low = 0, high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

constexpr bool HasAll(std::uint32_t bits, std::uint32_t wanted) {
    return (bits & wanted) == wanted;
}

constexpr std::uint32_t kFma = 1u << 12, kMayAskKept = 1u << 27;              // of leaf 1, register C
constexpr std::uint32_t kAvx2 = 1u << 5;                                      // of leaf 7, register B
constexpr std::uint32_t kAvx512 = 1u << 16 | 1u << 17 | 1u << 30 | 1u << 31;  // likewise: F, DQ, BW, VL
// Zen 4, the only processor of its family with AVX-512.
constexpr std::uint32_t kHalfFamily = 0x19;
constexpr std::uint32_t kKeeps256 = 0x06, kKeeps512 = 0xE6;

bool IsMadeByAmd(const Registers& leaf0) {
    return leaf0.b == 0x68747541 && leaf0.d == 0x69746e65 && leaf0.c == 0x444d4163;  // "AuthenticAMD"
}

std::uint32_t FamilyOf(std::uint32_t signature) {
    const std::uint32_t family = signature >> 8 & 0xF;
    return family == 0xF ? family + (signature >> 20 & 0xFF) : family;
}

}  // namespace

InstructionSets ReadInstructionSets() {
    const Registers leaf0 = Cpuid(0);
    if (leaf0.a < 7) return {};
    const Registers leaf1 = Cpuid(1);
    const std::uint32_t first = leaf1.c;
    if (!HasAll(first, kMayAskKept)) return {};
    const std::uint32_t kept = KeptRegisters();
    const std::uint32_t extended = Cpuid(7).b;
    InstructionSets sets;
    sets.avx2 = HasAll(extended, kAvx2) && HasAll(first, kFma) && HasAll(kept, kKeeps256);
    sets.avx512 = HasAll(extended, kAvx512) && HasAll(first, kFma) && HasAll(kept, kKeeps512);
    sets.halves = sets.avx512 && IsMadeByAmd(leaf0) && FamilyOf(leaf1.a) == kHalfFamily;
    return sets;
}

#else

InstructionSets ReadInstructionSets() {
    return {};
}

#endif

}  // namespace umbrant::effect
