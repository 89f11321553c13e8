// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/packaging/mapped/thread_locals.h"

#include <bit>
#include <cstring>
#include <map>
#include <memory>

#include "tests/packaging/mapped/macho_image.h"

namespace {

thread_local std::map<const ThreadLocalTemplate*, std::unique_ptr<std::byte[]>> blocks;

}  // namespace

extern "C" {

__attribute__((visibility("hidden"))) void umbrantMappedThreadLocalThunk();

/// Called by the thunk, which has saved the registers.
__attribute__((visibility("hidden"), used)) void* umbrantMappedThreadLocalAddress(const ThreadLocalDescriptor* wanted) {
    const auto* image = std::bit_cast<const ThreadLocalTemplate*>(wanted->key);
    std::unique_ptr<std::byte[]>& block = blocks[image];
    if (!block) {
        block.reset(new std::byte[image->size]());
        std::memcpy(block.get(), image->data, image->dataSize);
    }
    return block.get() + wanted->offset;
}
}

// Eight general registers and sixteen vector registers; with the return address and rbp the stack is aligned to 16.
asm(R"(
    .text
    .type umbrantMappedThreadLocalThunk, @function
    .hidden umbrantMappedThreadLocalThunk
    .globl umbrantMappedThreadLocalThunk
umbrantMappedThreadLocalThunk:
    pushq %rbp
    movq %rsp, %rbp
    pushq %rcx
    pushq %rdx
    pushq %rsi
    pushq %rdi
    pushq %r8
    pushq %r9
    pushq %r10
    pushq %r11
    subq $256, %rsp
    movups %xmm0, (%rsp)
    movups %xmm1, 16(%rsp)
    movups %xmm2, 32(%rsp)
    movups %xmm3, 48(%rsp)
    movups %xmm4, 64(%rsp)
    movups %xmm5, 80(%rsp)
    movups %xmm6, 96(%rsp)
    movups %xmm7, 112(%rsp)
    movups %xmm8, 128(%rsp)
    movups %xmm9, 144(%rsp)
    movups %xmm10, 160(%rsp)
    movups %xmm11, 176(%rsp)
    movups %xmm12, 192(%rsp)
    movups %xmm13, 208(%rsp)
    movups %xmm14, 224(%rsp)
    movups %xmm15, 240(%rsp)
    call umbrantMappedThreadLocalAddress
    movups (%rsp), %xmm0
    movups 16(%rsp), %xmm1
    movups 32(%rsp), %xmm2
    movups 48(%rsp), %xmm3
    movups 64(%rsp), %xmm4
    movups 80(%rsp), %xmm5
    movups 96(%rsp), %xmm6
    movups 112(%rsp), %xmm7
    movups 128(%rsp), %xmm8
    movups 144(%rsp), %xmm9
    movups 160(%rsp), %xmm10
    movups 176(%rsp), %xmm11
    movups 192(%rsp), %xmm12
    movups 208(%rsp), %xmm13
    movups 224(%rsp), %xmm14
    movups 240(%rsp), %xmm15
    addq $256, %rsp
    popq %r11
    popq %r10
    popq %r9
    popq %r8
    popq %rdi
    popq %rsi
    popq %rdx
    popq %rcx
    popq %rbp
    ret
    .size umbrantMappedThreadLocalThunk, . - umbrantMappedThreadLocalThunk
)");

void* ThreadLocalThunk() {
    return std::bit_cast<void*>(&umbrantMappedThreadLocalThunk);
}
