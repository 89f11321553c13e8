// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An effect module as the host meets it: a file that is loaded, that registers one effect, and that is then called
// through one command entry. Nothing of the module is linked.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/result.h"
#include "hostapi/commands.h"

namespace umbrant::host {

/// What the module said about its effect when it was scanned. The first three texts are for people, and cut at 255
/// bytes.
struct Registration {
    std::string name;
    std::string matchName;
    std::string category;
    std::string entryPoint;
    A_long kind = 0;  ///< four-character code, most significant byte first
    A_long apiMajor = 0;
    A_long apiMinor = 0;
    A_long reservedInfo = 0;
};

/// What a command came to.
struct CallOutcome {
    PF_Err error = PF_Err_NONE;
    /// Set when an exception left the module, which no module may do: its description. `error` is then
    /// `PF_Err_INTERNAL_STRUCT_DAMAGED`.
    std::optional<std::string> exception;
};

/// A loaded module. Move-only; unloads the file when destroyed, so it must outlive every session on it.
class Module {
 public:
    /// Loads the file, lets it register its effect and finds the command entry. Every failure has
    /// `ErrorKind::kModule` and names the file, the reason and what would be right.
    static Result<Module> Load(const std::filesystem::path& file);

    Module(Module&&) noexcept = default;
    Module& operator=(Module&&) noexcept = default;

    const std::filesystem::path& File() const { return file_; }
    const Registration& Effect() const { return registration_; }

    /// Sends one command on the calling thread. No exception of the module gets past this call.
    CallOutcome Call(PF_Cmd command, PF_InData* inData, PF_OutData* outData, PF_ParamDef* params[], PF_LayerDef* output,
                     void* extra) const;

 private:
    Module() = default;
    struct Unloader {
        void operator()(void* library) const;
    };

    std::filesystem::path file_;
    std::unique_ptr<void, Unloader> library_;
    Registration registration_;
    PF_FilterProc entry_ = nullptr;
};

/// Fails as Module::Load does when there is nothing at the path, or when the system does not let the program look.
Result<Done> CheckModuleIsThere(const std::filesystem::path& file);

/// Where a module is looked for, in order; see FindModule.
struct ModuleSearch {
    std::optional<std::filesystem::path> option;       ///< the file named on the command line
    std::optional<std::filesystem::path> environment;  ///< the file named by UMBRANT_MODULE
    std::vector<std::filesystem::path> folders;        ///< where it may be, the first first
    /// What the user can do when none is found: "name one with ...".
    std::string advice = "name one with --module or UMBRANT_MODULE";
};

/// The file of the running program, empty when the system does not report it.
std::filesystem::path RunningProgram();

/// Who looks for a module.
enum class ModuleSeeker {
    kProgram,  ///< this project's program: in its folder, and in the installed library folder
    /// Another program, or a shared library in it: also in the folder of that library, in the folders in which the
    /// loader looks for the libraries of it (its run path, LD_LIBRARY_PATH), and in the system's library folders.
    kLibrary,
};

/// The search of the running program: `option`, UMBRANT_MODULE (an empty value counts as unset), and folders.
ModuleSearch DefaultModuleSearch(const std::optional<std::filesystem::path>& option,
                                 ModuleSeeker seeker = ModuleSeeker::kProgram);

/// The module's file: the option, else the environment's, else the first that exists in the folders. A file that was
/// named is returned as it is; Load reports what is wrong with it. Fails with `ErrorKind::kModule` when none was named
/// and none found.
Result<std::filesystem::path> FindModule(const ModuleSearch& search);
Result<std::filesystem::path> FindModule(const std::optional<std::filesystem::path>& option);

}  // namespace umbrant::host
