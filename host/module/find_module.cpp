// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Where the program finds its module when nobody names one.

#include <dlfcn.h>
#include <fmt/format.h>

#include <cstdlib>
#include <system_error>

#include "host/module/module.h"

namespace {

/// The module's file inside a folder, in either platform's form.
constexpr const char* kModuleFiles[] = {"umbrant2.so", "Umbrant 2.plugin/Contents/MacOS/Umbrant 2"};

/// The folder of the running program: the process's own link where the system has one, else what the loader knows.
std::filesystem::path ProgramFolder() {
    std::error_code error;
    std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        static const char anchor = 0;
        Dl_info info{};
        if (!dladdr(&anchor, &info) || !info.dli_fname) return {};
        program = std::filesystem::canonical(info.dli_fname, error);
        if (error) return {};
    }
    return program.parent_path();
}

}  // namespace

ModuleSearch DefaultModuleSearch(const std::optional<std::filesystem::path>& option) {
    ModuleSearch search;
    search.option = option;
    const char* environment = std::getenv("UMBRANT_MODULE");
    if (environment && *environment) search.environment = environment;
    search.programFolder = ProgramFolder();
    search.libraryFolder = (search.programFolder / ".." / "lib" / "umbrant").lexically_normal();
    return search;
}

Result<std::filesystem::path> FindModule(const ModuleSearch& search) {
    if (search.option) return *search.option;
    if (search.environment) return *search.environment;
    for (const std::filesystem::path& folder : {search.programFolder, search.libraryFolder}) {
        for (const char* file : kModuleFiles) {
            std::error_code error;
            const std::filesystem::path candidate = folder / file;
            if (std::filesystem::is_regular_file(candidate, error)) return candidate;
        }
    }
    return Failure{ExitCode::kModule,
                   fmt::format("no module was found in '{}' or '{}'; name one with --module or UMBRANT_MODULE",
                               search.programFolder.string(), search.libraryFolder.string())};
}

Result<std::filesystem::path> FindModule(const std::optional<std::filesystem::path>& option) {
    return FindModule(DefaultModuleSearch(option));
}
