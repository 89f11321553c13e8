// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A temporary host world that lives as long as the object: same pixel format as a given world, its own size.

#include "hostapi/commands.h"
#include "hostapi/pixels.h"

/// Owns one host world of a render. Construct with the world whose format it shall have, set `width` and `height`, call
/// `actuallyInit`, use `world`. Belongs to one render on one thread; neither copied nor moved.
class HV_EffectWorld {
 public:
    /// Asks the host for the pixel format of `like`; allocates no pixels. Throws 13 when "PF World Suite" is missing.
    HV_EffectWorld(PF_InData* inData, PF_LayerDef like);
    /// Disposes of the world if there is one. A missing suite ends the program here: nothing may leave a destructor.
    ~HV_EffectWorld();
    HV_EffectWorld(const HV_EffectWorld&) = delete;
    HV_EffectWorld& operator=(const HV_EffectWorld&) = delete;

    /// Makes the world, cleared, of `width` x `height` pixels. Returns 0, also (with a line on standard output) when
    /// there already is a world or a size is 0; `PF_Err_OUT_OF_MEMORY` when `status` was set. Throws 13 when the suite
    /// is missing and the host's own code when it cannot make the world.
    PF_Err actuallyInit();

    PF_InData* in_data;     ///< not owned
    PF_ProgPtr effect_ref;  ///< from `in_data` at construction
    int32_t status;         ///< 0 unless a caller sets it
    PF_EffectWorld world;   ///< all zero until made
    bool initialised;       ///< `world` is owned
    PF_PixelFormat format;  ///< of the world given at construction
    int32_t width;          ///< pixels, set by the caller
    int32_t height;
};
