// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 8: many threads, short threads, threads that stay too long, and rows in any order.

#include <fmt/format.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

#include "host/compositing/row_pool.h"
#include "host/process/start_threads.h"
#include "host/suites/pf/iterate.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

using Clock = std::chrono::steady_clock;

/// The values that one instance of many draws with.
ParamSet ParamsOf(const ParamSet& base, const std::vector<Variant>& variants, int instance) {
    ParamSet params = base;
    variants[static_cast<std::size_t>(instance) % variants.size()].apply(params);
    int moved = 0;
    for (const int index : SettableRows(params)) {
        ParamRow& row = params.RawRow(index);
        const auto range = RangeOf(row);
        if (!range || KindOf(row.def) == ParamKind::kAngle) continue;
        SetNumberUnchecked(row, LowNumber(*range, 1 + (instance * 3 + moved++) % 6));
    }
    return params;
}

void DrawsOnManyThreads(CheckRun& run) {
    constexpr int kInstances = 16;
    constexpr int kFrames = 6;
    CheckFixture fixture(run);
    fixture.Cheapen();
    EffectSession& session = fixture.Session();
    const std::vector<Variant> variants = StyleVariants(session.Params(), 3);
    const World layers[] = {TestPicture(40, 30, Depth::k8), TestPicture(31, 44, Depth::k32)};
    std::vector<ParamSet> params;
    std::vector<std::uint64_t> alone;
    const auto draw = [&](int instance) {
        FrameRequest request = RequestOf(layers[instance % 2]);
        request.params = &params[static_cast<std::size_t>(instance)];
        request.time = instance;
        const auto frame = session.Render(request);
        return frame ? DigestOf(frame->output) : 0;
    };
    for (int i = 0; i < kInstances; ++i) params.push_back(ParamsOf(session.Params(), variants, i));
    for (int i = 0; i < kInstances; ++i) alone.push_back(draw(i));

    for (const int count : {1, 2, 4, 8, 16}) {
        std::atomic<int> different{0};
        std::atomic<int> atWork{count};
        const std::vector<std::jthread> threads = StartThreads(count, [&](int t) {
            for (int i = 0; i < kFrames; ++i) {
                const int instance = (t + i * 5) % kInstances;
                if (draw(instance) != alone[static_cast<std::size_t>(instance)]) ++different;
            }
            --atWork;
        });
        const int started = static_cast<int>(threads.size());
        atWork -= count - started;
        // The panel goes on meanwhile, on the host's own thread.
        while (atWork > 0) {
            fixture.TouchPanel();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        if (started < count) run.Skip(fmt::format("the system allows {} of {} threads", started, count));
        run.Count("frames", count * kFrames);
        if (different > 0) {
            run.Fail(fmt::format("on {} threads {} of {} frames differ from those of one thread", count,
                                 different.load(), count * kFrames));
        }
    }
    fixture.EndBalanced("after many threads");
}

void StandsShortThreads(CheckRun& run) {
    constexpr int kThreads = 2000, kWarmUp = 100, kLeast = 200;
    constexpr double kAllowance = 16 * 1024;
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layer = TestPicture(16, 16, Depth::k8);
    const auto deadline =
        Clock::now() + std::chrono::milliseconds(static_cast<long>(run.Options().timeoutMilliseconds) * 3);
    long before = 0;
    int files = 0, drawn = 0;
    for (; drawn < kThreads && (drawn < kLeast || Clock::now() < deadline) && !run.Failed(); ++drawn) {
        if (drawn == kWarmUp) {
            before = ResidentBytes();
            files = OpenFiles();
        }
        std::thread([&] { fixture.Draw(RequestOf(layer), "a thread's only frame"); }).join();
        fixture.Log().Clear();
    }
    const double perThread = static_cast<double>(ResidentBytes() - before) / std::max(1, drawn - kWarmUp);
    run.Count("threads", drawn);
    run.Count("bytes kept a thread", std::max(0.0, perThread));
    if (perThread > kAllowance) {
        run.Fail(fmt::format("each thread that rendered once and ended leaves {:.0f} bytes behind", perThread));
    }
    if (OpenFiles() > files + 2) run.Fail(fmt::format("{} ended threads left files open", drawn));
}

void OutlivesItsThreads(CheckRun& run) {
    const auto part = [](bool unload) {
        return [unload](CheckRun& inside) {
            auto fixture = std::make_optional<CheckFixture>(inside);
            fixture->Cheapen();
            const World layer = TestPicture(24, 24, Depth::k8);
            std::mutex mutex;
            std::condition_variable_any changed;
            bool isDrawn = false;
            std::jthread thread([&](const std::stop_token& end) {
                fixture->Draw(RequestOf(layer), "a frame");
                std::unique_lock lock(mutex);
                isDrawn = true;
                changed.notify_all();
                changed.wait(lock, end, [] { return false; });
            });
            {
                std::unique_lock lock(mutex);
                changed.wait(lock, [&] { return isDrawn; });
            }
            fixture->EndBalanced("with a render thread still alive");
            if (unload) fixture.reset();
            thread.request_stop();
            thread.join();
            // What the effect may have left running has a moment to fail.
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        };
    };
    RunSubChecks(run, {{"with a render thread that ends after set-down", part(false)},
                       {"with a render thread that ends after the module was unloaded", part(true)}});
}

/// All that survives a process as a number: 53 bits of the digest.
double DigestFigure(std::uint64_t digest) {
    return static_cast<double>(digest >> 11);
}

void IgnoresRowOrder(CheckRun& run) {
    const auto digests = [&](int threads, RowOrder order) {
        return RunSubCheck(run, {fmt::format("with {} row threads", threads), [=](CheckRun& part) {
                                     SetRowThreads(threads);
                                     SetRowOrder(order);
                                     CheckFixture fixture(part);
                                     fixture.Cheapen();
                                     for (const Depth depth : {Depth::k8, Depth::k32}) {
                                         const World layer = TestPicture(61, 47, depth);
                                         for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
                                             ParamSet params = fixture.Session().Params();
                                             variant.apply(params);
                                             FrameRequest request = RequestOf(layer);
                                             request.params = &params;
                                             const auto frame = fixture.Draw(request, variant.name);
                                             const auto name =
                                                 fmt::format("{} at {} bits", variant.name, static_cast<int>(depth));
                                             part.Count(name, DigestFigure(frame ? DigestOf(frame->output) : 0));
                                         }
                                     }
                                 }});
    };
    const CheckResult usual = digests(1, RowOrder::kNeighbours);
    for (const Finding& finding : usual.findings) run.Note(finding);
    for (const int threads : {1, 2, 4, 7}) {
        const CheckResult other = digests(threads, RowOrder::kScattered);
        for (const Finding& finding : other.findings) run.Note(finding);
        for (const auto& [name, digest] : usual.figures) {
            const auto found = other.figures.find(name);
            if (name == "frames" || (found != other.figures.end() && found->second == digest)) continue;
            run.Fail(fmt::format("{}: the frame differs when rows come scattered on {} threads", name, threads));
        }
    }
}

}  // namespace

std::vector<Check> ThreadChecks() {
    return {
        {"8.1", "frames on many threads, with panel commands at the same time, are those of one thread",
         DrawsOnManyThreads, Needs::kNothing, 4},
        {"8.3", "thousands of threads that render once and end leave nothing behind", StandsShortThreads,
         Needs::kOpenGl, 4},
        {"8.4", "render threads may end after set-down and after the module was unloaded", OutlivesItsThreads,
         Needs::kOpenGl},
        {"8.6", "rows may be iterated in any order on any number of threads", IgnoresRowOrder, Needs::kNothing, 2},
    };
}

}  // namespace umbrant::host
