// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/test_host.h"

#include <atomic>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// A handle is the address of `master`, which points to the bytes while the handle is locked.
struct TestHost::Block {
    char* master = nullptr;
    char* bytes = nullptr;
    size_t size = 0;
    int locks = 0;
    bool counted = true;
    bool live = true;
};

namespace {

std::atomic<TestHost*> current{nullptr};

int Sprintf(A_char* out, const A_char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsprintf(out, format, arguments);
    va_end(arguments);
    return length;
}

PF_ANSICallbacksSuite1 AnsiSuite() {
    PF_ANSICallbacksSuite1 ansi{};
    ansi.atan = std::atan;
    ansi.atan2 = std::atan2;
    ansi.ceil = std::ceil;
    ansi.cos = std::cos;
    ansi.exp = std::exp;
    ansi.fabs = std::fabs;
    ansi.floor = std::floor;
    ansi.fmod = std::fmod;
    ansi.hypot = std::hypot;
    ansi.log = std::log;
    ansi.log10 = std::log10;
    ansi.pow = std::pow;
    ansi.sin = std::sin;
    ansi.sqrt = std::sqrt;
    ansi.tan = std::tan;
    ansi.sprintf = Sprintf;
    ansi.strcpy = std::strcpy;
    ansi.asin = std::asin;
    ansi.acos = std::acos;
    return ansi;
}

size_t PixelBytes(PF_PixelFormat format) {
    switch (format) {
        case PF_PixelFormat_ARGB128:
            return sizeof(PF_PixelFloat);
        case PF_PixelFormat_ARGB64:
            return sizeof(PF_Pixel16);
        default:
            return sizeof(PF_Pixel);
    }
}

}  // namespace

