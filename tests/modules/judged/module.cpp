// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect's two entries, its set-up and set-down.

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>

#include "hostapi/registration.h"
#include "tests/modules/judged/judged.h"

#define JUDGED_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

bool aboutWasAsked = false;
int setUps = 0;
std::mutex commandMutex;

[[noreturn]] void Crash() {
    std::abort();
}

/// Whether the system's OpenGL can be had; the effect does not draw with it.
bool HasDriver() {
    void* library = dlopen("libEGL.so.1", RTLD_NOW);
    if (!library) return false;
    const auto display =
        reinterpret_cast<void* (*)(unsigned, void*, const void*)>(dlsym(library, "eglGetPlatformDisplay"));
    const auto initialize = reinterpret_cast<unsigned (*)(void*, int*, int*)>(dlsym(library, "eglInitialize"));
    constexpr unsigned kSurfaceless = 0x31DD;
    void* shown = display ? display(kSurfaceless, nullptr, nullptr) : nullptr;
    return shown && initialize && initialize(shown, nullptr, nullptr);
}

/// Takes the context away that is current on the calling thread.
void ClearContext() {
    void* library = dlopen("libEGL.so.1", RTLD_NOW);
    if (!library) return;
    const auto display = reinterpret_cast<void* (*)()>(dlsym(library, "eglGetCurrentDisplay"));
    const auto make = reinterpret_cast<unsigned (*)(void*, void*, void*, void*)>(dlsym(library, "eglMakeCurrent"));
    if (void* shown = display()) make(shown, nullptr, nullptr, nullptr);
}

PF_Err SetUp(PF_InData* in, PF_OutData* out) {
    if (Is(Mutant::kSlowSetup)) std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    if (Is(Mutant::kCrashesInPremiere) && in->appl_id == kAppID_Premiere) Crash();
    if (Is(Mutant::kNeedsDriver) && !HasDriver()) Crash();
    if (Is(Mutant::kClearsContext)) ClearContext();
    if (Is(Mutant::kSharesEnvironment)) {
        if (std::getenv("JUDGED_ONCE")) setenv("JUDGED_TWICE", "1", 1);
        setenv("JUDGED_ONCE", "1", 1);
    }
    out->my_version = Is(Mutant::kNoVersion) ? 0 : 0x80801;
    out->out_flags = PF_OutFlag_CUSTOM_UI | PF_OutFlag_SEND_UPDATE_PARAMS_UI | PF_OutFlag_DEEP_COLOR_AWARE;
    if (Is(Mutant::kFlagsChange) && ++setUps > 1) out->out_flags |= PF_OutFlag_NON_PARAM_VARY;
    out->out_flags2 =
        PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE | PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
    const Held<PF_HandleSuite1> handles(in, kPFHandleSuiteName, kPFHandleSuiteVersion1);
    const PF_Handle global = handles->host_new_handle(64);
    if (!global && !Is(Mutant::kTrustsHandle)) return PF_Err_OUT_OF_MEMORY;
    void* bytes = handles->host_lock_handle(global);
    if (!bytes && !Is(Mutant::kTrustsHandle)) {
        handles->host_dispose_handle(global);
        return PF_Err_OUT_OF_MEMORY;
    }
    std::memset(bytes, 0, Is(Mutant::kWritesPastHandle) ? 65 : 64);
    if (!Is(Mutant::kLeaksLock)) handles->host_unlock_handle(global);
    out->global_data = global;
    if (Is(Mutant::kLeaksHandle)) handles->host_new_handle(8);
    return PF_Err_NONE;
}

PF_Err SetDown(PF_InData* in) {
    if (!in->global_data) {
        if (Is(Mutant::kCrashesOnSecondSetdown)) Crash();
        return PF_Err_NONE;
    }
    const Held<PF_HandleSuite1> handles(in, kPFHandleSuiteName, kPFHandleSuiteVersion1);
    handles->host_dispose_handle(in->global_data);
    if (Is(Mutant::kUsesDisposedHandle)) **in->global_data = 1;
    in->global_data = nullptr;
    return PF_Err_NONE;
}

PF_Err About(PF_OutData* out) {
    aboutWasAsked = true;
    if (Is(Mutant::kNoAbout)) return PF_Err_NONE;
    if (Is(Mutant::kEndlessAbout)) {
        std::memset(out->return_msg, 'a', sizeof(out->return_msg));
    } else if (Is(Mutant::kAboutOverruns)) {
        std::memset(out->return_msg, 'a', sizeof(out->return_msg) + 8);
        out->return_msg[10] = '\0';
    } else {
        std::snprintf(out->return_msg, sizeof(out->return_msg), "%s", "Judged\nfor tests of the judge\n");
    }
    return PF_Err_NONE;
}

/// Everything about one row of the panel; the row's index comes from the host and is not trusted.
PF_Err UserChanged(PF_InData* in, const PF_UserChangedParamExtra* extra, PF_ParamDef* params[]) {
    if (Is(Mutant::kTrustsIndex)) {
        static int touched[JUDGED_COUNT];
        volatile char* far = reinterpret_cast<char*>(touched);
        // Far enough out to meet no memory of the module.
        far[static_cast<std::ptrdiff_t>(extra->param_index < 0 || extra->param_index >= JUDGED_COUNT ? 1 << 30 : 0)] =
            1;
    }
    if (!extra || !params) return PF_Err_BAD_CALLBACK_PARAM;
    if (Is(Mutant::kLocksInChange)) ValueOf(in, JUDGED_AMOUNT);
    return PF_Err_NONE;
}

