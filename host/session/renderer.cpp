// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/session/renderer.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

namespace umbrant::host {

namespace {

constexpr char kVariable[] = "UMBRANT_RENDERER";
constexpr char kOpenGLVariable[] = "UMBRANT_GL";

/// The whole text of the popup with this name; a bar in the text had made several items of it.
std::string RowText(const ParamSet& params, std::string_view name) {
    for (const ParamRow& row : params.Rows()) {
        if (row.def.param_type != PF_Param_POPUP || row.name != name) continue;
        std::string text;
        for (std::size_t i = 0; i < row.items.size(); ++i) text += (i == 0 ? "" : "|") + row.items[i];
        return text;
    }
    return "";
}

/// Fails when the variable that chooses the OpenGL has a value that the effect would refuse.
Result<Done> CheckOpenGLVariable() {
    const char* value = std::getenv(kOpenGLVariable);
    if (!value || *value == '\0' || value == std::string_view("software") || value == std::string_view("hardware")) {
        return Done{};
    }
    return Failure{ErrorKind::kUsage,
                   fmt::format("{} is \"{}\"; it must be \"software\" or \"hardware\"", kOpenGLVariable, value)};
}

}  // namespace

bool GpuStrings::HasContext() const {
    return glVersion != "NULL";
}

GpuStrings ReadGpuStrings(const ParamSet& params) {
    return {RowText(params, "Vendor"), RowText(params, "Renderer"), RowText(params, "OpenGL Version"),
            RowText(params, "Shader Version")};
}

bool IsSoftware(const GpuStrings& gpu) {
    // Names that Mesa's drivers without hardware give themselves.
    for (const std::string_view name : {"llvmpipe", "softpipe", "swrast", "SWR", "Software Rasterizer"}) {
        if (gpu.renderer.find(name) != std::string::npos) return true;
    }
    return false;
}

Result<RendererPreference> ReadRendererPreference(const std::string& option) {
    TRY(CheckOpenGLVariable());
    std::string preference = option;
    const char* variable = std::getenv(kVariable);
    const bool fromEnvironment = preference.empty() && variable && *variable != '\0';
    if (fromEnvironment) preference = variable;
    if (preference == "gl") return RendererPreference::kOpenGL;
    if (preference == "cpu") return RendererPreference::kProcessor;
    if (fromEnvironment && preference != "auto") {
        return Failure{ErrorKind::kUsage,
                       fmt::format("{} is \"{}\"; it must be \"gl\", \"cpu\" or \"auto\"", kVariable, preference)};
    }
    return RendererPreference::kAuto;
}

bool HasGraphicsDevice(const std::filesystem::path& devices) {
    // The kernel's own drivers, NVIDIA's, and those of Windows' subsystem and of two makers of mobile chips.
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(devices / "dri", error)) {
        if (entry.path().filename().string().rfind("renderD", 0) == 0) return true;
    }
    for (const char* name : {"nvidiactl", "dxg", "mali0", "kgsl-3d0"}) {
        if (std::filesystem::exists(devices / name, error)) return true;
    }
    return false;
}

UMBRANT_Renderer RendererOfSetUp(RendererPreference preference, bool hasDevice) {
    if (preference == RendererPreference::kProcessor) return UMBRANT_Renderer_PROCESSOR;
    return preference == RendererPreference::kAuto && !hasDevice ? UMBRANT_Renderer_PROCESSOR : UMBRANT_Renderer_OPENGL;
}

RendererDecision DecideRenderer(RendererPreference preference, const GpuStrings& gpu, bool hasDevice) {
    if (preference == RendererPreference::kOpenGL) return {false, "requested"};
    if (preference == RendererPreference::kProcessor) return {true, "requested"};
    if (!gpu.HasContext()) return {true, "OpenGL is not available"};
    if (gpu.renderer.empty()) return {false, "the effect names no renderer"};
    if (!hasDevice) return {true, "no graphics device was found"};
    if (IsSoftware(gpu)) return {true, fmt::format("OpenGL is software, {}", gpu.renderer)};
    return {false, fmt::format("OpenGL is hardware, {}", gpu.renderer)};
}

std::string RendererText(const RendererDecision& decision) {
    return fmt::format("drawn by {}: {}", decision.processor ? "the CPU renderer" : "the GPU renderer", decision.why);
}

Failure ExplainWithoutOpenGL(const Failure& failure, const ParamSet& params) {
    if (failure.kind != ErrorKind::kEffect || ReadGpuStrings(params).HasContext()) return failure;
    return {failure.kind,
            fmt::format("no OpenGL context could be made, so the effect cannot draw: {}", failure.sentence)};
}

}  // namespace umbrant::host
