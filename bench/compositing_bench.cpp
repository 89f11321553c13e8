// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How fast the host works on full-HD worlds: laying one over another in every mode and depth, calling an effect's
// function for every pixel, making, filling and copying. items_per_second is pixels. "naive" is the loop one would
// write first, a pixel at a time, with the mode asked for in every pixel; it runs here, so that the ratio is taken on
// one machine in one run.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "host/compositing/copy_world.h"
#include "host/compositing/fill_world.h"
#include "host/compositing/row_pool.h"
#include "host/compositing/transfer/transfer_rect.h"
#include "host/compositing/world.h"
#include "host/suites/pf/iterate.h"
#include "hostapi/limits.h"

using namespace umbrant::host;

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
            } else if (depth == Depth::k16) {
                const auto value = static_cast<A_u_short>(bits * PF_MAX_CHAN16 / PF_MAX_CHAN8);
                std::memcpy(world.Row(y) + std::ptrdiff_t{2} * i, &value, sizeof(value));
            } else {
                const float value = static_cast<float>(bits) / 255.0f;
                std::memcpy(world.Row(y) + std::ptrdiff_t{4} * i, &value, sizeof(value));
            }
        }
    }
    return world;
}

void CountPixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
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
    CountPixels(state);
}

void Host(benchmark::State& state, Depth depth, PF_TransferMode mode) {
    const World source = RandomWorld(depth, 1);
    World destination = RandomWorld(depth, 2);
    PF_CompositeMode record{};
    record.xfer = mode;
    record.opacity = 255;
    record.opacitySu = PF_MAX_CHAN16;
    for (auto _ : state) {
        TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &record, nullptr, 0,
                     0, &destination.Def());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
    state.counters["threads"] = RowThreads();
}

