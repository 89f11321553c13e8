// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What `umbrant render` was asked for, and the session that one picture and a sequence are drawn with.

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/animation/preset.h"
#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/image/picture.h"
#include "host/render/plan/frame_number.h"
#include "host/result.h"

namespace CLI {
class App;
}

namespace umbrant::host {

/// What only sequences have.
struct SequenceOptions {
    std::string frames;
    std::string rate;  ///< empty for the clip's, or 24
    int zeroFrame = 0;
    int inputOffset = 0;
    int textureOffset = 0;
    std::string missing = "error";
    bool skipExisting = false;
    bool keepGoing = false;
    std::string chunk;  ///< empty for the whole
    int threads = 0;    ///< 0 takes what suits the machine
    std::string progress;
    bool quiet = false;
    std::string codec;  ///< of a clip that is written; empty for what suits its extension
    bool noSound = false;
};

struct Recipe;
class RenderColors;

/// Names of colour spaces; empty for none that was asked for.
struct ColorOptions {
    std::string input;
    std::string output;
    std::string working;
    std::string texture;
};

struct RenderOptions {
    std::string input;
    std::string output;
    std::string preset;
    std::vector<std::string> settings;
    std::string texture;
    std::string textureAt = "0,0";
    int depth = 0;
    int downsample = 1;
    std::string canvas;        ///< as ParseCanvas takes it; empty: the layer's frame for a clip, else grown
    std::string background;    ///< as Background takes it; empty for a transparent image
    bool makesFolder = false;  ///< of the output
    bool collapsed = false;
    double seconds = 0;
    std::string compression;
    std::string outputDepth;  ///< empty for what suits the render's depth
    std::string format;       ///< of standard output
    ReadOptions read;         ///< which image of INPUT
    std::string renderer;
    std::string module;
    bool json = false;
    bool verbose = false;
    bool watch = false;   ///< draws again whenever what is read changes
    bool dryRun = false;  ///< a few frames are drawn, to be measured, and nothing is written
    SequenceOptions sequence;
    ColorOptions color;
    std::shared_ptr<const RenderColors> colors;  ///< of `color`; set by WithColors, null for none
    std::string like;                            ///< the file whose recipe is taken; empty for none
    bool noRecipe = false;
    /// The options that the command line gave, or the recipe did, and the last value of each; empty for a switch.
    std::vector<std::pair<std::string, std::string>> given;
    std::shared_ptr<const Recipe> recipe;  ///< of `like`; set by WithRecipe
    std::optional<double> frame;           ///< of the recipe's values, for a single image; else --time says it
};

/// "X,Y": a place in pixels of the full-size layer, or nothing.
std::optional<std::pair<double, double>> ParsePoint(const std::string& text);

/// For an option's check: why the text is no such place, or an empty text.
std::string ValidatePoint(const std::string& text);

/// A module with what it is to draw.
struct OpenedEffect {
    OpenedModule module;  ///< its session has the values of the first frame
    AnimatedParams params;
    AnimationClock clock;

    EffectSession& Session() { return module.Session(); }
};

/// The session that draws layers of this full size, with the values that were asked for, those that move as they are at
/// `frame`, whole or not.
Result<OpenedEffect> OpenWithValues(const RenderOptions& options, int layerWidth, int layerHeight, double frame);

/// The effect's failure, said as what it is when there is no OpenGL to draw with.
Failure Explain(const Failure& failure, const EffectSession& session);

/// Whether the output is one that can be written as it is asked for, and none of the files that are read. For failing
/// before any work is done.
Result<Done> CheckOutput(const RenderOptions& options);

/// Whether the output can be stored as asked for: --compression, --output-depth, --format.
Result<Done> CheckStorage(const RenderOptions& options);

/// The file of --background; empty where it is none.
std::string BackgroundFile(const RenderOptions& options);

/// What was left out of a file that is read, as a line on standard error.
void TellNotes(const RenderOptions& options, const std::string& note, const std::string& metadataNote);

/// For --depth: why the text is no depth of a render, or an empty text.
std::string ValidateDepth(const std::string& text);

/// Declares the options of the effect's values and its texture.
void AddValueOptions(CLI::App& app, RenderOptions& options);

/// Declares the options that choose frames and the images that they are made of.
void AddFrameOptions(CLI::App& app, SequenceOptions& options);

/// Declares the options of SequenceOptions, those of AddFrameOptions among them.
void AddSequenceOptions(CLI::App& app, SequenceOptions& options);

/// The seconds between two reports of a single image that takes long, as ImageProgress takes them.
double SecondsOfProgress(const SequenceOptions& options);

/// The command `render`, which reads its arguments into these options.
Command RenderCommand(const std::shared_ptr<RenderOptions>& options);

/// All frames that the options ask for, in their order, as WholeFrameSet gives them.
Result<std::vector<FrameNumber>> FramesOf(const RenderOptions& options);

/// The text for `--canvas` that gives parts of the set the canvas of the whole; empty where every part finds the same
/// one itself, or the options say otherwise. Where it cannot be found out yet, a note on standard error says so. Fails
/// as Render does before the first frame.
Result<std::string> CanvasOfSet(const RenderOptions& options);

/// Whether the options mean a sequence. Fails as ParseFrames and MeansSequence do.
Result<bool> MeansSequence(const RenderOptions& options);

/// Refuses what only a single image can have: a time, standard input and output. Fails with `ErrorKind::kUsage`.
Result<Done> CheckNoTime(const RenderOptions& options);

/// Draws a single image or a sequence.
Result<ExitCode> Render(const RenderOptions& asked);

/// The options with those of the recipe that they name, and with their colour spaces opened. Fails as Render does.
Result<RenderOptions> WholeOptions(const RenderOptions& asked);

}  // namespace umbrant::host
