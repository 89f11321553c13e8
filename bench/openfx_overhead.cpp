// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a frame of 1920 x 1080 costs more through the plug-in than through Effect::RenderInto with the same rows: each
// frame is drawn by both in turn, and the differences of the pairs are reported. Bytes, straight alpha, rows that go
// upwards in memory, default values on the CPU:
//   openfx_overhead [BINARY [PAIRS]]
// Then what it costs to create an instance after the first. Exit code 1 when the median difference of the frames is
// more than 5 % or that of an instance more than 0.2 ms.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <umbrant/effect.h>

#include "openfx/abi/actions.h"
#include "openfx/abi/clip_properties.h"
#include "tests/openfx_plugin/small_host.h"

using namespace umbrant;
using openfx::SmallEffect;
using openfx::SmallHost;
using openfx::SmallImage;

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr double kMostPercent = 5;
constexpr double kMostMilliseconds = 0.2;

[[noreturn]] void Fail(const std::string& sentence) {
    std::fprintf(stderr, "%s\n", sentence.c_str());
    std::exit(2);
}

/// An image of the host's with its bottom row first.
struct Rows {
    explicit Rows(const Rectangle& place) : memory(std::size_t{4} * place.Width() * place.Height()) {
        image.bounds = {place.left, kHeight - place.bottom, place.right, kHeight - place.top};
        image.rowBytes = 4 * place.Width();
        image.bottom = memory.data();
        openfx::Describe(image);
        view = {memory.data() + std::ptrdiff_t{image.rowBytes} * (place.Height() - 1), place.Width(), place.Height(),
                PixelFormat::kRgba8, -std::ptrdiff_t{image.rowBytes}};
    }

    std::vector<std::uint8_t> memory;
    SmallImage image;
    MutableImageView view;
};

/// An opaque rectangle in the middle, of half the layer's size.
void Paint(Rows& layer) {
    for (int y = 270; y < 810; ++y) std::memset(layer.view.Row(y) + std::size_t{4} * 480, 255, std::size_t{4} * 960);
}

double Since(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Whether the frames of a canvas are cheap enough.
bool CompareFrames(SmallEffect& instance, const Effect& effect, const Rows& layer, const Rectangle& place, int pairs) {
    Rows ours(place), theirs(place);
    instance.clips["Output"].image = &theirs.image;
    FrameOptions options;
    options.canvas = place.Width() == kWidth ? Canvas::kLayer : Canvas::kGrow;
    const auto library = [&] {
        const auto begin = std::chrono::steady_clock::now();
        effect.RenderInto(layer.view, ours.view, options);
        return Since(begin);
    };
    const auto plugin = [&] {
        const auto begin = std::chrono::steady_clock::now();
        if (SmallHost::The().Render(instance, theirs.image.bounds) != kOfxStatOK) Fail("the plug-in did not draw");
        return Since(begin);
    };
    std::vector<double> own, more;
    for (int i = -2; i < pairs; ++i) {
        // Who begins changes, so that neither always follows the other.
        const double first = i % 2 == 0 ? library() : 0;
        const double second = plugin();
        const double last = i % 2 == 0 ? first : library();
        if (i < 0) continue;
        own.push_back(last);
        more.push_back(second - last);
    }
    if (ours.memory != theirs.memory) Fail("the plug-in drew other pixels than the library");
    const double percent = 100 * Median(more) / Median(own);
    std::printf("%-16s %10.2f %10.3f %8.2f\n", options.canvas == Canvas::kLayer ? "frame, the layer" : "frame, grown",
                Median(own), Median(more), percent);
    return percent <= kMostPercent;
}

bool MeasureInstances(int pairs) {
    const SmallHost& host = SmallHost::The();
    std::vector<double> times;
    for (int i = 0; i < pairs; ++i) {
        SmallEffect instance = host.described;
        const auto begin = std::chrono::steady_clock::now();
        if (host.Call(kOfxActionCreateInstance, &instance) != kOfxStatOK) Fail("an instance cannot be created");
        times.push_back(Since(begin));
        host.Call(kOfxActionDestroyInstance, &instance);
    }
    std::printf("%-16s %10s %10.3f\n", "instance", "", Median(times));
    return Median(times) <= kMostMilliseconds;
}

}  // namespace

int main(int argc, char** argv) {
    setenv("UMBRANT_RENDERER", "cpu", 1);
    unsetenv("UMBRANT_MODULE");
    const std::string binary = argc > 1 ? argv[1] : OPENFX_BINARY;
    const int pairs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 41;
    SmallHost& host = SmallHost::The();
    if (const std::string problem = host.Load(binary); !problem.empty()) Fail(problem);
    OfxStatus status = kOfxStatFailed;
    const auto instance = host.Create(status);
    if (status != kOfxStatOK) Fail("the first instance cannot be created");

    Rows layer({0, 0, kWidth, kHeight});
    Paint(layer);
    instance->clips["Source"].image = &layer.image;
    instance->clips["Source"].region = {0, 0, kWidth, kHeight};
    instance->clips["Texture"].set.Put(kOfxImageClipPropConnected, {0});
    const Effect effect({UMBRANT_MODULE_FILE, Renderer::kProcessor, false, {}});

    std::printf("%-16s %10s %10s %8s\n", "", "library/ms", "more/ms", "more/%");
    bool cheap = CompareFrames(*instance, effect, layer, {0, 0, kWidth, kHeight}, pairs);
    cheap &= CompareFrames(*instance, effect, layer, effect.Place(layer.view), pairs);
    cheap &= MeasureInstances(10 * pairs);
    host.Call(kOfxActionDestroyInstance, instance.get());
    return cheap ? 0 : 1;
}
