// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant compare`: whether two pictures are close enough, and where they are not.

#include "host/image/compare.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "host/cli/command.h"
#include "host/cli/compare/heat_map.h"
#include "host/cli/option_checks.h"
#include "host/cli/results.h"
#include "host/image/similarity.h"

namespace umbrant::host {

namespace {

struct CompareOptions {
    std::string first;
    std::string second;
    std::string warn = "1/255";
    double percent = Tolerance{}.percent;
    std::string hard = "3/255";
    std::string difference;
    std::string metric;
    std::optional<double> least;
    bool straight = false;
    bool json = false;
};

/// A channel difference: "0.004" or "1/255".
Result<double> ReadStep(const std::string& option, const std::string& text) {
    char* end = nullptr;
    double value = std::strtod(text.c_str(), &end);
    bool good = end != text.c_str();
    if (good && *end == '/') {
        const char* below = end + 1;
        const double divisor = std::strtod(below, &end);
        good = end != below && divisor > 0;
        value /= divisor;
    }
    if (good && *end == '\0' && std::isfinite(value) && value >= 0) return value;
    return Failure{ErrorKind::kUsage,
                   fmt::format("{}: '{}' is not a channel difference; write 1/255 or 0.004", option, text)};
}

std::string PixelText(const double (&channels)[4]) {
    return fmt::format("alpha {:.6g} red {:.6g} green {:.6g} blue {:.6g}", channels[0], channels[1], channels[2],
                       channels[3]);
}

/// A measure that was asked for, beside the differences.
struct Measure {
    std::string name;
    double value = 0;

    std::string Text() const {
        if (name == "psnr") return std::isinf(value) ? "PSNR infinite" : fmt::format("PSNR {:.2f} dB", value);
        return fmt::format("SSIM {:.5f}", value);
    }
};

std::string Text(const Comparison& result, const std::optional<Measure>& measure) {
    std::string text = fmt::format("{}: worst difference {:.6g} ({:.4g}/255)", result.close ? "close" : "different",
                                   result.worst, result.worst * 255.0);
    if (result.worst > 0) {
        text += fmt::format(" at ({}, {}): {} against {}", result.x, result.y, PixelText(result.first),
                            PixelText(result.second));
    }
    text += fmt::format("; {} of {} pixels differ by the warning step or more", result.counted, result.pixels);
    return text + (measure ? "; " + measure->Text() : "") + "\n";
}

std::string ComparisonJson(const Comparison& result, const std::optional<Measure>& measure) {
    nlohmann::ordered_json json = {
        {"close", result.close},
        {"worst", result.worst},
        {"x", result.x},
        {"y", result.y},
        {"first", result.first},
        {"second", result.second},
        {"counted", result.counted},
        {"pixels", result.pixels},
    };
    // JSON has no infinity; null stands for it.
    if (measure) json[measure->name] = measure->value;
    return json.dump(2) + "\n";
}

Result<ExitCode> RunCompare(const CompareOptions& options) {
    Tolerance tolerance;
    const auto warn = TRY(ReadStep("--warn", options.warn));
    const auto hard = TRY(ReadStep("--hard", options.hard));
    tolerance.warn = warn;
    tolerance.hard = hard;
    tolerance.percent = options.percent;

    const auto first = TRY(ReadPicture(options.first));
    const auto second = TRY(ReadPicture(options.second));
    auto result = Compare(first, second, tolerance, options.straight);
    if (!result) {
        PrintResult(fmt::format("different: {} x {} against {} x {} pixels\n", first.frameWidth, first.frameHeight,
                                second.frameWidth, second.frameHeight));
        return ExitCode::kEffectFailed;
    }
    std::optional<Measure> measure;
    if (!options.metric.empty()) {
        measure = {options.metric, *(options.metric == "psnr" ? Psnr(first, second) : Ssim(first, second))};
        if (options.least && measure->value < *options.least) result->close = false;
    }
    PrintResult(options.json ? ComparisonJson(*result, measure) : Text(*result, measure));
    if (!options.difference.empty()) {
        const World map = TRY(DrawHeatMap(*result));
        TRY(WritePicture(options.difference, map, {{0, 0, map.Width(), map.Height()}, map.Width(), map.Height()}));
    }
    return result->close ? ExitCode::kDone : ExitCode::kEffectFailed;
}

}  // namespace

Command CompareCommand() {
    const auto options = std::make_shared<CompareOptions>();
    Command command;
    command.name = "compare";
    command.summary = "Report the difference between two images; exit code 1 when they are not close";
    command.examples =
        "  umbrant compare actual.png expected.png\n"
        "  umbrant compare actual.png expected.png --warn 1/255 --percent 0.5 --hard 3/255 --diff diff.png\n"
        "      at most 0.5 percent of the pixels differ by 1/255 or more, and none by more than 3/255;\n"
        "      the differences are drawn as a heat map with a key\n"
        "  umbrant compare actual.png expected.png --metric ssim --least 0.98\n"
        "      images whose structural similarity is below 0.98 are not close either";
    command.options = [options](CLI::App& app) {
        app.add_option("FIRST", options->first, "The first image")->required();
        app.add_option("SECOND", options->second, "The second image")->required();
        app.add_option("--warn", options->warn,
                       "A pixel that differs by this much or more counts as different (default 1/255)")
            ->type_name("STEP");
        app.add_option("--percent", options->percent,
                       "How many pixels may count as different, in percent (default 0.5)")
            ->check([](const std::string& text) { return OutOfRange(text, 0.0, 100.0); });
        app.add_option("--hard", options->hard, "No pixel may differ by more (default 3/255)")->type_name("STEP");
        app.add_option("--diff", options->difference, "Where to write a heat map of the differences")
            ->type_name("IMAGE");
        CLI::Option* metric =
            app.add_option("--metric", options->metric,
                           "Also report the peak signal-to-noise ratio in decibels, or the structural "
                           "similarity, -1 to 1 for equal images")
                ->check(CLI::IsMember({"psnr", "ssim"}))
                ->type_name("psnr|ssim");
        app.add_option("--least", options->least, "With --metric: below this value the images are not close")
            ->check([](const std::string& text) { return OutOfRange(text, -1.0, 1000.0); })
            ->type_name("VALUE")
            ->needs(metric);
        app.add_flag("--straight", options->straight, "Compare colours as stored instead of premultiplied by alpha");
        app.add_flag("--json", options->json, "Print JSON");
    };
    command.run = [options] { return RunCompare(*options); };
    return command;
}

}  // namespace umbrant::host
