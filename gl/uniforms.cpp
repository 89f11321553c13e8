// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/uniforms.h"

#include <cstring>
#include <iostream>

namespace {

constexpr GLsizei kNameBytes = 32;

template <typename Value>
uniform_t Tagged(UniformType type, const Value& value) {
    static_assert(sizeof(Value) <= sizeof(uniform_t::f));
    uniform_t uniform{};
    uniform.type = type;
    std::memcpy(uniform.u, &value, sizeof value);
    return uniform;
}

using Locations = std::unordered_map<std::string, GLint>;

Locations ActiveUniforms(GLuint program, GLint* count) {
    Locations locations;
    glGetProgramiv(program, GL_ACTIVE_UNIFORMS, count);
    if (*count < 1) std::cout << "No Active Uniforms for prog: " << program << std::endl;
    for (GLint index = 0; index < *count; ++index) {
        char name[kNameBytes] = "";
        GLint size = 0;
        GLenum type = 0;
        glGetActiveUniform(program, static_cast<GLuint>(index), kNameBytes, nullptr, &size, &type, name);
        locations[name] = glGetUniformLocation(program, name);
    }
    return locations;
}

void SetTexture(GLint location, GLenum target, GLuint texture, GLint* unit) {
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(*unit));
    glBindTexture(target, texture);
    glUniform1i(location, *unit);
    ++*unit;
}

void SetUniform(GLint location, const uniform_t& value, GLint* unit) {
    const uint32_t* u = value.u;
    const int32_t* i = value.i;
    const float* f = value.f;
    switch (value.type) {
        case UNIFORM_UIVEC:
            return glUniform1ui(location, u[0]);
        case UNIFORM_IVEC:
            return glUniform1i(location, i[0]);
        case UNIFORM_IVEC2:
            return glUniform2i(location, i[0], i[1]);
        case UNIFORM_IVEC3:
            return glUniform3i(location, i[0], i[1], i[2]);
        case UNIFORM_IVEC4:
            return glUniform4i(location, i[0], i[1], i[2], i[3]);
        case UNIFORM_VEC:
            return glUniform1f(location, f[0]);
        case UNIFORM_VEC2:
            return glUniform2f(location, f[0], f[1]);
        case UNIFORM_VEC3:
            return glUniform3f(location, f[0], f[1], f[2]);
        case UNIFORM_VEC4:
            return glUniform4f(location, f[0], f[1], f[2], f[3]);
        case UNIFORM_MAT44:
            return glUniformMatrix4fv(location, 1, GL_FALSE, f);
        case UNIFORM_TEX1D:
            return SetTexture(location, GL_TEXTURE_1D, u[0], unit);
        case UNIFORM_TEX2D:
            return SetTexture(location, GL_TEXTURE_2D, u[0], unit);
        default:
            return;
    }
}

}  // namespace

uniform_t UIVEC(unsigned value) {
    return Tagged(UNIFORM_UIVEC, value);
}
uniform_t IVEC(int value) {
    return Tagged(UNIFORM_IVEC, value);
}
uniform_t IVEC2(Vec2i value) {
    return Tagged(UNIFORM_IVEC2, value);
}
uniform_t IVEC3(Vec3i value) {
    return Tagged(UNIFORM_IVEC3, value);
}
uniform_t IVEC4(Vec4i value) {
    return Tagged(UNIFORM_IVEC4, value);
}
uniform_t VEC(float value) {
    return Tagged(UNIFORM_VEC, value);
}
uniform_t VEC2(Vec2f value) {
    return Tagged(UNIFORM_VEC2, value);
}
uniform_t VEC3(Vec3f value) {
    return Tagged(UNIFORM_VEC3, value);
}
uniform_t VEC4(Vec4f value) {
    return Tagged(UNIFORM_VEC4, value);
}
uniform_t MAT44(Matrix44f value) {
    return Tagged(UNIFORM_MAT44, value);
}
uniform_t TEX1D(unsigned texture) {
    return Tagged(UNIFORM_TEX1D, texture);
}
uniform_t TEX2D(unsigned texture) {
    return Tagged(UNIFORM_TEX2D, texture);
}

void SetProgramUniforms(GLuint program, const std::unordered_map<std::string, uniform_t>& values) {
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked != 1) std::cout << "Program Not Linked : " << program << std::endl;

    GLint count = 0;
    Locations unset = ActiveUniforms(program, &count);
    glUseProgram(program);
    GLint unit = 0;
    for (auto entry = unset.begin(); entry != unset.end();) {
        const auto& [name, location] = *entry;
        const auto value = values.find(name);
        if (value == values.end()) {
            ++entry;
            continue;
        }
        SetUniform(location, value->second, &unit);
        if (const GLenum error = glGetError(); error != 0) {
            std::cout << "Uniform Error: " << name << ":" << location << ":" << error << std::endl;
            // Intended: the location is where a reader expects the value.
            std::cout << "Uni Index: " << location << "Uni Value: " << location << std::endl;
        }
        entry = unset.erase(entry);
    }
    if (unset.empty()) return;
    std::cout << "Num Uniforms: " << count << std::endl;
    std::cout << "The Following Uniforms are not set:" << std::endl;
    for (const auto& entry : unset) std::cout << entry.first << "\n";
    std::cout.flush();
}
