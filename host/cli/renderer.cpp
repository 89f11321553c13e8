// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/renderer.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

namespace {

constexpr char kVariable[] = "UMBRANT_RENDERER";

}  // namespace

bool IsSoftware(const GpuStrings& gpu) {
    // Names that Mesa's drivers without hardware give themselves.
    for (const std::string_view name : {"llvmpipe", "softpipe", "swrast", "SWR", "Software Rasterizer"}) {
        if (gpu.renderer.find(name) != std::string::npos) return true;
    }
    return false;
}

Result<RendererWish> ReadRendererWish(const std::string& option) {
    std::string wish = option;
    const char* variable = std::getenv(kVariable);
    const bool fromEnvironment = wish.empty() && variable && *variable != '\0';
    if (fromEnvironment) wish = variable;
    if (wish == "gl") return RendererWish::kOpenGL;
    if (wish == "cpu") return RendererWish::kProcessor;
    if (fromEnvironment) {
        return Failure{ExitCode::kUsage, fmt::format("{} is \"{}\"; it must be \"gl\" or \"cpu\"", kVariable, wish)};
    }
    return RendererWish::kAuto;
}

RendererDecision DecideRenderer(RendererWish wish, const GpuStrings& gpu) {
    if (wish == RendererWish::kOpenGL) return {false, "it was asked for"};
    if (wish == RendererWish::kProcessor) return {true, "it was asked for"};
    if (!gpu.HasContext()) return {true, "there is no OpenGL"};
    if (gpu.renderer.empty()) return {false, "the effect names no renderer"};
    if (IsSoftware(gpu)) return {true, fmt::format("OpenGL is software, {}", gpu.renderer)};
    return {false, fmt::format("OpenGL is hardware, {}", gpu.renderer)};
}

std::string RendererText(const RendererDecision& decision) {
    return fmt::format("drawn by {}: {}", decision.processor ? "the processor" : "OpenGL", decision.why);
}

void TellRenderer(const RendererDecision& decision) {
    ::setenv(kVariable, decision.Name(), 1);
}
