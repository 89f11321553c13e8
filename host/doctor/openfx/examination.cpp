// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/examination.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <regex>

#include "host/doctor/openfx/effect.h"
#include "host/doctor/openfx/frame.h"
#include "openfx/abi/actions.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"

namespace umbrant::host {

namespace {

/// More plug-ins than any binary has.
constexpr int kMostPlugins = 10000;

/// The linker's reason as a sentence that says what would work.
std::string Explained(const std::string& reason) {
    std::smatch found;
    static const std::regex version("version `(GLIBC|GLIBCXX|CXXABI)_([0-9.]+)' not found");
    static const std::regex library("([^ /]+): cannot open shared object file");
    static const std::regex symbol("undefined symbol: ([^ ,]+)");
    if (std::regex_search(reason, found, version)) {
        return fmt::format("it needs {} {} or newer, which this system does not have; use a build for an older system",
                           found[1] == "GLIBC" ? "the C library" : "the C++ library",
                           found[1].str() + " " + found[2].str());
    }
    if (std::regex_search(reason, found, library)) {
        return fmt::format("it needs the library {}, which is not on this system; install the package that has it",
                           found[1].str());
    }
    if (std::regex_search(reason, found, symbol)) {
        return fmt::format(
            "it needs the function '{}', which none of its libraries has; it belongs to other versions of them",
            found[1].str());
    }
    return reason;
}

/// The two entry points of a loaded binary.
struct EntryPoints {
    int (*count)() = nullptr;
    OfxPlugin* (*plugin)(int) = nullptr;
};

Result<EntryPoints> Load(const std::filesystem::path& binary, const std::filesystem::path& bundle,
                         const NoteStep& note) {
    note("while it was loaded");
    // What a constructor throws comes through the loader with some C libraries, and ends the process with others. It
    // shall end it. The function is declared to throw nothing, which compilers believe unless they cannot see which one
    // it is.
    void* (*volatile const open)(const char*, int) = dlopen;
    void* const object = [&]() noexcept { return open(binary.c_str(), RTLD_NOW | RTLD_LOCAL); }();
    if (!object) {
        const char* const reason = dlerror();
        return Failure{ErrorKind::kModule, fmt::format("'{}' cannot be loaded: {}", bundle.string(),
                                                       Explained(reason ? reason : "the system gives no reason"))};
    }
    EntryPoints entries;
    entries.count = reinterpret_cast<int (*)()>(dlsym(object, "OfxGetNumberOfPlugins"));
    entries.plugin = reinterpret_cast<OfxPlugin* (*)(int)>(dlsym(object, "OfxGetPlugin"));
    for (const auto& [found, name] : {std::pair(entries.count != nullptr, "OfxGetNumberOfPlugins"),
                                      std::pair(entries.plugin != nullptr, "OfxGetPlugin")}) {
        if (found) continue;
        return Failure{
            ErrorKind::kModule,
            fmt::format("'{}' is not an OpenFX plug-in: '{}' does not export the function '{}'; build it with "
                        "both entry points visible",
                        bundle.string(), binary.filename().string(), name)};
    }
    return entries;
}

Failure Malformed(const std::filesystem::path& bundle, const std::string& what) {
    return {ErrorKind::kModule, fmt::format("'{}' {}", bundle.string(), what)};
}

/// The plug-ins for images; those of other kinds are left out.
Result<std::vector<const OfxPlugin*>> PluginsOf(const EntryPoints& entries, const std::filesystem::path& bundle,
                                                const NoteStep& note) try {
    note("during OfxGetNumberOfPlugins");
    const int count = entries.count();
    if (count <= 0 || count > kMostPlugins) return Malformed(bundle, fmt::format("reports {} plug-ins", count));
    std::vector<const OfxPlugin*> plugins;
    for (int i = 0; i < count; ++i) {
        note(fmt::format("during OfxGetPlugin({})", i));
        const OfxPlugin* const plugin = entries.plugin(i);
        if (!plugin || !plugin->pluginApi || !plugin->pluginIdentifier || !plugin->setHost || !plugin->mainEntry) {
            return Malformed(bundle, fmt::format("has an incomplete record of its plug-in {} of {}", i + 1, count));
        }
        if (plugin->pluginApi == std::string(kOfxImageEffectPluginApi) &&
            plugin->apiVersion == kOfxImageEffectPluginApiVersion) {
            plugins.push_back(plugin);
        }
    }
    if (plugins.empty()) return Malformed(bundle, "has no plug-in for images");
    return plugins;
} catch (...) {
    return Malformed(bundle, "throws an exception out of its entry points, which ends most hosts");
}

/// The context in which it is described: that of one source, where there is one.
std::string ContextOf(const OpenFxEffect& effect) {
    for (const char* context : {kOfxImageEffectContextFilter, kOfxImageEffectContextGeneral}) {
        if (effect.properties.Has(kOfxImageEffectPropSupportedContexts, context)) return context;
    }
    return effect.properties.Get(kOfxImageEffectPropSupportedContexts, std::string());
}

Result<OpenFxPluginFacts> ExaminePlugin(const OfxPlugin& plugin, const std::filesystem::path& bundle,
                                        const NoteStep& note) {
    PluginCalls calls(plugin, bundle.string(), note);
    TRY(calls.SetHost());
    TRY(calls.Action(kOfxActionLoad, nullptr, nullptr, nullptr, kOptionalStatuses));
    OpenFxEffect effect;
    effect.properties.Declare(kOfxPropType, {std::string(kOfxTypeImageEffect)});
    effect.properties.Declare(kOfxPropLabel, {std::string(plugin.pluginIdentifier)});
    effect.properties.Declare(kOfxPluginPropFilePath, {bundle.string()});
    TRY(calls.Action(kOfxActionDescribe, effect.Handle(), nullptr, nullptr, {kOfxStatOK}));
    const std::string context = ContextOf(effect);
    if (context.empty()) return calls.Failed("names no context when it is described");

    OpenFxEffect described;
    described.properties = effect.properties;
    PropertySet in;
    in.Declare(kOfxImageEffectPropContext, {context});
    TRY(calls.Action(kOfxImageEffectActionDescribeInContext, described.Handle(), &in, nullptr, {kOfxStatOK}));
    OpenFxPluginFacts facts;
    facts.identifier = plugin.pluginIdentifier;
    facts.version = fmt::format("{}.{}", plugin.pluginVersionMajor, plugin.pluginVersionMinor);
    facts.label = effect.properties.Get(kOfxPropLabel, facts.identifier);
    facts.parameters = static_cast<int>(described.parameters.parameters.size());
    facts.frame = TRY(DrawFrame(calls, effect, described, context));
    TRY(calls.Action(kOfxActionUnload, nullptr, nullptr, nullptr, kOptionalStatuses));
    return facts;
}

}  // namespace

Result<std::vector<OpenFxPluginFacts>> ExamineBinary(const std::filesystem::path& binary,
                                                     const std::filesystem::path& bundle, const NoteStep& note) {
    const EntryPoints entries = TRY(Load(binary, bundle, note));
    const auto plugins = TRY(PluginsOf(entries, bundle, note));
    std::vector<OpenFxPluginFacts> facts;
    for (const OfxPlugin* plugin : plugins) facts.push_back(TRY(ExaminePlugin(*plugin, bundle, note)));
    note("after its last action");
    return facts;
}

}  // namespace umbrant::host
