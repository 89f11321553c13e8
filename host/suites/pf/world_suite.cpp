// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF World Suite" 2: temporary worlds and their pixel format.

#include "hostapi/suites/world_suite.h"

#include <mutex>
#include <unordered_map>

#include "host/compositing/world.h"
#include "host/process/fork_lock.h"
#include "host/suites/pf/worlds.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

/// Every live world, by its pixels: effects copy the record around.
struct Table {
    ForkLock mutex;
    std::unordered_map<const void*, World> worlds;
};

// Kept: never destroyed, because an effect may give a world back while the program ends.
Table& TheTable() {
    static Table* table = new Table;
    return *table;
}
[[maybe_unused]] const Table& earlyTable = TheTable();  // before there are threads: see fork_lock.h

bool DepthOfFormat(PF_PixelFormat format, Depth& depth) {
    for (const Depth candidate : {Depth::k8, Depth::k16, Depth::k32}) {
        if (PixelFormatOf(candidate) != format) continue;
        depth = candidate;
        return true;
    }
    return false;
}

PF_Err NewWorld(PF_ProgPtr effectRef, A_long width, A_long height, PF_Boolean clear, PF_PixelFormat format,
                PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "PF_NewWorld")) return PF_Err_BAD_CALLBACK_PARAM;
    return NewEffectWorld(width, height, clear != 0, format, world);
}

PF_Err DisposeWorld(PF_ProgPtr effectRef, PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "PF_DisposeWorld")) return PF_Err_BAD_CALLBACK_PARAM;
    return DisposeEffectWorld(world);
}

PF_Err GetPixelFormat(const PF_EffectWorld* world, PF_PixelFormat* format) {
    if (!world || !format) return PF_Err_BAD_CALLBACK_PARAM;
    *format = PixelFormatOf(*world);
    return *format == PF_PixelFormat_INVALID ? PF_Err_BAD_CALLBACK_PARAM : PF_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFWorldSuiteName, Call, Function>;

}  // namespace

PF_Err NewEffectWorld(A_long width, A_long height, bool clear, PF_PixelFormat format, PF_EffectWorld* world) {
    Depth depth{};
    if (!world || !DepthOfFormat(format, depth)) return PF_Err_BAD_CALLBACK_PARAM;
    if (width < 1 || height < 1 || width > PF_MAX_WORLD_WIDTH || height > PF_MAX_WORLD_HEIGHT) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    World made = World::Create(width, height, depth, clear);
    if (made.IsNull()) return PF_Err_OUT_OF_MEMORY;
    const Services* services = CurrentServices();
    if (services && services->worldWatch) services->worldWatch(made, WorldRole::kTemporary, true);
    *world = made.Def();
    Table& table = TheTable();
    {
        const std::lock_guard lock(table.mutex);
        table.worlds.emplace(world->data, std::move(made));
    }
    Count(Resource::kWorld, 1);
    return PF_Err_NONE;
}

PF_Err DisposeEffectWorld(PF_EffectWorld* world) {
    if (!world) return PF_Err_BAD_CALLBACK_PARAM;
    Table& table = TheTable();
    World disposed;
    {
        const std::lock_guard lock(table.mutex);
        const auto found = table.worlds.find(world->data);
        if (found != table.worlds.end()) {
            disposed = std::move(found->second);
            table.worlds.erase(found);
        }
    }
    if (disposed.IsNull()) {
        Report("a world was disposed of that the effect does not own");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const Services* services = CurrentServices();
    if (services && services->worldWatch) services->worldWatch(disposed, WorldRole::kTemporary, false);
    *world = {};
    Count(Resource::kWorld, -1);
    return PF_Err_NONE;
}

const PF_WorldSuite2 kWorldSuite = {
    .PF_NewWorld = Slot<"PF_NewWorld", NewWorld>(),
    .PF_DisposeWorld = Slot<"PF_DisposeWorld", DisposeWorld>(),
    .PF_GetPixelFormat = Slot<"PF_GetPixelFormat", GetPixelFormat>(),
};

}  // namespace umbrant::host
