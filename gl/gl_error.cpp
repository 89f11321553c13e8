// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/gl_error.h"

#include <cstdio>
#include <iostream>
#include <string>

#include "platform/gl_api.h"

void CheckOpenGLError(const char* what, const char* file, int line) {
    const GLenum error = glGetError();
    if (error == 0) return;
    constexpr char kFormat[] = "OpenGL error %08x, at %s:%i - for %s\n";
    const int length = std::snprintf(nullptr, 0, kFormat, error, file, line, what);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::snprintf(text.data(), text.size(), kFormat, error, file, line, what);
    text.pop_back();
    std::cout << text << std::endl;
}

void glCheckError_(const char*, int) {}
