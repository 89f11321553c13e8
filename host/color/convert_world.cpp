// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/color/convert_world.h"

#include <atomic>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/row_pool.h"

namespace umbrant::host {

Result<Done> ConvertColors(World& world, const ColorConversion& conversion) {
    constexpr int kFloats = sizeof(PF_PixelFloat) / sizeof(float);
    std::atomic<bool> isWell = true;
    RunRows(world.Height(), [&](int y, int) {
        auto* const row = reinterpret_cast<PF_PixelFloat*>(world.Row(y));
        if (world.Width() > 0 && !conversion.Apply(&row->red, kFloats, world.Width())) isWell = false;
        return isWell.load();
    });
    if (isWell) return Done{};
    return NotEnoughMemory("the conversion of colours", world.Width(), world.Height(), world.PixelDepth());
}

}  // namespace umbrant::host
