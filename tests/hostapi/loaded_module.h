// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The built module, loaded as a host loads it.

#include <dlfcn.h>

#include <string>

#include "hostapi/commands.h"
#include "hostapi/registration.h"

class LoadedModule {
 public:
    using RegisterFunction = PF_Err (*)(PF_PluginDataPtr, PF_PluginDataCB, SPBasicSuite*, const char*, const char*);

    LoadedModule() : handle_(dlopen(UMBRANT_MODULE_FILE, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            error = dlerror();
            return;
        }
        main = reinterpret_cast<PF_FilterProc>(dlsym(handle_, "EffectMain"));
        registration = reinterpret_cast<RegisterFunction>(dlsym(handle_, "PluginDataEntryFunction"));
    }
    ~LoadedModule() { Unload(); }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    void Unload() {
        if (handle_ != nullptr) dlclose(handle_);
        handle_ = nullptr;
    }

    /// Under a sanitizer nothing takes the module out of the process, so that reports can name its functions.
    static constexpr bool kStaysMapped = MODULE_STAYS_MAPPED;
    /// Whether the module's code is in the process.
    static bool IsMapped() {
        void* handle = dlopen(UMBRANT_MODULE_FILE, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
        if (handle != nullptr) dlclose(handle);
        return handle != nullptr;
    }

    std::string error;  ///< of a load that failed
    PF_FilterProc main = nullptr;
    RegisterFunction registration = nullptr;

 private:
    void* handle_;
};
