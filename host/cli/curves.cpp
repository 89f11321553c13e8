// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant curves`: the keyframes of a preset, as a picture or as numbers.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "host/animation/curves_picture.h"
#include "host/animation/value_json.h"
#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/output_folder.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/render/sequence_report.h"
#include "host/cli/results.h"
#include "host/cli/settings.h"
#include "host/image/picture.h"
#include "host/render/plan/frame_numbers.h"
#include "host/render/plan/output_check.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr char kCurvesExamples[] =
    "  umbrant curves --preset moving.json -o curves.png\n"
    "      a plot for each parameter with keyframes, from the first key to the last\n"
    "  umbrant curves --preset moving.json --frames 1-48 --rate 25 -o curves.png\n"
    "      over the frames of a shot\n"
    "  umbrant curves --preset moving.json --frames 1-48 --json | jq '.rows[\"style/angle\"]'\n"
    "      the values of each frame";

struct CurvesCommandOptions {
    std::string preset;
    std::vector<std::string> settings;
    std::string frames;
    std::string rate = "24";
    int zeroFrame = 0;
    std::string output;
    int width = 960;
    bool json = false;
    std::string module;
};

/// Frames that are shown: those that were asked for, or from the first key to the last, whole numbers around them.
Result<std::vector<FrameNumber>> ShownFrames(const std::string& asked, const Animation& animation,
                                             const AnimationClock& clock) {
    if (!asked.empty()) return ParseFrames(asked);
    double first = std::numeric_limits<double>::infinity();
    double last = -first;
    for (const RowTrack& track : animation.Tracks()) {
        first = std::min(first, track.track.FrameOf(track.track.keys.front(), clock));
        last = std::max(last, track.track.FrameOf(track.track.keys.back(), clock));
    }
    if (last - first > 2 * kFarthestFrame) {
        return Failure{ErrorKind::kUsage, "the keys are too far apart to be shown at this rate; use --frames"};
    }
    std::vector<FrameNumber> frames;
    for (double frame = std::floor(first); frame <= std::ceil(last); ++frame)
        frames.emplace_back(static_cast<int>(frame));
    return frames;
}

std::string Report(const AnimatedParams& params, const std::vector<FrameNumber>& frames, const AnimationClock& clock) {
    Json rows = Json::object();
    Json numbers = Json::array();
    for (const FrameNumber& frame : frames) {
        numbers.push_back(NumberJson(frame));
        const ParamSet values = params.animation.ValuesAt(params.values, frame.Value(), clock);
        for (const RowTrack& track : params.animation.Tracks()) {
            const ParamRow& row = params.values.Row(track.row);
            rows[row.path.empty() ? fmt::format("#{}", row.index) : row.path].push_back(
                ValueJson(row, values.ValueText(track.row)));
        }
    }
    const Json report{{"framesPerSecond", clock.framesPerSecond}, {"frames", numbers}, {"rows", rows}};
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Result<Done> WriteCurves(const CurvesCommandOptions& options, const AnimatedParams& params,
                         const std::vector<FrameNumber>& frames, const AnimationClock& clock) {
    CurvesOptions drawing;
    const auto [first, last] = std::minmax_element(frames.begin(), frames.end());
    drawing.firstFrame = first->Value();
    // A single frame has a plot too.
    drawing.lastFrame = std::max(last->Value(), first->Value() + 1);
    drawing.width = options.width;
    const auto pixels = TRY(DrawCurves(params.values, params.animation, clock, drawing));
    const Placement place{{0, 0, pixels.Width(), pixels.Height()}, pixels.Width(), pixels.Height()};
    if (auto written = WritePicture(options.output, pixels, place); !written) return written;
    if (!options.json) PrintResult(options.output + "\n");
    return Done{};
}

Result<ExitCode> Curves(const CurvesCommandOptions& options) {
    if (options.output.empty() && !options.json) {
        return Failure{ErrorKind::kUsage, "nothing to do; use -o FILE or --json"};
    }
    if (!options.output.empty()) {
        TRY(CheckWritable(options.output));
        if (!options.preset.empty()) {
            TRY(CheckApart(options.preset, options.output));
        }
        CleanFolderOf(options.output);
    }
    const auto rate = TRY(ParseRate(options.rate));
    const AnimationClock clock{rate.PerSecond(), static_cast<double>(options.zeroFrame)};
    auto opened = TRY(OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module)));
    AnimatedParams params{opened.Session().Params(), {}};
    TRY(ApplyValues(options.preset, options.settings, params));
    if (params.animation.IsEmpty()) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("there are no curves to draw: '{}' has no keyframes", options.preset)};
    }
    const auto frames = TRY(ShownFrames(options.frames, params.animation, clock));
    if (!options.output.empty()) {
        TRY(WriteCurves(options, params, frames, clock));
    }
    if (options.json) PrintResult(Report(params, frames, clock));
    return ExitCode::kDone;
}

}  // namespace

Command CurvesCommand() {
    const auto options = std::make_shared<CurvesCommandOptions>();
    Command command;
    command.name = "curves";
    command.summary = "Draw the keyframes of a preset as curves";
    command.examples = kCurvesExamples;
    command.options = [options](CLI::App& app) {
        app.add_option("--preset", options->preset, "The preset with the keyframes")
            ->required()
            ->type_name("NAME|FILE.json");
        app.add_option("--set", options->settings, "A parameter's constant value, which replaces its keyframes")
            ->type_name("PATH=VALUE")
            ->allow_extra_args(false);
        app.add_option("-o,--output", options->output, "The image to write: " + WritableFormats());
        app.add_option("--frames", options->frames, "Which frames (default: from the first key to the last)")
            ->type_name("FRAMES");
        app.add_option("--rate", options->rate, "Frames per second, such as 24, 29.97 or 30000/1001")
            ->capture_default_str()
            ->type_name("RATE");
        app.add_option("--zero-frame", options->zeroFrame, "The frame at time 0")
            ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
            ->capture_default_str()
            ->type_name("FRAME");
        app.add_option("--width", options->width, "Width of the image in pixels")
            ->check(CLI::Range(320, 8000))
            ->capture_default_str()
            ->type_name("N");
        app.add_flag("--json", options->json, "Print JSON: the value of each row at each frame");
        app.add_option("--module", options->module,
                       "The effect's module (default: UMBRANT_MODULE, else the program's own module)")
            ->type_name("FILE");
    };
    command.run = [options]() -> Result<ExitCode> {
        options->preset = TRY(PresetFile(options->preset));
        return Curves(*options);
    };
    return command;
}

}  // namespace umbrant::host
