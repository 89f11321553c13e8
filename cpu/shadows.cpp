// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The three stacks. Numbers that reach the GPU as single-precision uniforms are rounded the same way here.

#include "cpu/shadows.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "cpu/stack_drawer.h"
#include "cpu/thread_pool.h"
#include "pixel/blur_stride.h"

namespace {

constexpr double kFull = 65535;

/// A render thread's memory, kept from frame to frame and given back when the thread ends.
struct ThreadMemory {
    StackDrawer drawer;
    std::vector<std::unique_ptr<ColumnTiles>> sources;
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

double Single(double value) {
    return static_cast<double>(static_cast<float>(value));
}

// To 16 bits as the GPU's buffers round; what is not a number becomes 0.
float Round16(float value) {
    if (!(value > 0)) return 0;
    return value < 65535.0f ? std::nearbyint(value) : 65535.0f;
}

Region BoundsOf(const AlphaPlane& plane, Extent extent) {
    if (extent == Extent::kEverywhere) return {{0, plane.width}, {0, plane.height}};
    return FindBounds(plane);
}

// Outputs at texture coordinates (i + 0.5) / outputs, scaled about the middle of `size` texels.
Look ScaledLook(int outputs, double scale, int size, Edge edge) {
    const double pitch = scale * size / outputs;
    return {0.5 * pitch - scale * size / 2 + size / 2.0 - 0.5, pitch, size, edge};
}

/// Strides of a sample's blurs in inputs: the GPU passes' own, which are in sizes of what they read, rounded alike.
struct Taps {
    int32_t steps;
    double across;
    double down;
};

// Across, `width` pixels are drawn as `inputs` inputs.
Taps TapsFor(double resolutionScale, double softness, int32_t width, int32_t inputs, const framebufferData& record) {
    const double amount = BlurAmount(softness);
    const int32_t steps = BlurSteps(resolutionScale, amount);
    return {steps, static_cast<double>(StrideAcross(amount, steps, width)) * inputs,
            static_cast<double>(StrideDown(static_cast<float>(amount), steps, record.paddedH)) * record.fboH};
}

// Shifted about the middle of the output, in pixels; `scale` is the copy's share of it.
Placement Centred(double shift, double padded, int size, int texels) {
    const double translation = Single((2.0 / size) * shift);
    const double scale = Single(padded / size);
    return {(1 - scale + translation) / 2 * size, scale * size, texels};
}

StackSample NormalSample(const myParams& s, const perSampleData& copy, const framebufferData& record,
                         const ColumnTiles& source, double full) {
    const int32_t inputWidth = s.inputWorld->width;
    const Taps taps = TapsFor(s.resolutionScale, copy.softness, inputWidth, inputWidth, record);
    StackSample sample;
    sample.source = &source;
    const double scale = Single(record.paddedW / static_cast<double>(inputWidth));
    sample.across = ScaledLook(record.fboW, scale, inputWidth, Edge::kClamp);
    sample.acrossKernel = MakeKernel(taps.steps, taps.across, Single(copy.opacity) * kFull / full);
    sample.downKernel = MakeKernel(taps.steps, taps.down, 1);
    sample.x = Centred(copy.offsetX + s.offsetShadowX + s.preRender.centreOffsetX, record.paddedW, s.outputWorld->width,
                       record.fboW);
    sample.y = Centred(copy.offsetY + s.offsetShadowY + s.preRender.centreOffsetY, record.paddedH,
                       s.outputWorld->height, record.fboH);
    return sample;
}

StackSample InnerSample(const myParams& s, const perSampleData& copy, const framebufferData& record,
                        const framebufferData& first, const ColumnTiles& source) {
    const Taps taps = TapsFor(s.resolutionScale, copy.softness, s.innerSourceWorld->width, first.fboW, record);
    StackSample sample;
    sample.source = &source;
    sample.across =
        ScaledLook(record.fboW, Single(static_cast<double>(record.fboW) / first.fboW), first.fboW, Edge::kMirror);
    sample.acrossKernel = MakeKernel(taps.steps, taps.across, Single(copy.opacity));
    sample.downKernel = MakeKernel(taps.steps, taps.down, 1);
    sample.x = Centred(copy.offsetX + s.offsetShadowX + s.preRender.centreOffsetX, record.paddedW, s.outputWorld->width,
                       record.fboW);
    sample.y = Centred(copy.offsetY + s.offsetShadowY + s.preRender.centreOffsetY, record.paddedH,
                       s.outputWorld->height, record.fboH);
    return sample;
}

StackSample RadialSample(const myParams& s, const perSampleData& copy, const RadialPadding& padding,
                         const ColumnTiles& source) {
    const int32_t steps = BlurSteps(s.resolutionScale, copy.softness);
    const auto kernel = [&](int32_t inputs, double gain) {
        return MakeKernel(steps, static_cast<double>(StrideRadial(copy.softness, steps, inputs)) * inputs, gain);
    };
    const auto place = [&](double translation, int padded, int size) {
        const double scale = Single(copy.radialScale);
        const double ratio = static_cast<double>(static_cast<float>(padded) / static_cast<float>(size));
        const double moved = Single(copy.radialScale - 1 + 2 * translation / size);
        return Placement{(1 - scale + moved) / 2 * size, scale * ratio * size, padded};
    };
    StackSample sample;
    sample.source = &source;
    sample.across = ScaledLook(padding.width, 1, padding.width, Edge::kMirror);
    sample.acrossKernel = kernel(padding.width, Single(copy.opacity));
    sample.downKernel = kernel(padding.height, 1);
    sample.x = place(copy.radialTx, padding.width, s.outputWorld->width);
    sample.y = place(copy.radialTy, padding.height, s.outputWorld->height);
    return sample;
}

// The inverted alpha at the size of the first buffer.
AlphaPlane Invert(const myParams& s, const AlphaPlane& layer, float* out) {
    const framebufferData& first = s.framebuffers.front();
    const Look lookX =
        ScaledLook(first.fboW, Single(static_cast<double>(first.paddedW) / layer.width), layer.width, Edge::kClamp);
    const Look lookY =
        ScaledLook(first.fboH, Single(static_cast<double>(first.paddedH) / layer.height), layer.height, Edge::kClamp);
    const float gain = s.shadowColourFloat.alpha * static_cast<float>(kFull);
    struct Column {
        int here, next;
        float fraction;
    };
    std::vector<Column> columns(static_cast<size_t>(first.fboW));
    for (int x = 0; x < first.fboW; ++x) {
        const double at = lookX.At(x);
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
    RunTasks(first.fboH, [&](int y, int) {
        const double at = lookY.At(y);
        const auto texel = TexelAt(at);
        const ptrdiff_t above = ptrdiff_t{EdgeIndex(texel, layer.height, Edge::kClamp)} * layer.width;
        const ptrdiff_t below = ptrdiff_t{EdgeIndex(texel + 1, layer.height, Edge::kClamp)} * layer.width;
        const auto fraction = static_cast<float>(at - std::floor(at));
        float* row = out + ptrdiff_t{y} * first.fboW;
        if (layer.bytes) {
            invertRow(layer.bytes + above, layer.bytes + below, fraction, 255.0f, row);
        } else {
            invertRow(layer.floats + above, layer.floats + below, fraction, 1.0f, row);
        }
    });
    return {nullptr, out, first.fboW, first.fboH};
}

// The layer in 16 bits, in its border.
AlphaPlane Padded(const AlphaPlane& layer, const RadialPadding& padding, float* out) {
    RunTasks(padding.height, [&](int y, int) {
        float* row = out + ptrdiff_t{y} * padding.width;
        std::fill_n(row, padding.width, 0.0f);
        const int from = y - padding.pad;
        if (from < 0 || from >= layer.height) return;
        const ptrdiff_t start = ptrdiff_t{from} * layer.width;
        for (int x = 0; x < layer.width; ++x) {
            const float alpha = layer.bytes ? static_cast<float>(layer.bytes[start + x]) * 257.0f
                                            : layer.floats[start + x] * static_cast<float>(kFull);
            row[padding.pad + x] = Round16(alpha);
        }
    });
    return {nullptr, out, padding.width, padding.height};
}

size_t Elements(int width, int height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

}  // namespace

const uint16_t* DrawNormalStack(const myParams& settings, const AlphaPlane& layer, Extent extent) {
    const Region bounds = BoundsOf(layer, extent);
    for (size_t i = 0; i < settings.framebuffers.size(); ++i) {
        const framebufferData& record = settings.framebuffers[i];
        if (record.fboW < 1 || record.fboH < 1) continue;
        const double scale = Single(static_cast<double>(record.paddedH) / layer.height);
        Source(i).Build(layer, bounds, ScaledLook(record.fboH, scale, layer.height, Edge::kClamp), record.fboH);
    }
    std::vector<StackSample> samples;
    for (const perSampleData& copy : settings.samples) {
        const framebufferData& record = settings.framebuffers.at(copy.fbIndex);
        if (record.fboW < 1 || record.fboH < 1 || copy.opacity == 0) continue;
        samples.push_back(NormalSample(settings, copy, record, Source(copy.fbIndex), layer.bytes ? 255 : 1));
    }
    return Memory().drawer.Draw(samples, settings.outputWorld->width, settings.outputWorld->height);
}

const uint16_t* DrawInnerStack(const myParams& settings, const AlphaPlane& layer, Extent extent) {
    const framebufferData& first = settings.framebuffers.front();
    const AlphaPlane inverted = Invert(settings, layer, Memory().rounded.Reserve(Elements(first.fboW, first.fboH)));
    const Region bounds = BoundsOf(inverted, extent);
    for (size_t i = 0; i < settings.framebuffers.size(); ++i) {
        const framebufferData& record = settings.framebuffers[i];
        const double scale = Single(static_cast<double>(record.fboH) / first.fboH);
        Source(i).Build(inverted, bounds, ScaledLook(record.fboH, scale, first.fboH, Edge::kMirror), record.fboH);
    }
    std::vector<StackSample> samples;
    for (const perSampleData& copy : settings.samples) {
        if (copy.opacity == 0) continue;
        const framebufferData& record = settings.framebuffers.at(copy.fbIndex);
        samples.push_back(InnerSample(settings, copy, record, first, Source(copy.fbIndex)));
    }
    return Memory().drawer.Draw(samples, settings.outputWorld->width, settings.outputWorld->height);
}

const uint16_t* DrawRadialStack(const myParams& settings, const RadialPadding& padding, const AlphaPlane& layer,
                                Extent extent) {
    const AlphaPlane padded = Padded(layer, padding, Memory().rounded.Reserve(Elements(padding.width, padding.height)));
    const Look rows = ScaledLook(padding.height, 1, padding.height, Edge::kMirror);
    Source(0).Build(padded, BoundsOf(padded, extent), rows, padding.height);
    std::vector<StackSample> samples;
    for (const perSampleData& copy : settings.samples) {
        if (copy.opacity != 0) samples.push_back(RadialSample(settings, copy, padding, Source(0)));
    }
    return Memory().drawer.Draw(samples, settings.outputWorld->width, settings.outputWorld->height);
}

void ReleaseStackMemory() {
    delete memory;
    memory = nullptr;
}
