// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The OpenGL functions that the module calls, without a driver: every call is written to the call log, objects are
// numbers, and what a driver would answer is scripted. Nothing is drawn.

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/gl_api.h"

namespace fake {

/// An active uniform or attribute that programs report.
struct ActiveVariable {
    std::string name;
    GLint location;
};

struct FakeShader {
    GLenum type = 0;
    std::string source;  ///< all strings in one
    std::optional<std::string> failure;
};

struct FakeProgram {
    std::vector<GLuint> shaders;  ///< every shader ever attached, in order
    std::set<GLuint> attached;
    std::optional<std::string> failure;
};

/// What to answer and what was seen. Tests touch it while nothing else calls GL.
struct GlState {
    // The script.
    std::deque<GLenum> errors;             ///< answers of glGetError, in order; then GL_NO_ERROR
    std::deque<GLenum> framebufferStatus;  ///< answers of glCheckFramebufferStatus; then complete
    /// The info log of a shader that is to fail; nothing for one that compiles.
    std::function<std::optional<std::string>(GLenum type, const std::string& source)> compileFailure;
    /// The same for programs, from 1. Without it a program fails when one of its shaders did.
    std::function<std::optional<std::string>(GLuint program)> linkFailure;
    std::vector<ActiveVariable> uniforms;    ///< of every program
    std::vector<ActiveVariable> attributes;  ///< of every program
    std::vector<uint8_t> readPixels;         ///< what glReadPixels delivers, rows tightly packed; zeroes beyond
    std::map<GLenum, std::string> strings;   ///< what glGetString answers; null for others

    // What was seen.
    std::map<GLuint, FakeShader> shaders;    ///< also deleted ones
    std::map<GLuint, FakeProgram> programs;  ///< also deleted ones
    std::set<GLuint> liveShaders, livePrograms, liveTextures, liveFramebuffers, liveBuffers, liveVertexArrays;
    std::vector<std::vector<uint8_t>> uploads;  ///< the bytes of every glBufferData and glTexSubImage2D with data
    std::map<std::string, std::vector<double>> uniformValues;  ///< last value set, by name
    std::set<GLenum> enabled;                                  ///< capabilities
    int callsWithoutContext = 0;  ///< calls while no fake context was current on the calling thread

    GLuint lastShader = 0, lastProgram = 0, lastTexture = 0, lastFramebuffer = 0, lastBuffer = 0, lastVertexArray = 0;
    std::map<std::string, GLint> inventedLocations;  ///< of names that `uniforms` does not list, while it is empty
    GLint packRowLength = 0;
};
GlState& Gl();

/// An enumerant as GL's headers spell it, or in hexadecimal.
std::string EnumName(GLenum value);

}  // namespace fake
