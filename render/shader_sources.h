// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The GLSL texts, embedded byte for byte from render/shaders/ by the build (cmake/EmbedText.cmake).

namespace umbrant::effect {

extern const char kQuadVert[];
extern const char kInvertFrag[];
extern const char kBlurWFrag[];
extern const char kBlurHFrag[];
extern const char kCopyAFrag[];
extern const char kCopyBFrag[];

}  // namespace umbrant::effect
