// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 10: a thousand frames, how their time grows, and a long random session.

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>

#include "host/process/start_threads.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"
#include "host/validate/runner/timing.h"

namespace umbrant::host {

namespace {

/// How many times the time limit the checks of this file may take.
constexpr int kPatience = 10;

using Clock = std::chrono::steady_clock;

void KeepsItsSize(CheckRun& run) {
    constexpr int kFrames = 1000, kWarmUp = 100;
    constexpr double kMostPerFrame = 1024;
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layers[] = {TestPicture(48, 40, Depth::k8), TestPicture(64, 20, Depth::k32),
                            TestPicture(17, 90, Depth::k8)};
    long before = 0;
    int files = 0;
    for (int i = 0; i < kFrames && !run.Failed(); ++i) {
        if (i == kWarmUp) {
            before = ResidentBytes();
            files = OpenFiles();
        }
        fixture.Draw(RequestOf(layers[i % 3]), fmt::format("frame {}", i));
        fixture.Log().Clear();
    }
    const double slope = static_cast<double>(ResidentBytes() - before) / (kFrames - kWarmUp);
    run.Count("bytes a frame", std::max(0.0, slope));
    if (slope > kMostPerFrame) {
        run.Fail(fmt::format("{} frames after the first {} grow the process by {:.0f} bytes each", kFrames - kWarmUp,
                             kWarmUp, slope));
    }
    if (OpenFiles() > files) run.Fail(fmt::format("{} frames left {} files open", kFrames, OpenFiles() - files));
    fixture.NoteMisbehaviour("");
}

/// The cost of frames with changing amounts of work, in milliseconds of processor time each, which other programs on
/// the machine hardly change. What a graphics card computes is not in it.
class FrameCost {
 public:
    FrameCost(CheckRun& run, CheckFixture& fixture) : trial_(run), stage_(fixture) {}

    /// The mean of as many frames as it takes to be well above the clock's resolution.
    double Measure(const World& layer, const ParamSet& params, const std::string& what) {
        constexpr double kLong = 10;
        FrameRequest request = RequestOf(layer);
        request.params = &params;
        double sum = 0;
        int frames = 0;
        do {
            const double before = ProcessorMilliseconds();
            stage_.Draw(request, what);
            const double time = ProcessorMilliseconds() - before;
            stage_.Log().Clear();
            single_[what].push_back(time);
            sum += time;
            ++frames;
        } while (sum < kLong && !trial_.Failed() && ElapsedMilliseconds() < Deadline());
        return sum / frames;
    }

    /// When measuring must come to an end: with half of the check's time.
    double Deadline() const { return deadline_; }

    /// Warns of single frames that cost much more than their like.
    void WarnOfSlowFrames() {
        constexpr double kMuch = 5, kNoticeable = 20;
        for (auto& [what, times] : single_) {
            std::sort(times.begin(), times.end());
            const double usual = times[times.size() / 2];
            if (times.back() <= kMuch * usual || times.back() <= kNoticeable) continue;
            trial_.Warn(fmt::format("{}: one frame took {:.1f} ms of processor time, the usual frame {:.1f} ms", what,
                                    times.back(), usual));
        }
    }

