// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "bench/frame_clock.h"

#include <chrono>
#include <ctime>
#include <numeric>

namespace {

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double CpuNow() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

bool IsHostPixelWork(std::string_view call) {
    for (const std::string_view name : {".transfer_rect", ".iterate", ".copy", ".fill"}) {
        if (call.ends_with(name)) return true;
    }
    return false;
}

}  // namespace

const char* StageName(FrameStage stage) {
    constexpr const char* kNames[] = {"upload", "passes", "read_back", "composite", "bookkeeping"};
    return kNames[static_cast<std::size_t>(stage)];
}

void FrameClock::Begin() {
    thread_ = std::this_thread::get_id();
    stage_ = FrameStage::kBookkeeping;
    uploaded_ = false;
    inTransfer_ = false;
    since_ = Now();
    cpuSince_ = CpuNow();
}

void FrameClock::Enter(FrameStage stage) {
    const double now = Now();
    seconds_[static_cast<std::size_t>(stage_)] += now - since_;
    since_ = now;
    const double cpu = CpuNow();
    if (stage_ != FrameStage::kPasses) cpuBesidePasses_ += cpu - cpuSince_;
    cpuSince_ = cpu;
    stage_ = stage;
}

// Upload and read-back each allocate one handle before they begin and give it back when they are done. The passes lie
// between them and call nothing, apart from suites; the inner shadow makes its second world before it reads back.
PF_Err FrameClock::Note(std::string_view call) {
    if (std::this_thread::get_id() != thread_) return PF_Err_NONE;
    if (call.ends_with(".host_new_handle")) {
        inTransfer_ = true;
        Enter(uploaded_ ? FrameStage::kReadBack : FrameStage::kUpload);
    } else if (call.ends_with(".host_dispose_handle")) {
        inTransfer_ = false;
        Enter(uploaded_ ? FrameStage::kBookkeeping : FrameStage::kPasses);
        uploaded_ = true;
    } else if (!inTransfer_ && IsHostPixelWork(call)) {
        Enter(FrameStage::kComposite);
    } else if (!inTransfer_ && !call.starts_with("AcquireSuite")) {
        Enter(FrameStage::kBookkeeping);
    }
    return PF_Err_NONE;
}

void FrameClock::End() {
    Enter(FrameStage::kBookkeeping);
    thread_ = {};
}

double FrameClock::SecondsOfAll() const {
    return std::accumulate(seconds_.begin(), seconds_.end(), 0.0);
}

double FrameClock::SecondsBesidePasses() const {
    return SecondsOfAll() - Seconds(FrameStage::kPasses);
}
