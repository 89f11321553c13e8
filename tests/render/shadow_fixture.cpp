// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/render/shadow_fixture.h"

#include <string>

#include "gl/context.h"
#include "gl/thread_state.h"

namespace umbrant::effect {

void ShadowTest::SetUp() {
    GLContextTest::SetUp();
    if (IsSkipped()) return;
    host_.global->context = context_;
    filterError_ = FilterError();
}

void ShadowTest::TearDown() {
    local_render_data.reset();
    if (context_) SetCurrentContext(context_);
    std::string why;
    EXPECT_TRUE(host_.Balanced(&why)) << why;
    EXPECT_EQ(host_.layersOut, 0);
    GLContextTest::TearDown();
}

}  // namespace umbrant::effect
