// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A scene rendered on the real GPU or its software stand-in.

#include "tests/render/shadow_scene.h"
#include "tests/support/gl_context.h"

namespace umbrant::effect {

class ShadowTest : public GLContextTest, protected ShadowScene {
 protected:
    void SetUp() override;
    void TearDown() override;
};

}  // namespace umbrant::effect
