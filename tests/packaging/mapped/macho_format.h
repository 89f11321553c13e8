// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The records of a 64-bit Mach-O file that mapping one needs, as the public format documents give them. Order and size
// are the format's.

#include <cstdint>

struct FatHeader {  // big-endian
    uint32_t magic, count;
};
struct FatArch {  // big-endian
    uint32_t cpuType, cpuSubtype, offset, size, align;
};
struct MachHeader {
    uint32_t magic, cpuType, cpuSubtype, fileType, commandCount, commandSize, flags, reserved;
};
struct LoadCommand {
    uint32_t command, size;
};
struct SegmentCommand {
    uint32_t command, size;
    char name[16];
    uint64_t vmAddress, vmSize, fileOffset, fileSize;
    int32_t maxProtection, protection;
    uint32_t sectionCount, flags;
};
struct Section {
    char name[16], segment[16];
    uint64_t address, size;
    uint32_t offset, align, relocationOffset, relocationCount, flags, reserved1, reserved2, reserved3;
};
struct SymtabCommand {
    uint32_t command, size, symbolOffset, symbolCount, stringOffset, stringSize;
};
struct Symbol {
    uint32_t name;
    uint8_t type, section;
    uint16_t description;
    uint64_t value;
};
struct DyldInfoCommand {
    uint32_t command, size;
    uint32_t rebaseOffset, rebaseSize, bindOffset, bindSize, weakBindOffset, weakBindSize;
    uint32_t lazyBindOffset, lazyBindSize, exportOffset, exportSize;
};
/// What a thread-local variable's access calls through; `thunk` gets the descriptor and returns the address.
struct ThreadLocalDescriptor {
    void* thunk;
    uint64_t key;
    uint64_t offset;
};

inline constexpr uint32_t kFatMagic = 0xCAFEBABE;
inline constexpr uint32_t kMachMagic64 = 0xFEEDFACF;
inline constexpr uint32_t kCpuX86_64 = 0x01000007;
inline constexpr uint32_t kFileTypeBundle = 8;
inline constexpr uint32_t kCommandSymtab = 0x2;
inline constexpr uint32_t kCommandSegment64 = 0x19;
inline constexpr uint32_t kCommandDyldInfoOnly = 0x80000022;
inline constexpr uint32_t kSectionTypeMask = 0xFF;
inline constexpr uint32_t kSectionInitialisers = 0x9;
inline constexpr uint32_t kSectionThreadLocalData = 0x11;
inline constexpr uint32_t kSectionThreadLocalZero = 0x12;
inline constexpr uint32_t kSectionThreadLocalDescriptors = 0x13;
inline constexpr uint8_t kSymbolStab = 0xE0, kSymbolTypeMask = 0x0E, kSymbolInSection = 0x0E, kSymbolExternal = 0x01;
