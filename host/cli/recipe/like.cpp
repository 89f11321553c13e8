// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/recipe/like.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>

#include "host/cli/program_version.h"
#include "host/image/recipe/recipe_text.h"
#include "host/parameters/echo_text.h"
#include "host/video/clip_format.h"

namespace umbrant::host {

namespace {

/// The options that change pixels, or how a file stores them. Which frames are drawn, from which input and to which
/// output, is not part of a recipe; the canvas is, as what it came to.
constexpr std::string_view kPixelOptions[] = {
    "layer",     "part",  "texture",     "texture-at",  "depth",        "output-depth",  "downsample",
    "collapsed", "time",  "compression", "rate",        "zero-frame",   "input-offset",  "texture-offset",
    "missing",   "codec", "background",  "input-space", "output-space", "working-space", "texture-space",
};

/// The options that suit some formats of files only.
constexpr std::string_view kStorageOptions[] = {"output-depth", "compression", "codec"};

template <std::size_t kCount>
bool IsOneOf(const std::string_view (&names)[kCount], std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

bool IsGiven(const RenderOptions& options, std::string_view name) {
    return std::any_of(options.given.begin(), options.given.end(), [&](const auto& one) { return one.first == name; });
}

void Note(const RenderOptions& options, const std::string& sentence) {
    if (!options.sequence.quiet) std::fputs(("note: " + sentence + "\n").c_str(), stderr);
}

bool DrawsExactly() {
    const char* exact = std::getenv("UMBRANT_CPU_EXACT");
    return exact && std::strcmp(exact, "1") == 0;
}

/// Whether the output can be stored as this option says.
bool SuitsOutput(const RenderOptions& options, const std::string& name, const std::string& value) {
    RenderOptions stored;
    stored.output = options.output;
    stored.format = options.format;
    if (name == "codec") return IsClipName(options.output) && CodecFor(options.output, value);
    if (IsClipName(options.output)) return false;
    (name == "compression" ? stored.compression : stored.outputDepth) = value;
    return bool(CheckStorage(stored));
}

/// The recipe's options that the command line does not give, as arguments.
std::vector<std::string> ArgumentsFrom(const Recipe& recipe, const RenderOptions& options) {
    const auto many = MeansSequence(options);
    std::vector<std::string> arguments;
    for (const auto& [name, value] : recipe.options) {
        if (IsGiven(options, name)) continue;
        if (IsOneOf(kStorageOptions, name) && !SuitsOutput(options, name, value)) continue;
        // A sequence has no time of its own.
        if (name == "time" && many && *many) continue;
        arguments.push_back(value.empty() ? "--" + name : fmt::format("--{}={}", name, value));
    }
    return arguments;
}

Failure Unusable(const std::string& file, const std::string& reason) {
    return {ErrorKind::kUsage, fmt::format("the recipe of '{}' cannot be used: {}", file, reason)};
}

/// Reads the arguments into the options with the checks of the command line.
Result<Done> ReadArguments(std::vector<std::string> arguments, const std::shared_ptr<RenderOptions>& options) {
    const std::string file = options->like;
    CLI::App app;
    RenderCommand(options).options(app);
    for (const std::string& argument : arguments) {
        const std::string name = argument.substr(2, argument.find('=') - 2);
        if (!app.get_option_no_throw("--" + name) || !(IsOneOf(kPixelOptions, name) || name == "canvas")) {
            return Unusable(file,
                            fmt::format("this program has no option '--{}' for recipes; draw with the program that "
                                        "wrote it",
                                        EchoText(name)));
        }
    }
    // What the command line gave, for options that need one another.
    if (!options->texture.empty()) arguments.push_back("--texture=" + options->texture);
    arguments.push_back("--output=" + options->output);
    arguments.insert(arguments.end(), {"--", options->input});
    std::reverse(arguments.begin(), arguments.end());
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError& problem) {
        return Unusable(file, fmt::format("{}; give the option on the command line", problem.what()));
    }
    return Done{};
}

}  // namespace

void AddRecipeOptions(CLI::App& app, const std::shared_ptr<RenderOptions>& options) {
    app.add_option("--like", options->like,
                   "Draw with the recipe of a file that `umbrant render` wrote: its values, texture, canvas, ...; "
                   "--preset, --set and all other options override it")
        ->check([](const std::string& file) { return file.empty() ? "'' names no file" : ""; })
        ->type_name("FILE");
    app.add_flag("--no-recipe", options->noRecipe,
                 "Leave the recipe out of the output: the values, options and versions that it was drawn with");
    app.parse_complete_callback([&app, options] {
        options->given.clear();
        for (const CLI::Option* option : app.get_options()) {
            if (option->count() == 0 || option->get_lnames().empty()) continue;
            const bool isSwitch = option->get_type_size() == 0;
            options->given.emplace_back(option->get_lnames().front(), isSwitch ? "" : option->results().back());
        }
    });
}

Result<RenderOptions> WithRecipe(const RenderOptions& options) {
    if (options.like.empty()) return options;
    const auto recipe = TRY(ReadRecipe(options.like));
    const bool readsTexture = std::count(recipe.options.begin(), recipe.options.end(),
                                         std::pair(std::string("texture"), std::string("-"))) > 0;
    if (readsTexture && !IsGiven(options, "texture")) {
        return Unusable(options.like, "its texture came from standard input; name a file with --texture");
    }
    const auto merged = std::make_shared<RenderOptions>(options);
    TRY(ReadArguments(ArgumentsFrom(recipe, options), merged));
    const std::vector<std::pair<std::string, std::string>> taken = merged->given;
    merged->given = options.given;
    for (const auto& one : taken) {
        if (!IsGiven(options, one.first)) merged->given.push_back(one);
    }
    merged->recipe = std::make_shared<const Recipe>(recipe);
    const bool needsFrame = recipe.frame && !IsGiven(options, "time") && !IsGiven(options, "frames");
    if (needsFrame) merged->frame = recipe.frame;
    if (recipe.pixels && DrawsExactly() != (*recipe.pixels == kExactPixelVersion)) {
        // No other thread of the program has been started yet.
        setenv("UMBRANT_CPU_EXACT", *recipe.pixels == kExactPixelVersion ? "1" : "0", 1);
    }
    return *merged;
}

Result<Done> ApplyRecipeValues(const RenderOptions& options, AnimatedParams& params) {
    if (!options.recipe) return Done{};
    const Recipe& recipe = *options.recipe;
    const auto preset = nlohmann::json::parse(recipe.preset, nullptr, false);
    std::vector<std::string> unknown;
    for (const char* part : {"values", "keyframes"}) {
        if (!preset.contains(part) || !preset[part].is_object()) continue;
        for (const auto& [path, value] : preset[part].items()) {
            if (!params.values.Find(path)) unknown.push_back(fmt::format("'{}'", EchoText(path)));
        }
    }
    if (!unknown.empty()) {
        constexpr std::size_t kListed = 5;
        const std::size_t more = unknown.size() - std::min(unknown.size(), kListed);
        unknown.resize(unknown.size() - more);
        return Failure{
            ErrorKind::kUsage,
            fmt::format("the recipe of '{}' sets parameters that this module does not have: {}{}; draw with the "
                        "module that drew it, {} {} (--module)",
                        options.like, fmt::join(unknown, ", "), more > 0 ? fmt::format(" and {} more", more) : "",
                        EchoText(recipe.moduleName), EchoText(recipe.moduleVersion))};
    }
    auto applied = ApplyPresetText(recipe.preset, options.like, params);
    if (applied) return applied;
    constexpr std::string_view kBegin = "the preset";
    std::string sentence = applied.error().sentence;
    if (sentence.starts_with(kBegin)) sentence.replace(0, kBegin.size(), "the recipe of");
    return Failure{ErrorKind::kUsage, sentence};
}

Recipe RecipeOf(const RenderOptions& options, const OpenedModule& module, const AnimatedParams& params,
                const RendererDecision& renderer, const std::string& canvas) {
    Recipe recipe;
    recipe.program = ProgramVersion();
    recipe.moduleName = module.effect.name;
    recipe.moduleVersion = EffectVersionText(module.session->EffectVersion());
    // Only of its own module does the program know the arithmetic.
    if (module.module) recipe.pixels = renderer.processor && DrawsExactly() ? kExactPixelVersion : kPixelVersion;
    recipe.renderer = renderer.Name();
    recipe.options.emplace_back("canvas", canvas);
    for (const std::string_view name : kPixelOptions) {
        for (const auto& [given, value] : options.given) {
            // An empty text is the same as none, and could not be given again.
            if (given == name && (name == "collapsed" || !value.empty())) recipe.options.emplace_back(given, value);
        }
    }
    recipe.preset = PresetText(params);
    return recipe;
}

void ReportDifferences(const RenderOptions& options, const Recipe& drawn) {
    if (!options.recipe) return;
    const Recipe& like = *options.recipe;
    if (like.moduleName != drawn.moduleName || like.moduleVersion != drawn.moduleVersion) {
        Note(options,
             fmt::format("'{}' was drawn by the module {} {}, and this image is drawn by {} {}; the pixels may "
                         "differ",
                         options.like, EchoText(like.moduleName), EchoText(like.moduleVersion), drawn.moduleName,
                         drawn.moduleVersion));
    }
    if (like.renderer != drawn.renderer) {
        Note(options,
             fmt::format("'{}' was drawn by the renderer {}, and this image is drawn by {}; the pixels may differ "
                         "by a step of 8 bits; --renderer {} selects the same",
                         options.like, EchoText(like.renderer), drawn.renderer, EchoText(like.renderer)));
    }
}

RecipeWriter::RecipeWriter(const RenderOptions& options, Recipe recipe, bool moves)
    : recipe_(std::move(recipe)), writes_(!options.noRecipe), moves_(moves) {
    // A frame's number takes a few bytes more.
    constexpr std::size_t kFrame = 40;
    const std::size_t size = writes_ ? RecipeText(recipe_).size() + kFrame : 0;
    if (size <= kMostRecipeBytes) return;
    writes_ = false;
    Note(options,
         fmt::format("the recipe is left out of the output: its keyframes make it {} bytes long, and a file takes "
                     "{}; keep the preset with the output",
                     size, kMostRecipeBytes));
}

std::string RecipeWriter::TextOf(const PlannedFrame& frame, bool isImage) const {
    if (!writes_) return "";
    Recipe recipe = recipe_;
    // Frames that cannot differ have the same bytes.
    if (!isImage && moves_) recipe.frame = frame.position;
    return RecipeText(recipe);
}

std::string RecipeWriter::WholeText() const {
    return writes_ ? RecipeText(recipe_) : "";
}

}  // namespace umbrant::host
