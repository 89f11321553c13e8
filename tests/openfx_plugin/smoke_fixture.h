// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An instance of the built plug-in in the small host, and what the library draws of the same image.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <umbrant/effect.h>

#include "openfx/abi/actions.h"
#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "tests/openfx_plugin/small_host.h"

namespace umbrant::openfx {

inline constexpr int kWidth = 64;
inline constexpr int kHeight = 48;

/// A disc; where its alpha is 0 it has a colour too. Top row first.
inline std::vector<std::uint8_t> Disc() {
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int away = (x - 30) * (x - 30) + (y - 20) * (y - 20);
            for (const int channel : {4 * x, 5 * y, 77, away < 150 ? 255 : away < 200 ? 120 : 0})
                pixels.push_back(static_cast<std::uint8_t>(channel));
        }
    }
    return pixels;
}

/// An image of the host's, whose rows may go up or down in memory.
struct HostImage {
    HostImage(OfxRectI bounds, bool isFloat, bool isTopFirst = true, int gap = 0) {
        image.bounds = bounds;
        image.isFloat = isFloat;
        const int row = (bounds.x2 - bounds.x1) * (isFloat ? 16 : 4) + gap, rows = bounds.y2 - bounds.y1;
        memory.assign(static_cast<std::size_t>(row) * rows, 9);
        image.rowBytes = isTopFirst ? -row : row;
        image.bottom = memory.data() + (isTopFirst ? static_cast<std::size_t>(row) * (rows - 1) : 0);
        openfx::Describe(image);
    }
    MutableImageView View() {
        const int rows = image.bounds.y2 - image.bounds.y1;
        return {static_cast<std::uint8_t*>(image.bottom) + std::ptrdiff_t{rows - 1} * image.rowBytes,
                image.bounds.x2 - image.bounds.x1, rows, image.isFloat ? PixelFormat::kRgbaFloat : PixelFormat::kRgba8,
                -image.rowBytes};
    }

    SmallImage image;
    std::vector<std::uint8_t> memory;
};

class OpenfxSmoke : public testing::Test {
 protected:
    void SetUp() override {
        unsetenv("UMBRANT_MODULE");
        setenv("UMBRANT_RENDERER", "cpu", 1);
        // The plug-in of another build can be examined in place of this one's.
        const char* const other = std::getenv("UMBRANT_TEST_OPENFX_BINARY");
        ASSERT_EQ(host_.Load(other ? other : OPENFX_BINARY), "");
        host_.messages.clear();
        OfxStatus status = kOfxStatFailed;
        instance_ = host_.Create(status);
        ASSERT_EQ(status, kOfxStatOK);
        Put("style_distance", 20.0);
        Put("style_softness", 6.0);
        expected_.Set("style/distance", 20);
        expected_.Set("style/softness", 6);
    }
    void TearDown() override {
        if (instance_) {
            EXPECT_EQ(host_.Call(kOfxActionDestroyInstance, instance_.get()), kOfxStatOK);
        }
        EXPECT_EQ(host_.images, 0);
        EXPECT_TRUE(host_.messages.empty()) << host_.messages.front();
    }

    void Put(const char* name, SmallValue value) { instance_->parameters.at(name).value = {value}; }
    /// The disc as the clip Source.
    void Connect(HostImage& source) {
        CopyRows(Disc(), source.View());
        SmallClip& clip = instance_->clips["Source"];
        clip.image = &source.image;
        const OfxRectI& at = source.image.bounds;
        clip.region = {1.0 * at.x1, 1.0 * at.y1, 1.0 * at.x2, 1.0 * at.y2};
        instance_->clips["Texture"].set.Put(kOfxImageClipPropConnected, {0});
    }
    static void CopyRows(const std::vector<std::uint8_t>& pixels, const MutableImageView& to) {
        for (int y = 0; y < kHeight; ++y)
            std::memcpy(to.Row(y), &pixels[static_cast<std::size_t>(4 * kWidth * y)], 4 * kWidth);
    }
    static void ExpectSame(const MutableImageView& drawn, const Image& expected) {
        ASSERT_EQ(drawn.width, expected.Width());
        ASSERT_EQ(drawn.height, expected.Height());
        for (int y = 0; y < drawn.height; ++y) {
            const std::size_t row = drawn.width * BytesPerPixel(drawn.format);
            EXPECT_EQ(std::memcmp(drawn.Row(y), expected.View().Row(y), row), 0) << "row " << y;
        }
    }

    SmallHost& host_ = SmallHost::The();
    std::unique_ptr<SmallEffect> instance_;
    Effect expected_{{UMBRANT_MODULE_FILE, Renderer::kProcessor, false, {}}};
};

}  // namespace umbrant::openfx
