// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The CPU renderer is here.

#include "render/processor/processor_path.h"

#include <algorithm>

#include "cpu/coarse/decimation.h"
#include "cpu/coarse/spline.h"
#include "cpu/kernels/kernels.h"
#include "cpu/shadows.h"
#include "cpu/thread_pool.h"
#include "platform/fork.h"
#include "render/passes/work_extent.h"
#include "render/plan_passes.h"

namespace umbrant::effect {

namespace {

AlphaPlane PlaneOf(const myParams& settings, const ProcessorLayer& layer) {
    if (settings.bitDepth == 8) {
        return {static_cast<const uint8_t*>(layer.alpha), nullptr, layer.width, layer.height, 255};
    }
    return {nullptr, static_cast<const float*>(layer.alpha), layer.width, layer.height, 1};
}

Region Something(const AlphaPlane& source) {
    return WorksEverywhere() ? WholeRegion(source.width, source.height) : FindBounds(source);
}

// Creates the static objects of functions: a child of fork() would wait forever for a thread of its parent that was
// creating them. A test lists all of them.
bool PrepareForForks() {
    OnFork(ForgetPoolInChild);
    BestKernels();
    CreateSplineTables();
    DrawsExactly();
    return true;
}
const bool watchingForks = PrepareForForks();

}  // namespace

bool HasProcessorPath() {
    return watchingForks;
}

std::string ProcessorName() {
    const int threads = PoolThreads();
    return std::string("Processor (") + CurrentKernels().name + ", " + std::to_string(threads) +
           (threads == 1 ? " thread)" : " threads)");
}

const uint16_t* DrawNormalOnProcessor(const myParams& settings, const ProcessorLayer& layer) {
    const AlphaPlane source = PlaneOf(settings, layer);
    return DrawStack(PlanNormalStack(settings, Something(source), Precision::kExact), source);
}

const uint16_t* DrawInnerOnProcessor(const myParams& settings, const ProcessorLayer& layer) {
    const AlphaPlane source = InvertAlpha(PlanInversion(settings), PlaneOf(settings, layer));
    return DrawStack(PlanInnerStack(settings, Something(source), Precision::kExact), source);
}

const uint16_t* DrawRadialOnProcessor(const myParams& settings, const ProcessorLayer& layer,
                                      const RadialGeometry& geometry) {
    const PaddingPlan padding = PlanPadding(settings, geometry);
    const AlphaPlane source = PadAlpha(padding, PlaneOf(settings, layer));
    return DrawStack(PlanRadialStack(settings, padding, Something(source), Precision::kExact), source);
}

void TakeAlphas(const void* pixels, size_t count, int bitDepth, void* out) {
    if (bitDepth == 8) {
        CurrentKernels().takeBytes(static_cast<const uint8_t*>(pixels), count, static_cast<uint8_t*>(out));
    } else {
        CurrentKernels().takeFloats(static_cast<const float*>(pixels), count, static_cast<float*>(out));
    }
}

void ColourRow(const uint16_t* alpha, size_t count, const myParams& settings, void* pixels) {
    if (settings.bitDepth == 8) {
        const PF_Pixel& colour = settings.shadowColour8;
        const uint8_t bytes[4] = {0, colour.red, colour.green, colour.blue};
        CurrentKernels().colourBytes(alpha, count, bytes, static_cast<uint8_t*>(pixels));
    } else {
        const PF_PixelFloat& colour = settings.shadowColourFloat;
        const float floats[4] = {0, colour.red, colour.green, colour.blue};
        CurrentKernels().colourFloats(alpha, count, floats, static_cast<float*>(pixels));
    }
}

void ConvertAlpha(const uint16_t* alpha, size_t count, int bitDepth, void* out) {
    // Pieces that a thread is done with in some tens of microseconds.
    constexpr size_t kPiece = size_t{1} << 17;
    const CpuKernels& kernels = CurrentKernels();
    RunTasks(static_cast<int>((count + kPiece - 1) / kPiece), [&](int piece, int) {
        const size_t first = static_cast<size_t>(piece) * kPiece;
        const size_t size = std::min(kPiece, count - first);
        if (bitDepth == 8) {
            kernels.toBytes(alpha + first, size, static_cast<uint8_t*>(out) + first);
        } else {
            kernels.toFloats(alpha + first, size, static_cast<float*>(out) + first);
        }
    });
}

void EndProcessorThreads() {
    EndPool();
    ReleaseStackMemory();
}

}  // namespace umbrant::effect
