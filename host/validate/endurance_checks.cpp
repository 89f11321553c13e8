// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 10: a thousand frames, how their time grows, and a long random session.

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <mutex>
#include <regex>
#include <thread>

#include "host/validate/panel_events.h"
#include "host/validate/process_memory.h"
#include "host/validate/processes.h"
#include "host/validate/stage.h"

namespace {

using Clock = std::chrono::steady_clock;

FrameRequest RequestOf(const World& layer) {
    FrameRequest request;
    request.layer = &layer;
    return request;
}

void KeepsItsSize(Trial& trial) {
    constexpr int kFrames = 1000, kWarmUp = 100;
    constexpr double kMostPerFrame = 1024;
    Stage stage(trial);
    stage.Cheapen();
    const World layers[] = {TestPicture(48, 40, Depth::k8), TestPicture(64, 20, Depth::k32),
                            TestPicture(17, 90, Depth::k8)};
    long before = 0;
    int files = 0;
    for (int i = 0; i < kFrames && !trial.Failed(); ++i) {
        if (i == kWarmUp) {
            before = ResidentBytes();
            files = OpenFiles();
        }
        stage.Draw(RequestOf(layers[i % 3]), fmt::format("frame {}", i));
        stage.Log().Clear();
    }
    const double slope = static_cast<double>(ResidentBytes() - before) / (kFrames - kWarmUp);
    trial.Count("bytes a frame", std::max(0.0, slope));
    if (slope > kMostPerFrame) {
        trial.Fail(fmt::format("{} frames after the first {} grow the process by {:.0f} bytes each", kFrames - kWarmUp,
                               kWarmUp, slope));
    }
    if (OpenFiles() > files) trial.Fail(fmt::format("{} frames left {} files open", kFrames, OpenFiles() - files));
    stage.NoteMisbehaviour("");
}

/// The time that one frame takes at best, in milliseconds; the slowest is compared with the usual one.
double FrameTime(Trial& trial, Stage& stage, const World& layer, const ParamSet& params, const std::string& what) {
    constexpr int kTimes = 9;
    FrameRequest request = RequestOf(layer);
    request.params = &params;
    stage.Draw(request, what);
    std::vector<double> times;
    for (int i = 0; i < kTimes; ++i) {
        const auto begin = Clock::now();
        stage.Draw(request, what);
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
    }
    std::sort(times.begin(), times.end());
    constexpr double kNoticeable = 20;
    if (times.back() > 5 * times[kTimes / 2] && times.back() > kNoticeable) {
        trial.Warn(
            fmt::format("{}: one frame took {:.1f} ms, the usual {:.1f} ms", what, times.back(), times[kTimes / 2]));
    }
    // The quickest: whatever else the machine does only ever adds.
    return times.front();
}

/// Fails when time grows faster than the amount of work; short times say nothing.
void JudgeGrowth(Trial& trial, const std::string& what, double amount, double small, double large) {
    constexpr double kTolerance = 1.3, kShort = 3;
    if (large < kShort || large <= amount * small * kTolerance) return;
    trial.Fail(fmt::format("{}: {:.0f} times the work takes {:.1f} times the time ({:.1f} ms, then {:.1f} ms)", what,
                           amount, large / small, small, large));
}

void TakesTimeInProportion(Trial& trial) {
    Stage stage(trial);
    stage.Cheapen();
    const ParamSet cheap = stage.Session().Params();
    // Only rows that say so count work; what others do to time is theirs.
    const std::regex counts("samples|steps|iterations|copies|passes", std::regex::icase);
    for (const int index : SettableRows(cheap)) {
        const ParamRow& row = cheap.Row(index);
        const auto range = RangeOf(row);
        if (!range || range->validMax < 32 || !std::regex_search(row.name, counts)) continue;
        const World layer = TestPicture(160, 160, Depth::k8);
        const auto time = [&](double value) {
            ParamSet params = cheap;
            SetNumber(params.RawRow(index), value);
            return FrameTime(trial, stage, layer, params, fmt::format("{} at {}", RowName(row), value));
        };
        JudgeGrowth(trial, fmt::format("{} from 8 to 32", RowName(row)), 4, time(8), time(32));
        trial.Count("rows timed");
    }
    const World small = TestPicture(256, 256, Depth::k8);
    const World large = TestPicture(512, 512, Depth::k8);
    const double smallTime = FrameTime(trial, stage, small, cheap, "a layer of 256 x 256");
    const double largeTime = FrameTime(trial, stage, large, cheap, "a layer of 512 x 512");
    JudgeGrowth(trial, "the layer's area", 4, smallTime, largeTime);
    trial.Count("ms for 512 x 512", largeTime);
}

/// One thread's random life.
void Wander(Trial& trial, Stage& stage, std::uint64_t seed, Clock::time_point end, std::atomic<long>& frames) {
    TrialOptions options = trial.Options();
    options.seed = seed;
    Trial dice(options);
    const std::vector<Variant> variants = StyleVariants(stage.Session().Params(), 8);
    while (Clock::now() < end) {
        const Depth depth = dice.Draw(0, 1) ? Depth::k8 : Depth::k32;
        const World layer = TestPicture(dice.Draw(0, 80), dice.Draw(0, 80), depth);
        ParamSet params = stage.Session().Params();
        variants[static_cast<std::size_t>(dice.Draw(0, static_cast<int>(variants.size()) - 1))].apply(params);
        for (const int index : SettableRows(params)) {
            ParamRow& row = params.RawRow(index);
            const auto range = RangeOf(row);
            if (range) SetNumber(row, dice.DrawReal(LowNumber(*range, 0), LowNumber(*range, 8)));
        }
        FrameRequest request = RequestOf(layer);
        request.params = &params;
        if (dice.Draw(0, 3) == 0) request.texture = &layer;
        if (dice.Draw(0, 3) == 0) request.canvas = Canvas::kLayer;
        if (dice.Draw(0, 4) == 0) {
            static_cast<void>(bool(stage.Session().PreRender(request)));
            continue;
        }
        const auto frame = stage.Session().Render(request);
        ++frames;
        if (!frame) {
            // The trial is the check's, and threads share it: the first word counts.
            static std::mutex mutex;
            const std::lock_guard lock(mutex);
            trial.Fail(fmt::format("after {} frames: {}", frames.load(), frame.Error().sentence));
            return;
        }
    }
}

void Soaks(Trial& trial) {
    RunParts(trial,
             {{"a long session",
               [](Trial& part) {
                   Stage stage(part);
                   stage.Cheapen();
                   const auto begin = Clock::now();
                   const auto end = begin + std::chrono::seconds(part.Options().soakSeconds);
                   std::atomic<long> frames{0};
                   std::vector<std::thread> threads;
                   for (int i = 0; i < std::max(2, ProcessorCount()); ++i) {
                       threads.emplace_back([&, i] {
                           Wander(part, stage, part.Options().seed * 1000 + static_cast<std::uint64_t>(i), end, frames);
                       });
                   }
                   long before = 0;
                   long framesBefore = 0;
                   while (Clock::now() < end) {
                       stage.TouchPanel();
                       SendDrawEvents(part, stage);
                       stage.Log().Clear();
                       if (before == 0 && Clock::now() - begin > (end - begin) / 4) {
                           before = ResidentBytes();
                           framesBefore = frames;
                       }
                       std::this_thread::sleep_for(std::chrono::milliseconds(5));
                   }
                   for (std::thread& thread : threads) thread.join();
                   const long counted = frames - framesBefore;
                   const double slope =
                       counted > 0 ? static_cast<double>(ResidentBytes() - before) / static_cast<double>(counted) : 0;
                   part.Count("renders in the soak", static_cast<double>(frames.load()));
                   part.Count("bytes a frame in the soak", std::max(0.0, slope));
                   constexpr double kMost = 4096;
                   constexpr long kEnough = 500;
                   if (counted > kEnough && slope > kMost) {
                       part.Fail(fmt::format("the process grows by {:.0f} bytes a frame", slope));
                   }
                   if (const auto ended = stage.Session().End(); !ended) part.Fail(ended.Error().sentence);
                   stage.NoteMisbehaviour("after the soak");
               },
               {},
               trial.Options().soakSeconds * 1000}});
}

}  // namespace

std::vector<Check> EnduranceChecks() {
    return {
        {"10.1", "a thousand frames do not make it larger", KeepsItsSize, Needs::kQuiet, 10},
        {"10.2", "the time of a frame grows no faster than its work", TakesTimeInProportion, Needs::kQuiet, 10},
        {"10.5", "it holds out in a long session on all threads", Soaks, Needs::kSoakTime, 2},
    };
}
