// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A draw described by data: parameters, uniforms and vertex inputs. Part of the toolkit; the effect draws its quads
// itself. The calling thread's context must be current.

#include <array>
#include <string>
#include <unordered_map>

#include "gl/attributes.h"
#include "gl/uniforms.h"

/// Slots of the draw parameters. What 0 means is noted with each.
enum DrawSlot {
    DRAW_MODE = 0,             ///< primitive mode
    DRAW_FIRST = 1,            ///< first vertex of a draw without indices
    DRAW_COUNT = 2,            ///< vertices or indices
    DRAW_UNUSED = 3,           ///< not read
    DRAW_ELEMENT_BUFFER = 4,   ///< GL_UNSIGNED_INT indices from offset 0; 0: no indices
    DRAW_FEEDBACK_BUFFER = 5,  ///< transform feedback into index 0; 0: none
    DRAW_INSTANCES = 6,        ///< instances; 0: nothing is drawn
    DRAW_FEEDBACK_MODE = 7,    ///< primitive mode of the transform feedback
    DRAW_RESTART_INDEX = 8,    ///< primitive restart index; 0: no restart
    DRAW_CULL_FACE = 9,        ///< GL_FRONT, GL_BACK, ...; 0: no culling
    DRAW_PROGRAM = 10,         ///< program name, read by `RenderPOD`
    DRAW_SLOTS = 11
};

/// One draw.
struct GL_Pod {
    std::array<unsigned, DRAW_SLOTS> draw;
    std::unordered_map<std::string, uniform_t> uniforms;
    std::unordered_map<std::string, AttributeType> attributes;
};

/// Draws into `framebuffer` with the viewport (x, y, width, height). Leaves nothing bound and no capability enabled.
void RenderGeneric(Vec4i viewport, const std::array<unsigned, DRAW_SLOTS>& draw, GLuint vao, GLuint framebuffer,
                   GLuint program);

/// Sets the pod's vertex inputs and uniforms on its program and draws it, with a vertex array of its own.
void RenderPOD(const GLuint& framebuffer, Vec4i viewport, GL_Pod& pod);

/// Replaces the region (0, 0, w, h) of a texture by RGBA pixels.
/// @param depth  bits per channel of `pixels`: 8 (bytes) or 32 (floats); nothing else may be passed.
/// @param rowBytes  bytes from row to row, a whole number of pixels.
void UploadToTexture(GLuint texture, void* pixels, unsigned long rowBytes, int depth, int w, int h);
