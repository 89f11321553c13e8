// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/drawing/new_drawing.h"

#include <fmt/format.h>

#include <mutex>

#include "host/compositing/memory_shortage.h"
#include "host/drawing/drawing_entry.h"
#include "host/loading/own_objects.h"

namespace umbrant::host {

namespace {

/// The shared object's entry. What is short now may be there the next time.
Result<decltype(&UmbrantNewDrawing)> Entry(const std::string& what) {
    static std::mutex mutex;
    static decltype(&UmbrantNewDrawing) entry = nullptr;
    const std::lock_guard lock(mutex);
    if (entry) return entry;
    const auto opened = OpenOwnObject(kDrawingObject);
    if (const auto* reason = std::get_if<std::string>(&opened)) {
        if (SaysNoMemory(*reason)) return NotEnoughMemory(what);
        return Failure{ErrorKind::kInternal, fmt::format("cannot draw {}: {}", what, *reason)};
    }
    entry = reinterpret_cast<decltype(&UmbrantNewDrawing)>(std::get<void*>(opened));
    return entry;
}

}  // namespace

Result<std::unique_ptr<Drawing>> NewDrawing(const std::string& what, int width, int height, DrawnPixels pixels) {
    const auto entry = TRY(Entry(what));
    std::unique_ptr<Drawing> drawing((entry)(width, height, pixels == DrawnPixels::kOpaque));
    if (!drawing) return NotEnoughMemory(what, width, height, Depth::k8);
    return drawing;
}

Result<Done> CheckCanDraw(const std::string& what) {
    TRY(Entry(what));
    return Done{};
}

Result<World> WorldOf(const std::string& what, Drawing& drawing) {
    World world = World::Create(drawing.Width(), drawing.Height(), Depth::k8);
    if (world.IsNull()) return NotEnoughMemory(what, drawing.Width(), drawing.Height(), Depth::k8);
    for (int y = 0; y < drawing.Height(); ++y) {
        const std::uint32_t* from = drawing.Row(y);
        auto* to = reinterpret_cast<PF_Pixel*>(world.Row(y));
        for (int x = 0; x < drawing.Width(); ++x) {
            const auto channel = [&](int shift) { return static_cast<A_u_char>(from[x] >> shift & 255); };
            to[x] = {255, channel(16), channel(8), channel(0)};
        }
    }
    return world;
}

}  // namespace umbrant::host
