// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant doctor`: whether each part of the program works here, and why a plug-in does not show up in its host.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/command.h"
#include "host/cli/doctor/part_report.h"
#include "host/cli/option_checks.h"
#include "host/cli/results.h"
#include "host/doctor/openfx/bundle.h"
#include "host/doctor/openfx/openfx_doctor.h"

namespace umbrant::host {

namespace {

constexpr char kDoctorExamples[] =
    "  umbrant doctor\n"
    "      whether each part of the program works on this machine, with what to do where it does not\n"
    "  umbrant doctor > report.txt\n"
    "      a report to attach to a question; your home folder is written as ~\n"
    "  umbrant doctor openfx /usr/OFX/Plugins/Umbrant.ofx.bundle\n"
    "      one sentence about this bundle\n"
    "  umbrant doctor openfx\n"
    "      about every bundle in the folders of OFX_PLUGIN_PATH and in /usr/OFX/Plugins";

struct DoctorOptions {
    std::string subject;
    std::string bundle;
    std::string module;
    bool json = false;
    int limit = 120;  // seconds
};

std::string Quoted(const std::vector<std::filesystem::path>& folders) {
    std::string text;
    for (const auto& folder : folders) text += fmt::format("{}'{}'", text.empty() ? "" : " and ", folder.string());
    return text;
}

/// All bundles that hosts find. A failed one is a line of the results; the exit code is that of the first.
Result<ExitCode> DiagnoseFound(std::chrono::seconds limit) {
    const auto folders = OpenFxFolders(std::getenv("OFX_PLUGIN_PATH"));
    const auto found = FindBundles(folders);
    if (found.empty()) {
        return Failure{ErrorKind::kFile,
                       fmt::format("there is no NAME.ofx.bundle in {}; copy the bundle there, or add its "
                                   "folder to OFX_PLUGIN_PATH",
                                   Quoted(folders))};
    }
    std::optional<ErrorKind> first;
    for (const FoundBundle& each : found) {
        const auto sentence = DiagnoseOpenFx(each.folder, limit);
        PrintResult((sentence ? *sentence : sentence.error().sentence) + "\n");
        if (each.depth > 0) {
            PrintResult(
                fmt::format("'{}' is {} {} below the folder that hosts look in; some hosts look no deeper than that "
                            "folder, so move it up.\n",
                            each.folder.string(), each.depth, each.depth == 1 ? "folder" : "folders"));
        }
        FlushResults();
        if (!sentence && !first) first = sentence.error().kind;
    }
    return first ? ExitCodeOf(*first) : ExitCode::kDone;
}

/// Everything about the program on this machine. The exit code is that of the first problem.
ExitCode ReportAll(const DoctorOptions& options) {
    std::vector<PartReport> findings;
    const auto add = [&findings](std::vector<PartReport> more) {
        std::move(more.begin(), more.end(), std::back_inserter(findings));
    };
    add(FindProgram());
    add(FindMemoryAndDisk());
    add(FindModuleAndRenderer(options.module));
    add(FindOwnObjects());
    add(FindColorSpaces());
    add(FindFonts());
    add(FindPresets());
    add(FindClipTools());
    add(FindOpenFxBundles(options.limit));
    PrintResult(options.json ? ReportJson(findings, RelevantEnvironment())
                             : ReportText(findings, RelevantEnvironment()));
    const auto problem = std::find_if(findings.begin(), findings.end(), [](const PartReport& finding) {
        return finding.condition == PartCondition::kProblem;
    });
    return problem == findings.end() ? ExitCode::kDone : ExitCodeOf(problem->kind);
}

Result<ExitCode> Doctor(const DoctorOptions& options) {
    if (options.subject.empty()) return ReportAll(options);
    const std::chrono::seconds limit(options.limit);
    if (options.bundle.empty()) return DiagnoseFound(limit);
    PrintResult(TRY(DiagnoseOpenFx(options.bundle, limit)) + "\n");
    return ExitCode::kDone;
}

}  // namespace

Command DoctorCommand() {
    const auto options = std::make_shared<DoctorOptions>();
    Command command;
    command.name = "doctor";
    command.summary =
        "Report whether each part of the program works here, or why an OpenFX plug-in does not work in its host";
    command.examples = kDoctorExamples;
    command.options = [options](CLI::App& app) {
        CLI::Option* subject =
            app.add_option("SUBJECT", options->subject,
                           "openfx: load a bundle, describe it and draw a frame, as a host does; without it, a report")
                ->check(CLI::IsMember({kOpenFxSubject}));
        app.add_option("BUNDLE", options->bundle, "The folder NAME.ofx.bundle; without it, all that hosts find");
        app.add_option("--module", options->module, "For the report: the effect's module")
            ->type_name("FILE")
            ->excludes(subject);
        app.add_flag("--json", options->json, "Print the report as JSON")->excludes(subject);
        app.add_option("--timeout", options->limit,
                       "Longest time that one step of the plug-in may take, in seconds (default 120)")
            ->type_name("N")
            ->check([](const std::string& text) { return OutOfRange(text, 1, 86400); });
    };
    command.run = [options] { return Doctor(*options); };
    return command;
}

}  // namespace umbrant::host
