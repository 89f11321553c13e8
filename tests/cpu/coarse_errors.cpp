// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Draws scenes that are hard for coarse grids, and prints one line for each: its number, type, depth, samples, the
// worst error and the most that is allowed (in units of 1/255 or 1/65535), the share of 8-bit pixels that differ, and
// ties.
//
// Usage: coarse_errors COUNT

#include <cmath>
#include <cstdlib>
#include <iostream>

#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/hard_scene.h"

int main(int argc, char** argv) {
    using namespace umbrant::effect;
    const int count = argc == 2 ? std::atoi(argv[1]) : 0;
    if (count < 1) {
        std::cerr << "Usage: coarse_errors COUNT\n";
        return 2;
    }
    fake::Reset();
    fake::Renderer() = RendererChoice::kProcessor;
    {
        SceneRenderer renderer;
        for (unsigned number = 0; number < static_cast<unsigned>(count); ++number) {
            const RandomScene scene = MakeHardScene(number);
            const SceneErrors errors = MeasureErrors(renderer, scene);
            std::cout << number << " " << scene.type << " " << scene.depth << " " << std::floor(scene.panel.samples)
                      << " " << errors.worst << " " << errors.allowed << " " << errors.share << " " << errors.ties
                      << "\n";
        }
    }
    EndProcessorThreads();
    return 0;
}
