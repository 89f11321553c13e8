// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/cairo_picture.h"

#include <cstdint>

World WorldOf(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const int width = cairo_image_surface_get_width(surface);
    const int height = cairo_image_surface_get_height(surface);
    World world = World::Create(width, height, Depth::k8);
    if (world.IsNull()) return world;
    const unsigned char* bytes = cairo_image_surface_get_data(surface);
    for (int y = 0; y < height; ++y) {
        // Cairo has the same channels, in the order of the machine's words.
        const auto* from = reinterpret_cast<const uint32_t*>(bytes);
        auto* to = reinterpret_cast<PF_Pixel*>(world.Row(y));
        for (int x = 0; x < width; ++x) {
            const auto channel = [&](int shift) { return static_cast<A_u_char>(from[x] >> shift & 255); };
            to[x] = {255, channel(16), channel(8), channel(0)};
        }
        bytes += cairo_image_surface_get_stride(surface);
    }
    return world;
}
