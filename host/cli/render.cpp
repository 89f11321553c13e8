// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render`: one picture in, one picture out.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/progress.h"
#include "host/cli/render_report.h"
#include "host/cli/renderer.h"
#include "host/cli/results.h"
#include "host/cli/settings.h"
#include "host/image/picture.h"
#include "host/image/resample.h"

namespace {

/// Time runs in steps of 1/24 second, told in thousandths of them so that any --time is met closely.
constexpr A_u_long kTimeScale = 24000;
constexpr A_long kTimeStep = 1000;
constexpr double kLongestTime = 24.0 * 60 * 60;
/// Beyond it no texture could meet a layer.
constexpr double kFarthestTexture = 100000;

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
    "  umbrant render title.png -o draft.png --downsample 4\n"
    "      a quarter of the resolution; points are still given in pixels of the whole picture";

struct RenderOptions {
    std::string input;
    std::string output;
    std::string preset;
    std::vector<std::string> settings;
    std::string texture;
    std::string textureAt = "0,0";
    int depth = 0;
    int downsample = 1;
    std::string canvas = "grow";
    bool collapsed = false;
    double seconds = 0;
    std::string compression;
    std::string renderer;
    std::string module;
    bool json = false;
    bool verbose = false;
    double progress = -1;
};

void Note(const std::string& text) {
    std::fputs(text.c_str(), stderr);
}

/// "X,Y": a place in pixels of the full-size layer, or nothing.
std::optional<std::pair<double, double>> PlaceOf(const std::string& text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos) return std::nullopt;
    const std::string numbers[] = {text.substr(0, comma), text.substr(comma + 1)};
    for (const std::string& number : numbers) {
        if (!OutOfRange(number, -kFarthestTexture, kFarthestTexture).empty()) return std::nullopt;
    }
    return std::pair(std::stod(numbers[0]), std::stod(numbers[1]));
}

std::string WhyNoPlace(const std::string& text) {
    if (PlaceOf(text)) return "";
    return fmt::format("'{}' is not a place X,Y with numbers from -{} to {}", text, kFarthestTexture, kFarthestTexture);
}

/// A picture as the effect is to see it: cut to its frame, in the depth of the render, at its resolution.
Result<World> LayerOf(const Picture& picture, Depth depth, int downsample) {
    const Failure noMemory{ExitCode::kInternal, "there is not enough memory for the layer"};
    World layer =
        CutToFrame(picture.pixels, picture.window.left, picture.window.top, picture.frameWidth, picture.frameHeight);
    if (layer.IsNull()) return noMemory;
    if (layer.PixelDepth() != depth) layer = ConvertDepth(layer, depth);
    if (!layer.IsNull() && downsample > 1) layer = Downsample(layer, downsample);
    if (layer.IsNull()) return noMemory;
    return layer;
}

/// The effect's failure, said as what it is when there is no OpenGL to draw with.
Failure Explain(const Failure& failure, const EffectSession& session) {
    if (failure.code != ExitCode::kEffectFailed || ReadGpuStrings(session.Params()).HasContext()) return failure;
    return {failure.code,
            fmt::format("no OpenGL context could be made, so the effect cannot draw: {}", failure.sentence)};
}

/// Pixels as they are written, and what they cover.
struct Drawn {
    World pixels;
    PF_LRect rect{};
};

/// The frame's pixels as they are written: where nothing was drawn, the layer's frame, transparent.
Result<Drawn> PictureOf(Frame& frame, Canvas canvas, const World& layer) {
    const bool empty = frame.output.Width() == 0 || frame.output.Height() == 0;
    const bool isFrame = frame.rect.left == 0 && frame.rect.top == 0 && frame.rect.right == layer.Width() &&
                         frame.rect.bottom == layer.Height();
    if (!empty && (canvas == Canvas::kGrow || isFrame)) return Drawn{std::move(frame.output), frame.rect};
    World cut = empty ? World::Create(layer.Width(), layer.Height(), layer.PixelDepth())
                      : CutToFrame(frame.output, frame.rect.left, frame.rect.top, layer.Width(), layer.Height());
    if (cut.IsNull()) return Failure{ExitCode::kInternal, "there is not enough memory for the picture"};
    return Drawn{std::move(cut), {0, 0, layer.Width(), layer.Height()}};
}

