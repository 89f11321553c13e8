// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Objects: shaders, programs and their variables, textures, framebuffers, buffers, vertex arrays.

#include "platform/fake/gl_fake.h"

#include <algorithm>
#include <cstring>

#include "platform/fake/cgl_fake.h"
#include "platform/fake/gl_fake_log.h"

namespace fake {

GlState& Gl() {
    static GlState state;
    return state;
}

void NoteContext() {
    if (!CGLGetCurrentContext()) ++Gl().callsWithoutContext;
}

namespace {

void Generate(const char* call, GLsizei count, GLuint* names, GLuint* last, std::set<GLuint>* live) {
    for (GLsizei i = 0; i < count; ++i) {
        names[i] = ++*last;
        live->insert(names[i]);
        LogGl(call, names[i]);
    }
}

void Delete(const char* call, GLsizei count, const GLuint* names, std::set<GLuint>* live) {
    for (GLsizei i = 0; i < count; ++i) {
        live->erase(names[i]);
        LogGl(call, names[i]);
    }
}

void CopyText(const std::string& text, GLsizei bytes, GLsizei* length, GLchar* out) {
    if (bytes < 1) return;
    const size_t count = std::min(text.size(), static_cast<size_t>(bytes - 1));
    std::memcpy(out, text.data(), count);
    out[count] = '\0';
    if (length) *length = static_cast<GLsizei>(count);
}

void CopyVariable(const std::vector<ActiveVariable>& all, GLuint index, GLsizei bytes, GLsizei* length, GLint* size,
                  GLenum* type, GLchar* name) {
    *size = 1;
    *type = GL_FLOAT;
    CopyText(all.at(index).name, bytes, length, name);
}

GLint LocationOf(const std::vector<ActiveVariable>& all, const char* name) {
    for (const ActiveVariable& variable : all) {
        if (variable.name == name) return variable.location;
    }
    return -1;
}

}  // namespace

}  // namespace fake

using fake::Enum;
using fake::Gl;
using fake::LogGl;

GLuint APIENTRY glCreateShader(GLenum type) {
    const GLuint shader = ++Gl().lastShader;
    Gl().shaders[shader].type = type;
    Gl().liveShaders.insert(shader);
    LogGl("glCreateShader", Enum{type});
    return shader;
}

void APIENTRY glShaderSource(GLuint shader, GLsizei count, const GLchar* const* strings, const GLint* lengths) {
    std::string& source = Gl().shaders[shader].source;
    source.clear();
    for (GLsizei i = 0; i < count; ++i) {
        source += lengths ? std::string(strings[i], static_cast<size_t>(lengths[i])) : std::string(strings[i]);
    }
    LogGl("glShaderSource", shader, count);
}

void APIENTRY glCompileShader(GLuint shader) {
    fake::FakeShader& object = Gl().shaders[shader];
    object.failure = Gl().compileFailure ? Gl().compileFailure(object.type, object.source) : std::nullopt;
    LogGl("glCompileShader", shader);
}

void APIENTRY glGetShaderiv(GLuint shader, GLenum name, GLint* value) {
    LogGl("glGetShaderiv", shader, Enum{name});
    *value = Gl().shaders[shader].failure ? 0 : 1;
}

void APIENTRY glGetShaderInfoLog(GLuint shader, GLsizei bytes, GLsizei* length, GLchar* log) {
    LogGl("glGetShaderInfoLog", shader, bytes);
    fake::CopyText(Gl().shaders[shader].failure.value_or(""), bytes, length, log);
}

void APIENTRY glDeleteShader(GLuint shader) {
    Gl().liveShaders.erase(shader);
    LogGl("glDeleteShader", shader);
}

GLuint APIENTRY glCreateProgram(void) {
    const GLuint program = ++Gl().lastProgram;
    Gl().programs[program] = {};
    Gl().livePrograms.insert(program);
    LogGl("glCreateProgram");
    return program;
}

void APIENTRY glAttachShader(GLuint program, GLuint shader) {
    Gl().programs[program].shaders.push_back(shader);
    Gl().programs[program].attached.insert(shader);
    LogGl("glAttachShader", program, shader);
}

void APIENTRY glDetachShader(GLuint program, GLuint shader) {
    Gl().programs[program].attached.erase(shader);
    LogGl("glDetachShader", program, shader);
}

