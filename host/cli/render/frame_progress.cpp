// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/frame_progress.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "host/cli/render/progress.h"
#include "host/cli/render/sequence_report.h"
#include "host/cli/results.h"
#include "host/render/canvas_choice.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;
using Kind = FrameOutcome::Kind;

constexpr auto kBarInterval = std::chrono::milliseconds(200);
constexpr int kUsualWidth = 80;

double Since(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

int TerminalWidth() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

const char* StepName(FrameStep step) {
    switch (step) {
        case FrameStep::kRead:
            return "read";
        case FrameStep::kDraw:
            return "draw";
        case FrameStep::kWrite:
            return "write";
    }
    return "";
}

const char* StepWords(FrameStep step) {
    switch (step) {
        case FrameStep::kRead:
            return "reading";
        case FrameStep::kDraw:
            return "drawing";
        case FrameStep::kWrite:
            return "writing";
    }
    return "";
}

std::string Dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

double TimeOf(const FrameOutcome& outcome) {
    return outcome.readTime + outcome.drawTime + outcome.writeTime;
}

}  // namespace

FrameProgress::FrameProgress(const FramePlan& plan, const ProgressOptions& options, bool printsPaths)
    : plan_(plan),
      form_(options.form),
      interval_(options.seconds),
      printsPaths_(printsPaths),
      outcomes_(plan.frames.size()) {
    TellStart(options.canvas);
    if (form_ == ProgressForm::kBar) {
        line_.Start(kBarInterval, kBarInterval, [this] { DrawBar(); });
    } else if (form_ != ProgressForm::kQuiet && interval_.count() > 0) {
        line_.Start(interval_, interval_, [this] { TellCurrent(); });
    }
}

void FrameProgress::TellStart(const std::optional<CanvasFacts>& canvas) {
    if (form_ == ProgressForm::kJson) {
        Json start{{"event", "start"}, {"frames", plan_.frames.size()}};
        if (canvas) start.update(CanvasJson(*canvas));
        Print(Dump(start));
    } else if (form_ != ProgressForm::kQuiet && canvas) {
        Print(fmt::format("umbrant: {} frame{} of {} x {}, --canvas {}", plan_.frames.size(),
                          plan_.frames.size() == 1 ? "" : "s", canvas->width, canvas->height,
                          CanvasText(canvas->layer)));
    }
}

double FrameProgress::Seconds() const {
    return Since(begin_);
}

void FrameProgress::Note(const std::string& sentence) {
    const std::lock_guard lock(line_.Mutex());
    if (form_ == ProgressForm::kJson) {
        Print(Dump({{"event", "note"}, {"note", sentence}}));
    } else if (form_ != ProgressForm::kQuiet) {
        Print("umbrant: " + sentence);
    }
}

void FrameProgress::Begins(std::size_t frame, FrameStep step, const EffectSession* session) {
    const std::lock_guard lock(line_.Mutex());
    const auto known = current_.find(frame);
    if (known == current_.end()) {
        current_.emplace(frame, Current{step, session, Clock::now()});
    } else {
        known->second.step = step;
        known->second.session = session;
    }
}

void FrameProgress::Ends(std::size_t frame, const FrameOutcome& outcome) {
    const std::lock_guard lock(line_.Mutex());
    current_.erase(frame);
    outcomes_[frame] = outcome;
    std::size_t& total = outcome.kind == Kind::kDrawn     ? totals_.drawn
                         : outcome.kind == Kind::kExists  ? totals_.existing
                         : outcome.kind == Kind::kSkipped ? totals_.skipped
                                                          : totals_.failed;
    ++total;
    TellReady();
}

/// Reports the frames that have ended and come next in the plan.
void FrameProgress::TellReady() {
    for (; told_ < outcomes_.size() && outcomes_[told_]; ++told_) TellFrame(told_);
}

/// What is odd about a frame, in whole sentences.
std::vector<std::string> FrameProgress::NotesOf(std::size_t index) {
    const PlannedFrame& frame = plan_.frames[index];
    const FrameOutcome& outcome = *outcomes_[index];
    std::vector<std::string> notes;
    if (outcome.kind == Kind::kSkipped) {
        notes.push_back(fmt::format("frame {} is left out: there is no {}", frame.number, frame.missing));
    }
    if (outcome.bits == 0) return notes;
    const auto named = [](const std::string& path, const std::optional<int>& clipFrame) {
        return clipFrame ? fmt::format("frame {} of '{}'", *clipFrame, path) : fmt::format("'{}'", path);
    };
    if (frame.heldInput) {
        notes.push_back(fmt::format("frame {} shows {}", frame.number, named(frame.input, frame.inputClipFrame)));
    }
    if (frame.heldTexture) {
        notes.push_back(
            fmt::format("frame {} has the texture {}", frame.number, named(frame.texture, frame.textureClipFrame)));
    }
    if (!outcome.message.empty()) {
        notes.push_back(fmt::format("frame {}: the effect says: {}", frame.number, outcome.message));
    }
    if (previous_) {
        const FrameOutcome& before = *outcomes_[*previous_];
        const FrameNumber& number = plan_.frames[*previous_].number;
        if (before.layerWidth != outcome.layerWidth || before.layerHeight != outcome.layerHeight) {
            notes.push_back(fmt::format("frame {} is {} x {}, but frame {} is {} x {}", frame.number,
                                        outcome.layerWidth, outcome.layerHeight, number, before.layerWidth,
                                        before.layerHeight));
        }
        if (before.bits != outcome.bits) {
            notes.push_back(fmt::format("frame {} has {} bits per channel, but frame {} has {}", frame.number,
                                        outcome.bits, number, before.bits));
        }
    }
    previous_ = index;
    return notes;
}