struct Layers {
    World layer;
    World texture;  ///< null for none
    int width = 0;  ///< the layer's full size
    int height = 0;
    PF_Point frameOrigin{};
    WriteOptions kept;  ///< of the layer's file, for the picture's
};

Result<Layers> ReadLayers(const RenderOptions& options) {
    const auto input = ReadPicture(options.input);
    if (!input) return input.Error();
    const Depth depth = options.depth == 0 ? input->pixels.PixelDepth() : options.depth == 32 ? Depth::k32 : Depth::k8;
    Layers layers;
    layers.width = input->frameWidth;
    layers.height = input->frameHeight;
    auto layer = LayerOf(*input, depth, options.downsample);
    if (!layer) return layer.Error();
    layers.layer = std::move(*layer);
    // A smaller picture has pixels of another size, so the frame's place in the file means nothing to it.
    if (options.downsample == 1) layers.frameOrigin = input->frameOrigin;
    layers.kept = {options.compression, input->isHalf && options.depth == 0, input->metadata};
    if (options.texture.empty()) return layers;

    const auto picture = ReadPicture(options.texture);
    if (!picture) return picture.Error();
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
    request.canvas = options.canvas == "layer" ? Canvas::kLayer : Canvas::kGrow;
    request.time = static_cast<A_long>(std::lround(options.seconds * kTimeScale));
    request.timeStep = kTimeStep;
    request.totalTime = request.time + kTimeStep;
    request.timeScale = kTimeScale;
    return request;
}

/// The session that draws, with the values that were asked for.
Result<OpenedModule> OpenWithValues(const RenderOptions& options, const Layers& layers) {
    SessionOptions about;
    about.layerWidth = layers.width;
    about.layerHeight = layers.height;
    if (options.collapsed) about.layerFlags |= AEGP_LayerFlag_COLLAPSE;
    auto opened = OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module), about);
    if (!opened) return opened.Error();
    EffectSession& session = opened->Session();
    if (auto set = ApplyValues(options.preset, options.settings, session.Params()); !set) return set.Error();
    if (auto updated = session.UpdateParamsUI(); !updated) return Explain(updated.Error(), session);
    return opened;
}

/// Draws, and lets the progress say how far the effect is.
Result<Frame> Draw(EffectSession& session, const FrameRequest& request, Progress& progress) {
    progress.Follow([&session] { return ActivityText(session); });
    auto frame = session.Render(request);
    progress.Say("the picture is made ready");
    return frame;
}

RenderFacts FactsOf(const RenderOptions& options, const World& layer) {
    RenderFacts facts;
    facts.input = options.input;
    facts.output = options.output;
    facts.layerWidth = layer.Width();
    facts.layerHeight = layer.Height();
    facts.depth = static_cast<int>(layer.PixelDepth());
    facts.downsample = options.downsample;
    facts.canvas = options.canvas;
    return facts;
}

