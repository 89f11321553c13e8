// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render`: its options and its help.

#include <CLI/CLI.hpp>
#include <string>

#include "host/cli/color/render_colors.h"
#include "host/cli/command.h"
#include "host/cli/option_checks.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/recipe/like.h"
#include "host/cli/render/render_options.h"
#include "host/cli/watch/render_watch.h"
#include "host/image/picture.h"
#include "host/render/background.h"
#include "host/render/canvas_choice.h"
#include "host/render/plan/frame_limits.h"

namespace umbrant::host {

namespace {

constexpr char kRenderExamples[] =
    "  umbrant render title.png -o shadow.png\n"
    "      the default shadow; the image grows to contain it\n"
    "  umbrant render title.png -o shadow.png --canvas layer --set style/angle=90 --set style/softness=40\n"
    "      the image keeps its size\n"
    "  umbrant render title.png -o shadow.png --set style/color=#203060 --set easing/mode=ease-in-out\n"
    "      colours as #rrggbb, popup items by name or number; `umbrant params` lists all parameters\n"
    "  umbrant render card.exr -o shadow.exr --texture paper.png --set texture/blend-mode=normal\n"
    "      32-bit float, the shadow textured with another image\n"
    "  umbrant render title.png -o shadow.png --preset long.json --set style/angle=45\n"
    "      the values of a preset, one of them changed\n"
    "  umbrant render title.png -o shadow.png --json | jq .milliseconds\n"
    "      the time of each stage\n"
    "  umbrant render shot.####.exr -o out/shot.####.exr --frames 1-240x2 --missing hold\n"
    "      every second frame of a sequence; the previous frame replaces a missing one\n"
    "  umbrant render title.png -o out/title.%04d.png --preset moving.json --frames 1-48 --threads 2\n"
    "      48 frames of one image, with keyframes from a preset\n"
    "  umbrant render clip.mov -o out.mov; umbrant render title.png -o title.webm --preset moving.json --frames 1-48\n"
    "      clips through ffmpeg: ProRes 4444 in .mov, FFV1 in .mkv, VP9 in .webm, all with alpha; sound is kept\n"
    "  umbrant render clip.mov -o review.mp4 --background white\n"
    "      H.264 for a review; .webp and .apng are animations for web pages\n"
    "  umbrant render title.png -o comp.exr --input-space sRGB --working-space ACEScg --output-space ACEScg\n"
    "      drawn and stored as scene-linear ACEScg\n"
    "  umbrant render --like shadow.png other.png -o other_shadow.png --set style/angle=45\n"
    "      the values, the texture and the canvas that shadow.png was drawn with, one value changed\n"
    "  umbrant render title.png -o draft.png --downsample 4\n"
    "      a quarter of the resolution; points are still given in pixels of the full-size layer\n"
    "  umbrant render title.png -o look.png --background checker --canvas tight\n"
    "      opaque, over a checkerboard, and cut to what is visible";

/// The image, where the result goes, and which part of a file is meant.
void AddFileOptions(CLI::App& app, RenderOptions& options) {
    app.add_option(
           "INPUT", options.input,
           "The layer: PNG, TIFF, JPEG, EXR, ...; a sequence such as shot.####.exr, shot.%04d.exr, shot.@@.exr, "
           "shot.$F4.exr, ...; or a clip: .mov, .mp4, .mkv, ...; - for standard input")
        ->required();
    app.add_option("-o,--output", options.output,
                   "The image to write: " + WritableFormats() +
                       ". PNG and TIFF have straight alpha, EXR premultiplied; JPEG is composited over white. Or a "
                       "clip: .mov, "
                       ".mkv, .webm, .webp or .apng, with alpha, or .mp4 over a --background. - is standard output, in "
                       "the format of --format")
        ->required();
    app.add_option("--format", options.format, "The format of standard output, '-o -'")
        ->check(CLI::IsMember({"png", "tif", "exr", "jpg"}))
        ->type_name("png|tif|exr|jpg");
    app.add_option("--layer", options.read.layer,
                   "The layer of INPUT to draw: diffuse for the channels diffuse.R, diffuse.G, ..., or a "
                   "channel")
        ->type_name("NAME");
    app.add_option("--part", options.read.part, "The part of INPUT to draw: its number from 0, or its name")
        ->type_name("N|NAME");
}

/// Depth, resolution and canvas.
void AddPixelOptions(CLI::App& app, RenderOptions& options) {
    app.add_option("--depth", options.depth,
                   "Bits per channel of the render (default: those of the input; 16 become 32)")
        ->check(ValidateDepth)
        ->type_name("8|32");
    app.add_option("--output-depth", options.outputDepth,
                   "How the file stores a channel: 8 or 16 in PNG, also float in TIFF, half or float in EXR "
                   "(default: suits the depth of the render)")
        ->check(CLI::IsMember({"8", "16", "half", "float"}))
        ->type_name("8|16|half|float");
    app.add_option("--downsample", options.downsample, "Draw at 1/N of the resolution")
        ->check(CLI::Range(1, kMostDownsample))
        ->type_name("N");
    app.add_option("--canvas", options.canvas,
                   "grow: the layer and its shadow, in a sequence those of all frames (default); frame: in a "
                   "sequence each frame's own; layer: the layer's rectangle (default of a clip); tight: what is not "
                   "transparent, in a sequence in any frame; or a rectangle in pixels of the full-size layer, right "
                   "and bottom exclusive")
        ->check([](const std::string& text) {
            const auto choice = ParseCanvas(text);
            return choice ? std::string() : choice.error().sentence;
        })
        ->type_name("grow|frame|layer|tight|LEFT,TOP,RIGHT,BOTTOM");
    app.add_option("--background", options.background,
                   "Makes the result opaque: a colour (#rrggbb, #rgb or a CSS name) behind it, an image that is scaled "
                   "to cover it, or a checkerboard")
        ->check(WhyNoBackground)
        ->type_name("COLOUR|IMAGE|checker");
}

/// The conversion of colours.
void AddColorOptions(CLI::App& app, RenderOptions& options) {
    const auto add = [&app](const char* name, std::string& value, const char* help) {
        app.add_option(name, value, help)
            ->check([](const std::string& text) { return text.empty() ? "'' names no colour space" : ""; })
            ->type_name("SPACE");
    };
    add("--input-space", options.color.input,
        "The colour space of INPUT, which is then converted: sRGB, 'Linear Rec.709', 'Gamma 2.4 Rec.709', ACEScg, or "
        "one of the OpenColorIO configuration that the variable OCIO names (default: numbers stay as they are)");
    add("--output-space", options.color.output,
        "The colour space of the output and of the effect's colours (default: that of INPUT)");
    add("--working-space", options.color.working,
        "The colour space that the effect draws in, as 32-bit floats (default: that of INPUT)");
    add("--texture-space", options.color.texture, "The colour space of the texture (default: that of INPUT)");
}

/// How the frame is drawn and stored, and by which module.
void AddRunOptions(CLI::App& app, RenderOptions& options) {
    app.add_flag("--watch", options.watch,
                 "Draw again whenever the input, the texture or the preset changes, until Ctrl-C");
    app.add_flag("--dry-run", options.dryRun,
                 "Write nothing: draw up to three frames and report the size of the files, the memory and the time of "
                 "all");
    app.add_flag("--mkdir", options.makesFolder, "Create the folder of the output if it does not exist");
    app.add_flag(
        "--collapsed", options.collapsed,
        "Present the layer with its \"Collapse Transformations\" switch on; radial shadows then stay in its frame");
    app.add_option("--time", options.seconds, "The time of the frame")
        ->check([](const std::string& text) { return OutOfRange(text, 0.0, kLongestTime); })
        ->type_name("SECONDS");
    app.add_option("--compression", options.compression,
                   "Compression of the image: fast or small in PNG, zip, piz, dwaa, ... in EXR, lzw, ... in TIFF, "
                   "jpeg:1 to "
                   "jpeg:100; "
                   "by default as the input where it has the same format")
        ->type_name("NAME");
    app.add_option("--renderer", options.renderer,
                   "gl: the GPU renderer (OpenGL); cpu: the CPU renderer; auto: the GPU renderer where OpenGL is "
                   "hardware, else the CPU renderer (default: UMBRANT_RENDERER, else auto)")
        ->check(CLI::IsMember({"auto", "gl", "cpu"}))
        ->type_name("auto|gl|cpu");
    app.add_option("--module", options.module,
                   "The effect's module (default: UMBRANT_MODULE, else the program's own module)")
        ->type_name("FILE");
}

}  // namespace

void AddValueOptions(CLI::App& app, RenderOptions& options) {
    app.add_option("--preset", options.preset,
                   "Values from a preset, as written by `umbrant params --json --values`; --set overrides them")
        ->type_name("NAME|FILE.json");
    app.add_option("--set", options.settings, "A parameter's value; may be given many times")
        ->type_name("PATH=VALUE")
        ->allow_extra_args(false);
    app.add_option("--texture", options.texture, "An image for the effect's layer parameters, at the layer's origin")
        ->check([](const std::string& file) {
            return file.empty() ? "'' names no file; leave the option out to draw without a texture" : "";
        })
        ->type_name("IMAGE");
    app.add_option("--texture-at", options.textureAt,
                   "Position of the texture's top-left corner, in pixels of the full-size layer")
        ->check(ValidatePoint)
        ->needs("--texture")
        ->type_name("X,Y");
}

Command RenderCommand() {
    return RenderCommand(std::make_shared<RenderOptions>());
}

Command RenderCommand(const std::shared_ptr<RenderOptions>& options) {
    Command command;
    command.name = "render";
    command.summary = "Render an image, a sequence or a clip with the effect; prints the path of each file written";
    command.examples = kRenderExamples;
    command.options = [options](CLI::App& app) {
        AddFileOptions(app, *options);
        AddValueOptions(app, *options);
        AddPixelOptions(app, *options);
        AddColorOptions(app, *options);
        AddRunOptions(app, *options);
        AddRecipeOptions(app, options);
        AddSequenceOptions(app, options->sequence);
        app.add_flag("--json", options->json,
                     "Print a report instead of the path: rectangles, milliseconds by stage, driver, suites");
        app.add_flag("--verbose", options->verbose, "Log each command with its time, the rectangles and the suites");
    };
    command.run = [options]() -> Result<ExitCode> {
        options->preset = TRY(PresetFile(options->preset));
        return options->watch ? WatchRender(*options) : Render(*options);
    };
    return command;
}

}  // namespace umbrant::host
