// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant validate`: checks any module of the effect interface.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/option_checks.h"
#include "host/cli/results.h"
#include "host/module/module.h"
#include "host/session/renderer.h"
#include "host/validate/runner/runner.h"

namespace umbrant::host {

namespace {

constexpr int kHighestLevel = 10;

constexpr char kValidateExamples[] =
    "  umbrant validate build/release/umbrant2.so\n"
    "      levels 1 to 5, as after every build\n"
    "  umbrant validate build/release/umbrant2.so --strictness 10 --waive accepted.json\n"
    "      all levels; the findings in the file are accepted\n"
    "  umbrant validate effect.so --strictness 7 --include '^7'\n"
    "      only the fault checks\n"
    "  umbrant validate effect.so --include '^4\\.1 ' --trace calls.json\n"
    "      one check, with all its calls for a trace viewer\n"
    "  umbrant validate --list";

struct ValidateOptions {
    RunnerOptions run;
    std::string module;
    std::string trace;
    std::string fault;
    std::string runCheck;
    int resultDescriptor = -1;
    bool list = false;
};

void ListChecks() {
    for (const Check& check : AllChecks()) PrintResult(fmt::format("{:<5} {}\n", check.id, check.title));
}

/// Prints at once, so that a long run is seen to go on.
void Print(const std::string& text) {
    PrintResult(text);
    FlushResults();
}

/// The library that intercepts driver calls is in the program's folder, or where modules are installed.
std::filesystem::path FindShim(const ModuleSearch& search) {
    for (const auto& folder : search.folders) {
        std::error_code error;
        if (std::filesystem::is_regular_file(folder / "umbrant_shim.so", error)) return folder / "umbrant_shim.so";
    }
    return {};
}

/// The waivers in the module's folder: "effect.waivers.json" for "effect.so". Empty if there are none.
std::string WaiversBeside(const std::filesystem::path& module) {
    std::filesystem::path file = module;
    file.replace_extension(".waivers.json");
    std::error_code error;
    return std::filesystem::is_regular_file(file, error) ? file.string() : std::string();
}

Result<ExitCode> Validate(ValidateOptions options) {
    if (options.list) {
        ListChecks();
        return ExitCode::kDone;
    }
    const auto search = DefaultModuleSearch(
        options.module.empty() ? std::nullopt : std::optional(std::filesystem::path(options.module)));
    const auto file = TRY(FindModule(search));
    CheckRunOptions& check = options.run.check;
    check.module = file;
    check.trace = options.trace;
    check.shim = FindShim(search);
    check.rendererOfProbe = RendererOfSetUp(RendererPreference::kAuto);
    check.isProcessorBetter = [](const ParamSet& params) {
        return DecideRenderer(RendererPreference::kAuto, ReadGpuStrings(params)).processor;
    };
    if (!options.fault.empty()) {
        check.fault = FaultPlan::FromText(options.fault);
        if (!check.fault) {
            return Failure{ErrorKind::kUsage, fmt::format("--fault '{}' is not CALLEE:K:ERROR, as in "
                                                          "'PF World Suite.PF_NewWorld:1:4'",
                                                          options.fault)};
        }
    }
    if (!options.runCheck.empty()) {
        TRY(RunOneCheck(options.runCheck, check, options.resultDescriptor));
        return ExitCode::kDone;
    }
    TRY(CheckModuleIsThere(check.module));
    if (options.run.waivers.empty()) {
        options.run.waivers = WaiversBeside(check.module);
        if (!options.run.waivers.empty()) {
            std::fputs(fmt::format("findings in '{}' are accepted\n", options.run.waivers).c_str(), stderr);
        }
    }
    const auto outcomes = TRY(RunChecks(options.run, Print));
    if (outcomes.front().result.isNoModule) return ExitCode::kModule;
    return TotalsOf(outcomes).failed > 0 ? ExitCode::kEffectFailed : ExitCode::kDone;
}

}  // namespace

Command ValidateCommand() {
    const auto options = std::make_shared<ValidateOptions>();
    Command command;
    command.name = "validate";
    command.summary = "Check everything that hosts rely on in a module, in ten levels";
    command.examples = kValidateExamples;
    command.options = [options](CLI::App& app) {
        RunnerOptions& run = options->run;
        app.add_option("MODULE", options->module, "The module's file; without it, the one that `render` would use");
        app.add_option("--strictness", run.strictness,
                       "Run the checks of levels 1 to N (default 5; a release needs 10)")
            ->type_name("N")
            ->check([](const std::string& text) { return OutOfRange(text, 1, kHighestLevel); });
        app.add_option("--seed", run.check.seed, "Seed of random choices (default 1)")->type_name("S");
        app.add_option("--repeat", run.repeat, "Run each check K times, with seeds S, S+1, ...")
            ->type_name("K")
            ->check([](const std::string& text) { return OutOfRange(text, 1, 1000); });
        app.add_option("--include", run.include, "Only checks whose \"ID title\" matches the regular expression")
            ->type_name("RE");
        app.add_option("--exclude", run.exclude, "Not the checks that match this one")->type_name("RE");
        app.add_option(
               "--waive", run.waivers,
               "A file of accepted findings, each with its reason (default: the .waivers.json file next to MODULE, if "
               "there is one)")
            ->type_name("FILE");
        app.add_option("--timeout-ms", run.check.timeoutMilliseconds,
                       "Timeout of a check, or of a part of a long one (default 30000)")
            ->type_name("N")
            ->check([](const std::string& text) { return OutOfRange(text, 1, 86400000); });
        app.add_flag("--in-process", run.check.inProcess, "Run the checks in this process, for a debugger");
        app.add_option("--trace", options->trace, "Write every call in the Chrome trace format")->type_name("FILE");
        app.add_option("--fault", options->fault, "Inject only this fault: the K-th call fails")
            ->type_name("CALLEE:K:ERROR");
        app.add_option("--soak-seconds", run.check.soakSeconds, "Duration of check 10.5 (default 60)")
            ->type_name("N")
            ->check([](const std::string& text) { return OutOfRange(text, 1, 86400); });
        app.add_option("--report", run.report, "The report's form: text, json or junit")
            ->type_name("FORM")
            ->check(CLI::IsMember({"text", "json", "junit"}));
        app.add_flag("--list", options->list, "List the checks and exit");
        // How the program starts itself for one check.
        app.add_option("--run-check", options->runCheck)->group("");
        app.add_option("--result-fd", options->resultDescriptor)->group("");
        app.add_flag("--software-gl", run.check.softwareGl)->group("");
    };
    command.run = [options] { return Validate(*options); };
    return command;
}

}  // namespace umbrant::host
