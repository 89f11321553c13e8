// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render`: one picture in, one picture out; sequences are in render_sequence.cpp.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/output_folder.h"
#include "host/cli/progress.h"
#include "host/cli/render_options.h"
#include "host/cli/render_report.h"
#include "host/cli/results.h"
#include "host/image/picture.h"
#include "host/render/frame_pixels.h"
#include "host/render/frame_plan.h"
#include "host/render/sequence_canvas.h"
#include "host/session/renderer.h"

namespace {

/// Time runs in steps of 1/24 second, told in thousandths of them so that any --time is met closely.
constexpr A_u_long kTimeScale = 24000;
constexpr A_long kTimeStep = 1000;
constexpr double kLongestTime = 24.0 * 60 * 60;

constexpr char kExamples[] =
    "  umbrant render title.png -o shadow.png\n"
    "      the default shadow; the picture grows to hold it\n"
    "  umbrant render title.png -o shadow.png --canvas layer --set style/angle=90 --set style/softness=40\n"
    "      the picture keeps its size\n"
    "  umbrant render title.png -o shadow.png --set style/color=#203060 --set easing/mode=ease-in-out\n"
    "      colours as #rrggbb, popup items by name or number; `umbrant params` lists them all\n"
    "  umbrant render card.exr -o shadow.exr --texture paper.png --set texture/blend-mode=normal\n"
    "      32-bit float, the shadow coloured by another picture\n"
    "  umbrant render title.png -o shadow.png --preset long.json --set style/angle=45\n"
    "      the values that `umbrant params --json --values` wrote, one of them changed\n"
    "  umbrant render title.png -o shadow.png --json | jq .milliseconds\n"
    "      where the time went\n"
    "  umbrant render shot.####.exr -o out/shot.####.exr --frames 1-240x2 --missing hold\n"
    "      every second frame of a sequence; where a file is missing, the one before it\n"
    "  umbrant render title.png -o out/title.%04d.png --preset moving.json --frames 1-48 --threads 2\n"
    "      48 frames of one picture with a preset that has keyframes\n"
    "  umbrant render clip.mov -o out.mov; umbrant render title.png -o title.webm --preset moving.json --frames 1-48\n"
    "      clips through ffmpeg: ProRes 4444 in .mov, FFV1 in .mkv, VP9 in .webm, all with alpha; sound is kept\n"
    "  umbrant render title.png -o draft.png --downsample 4\n"
    "      a quarter of the resolution; points are still given in pixels of the whole picture";

struct Layers {
    World layer;
    World texture;  ///< null for none
    int width = 0;  ///< the layer's full size
    int height = 0;
    PF_Point frameOrigin{};
    WriteOptions kept;  ///< of the layer's file, for the picture's
};

Result<Layers> ReadLayers(const RenderOptions& options) {
    const auto input = ReadPicture(options.input, options.read);
    if (!input) return input.Error();
    TellNotes(options, input->note, input->metadataNote);
    const Depth depth = options.depth == 0 ? input->pixels.PixelDepth() : options.depth == 32 ? Depth::k32 : Depth::k8;
    Layers layers;
    layers.width = input->frameWidth;
    layers.height = input->frameHeight;
    auto layer = LayerOf(*input, depth, options.downsample);
    if (!layer) return layer.Error();
    layers.layer = std::move(*layer);
    // A smaller picture has pixels of another size, so the frame's place in the file means nothing to it.
    if (options.downsample == 1) layers.frameOrigin = input->frameOrigin;
    layers.kept = {options.compression, input->isHalf && options.depth == 0, input->metadata,
                   FileDepthNamed(options.outputDepth), options.format};
    if (options.texture.empty()) return layers;

    const auto picture = ReadPicture(options.texture);
    if (!picture) return picture.Error();
    TellNotes(options, picture->note, "");
    auto texture = LayerOf(*picture, depth, options.downsample);
    if (!texture) return texture.Error();
    layers.texture = std::move(*texture);
    return layers;
}

FrameRequest RequestOf(const RenderOptions& options, const Layers& layers) {
    FrameRequest request;
    request.layer = &layers.layer;
    request.layerWidth = layers.width;
    request.layerHeight = layers.height;
    request.downsampleX = request.downsampleY = {1, static_cast<A_u_long>(options.downsample)};
    request.texture = layers.texture.IsNull() ? nullptr : &layers.texture;
    const auto [x, y] = PlaceOf(options.textureAt).value_or(std::pair(0.0, 0.0));
    request.textureOrigin.x = static_cast<A_long>(std::lround(x / options.downsample));
    request.textureOrigin.y = static_cast<A_long>(std::lround(y / options.downsample));
    request.canvas = options.canvas == "layer" ? Canvas::kLayer : Canvas::kGrow;  // a rectangle is cut from all
    request.time = static_cast<A_long>(std::lround(options.seconds * kTimeScale));
    request.timeStep = kTimeStep;
    request.totalTime = request.time + kTimeStep;
    request.timeScale = kTimeScale;
    return request;
}

/// Draws, and lets the progress say how far the effect is.
Result<Frame> Draw(EffectSession& session, const FrameRequest& request, Progress& progress) {
    progress.Follow([&session] { return ActivityText(session); });
    auto frame = session.Render(request);
    progress.Say("preparing the picture");
    return frame;
}

/// Writes the file, or its bytes to standard output.
Result<Done> Write(const RenderOptions& options, const World& pixels, const Placement& place,
                   const WriteOptions& kept) {
    if (options.output != "-") return WritePicture(options.output, pixels, place, kept);
    const auto bytes = EncodePicture(pixels, place, kept);
    if (!bytes) return bytes.Error();
    PrintResult(*bytes);
    return Done{};
}

RenderFacts FactsOf(const RenderOptions& options, const World& layer) {
    RenderFacts facts;
    facts.input = options.input;
    facts.output = options.output;
    facts.layerWidth = layer.Width();
    facts.layerHeight = layer.Height();
    facts.depth = static_cast<int>(layer.PixelDepth());
    facts.downsample = options.downsample;
    facts.canvas = options.canvas.empty() ? "grow" : options.canvas;
    return facts;
}

/// What the picture is to cover, in pixels of the drawn layer; nothing for all that is drawn.
Result<std::optional<PF_LRect>> CanvasOf(const RenderOptions& options, const World& layer) {
    const auto choice = ParseCanvas(options.canvas.empty() ? "grow" : options.canvas);
    if (!choice) return choice.Error();
    if (choice->kind == CanvasChoice::Kind::kLayer) return std::optional(PF_LRect{0, 0, layer.Width(), layer.Height()});
    if (choice->kind != CanvasChoice::Kind::kRectangle) return std::optional<PF_LRect>();
    const PF_LRect drawn = DrawnCanvas(choice->rectangle, options.downsample);
    if (auto fits = CheckCanvas(drawn, options.downsample); !fits) return fits.Error();
    return std::optional(drawn);
}

Result<ExitCode> Render(const RenderOptions& options) {
    const auto many = MeansSequence(options);
    if (!many) return many.Error();
    if (*many) return RenderSequence(options);
    Stopwatch whole, stage;
    auto folder = options.output == "-" ? Result<OutputFolder>(OutputFolder())
                                        : OutputFolder::For(options.output, options.makesFolder);
    if (!folder) return folder.Error();
    if (auto usable = CheckOutput(options); !usable) return usable.Error();
    const auto wish = ReadRendererWish(options.renderer);
    if (!wish) return wish.Error();
    if (options.output != "-") CleanFolderOf(options.output, options.sequence.quiet);
    Progress progress(SecondsOfProgress(options.sequence));
    progress.Say("reading the pictures");
    const auto layers = ReadLayers(options);
    if (!layers) return layers.Error();
    const auto canvas = CanvasOf(options, layers->layer);
    if (!canvas) return canvas.Error();
    RenderFacts facts = FactsOf(options, layers->layer);
    facts.load = stage.Lap();

    progress.Say("loading and setting up the module");
    auto opened = OpenWithValues(options, layers->width, layers->height);
    if (!opened) return opened.Error();
    EffectSession& session = opened->Session();
    const RendererDecision renderer = DecideRenderer(*wish, ReadGpuStrings(session.Params()));
    session.SetRenderer(renderer.Request());
    if (options.verbose) progress.Print(CommandsText(session.Commands()) + RendererText(renderer) + "\n");

    FrameRequest request = RequestOf(options, *layers);
    if (!opened->params.animation.IsEmpty()) {
        request.valuesAt = [&opened, &session](const Moment& moment) {
            const double seconds = static_cast<double>(moment.value) / moment.scale;
            return opened->params.animation.ValuesAt(session.Params(), opened->clock.FrameOf(seconds), opened->clock);
        };
    }
    auto frame = Draw(session, request, progress);
    if (options.verbose) progress.Print(frame ? FrameText(*frame, session) : RefusedText(session));
    if (!frame) return renderer.processor ? frame.Error() : Explain(frame.Error(), session);
    if (!frame->message.empty()) progress.Print("the effect says: " + frame->message + "\n");

    stage.Lap();
    const auto drawn =
        PictureOf(*frame, *canvas, layers->layer.Width(), layers->layer.Height(), layers->layer.PixelDepth());
    if (!drawn) return drawn.Error();
    facts.picture = drawn->rect;
    const Placement place{drawn->rect, layers->layer.Width(), layers->layer.Height(), layers->frameOrigin};
    progress.Say("writing the picture");
    if (auto written = Write(options, drawn->pixels, place, layers->kept); !written) return written.Error();
    facts.save = stage.Lap();

    auto ended = session.End();
    if (options.verbose) {
        for (const std::string& misstep : session.Misbehaviour()) {
            progress.Print("the effect misbehaved: " + misstep + "\n");
        }
    }
    if (!ended) return ended.Error();
    facts.total = whole.Lap();
    progress.Stop();
    if (options.output != "-") {
        PrintResult(options.json ? RenderReport(facts, renderer, *frame, session) : options.output + "\n");
    }
    return ExitCode::kDone;
}

}  // namespace