PF_Err SmartRender(PF_InData* in, PF_OutData* out, PF_SmartRenderExtra* extra) {
    if (Is(Mutant::kFailsAfterAbout) && aboutWasAsked) return PF_Err_INTERNAL_STRUCT_DAMAGED;
    return Render(in, out, extra);
}

/// Whether a wrong module takes its lock for the whole of a command, the host's callbacks included.
bool TakesLock(PF_Cmd command) {
    switch (command) {
        case PF_Cmd_ABOUT:
            return Is(Mutant::kLocksWhileCalling) || Is(Mutant::kLocksInPreRender) || Is(Mutant::kLocksInSetUp);
        case PF_Cmd_SMART_RENDER:
            return Is(Mutant::kLocksWhileCalling);
        case PF_Cmd_SMART_PRE_RENDER:
            return Is(Mutant::kLocksInPreRender) || Is(Mutant::kLocksInUpdate) || Is(Mutant::kLocksInChange) ||
                   Is(Mutant::kLocksInDraw);
        case PF_Cmd_PARAMS_SETUP:
            return Is(Mutant::kLocksInSetUp);
        case PF_Cmd_UPDATE_PARAMS_UI:
            return Is(Mutant::kLocksInUpdate);
        case PF_Cmd_USER_CHANGED_PARAM:
            return Is(Mutant::kLocksInChange);
        case PF_Cmd_EVENT:
            return Is(Mutant::kLocksInDraw);
        default:
            return false;
    }
}

PF_Err Dispatch(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[], PF_LayerDef* output,
                void* extra) {
    std::unique_lock lock(commandMutex, std::defer_lock);
    if (TakesLock(command)) lock.lock();
    switch (command) {
        case PF_Cmd_ABOUT:
            return About(out);
        case PF_Cmd_GLOBAL_SETUP:
            return SetUp(in, out);
        case PF_Cmd_GLOBAL_SETDOWN:
            return SetDown(in);
        case PF_Cmd_PARAMS_SETUP:
            return SetUpParams(in, out);
        case PF_Cmd_UPDATE_PARAMS_UI:
            return params ? UpdatePanel(in, params) : PF_Err_BAD_CALLBACK_PARAM;
        case PF_Cmd_USER_CHANGED_PARAM:
            return UserChanged(in, static_cast<const PF_UserChangedParamExtra*>(extra), params);
        case PF_Cmd_EVENT:
            return extra ? DrawPanel(in, static_cast<PF_EventExtra*>(extra)) : PF_Err_BAD_CALLBACK_PARAM;
        case PF_Cmd_SMART_PRE_RENDER:
            if (!extra && !Is(Mutant::kTrustsPointers)) return PF_Err_BAD_CALLBACK_PARAM;
            return PreRender(in, static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            if (!extra) return PF_Err_BAD_CALLBACK_PARAM;
            return SmartRender(in, out, static_cast<PF_SmartRenderExtra*>(extra));
        default:
            if (Is(Mutant::kRefusesUnknown) && command > PF_Cmd_NUM_CMDS) return PF_Err_BAD_CALLBACK_PARAM;
            if (Is(Mutant::kRendersOldWay) && command == PF_Cmd_RENDER && output) output->data->alpha ^= 1;
            return PF_Err_NONE;
    }
}

}  // namespace

JUDGED_EXPORT PF_Err JudgedMain(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                                PF_LayerDef* output, void* extra) {
    try {
        if (!in || !out) return PF_Err_BAD_CALLBACK_PARAM;
        return Dispatch(command, in, out, params, output, extra);
    } catch (PF_Err error) {
        return error;
    } catch (const std::bad_alloc&) {
        if (Is(Mutant::kTrustsMalloc)) throw;
        return PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}

JUDGED_EXPORT PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer, PF_PluginDataCB callback, SPBasicSuite*,
                                             const char*, const char*) {
    const auto text = [](const char* characters) { return reinterpret_cast<const A_u_char*>(characters); };
    if (Is(Mutant::kPrintsOnLoad)) std::puts("Judged was loaded");
    if (Is(Mutant::kLeaksFile)) {
        const int leaked = open("/dev/null", O_RDONLY);
        static_cast<void>(leaked);
    }
    const char* entry = Is(Mutant::kMissingMain) ? "ElsewhereMain" : "JudgedMain";
    const A_long minor = Is(Mutant::kNewerInterface) ? 99 : 28;
    const A_long reserved = Is(Mutant::kWrongReserved) ? 7 : 8;
    const auto once = [&] {
        return callback(pointer, text("Judged"), text("TEST judged"), text("Tests"), text(entry), kPluginKind_Effect,
                        13, minor, reserved);
    };
    if (Is(Mutant::kRegistersTwice)) once();
    const PF_Err error = once();
    return Is(Mutant::kSwallowsRefusal) ? PF_Err_NONE : error;
}
