// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "host/compositing/start_threads.h"

namespace {

const char* StageWords(RenderStage stage) {
    switch (stage) {
        case RenderStage::kUpload:
            return "the layer goes to the effect";
        case RenderStage::kDraw:
            return "the effect draws";
        case RenderStage::kReadBack:
            return "the shadow comes back";
        case RenderStage::kComposite:
            return "layer, texture and shadow are put together";
    }
    return "";
}

}  // namespace

std::string ActivityText(const EffectSession& session) {
    const auto activity = session.Now();
    if (!activity) return "between two commands";
    if (activity->command == PF_Cmd_SMART_PRE_RENDER) return "the effect is asked how much it covers";
    if (activity->command == PF_Cmd_SMART_RENDER) return StageWords(activity->stage);
    return "the effect is at work";
}

Progress::Progress(double seconds)
    : isTerminal_(isatty(STDERR_FILENO) != 0), stage_([] { return std::string("beginning"); }) {
    first_ = next_ = std::chrono::duration<double>(seconds);
    if (seconds < 0) {
        first_ = std::chrono::seconds(isTerminal_ ? 2 : 10);
        next_ = std::chrono::seconds(isTerminal_ ? 1 : 10);
    }
    // Without a thread there is no progress to be seen, and everything else goes on.
    if (seconds != 0) thread_ = StartThread([this] { Tell(); }).value_or(std::thread());
}

Progress::~Progress() {
    Stop();
}

void Progress::Stop() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
    Erase();
}

void Progress::Erase() {
    if (told_ && isTerminal_) std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    told_ = false;
}

void Progress::Print(const std::string& text) {
    const std::lock_guard lock(mutex_);
    Erase();
    std::fputs(text.c_str(), stderr);
}

void Progress::Say(std::string stage) {
    Follow([words = std::move(stage)] { return words; });
}

void Progress::Follow(std::function<std::string()> stage) {
    const std::lock_guard lock(mutex_);
    stage_ = std::move(stage);
}

void Progress::Tell() {
    std::unique_lock lock(mutex_);
    auto wait = first_;
    while (!changed_.wait_for(lock, wait, [this] { return ended_; })) {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin_;
        const std::string line =
            fmt::format("umbrant: {:.{}f} s, {}", passed.count(), next_.count() < 1 ? 1 : 0, stage_());
        std::fputs((isTerminal_ ? "\r" + line + "\x1b[K" : line + "\n").c_str(), stderr);
        std::fflush(stderr);
        told_ = true;
        wait = next_;
    }
}
