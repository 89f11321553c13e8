// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/program.h"

#include <fstream>
#include <iostream>

#include "pixel/return_message.h"

using namespace umbrant::effect;

namespace {

constexpr GLsizei kLogBytes = 512;

constexpr char kVertexFailed[] = "ERROR::SHADER::VERTEX::COMPILATION_FAILED\n";
constexpr char kFragmentFailed[] = "ERROR::SHADER::FRAGMENT::COMPILATION_FAILED\n";
constexpr char kLinkFailed[] = "ERROR::SHADER::PROGRAM::LINKING_FAILED\n";
constexpr char kCannotLoad[] = "Unable to load shader: ";
constexpr char kUseTooEarly[] = "Warning: called Use() on uninitialised Program";
constexpr char kGetTooEarly[] = "Warning: called Get() on uninitialised Program";

}  // namespace

Program::~Program() {
    Release();
}

bool Program::InitInternal(const char* vertexSource, const char* fragmentSource, PF_OutData* out_data) {
    initialised = true;
    const GLuint vertexShader = Compile(GL_VERTEX_SHADER, vertexSource, out_data);
    const GLuint fragmentShader = Compile(GL_FRAGMENT_SHADER, fragmentSource, out_data);
    LinkAndDropShaders(vertexShader, fragmentShader, out_data);
    return initialised;
}

void Program::InitExternal(const std::string& vertexBase, const std::string& fragmentBase, PF_OutData* out_data) {
    initialised = true;
    // Kept: this program object is overwritten below and never deleted.
    id = glCreateProgram();
    const std::string vertexSource = LoadShader(vertexBase + ".vs", out_data);
    const GLuint vertexShader = Compile(GL_VERTEX_SHADER, vertexSource.c_str(), out_data);
    const std::string fragmentSource = LoadShader(fragmentBase + ".fs", out_data);
    const GLuint fragmentShader = Compile(GL_FRAGMENT_SHADER, fragmentSource.c_str(), out_data);
    LinkAndDropShaders(vertexShader, fragmentShader, out_data);
}

std::string Program::LoadShader(const std::string& path, PF_OutData* out_data) {
    std::ifstream file(path);
    if (!file.is_open()) {
        SendMessage(kCannotLoad + path, out_data);
        return "";
    }
    std::string text;
    for (std::string line; std::getline(file, line);) text += line + "\n";
    return text;
}

void Program::Use(PF_OutData* out_data) {
    if (initialised) {
        glUseProgram(id);
    } else {
        SendMessage(kUseTooEarly, out_data);
    }
}

GLuint Program::Get(PF_OutData* out_data) {
    if (initialised) return id;
    SendMessage(kGetTooEarly, out_data);
    return 0;
}

void Program::Release() {
    if (id == 0) return;
    glDeleteProgram(id);
    id = 0;
    initialised = false;
}

void Program::SendMessage(std::string message, PF_OutData* out_data) {
    WriteReturnMessage(message, out_data);
}

// A shader that failed to compile is kept and linked all the same; the link then reports its own failure.
GLuint Program::Compile(GLenum type, const char* source, PF_OutData* out_data) {
    const GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled == 0) {
        char log[kLogBytes] = "";
        glGetShaderInfoLog(shader, kLogBytes, nullptr, log);
        std::cout << (type == GL_VERTEX_SHADER ? kVertexFailed : kFragmentFailed) << log << std::endl;
        SendMessage(log, out_data);
        initialised = false;
    }
    return shader;
}

void Program::LinkAndDropShaders(GLuint vertexShader, GLuint fragmentShader, PF_OutData* out_data) {
    id = glCreateProgram();
    glAttachShader(id, vertexShader);
    glAttachShader(id, fragmentShader);
    glLinkProgram(id);
    GLint linked = 0;
    glGetProgramiv(id, GL_LINK_STATUS, &linked);
    if (linked == 0) {
        char log[kLogBytes] = "";
        glGetProgramInfoLog(id, kLogBytes, nullptr, log);
        std::cout << kLinkFailed << log << std::endl;
        SendMessage(log, out_data);
        initialised = false;
    }
    glDetachShader(id, vertexShader);
    glDetachShader(id, fragmentShader);
    glDeleteShader(vertexShader);
    glDeleteShader(fragmentShader);
}
