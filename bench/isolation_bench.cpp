// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a frame of 1920 x 1080 costs more when its module runs in a process of its own: each frame is drawn here and
// there in turn, and the differences of the pairs are reported. A module that does little shows the cost most clearly:
//   isolation_bench [MODULE [PAIRS]]
// Without arguments it draws with two copies of the shadow on the CPU, 41 pairs. Exit code 1 when a median
// difference is more than 5 ms.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/isolation/module_child.h"
#include "host/isolation/module_process.h"
#include "host/module/module.h"
#include "host/session/effect_session.h"

using namespace umbrant::host;

namespace {

constexpr double kMostMilliseconds = 5;

[[noreturn]] void Fail(const std::string& sentence) {
    std::fprintf(stderr, "%s\n", sentence.c_str());
    std::exit(2);
}

template <typename T>
T Must(Result<T> result) {
    if (!result) Fail(result.error().sentence);
    return *std::move(result);
}

/// An opaque rectangle in the middle, of half the layer's size.
World Layer(Depth depth) {
    World world = World::Create(1920, 1080, depth);
    const int pixel = BytesPerPixel(depth);
    for (int y = 270; y < 810; ++y) {
        for (int x = 480; x < 1440; ++x) {
            for (int channel = 0; channel < 4; ++channel) {
                std::byte* at = world.Row(y) + std::ptrdiff_t{x} * pixel + channel * pixel / 4;
                if (depth == Depth::k8) {
                    *at = std::byte{255};
                } else {
                    *reinterpret_cast<float*>(at) = 1;
                }
            }
        }
    }
    return world;
}

double Draw(EffectSession& session, const FrameRequest& request) {
    const auto begin = std::chrono::steady_clock::now();
    const Frame frame = Must(session.Render(request));
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    // The other process is this program again.
    if (const auto served = RunModuleProcess(argc, argv)) return *served;
    setenv("UMBRANT_RENDERER", "cpu", 1);
    const std::string file = argc > 1 ? argv[1] : UMBRANT_MODULE_FILE;
    const int pairs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 41;
    const Module module = Must(Module::Load(file));
    EffectSession here = Must(EffectSession::Start(module));
    EffectSession there = EffectSession::Over(Must(ModuleProcess::Start({file, {}, {}})));
    for (EffectSession* session : {&here, &there}) (void)session->Params().SetFromText("quality/samples", "2");

    bool cheap = true;
    std::printf("%-6s %-6s %10s %10s %12s\n", "depth", "canvas", "here/ms", "there/ms", "more/ms");
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        const World layer = Layer(depth);
        for (const Canvas canvas : {Canvas::kLayer, Canvas::kGrow}) {
            FrameRequest request;
            request.layer = &layer;
            request.canvas = canvas;
            std::vector<double> own, other, more;
            for (int i = -2; i < pairs; ++i) {
                // Who begins changes, so that neither always follows the other.
                const double first = i % 2 == 0 ? Draw(here, request) : 0;
                const double second = Draw(there, request);
                const double last = i % 2 == 0 ? first : Draw(here, request);
                if (i < 0) continue;
                own.push_back(last);
                other.push_back(second);
                more.push_back(second - last);
            }
            cheap &= Median(more) <= kMostMilliseconds;
            std::printf("%-6d %-6s %10.2f %10.2f %12.2f\n", static_cast<int>(depth),
                        canvas == Canvas::kGrow ? "grow" : "layer", Median(own), Median(other), Median(more));
        }
    }
    return cheap ? 0 : 1;
}
