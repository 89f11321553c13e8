// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/attributes.h"

#include <iostream>

namespace {

constexpr GLsizei kNameBytes = 32;

using Locations = std::unordered_map<std::string, GLint>;

void PrintError(const char* what) {
    if (const GLenum error = glGetError(); error != 0) std::cout << what << error << std::endl;
}

Locations ActiveAttributes(GLuint program) {
    Locations locations;
    GLint count = 0;
    glGetProgramiv(program, GL_ACTIVE_ATTRIBUTES, &count);
    if (const GLenum error = glGetError(); error != 0) {
        std::cout << "Active Attrib Error: " << std::hex << error << std::dec << std::endl;
    }
    if (count < 1) std::cout << "No Active Attribs shader: " << program << std::endl;
    for (GLint index = 0; index < count; ++index) {
        char name[kNameBytes] = "";
        GLint size = 0;
        GLenum type = 0;
        glGetActiveAttrib(program, static_cast<GLuint>(index), kNameBytes, nullptr, &size, &type, name);
        locations[name] = glGetAttribLocation(program, name);
        PrintError("Attrib Location:");
    }
    return locations;
}

}  // namespace

AttributeType make_attrib(unsigned buffer, int size, unsigned type, int stride, unsigned long, unsigned) {
    return {buffer, size, type, stride};
}

AttributeType CreateAttribute(GLuint& buffer, unsigned size, unsigned type) {
    return {buffer, static_cast<int32_t>(size), type, 0};
}

GLuint CreateBuffer(const void* data, unsigned size, unsigned target, unsigned usage) {
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, static_cast<GLsizeiptr>(size), data, usage);
    PrintError(" Create Buffer Error: ");
    return buffer;
}

void DeleteBuffer(GLuint buffer) {
    if (buffer == 0) return;
    glDeleteBuffers(1, &buffer);
    PrintError(" Delete Buffer Error: ");
}

void SetProgramAttributes(GLuint vao, GLuint program,
                          const std::unordered_map<std::string, AttributeType>& attributes) {
    Locations unset = ActiveAttributes(program);
    glBindVertexArray(vao);
    for (auto entry = unset.begin(); entry != unset.end();) {
        const auto attribute = attributes.find(entry->first);
        if (attribute == attributes.end()) {
            ++entry;
            continue;
        }
        const AttributeType& source = attribute->second;
        const GLuint location = static_cast<GLuint>(entry->second);
        glBindBuffer(GL_ARRAY_BUFFER, source.buffer);
        PrintError("Buff:");
        glVertexAttribPointer(location, source.size, source.type, GL_FALSE, source.stride, nullptr);
        glEnableVertexAttribArray(location);
        PrintError(" Vertex Attrib: ");
        entry = unset.erase(entry);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    if (unset.empty()) return;
    std::cout << "The Following Attributes are not set:" << std::endl;
    for (const auto& entry : unset) std::cout << entry.first << "\n";
    std::cout.flush();
}

void ClearAttribBuffers(std::unordered_map<std::string, AttributeType>& attributes) {
    for (const auto& entry : attributes) DeleteBuffer(entry.second.buffer);
    attributes.clear();
}
