// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Asks the loader for the plug-in's own file: hosts need not say where they found it.

#include "openfx/module_file.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "openfx/host/refusal.h"

namespace umbrant::openfx {

namespace {

constexpr char kModuleName[] = "umbrant2.so";

std::filesystem::path OwnFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ModuleFile), &info) == 0 || !info.dli_fname) return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

}  // namespace

std::string ModuleFile() {
    const char* const named = std::getenv("UMBRANT_MODULE");
    if (named && *named) return named;
    const std::filesystem::path file = OwnFolder() / kModuleName;
    std::error_code error;
    if (std::filesystem::exists(file, error)) return file.string();
    throw Refusal(kOfxStatFailed, "the module '" + file.string() +
                                      "' is missing; install the whole bundle again, or set the environment variable "
                                      "UMBRANT_MODULE to a module");
}

}  // namespace umbrant::openfx
