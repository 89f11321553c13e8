// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The options of `umbrant render` that are about many frames.

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "host/cli/frame_progress.h"
#include "host/cli/render_options.h"
#include "host/render/frame_numbers.h"
#include "host/render/memory_plan.h"

namespace {

std::string Reason(const Failure& failure) {
    return failure.sentence;
}

/// The check of an option whose text one of the parsers of frame_numbers.h reads.
template <typename Parse>
auto Readable(Parse parse) {
    return [parse](const std::string& text) {
        const auto parsed = parse(text);
        return parsed ? std::string() : Reason(parsed.Error());
    };
}

std::string WhyNoProgress(const std::string& text) {
    if (!text.empty() && ReadProgress(text, false)) return "";
    return fmt::format("'{}' is neither bar, lines, json nor a number of seconds from 0 to 86400", text);
}

}  // namespace

void AddSequenceOptions(CLI::App& app, SequenceOptions& options) {
    app.add_option("--frames", options.frames,
                   "Which frames: 1-10, 1-240x2 (every second), 1-10x0.25 (quarters of frames), 1-100y5 (all but every "
                   "fifth), 1-100:8 (from coarse to fine), several with commas; without it all that INPUT has")
        ->check(Readable(ParseFrames))
        ->type_name("FRAMES");
    app.add_option(
           "--rate", options.rate,
           "Frames per second, as 24, 29.97 or 30000/1001; without it a clip's own, else 24. A clip is shown at "
           "another rate by repeating or leaving out frames")
        ->check(Readable(ParseRate))
        ->type_name("RATE");
    app.add_option("--zero-frame", options.zeroFrame, "The frame at time 0")
        ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
        ->capture_default_str()
        ->type_name("FRAME");
    app.add_option("--input-offset", options.inputOffset, "Frame f shows the input's frame f + N")
        ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
        ->capture_default_str()
        ->type_name("N");
    app.add_option("--texture-offset", options.textureOffset, "Frame f shows the texture's frame f + N")
        ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
        ->capture_default_str()
        ->needs("--texture")
        ->type_name("N");
    app.add_option("--missing", options.missing,
                   "A frame without a file: error (default) draws nothing at all, hold shows the one before it, skip "
                   "leaves it out")
        ->check(CLI::IsMember({"error", "hold", "skip"}))
        ->type_name("error|hold|skip");
    app.add_flag("--skip-existing", options.skipExisting, "Leave out frames whose picture is there");
    app.add_flag("--keep-going", options.keepGoing, "Draw the other frames when one fails; exit code 1 in the end");
    app.add_option("--chunk", options.chunk, "The I-th of N parts of the frames, for several machines")
        ->check(Readable(ParseChunk))
        ->type_name("I/N");
    app.add_option("--threads", options.threads,
                   "Frames drawn at once; without it as many as suit the cores, the renderer and the memory")
        ->check(CLI::Range(1, kMostThreads))
        ->type_name("N");
    app.add_option(
           "--progress", options.progress,
           "How to tell of the frames: bar on a terminal, else lines; json for programs. Or how often a frame that "
           "takes long is told about: SECONDS, 0 for never, 10 without it")
        ->check(WhyNoProgress)
        ->type_name("bar|lines|json|SECONDS");
    app.add_flag("--quiet", options.quiet, "Tell of failures alone");
    app.add_option("--codec", options.codec,
                   "How a clip is stored: prores4444 (default of .mov), ffv1 (of .mkv), vp9 (of .webm), png")
        ->type_name("NAME");
    app.add_flag("--no-sound", options.noSound, "Leave out the sound that the input has beside its pictures");
}
