// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Where the program finds its module when none is named.

#include <dlfcn.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

#include "host/loading/program_file.h"
#include "host/module/module.h"

namespace umbrant::host {

namespace {

/// The module's file inside a folder, in either platform's form.
constexpr const char* kModuleFiles[] = {"umbrant2.so", "Umbrant 2.plugin/Contents/MacOS/Umbrant 2"};

/// The file that contains this code: the program, or a shared library that it is linked into.
std::filesystem::path OwnFile() {
    static const char anchor = 0;
    Dl_info info{};
    if (!dladdr(&anchor, &info) || !info.dli_fname) return {};
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(info.dli_fname, error);
    return error ? std::filesystem::path() : file;
}

/// In order, each once.
class Folders {
 public:
    void Add(const std::filesystem::path& folder) {
        const std::filesystem::path normal = folder.lexically_normal();
        if (std::find(all.begin(), all.end(), normal) == all.end()) all.push_back(normal);
    }
    /// Folders that are installed next to a folder of programs or libraries.
    void AddInstalled(const std::filesystem::path& base) {
        Add(base / ".." / UMBRANT_LIBRARY_FOLDER);
        Add(base / "../lib/umbrant");
    }
    std::vector<std::filesystem::path> all;
};

/// The file of a module in a folder, empty where there is none.
std::filesystem::path ModuleIn(const std::filesystem::path& folder) {
    for (const char* file : kModuleFiles) {
        std::error_code error;
        std::filesystem::path candidate = folder / file;
        if (std::filesystem::is_regular_file(candidate, error)) return candidate;
    }
    return {};
}

/// Where the loader looks for the libraries of the file that this code is linked into. A program that was linked with
/// the installed package has the module's folder in its run path.
std::vector<std::filesystem::path> LoaderFolders() {
    const std::filesystem::path own = OwnFile();
    const bool isProgram = own.empty() || own == RunningProgram();
    const std::unique_ptr<void, int (*)(void*)> handle(
        dlopen(isProgram ? nullptr : own.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NOLOAD), dlclose);
    Dl_serinfo size{};
    if (!handle || dlinfo(handle.get(), RTLD_DI_SERINFOSIZE, &size) != 0) return {};
    std::vector<std::max_align_t> memory(size.dls_size / sizeof(std::max_align_t) + 1);
    auto* const info = reinterpret_cast<Dl_serinfo*>(memory.data());
    if (dlinfo(handle.get(), RTLD_DI_SERINFOSIZE, info) != 0) return {};
    if (dlinfo(handle.get(), RTLD_DI_SERINFO, info) != 0) return {};
    std::vector<std::filesystem::path> folders;
    for (unsigned i = 0; i < info->dls_cnt; ++i) folders.emplace_back(info->dls_serpath[i].dls_name);
    return folders;
}

}  // namespace

std::filesystem::path RunningProgram() {
    // The process's own link where the system has one, else what the loader knows.
    const std::filesystem::path program = ProgramFile();
    return program.empty() ? OwnFile() : program;
}

ModuleSearch DefaultModuleSearch(const std::optional<std::filesystem::path>& option, ModuleSeeker seeker) {
    ModuleSearch search;
    search.option = option;
    const char* environment = std::getenv("UMBRANT_MODULE");
    if (environment && *environment) search.environment = environment;
    const std::filesystem::path program = RunningProgram().parent_path();
    Folders folders;
    folders.Add(program);
    if (seeker == ModuleSeeker::kLibrary) {
        const std::filesystem::path own = OwnFile().parent_path();
        if (!own.empty()) {
            folders.Add(own);
            // A plug-in's folder and the module's are both in the libraries' folder.
            folders.Add(own / "../umbrant");
        }
    }
    folders.AddInstalled(program);
    if (seeker == ModuleSeeker::kLibrary) {
        // Only where there is one: a message need not name all of the system's folders.
        for (const std::filesystem::path& folder : LoaderFolders()) {
            if (!ModuleIn(folder).empty()) folders.Add(folder);
        }
        for (const char* prefix : {"/usr/local", "/usr"})
            folders.Add(std::filesystem::path(prefix) / UMBRANT_LIBRARY_FOLDER);
    }
    search.folders = std::move(folders.all);
    return search;
}

Result<std::filesystem::path> FindModule(const ModuleSearch& search) {
    if (search.option) return *search.option;
    if (search.environment) return *search.environment;
    std::string places;
    for (const std::filesystem::path& folder : search.folders) {
        if (std::filesystem::path file = ModuleIn(folder); !file.empty()) return file;
        const char* joint = places.empty() ? "" : &folder == &search.folders.back() ? " or " : ", ";
        places += fmt::format("{}'{}'", joint, folder.string());
    }
    return Failure{ErrorKind::kModule, fmt::format("no module was found in {}; {}", places, search.advice)};
}

Result<std::filesystem::path> FindModule(const std::optional<std::filesystem::path>& option) {
    return FindModule(DefaultModuleSearch(option));
}

}  // namespace umbrant::host
