// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The sources of the three shadow types, and what is drawn of them.

#include "cpu/shadows.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "cpu/stack_drawer.h"
#include "cpu/thread_pool.h"

namespace umbrant::effect {

namespace {

constexpr double kFull = 65535;

/// A render thread's memory, kept from frame to frame and given back when the thread ends.
struct ThreadMemory {
    StackDrawer drawer;
    std::vector<std::unique_ptr<ColumnTiles>> sources;
    std::vector<std::unique_ptr<RowPyramid>> pyramids;
    Buffer<float> rounded;  ///< a source that a pass before the samples has made
};

// A plain pointer, because it outlives the thread's destructors: a host may set the module down from one of its own
// objects of static or thread duration, after this thread's memory has been given back.
thread_local ThreadMemory* memory = nullptr;

struct GiveBackAtThreadEnd {
    ~GiveBackAtThreadEnd() { ReleaseStackMemory(); }
    void Arm() {}
};
thread_local GiveBackAtThreadEnd giveBack;

ThreadMemory& Memory() {
    giveBack.Arm();
    if (!memory) memory = new ThreadMemory;
    return *memory;
}

ColumnTiles& Source(size_t index) {
    auto& sources = Memory().sources;
    while (sources.size() <= index) sources.push_back(std::make_unique<ColumnTiles>());
    return *sources[index];
}

// To 16 bits as the GPU's buffers round; what is not a number becomes 0.
float Round16(float value) {
    if (!(value > 0)) return 0;
    return value < 65535.0f ? std::nearbyint(value) : 65535.0f;
}

Kernel KernelOf(const BlurPlan& blur, double gain) {
    return MakeKernel(blur.steps, blur.inputStride, gain);
}

size_t Elements(int width, int height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// Of the plan alone: what of it is drawn changes no byte of that.
DecimationCase CaseOf(const SamplePlan& plan) {
    const double pitch = std::abs(plan.across.x.look.pitch);
    const double taps = 2.0 * plan.down.steps + 1;
    return {static_cast<double>(plan.across.opacity),
            {plan.across.blur.Reach() / pitch, plan.across.blur.inputStride / pitch, plan.across.x.outputs},
            {plan.down.Reach(), plan.down.inputStride, plan.across.y.outputs},
            2 * taps * plan.across.x.outputs * plan.across.y.outputs};
}

std::vector<Decimation> GridsOf(const StackPlan& plan) {
    if (DrawsExactly()) return std::vector<Decimation>(plan.samples.size());
    std::vector<DecimationCase> cases;
    cases.reserve(plan.samples.size());
    for (const SamplePlan& sample : plan.samples) cases.push_back(CaseOf(sample));
    return ChooseDecimation(cases);
}

// Thins the rows that wide samples need. A source with values out of range is drawn exactly: each pass limits them.
void ThinSources(std::vector<StackSample>& samples, double full) {
    struct Need {
        const StackSample* sample = nullptr;
        int level = 0;
        Range rows;
    };
    std::vector<Need> needs;
    for (StackSample& sample : samples) {
        if (!sample.source->IsWithin(full)) sample.decimation = {};
        const Decimation& grids = sample.decimation;
        if (!grids.IsWide()) continue;
        needs.resize(std::max(needs.size(), size_t{sample.plan->buffer} + 1));
        Need& need = needs[sample.plan->buffer];
        const Range rows = WideSample::RowsRead(sample);
        need.rows = need.sample ? Around(need.rows, rows) : rows;
        need.sample = &sample;
        need.level = std::max(need.level, grids.level);
    }
    auto& pyramids = Memory().pyramids;
    while (pyramids.size() < needs.size()) pyramids.push_back(std::make_unique<RowPyramid>());
    for (size_t i = 0; i < needs.size(); ++i) {
        if (!needs[i].sample) continue;
        pyramids[i]->Build(*needs[i].sample->source, needs[i].sample->plan->across.y.outputs, needs[i].rows,
                           needs[i].level);
    }
    for (StackSample& sample : samples) {
        if (sample.decimation.IsWide()) sample.level = &pyramids[sample.plan->buffer]->Level(sample.decimation.level);
    }
}

}  // namespace

AlphaPlane InvertAlpha(const InversionPlan& plan, const AlphaPlane& layer) {
    const int width = plan.x.outputs;
    const int height = plan.y.outputs;
    float* out = Memory().rounded.Reserve(Elements(width, height));
    const float gain = plan.opacity * static_cast<float>(kFull);
    struct Column {
        int here, next;
        float fraction;
    };
    std::vector<Column> columns(static_cast<size_t>(width));
    for (int x = 0; x < width; ++x) {
        const double at = plan.x.look.At(x);
        const auto texel = TexelAt(at);
        columns[static_cast<size_t>(x)] = {EdgeIndex(texel, layer.width, Edge::kClamp),
                                           EdgeIndex(texel + 1, layer.width, Edge::kClamp),
                                           static_cast<float>(at - std::floor(at))};
    }
    const auto invertRow = [&](const auto* above, const auto* below, float fraction, float full, float* row) {
        for (const Column& c : columns) {
            const auto mix = [](float from, float to, float f) { return from + f * (to - from); };
            const float upper = mix(AlphaValue(above[c.here]), AlphaValue(above[c.next]), c.fraction);
            const float lower = mix(AlphaValue(below[c.here]), AlphaValue(below[c.next]), c.fraction);
            *row++ = Round16((1 - mix(upper, lower, fraction) / full) * gain);
        }
    };
    RunTasks(height, [&](int y, int) {
        const double at = plan.y.look.At(y);
        const auto texel = TexelAt(at);
        const ptrdiff_t above = ptrdiff_t{EdgeIndex(texel, layer.height, Edge::kClamp)} * layer.width;
        const ptrdiff_t below = ptrdiff_t{EdgeIndex(texel + 1, layer.height, Edge::kClamp)} * layer.width;
        const auto fraction = static_cast<float>(at - std::floor(at));
        float* row = out + ptrdiff_t{y} * width;
        if (layer.bytes) {
            invertRow(layer.bytes + above, layer.bytes + below, fraction, 255.0f, row);
        } else {
            invertRow(layer.floats + above, layer.floats + below, fraction, 1.0f, row);
        }
    });
    return {nullptr, out, width, height, kFull};
}

AlphaPlane PadAlpha(const PaddingPlan& plan, const AlphaPlane& layer) {
    float* out = Memory().rounded.Reserve(Elements(plan.width, plan.height));
    RunTasks(plan.height, [&](int y, int) {
        float* row = out + ptrdiff_t{y} * plan.width;
        std::fill_n(row, plan.width, 0.0f);
        const int from = y - plan.pad;
        if (from < 0 || from >= layer.height) return;
        const ptrdiff_t start = ptrdiff_t{from} * layer.width;
        for (int x = 0; x < layer.width; ++x) {
            const float alpha = layer.bytes ? static_cast<float>(layer.bytes[start + x]) * 257.0f
                                            : layer.floats[start + x] * static_cast<float>(kFull);
            row[plan.pad + x] = Round16(alpha);
        }
    });
    return {nullptr, out, plan.width, plan.height, kFull};
}

const uint16_t* DrawStack(const StackPlan& plan, const AlphaPlane& source) {
    const std::vector<Decimation> grids = GridsOf(plan);
    std::vector<bool> built;
    std::vector<StackSample> samples;
    for (size_t i = 0; i < plan.samples.size(); ++i) {
        const SamplePlan& sample = plan.samples[i];
        if (sample.regions.Empty()) continue;
        ColumnTiles& tiles = Source(sample.buffer);
        built.resize(std::max(built.size(), size_t{sample.buffer} + 1));
        if (!built[sample.buffer]) tiles.Build(source, plan.something, sample.across.y.look, sample.across.y.outputs);
        built[sample.buffer] = true;
        if (tiles.Empty() || tiles.StoredRows(sample.regions.across.y).Empty()) continue;
        const double gain = static_cast<double>(sample.across.opacity) * kFull / source.full;
        samples.push_back(
            {&tiles, &sample, KernelOf(sample.across.blur, gain), KernelOf(sample.down, 1), grids[i], nullptr});
    }
    ThinSources(samples, source.full);
    return Memory().drawer.Draw(samples, plan.width, plan.height);
}

void ReleaseStackMemory() {
    delete memory;
    memory = nullptr;
}

}  // namespace umbrant::effect
