// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxMemorySuite: blocks that the plug-in must give back.

#include <cstdlib>

#include "tests/openfx/host/effect.h"
#include "tests/openfx/host/handed_over.h"
#include "tests/openfx/host/host.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

OfxStatus Alloc(void* handle, size_t bytes, void** out) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("memoryAlloc")) return status;
    if (handle != nullptr && host.Find<EffectObject>(handle, "memoryAlloc", "an effect") == nullptr) {
        return kOfxStatErrBadHandle;
    }
    void* block = std::malloc(bytes);
    if (block == nullptr) return kOfxStatErrMemory;
    HandedOver::Add(block);
    host.record.Open("memoryAlloc", 1);
    *out = block;
    return kOfxStatOK;
}

OfxStatus Free(void* block) {
    Host& host = *Host::Current();
    const OfxStatus fault = host.Enter("memoryFree");
    if (!HandedOver::Remove(block)) {
        host.record.Violation("memoryFree was called with a block that memoryAlloc did not give, or twice");
        return kOfxStatErrBadHandle;
    }
    host.record.Open("memoryAlloc", -1);
    std::free(block);
    return fault;
}

}  // namespace

const OfxMemorySuiteV1& MemorySuite() {
    static const OfxMemorySuiteV1 suite = {Alloc, Free};
    return suite;
}

}  // namespace umbrant::ofx
