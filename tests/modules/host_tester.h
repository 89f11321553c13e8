// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the parts of the host tester share: promises, suites and worlds for the length of a test.

#include <cstddef>
#include <string>

#include "hostapi/hostapi.h"

/// One promise of the host, and whether it was kept.
void Expect(bool kept, const std::string& promise);

/// A suite for the length of a test.
template <typename Suite>
class Held {
 public:
    Held(const PF_InData* in, const char* name, int32_t version)
        : basic_(in->pica_basicP), name_(name), version_(version) {
        const void* suite = nullptr;
        const SPErr error = basic_->AcquireSuite(name, version, &suite);
        Expect(!error && suite, std::string("the suite ") + name + " is provided");
        suite_ = static_cast<const Suite*>(suite);
    }
    ~Held() { Expect(!basic_->ReleaseSuite(name_, version_), std::string("the suite ") + name_ + " is taken back"); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    const Suite* operator->() const { return suite_; }

 private:
    SPBasicSuite* basic_;
    const char* name_;
    int32_t version_;
    const Suite* suite_ = nullptr;
};

template <typename Pixel>
Pixel* RowOf(const PF_EffectWorld& world, A_long y) {
    return reinterpret_cast<Pixel*>(reinterpret_cast<char*>(world.data) + std::ptrdiff_t{world.rowbytes} * y);
}

/// A world of the host's for the length of a test.
template <typename Pixel>
struct Made {
    Made(PF_InData* data, PF_PixelFormat format, A_long width, A_long height)
        : in(data), suite(data, kPFWorldSuiteName, kPFWorldSuiteVersion2) {
        Expect(!suite->PF_NewWorld(in->effect_ref, width, height, 1, format, &world), "a world is made");
        Expect(world.width == width && world.height == height && world.data, "a world has the size that was asked for");
        Expect(world.rowbytes >= width * A_long{sizeof(Pixel)}, "a world's rows hold its pixels");
        PF_PixelFormat reported = 0;
        Expect(!suite->PF_GetPixelFormat(&world, &reported) && reported == format,
               "a world has the format that was asked for");
        bool clear = true;
        for (A_long y = 0; y < height; ++y) {
            for (A_long x = 0; x < width; ++x) clear &= RowOf<Pixel>(world, y)[x].alpha == decltype(Pixel::alpha){};
        }
        Expect(clear, "a world that is to be clear is");
    }
    ~Made() {
        Expect(!suite->PF_DisposeWorld(in->effect_ref, &world), "a world is taken back");
        Expect(world.data == nullptr, "a world that was taken back has no pixels");
    }
    Made(const Made&) = delete;
    Made& operator=(const Made&) = delete;
    Pixel* At(A_long x, A_long y) const { return RowOf<Pixel>(world, y) + x; }

    PF_InData* in;
    Held<PF_WorldSuite2> suite;
    PF_EffectWorld world{};
};

/// Walks, transfers, fills and copies: host_tester_pixels.cpp.
void TestPixelServices(PF_InData* in);
