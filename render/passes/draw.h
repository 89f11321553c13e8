// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The last step of a pass: uniforms by name on a given program, and the quad. Nothing here changes other GL state.

#include "platform/gl_api.h"
#include "render/pass_plan.h"
#include "render/passes/work_extent.h"
#include "render/render_settings.h"

namespace umbrant::effect {

inline constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// Sets a float uniform; a name that the program does not declare is ignored by GL.
inline void SendFloat(unsigned program, const char* name, double value) {
    glUniform1f(glGetUniformLocation(program, name), static_cast<float>(value));
}

inline void SendInt(unsigned program, const char* name, int value) {
    glUniform1i(glGetUniformLocation(program, name), value);
}

/// Sets "xform" from row-major data: points are row vectors, so the translation is in the last row.
inline void SendMatrix(unsigned program, const float* rows) {
    glUniformMatrix4fv(glGetUniformLocation(program, "xform"), 1, GL_TRUE, rows);
}

/// Sets "xform" so that the quad is placed as planned.
inline void SendPlacement(unsigned program, const PlacePlan& place) {
    const auto& [x, y] = place;
    const float xform[16] = {x.scale, 0, 0, 0, 0, y.scale, 0, 0, 0, 0, 1, 0, x.translation, y.translation, 0, 1};
    SendMatrix(program, xform);
}

/// Leaves a blur in the settings' working values, for the next sender.
inline void KeepBlur(const BlurPlan& blur, myParams* params) {
    params->blurAmount = blur.amount;
    params->blurSteps = blur.steps;
    params->blurStride = blur.stride;
}

/// Draws the four vertices of the bound quad.
inline void DrawQuad() {
    glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
}

/// Draws what of the quad lies in `region` of the target; clears before and after it reach all of the target.
inline void DrawQuadIn(const Region& region) {
    if (WorksEverywhere()) {
        DrawQuad();
        return;
    }
    glEnable(GL_SCISSOR_TEST);
    glScissor(region.x.begin, region.y.begin, region.x.end - region.x.begin, region.y.end - region.y.begin);
    DrawQuad();
    glDisable(GL_SCISSOR_TEST);
}

/// Lets every draw add to its target as s (1 - d) + d, a union of alphas that never exceeds 1.
inline void EnableScreenBlend() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE_MINUS_DST_COLOR, GL_ONE);
}

/// Whether the following draws add to their target. Over a cleared target it makes no difference, and costs a read of
/// it.
inline void SetBlending(bool on) {
    if (on || WorksEverywhere()) {
        glEnable(GL_BLEND);
    } else {
        glDisable(GL_BLEND);
    }
}

}  // namespace umbrant::effect