void FrameProgress::TellFrame(std::size_t index) {
    const PlannedFrame& frame = plan_.frames[index];
    const FrameOutcome& outcome = *outcomes_[index];
    if (outcome.kind == Kind::kDrawn && printsPaths_) {
        // Both may be one terminal.
        line_.Erase();
        PrintResult(frame.output + "\n");
        // A reader can use this image while the next ones are drawn. A failure to write is reported at the end.
        FlushResults();
    }
    if (outcome.failure) {
        if (failures_.Count() == 0) totals_.failure.kind = outcome.failure->kind;
        failures_.Add(plan_, frame, *outcome.failure);
    }
    const std::vector<std::string> notes = NotesOf(index);
    if (form_ == ProgressForm::kJson) {
        Json json{{"event", "frame"}};
        json.update(FrameJson(frame, outcome));
        if (!notes.empty()) json["notes"] = notes;
        json["done"] = index + 1;
        json["frames"] = plan_.frames.size();
        if (const auto left = SecondsLeft(totals_, plan_.frames.size(), Seconds())) json["secondsLeft"] = *left;
        Print(Dump(json));
        return;
    }
    if (form_ != ProgressForm::kQuiet) {
        for (const std::string& note : notes) Print("umbrant: " + note);
    }
    if (outcome.kind == Kind::kFailed) {
        if (keepsGoing_) Print(fmt::format("umbrant: frame {}: {}", frame.number, outcome.failure->sentence));
        return;
    }
    if (form_ != ProgressForm::kLines || outcome.kind == Kind::kSkipped) return;
    const std::string place = fmt::format("{} of {}", index + 1, plan_.frames.size());
    Print(outcome.kind == Kind::kExists
              ? fmt::format("umbrant: frame {} ({}): '{}' already exists", frame.number, place, frame.output)
              : fmt::format("umbrant: frame {} ({}): {}", frame.number, place, DurationText(TimeOf(outcome) / 1000)));
}

/// The frame that is under way and comes first, and what it is at.
std::string FrameProgress::CurrentText() const {
    if (current_.empty()) return "";
    const auto& [index, current] = *current_.begin();
    return fmt::format("frame {}: {}", plan_.frames[index].number,
                       current.session ? ActivityText(*current.session) : StepWords(current.step));
}

/// Reports a frame that takes long while it is drawn.
void FrameProgress::TellCurrent() {
    if (current_.empty()) return;
    const auto& [index, current] = *current_.begin();
    const double seconds = Since(current.begin);
    if (seconds < interval_.count()) return;
    const FrameNumber& number = plan_.frames[index].number;
    if (form_ == ProgressForm::kJson) {
        Print(Dump({{"event", "stage"},
                    {"frame", NumberJson(number)},
                    {"stage", StepName(current.step)},
                    {"seconds", seconds}}));
    } else {
        Print(fmt::format("umbrant: {}, for {} now", CurrentText(), DurationText(seconds)));
    }
}

void FrameProgress::Print(const std::string& line) {
    line_.Print(line + "\n");
}

void FrameProgress::DrawBar() {
    std::string current = CurrentText();
    if (!current_.empty()) {
        const double seconds = Since(current_.begin()->second.begin);
        if (seconds >= 2) current += ", " + DurationText(seconds);
    }
    const std::string line = BarText(totals_, plan_.frames.size(), Seconds(), current, TerminalWidth());
    line_.Show(line);
}

FrameTotals FrameProgress::Finish() {
    line_.Stop();
    const std::lock_guard lock(line_.Mutex());
    // After a failure there are gaps.
    for (; told_ < outcomes_.size(); ++told_) {
        if (outcomes_[told_]) TellFrame(told_);
    }
    totals_.failure.sentence = failures_.Text();
    const double seconds = Seconds();
    if (form_ == ProgressForm::kJson) {
        Json json{{"event", "end"}};
        json.update(TotalsJson(totals_, plan_.frames.size(), seconds));
        if (failures_.Count() > 0) json["failures"] = failures_.Json();
        Print(Dump(json));
    } else if (form_ != ProgressForm::kQuiet) {
        std::string line = plan_.frames.empty() ? "there are no frames in this chunk" : CountText(totals_);
        if (totals_.drawn > 0) {
            line += fmt::format(" in {}, {:.2f} frames/s", DurationText(seconds),
                                static_cast<double>(totals_.drawn) / std::max(seconds, 1e-3));
        }
        const std::size_t unreached = plan_.frames.size() - totals_.Ended();
        if (unreached > 0) line += fmt::format("; {} of {} frames were not reached", unreached, plan_.frames.size());
        Print("umbrant: " + line);
    }
    // Otherwise they end the program, which prints them.
    if (keepsGoing_ && failures_.Count() > 0 && form_ != ProgressForm::kJson) Print("umbrant: " + failures_.List());
    return totals_;
}

}  // namespace umbrant::host
