// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// State, uniforms, data and draws: mostly just written down.

#include <cstring>
#include <initializer_list>

#include "platform/fake/gl_fake.h"
#include "platform/fake/gl_fake_log.h"

using fake::Enum;
using fake::Gl;
using fake::LogGl;

namespace {

void NoteUniform(GLint location, std::initializer_list<double> values) {
    for (const fake::ActiveVariable& variable : Gl().uniforms) {
        if (variable.location == location) Gl().uniformValues[variable.name] = values;
    }
    for (const auto& [name, invented] : Gl().inventedLocations) {
        if (invented == location) Gl().uniformValues[name] = values;
    }
}

size_t PixelBytes(GLenum format, GLenum type) {
    const size_t channels = format == GL_RED ? 1 : 4;
    return channels * (type == GL_UNSIGNED_BYTE ? 1 : type == GL_UNSIGNED_SHORT ? 2 : 4);
}

void NoteUpload(const void* data, size_t bytes) {
    if (!data) return;
    const auto* first = static_cast<const uint8_t*>(data);
    Gl().uploads.emplace_back(first, first + bytes);
}

}  // namespace

GLenum APIENTRY glGetError(void) {
    fake::NoteContext();
    if (Gl().errors.empty()) return GL_NO_ERROR;
    const GLenum error = Gl().errors.front();
    Gl().errors.pop_front();
    return error;
}

const GLubyte* APIENTRY glGetString(GLenum name) {
    LogGl("glGetString", Enum{name});
    const auto found = Gl().strings.find(name);
    return found == Gl().strings.end() ? nullptr : reinterpret_cast<const GLubyte*>(found->second.c_str());
}

void APIENTRY glUniform1ui(GLint location, GLuint x) {
    LogGl("glUniform1ui", location, x);
    NoteUniform(location, {static_cast<double>(x)});
}
void APIENTRY glUniform1i(GLint location, GLint x) {
    LogGl("glUniform1i", location, x);
    NoteUniform(location, {static_cast<double>(x)});
}
void APIENTRY glUniform2i(GLint location, GLint x, GLint y) {
    LogGl("glUniform2i", location, x, y);
}
void APIENTRY glUniform3i(GLint location, GLint x, GLint y, GLint z) {
    LogGl("glUniform3i", location, x, y, z);
}
void APIENTRY glUniform4i(GLint location, GLint x, GLint y, GLint z, GLint w) {
    LogGl("glUniform4i", location, x, y, z, w);
}
void APIENTRY glUniform1f(GLint location, GLfloat x) {
    LogGl("glUniform1f", location, x);
    NoteUniform(location, {x});
}
void APIENTRY glUniform2f(GLint location, GLfloat x, GLfloat y) {
    LogGl("glUniform2f", location, x, y);
}
void APIENTRY glUniform3f(GLint location, GLfloat x, GLfloat y, GLfloat z) {
    LogGl("glUniform3f", location, x, y, z);
}
void APIENTRY glUniform4f(GLint location, GLfloat x, GLfloat y, GLfloat z, GLfloat w) {
    LogGl("glUniform4f", location, x, y, z, w);
}
void APIENTRY glUniformMatrix4fv(GLint location, GLsizei count, GLboolean transpose, const GLfloat* m) {
    LogGl("glUniformMatrix4fv", location, count, static_cast<int>(transpose), m[0], m[1], m[2], m[3], m[4], m[5], m[6],
          m[7], m[8], m[9], m[10], m[11], m[12], m[13], m[14], m[15]);
    NoteUniform(location,
                {m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11], m[12], m[13], m[14], m[15]});
}

void APIENTRY glBindVertexArray(GLuint name) {
    LogGl("glBindVertexArray", name);
}
void APIENTRY glBindBuffer(GLenum target, GLuint name) {
    LogGl("glBindBuffer", Enum{target}, name);
}
void APIENTRY glBindBufferBase(GLenum target, GLuint index, GLuint name) {
    LogGl("glBindBufferBase", Enum{target}, index, name);
}
void APIENTRY glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
    LogGl("glBufferData", Enum{target}, static_cast<long>(size), Enum{usage});
    NoteUpload(data, static_cast<size_t>(size));
}
void APIENTRY glEnableVertexAttribArray(GLuint index) {
    LogGl("glEnableVertexAttribArray", index);
}
void APIENTRY glVertexAttribPointer(GLuint index, GLint size, GLenum type, GLboolean normalised, GLsizei stride,
                                    const void* offset) {
    LogGl("glVertexAttribPointer", index, size, Enum{type}, static_cast<int>(normalised), stride, offset);
}

