// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/module/module.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/why_no_file.h"
#include "hostapi/registration.h"

namespace umbrant::host {

namespace {

constexpr char kRegistrationExport[] = "PluginDataEntryFunction";
constexpr char kHostName[] = "umbrant";
constexpr char kHostVersion[] = "1";

using RegistrationFunction = PF_Err (*)(PF_PluginDataPtr, PF_PluginDataCB, SPBasicSuite*, const char*, const char*);

Failure ModuleFailure(const std::filesystem::path& file, const std::string& reason) {
    return {ErrorKind::kModule, fmt::format("cannot load the module '{}': {}", file.string(), reason)};
}

/// What the callback has received; the pointer that is handed through the module.
struct Received {
    Registration registration;
    int calls = 0;
    bool complete = true;
};

std::string Text(const A_u_char* bytes) {
    return bytes ? std::string(reinterpret_cast<const char*>(bytes)) : std::string();
}

/// Longer names are a module's mistake, and only make messages unreadable.
constexpr std::size_t kLongestName = 255;

/// At most `kLongestName` bytes of a text for people, with a mark where the rest is missing; characters stay whole.
std::string Shortened(std::string text) {
    constexpr std::string_view kMark = "...";
    if (text.size() <= kLongestName) return text;
    std::size_t end = kLongestName - kMark.size();
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end).append(kMark);
}

A_Err Receive(PF_PluginDataPtr pointer, const A_u_char* name, const A_u_char* matchName, const A_u_char* category,
              const A_u_char* entryPoint, A_long kind, A_long apiMajor, A_long apiMinor, A_long reservedInfo) {
    auto* received = reinterpret_cast<Received*>(pointer);
    if (!received) return PF_Err_BAD_CALLBACK_PARAM;
    ++received->calls;
    received->complete = name && matchName && category && entryPoint;
    received->registration = {Shortened(Text(name)),
                              Shortened(Text(matchName)),
                              Shortened(Text(category)),
                              Text(entryPoint),
                              kind,
                              apiMajor,
                              apiMinor,
                              reservedInfo};
    return PF_Err_NONE;
}

/// What went wrong in calling `function`, when an exception left it.
template <typename Function>
std::optional<std::string> CatchAll(Function function) {
    try {
        function();
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (int number) {
        return fmt::format("the number {}", number);
    } catch (...) {
        return "an exception of an unknown type";
    }
    return std::nullopt;
}

std::string FourCharacters(A_long code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char character = static_cast<char>(code >> shift & 0xFF);
        text += character >= ' ' && character <= '~' ? character : '?';
    }
    return text;
}

/// Asks the module what it holds. Returns the reason when it does not hold one effect that can be driven.
std::optional<std::string> Register(void* library, Registration& registration) {
    const auto entry = reinterpret_cast<RegistrationFunction>(dlsym(library, kRegistrationExport));
    if (!entry) return fmt::format("'{}' is not exported; an effect module exports it", kRegistrationExport);

    Received received;
    PF_Err error = PF_Err_NONE;
    const auto thrown = CatchAll([&] {
        error = entry(reinterpret_cast<PF_PluginDataPtr>(&received), Receive, nullptr, kHostName, kHostVersion);
    });
    if (thrown) {
        return fmt::format("its registration threw an exception ({}); it should return an error instead", *thrown);
    }
    if (error) return fmt::format("its registration returned error {}; it should return 0", error);
    if (received.calls != 1) {
        return fmt::format("{} effects are registered; this host takes modules with exactly one", received.calls);
    }
    if (!received.complete) return "its registration lacks a name; name, match name, category and entry are needed";
    registration = received.registration;
    if (registration.kind != kPluginKind_Effect) {
        return fmt::format("the registered kind is '{}'; an effect has the kind '{}'",
                           FourCharacters(registration.kind), FourCharacters(kPluginKind_Effect));
    }
    return std::nullopt;
}

}  // namespace

void Module::Unloader::operator()(void* library) const {
    dlclose(library);
}

Result<Done> CheckModuleIsThere(const std::filesystem::path& file) {
    const auto reason = WhyNoFile(file);
    if (!reason) return Done{};
    return ModuleFailure(file, *reason == kNoSuchFile ? *reason + "; name the module's file" : *reason);
}

Result<Module> Module::Load(const std::filesystem::path& file) {
    TRY(CheckModuleIsThere(file));
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) {
        return ModuleFailure(file, "a folder; name the module's file inside it");
    }

    Module module;
    module.file_ = file;
    // A bare file name would be looked for in the system's library folders.
    const std::filesystem::path path = std::filesystem::absolute(file, ignored);
    std::optional<std::string> thrown =
        CatchAll([&] { module.library_.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)); });
    if (thrown) return ModuleFailure(file, fmt::format("its initialisation threw an exception ({})", *thrown));
    if (!module.library_) {
        const char* reason = dlerror();
        if (reason && std::string_view(reason).find(std::strerror(ENOMEM)) != std::string_view::npos) {
            return Failure{ErrorKind::kInternal,
                           fmt::format("not enough memory for the module '{}', {} MiB", file.string(),
                                       (std::filesystem::file_size(path, ignored) >> 20) + 1)};
        }
        return ModuleFailure(file, fmt::format("not a loadable module ({}); a shared library with an effect is needed",
                                               reason ? reason : "no reason given"));
    }
    if (const auto problem = Register(module.library_.get(), module.registration_)) {
        return ModuleFailure(file, *problem);
    }
    const std::string& entryPoint = module.registration_.entryPoint;
    module.entry_ = reinterpret_cast<PF_FilterProc>(dlsym(module.library_.get(), entryPoint.c_str()));
    if (!module.entry_) {
        return ModuleFailure(file, fmt::format("the registered entry '{}' is not exported", Shortened(entryPoint)));
    }
    return module;
}

CallOutcome Module::Call(PF_Cmd command, PF_InData* inData, PF_OutData* outData, PF_ParamDef* params[],
                         PF_LayerDef* output, void* extra) const {
    CallOutcome outcome;
    outcome.exception = CatchAll([&] { outcome.error = entry_(command, inData, outData, params, output, extra); });
    if (outcome.exception) outcome.error = PF_Err_INTERNAL_STRUCT_DAMAGED;
    return outcome;
}

}  // namespace umbrant::host
