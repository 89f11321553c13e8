// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The C library's allocations and C++'s, on their way from a module. Everybody else's pass.

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <new>

#include "host/validate/shim/shim_control.h"

#define SHIM_EXPORT extern "C" __attribute__((visibility("default")))

// The C library's own names for its functions, which nothing replaces.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<std::uintptr_t> moduleBegin{0};
std::atomic<std::uintptr_t> moduleEnd{0};
std::atomic<long> counted{0};
std::atomic<long> failing{0};

/// Whether this allocation, asked for from `caller`, is the one that fails.
bool Fails(const void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    if (address < moduleBegin || address >= moduleEnd) return false;
    return ++counted == failing;
}

void* New(std::size_t size, const void* caller) {
    void* block = Fails(caller) ? nullptr : __libc_malloc(size ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}

void* NewAligned(std::size_t size, std::align_val_t alignment, const void* caller) {
    void* block = Fails(caller) ? nullptr : __libc_memalign(static_cast<std::size_t>(alignment), size ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}

}  // namespace

#define CALLER __builtin_return_address(0)

SHIM_EXPORT void umbrantShimSetModule(const void* begin, const void* end) {
    moduleBegin = reinterpret_cast<std::uintptr_t>(begin);
    moduleEnd = reinterpret_cast<std::uintptr_t>(end);
}
SHIM_EXPORT void umbrantShimFailAllocation(long k) {
    counted = 0;
    failing = k;
}
SHIM_EXPORT long umbrantShimCountAllocations() {
    return counted;
}

SHIM_EXPORT void* malloc(std::size_t size) {
    if (Fails(CALLER)) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_malloc(size);
}
SHIM_EXPORT void* calloc(std::size_t nmemb, std::size_t size) {
    if (Fails(CALLER)) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_calloc(nmemb, size);
}
SHIM_EXPORT void* realloc(void* ptr, std::size_t size) {
    if (size > 0 && Fails(CALLER)) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_realloc(ptr, size);
}

#define SHIM_NEW __attribute__((visibility("default")))

SHIM_NEW void* operator new(std::size_t size) {
    return New(size, CALLER);
}
SHIM_NEW void* operator new[](std::size_t size) {
    return New(size, CALLER);
}
SHIM_NEW void* operator new(std::size_t size, std::align_val_t alignment) {
    return NewAligned(size, alignment, CALLER);
}
SHIM_NEW void* operator new[](std::size_t size, std::align_val_t alignment) {
    return NewAligned(size, alignment, CALLER);
}
SHIM_NEW void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Fails(CALLER) ? nullptr : __libc_malloc(size ? size : 1);
}
SHIM_NEW void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Fails(CALLER) ? nullptr : __libc_malloc(size ? size : 1);
}
