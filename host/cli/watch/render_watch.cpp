// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/watch/render_watch.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>
#include <utility>

#include "host/cli/render/progress_text.h"
#include "host/cli/render/render_run.h"
#include "host/cli/results.h"
#include "host/cli/watch/folder_events.h"
#include "host/cli/watch/watch_loop.h"
#include "host/image/picture.h"
#include "host/process/interruption.h"
#include "host/render/frame_source.h"
#include "host/video/clip_facts.h"

namespace umbrant::host {

namespace {

using Clock = std::chrono::steady_clock;

/// A folder that has to be polled is looked at after this time, or after many times the time that looking takes.
constexpr WatchedWorld::Seconds kPollInterval{1};
constexpr double kPollShare = 20;

/// After an event more of them are waited for, or many programs that write into the folder would keep this one busy.
constexpr WatchedWorld::Seconds kGathering{0.05};
constexpr double kGatheringShare = 4;

Result<Done> CheckWatch(const RenderOptions& options) {
    const auto clash = [&](const char* what) {
        return Failure{ErrorKind::kUsage, fmt::format("--watch draws again and again, which {}; leave one out", what)};
    };
    if (options.input == "-" || options.texture == "-") return clash("'-', standard input, cannot give twice");
    if (options.output == "-") return clash("'-o -' cannot hold, as it is one image");
    if (options.dryRun) return clash("--dry-run does not do");
    return Done{};
}

/// "'a.png'", or of many how many they are.
std::string NamesText(const std::vector<std::string>& paths, const char* one, const char* many) {
    return paths.size() == 1 ? fmt::format("'{}' {}", paths.front(), one)
                             : fmt::format("{} files {}, '{}' first", paths.size(), many, paths.front());
}

class RenderWatch : public WatchedWorld {
 public:
    RenderWatch(const RenderOptions& options, bool isSequence, const WatchHooks& hooks)
        : options_(options),
          hooks_(hooks),
          isSequence_(isSequence),
          form_(ReadProgress(options.sequence.progress, options.sequence.quiet).value_or(ProgressOptions{}).form),
          events_(hooks.polls) {}

    Result<ExitCode> Run() {
        for (const std::string& path : {options_.input, options_.texture}) {
            if (path.empty()) continue;
            const auto source = TRY(FrameSource::Find(path, 0));
            if (source.pattern) {
                watched_.patterns.push_back(*source.pattern);
            } else {
                watched_.files.push_back(path);
            }
        }
        for (const std::string& path : {options_.preset, BackgroundFile(options_)}) {
            if (!path.empty()) watched_.files.push_back(path);
        }
        events_.Follow(watched_.Folders());
        FileStamps before = Scan();
        const auto code = TRY(DrawOnce());
        if (!FlushResults()) return code;
        Say(fmt::format("watching {} for changes; Ctrl-C ends", WatchedText()));
        // What existing outputs leave out was for the first time: later the outputs are those of this run.
        options_.sequence.skipExisting = false;
        RunWatchLoop(*this, std::move(before));
        return code;
    }

    FileStamps Scan() override {
        const auto begin = Clock::now();
        FileStamps stamps = watched_.Scan();
        scanTime_ = Clock::now() - begin;
        return stamps;
    }

    bool WaitForEvent() override {
        if (hooks_.waits && !hooks_.waits()) return false;
        events_.Wait(std::max(kPollInterval, kPollShare * scanTime_));
        return Pause(std::max(kGathering, kGatheringShare * scanTime_));
    }

    bool Pause(Seconds time) override {
        std::this_thread::sleep_for(hooks_.pace * time);
        return true;
    }

    bool IsWhole(const std::string& path) override {
        if (path == options_.preset) return nlohmann::json::accept(std::ifstream(path));
        if (IsClipName(path)) return true;
        return ReadPicture(path, path == options_.texture ? ReadOptions{} : options_.read).has_value();
    }

    void Gone(const std::vector<std::string>& paths) override {
        events_.Follow(watched_.Folders());
        Say(NamesText(paths, "is gone", "are gone"));
    }

    void Draw(const std::vector<std::string>& changed) override {
        events_.Follow(watched_.Folders());
        Say(NamesText(changed, "has changed", "have changed"));
        // What all frames share, or a file of the sequence that shows in some of them.
        const bool isShared = std::any_of(changed.begin(), changed.end(), [&](const std::string& path) {
            return std::find(watched_.files.begin(), watched_.files.end(), path) != watched_.files.end();
        });
        again_.changed.clear();
        if (!isShared && isComplete_) again_.changed.insert(changed.begin(), changed.end());
        if (const auto drawn = DrawOnce(); !drawn) {
            StayWhileEnding();
            std::fputs(fmt::format("umbrant: {}\n", drawn.error().sentence).c_str(), stderr);
        }
        FlushResults();
    }

 private:
    /// Draws all frames, or those that show the changed files.
    Result<ExitCode> DrawOnce() {
        RenderRun run(options_, !isSequence_);
        run.Repeat(again_);
        auto drawn = run.Run();
        isComplete_ = drawn && *drawn == ExitCode::kDone;
        return drawn;
    }

    std::string WatchedText() const {
        std::vector<std::string> names = watched_.files;
        for (const FramePattern& pattern : watched_.patterns) names.push_back(pattern.Path());
        return fmt::format("'{}'", fmt::join(names, "', '"));
    }

    void Say(const std::string& sentence) const {
        if (form_ == ProgressForm::kQuiet) return;
        const std::string line = form_ == ProgressForm::kJson
                                     ? nlohmann::ordered_json{{"event", "watch"}, {"note", sentence}}.dump(
                                           -1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                                     : "umbrant: " + sentence;
        std::fputs((line + "\n").c_str(), stderr);
    }

    RenderOptions options_;
    const WatchHooks hooks_;
    const bool isSequence_;
    const ProgressForm form_;
    FolderEvents events_;
    WatchedFiles watched_;
    Seconds scanTime_{0};
    RepeatedRender again_;
    bool isComplete_ = false;  ///< after a failure it is not known which images are old
};

}  // namespace

Result<ExitCode> WatchRender(const RenderOptions& asked, const WatchHooks& hooks) {
    TRY(CheckWatch(asked));
    const RenderOptions options = TRY(WholeOptions(asked));
    const auto many = TRY(MeansSequence(options));
    if (many) {
        TRY(CheckNoTime(options));
    }
    return RenderWatch(options, many, hooks).Run();
}

}  // namespace umbrant::host
