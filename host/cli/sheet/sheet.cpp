// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant sheet`: the effect with many values, side by side in one picture.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

#include "host/cli/command.h"
#include "host/cli/option_checks.h"
#include "host/cli/results.h"
#include "host/cli/sheet/make_sheet.h"
#include "host/render/canvas_choice.h"
#include "host/render/plan/frame_limits.h"

namespace umbrant::host {

namespace {

constexpr char kSheetExamples[] =
    "  umbrant sheet title.png -o sheet.png --vary style/angle=0,45,90 --vary style/softness=20,80\n"
    "      three rows of angles, two columns of softness\n"
    "  umbrant sheet title.png -o sheet.png --vary preset=soft-drop,neon --set style/distance=60\n"
    "      two presets, one value changed\n"
    "  umbrant sheet title.png -o sheet.png --vary 'style/origin=0,0;100,50' --vary style/shadow-type=radial\n"
    "      semicolons between values that have commas\n"
    "  umbrant sheet shot.####.exr -o sheet.png --frames 1-100x20 --background checker\n"
    "      some frames of a sequence";

struct SheetOptions {
    RenderOptions render;
    std::vector<std::string> varies;
    int cell = 320;
};

void AddSheetOptions(CLI::App& app, SheetOptions& options) {
    app.add_option("INPUT", options.render.input, "The layer: an image, a sequence such as shot.####.exr, or a clip")
        ->required();
    app.add_option("-o,--output", options.render.output, "The image to write: " + WritableFormats())->required();
    app.add_option("--vary", options.varies,
                   "A parameter and its values, or preset and names of presets; may be given many times: the first "
                   "makes the rows, the second the columns, others blocks. Values that have commas are separated by "
                   "semicolons")
        ->type_name("PATH=VALUE,...")
        ->allow_extra_args(false);
    app.add_option("--cell", options.cell, "The longest side of an image on the sheet, in pixels")
        ->check(CLI::Range(kSmallestCell, kLargestCell))
        ->capture_default_str()
        ->type_name("N");
    app.add_flag("--mkdir", options.render.makesFolder, "Create the folder of the output if it does not exist");
}

/// What is drawn, and how: as of `umbrant render`.
void AddDrawingOptions(CLI::App& app, RenderOptions& options) {
    app.add_option(
           "--canvas", options.canvas,
           "What each image covers, the same for all: grow, layer, tight or a rectangle, as of `umbrant render` "
           "(default: tight around all images, with a small margin)")
        ->check([](const std::string& text) {
            const auto choice = ParseCanvas(text);
            return choice ? std::string() : choice.error().sentence;
        })
        ->type_name("grow|layer|tight|LEFT,TOP,RIGHT,BOTTOM");
    app.add_option("--background", options.background,
                   "What is behind the images: a colour, an image, or a checkerboard (default: a grey)")
        ->check(WhyNoBackground)
        ->type_name("COLOUR|IMAGE|checker");
    app.add_option("--layer", options.read.layer, "The layer of INPUT to draw")->type_name("NAME");
    app.add_option("--part", options.read.part, "The part of INPUT to draw: its number from 0, or its name")
        ->type_name("N|NAME");
    app.add_option("--depth", options.depth, "Bits per channel of the render (default: those of the input)")
        ->check(ValidateDepth)
        ->type_name("8|32");
    app.add_option("--downsample", options.downsample, "Draw at 1/N of the resolution")
        ->check(CLI::Range(1, kMostDownsample))
        ->type_name("N");
    app.add_flag("--collapsed", options.collapsed, "Present the layer with its \"Collapse Transformations\" switch on");
    app.add_option("--time", options.seconds, "The time of a single image")
        ->check([](const std::string& text) { return OutOfRange(text, 0.0, kLongestTime); })
        ->type_name("SECONDS");
    app.add_option("--renderer", options.renderer, "gl, cpu or auto, as of `umbrant render`")
        ->check(CLI::IsMember({"auto", "gl", "cpu"}))
        ->type_name("auto|gl|cpu");
    app.add_option("--module", options.module,
                   "The effect's module (default: UMBRANT_MODULE, else the program's own module)")
        ->type_name("FILE");
}

Result<ExitCode> Sheet(const SheetOptions& options) {
    SheetRequest request;
    request.axes = TRY(ParseVaries(options.varies));
    request.job.render = options.render;
    request.job.cell = options.cell;
    request.common = {options.render.preset, options.render.settings};
    request.title = options.render.input == "-" ? "Standard input"
                                                : std::filesystem::path(options.render.input).filename().string();
    TRY(MakeSheet(std::move(request)));
    PrintResult(options.render.output + "\n");
    return ExitCode::kDone;
}

}  // namespace

Command SheetCommand() {
    const auto options = std::make_shared<SheetOptions>();
    Command command;
    command.name = "sheet";
    command.summary = "Draw a contact sheet: the effect with many values, or many frames, in one picture";
    command.examples = kSheetExamples;
    command.options = [options](CLI::App& app) {
        AddSheetOptions(app, *options);
        AddValueOptions(app, options->render);
        AddDrawingOptions(app, options->render);
        AddFrameOptions(app, options->render.sequence);
    };
    command.run = [options] { return Sheet(*options); };
    return command;
}

}  // namespace umbrant::host
