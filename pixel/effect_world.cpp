// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The temporary world: each call holds "PF World Suite" for its own length.

#include "pixel/effect_world.h"

#include <iostream>

#include "entry/suites/suite_scoper.h"
#include "hostapi/suites/world_suite.h"

namespace {

using WorldSuite = AEFX_SuiteScoper<PF_WorldSuite2, false>;

WorldSuite HoldWorldSuite(const PF_InData* in_data) {
    return WorldSuite(in_data, kPFWorldSuiteName, kPFWorldSuiteVersion2, nullptr, nullptr);
}

}  // namespace

HV_EffectWorld::HV_EffectWorld(PF_InData* inData, PF_LayerDef like)
    : in_data(inData),
      effect_ref(inData->effect_ref),
      status(0),
      world{},
      initialised(false),
      format(0),
      width(0),
      height(0) {
    const WorldSuite suite = HoldWorldSuite(in_data);
    if (const PF_Err err = suite->PF_GetPixelFormat(&like, &format)) throw err;
}

HV_EffectWorld::~HV_EffectWorld() {
    const WorldSuite suite = HoldWorldSuite(in_data);
    if (initialised) suite->PF_DisposeWorld(effect_ref, &world);
}

PF_Err HV_EffectWorld::actuallyInit() {
    const WorldSuite suite = HoldWorldSuite(in_data);
    if (initialised) {
        std::cout << "Error: tried to init already initialised HV_EffectWorld" << std::endl;
        return PF_Err_NONE;
    }
    // Intended: no error, and only zero is tested; negative sizes are the host's to judge.
    if (width == 0 || height == 0) {
        std::cout << "Error initialising world, invalid dims: " << width << " " << height << std::endl;
        return PF_Err_NONE;
    }
    const PF_Err err = suite->PF_NewWorld(effect_ref, width, height, true, format, &world);
    if (err != PF_Err_NONE) throw err;
    if (status != 0) {
        std::cout << "Error initialising world of dims: " << width << " " << height << std::endl;
        // Not marked initialised, so nobody would dispose of it later.
        suite->PF_DisposeWorld(effect_ref, &world);
        world = {};
        return PF_Err_OUT_OF_MEMORY;
    }
    initialised = true;
    return PF_Err_NONE;
}
