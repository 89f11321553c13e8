// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Splits a frame's time into stages, from outside: the session asks its hook before every call that the effect makes to
// the host, and those calls come in a known order around the GPU's work. Nothing in the effect or the host knows of it.

#include <array>
#include <cstddef>
#include <string_view>
#include <thread>

#include "hostapi/errors.h"

enum class FrameStage {
    kUpload,       ///< the layer's alpha into a texture
    kPasses,       ///< the render targets, every draw, until the GPU has finished
    kReadBack,     ///< the sum into a world
    kComposite,    ///< transfers, copies, fills and iterations of the host outside of upload and read-back
    kBookkeeping,  ///< pre-render, worlds made and freed, parameters, suites, the session itself
};
inline constexpr std::size_t kStageCount = 5;
const char* StageName(FrameStage stage);

/// One frame at a time. The frame is drawn on the thread that calls Begin; calls from other threads do not count.
class FrameClock {
 public:
    void Begin();
    /// The session's hook: `call` is about to happen. Always 0.
    PF_Err Note(std::string_view call);
    /// Ends the frame.
    void End();

    /// Seconds of all frames since the last Reset.
    double Seconds(FrameStage stage) const { return seconds_[static_cast<std::size_t>(stage)]; }
    /// Seconds of all stages but the passes.
    double SecondsBesidePasses() const;
    double SecondsOfAll() const;
    /// Processor seconds of the whole process in all stages but the passes; unlike the others, they hardly depend on
    /// what else the machine does.
    double CpuSecondsBesidePasses() const { return cpuBesidePasses_; }
    void Reset() {
        seconds_ = {};
        cpuBesidePasses_ = 0;
    }

 private:
    void Enter(FrameStage stage);

    std::array<double, kStageCount> seconds_{};
    std::thread::id thread_{};
    FrameStage stage_ = FrameStage::kBookkeeping;
    double since_ = 0;
    double cpuSince_ = 0;
    double cpuBesidePasses_ = 0;
    bool uploaded_ = false;  ///< the layer is on the GPU: the next handle is the read-back's
    bool inTransfer_ = false;
};
