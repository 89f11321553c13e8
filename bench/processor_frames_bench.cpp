// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Whole frames on the CPU renderer, the layer in memory, everything included, with the shares of their stages: the
// host sees its own calls, and what lies between them are the passes. "frame" rows are the effect's defaults over a
// layer that fills the frame, "text" rows over one that fills a tenth of it, "flat" rows over equal
// copies; "samples", "softness", "resolution" and "area" rows let one thing grow, "framed" rows the softness in a
// picture that is no larger than its layer. The threads are those of the machine:
//   taskset --cpu-list 0 processor_frames_bench       on one
// peak_MiB is the process's largest resident memory so far; run one row alone to learn its own.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bench/rig.h"

namespace {

using Settings = std::vector<std::pair<std::string, std::string>>;

struct FrameCase {
    std::string name;
    int width;
    int height;
    Depth depth = Depth::k8;
    double share = 1;
    Settings settings{};
    bool isFramed = false;  ///< no larger than its layer
};

double PeakMebibytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

struct StageSums {
    double upload = 0, passes = 0, readBack = 0, composite = 0, all = 0;

    double Rest() const { return all - upload - passes - readBack - composite; }

    void Add(const Frame& frame, double milliseconds) {
        all += milliseconds;
        for (const CommandRecord& command : frame.commands) {
            if (command.command != PF_Cmd_SMART_RENDER) continue;
            const StageTimes& stages = command.stages;
            upload += stages.upload;
            readBack += stages.readBack;
            composite += stages.composite;
            passes += command.milliseconds - stages.upload - stages.readBack - stages.composite;
        }
    }
};

void DrawFrames(benchmark::State& state, const FrameCase& frame) {
    Rig& rig = Rig::Get();
    rig.SetDefaults();
    for (const auto& [path, value] : frame.settings) rig.Set(path, value);
    const World layer = DiscLayer(frame.width, frame.height, frame.depth, frame.share);
    rig.Draw(layer, frame.isFramed);
    StageSums sums;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        const Frame drawn = rig.Draw(layer, frame.isFramed);
        sums.Add(drawn, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    const auto frames = static_cast<double>(state.iterations());
    state.counters["upload_ms"] = sums.upload / frames;
    state.counters["passes_ms"] = sums.passes / frames;
    state.counters["read_back_ms"] = sums.readBack / frames;
    state.counters["composite_ms"] = sums.composite / frames;
    state.counters["rest_ms"] = sums.Rest() / frames;
    state.counters["peak_MiB"] = PeakMebibytes();
}

std::vector<FrameCase> Cases() {
    std::vector<FrameCase> cases;
    const auto add = [&cases](FrameCase frame) {
        const char* depth = frame.depth == Depth::k8 ? "/8-bit/" : "/float/";
        frame.name += depth + std::to_string(frame.width) + "x" + std::to_string(frame.height);
        cases.push_back(std::move(frame));
    };
    constexpr std::pair<int, int> kSizes[] = {{640, 360}, {1280, 720}, {1920, 1080}, {3840, 2160}};
    for (const char* type : {"normal", "inner", "radial"}) {
        for (const Depth depth : {Depth::k8, Depth::k32}) {
            for (const auto& [width, height] : kSizes) {
                add({std::string("frame/") + type, width, height, depth, 1, {{"style/shadow-type", type}}});
            }
            add({std::string("text/") + type, 1920, 1080, depth, 0.1, {{"style/shadow-type", type}}});
        }
    }
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        add({"plain/normal",
             1920,
             1080,
             depth,
             1,
             {{"quality/samples", "2"}, {"easing/ease", "0"}, {"style/softness", "120"}, {"style/distance", "200"}}});
    }
    add({"flat/normal",
         1920,
         1080,
         Depth::k8,
         1,
         {{"style/softness", "0"}, {"opacity/opacity-start", "50"}, {"opacity/opacity-end", "50"}}});
    for (const int samples : {1, 2, 4, 8, 16, 32, 64, 128}) {
        add({"samples/" + std::to_string(samples),
             960,
             540,
             Depth::k8,
             1,
             {{"quality/samples", std::to_string(samples)}}});
    }
    for (const int softness : {0, 15, 30, 60, 120, 240, 480}) {
        add({"softness/" + std::to_string(softness),
             960,
             540,
             Depth::k8,
             1,
             {{"style/softness", std::to_string(softness)}}});
    }
    for (const int softness : {250, 500}) {
        add({"framed/" + std::to_string(softness),
             960,
             540,
             Depth::k8,
             1,
             {{"style/softness", std::to_string(softness)}},
             true});
    }
    for (const int resolution : {1, 2, 3, 4, 5}) {
        add({"resolution/" + std::to_string(20 * resolution),
             960,
             540,
             Depth::k8,
             1,
             {{"quality/resolution", std::to_string(resolution)}}});
    }
    for (const int area : {1, 2, 3, 4, 6, 8}) add({"area/" + std::to_string(area), 480 * area, 270 * area});
    return cases;
}

}  // namespace

int main(int argc, char** argv) {
    setenv("UMBRANT_RENDERER", "cpu", 1);
    for (const FrameCase& frame : Cases()) {
        benchmark::RegisterBenchmark(frame.name.c_str(), [frame](benchmark::State& state) { DrawFrames(state, frame); })
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
