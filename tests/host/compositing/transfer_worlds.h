// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Small worlds for the transfer tests: filled at random or with one pixel, read and written as doubles.

#include <cstring>
#include <random>

#include "host/compositing/world.h"
#include "hostapi/transfer.h"
#include "tests/host/compositing/transfer_model.h"

namespace umbrant::host {

inline double FullScale(Depth depth) {
    return depth == Depth::k8 ? 255.0 : depth == Depth::k16 ? 32768.0 : 1.0;
}

inline PF_CompositeMode Mode(PF_TransferMode mode, int opacity = 255, bool rgbOnly = false, int seed = 0) {
    PF_CompositeMode record{};
    record.xfer = mode;
    record.rand_seed = seed;
    record.opacity = static_cast<A_u_char>(opacity);
    record.rgb_only = rgbOnly;
    return record;
}

/// Channel values as stored: whole numbers in integer worlds. Order: alpha, red, green, blue.
struct Stored {
    double value[4];
};

inline Stored ReadStored(const World& world, int x, int y) {
    Stored out{};
    const std::byte* at = world.Row(y) + x * BytesPerPixel(world.PixelDepth());
    for (int i = 0; i < 4; ++i) {
        if (world.PixelDepth() == Depth::k8) {
            out.value[i] = std::to_integer<int>(at[i]);
        } else if (world.PixelDepth() == Depth::k16) {
            A_u_short channel;
            std::memcpy(&channel, at + 2 * i, sizeof(channel));
            out.value[i] = channel;
        } else {
            float channel;
            std::memcpy(&channel, at + 4 * i, sizeof(channel));
            out.value[i] = static_cast<double>(channel);
        }
    }
    return out;
}

inline void WriteStored(World& world, int x, int y, const Stored& stored) {
    std::byte* at = world.Row(y) + x * BytesPerPixel(world.PixelDepth());
    for (int i = 0; i < 4; ++i) {
        if (world.PixelDepth() == Depth::k8) {
            at[i] = static_cast<std::byte>(stored.value[i]);
        } else if (world.PixelDepth() == Depth::k16) {
            const auto channel = static_cast<A_u_short>(stored.value[i]);
            std::memcpy(at + 2 * i, &channel, sizeof(channel));
        } else {
            const auto channel = static_cast<float>(stored.value[i]);
            std::memcpy(at + 4 * i, &channel, sizeof(channel));
        }
    }
}

inline model::Pixel ReadPixel(const World& world, int x, int y) {
    const Stored s = ReadStored(world, x, y);
    const double full = FullScale(world.PixelDepth());
    return {s.value[0] / full, {{s.value[1] / full, s.value[2] / full, s.value[3] / full}}};
}

/// Random pixels in which the ends of every scale are common; float colours go beyond 0..1 on both sides.
inline World RandomWorld(int width, int height, Depth depth, unsigned seed) {
    World world = World::Create(width, height, depth);
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            Stored stored{};
            for (int i = 0; i < 4; ++i) {
                double v = unit(engine);
                const double end = unit(engine);
                if (end < 0.15) {
                    v = 0;
                } else if (end < 0.3) {
                    v = 1;
                } else if (depth == Depth::k32 && i > 0) {
                    v = v * 2.5 - 0.5;
                }
                stored.value[i] = depth == Depth::k32 ? v : std::floor(v * FullScale(depth) + 0.5);
            }
            WriteStored(world, x, y, stored);
        }
    }
    return world;
}

inline World FilledWorld(int width, int height, Depth depth, const Stored& stored) {
    World world = World::Create(width, height, depth);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) WriteStored(world, x, y, stored);
    }
    return world;
}

/// Bytes of all rows, padding included.
inline std::size_t BytesOf(const World& world) {
    return static_cast<std::size_t>(world.Def().rowbytes) * static_cast<std::size_t>(world.Height());
}

inline World CopyOfWorld(const World& world) {
    World copy = World::Create(world.Width(), world.Height(), world.PixelDepth());
    if (world.Def().data) std::memcpy(copy.Def().data, world.Def().data, BytesOf(world));
    return copy;
}

/// Whether two worlds of one shape hold the same bytes, padding included.
inline bool SameBytes(const World& a, const World& b) {
    return !a.Def().data || std::memcmp(a.Def().data, b.Def().data, BytesOf(a)) == 0;
}

}  // namespace umbrant::host
