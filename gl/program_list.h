// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A program of any number of shaders, from a list. Part of the toolkit; the effect builds its programs with `Program`.
// The calling thread's context must be current; failures are printed to standard output.

#include <cstdint>

#include "platform/gl_api.h"

/// Builds and links a program.
/// @param list  shader type, pointer to the NUL-terminated source, shader type, source, ..., 0. Types:
/// GL_VERTEX_SHADER,
///              GL_FRAGMENT_SHADER, GL_GEOMETRY_SHADER. A list of the 0 alone makes an empty program.
/// @param preamble  NUL-terminated text compiled before every source.
/// @return the program, or 0 when it did not link. A shader that does not compile is left out.
GLuint CreateProgram(const uint64_t* list, const char* preamble);

/// Deletes `*program` and sets it to 0; a null pointer or a 0 is ignored.
void DeleteProgram(GLuint* program);
