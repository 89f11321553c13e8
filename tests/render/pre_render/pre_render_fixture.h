// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pre-render against a recording host: whatever happens, every balance is checked at the end.

#include <gtest/gtest.h>

#include <string>

#include "render/pre_render/pre_render.h"
#include "tests/render/render_host.h"

namespace umbrant::effect {

class PreRenderTest : public ::testing::Test {
 protected:
    ~PreRenderTest() override {
        if (host_.preOutput.pre_render_data) {
            host_.preOutput.delete_pre_render_data_func(host_.preOutput.pre_render_data);
        }
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        EXPECT_EQ(host_.paramsOut, 0);
    }
    PF_Err Run() { return PreRender(&host_.inData, &host_.outData, &host_.preExtra); }
    const PreRenderData& Record() const { return *static_cast<PreRenderData*>(host_.preOutput.pre_render_data); }
    void Slide(ParamIndex index, double value) { host_.panel[index].u.fs_d.value = value; }

    RenderHost host_;
};

inline void ExpectRect(const PF_LRect& rect, int left, int top, int right, int bottom) {
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

}  // namespace umbrant::effect
