// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

namespace umbrant::effect {

/// The vertex shader of a quad; fragment shaders receive the texture coordinates as `at`.
inline constexpr char kVertex[] = R"(#version 330
layout(location = 0) in vec3 position;
layout(location = 1) in vec2 uv;
out vec2 at;
void main() { gl_Position = vec4(position, 1.0); at = uv; }
)";

}  // namespace umbrant::effect
