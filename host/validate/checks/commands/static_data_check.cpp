// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/commands/static_data_check.h"

#include <fmt/format.h>
#include <pthread.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/module_file.h"

namespace umbrant::host {

namespace {

constexpr int kLayerSide = 24;

/// The module's writable data at one moment. The bytes between its objects are read too, which a sanitizer would report
/// and a library's copy would be checked for. In this spelling the attribute is gcc's and clang's.
__attribute__((no_sanitize("address", "thread"))) std::vector<std::vector<std::byte>> CopyOf(
    const std::vector<WritableRange>& ranges) {
    std::vector<std::vector<std::byte>> copies;
    for (const WritableRange& range : ranges) {
        std::byte* to = copies.emplace_back(range.size).data();
        const volatile std::byte* from = range.begin;
        for (std::size_t i = 0; i < range.size; ++i) to[i] = from[i];
    }
    return copies;
}

/// The object that a byte belongs to; without a name in a stripped file.
ModuleFile::Object ObjectAt(const ModuleFile& file, std::size_t address) {
    for (const ModuleFile::Object& object : file.writable) {
        if (address >= object.address && address < object.address + object.size) return object;
    }
    return {"", address, 0};
}

/// Whether an object is too small to hold the lock that guards it. What is larger, a pool of threads for one, may well
/// be written by renders, each in its turn.
bool IsBare(const ModuleFile::Object& object) {
    return !object.name.empty() && object.size < sizeof(pthread_mutex_t);
}

/// Draws a small picture several times.
void DrawTimes(CheckFixture& fixture, int width, int times, const std::string& what) {
    const World layer = TestPicture(width, kLayerSide, Depth::k8);
    FrameRequest request;
    request.layer = &layer;
    request.canvas = Canvas::kLayer;
    for (int i = 0; i < times; ++i) fixture.Draw(request, what);
}

}  // namespace

void KeepsItsStaticsStill(CheckRun& run) {
    const auto file = ModuleFile::Read(run.Options().module);
    CheckFixture fixture(run);
    fixture.Cheapen();
    const std::vector<WritableRange> ranges = WritableRangesOf(fixture.Loaded().File());
    if (!file || ranges.empty()) run.Skip("the module's writable data cannot be found");
    DrawTimes(fixture, kLayerSide, 2, "a first frame");
    const auto before = CopyOf(ranges);
    DrawTimes(fixture, kLayerSide + 5, 3, "a later frame");
    const auto after = CopyOf(ranges);

    std::map<std::size_t, ModuleFile::Object> changed;
    double bytes = 0;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        bytes += static_cast<double>(ranges[i].size);
        for (std::size_t at = 0; at < ranges[i].size; ++at) {
            if (before[i][at] == after[i][at]) continue;
            const ModuleFile::Object object = ObjectAt(*file, ranges[i].address + at);
            changed[object.address] = object;
        }
    }
    run.Count("bytes of static writable data", bytes);
    const bool threaded = fixture.Session().OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
    for (const auto& [address, object] : changed) {
        const std::string text =
            fmt::format("a render changes static data: {}",
                        object.name.empty() ? fmt::format("the byte at {:#x}", address) : object.name);
        threaded&& IsBare(object) ? run.Fail(text + ", although renders are announced for several threads")
                                  : run.Warn(text);
    }
}

}  // namespace umbrant::host
