// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant preview`: a page in the browser with the picture and the effect's panel.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/option_checks.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/recipe/like.h"
#include "host/cli/render/clip_endpoints.h"
#include "host/cli/render/render_options.h"
#include "host/cli/render/render_plan.h"
#include "host/cli/results.h"
#include "host/cli/settings.h"
#include "host/preview/preview.h"
#include "host/process/program_start.h"
#include "host/render/canvas_choice.h"
#include "host/session/renderer.h"

namespace umbrant::host {

namespace {

constexpr char kPreviewExamples[] =
    "  umbrant preview title.png\n"
    "      opens a page that shows the layer with its shadow, and the panel; Ctrl-C ends it\n"
    "  umbrant preview\n"
    "      the page offers example layers, and takes images that are dropped on it\n"
    "  umbrant preview card.exr --texture paper.png --preset long.json --set style/angle=45\n"
    "      begins with a texture and with the values of a preset\n"
    "  umbrant preview in.####.exr --preset moving.json\n"
    "      a sequence and keyframes, with a timeline\n"
    "  umbrant preview title.png --no-open --port 8080 --idle-exit 10\n"
    "      only prints the address; ends ten minutes after the last page was closed";

constexpr double kLongestIdle = 10'000;

struct PreviewCommandOptions {
    std::string input;
    std::string texture;
    std::string preset;
    std::vector<std::string> settings;
    std::string depth;
    std::string renderer;
    std::string module;
    std::string canvas;
    std::string textureAt = "0,0";
    SequenceOptions sequence;
    int port = 0;
    bool noOpen = false;
    double idleMinutes = 0;
};

/// The options of `umbrant render` that this command has too, besides files and values: names and values in turn.
std::vector<std::string> RenderArguments(const PreviewCommandOptions& options) {
    std::vector<std::string> arguments;
    for (const auto& [name, value] : {std::pair("--depth", &options.depth), std::pair("--renderer", &options.renderer),
                                      std::pair("--module", &options.module), std::pair("--canvas", &options.canvas)}) {
        if (!value->empty()) arguments.insert(arguments.end(), {name, *value});
    }
    if (options.textureAt != "0,0") arguments.insert(arguments.end(), {"--texture-at", options.textureAt});
    const SequenceOptions& sequence = options.sequence;
    for (const auto& [name, value] :
         {std::pair("--zero-frame", sequence.zeroFrame), std::pair("--input-offset", sequence.inputOffset),
          std::pair("--texture-offset", sequence.textureOffset)}) {
        if (value != 0) arguments.insert(arguments.end(), {name, std::to_string(value)});
    }
    if (sequence.missing != "error") arguments.insert(arguments.end(), {"--missing", sequence.missing});
    return arguments;
}

/// Makes the recipes of files: those that the command has which the page copies.
std::function<std::string(const DrawnFile&)> RecipesOf(const PreviewCommandOptions& options,
                                                       const std::shared_ptr<const OpenedModule>& module,
                                                       const RendererDecision& renderer) {
    RenderOptions all;
    const std::vector<std::string> arguments = RenderArguments(options);
    for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
        all.given.emplace_back(arguments[i].substr(2), arguments[i + 1]);
    }
    return [all, module, renderer](const DrawnFile& file) mutable {
        RenderOptions render = all;
        if (file.texture.empty()) {
            // A place needs a texture.
            std::erase_if(render.given, [](const auto& one) { return one.first == "texture-at"; });
        }
        render.given.emplace_back("texture", file.texture);
        render.given.emplace_back("rate", file.rate);
        if (file.downsample > 1) render.given.emplace_back("downsample", std::to_string(file.downsample));
        Recipe recipe = RecipeOf(render, *module, file.params, renderer, file.canvas);
        PlannedFrame frame;
        frame.position = file.frame.value_or(0);
        std::string text =
            RecipeWriter(render, std::move(recipe), !file.params.animation.IsEmpty()).TextOf(frame, !file.frame);
        // One note on a recipe that is too long suffices for all frames.
        if (text.empty()) all.sequence.quiet = true;
        return text;
    };
}

Result<PreviewEffect> Open(const PreviewCommandOptions& options, int layerWidth, int layerHeight) {
    SessionOptions about;
    about.layerWidth = layerWidth;
    about.layerHeight = layerHeight;
    const auto preference = TRY(ReadRendererPreference(options.renderer));
    about.renderer = RendererOfSetUp(preference);
    const auto opened = std::make_shared<OpenedModule>(
        TRY(OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module), about)));
    const RendererDecision renderer = DecideRenderer(preference, ReadGpuStrings(opened->Session().Params()));
    opened->Session().SetRenderer(renderer.Request());
    const auto explain = [isProcessor = renderer.processor](const Failure& failure, const EffectSession& session) {
        return isProcessor ? failure : Explain(failure, session);
    };
    return PreviewEffect{opened,
                         &opened->Session(),
                         opened->effect.name,
                         renderer.Name(),
                         explain,
                         RecipesOf(options, opened, renderer)};
}

/// The frames of the input and the texture; `clips` has those that are clips, and must outlive them.
Result<ShotOptions> ShotOf(const PreviewCommandOptions& options, ClipEndpoints& clips) {
    RenderOptions render;
    render.input = options.input;
    render.texture = options.texture;
    render.sequence = options.sequence;
    const auto many = TRY(MeansSequence(render));
    ShotOptions shot;
    shot.request = TRY(SequenceRequest(render));
    if (!many) return shot;
    TRY(clips.Open(render, shot.request));
    LayerOptions readers;
    clips.Connect(readers);
    shot.inputClip = readers.inputClip;
    shot.textureClip = readers.textureClip;
    const auto moves = [](const std::string& path, const std::optional<int>& clip) -> Result<bool> {
        const auto source = TRY(FrameSource::Find(path, 0, clip));
        return source.HasFrames();
    };
    shot.inputMoves = TRY(moves(options.input, shot.request.inputClip));
    shot.textureMoves = TRY(moves(options.texture, shot.request.textureClip));
    shot.isAsked = true;
    shot.hasFixedRate = clips.Reads();
    return shot;
}

