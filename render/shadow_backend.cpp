// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The table of renderers.

#include "render/shadow_backend.h"

#include "entry/global_data.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "pixel/return_message.h"
#include "platform/fork.h"
#include "platform/gl_api.h"
#include "render/passes/passes.h"
#include "render/processor/processor_passes.h"
#include "render/processor/processor_path.h"

namespace umbrant::effect {

namespace {

constexpr char kLostByFork[] =
    "UM2 Error: this process was forked from one that uses OpenGL, which does not work in it. Fork before the effect "
    "is set up, start a new program, or draw with the processor";
constexpr char kSetUpForProcessor[] =
    "UM2 Error: the effect was set up to draw with the processor, so OpenGL is not there. Ask for OpenGL before it is "
    "set up, or draw with the processor";

bool IsWithoutOpenGL(const PF_InData* in_data, AEGP_SuiteHandler& suites) {
    if (!in_data->global_data) return false;
    const LockedGlobalData locked(suites.HandleSuite1(), in_data->global_data);
    return locked.Get() && locked.Get()->withoutOpenGL;
}

PF_Err PrepareOpenGL(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites) {
    if (OpenGLLostByFork()) {
        WriteReturnMessage(kLostByFork, out_data);
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
    InitThreadLocalRenderData(in_data, out_data);
    if (local_render_data && local_render_data->context) return PF_Err_NONE;
    if (IsWithoutOpenGL(in_data, suites)) WriteReturnMessage(kSetUpForProcessor, out_data);
    return PF_Err_INTERNAL_STRUCT_DAMAGED;
}

std::optional<std::string> DriverName() {
    const auto* name = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return name ? std::optional<std::string>(name) : std::nullopt;
}

// No thread state, no OpenGL.
PF_Err PrepareProcessor(PF_InData*, PF_OutData*, AEGP_SuiteHandler&) {
    return HasProcessorPath() ? PF_Err_NONE : PF_Err_INTERNAL_STRUCT_DAMAGED;
}

constexpr ShadowBackend kBackends[] = {
    {RendererChoice::kOpenGL, PrepareOpenGL, DriverName, {RenderNormalPasses, RenderInnerShadow, RenderRadialPasses}},
    {RendererChoice::kProcessor,
     PrepareProcessor,
     [] { return std::optional(ProcessorName()); },
     {RenderNormalOnProcessor, RenderInnerOnProcessor, RenderRadialOnProcessor}},
};

}  // namespace

ShadowFunction ShadowBackend::DrawerOf(int32_t shadowType) const {
    if (shadowType < SHADOW_NORMAL || shadowType > SHADOW_RADIAL) return nullptr;
    return draw[static_cast<size_t>(shadowType - SHADOW_NORMAL)];
}

const ShadowBackend* BackendOf(RendererChoice choice) {
    for (const ShadowBackend& backend : kBackends) {
        if (backend.renderer == choice) return &backend;
    }
    return nullptr;
}

}  // namespace umbrant::effect
