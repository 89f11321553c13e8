// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which renderer draws: OpenGL or the CPU renderer. Where only the CPU renderer can be used the session has that
// decision before set-up, and the effect loads no driver. Otherwise the host decides after set-up, when the effect's
// parameters name the OpenGL that it found, and sets the decision in the session. The effect asks for it through the
// suite of hostapi/suites/umbrant_host_suite.h. In a host without that suite the environment variable UMBRANT_RENDERER
// decides.

#include <filesystem>
#include <string>

#include "host/parameters/param_set.h"
#include "host/result.h"
#include "hostapi/suites/umbrant_host_suite.h"

namespace umbrant::host {

/// The four rows in which the effect reports its OpenGL, or what else draws.
struct GpuStrings {
    std::string vendor;
    std::string renderer;
    std::string glVersion;
    std::string shaderVersion;

    /// False when the effect could not make a context: it then says "NULL" in all rows.
    bool HasContext() const;
};

GpuStrings ReadGpuStrings(const ParamSet& params);

/// What was asked for.
enum class RendererPreference { kAuto, kOpenGL, kProcessor };

/// The preference by `option` ("auto", "gl", "cpu"); without one by the environment, where an empty variable is none.
/// Another value of UMBRANT_RENDERER in the environment is wrong usage, and so is one of UMBRANT_GL that is neither
/// "software" nor "hardware".
Result<RendererPreference> ReadRendererPreference(const std::string& option);

/// Whether the system has a device that OpenGL could draw with, by the names that Linux's drivers give theirs in
/// `devices`. Opens nothing.
bool HasGraphicsDevice(const std::filesystem::path& devices = "/dev");

/// What a session is set up for: `kAuto` needs to see OpenGL only where a device could draw it.
UMBRANT_Renderer RendererOfSetUp(RendererPreference preference, bool hasDevice = HasGraphicsDevice());

/// Whether the effect's OpenGL is software, drawn by the processor.
bool IsSoftware(const GpuStrings& gpu);

/// What draws, and the reason as half a sentence.
struct RendererDecision {
    bool processor = false;
    std::string why;

    const char* Name() const { return processor ? "cpu" : "gl"; }
    /// For EffectSession::SetRenderer.
    UMBRANT_Renderer Request() const { return processor ? UMBRANT_Renderer_PROCESSOR : UMBRANT_Renderer_OPENGL; }
};

/// `kAuto` takes OpenGL where hardware draws it, and otherwise the CPU renderer.
RendererDecision DecideRenderer(RendererPreference preference, const GpuStrings& gpu,
                                bool hasDevice = HasGraphicsDevice());

/// "drawn by the CPU renderer: there is no OpenGL".
std::string RendererText(const RendererDecision& decision);

/// The effect's failure, said as what it is when there is no OpenGL to draw with. `params` are its session's.
Failure ExplainWithoutOpenGL(const Failure& failure, const ParamSet& params);

}  // namespace umbrant::host
