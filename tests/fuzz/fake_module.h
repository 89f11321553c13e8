// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the module on the fake platform exports beside its two entries: the platform's script, set from outside.

#include <cstdint>

/// What the fake platform is to fail with, and what the driver's read-backs hold. All zero: nothing fails.
struct FakePlatformScript {
    std::uint8_t chooseFails = 0;
    std::uint8_t createFails = 0;
    std::uint8_t makeCurrentFails = 0;
    std::uint8_t badFramebuffer = 0;  ///< the n-th status, from 1, is incomplete
    std::uint8_t badShader = 0;       ///< the n-th compilation, from 1, fails
    std::uint8_t badProgram = 0;      ///< the n-th link, from 1, fails
    bool processor = false;           ///< the processor draws
    std::uint8_t pixel = 0;           ///< every byte that is read back
};

struct FakePlatformObjects {
    int textures;
    int framebuffers;
    int contexts;
};

/// Forgets everything and follows the script from here on. No render may be under way.
using SetFakePlatform = void (*)(const FakePlatformScript*, bool forget);
/// What is alive.
using CountFakePlatform = FakePlatformObjects (*)();