// The functions behind the suites' slots; all answer for the current host.
struct TestHostCalls {
    static SPErr AcquireSuite(const char* name, int32_t version, const void** suite) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log(std::string("AcquireSuite ") + name + " " + std::to_string(version));
        *suite = nullptr;
        if (auto refused = host.refused_.find(name); refused != host.refused_.end()) return refused->second;
        auto offered = host.offered_.find({name, version});
        if (offered == host.offered_.end()) return A_Err_MISSING_SUITE;
        *suite = offered->second;
        if (*suite) ++host.suiteBalance[offered->first];
        return kSPNoError;
    }

    static SPErr ReleaseSuite(const char* name, int32_t version) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log(std::string("ReleaseSuite ") + name + " " + std::to_string(version));
        if (--host.suiteBalance[{name, version}] < 0) ++host.misuses;
        return kSPNoError;
    }

    static TestHost::Block* Find(TestHost& host, PF_Handle handle) {
        for (TestHost::Block* block : host.blocks_) {
            if (&block->master == handle && block->live) return block;
        }
        ++host.misuses;
        return nullptr;
    }

    static PF_Handle NewHandle(A_HandleSize size) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("host_new_handle " + std::to_string(size));
        if (++host.newHandleCalls_ == host.failNewHandle) return nullptr;
        PF_Handle handle = host.MakeHandle(size);
        if (!handle) return nullptr;
        Find(host, handle)->counted = true;
        ++host.liveHandles;
        return handle;
    }

    static void* LockHandle(PF_Handle handle) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("host_lock_handle");
        if (++host.lockCalls_ == host.failLock) return nullptr;
        TestHost::Block* block = Find(host, handle);
        if (!block) return nullptr;
        ++block->locks;
        ++host.liveLocks;
        block->master = block->bytes;
        return block->bytes;
    }

    static void UnlockHandle(PF_Handle handle) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("host_unlock_handle");
        TestHost::Block* block = Find(host, handle);
        if (!block) return;
        if (block->locks == 0) {
            ++host.misuses;
            return;
        }
        --block->locks;
        --host.liveLocks;
        if (block->locks == 0 && host.pointsElsewhere_) block->master = host.elsewhere_;
    }

    static void DisposeHandle(PF_Handle handle) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("host_dispose_handle");
        TestHost::Block* block = Find(host, handle);
        if (!block) return;
        if (block->locks != 0) ++host.misuses;
        block->live = false;
        if (block->counted) --host.liveHandles;
    }

    static A_HandleSize HandleSize(PF_Handle handle) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        TestHost::Block* block = Find(host, handle);
        return block ? block->size : 0;
    }

    static PF_Err ResizeHandle(A_HandleSize size, PF_Handle* handle) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        TestHost::Block* block = Find(host, *handle);
        if (!block) return PF_Err_BAD_CALLBACK_PARAM;
        if (block->locks != 0) ++host.misuses;
        void* bytes = std::realloc(block->bytes, size ? size : 1);
        if (!bytes) return PF_Err_OUT_OF_MEMORY;
        block->bytes = static_cast<char*>(bytes);
        block->master = host.pointsElsewhere_ && block->locks == 0 ? host.elsewhere_ : block->bytes;
        block->size = size;
        return PF_Err_NONE;
    }

    template <typename Pixel, typename Function>
    static PF_Err Iterate(const char* name, PF_InData* inData, A_long progressBase, A_long progressFinal,
                          PF_EffectWorld* source, const PF_Rect* area, void* refcon, Function function,
                          PF_EffectWorld* destination) {
        TestHost& host = TestHost::Current();
        {
            std::lock_guard lock(host.mutex_);
            host.Log(std::string(name) + " " + std::to_string(progressBase) + " " + std::to_string(progressFinal));
            host.lastIterate = {inData, progressBase, progressFinal, source, area, destination, refcon};
        }
        const PF_Rect all = {0, 0, destination->width, destination->height};
        const PF_Rect rect = area ? *area : all;
        auto pixel = [](PF_EffectWorld* world, A_long x, A_long y) {
            char* row = reinterpret_cast<char*>(world->data) + static_cast<ptrdiff_t>(y) * world->rowbytes;
            return reinterpret_cast<Pixel*>(row) + x;
        };
        for (A_long y = rect.top; y < rect.bottom; ++y) {
            for (A_long x = rect.left; x < rect.right; ++x) {
                if (PF_Err error = function(refcon, x, y, pixel(source, x, y), pixel(destination, x, y))) return error;
            }
        }
        return host.iterateError;
    }

    static PF_Err Iterate8(PF_InData* inData, A_long progressBase, A_long progressFinal, PF_EffectWorld* source,
                           const PF_Rect* area, void* refcon, PF_IteratePixel8Func function,
                           PF_EffectWorld* destination) {
        return Iterate<PF_Pixel>("iterate8", inData, progressBase, progressFinal, source, area, refcon, function,
                                 destination);
    }

    static PF_Err IterateFloat(PF_InData* inData, A_long progressBase, A_long progressFinal, PF_EffectWorld* source,
                               const PF_Rect* area, void* refcon, PF_IteratePixelFloatFunc function,
                               PF_EffectWorld* destination) {
        return Iterate<PF_PixelFloat>("iterateFloat", inData, progressBase, progressFinal, source, area, refcon,
                                      function, destination);
    }

    static PF_Err NewWorld(PF_ProgPtr, A_long width, A_long height, PF_Boolean clear, PF_PixelFormat format,
                           PF_EffectWorld* world) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("PF_NewWorld " + std::to_string(width) + " " + std::to_string(height) + " " + std::to_string(clear));
        if (host.newWorldError) return host.newWorldError;
        if (width < 1 || height < 1) return PF_Err_BAD_CALLBACK_PARAM;
        *world = {};
        world->width = width;
        world->height = height;
        world->rowbytes = static_cast<A_long>(static_cast<size_t>(width + 2) * PixelBytes(format));
        world->extent_hint = {0, 0, width, height};
        const size_t bytes = static_cast<size_t>(world->rowbytes) * static_cast<size_t>(height);
        world->data = static_cast<PF_Pixel*>(std::malloc(bytes));
        std::memset(static_cast<void*>(world->data), clear ? 0 : 0xCD, bytes);
        ++host.liveWorlds;
        return PF_Err_NONE;
    }

    static PF_Err DisposeWorld(PF_ProgPtr, PF_EffectWorld* world) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("PF_DisposeWorld");
        if (!world->data) {
            ++host.misuses;
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        std::free(world->data);
        *world = {};
        --host.liveWorlds;
        return PF_Err_NONE;
    }

    static PF_Err GetPixelFormat(const PF_EffectWorld*, PF_PixelFormat* format) {
        TestHost& host = TestHost::Current();
        std::lock_guard lock(host.mutex_);
        host.Log("PF_GetPixelFormat");
        if (host.pixelFormatError) return host.pixelFormatError;
        *format = host.pixelFormat;
        return PF_Err_NONE;
    }
};

