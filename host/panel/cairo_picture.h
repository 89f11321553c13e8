// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pictures that the host draws with Cairo: who owns what, and how they become worlds.

#include <cairo.h>

#include <memory>

#include "host/compositing/world.h"

struct EndCairoSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct EndCairoPen {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using CairoSurface = std::unique_ptr<cairo_surface_t, EndCairoSurface>;
using CairoPen = std::unique_ptr<cairo_t, EndCairoPen>;

/// An image surface of 24 bits as a world of 8 bits, opaque. Null when there is no memory.
World WorldOf(cairo_surface_t* surface);
