// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Draws random scenes with every set of kernels of this processor and prints a number for the bytes of each: two
// processors must print the same.
//
// Usage: scene_hashes COUNT

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "cpu/coarse/decimation.h"
#include "cpu/kernels/kernels.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/processor_scene.h"

namespace umbrant::effect {

namespace {

uint64_t HashOf(const Plane& plane) {
    uint64_t hash = 14695981039346656037u;
    for (const double value : plane.values) {
        uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof(bits));
        hash = (hash ^ bits) * 1099511628211u;
    }
    return hash;
}

}  // namespace

}  // namespace umbrant::effect

int main(int argc, char** argv) {
    using namespace umbrant::effect;
    const int count = argc == 2 ? std::atoi(argv[1]) : 0;
    if (count < 1) {
        std::cerr << "Usage: scene_hashes COUNT\n";
        return 2;
    }
    fake::Reset();
    fake::Renderer() = RendererChoice::kProcessor;
    for (const CpuKernels* kernels : RunnableKernels()) {
        UseKernels(kernels);
        std::cerr << kernels->name << "\n";
        SceneRenderer renderer;
        for (unsigned number = 0; number < static_cast<unsigned>(count); ++number) {
            const RandomScene scene = MakeRandomScene(number);
            std::cout << number << " " << HashOf(renderer.Draw(scene));
            SetDrawsExactly(true);
            std::cout << " " << HashOf(renderer.Draw(scene)) << "\n";
            SetDrawsExactly(false);
        }
    }
    EndProcessorThreads();
    return 0;
}
