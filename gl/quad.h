// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The quads that every shadow pass draws: `glDrawArrays(GL_TRIANGLE_FAN, 0, 4)` with attribute 0 the position (x, y, z)
// and attribute 1 the texture coordinate (u, v). The calling thread's context must be current.

#include "platform/gl_api.h"

namespace umbrant::effect {

/// Floats per vertex (x, y, z, u, v), and vertices per quad.
inline constexpr int kQuadVertexFloats = 5;
inline constexpr int kQuadVertices = 4;

}  // namespace umbrant::effect

/// Makes the quad that covers the viewport, (-1, -1) to (1, 1), texture (0, 0) to (1, 1). Its vertices run clockwise,
/// so face culling must stay off. Leaves no vertex array bound, the array buffer bound.
void InitQuad(GLuint* vao, GLuint* vbo);

/// Makes a quad that covers the fraction `w` x `h` (0..1) of the viewport from its lower left and still shows the whole
/// texture. Its vertices run counter-clockwise.
void InitQuadRatio(GLuint* vao, GLuint* vbo, float w, float h);

/// Deletes the non-zero ones of `*vao` and `*vbo`; the names are not reset.
void DeleteQuad(GLuint* vao, GLuint* vbo);
