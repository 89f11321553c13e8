// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/progress.h"

#include <cstdio>
#include <utility>

#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

const char* StageWords(RenderStage stage) {
    switch (stage) {
        case RenderStage::kUpload:
            return "the layer is passed to the effect";
        case RenderStage::kDraw:
            return "the effect draws";
        case RenderStage::kReadBack:
            return "the shadow is read back";
        case RenderStage::kComposite:
            return "layer, texture and shadow are composited";
    }
    return "";
}

}  // namespace

std::string ActivityText(const EffectSession& session) {
    const auto activity = session.Now();
    if (!activity) return "between two commands";
    if (activity->command == PF_Cmd_SMART_PRE_RENDER) return "the effect computes its result rectangle";
    if (activity->command == PF_Cmd_SMART_RENDER) return StageWords(activity->stage);
    return "the effect is working";
}

void StatusLine::Start(Seconds first, Seconds next, std::function<void()> renew) {
    auto work = [this, first, next, renew = std::move(renew)] {
        std::unique_lock lock(mutex_);
        Seconds wait = first;
        while (!ending_.wait_for(lock, wait, [this] { return ended_; })) {
            renew();
            wait = next;
        }
    };
    thread_ = StartThread(std::move(work));
}

void StatusLine::Stop() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    ending_.notify_all();
    thread_.reset();
    const std::lock_guard lock(mutex_);
    Erase();
}

void StatusLine::Show(const std::string& line) {
    std::fputs(("\r" + line + "\x1b[K").c_str(), stderr);
    std::fflush(stderr);
    isShown_ = true;
}

void StatusLine::Print(const std::string& text) {
    Erase();
    std::fputs(text.c_str(), stderr);
    std::fflush(stderr);
}

void StatusLine::Erase() {
    if (!isShown_) return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    isShown_ = false;
}

}  // namespace umbrant::host
