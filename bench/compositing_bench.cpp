// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How fast the host lays one full-HD world over another, beside the loop one would write first: a pixel at a time, with
// the mode asked for in every pixel. Both run here, so that their ratio is taken on one machine in one run.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "host/compositing/row_pool.h"
#include "host/compositing/transfer_rect.h"
#include "host/compositing/world.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

World RandomWorld(Depth depth, unsigned seed) {
    World world = World::Create(kWidth, kHeight, depth);
    std::mt19937 engine(seed);
    for (int y = 0; y < kHeight; ++y) {
        for (int i = 0; i < 4 * kWidth; ++i) {
            const auto bits = static_cast<unsigned>(engine() >> 24);
            if (depth == Depth::k8) {
                world.Row(y)[i] = static_cast<std::byte>(bits);
            } else {
                const float value = static_cast<float>(bits) / 255.0f;
                std::memcpy(world.Row(y) + 4 * i, &value, sizeof(value));
            }
        }
    }
    return world;
}

float NaiveBlend(PF_TransferMode mode, float s, float d) {
    switch (mode) {
        case PF_Xfer_MULTIPLY:
            return s * d;
        default:
            return s;
    }
}

template <typename Pixel>
void NaivePixel(const Pixel& s, Pixel& d, PF_TransferMode mode, float opacity, float full) {
    const float sourceAlpha = static_cast<float>(s.alpha) / full;
    const float alpha = static_cast<float>(d.alpha) / full;
    const auto store = [full](float value) {
        if (full == 1.0f) return value;
        return std::min(std::max(value, 0.0f), 1.0f) * full + 0.5f;
    };
    using Channel = decltype(Pixel::alpha);
    if (mode == PF_Xfer_MULTIPLY_ALPHA) {
        d.alpha = static_cast<Channel>(store(alpha * (1.0f - opacity + opacity * sourceAlpha)));
        return;
    }
    const float a = sourceAlpha * opacity;
    const float over = a + alpha - a * alpha;
    const auto channel = [&](Channel sc, Channel& dc) {
        const float sv = static_cast<float>(sc) / full;
        const float dv = static_cast<float>(dc) / full;
        const float sum = a * (1 - alpha) * sv + alpha * (1 - a) * dv + a * alpha * NaiveBlend(mode, sv, dv);
        if (over != 0.0f) dc = static_cast<Channel>(store(sum / over));
    };
    channel(s.red, d.red);
    channel(s.green, d.green);
    channel(s.blue, d.blue);
    d.alpha = static_cast<Channel>(store(over));
}

template <typename Pixel>
void Naive(benchmark::State& state, Depth depth, PF_TransferMode mode, float full) {
    const World source = RandomWorld(depth, 1);
    World destination = RandomWorld(depth, 2);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y) {
            const auto* from = static_cast<const Pixel*>(static_cast<const void*>(source.Row(y)));
            auto* to = static_cast<Pixel*>(static_cast<void*>(destination.Row(y)));
            for (int x = 0; x < kWidth; ++x) NaivePixel(from[x], to[x], mode, 1.0f, full);
        }
        benchmark::ClobberMemory();
    }
}

void Host(benchmark::State& state, Depth depth, PF_TransferMode mode) {
    const World source = RandomWorld(depth, 1);
    World destination = RandomWorld(depth, 2);
    PF_CompositeMode record{};
    record.xfer = mode;
    record.opacity = 255;
    for (auto _ : state) {
        TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &record, nullptr, 0,
                     0, &destination.Def());
        benchmark::ClobberMemory();
    }
    state.counters["threads"] = RowThreads();
}

void Register(const char* name, PF_TransferMode mode) {
    const std::string label(name);
    benchmark::RegisterBenchmark((label + "/8-bit/host").c_str(),
                                 [mode](benchmark::State& state) { Host(state, Depth::k8, mode); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((label + "/8-bit/naive").c_str(),
                                 [mode](benchmark::State& state) { Naive<PF_Pixel>(state, Depth::k8, mode, 255.0f); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((label + "/float/host").c_str(),
                                 [mode](benchmark::State& state) { Host(state, Depth::k32, mode); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(
        (label + "/float/naive").c_str(),
        [mode](benchmark::State& state) { Naive<PF_PixelFloat>(state, Depth::k32, mode, 1.0f); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
    Register("IN_FRONT", PF_Xfer_IN_FRONT);
    Register("MULTIPLY", PF_Xfer_MULTIPLY);
    Register("MULTIPLY_ALPHA", PF_Xfer_MULTIPLY_ALPHA);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