/// Opens the address with the desktop's program for it. A failure is reported, and the preview goes on.
void OpenBrowser(const std::string& address) {
    ProgramStart start{"xdg-open", {address}};
    start.output = start.errors = Stream::Nothing();
    int process = 0;
    ProgramPipes pipes;
    // Nobody waits for it: where no browser runs yet, it is the browser.
    if (const int error = StartProcess(start, process, pipes); error != 0) {
        std::fputs(fmt::format("umbrant: no browser was opened: xdg-open cannot be started ({}); open the address in a "
                               "browser of this machine\n",
                               std::strerror(error))
                       .c_str(),
                   stderr);
    }
}

Result<ExitCode> Run(const PreviewCommandOptions& options) {
    TRY(ReadRendererPreference(options.renderer));
    PreviewOptions preview;
    preview.open = [&options](int width, int height) { return Open(options, width, height); };
    preview.setValues = [&options](AnimatedParams& params) {
        return ApplyValues(options.preset, options.settings, params);
    };
    preview.presets = []() -> Result<std::vector<OfferedPreset>> {
        std::vector<OfferedPreset> offered;
        const std::vector<NamedPreset> presets = TRY(NamedPresets());
        for (const NamedPreset& preset : presets) {
            offered.push_back({preset.name, preset.file.string(), preset.isUsers});
        }
        return offered;
    };
    ClipEndpoints clips;
    preview.shot = TRY(ShotOf(options, clips));
    preview.preset = options.preset;
    preview.canvas = TRY(ParseUndrawnCanvas(options.canvas.empty() ? "grow" : options.canvas));
    std::tie(preview.textureX, preview.textureY) = ParsePoint(options.textureAt).value_or(std::pair(0.0, 0.0));
    if (!options.depth.empty()) preview.depth = options.depth == "8" ? Depth::k8 : Depth::k32;
    preview.input = options.input;
    preview.texture = options.texture;
    preview.port = options.port;
    if (options.idleMinutes > 0) {
        preview.idle = std::chrono::milliseconds(std::llround(std::ceil(options.idleMinutes * 60'000)));
    }
    preview.renderArguments = RenderArguments(options);
    const auto created = TRY(Preview::Create(std::move(preview)));
    TRY(created->Run([&] {
        PrintResult(created->Address() + "\n");
        FlushResults();
        if (!options.noOpen) OpenBrowser(created->Address());
    }));
    return ExitCode::kDone;
}

/// What is drawn, and how.
void AddPictureOptions(CLI::App& app, PreviewCommandOptions& options) {
    app.add_option("INPUT", options.input,
                   "The layer: PNG, TIFF, JPEG, EXR, ...; a pattern such as in.####.png; a clip; the page can load "
                   "other images");
    app.add_option("--texture", options.texture, "An image for the effect's layer parameters")->type_name("IMAGE");
    app.add_option("--preset", options.preset,
                   "Values and keyframes to begin with, from a preset; --set overrides them")
        ->type_name("NAME|FILE.json");
    app.add_option("--set", options.settings, "A parameter's value to begin with; may be given many times")
        ->type_name("PATH=VALUE")
        ->allow_extra_args(false);
    app.add_option("--texture-at", options.textureAt,
                   "Position of the texture's top-left corner, in pixels of the full-size layer")
        ->needs("--texture")
        ->check(ValidatePoint)
        ->type_name("X,Y");
    AddFrameOptions(app, options.sequence);
    app.add_option("--canvas", options.canvas,
                   "grow: the layer and its shadow (default), in the files of many frames those of all; frame: each "
                   "frame's own; layer: the layer's rectangle; or a rectangle in pixels of the full-size layer, "
                   "right and bottom exclusive")
        ->check([](const std::string& text) {
            const auto canvas = ParseUndrawnCanvas(text);
            return canvas ? std::string() : canvas.error().sentence;
        })
        ->type_name("grow|frame|layer|LEFT,TOP,RIGHT,BOTTOM");
    app.add_option("--depth", options.depth,
                   "Bits per channel of the render (default: those of the layer; 16 become 32)")
        ->check(ValidateDepth)
        ->type_name("8|32");
}

/// The page's server, and what draws for it.
void AddServerOptions(CLI::App& app, PreviewCommandOptions& options) {
    app.add_option("--port", options.port, "The port of the page's address (default: a free one)")
        ->check(CLI::Range(1, 65535))
        ->type_name("N");
    app.add_flag("--no-open", options.noOpen, "Only print the address; do not open a browser");
    app.add_option("--idle-exit", options.idleMinutes, "End when no page has been open for this long")
        ->check([](const std::string& text) { return OutOfRange(text, 0.01, kLongestIdle); })
        ->type_name("MINUTES");
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

Command PreviewCommand() {
    const auto options = std::make_shared<PreviewCommandOptions>();
    Command command;
    command.name = "preview";
    command.summary = "Show the picture and the panel in the browser; the picture follows the controls";
    command.examples = kPreviewExamples;
    command.options = [options](CLI::App& app) {
        AddPictureOptions(app, *options);
        AddServerOptions(app, *options);
    };
    command.run = [options]() -> Result<ExitCode> {
        options->preset = TRY(PresetFile(options->preset));
        return Run(*options);
    };
    return command;
}

}  // namespace umbrant::host
