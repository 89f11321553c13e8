// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/pod.h"

namespace {

void DrawInstanced(const std::array<unsigned, DRAW_SLOTS>& draw) {
    const auto count = static_cast<GLsizei>(draw[DRAW_COUNT]);
    const auto instances = static_cast<GLsizei>(draw[DRAW_INSTANCES]);
    if (draw[DRAW_ELEMENT_BUFFER] != 0) {
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, draw[DRAW_ELEMENT_BUFFER]);
        glDrawElementsInstanced(draw[DRAW_MODE], count, GL_UNSIGNED_INT, nullptr, instances);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    } else {
        glDrawArraysInstanced(draw[DRAW_MODE], static_cast<GLint>(draw[DRAW_FIRST]), count, instances);
    }
}

}  // namespace

void RenderGeneric(Vec4i viewport, const std::array<unsigned, DRAW_SLOTS>& draw, GLuint vao, GLuint framebuffer,
                   GLuint program) {
    if (draw[DRAW_CULL_FACE] != 0) {
        glEnable(GL_CULL_FACE);
        glCullFace(draw[DRAW_CULL_FACE]);
    }
    if (draw[DRAW_RESTART_INDEX] != 0) {
        glEnable(GL_PRIMITIVE_RESTART);
        glPrimitiveRestartIndex(draw[DRAW_RESTART_INDEX]);
    }

    glViewport(viewport.x, viewport.y, viewport.z, viewport.w);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glUseProgram(program);
    glBindVertexArray(vao);

    const bool feedback = draw[DRAW_FEEDBACK_BUFFER] != 0;
    if (feedback) {
        glEnable(GL_RASTERIZER_DISCARD);
        glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, draw[DRAW_FEEDBACK_BUFFER]);
        glBeginTransformFeedback(draw[DRAW_FEEDBACK_MODE]);
    }
    DrawInstanced(draw);
    if (feedback) {
        glEndTransformFeedback();
        glDisable(GL_RASTERIZER_DISCARD);
        glBindTransformFeedback(GL_TRANSFORM_FEEDBACK, 0);
    }

    if (draw[DRAW_RESTART_INDEX] != 0) glDisable(GL_PRIMITIVE_RESTART);
    if (draw[DRAW_CULL_FACE] != 0) glDisable(GL_CULL_FACE);
    glBindVertexArray(0);
    glUseProgram(0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void RenderPOD(const GLuint& framebuffer, Vec4i viewport, GL_Pod& pod) {
    const GLuint program = pod.draw[DRAW_PROGRAM];
    GLuint vao = 0;
    glGenVertexArrays(1, &vao);
    SetProgramAttributes(vao, program, pod.attributes);
    SetProgramUniforms(program, pod.uniforms);
    RenderGeneric(viewport, pod.draw, vao, framebuffer, program);
    glDeleteVertexArrays(1, &vao);
}

void UploadToTexture(GLuint texture, void* pixels, unsigned long rowBytes, int depth, int w, int h) {
    const bool isFloat = depth == 32;
    const unsigned long pixelBytes = isFloat ? 16 : 4;
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(rowBytes / pixelBytes));
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, w, h, GL_RGBA, isFloat ? GL_FLOAT : GL_UNSIGNED_BYTE, pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}