void APIENTRY glLinkProgram(GLuint program) {
    fake::FakeProgram& object = Gl().programs[program];
    object.failure.reset();
    if (Gl().linkFailure) {
        object.failure = Gl().linkFailure(program);
    } else {
        for (GLuint shader : object.attached) {
            if (Gl().shaders[shader].failure) object.failure = "a shader is not compiled";
        }
    }
    LogGl("glLinkProgram", program);
}

void APIENTRY glGetProgramiv(GLuint program, GLenum name, GLint* value) {
    LogGl("glGetProgramiv", program, Enum{name});
    switch (name) {
        case GL_ACTIVE_UNIFORMS:
            *value = static_cast<GLint>(Gl().uniforms.size());
            break;
        case GL_ACTIVE_ATTRIBUTES:
            *value = static_cast<GLint>(Gl().attributes.size());
            break;
        default:
            *value = Gl().programs[program].failure ? 0 : 1;
    }
}

void APIENTRY glGetProgramInfoLog(GLuint program, GLsizei bytes, GLsizei* length, GLchar* log) {
    LogGl("glGetProgramInfoLog", program, bytes);
    fake::CopyText(Gl().programs[program].failure.value_or(""), bytes, length, log);
}

void APIENTRY glUseProgram(GLuint program) {
    LogGl("glUseProgram", program);
}

void APIENTRY glDeleteProgram(GLuint program) {
    Gl().livePrograms.erase(program);
    LogGl("glDeleteProgram", program);
}

void APIENTRY glGetActiveUniform(GLuint program, GLuint index, GLsizei bytes, GLsizei* length, GLint* size,
                                 GLenum* type, GLchar* name) {
    LogGl("glGetActiveUniform", program, index, bytes);
    fake::CopyVariable(Gl().uniforms, index, bytes, length, size, type, name);
}

void APIENTRY glGetActiveAttrib(GLuint program, GLuint index, GLsizei bytes, GLsizei* length, GLint* size, GLenum* type,
                                GLchar* name) {
    LogGl("glGetActiveAttrib", program, index, bytes);
    fake::CopyVariable(Gl().attributes, index, bytes, length, size, type, name);
}

GLint APIENTRY glGetUniformLocation(GLuint program, const GLchar* name) {
    LogGl("glGetUniformLocation", program, name);
    if (!Gl().uniforms.empty()) return fake::LocationOf(Gl().uniforms, name);
    auto& invented = Gl().inventedLocations;
    return invented.try_emplace(name, static_cast<GLint>(invented.size())).first->second;
}

GLint APIENTRY glGetAttribLocation(GLuint program, const GLchar* name) {
    LogGl("glGetAttribLocation", program, name);
    return fake::LocationOf(Gl().attributes, name);
}

void APIENTRY glGenVertexArrays(GLsizei n, GLuint* names) {
    fake::Generate("glGenVertexArrays", n, names, &Gl().lastVertexArray, &Gl().liveVertexArrays);
}
void APIENTRY glDeleteVertexArrays(GLsizei n, const GLuint* names) {
    fake::Delete("glDeleteVertexArrays", n, names, &Gl().liveVertexArrays);
}
void APIENTRY glGenBuffers(GLsizei n, GLuint* names) {
    fake::Generate("glGenBuffers", n, names, &Gl().lastBuffer, &Gl().liveBuffers);
}
void APIENTRY glDeleteBuffers(GLsizei n, const GLuint* names) {
    fake::Delete("glDeleteBuffers", n, names, &Gl().liveBuffers);
}
void APIENTRY glGenTextures(GLsizei n, GLuint* names) {
    fake::Generate("glGenTextures", n, names, &Gl().lastTexture, &Gl().liveTextures);
}
void APIENTRY glDeleteTextures(GLsizei n, const GLuint* names) {
    fake::Delete("glDeleteTextures", n, names, &Gl().liveTextures);
}
void APIENTRY glGenFramebuffers(GLsizei n, GLuint* names) {
    fake::Generate("glGenFramebuffers", n, names, &Gl().lastFramebuffer, &Gl().liveFramebuffers);
}
void APIENTRY glDeleteFramebuffers(GLsizei n, const GLuint* names) {
    fake::Delete("glDeleteFramebuffers", n, names, &Gl().liveFramebuffers);
}
