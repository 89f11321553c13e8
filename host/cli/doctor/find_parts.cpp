// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What draws, and what the program is made of: the module and its renderer, the shared objects, fonts, ffmpeg, OpenFX.

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <utility>

#include "host/cli/doctor/part_report.h"
#include "host/color/open_color_spaces.h"
#include "host/doctor/openfx/bundle.h"
#include "host/doctor/openfx/openfx_doctor.h"
#include "host/doctor/own_object_examination.h"
#include "host/isolation/module_process.h"
#include "host/loading/own_objects.h"
#include "host/module/own_module.h"
#include "host/session/effect_session.h"
#include "host/session/renderer.h"
#include "host/video/clip_format.h"
#include "host/video/tool_facts.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

/// The module's file and identity, or what is wrong; and what draws. In a process of its own: a driver may end it.
Result<std::vector<PartReport>> ExamineModule(const std::string& named, RendererPreference preference) {
    const auto option = named.empty() ? std::nullopt : std::optional<fs::path>(named);
    const auto file = TRY(FindModule(DefaultModuleSearch(option)));
    SessionOptions options;
    options.renderer = RendererOfSetUp(preference);
    auto process = TRY(ModuleProcess::Start({file, std::move(options), {}}));
    const Registration effect = process->Effect();
    EffectSession session = EffectSession::Over(std::move(process));
    const GpuStrings gpu = ReadGpuStrings(session.Params());
    const RendererDecision decision = DecideRenderer(preference, gpu);
    TRY(session.End());
    std::vector<PartReport> findings = {
        {"module", PartCondition::kGood, fmt::format("'{}', {}", effect.name, file.string())},
        {"renderer", PartCondition::kGood, RendererText(decision)}};
    if (gpu.HasContext()) {
        findings.push_back({"driver", PartCondition::kGood,
                            fmt::format("{}, {}, OpenGL {}", gpu.renderer, gpu.vendor, gpu.glVersion)});
    } else if (HasGraphicsDevice() && preference != RendererPreference::kProcessor) {
        findings.push_back({"driver", PartCondition::kNote, "there is a graphics device, but no OpenGL 3.3 for it",
                            "install the driver of the device, or set UMBRANT_RENDERER=cpu; the CPU renderer draws the "
                            "same images"});
    }
    return findings;
}

/// Whether a file is a font that text can be drawn with.
bool IsFont(const fs::path& file) {
    static const std::set<std::string> endings = {".ttf", ".otf", ".ttc", ".pfb", ".t1"};
    std::string ending = file.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) { return std::tolower(c); });
    return endings.contains(ending);
}

std::size_t CountFonts(const fs::path& folder) {
    std::error_code error;
    std::size_t count = 0;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::end(entry); entry.increment(error)) count += IsFont(entry->path());
    return count;
}

/// "ffmpeg 5.1.9" is new enough; a version that is no number is one that somebody built from the newest sources.
bool IsOld(const std::string& version) {
    int major = 0, minor = 0;
    const int read = std::sscanf(version.c_str(), "%d.%d", &major, &minor);
    return read == 2 && std::pair(major, minor) < std::pair(5, 1);
}

}  // namespace

std::vector<PartReport> FindModuleAndRenderer(const std::string& module) {
    const auto preference = ReadRendererPreference("");
    std::vector<PartReport> findings;
    if (!preference) findings.push_back(ProblemOf("renderer", preference.error()));
    const auto examined = ExamineModule(module, preference ? *preference : RendererPreference::kAuto);
    if (!examined) {
        findings.push_back(ProblemOf("module", examined.error()));
        return findings;
    }
    findings.insert(findings.end(), examined->begin(), examined->end());
    return findings;
}

std::vector<PartReport> FindOwnObjects() {
    const std::pair<const char*, const OwnObject*> rows[] = {
        {"images", &kImagesObject}, {"panel", &kDrawingObject}, {"preview", &kHttpObject}};
    std::vector<PartReport> findings;
    for (const auto& [subject, object] : rows) {
        const auto loaded = CheckOwnObject(*object);
        findings.push_back(
            loaded ? PartReport{subject, PartCondition::kGood, fmt::format("{} is loaded when needed", object->file)}
                   : ProblemOf(subject, loaded.error()));
    }
    return findings;
}

