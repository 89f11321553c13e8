// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/program_list.h"

#include <cstdio>
#include <vector>

namespace {

constexpr GLsizei kLogBytes = 256;

// 0 when the shader does not compile; it is then neither kept nor deleted.
GLuint CompileShader(GLenum type, const char* preamble, const char* source) {
    const GLuint shader = glCreateShader(type);
    const char* strings[2] = {preamble, source};
    glShaderSource(shader, 2, strings, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled == 1) return shader;
    char log[kLogBytes] = "";
    glGetShaderInfoLog(shader, kLogBytes, nullptr, log);
    std::printf("Compile Shader Failed - %s\n", log);
    return 0;
}

}  // namespace

GLuint CreateProgram(const uint64_t* list, const char* preamble) {
    std::vector<GLuint> shaders;
    for (const uint64_t* entry = list; entry[0] != 0; entry += 2) {
        const auto* source = reinterpret_cast<const char*>(static_cast<uintptr_t>(entry[1]));
        const GLuint shader = CompileShader(static_cast<GLenum>(entry[0]), preamble, source);
        if (shader != 0) shaders.push_back(shader);
    }

    const GLuint program = glCreateProgram();
    for (GLuint shader : shaders) glAttachShader(program, shader);
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    GLuint result = program;
    if (linked != 1) {
        char log[kLogBytes] = "";
        glGetProgramInfoLog(program, kLogBytes, nullptr, log);
        std::printf("Link Program Failed - %s\n", log);
        result = 0;  // Kept: neither the program object nor its shaders are deleted.
    }
    if (const GLenum error = glGetError(); error != 0) std::printf("Prog Error: %i\n", static_cast<int>(error));
    if (result != 0) {
        for (GLuint shader : shaders) {
            glDetachShader(program, shader);
            glDeleteShader(shader);
        }
    }
    return result;
}

void DeleteProgram(GLuint* program) {
    if (!program || *program == 0) return;
    glDeleteProgram(*program);
    *program = 0;
}
