// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Vertex buffers, and pointing a program's vertex inputs at a table of them. The calling thread's context must be
// current; GL errors are printed to standard output.

#include <cstdint>
#include <string>
#include <unordered_map>

#include "platform/gl_api.h"

/// Where a vertex input reads from.
struct AttributeType {
    GLuint buffer;   ///< the vertex buffer
    int32_t size;    ///< components per vertex
    GLenum type;     ///< component type
    int32_t stride;  ///< bytes from vertex to vertex; 0: tightly packed
};

/// The last two arguments are ignored.
AttributeType make_attrib(unsigned buffer, int size, unsigned type, int stride, unsigned long ignored1,
                          unsigned ignored2);

/// A tightly packed attribute.
AttributeType CreateAttribute(GLuint& buffer, unsigned size, unsigned type);

/// A new buffer of `size` bytes from `data`, left bound to `target`. The name is returned also after a GL error.
GLuint CreateBuffer(const void* data, unsigned size, unsigned target, unsigned usage);

/// Deletes a buffer; 0 is ignored.
void DeleteBuffer(GLuint buffer);

/// Points every active vertex input of `program` that `attributes` names at its buffer, in the vertex array `vao`;
/// prints those it does not name. Leaves no vertex array and no array buffer bound.
void SetProgramAttributes(GLuint vao, GLuint program, const std::unordered_map<std::string, AttributeType>& attributes);

/// Deletes every entry's buffer and empties the table.
void ClearAttribBuffers(std::unordered_map<std::string, AttributeType>& attributes);
