// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the measurements of whole frames share: the module opened as the program opens it, and layers to draw.

#include <string>

#include "host/compositing/memory_recycler.h"
#include "host/compositing/world.h"
#include "host/session/effect_session.h"

using namespace umbrant::host;

/// A layer of discs on a grid, with soft edges, inside the middle `share` (0 to 1) of a frame's area; transparent
/// around it, and for at least four pixels at the frame's edges.
World DiscLayer(int width, int height, Depth depth, double share);

/// The file of the module that is measured: that of UMBRANT_BENCH_MODULE, or the one of this build.
const char* ModuleFile();

/// The module and a session, for the whole program: what a render thread makes once is made once. Whatever fails ends
/// the program with its sentence.
class Rig {
 public:
    static Rig& Get();

    /// With `isFramed` no more than the layer's own rectangle.
    Frame Draw(const World& layer, bool isFramed = false);
    /// A row of the panel, by its path.
    void Set(const std::string& path, const std::string& value);
    /// All rows as the effect declares them.
    void SetDefaults();

 private:
    Rig();

    MemoryRecycler recycler_;  ///< as in the program
    Module module_;
    EffectSession session_;
    ParamSet defaults_;
};