TestHost::TestHost() {
    if (current.exchange(this)) std::abort();  // two at once would answer for one another
    basic.AcquireSuite = TestHostCalls::AcquireSuite;
    basic.ReleaseSuite = TestHostCalls::ReleaseSuite;
    handleSuite = {TestHostCalls::NewHandle,     TestHostCalls::LockHandle, TestHostCalls::UnlockHandle,
                   TestHostCalls::DisposeHandle, TestHostCalls::HandleSize, TestHostCalls::ResizeHandle};
    iterate8Suite.iterate = TestHostCalls::Iterate8;
    iterateFloatSuite.iterate = TestHostCalls::IterateFloat;
    worldSuite = {TestHostCalls::NewWorld, TestHostCalls::DisposeWorld, TestHostCalls::GetPixelFormat};
    ansiSuite = AnsiSuite();
    Offer(kPFHandleSuiteName, kPFHandleSuiteVersion1, &handleSuite);
    Offer(kPFIterate8SuiteName, kPFIterate8SuiteVersion1, &iterate8Suite);
    Offer(kPFIterateFloatSuiteName, kPFIterateFloatSuiteVersion1, &iterateFloatSuite);
    Offer(kPFWorldSuiteName, kPFWorldSuiteVersion2, &worldSuite);
    Offer(kPFANSISuiteName, kPFANSISuiteVersion1, &ansiSuite);
    utils.ansi.sprintf = Sprintf;
    inData.pica_basicP = &basic;
    inData.utils = &utils;
}

TestHost::~TestHost() {
    for (Block* block : blocks_) {
        std::free(block->bytes);
        delete block;
    }
    current = nullptr;
}

TestHost& TestHost::Current() {
    TestHost* host = current;
    if (!host) std::abort();
    return *host;
}

void TestHost::Offer(const std::string& name, int32_t version, const void* suite) {
    offered_[{name, version}] = suite;
}

void TestHost::Refuse(const std::string& name, SPErr error) {
    refused_[name] = error;
}

void TestHost::Log(const std::string& line) {
    std::lock_guard lock(mutex_);
    calls.push_back(line);
    if (onCall) onCall(line);
}

int TestHost::CountOf(const std::string& call) const {
    std::lock_guard lock(mutex_);
    int count = 0;
    for (const std::string& line : calls) count += line == call || line.starts_with(call + " ");
    return count;
}

bool TestHost::Balanced(std::string* why) const {
    std::lock_guard lock(mutex_);
    std::string text;
    auto check = [&](const std::string& what, int count) {
        if (count != 0) text += what + ": " + std::to_string(count) + "; ";
    };
    for (const auto& [key, count] : suiteBalance) check(key.first + " " + std::to_string(key.second), count);
    check("handles", liveHandles);
    check("locks", liveLocks);
    check("worlds", liveWorlds);
    check("misuses", misuses);
    if (why) *why = text;
    return text.empty();
}

PF_Handle TestHost::MakeHandle(size_t bytes) {
    std::lock_guard lock(mutex_);
    void* memory = std::calloc(bytes ? bytes : 1, 1);
    if (!memory) return nullptr;
    auto* block = new Block;
    block->bytes = static_cast<char*>(memory);
    block->master = pointsElsewhere_ ? elsewhere_ : block->bytes;
    block->size = bytes;
    block->counted = false;
    blocks_.push_back(block);
    return &block->master;
}

void* TestHost::BytesOf(PF_Handle handle) {
    std::lock_guard lock(mutex_);
    TestHost::Block* block = TestHostCalls::Find(*this, handle);
    return block ? block->bytes : nullptr;
}

void TestHost::PointUnlockedHandlesTo(char* pointer) {
    std::lock_guard lock(mutex_);
    pointsElsewhere_ = true;
    elsewhere_ = pointer;
    for (Block* block : blocks_) {
        if (block->locks == 0) block->master = elsewhere_;
    }
}
