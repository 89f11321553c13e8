// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "pixel/world_alpha.h"

#include "pixel/pixel_transfer.h"

namespace umbrant::effect {

PF_Err FillFromWorld(void* buffer, PF_LayerDef* world, int32_t bitDepth, PF_InData* in_data,
                     AEGP_SuiteHandler& suites) {
    PixelTransferRefcon refcon{buffer, world, nullptr};
    if (bitDepth == 32) {
        return suites.IterateFloatSuite1()->iterate(in_data, 0, world->height, world, nullptr, &refcon, CopyRedFloatIn,
                                                    world);
    }
    return suites.Iterate8Suite1()->iterate(in_data, 0, world->height, world, nullptr, &refcon, CopyRedPixel8In, world);
}

PF_Err FillWorld8(void* buffer, PF_InData* in_data, AEGP_SuiteHandler& suites, PF_Pixel* colour, PF_LayerDef* output) {
    PixelTransferRefcon refcon{buffer, output, colour};
    return suites.Iterate8Suite1()->iterate(in_data, 0, output->height, output, nullptr, &refcon, CopyPixel8Out,
                                            output);
}

PF_Err FillWorld32(void* buffer, PF_InData* in_data, AEGP_SuiteHandler& suites, PF_PixelFloat* colour,
                   PF_LayerDef* output) {
    PixelTransferRefcon refcon{buffer, output, colour};
    return suites.IterateFloatSuite1()->iterate(in_data, 0, output->height, output, nullptr, &refcon, CopyPixelFloatOut,
                                                output);
}

}  // namespace umbrant::effect
