// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/resize.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <type_traits>
#include <vector>

#include "host/compositing/row_pool.h"

namespace umbrant::host {

namespace {

/// Premultiplied, from 0 to 1 in worlds of integers.
struct Sum {
    float alpha = 0, red = 0, green = 0, blue = 0;

    void Add(const Sum& other, float weight) {
        alpha += weight * other.alpha;
        red += weight * other.red;
        green += weight * other.green;
        blue += weight * other.blue;
    }
};

template <typename Pixel>
constexpr float kFull = 1.0f;
template <>
constexpr float kFull<PF_Pixel> = 255.0f;
template <>
constexpr float kFull<PF_Pixel16> = 32768.0f;

/// The pixels of a line that an output pixel is made of.
struct Tap {
    int first = 0;
    std::vector<float> weights;  ///< their sum is 1
};

std::vector<Tap> TapsFor(double begin, double length, int inputs, int outputs) {
    const double step = length / outputs;
    const double reach = std::max(step, 1.0);
    std::vector<Tap> taps(static_cast<std::size_t>(outputs));
    for (int i = 0; i < outputs; ++i) {
        const double centre = begin + (i + 0.5) * step - 0.5;
        Tap& tap = taps[static_cast<std::size_t>(i)];
        const int first = static_cast<int>(std::ceil(centre - reach));
        const int last = static_cast<int>(std::floor(centre + reach));
        tap.first = std::clamp(first, 0, inputs - 1);
        tap.weights.assign(static_cast<std::size_t>(std::clamp(last, 0, inputs - 1) - tap.first) + 1, 0.0f);
        double sum = 0;
        for (int at = first; at <= last; ++at) sum += 1 - std::abs(at - centre) / reach;
        for (int at = first; at <= last; ++at) {
            const auto to = static_cast<std::size_t>(std::clamp(at, 0, inputs - 1) - tap.first);
            tap.weights[to] += static_cast<float>((1 - std::abs(at - centre) / reach) / sum);
        }
    }
    return taps;
}

template <typename Pixel>
Sum Premultiplied(const Pixel& pixel) {
    const float alpha = static_cast<float>(pixel.alpha) / kFull<Pixel>;
    // A colour without alpha may be anything, also not a number.
    if (!(alpha > 0)) return {};
    const float scale = alpha / kFull<Pixel>;
    return {alpha, static_cast<float>(pixel.red) * scale, static_cast<float>(pixel.green) * scale,
            static_cast<float>(pixel.blue) * scale};
}

template <typename Pixel>
Pixel Straight(const Sum& sum) {
    if (!(sum.alpha > 0)) return {};
    const auto channel = [](float value) {
        using Type = decltype(Pixel::alpha);
        if constexpr (std::is_floating_point_v<Type>) {
            return static_cast<Type>(value);
        } else {
            return static_cast<Type>(std::clamp(value, 0.0f, 1.0f) * kFull<Pixel> + 0.5f);
        }
    };
    return {channel(sum.alpha), channel(sum.red / sum.alpha), channel(sum.green / sum.alpha),
            channel(sum.blue / sum.alpha)};
}

template <typename Pixel>
void ResizeInto(const World& world, const std::vector<Tap>& across, const std::vector<Tap>& down, World& out) {
    ForEachRowRange(out.Height(), [&](int begin, int end) {
        std::vector<Sum> line(static_cast<std::size_t>(world.Width()));
        for (int y = begin; y < end; ++y) {
            const Tap& rows = down[static_cast<std::size_t>(y)];
            std::fill(line.begin(), line.end(), Sum{});
            for (std::size_t k = 0; k < rows.weights.size(); ++k) {
                const auto* from =
                    static_cast<const Pixel*>(static_cast<const void*>(world.Row(rows.first + static_cast<int>(k))));
                for (std::size_t x = 0; x < line.size(); ++x) line[x].Add(Premultiplied(from[x]), rows.weights[k]);
            }
            auto* to = static_cast<Pixel*>(static_cast<void*>(out.Row(y)));
            for (const Tap& tap : across) {
                Sum sum;
                for (std::size_t k = 0; k < tap.weights.size(); ++k) {
                    sum.Add(line[static_cast<std::size_t>(tap.first) + k], tap.weights[k]);
                }
                *to++ = Straight<Pixel>(sum);
            }
        }
    });
}

}  // namespace

World Resize(const World& world, const WorldPart& part, int width, int height) {
    World out = World::CreateUnwritten(width, height, world.PixelDepth());
    if (out.IsNull()) return out;
    try {
        const std::vector<Tap> across = TapsFor(part.left, part.width, world.Width(), width);
        const std::vector<Tap> down = TapsFor(part.top, part.height, world.Height(), height);
        switch (world.PixelDepth()) {
            case Depth::k8:
                ResizeInto<PF_Pixel>(world, across, down, out);
                break;
            case Depth::k16:
                ResizeInto<PF_Pixel16>(world, across, down, out);
                break;
            case Depth::k32:
                ResizeInto<PF_PixelFloat>(world, across, down, out);
                break;
        }
    } catch (const std::bad_alloc&) {
        return {};
    }
    return out;
}

}  // namespace umbrant::host