/// What the effect's upload and read-back do with a pixel.
template <typename Pixel>
void Iterate(benchmark::State& state, Depth depth) {
    World world = RandomWorld(depth, 1);
    Pixel colour{};
    const auto function = [](void* refcon, A_long, A_long, Pixel*, Pixel* out) {
        const auto alpha = out->alpha;
        *out = *static_cast<const Pixel*>(refcon);
        out->alpha = alpha;
        return static_cast<PF_Err>(PF_Err_NONE);
    };
    for (auto _ : state) {
        IteratePixels<Pixel>(&world.Def(), nullptr, nullptr, Outside::kSkipped, &colour, function, &world.Def());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

/// An output world as a frame gets it: not cleared, but filled with the host's pattern.
void Create(benchmark::State& state, Depth depth) {
    for (auto _ : state) {
        World world = World::Create(kWidth, kHeight, depth, false);
        benchmark::DoNotOptimize(world.Row(0));
    }
    CountPixels(state);
}

void Fill(benchmark::State& state, Depth depth) {
    World world = RandomWorld(depth, 1);
    for (auto _ : state) {
        FillWorld({}, nullptr, &world.Def());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

void Copy(benchmark::State& state, Depth depth) {
    const World source = RandomWorld(depth, 1);
    World destination = RandomWorld(depth, 2);
    for (auto _ : state) {
        CopyWorld(&source.Def(), &destination.Def(), nullptr, nullptr);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

const char* DepthName(Depth depth) {
    return depth == Depth::k8 ? "8-bit" : depth == Depth::k16 ? "16-bit" : "float";
}

template <typename Function, typename... Arguments>
void Register(const std::string& name, Function function, Arguments... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { function(state, arguments...); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

struct NamedMode {
    const char* name;
    PF_TransferMode mode;
};
constexpr NamedMode kModes[] = {
    {"COPY", PF_Xfer_COPY},
    {"BEHIND", PF_Xfer_BEHIND},
    {"IN_FRONT", PF_Xfer_IN_FRONT},
    {"DISSOLVE", PF_Xfer_DISSOLVE},
    {"ADD", PF_Xfer_ADD},
    {"MULTIPLY", PF_Xfer_MULTIPLY},
    {"SCREEN", PF_Xfer_SCREEN},
    {"OVERLAY", PF_Xfer_OVERLAY},
    {"SOFT_LIGHT", PF_Xfer_SOFT_LIGHT},
    {"HARD_LIGHT", PF_Xfer_HARD_LIGHT},
    {"DARKEN", PF_Xfer_DARKEN},
    {"LIGHTEN", PF_Xfer_LIGHTEN},
    {"DIFFERENCE", PF_Xfer_DIFFERENCE},
    {"HUE", PF_Xfer_HUE},
    {"SATURATION", PF_Xfer_SATURATION},
    {"COLOR", PF_Xfer_COLOR},
    {"LUMINOSITY", PF_Xfer_LUMINOSITY},
    {"MULTIPLY_ALPHA", PF_Xfer_MULTIPLY_ALPHA},
    {"MULTIPLY_ALPHA_LUMA", PF_Xfer_MULTIPLY_ALPHA_LUMA},
    {"MULTIPLY_NOT_ALPHA", PF_Xfer_MULTIPLY_NOT_ALPHA},
    {"MULTIPLY_NOT_ALPHA_LUMA", PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA},
    {"ADDITIVE_PREMUL", PF_Xfer_ADDITIVE_PREMUL},
    {"ALPHA_ADD", PF_Xfer_ALPHA_ADD},
    {"COLOR_DODGE", PF_Xfer_COLOR_DODGE},
    {"COLOR_BURN", PF_Xfer_COLOR_BURN},
    {"EXCLUSION", PF_Xfer_EXCLUSION},
    {"DIFFERENCE2", PF_Xfer_DIFFERENCE2},
    {"COLOR_DODGE2", PF_Xfer_COLOR_DODGE2},
    {"COLOR_BURN2", PF_Xfer_COLOR_BURN2},
    {"LINEAR_DODGE", PF_Xfer_LINEAR_DODGE},
    {"LINEAR_BURN", PF_Xfer_LINEAR_BURN},
    {"LINEAR_LIGHT", PF_Xfer_LINEAR_LIGHT},
    {"VIVID_LIGHT", PF_Xfer_VIVID_LIGHT},
    {"PIN_LIGHT", PF_Xfer_PIN_LIGHT},
    {"HARD_MIX", PF_Xfer_HARD_MIX},
    {"LIGHTER_COLOR", PF_Xfer_LIGHTER_COLOR},
    {"DARKER_COLOR", PF_Xfer_DARKER_COLOR},
    {"SUBTRACT", PF_Xfer_SUBTRACT},
    {"DIVIDE", PF_Xfer_DIVIDE},
};

}  // namespace

int main(int argc, char** argv) {
    for (const NamedMode& row : kModes) {
        for (const Depth depth : {Depth::k8, Depth::k16, Depth::k32}) {
            Register(std::string(row.name) + "/" + DepthName(depth) + "/host", Host, depth, row.mode);
        }
    }
    for (const NamedMode& row : kModes) {
        // The three that the loop knows.
        const bool known =
            row.mode == PF_Xfer_IN_FRONT || row.mode == PF_Xfer_MULTIPLY || row.mode == PF_Xfer_MULTIPLY_ALPHA;
        if (!known) continue;
        Register(std::string(row.name) + "/8-bit/naive", Naive<PF_Pixel>, Depth::k8, row.mode, 255.0f);
        Register(std::string(row.name) + "/float/naive", Naive<PF_PixelFloat>, Depth::k32, row.mode, 1.0f);
    }
    Register("iterate/8-bit", Iterate<PF_Pixel>, Depth::k8);
    Register("iterate/16-bit", Iterate<PF_Pixel16>, Depth::k16);
    Register("iterate/float", Iterate<PF_PixelFloat>, Depth::k32);
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::k32}) {
        Register(std::string("create/") + DepthName(depth), Create, depth);
        Register(std::string("fill/") + DepthName(depth), Fill, depth);
        Register(std::string("copy/") + DepthName(depth), Copy, depth);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
