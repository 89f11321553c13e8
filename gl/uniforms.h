// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Tagged uniform values, and setting a whole table of them on a program. The calling thread's context must be current.

#include <cstdint>
#include <string>
#include <unordered_map>

#include "platform/gl_api.h"

struct Vec2i {
    int32_t x, y;
};
struct Vec3i {
    int32_t x, y, z;
};
struct Vec4i {
    int32_t x, y, z, w;
};
struct Vec2f {
    float x, y;
};
struct Vec3f {
    float x, y, z;
};
struct Vec4f {
    float x, y, z, w;
};
/// Sixteen floats in the order in which GL takes them (column by column).
struct Matrix44f {
    float m[16];
};

enum UniformType : uint32_t {
    UNIFORM_UIVEC = 0,
    UNIFORM_IVEC = 1,
    UNIFORM_IVEC2 = 2,
    UNIFORM_IVEC3 = 3,
    UNIFORM_IVEC4 = 4,
    UNIFORM_VEC = 5,
    UNIFORM_VEC2 = 6,
    UNIFORM_VEC3 = 7,
    UNIFORM_VEC4 = 8,
    UNIFORM_MAT44 = 9,
    UNIFORM_TEX1D = 10,
    UNIFORM_TEX2D = 11,
};

/// A uniform's value. A `type` of 12 or more sets nothing.
struct uniform_t {
    uint32_t type;  ///< a `UniformType`
    union {
        uint32_t u[16];
        int32_t i[16];
        float f[16];
    };
};

uniform_t UIVEC(unsigned value);
uniform_t IVEC(int value);
uniform_t IVEC2(Vec2i value);
uniform_t IVEC3(Vec3i value);
uniform_t IVEC4(Vec4i value);
uniform_t VEC(float value);
uniform_t VEC2(Vec2f value);
uniform_t VEC3(Vec3f value);
uniform_t VEC4(Vec4f value);
uniform_t MAT44(Matrix44f value);
/// A texture name; it is bound to the next free texture unit and the sampler set to that unit.
uniform_t TEX1D(unsigned texture);
uniform_t TEX2D(unsigned texture);

/// Sets every active uniform of `program` that `values` names; prints those it does not name. Values that name no
/// active uniform are ignored. Textures take units from 0 in the order of the visit, which is not fixed. The program
/// stays bound. GL errors are printed to standard output.
void SetProgramUniforms(GLuint program, const std::unordered_map<std::string, uniform_t>& values);
