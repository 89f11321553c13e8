// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One linked GLSL program of one vertex and one fragment shader. Every operation expects the calling thread's context
// to be current. Compile and link failures are reported twice: on standard output to developers, in the host's return
// message to the user.

#include <string>

#include "hostapi/commands.h"
#include "platform/gl_api.h"

class Program {
 public:
    Program() = default;
    /// Deletes the GL program; a failing GL call ends the process.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    bool initialised = false;  ///< an init has run and no step of it failed
    GLuint id = 0;             ///< the GL program, 0 when none; a failed init keeps it
    std::string label;         ///< always empty; nothing reads it

    /// Compiles and links two sources; returns `initialised`. An earlier program object is abandoned, not deleted.
    bool InitInternal(const char* vertexSource, const char* fragmentSource, PF_OutData* out_data);

    /// The same for the files `vertexBase` + ".vs" and `fragmentBase` + ".fs". The caller reads `initialised`.
    void InitExternal(const std::string& vertexBase, const std::string& fragmentBase, PF_OutData* out_data);

    /// A text file's lines, each ended by "\n"; empty, with a message, when it cannot be opened.
    std::string LoadShader(const std::string& path, PF_OutData* out_data);

    /// Binds the program; warns, and calls no GL, when it is not initialised.
    void Use(PF_OutData* out_data);

    /// The program's id; warns and returns 0 when it is not initialised.
    GLuint Get(PF_OutData* out_data);

    /// Deletes the GL program, if any.
    void Release();

    /// See `WriteReturnMessage`.
    void SendMessage(std::string message, PF_OutData* out_data);

 private:
    GLuint Compile(GLenum type, const char* source, PF_OutData* out_data);
    void LinkAndDropShaders(GLuint vertexShader, GLuint fragmentShader, PF_OutData* out_data);
};