std::vector<PartReport> FindColorSpaces() {
    // In this process only when it has been loaded in another.
    if (const auto loaded = CheckOwnObject(kColorObject); !loaded) return {ProblemOf("colour", loaded.error())};
    const auto spaces = OpenedColorSpaces::Open();
    if (!spaces) return {ProblemOf("colour", spaces.error())};
    const char* const file = std::getenv("OCIO");
    return {{"colour", PartCondition::kGood,
             spaces->AreOwn() ? std::string("the program's own colour spaces")
                              : fmt::format("the OpenColorIO configuration '{}'", file ? file : "")}};
}

std::vector<PartReport> FindFonts() {
    std::vector<fs::path> folders = {"/usr/share/fonts", "/usr/local/share/fonts"};
    if (const char* const home = std::getenv("HOME"); home && *home) {
        folders.push_back(fs::path(home) / ".local/share/fonts");
        folders.push_back(fs::path(home) / ".fonts");
    }
    std::size_t count = 0;
    for (const fs::path& folder : folders) count += CountFonts(folder);
    if (count > 0) return {{"fonts", PartCondition::kGood, fmt::format("{} {}", count, count == 1 ? "font" : "fonts")}};
    return {{"fonts", PartCondition::kNote, "there is no font, so panels and sheets have a simple built-in one",
             "install one (Debian: apt install fonts-dejavu-core)"}};
}

std::vector<PartReport> FindClipTools() {
    std::vector<PartReport> findings;
    for (const char* const tool : {"ffmpeg", "ffprobe"}) {
        const auto version = ToolVersion(tool);
        if (!version) {
            findings.push_back(ProblemOf("clips", version.error()));
            continue;
        }
        PartReport finding{"clips", PartCondition::kGood, fmt::format("{} {}", tool, *version), ""};
        if (IsOld(*version)) {
            finding.condition = PartCondition::kNote;
            finding.advice = "install ffmpeg 5.1 or newer; clips have not been tested with this version";
        }
        findings.push_back(finding);
    }
    if (findings.front().condition == PartCondition::kProblem) return findings;
    const auto encoders = ToolEncoders();
    if (!encoders) {
        findings.push_back(ProblemOf("codecs", encoders.error()));
        return findings;
    }
    std::string here, missing;
    for (const ClipCodec& codec : ClipCodecs()) {
        std::string& list = encoders->contains(codec.encoder) ? here : missing;
        list += (list.empty() ? "" : ", ") + std::string(codec.name);
    }
    if (!here.empty()) findings.push_back({"codecs", PartCondition::kGood, here});
    if (!missing.empty()) {
        findings.push_back({"codecs", PartCondition::kNote, fmt::format("this ffmpeg was built without {}", missing),
                            "install an ffmpeg with these encoders, or choose another --codec"});
    }
    return findings;
}

std::vector<PartReport> FindOpenFxBundles(int limit) {
    std::vector<PartReport> findings;
    for (const FoundBundle& each : FindBundles(OpenFxFolders(std::getenv("OFX_PLUGIN_PATH")))) {
        const auto sentence = DiagnoseOpenFx(each.folder, std::chrono::seconds(limit));
        if (!sentence) {
            findings.push_back(ProblemOf("openfx", sentence.error()));
            continue;
        }
        std::string text = *sentence;
        if (text.ends_with('.')) text.pop_back();
        findings.push_back({"openfx", PartCondition::kGood, text});
    }
    if (findings.empty()) {
        findings.push_back({"openfx", PartCondition::kNote, "no bundle in the folders where OpenFX hosts look",
                            "only needed for OpenFX hosts: install the bundle, or add its folder to OFX_PLUGIN_PATH"});
    }
    return findings;
}

}  // namespace umbrant::host
