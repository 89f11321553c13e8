// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Whole frames of a layer in memory, with the effect's defaults, through a session as the program opens it. Beside the
// time of a frame stand its stages in milliseconds, and what is not a GPU pass in milliseconds and percent. A frame of
// more than half a second runs once.
//
// "two-samples" draws the same worlds with two copies instead of all: what is not a pass costs the same, so that it can
// be measured often. peak_MiB is the process's largest resident memory so far; run one row alone to learn its own:
//   frame_bench --benchmark_filter='^frame/normal/float/1920x1080'

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "bench/frame_clock.h"
#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "host/session/effect_session.h"

using namespace umbrant::host;

namespace {

struct FrameCase {
    const char* type;
    Depth depth;
    int width;
    int height;
    bool twoSamples;
};

[[noreturn]] void Fail(const std::string& sentence) {
    std::cerr << sentence << '\n';
    std::exit(1);
}

/// An opaque rectangle in the middle, of half the layer's size; what the pixels hold makes no difference to the time.
World Layer(const FrameCase& frame) {
    World world = World::Create(frame.width, frame.height, frame.depth);
    for (int y = frame.height / 4; y < frame.height * 3 / 4; ++y) {
        for (int x = frame.width / 4; x < frame.width * 3 / 4; ++x) {
            if (frame.depth == Depth::k8) {
                RowOf<PF_Pixel>(world.Def(), y)[x] = {255, 200, 100, 50};
            } else {
                RowOf<PF_PixelFloat>(world.Def(), y)[x] = {1, 0.8f, 0.4f, 0.2f};
            }
        }
    }
    return world;
}

/// The module and a session, for the whole program: contexts and programs are made once, as in a long render.
class Rig {
 public:
    static Rig& Get() {
        static Rig rig;
        return rig;
    }

    FrameClock clock;

    void Draw(const World& layer) {
        Result<Frame> frame = session_.Render({.layer = &layer});
        if (!frame) Fail(frame.error().sentence);
        benchmark::DoNotOptimize(frame->output.Row(0));
    }
    void Set(const char* path, const std::string& text) {
        if (const Result<Done> set = session_.Params().SetFromText(path, text); !set) Fail(set.error().sentence);
    }
    std::string Default(const char* path) { return session_.Params().DefaultText(*session_.Params().Find(path)); }

 private:
    Rig() : module_(Open()), session_(Start(module_, clock)) {
        Set("quality/samples", "2");
        Draw(World::Create(16, 16, Depth::k8));
    }
    static Module Open() {
        Result<Module> module = Module::Load(UMBRANT_MODULE_FILE);
        if (!module) Fail(module.error().sentence);
        return *std::move(module);
    }
    static EffectSession Start(const Module& module, FrameClock& clock) {
        SessionOptions options;
        options.fault = [&clock](std::string_view call) { return clock.Note(call); };
        Result<EffectSession> session = EffectSession::Start(module, std::move(options));
        if (!session) Fail(session.error().sentence);
        return *std::move(session);
    }

    Module module_;
    EffectSession session_;
};

double PeakMebibytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void DrawFrames(benchmark::State& state, const FrameCase& frame) {
    Rig& rig = Rig::Get();
    rig.Set("style/shadow-type", frame.type);
    rig.Set("quality/samples", frame.twoSamples ? "2" : rig.Default("quality/samples"));
    const World layer = Layer(frame);
    rig.clock.Reset();
    for (auto _ : state) {
        rig.clock.Begin();
        rig.Draw(layer);
        rig.clock.End();
    }
    const double perFrame = 1000 / static_cast<double>(state.iterations());
    for (std::size_t i = 0; i < kStageCount; ++i) {
        const auto stage = static_cast<FrameStage>(i);
        state.counters[StageName(stage) + std::string("_ms")] = rig.clock.Seconds(stage) * perFrame;
    }
    state.counters["beside_ms"] = rig.clock.SecondsBesidePasses() * perFrame;
    state.counters["beside_pct"] = 100 * rig.clock.SecondsBesidePasses() / rig.clock.SecondsOfAll();
    state.counters["beside_cpu_ms"] = rig.clock.CpuSecondsBesidePasses() * perFrame;
    state.counters["peak_MiB"] = PeakMebibytes();
}

void Register(const FrameCase& frame) {
    std::string name = frame.twoSamples ? "two-samples/" : "frame/";
    name += std::string(frame.type) + (frame.depth == Depth::k8 ? "/8-bit/" : "/float/");
    name += std::to_string(frame.width) + "x" + std::to_string(frame.height);
    benchmark::RegisterBenchmark(name.c_str(), [frame](benchmark::State& state) { DrawFrames(state, frame); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
    constexpr struct { int width, height; } kSizes[] = {{640, 360}, {1280, 720}, {1920, 1080}, {3840, 2160}};
    for (const char* type : {"normal", "inner", "radial"}) {
        for (const Depth depth : {Depth::k8, Depth::k32}) {
            for (const auto& size : kSizes) {
                Register({type, depth, size.width, size.height, true});
                Register({type, depth, size.width, size.height, false});
            }
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
