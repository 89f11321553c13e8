// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/start_threads.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

namespace umbrant::host {

namespace {

std::atomic<void (*)(const ThreadShortage&)> reporter{nullptr};

constexpr int kAttempts = 10;
constexpr std::chrono::milliseconds kPause{10};

}  // namespace

void ReportThreadShortage(void (*report)(const ThreadShortage&)) {
    reporter = report;
}

void NoteThreadShortage(const ThreadShortage& shortage) noexcept {
    // Taken out, so that one report is made.
    if (const auto report = reporter.exchange(nullptr)) {
        try {
            report(shortage);
        } catch (...) {
            // Where there is no memory for its text either, the work goes on without it.
        }
    }
}

std::optional<std::jthread> StartThread(std::function<void()> work) {
    for (int attempt = 1;; ++attempt) {
        try {
            return std::jthread(work);
        } catch (const std::system_error&) {
            // A thread that was joined a moment ago may still be counted.
            if (attempt == kAttempts) return std::nullopt;
        } catch (const std::bad_alloc&) {
            return std::nullopt;
        }
        std::this_thread::sleep_for(kPause);
    }
}

bool SaysNoThread(const std::string& message) {
    return message.find(std::generic_category().message(EAGAIN)) != std::string::npos;
}

std::vector<std::jthread> StartThreads(int count, std::function<void(int index)> work) {
    const auto shared = std::make_shared<const std::function<void(int)>>(std::move(work));
    // Before the first one runs: it may wait for what the caller does next, and then a failure here would wait for it.
    std::vector<std::function<void()>> each;
    for (int i = 0; i < count; ++i) each.emplace_back([shared, i] { (*shared)(i); });
    std::vector<std::jthread> threads;
    threads.reserve(each.size());
    for (std::function<void()>& one : each) {
        auto thread = StartThread(std::move(one));
        if (!thread) break;
        threads.push_back(std::move(*thread));
    }
    return threads;
}

}  // namespace umbrant::host
