// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The options of `umbrant render` that are about many frames.

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "host/cli/render/frame_progress.h"
#include "host/cli/render/render_options.h"
#include "host/render/plan/frame_numbers.h"
#include "host/render/plan/memory_plan.h"

namespace umbrant::host {

namespace {

std::string Reason(const Failure& failure) {
    return failure.sentence;
}

/// The check of an option whose text one of the parsers of frame_numbers.h reads.
template <typename Parse>
auto Readable(Parse parse) {
    return [parse](const std::string& text) {
        const auto parsed = parse(text);
        return parsed ? std::string() : Reason(parsed.error());
    };
}

std::string ValidateProgress(const std::string& text) {
    if (!text.empty() && ReadProgress(text, false)) return "";
    return fmt::format("'{}' is neither bar, lines, json nor a number of seconds from 0 to 86400", text);
}

}  // namespace

void AddFrameOptions(CLI::App& app, SequenceOptions& options) {
    app.add_option("--frames", options.frames,
                   "Which frames: 1-10, 1-240x2 (every second), 1-10x0.25 (quarters of frames), 1-100y5 (all but every "
                   "fifth), 1-100:8 (from coarse to fine), several with commas (default: all frames of INPUT)")
        ->check(Readable(ParseFrames))
        ->type_name("FRAMES");
    app.add_option(
           "--rate", options.rate,
           "Frames per second, such as 24, 29.97 or 30000/1001 (default: the clip's, else 24). A clip is shown at "
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
                   "A frame without a file: error (default) draws nothing at all, hold shows the previous frame, skip "
                   "leaves it out")
        ->check(CLI::IsMember({"error", "hold", "skip"}))
        ->type_name("error|hold|skip");
}

void AddSequenceOptions(CLI::App& app, SequenceOptions& options) {
    AddFrameOptions(app, options);
    app.add_flag("--skip-existing", options.skipExisting, "Skip frames whose output exists");
    app.add_flag("--keep-going", options.keepGoing, "Draw the other frames when one fails; exit code 1 at the end");
    app.add_option("--chunk", options.chunk, "Draw the I-th of N parts of the frames, for several machines")
        ->check(Readable(ParseChunk))
        ->type_name("I/N");
    app.add_option("--threads", options.threads,
                   "Frames drawn at the same time (default: suits the cores, the renderer and the memory)")
        ->check(CLI::Range(1, kMostThreads))
        ->type_name("N");
    app.add_option(
           "--progress", options.progress,
           "How progress is reported: bar (default on a terminal), lines (default elsewhere) or json. Or how often a "
           "slow frame is reported: SECONDS, 0 for never (default 10)")
        ->check(ValidateProgress)
        ->type_name("bar|lines|json|SECONDS");
    app.add_flag("--quiet", options.quiet, "Report failures only");
    app.add_option(
           "--codec", options.codec,
           "The codec of a clip: prores4444 (default of .mov), ffv1 (of .mkv), vp9 (of .webm), png, h264 (of .mp4), "
           "webp, apng")
        ->type_name("NAME");
    app.add_flag("--no-sound", options.noSound, "Leave out the sound of the input");
}

}  // namespace umbrant::host