 private:
    CheckRun& trial_;
    CheckFixture& stage_;
    std::map<std::string, std::vector<double>> single_;
    const double deadline_ = ElapsedMilliseconds() + kPatience * trial_.Options().timeoutMilliseconds / 2.0;
};

/// Notes a cost that outgrows its work as a finding, and one that cannot be decided in `unclear`.
void NoteGrowth(CheckRun& run, const std::string& what, double amount, const Growth& growth,
                std::vector<std::string>& unclear) {
    const std::string range = growth.most > 0 ? fmt::format("{:.1f} to {:.1f}", growth.least, growth.most) : "unknown";
    const std::string text = fmt::format("{}: {:.0f} times the work takes {} times the time", what, amount, range);
    if (growth.proportional == Claim::kFails) run.Fail(text);
    if (growth.proportional == Claim::kUnclear) unclear.push_back(text);
}

/// Only rows that say so count work; what others do to time is theirs.
bool CountsWork(std::string name) {
    for (char& letter : name) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    const auto words = {"samples", "steps", "iterations", "copies", "passes"};
    return std::any_of(words.begin(), words.end(),
                       [&](const char* word) { return name.find(word) != std::string::npos; });
}

void TakesTimeInProportion(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const ParamSet cheap = fixture.Session().Params();
    FrameCost cost(run, fixture);
    std::vector<std::string> unclear;
    const std::vector<double> amounts{8, 16, 32};
    const World middle = TestPicture(160, 160, Depth::k8);
    for (const int index : SettableRows(cheap)) {
        const ParamRow& row = cheap.Row(index);
        const auto range = RangeOf(row);
        if (!range || range->validMax < amounts.back() || !CountsWork(row.name)) continue;
        const auto costOf = [&](std::size_t k) {
            ParamSet params = cheap;
            SetNumberUnchecked(params.RawRow(index), amounts[k]);
            return cost.Measure(middle, params, fmt::format("{} at {}", RowName(row), amounts[k]));
        };
        const Growth growth = MeasureGrowth(amounts, costOf, cost.Deadline());
        NoteGrowth(run, fmt::format("{} from 8 to 32", RowName(row)), amounts.back() / amounts.front(), growth,
                   unclear);
        run.Count("rows timed");
    }
    const World layers[] = {TestPicture(128, 128, Depth::k8), TestPicture(256, 256, Depth::k8),
                            TestPicture(512, 512, Depth::k8)};
    double largest = 0;
    const auto costOf = [&](std::size_t k) {
        const std::string what = fmt::format("a layer of {0} x {0}", layers[k].Width());
        const double time = cost.Measure(layers[k], cheap, what);
        if (k == 2) largest = largest == 0 ? time : std::min(largest, time);
        return time;
    };
    const Growth growth = MeasureGrowth({1, 4, 16}, costOf, cost.Deadline());
    NoteGrowth(run, "the layer's area", 16, growth, unclear);
    run.Count("ms for 512 x 512", largest);
    cost.WarnOfSlowFrames();
    if (!unclear.empty()) run.Skip(NotMeasured(fmt::format("{}", fmt::join(unclear, "; "))));
}

/// One thread's random life.
void Wander(CheckRun& run, CheckFixture& fixture, std::uint64_t seed, Clock::time_point end,
            std::atomic<long>& frames) {
    CheckRunOptions options = run.Options();
    options.seed = seed;
    CheckRun dice(options);
    const std::vector<Variant> variants = StyleVariants(fixture.Session().Params(), 8);
    while (Clock::now() < end) {
        const Depth depth = dice.Draw(0, 1) ? Depth::k8 : Depth::k32;
        const World layer = TestPicture(dice.Draw(0, 80), dice.Draw(0, 80), depth);
        ParamSet params = fixture.Session().Params();
        variants[static_cast<std::size_t>(dice.Draw(0, static_cast<int>(variants.size()) - 1))].apply(params);
        for (const int index : SettableRows(params)) {
            ParamRow& row = params.RawRow(index);
            const auto range = RangeOf(row);
            if (range) SetNumberUnchecked(row, dice.DrawReal(LowNumber(*range, 0), LowNumber(*range, 8)));
        }
        FrameRequest request = RequestOf(layer);
        request.params = &params;
        if (dice.Draw(0, 3) == 0) request.texture = &layer;
        if (dice.Draw(0, 3) == 0) request.canvas = Canvas::kLayer;
        if (dice.Draw(0, 4) == 0) {
            static_cast<void>(bool(fixture.Session().PreRender(request)));
            continue;
        }
        const auto frame = fixture.Session().Render(request);
        ++frames;
        if (!frame) {
            // The run is the check's, and threads share it: the first word counts.
            static std::mutex mutex;
            const std::lock_guard lock(mutex);
            run.Fail(fmt::format("after {} frames: {}", frames.load(), frame.error().sentence));
            return;
        }
    }
}

void Soaks(CheckRun& run) {
    RunSubChecks(
        run, {{"a long session",
               [](CheckRun& part) {
                   CheckFixture fixture(part);
                   fixture.Cheapen();
                   const auto begin = Clock::now();
                   const auto end = begin + std::chrono::seconds(part.Options().soakSeconds);
                   std::atomic<long> frames{0};
                   std::vector<std::jthread> threads = StartThreads(std::max(2, ProcessorCount()), [&](int i) {
                       Wander(part, fixture, part.Options().seed * 1000 + static_cast<std::uint64_t>(i), end, frames);
                   });
                   if (threads.empty()) part.Skip("the system allows no thread");
                   long before = 0;
                   long framesBefore = 0;
                   while (Clock::now() < end) {
                       fixture.TouchPanel();
                       SendDrawEvents(part, fixture);
                       fixture.Log().Clear();
                       if (before == 0 && Clock::now() - begin > (end - begin) / 4) {
                           before = ResidentBytes();
                           framesBefore = frames;
                       }
                       std::this_thread::sleep_for(std::chrono::milliseconds(5));
                   }
                   threads.clear();
                   const long counted = frames - framesBefore;
                   const double slope =
                       counted > 0 ? static_cast<double>(ResidentBytes() - before) / static_cast<double>(counted) : 0;
                   part.Count("renders in the long session", static_cast<double>(frames.load()));
                   part.Count("bytes a frame in the long session", std::max(0.0, slope));
                   constexpr double kMost = 4096;
                   constexpr long kEnough = 500;
                   if (counted > kEnough && slope > kMost) {
                       part.Fail(fmt::format("the process grows by {:.0f} bytes a frame", slope));
                   }
                   if (const auto ended = fixture.Session().End(); !ended) part.Fail(ended.error().sentence);
                   fixture.NoteMisbehaviour("after the long session");
               },
               {},
               run.Options().soakSeconds * 1000}});
}

}  // namespace

std::vector<Check> EnduranceChecks() {
    return {
        {"10.1", "a thousand frames do not increase its memory", KeepsItsSize, Needs::kQuiet, kPatience},
        {"10.2", "the time of a frame grows no faster than its work", TakesTimeInProportion, Needs::kQuiet, kPatience},
        {"10.5", "it survives a long session on all threads", Soaks, Needs::kSoakTime, 2},
    };
}

}  // namespace umbrant::host