Command RenderCommand() {
    return RenderCommand(std::make_shared<RenderOptions>());
}

Command RenderCommand(const std::shared_ptr<RenderOptions>& options) {
    Command command;
    command.name = "render";
    command.summary = "Draw a picture with the effect; prints the path of the picture that was written";
    command.examples = kExamples;
    command.options = [options](CLI::App& app) {
        app.add_option("INPUT", options->input,
                       "The layer: PNG, TIFF, JPEG, EXR, ...; a sequence as shot.####.exr, shot.%04d.exr, shot.@@.exr, "
                       "shot.$F4.exr, ...; or a clip: .mov, .mp4, .mkv, ...; - for standard input")
            ->required();
        app.add_option("-o,--output", options->output,
                       "The picture to write: " + WritableFormats() +
                           ". PNG and TIFF are straight, EXR is premultiplied, JPEG lies on white. Or a clip: .mov, "
                           ".mkv, .webm. - is standard output, in the format of --format")
            ->required();
        app.add_option("--format", options->format, "The format of standard output, '-o -'")
            ->check(CLI::IsMember({"png", "tif", "exr", "jpg"}))
            ->type_name("png|tif|exr|jpg");
        app.add_option("--layer", options->read.layer,
                       "The layer of INPUT that is drawn: diffuse for the channels diffuse.R, diffuse.G, ..., or a "
                       "channel")
            ->type_name("NAME");
        app.add_option("--part", options->read.part, "The part of INPUT that is drawn: its number from 0, or its name")
            ->type_name("N|NAME");
        app.add_option("--preset", options->preset,
                       "Values from a file that `umbrant params --json --values` wrote; a later --set wins")
            ->type_name("FILE.json");
        app.add_option("--set", options->settings, "A parameter's value; may be given many times")
            ->type_name("PATH=VALUE")
            ->allow_extra_args(false);
        app.add_option("--texture", options->texture,
                       "A picture for the effect's layer parameters, at the layer's origin")
            ->check([](const std::string& file) {
                return file.empty() ? "'' names no file; leave the option out to draw without a texture" : "";
            })
            ->type_name("IMAGE");
        app.add_option("--texture-at", options->textureAt,
                       "Where the texture's top-left lies, in pixels of the full-size layer")
            ->check(WhyNoPlace)
            ->needs("--texture")
            ->type_name("X,Y");
        app.add_option("--depth", options->depth,
                       "Bits per channel in the effect; without it, those of the input (16 become 32)")
            ->check(WhyNoDepth)
            ->type_name("8|32");
        app.add_option("--output-depth", options->outputDepth,
                       "How the file stores a channel: 8 or 16 in PNG, also float in TIFF, half or float in EXR; "
                       "without it as suits the effect's depth")
            ->check(CLI::IsMember({"8", "16", "half", "float"}))
            ->type_name("8|16|half|float");
        app.add_option("--downsample", options->downsample, "Draw at one N-th of the resolution")
            ->check(CLI::Range(1, 64))
            ->type_name("N");
        app.add_option("--canvas", options->canvas,
                       "grow: layer and shadow together, in a sequence those of all frames (default); frame: in a "
                       "sequence each frame its own; layer: the layer's frame (default of a clip); or a rectangle in "
                       "pixels of the full-size layer, right and bottom exclusive")
            ->check([](const std::string& text) {
                const auto choice = ParseCanvas(text);
                return choice ? std::string() : choice.Error().sentence;
            })
            ->type_name("grow|frame|layer|LEFT,TOP,RIGHT,BOTTOM");
        app.add_flag("--mkdir", options->makesFolder, "Create the folder of the output where there is none");
        app.add_flag(
            "--collapsed", options->collapsed,
            "Present the layer with its \"Collapse Transformations\" switch on; radial shadows then stay in its frame");
        app.add_option("--time", options->seconds, "The moment that is drawn")
            ->check([](const std::string& text) { return OutOfRange(text, 0.0, kLongestTime); })
            ->type_name("SECONDS");
        app.add_option("--compression", options->compression,
                       "How the picture is stored: fast or small in PNG, zip, piz, dwaa, ... in EXR, lzw, ... in TIFF, "
                       "jpeg:1 to "
                       "jpeg:100; "
                       "without it as the input where it has the same format")
            ->type_name("NAME");
        app.add_option(
               "--renderer", options->renderer,
               "gl: OpenGL; cpu: the processor; auto: OpenGL where hardware draws it, else the processor. Without "
               "it UMBRANT_RENDERER or auto")
            ->check(CLI::IsMember({"auto", "gl", "cpu"}))
            ->type_name("auto|gl|cpu");
        app.add_option("--module", options->module,
                       "The effect's module; without it UMBRANT_MODULE or the one beside the program")
            ->type_name("FILE");
        AddSequenceOptions(app, options->sequence);
        app.add_flag("--json", options->json,
                     "Print a report instead of the path: rectangles, milliseconds by stage, driver, suites");
        app.add_flag("--verbose", options->verbose, "Tell each command with its time, rectangles and suites");
    };
    command.run = [options] { return Render(*options); };
    return command;
}
