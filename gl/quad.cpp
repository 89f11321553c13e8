// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/quad.h"

#include <cstddef>

using namespace umbrant::effect;

namespace {

constexpr GLsizei kStride = kQuadVertexFloats * sizeof(float);
constexpr GLsizeiptr kQuadBytes = GLsizeiptr{kQuadVertices} * kStride;
static_assert(kQuadBytes == 80);

const void* ByteOffset(size_t bytes) {
    return reinterpret_cast<const void*>(bytes);
}

void UploadQuad(GLuint* vao, GLuint* vbo, const float* vertices) {
    glGenVertexArrays(1, vao);
    glBindVertexArray(*vao);
    glGenBuffers(1, vbo);
    glBindBuffer(GL_ARRAY_BUFFER, *vbo);
    glBufferData(GL_ARRAY_BUFFER, kQuadBytes, vertices, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, kStride, ByteOffset(0));
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, kStride, ByteOffset(3 * sizeof(float)));
    glBindVertexArray(0);
}

}  // namespace

void InitQuad(GLuint* vao, GLuint* vbo) {
    const float vertices[kQuadVertices * kQuadVertexFloats] = {
        -1, -1, 0, 0, 0,  //
        -1, 1,  0, 0, 1,  //
        1,  1,  0, 1, 1,  //
        1,  -1, 0, 1, 0,  //
    };
    UploadQuad(vao, vbo, vertices);
}

void InitQuadRatio(GLuint* vao, GLuint* vbo, float w, float h) {
    const float right = 2 * w - 1;
    const float top = 2 * h - 1;
    const float vertices[kQuadVertices * kQuadVertexFloats] = {
        -1,    -1,  0, 0, 0,  //
        right, -1,  0, 1, 0,  //
        right, top, 0, 1, 1,  //
        -1,    top, 0, 0, 1,  //
    };
    UploadQuad(vao, vbo, vertices);
}

void DeleteQuad(GLuint* vao, GLuint* vbo) {
    if (*vao != 0) glDeleteVertexArrays(1, vao);
    if (*vbo != 0) glDeleteBuffers(1, vbo);
}