void APIENTRY glActiveTexture(GLenum unit) {
    LogGl("glActiveTexture", Enum{unit});
}
void APIENTRY glBindTexture(GLenum target, GLuint name) {
    LogGl("glBindTexture", Enum{target}, name);
}
void APIENTRY glTexParameteri(GLenum target, GLenum name, GLint value) {
    LogGl("glTexParameteri", Enum{target}, Enum{name}, Enum{static_cast<GLenum>(value)});
}
void APIENTRY glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                           GLint border, GLenum format, GLenum type, const void* data) {
    LogGl("glTexImage2D", Enum{target}, level, Enum{static_cast<GLenum>(internalFormat)}, width, height, border,
          Enum{format}, Enum{type}, data);
}
void APIENTRY glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                              GLenum format, GLenum type, const void* data) {
    LogGl("glTexSubImage2D", Enum{target}, level, x, y, width, height, Enum{format}, Enum{type});
    if (width > 0 && height > 0) {
        NoteUpload(data, static_cast<size_t>(width) * static_cast<size_t>(height) * PixelBytes(format, type));
    }
}
void APIENTRY glPixelStorei(GLenum name, GLint value) {
    LogGl("glPixelStorei", Enum{name}, value);
    if (name == GL_PACK_ROW_LENGTH) Gl().packRowLength = value;
}

void APIENTRY glBindFramebuffer(GLenum target, GLuint name) {
    LogGl("glBindFramebuffer", Enum{target}, name);
}
void APIENTRY glFramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget, GLuint texture,
                                     GLint level) {
    LogGl("glFramebufferTexture2D", Enum{target}, Enum{attachment}, Enum{textureTarget}, texture, level);
}
GLenum APIENTRY glCheckFramebufferStatus(GLenum target) {
    LogGl("glCheckFramebufferStatus", Enum{target});
    if (Gl().framebufferStatus.empty()) return GL_FRAMEBUFFER_COMPLETE;
    const GLenum status = Gl().framebufferStatus.front();
    Gl().framebufferStatus.pop_front();
    return status;
}
void APIENTRY glReadBuffer(GLenum buffer) {
    LogGl("glReadBuffer", Enum{buffer});
}
void APIENTRY glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* data) {
    LogGl("glReadPixels", x, y, width, height, Enum{format}, Enum{type});
    const size_t rowBytes = static_cast<size_t>(width) * PixelBytes(format, type);
    const size_t rowLength =
        Gl().packRowLength > 0 ? static_cast<size_t>(Gl().packRowLength) : static_cast<size_t>(width);
    const size_t stride = rowLength * PixelBytes(format, type);
    for (size_t row = 0; row < static_cast<size_t>(height); ++row) {
        for (size_t i = 0; i < rowBytes; ++i) {
            const size_t at = row * rowBytes + i;
            static_cast<uint8_t*>(data)[row * stride + i] = at < Gl().readPixels.size() ? Gl().readPixels[at] : 0;
        }
    }
}

void APIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    LogGl("glViewport", x, y, width, height);
}
void APIENTRY glScissor(GLint x, GLint y, GLsizei width, GLsizei height) {
    LogGl("glScissor", x, y, width, height);
}
void APIENTRY glClearColor(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    LogGl("glClearColor", r, g, b, a);
}
void APIENTRY glClear(GLbitfield mask) {
    LogGl("glClear", Enum{mask});
}
void APIENTRY glColorMask(GLboolean r, GLboolean g, GLboolean b, GLboolean a) {
    LogGl("glColorMask", static_cast<int>(r), static_cast<int>(g), static_cast<int>(b), static_cast<int>(a));
}
void APIENTRY glEnable(GLenum capability) {
    LogGl("glEnable", Enum{capability});
    Gl().enabled.insert(capability);
}
void APIENTRY glDisable(GLenum capability) {
    LogGl("glDisable", Enum{capability});
    Gl().enabled.erase(capability);
}
void APIENTRY glBlendFunc(GLenum source, GLenum destination) {
    LogGl("glBlendFunc", Enum{source}, Enum{destination});
}
void APIENTRY glCullFace(GLenum face) {
    LogGl("glCullFace", Enum{face});
}
void APIENTRY glPrimitiveRestartIndex(GLuint index) {
    LogGl("glPrimitiveRestartIndex", index);
}
void APIENTRY glBeginTransformFeedback(GLenum mode) {
    LogGl("glBeginTransformFeedback", Enum{mode});
}
void APIENTRY glEndTransformFeedback(void) {
    LogGl("glEndTransformFeedback");
}
void APIENTRY glBindTransformFeedback(GLenum target, GLuint name) {
    LogGl("glBindTransformFeedback", Enum{target}, name);
}
void APIENTRY glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    LogGl("glDrawArrays", Enum{mode}, first, count);
}
void APIENTRY glDrawArraysInstanced(GLenum mode, GLint first, GLsizei count, GLsizei instances) {
    LogGl("glDrawArraysInstanced", Enum{mode}, first, count, instances);
}
void APIENTRY glDrawElementsInstanced(GLenum mode, GLsizei count, GLenum type, const void* offset, GLsizei instances) {
    LogGl("glDrawElementsInstanced", Enum{mode}, count, Enum{type}, offset, instances);
}
void APIENTRY glFinish(void) {
    LogGl("glFinish");
}
