// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A module for Linux hosts that is nothing but the macOS bundle: when it is loaded it maps the x86-64 slice that ships,
// and its two exports hand every call on to the slice's. So the very object code that Macs run is driven by the host
// program, and its pixels can be compared with the Linux module's.
//
// What it proves: entries, parameters, pre-render, render, thread-local state, the recursive mutex and exceptions of
// the shipped x86-64 code. What it cannot prove: anything about Apple's CGL and OpenGL, about the arm64 slice, about
// signatures and the real loader, or about libSystem where it differs from the C library here.
//
// UMBRANT_MACOS_EXECUTABLE names the bundle's executable, UMBRANT_MACOS_UNWINDER the image with the unwinder, which on
// a Mac is part of libSystem. Without them the registration fails.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

#include "hostapi/commands.h"
#include "hostapi/registration.h"
#include "tests/packaging/mapped/mac_system.h"
#include "tests/packaging/mapped/macho_image.h"

namespace {

using Registration = PF_Err (*)(PF_PluginDataPtr, PF_PluginDataCB, SPBasicSuite*, const char*, const char*);

struct Mapped {
    std::unique_ptr<MachoImage> unwinder, effect;
    Registration registration = nullptr;
    PF_FilterProc main = nullptr;
};

const char* Required(const char* variable) {
    const char* value = std::getenv(variable);
    if (!value) throw std::runtime_error(std::string(variable) + " is not set");
    return value;
}

Mapped MapAll() {
    Mapped mapped;
    mapped.unwinder = MachoImage::Map(Required("UMBRANT_MACOS_UNWINDER"), SystemSymbol);
    mapped.effect = MachoImage::Map(Required("UMBRANT_MACOS_EXECUTABLE"), [&](const std::string& name) -> void* {
        if (name.starts_with("__Unwind_")) return mapped.unwinder->Exported(name);
        if (void* graphics = GraphicsSymbol(name)) return graphics;
        return SystemSymbol(name);
    });
    // The first frame that the unwinder leaves is its own.
    for (const auto* image : {mapped.unwinder.get(), mapped.effect.get()}) AnnounceUnwindTables(image);
    mapped.registration = reinterpret_cast<Registration>(mapped.effect->Exported("_PluginDataEntryFunction"));
    mapped.main = reinterpret_cast<PF_FilterProc>(mapped.effect->Exported("_EffectMain"));
    if (!mapped.registration || !mapped.main) throw std::runtime_error("it lacks one of the two exports");
    return mapped;
}

/// Mapped when this library is loaded, and unmapped when the process ends, after what the slice has registered to run
/// at that time. The library itself is never unloaded: as on a Mac, threads that are still to end call into the slice.
const Mapped mapped = [] {
    try {
        return MapAll();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The macOS bundle cannot be mapped: %s.\n", error.what());
        return Mapped{};
    }
}();

const bool initialised = [] {
    if (!mapped.main) return false;
    mapped.unwinder->Initialise();
    mapped.effect->Initialise();
    return true;
}();

}  // namespace

extern "C" {

__attribute__((visibility("default"))) PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer,
                                                                      PF_PluginDataCB callback, SPBasicSuite* suites,
                                                                      const char* hostName, const char* hostVersion) {
    if (!initialised) return PF_Err_INTERNAL_STRUCT_DAMAGED;
    return mapped.registration(pointer, callback, suites, hostName, hostVersion);
}

__attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd command, PF_InData* inData, PF_OutData* outData,
                                                         PF_ParamDef* params[], PF_LayerDef* output, void* extra) {
    return mapped.main(command, inData, outData, params, output, extra);
}

/// For tests: see LastSystemCommand.
__attribute__((visibility("default"))) const char* UmbrantMappedLastCommand() {
    return LastSystemCommand();
}
}