Result<ExitCode> Render(const RenderOptions& options) {
    Stopwatch whole, stage;
    if (auto writable = CheckWritable(options.output); !writable) return writable.Error();
    if (!options.compression.empty()) {
        if (auto known = CheckCompression(options.output, options.compression); !known) return known.Error();
    }
    const auto wish = ReadRendererWish(options.renderer);
    if (!wish) return wish.Error();
    Progress progress(options.progress);
    progress.Say("the pictures are read");
    const auto layers = ReadLayers(options);
    if (!layers) return layers.Error();
    RenderFacts facts = FactsOf(options, layers->layer);
    facts.load = stage.Lap();

    progress.Say("the module is loaded and set up");
    auto opened = OpenWithValues(options, *layers);
    if (!opened) return opened.Error();
    EffectSession& session = opened->Session();
    const RendererDecision renderer = DecideRenderer(*wish, ReadGpuStrings(session.Params()));
    TellRenderer(renderer);
    if (options.verbose) Note(CommandsText(session.Commands()) + RendererText(renderer) + "\n");

    const FrameRequest request = RequestOf(options, *layers);
    auto frame = Draw(session, request, progress);
    if (options.verbose) Note(frame ? FrameText(*frame, session) : RefusedText(session));
    if (!frame) return renderer.processor ? frame.Error() : Explain(frame.Error(), session);
    if (!frame->message.empty()) Note("the effect says: " + frame->message + "\n");

    stage.Lap();
    const auto drawn = PictureOf(*frame, request.canvas, layers->layer);
    if (!drawn) return drawn.Error();
    facts.picture = drawn->rect;
    const Placement place{drawn->rect, layers->layer.Width(), layers->layer.Height(), layers->frameOrigin};
    progress.Say("the picture is written");
    if (auto written = WritePicture(options.output, drawn->pixels, place, layers->kept); !written) {
        return written.Error();
    }
    facts.save = stage.Lap();

    auto ended = session.End();
    if (options.verbose) {
        for (const std::string& misstep : session.Misbehaviour()) Note("the effect misbehaved: " + misstep + "\n");
    }
    if (!ended) return ended.Error();
    facts.total = whole.Lap();
    PrintResult(options.json ? RenderReport(facts, renderer, *frame, session) : options.output + "\n");
    return ExitCode::kDone;
}

}  // namespace

Command RenderCommand() {
    const auto options = std::make_shared<RenderOptions>();
    Command command;
    command.name = "render";
    command.summary = "Draw a picture with the effect; prints the path of the picture that was written";
    command.examples = kExamples;
    command.options = [options](CLI::App& app) {
        app.add_option("INPUT", options->input, "The layer: PNG, TIFF, JPEG, EXR, ...")->required();
        app.add_option("-o,--output", options->output,
                       "The picture to write: " + WritableFormats() +
                           ". PNG and TIFF are straight, EXR is premultiplied, JPEG lies on white")
            ->required();
        app.add_option("--preset", options->preset,
                       "Values from a file that `umbrant params --json --values` wrote; a later --set wins")
            ->type_name("FILE.json");
        app.add_option("--set", options->settings, "A parameter's value; may be given many times")
            ->type_name("PATH=VALUE")
            ->allow_extra_args(false);
        app.add_option("--texture", options->texture,
                       "A picture for the effect's layer parameters, at the layer's origin")
            ->type_name("IMAGE");
        app.add_option("--texture-at", options->textureAt,
                       "Where the texture's top-left lies, in pixels of the full-size layer")
            ->check(WhyNoPlace)
            ->needs("--texture")
            ->type_name("X,Y");
        app.add_option("--depth", options->depth, "Bits per channel; without it, those of the input (16 become 32)")
            ->check(CLI::IsMember({8, 32}))
            ->type_name("8|32");
        app.add_option("--downsample", options->downsample, "Draw at one N-th of the resolution")
            ->check(CLI::Range(1, 64))
            ->type_name("N");
        app.add_option("--canvas", options->canvas,
                       "grow: as large as layer and shadow together (default); layer: the layer's frame")
            ->check(CLI::IsMember({"grow", "layer"}))
            ->type_name("grow|layer");
        app.add_flag(
            "--collapsed", options->collapsed,
            "Present the layer with its \"Collapse Transformations\" switch on; radial shadows then stay in its frame");
        app.add_option("--time", options->seconds, "The moment that is drawn")
            ->check([](const std::string& text) { return OutOfRange(text, 0.0, kLongestTime); })
            ->type_name("SECONDS");
        app.add_option("--compression", options->compression,
                       "How the picture is stored: zip, piz, dwaa, ... in EXR, lzw, ... in TIFF, jpeg:1 to jpeg:100; "
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
        app.add_flag("--json", options->json,
                     "Print a report instead of the path: rectangles, milliseconds by stage, driver, suites");
        app.add_option("--progress", options->progress,
                       "How often a render that takes long says what it is at; 0 for never. Without it each second on "
                       "a terminal, else every 10")
            ->check([](const std::string& text) { return OutOfRange(text, 0.0, kLongestTime); })
            ->type_name("SECONDS");
        app.add_flag("--verbose", options->verbose, "Tell each command with its time, rectangles and suites");
    };
    command.run = [options] { return Render(*options); };
    return command;
}
