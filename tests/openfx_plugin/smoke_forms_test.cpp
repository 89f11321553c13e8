// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Forms of images: alpha, depths, scales, blue first, and those that the plug-in refuses.

#include <tuple>
#include <utility>

#include "tests/openfx_plugin/smoke_fixture.h"

namespace umbrant::openfx {
namespace {

constexpr OfxRectI kFrame{0, 0, kWidth, kHeight};

class OpenfxForms : public OpenfxSmoke {
 protected:
    /// Draws the frame; the source's pixels are those that the caller wrote after Connect.
    OfxStatus Draw(HostImage& output, double scale = 1) {
        instance_->clips["Output"].image = &output.image;
        return host_.Render(*instance_, output.image.bounds, scale);
    }
    /// The disc as floats, multiplied or not. Its transparent pixels are black.
    static void PutFloats(const MutableImageView& to, bool isPremultiplied) {
        const auto bytes = Disc();
        for (int i = 0; i < kWidth * kHeight; ++i) {
            float pixel[4];
            for (std::size_t c = 0; c < 4; ++c) pixel[c] = bytes[4 * static_cast<std::size_t>(i) + c] / 255.0f;
            for (int c = 0; c < 3; ++c) pixel[c] *= isPremultiplied || pixel[3] == 0 ? pixel[3] : 1;
            std::memcpy(to.Row(i / kWidth) + 16 * (i % kWidth), pixel, 16);
        }
    }
    void ConnectImage(HostImage& source) {
        SmallClip& clip = instance_->clips["Source"];
        clip.image = &source.image;
        clip.region = {0, 0, kWidth, kHeight};
        instance_->clips["Texture"].set.Put(kOfxImageClipPropConnected, {0});
    }
    Image Expected(const ImageView& layer, int downsample = 1) {
        FrameOptions options;
        options.canvas = Canvas::kLayer;
        options.downsample = downsample;
        return expected_.Render(layer, options);
    }
};

TEST_F(OpenfxForms, PremultipliedFloatsAreTheStraightOnesMultiplied) {
    HostImage straight(kFrame, true), multiplied(kFrame, true), output(kFrame, true, false, 32);
    PutFloats(straight.View(), false);
    PutFloats(multiplied.View(), true);
    multiplied.image.alpha = kOfxImagePreMultiplied;
    openfx::Describe(multiplied.image);
    ConnectImage(multiplied);
    ASSERT_EQ(Draw(output), kOfxStatOK);
    const Image expected = Expected(straight.View());
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const float* wanted = expected.Floats() + 4 * i;
        float found[4];
        std::memcpy(found, output.View().Row(i / kWidth) + 16 * (i % kWidth), 16);
        for (int c = 0; c < 3; ++c) ASSERT_NEAR(found[c], wanted[c] * wanted[3], 1e-6) << i;
        ASSERT_NEAR(found[3], wanted[3], 1e-6) << i;
    }
}

TEST_F(OpenfxForms, TheChoiceOfAlphaOverrulesTheHost) {
    HostImage multiplied(kFrame, true), automatic(kFrame, true), chosen(kFrame, true);
    PutFloats(multiplied.View(), true);
    multiplied.image.alpha = kOfxImagePreMultiplied;
    openfx::Describe(multiplied.image);
    ConnectImage(multiplied);
    ASSERT_EQ(Draw(automatic), kOfxStatOK);
    multiplied.image.alpha = kOfxImageUnPreMultiplied;
    openfx::Describe(multiplied.image);
    Put("alpha", 1);
    ASSERT_EQ(Draw(chosen), kOfxStatOK);
    EXPECT_EQ(chosen.memory, automatic.memory);
    Put("alpha", 2);
    ASSERT_EQ(Draw(chosen), kOfxStatOK);
    EXPECT_NE(chosen.memory, automatic.memory);
}

TEST_F(OpenfxForms, OpaqueImagesFillTheFrame) {
    HostImage source(kFrame, false), output(kFrame, false);
    Connect(source);
    source.image.alpha = kOfxImageOpaque;
    openfx::Describe(source.image);
    ASSERT_EQ(Draw(output), kOfxStatOK);
    // In a frame of its size it is what the library draws of opaque bytes.
    auto pixels = Disc();
    for (std::size_t i = 3; i < pixels.size(); i += 4) pixels[i] = 255;
    ExpectSame(output.View(), Expected({pixels.data(), kWidth, kHeight}));
    SmallSet answers;
    instance_->clips["Source"].set.Put<std::string>(kOfxImageEffectPropPreMultiplication, {kOfxImageOpaque});
    EXPECT_EQ(host_.Call(kOfxImageEffectActionGetClipPreferences, instance_.get(), nullptr, &answers), kOfxStatOK);
    EXPECT_EQ(answers.Text(kOfxImageEffectPropPreMultiplication), kOfxImagePreMultiplied);
}

TEST_F(OpenfxForms, HalfOfTheScaleIsHalfOfTheResolution) {
    HostImage source(kFrame, false), output(kFrame, false);
    Connect(source);
    instance_->clips["Source"].region = {0, 0, 2 * kWidth, 2 * kHeight};
    ASSERT_EQ(Draw(output, 0.5), kOfxStatOK);
    ExpectSame(output.View(), Expected(ImageView(source.View()), 2));
}

TEST_F(OpenfxForms, BlueFirstIsDrawnAsRedFirst) {
    Put("style_blend_mode", 11);
    Put("style_shadow_type", 1);
    expected_.Set("style/blend-mode", "darker-color");
    expected_.Set("style/shadow-type", "inner");
    HostImage source(kFrame, false), output(kFrame, false);
    Connect(source);
    const Image expected = Expected(ImageView(source.View()));
    for (std::size_t i = 0; i < source.memory.size(); i += 4) std::swap(source.memory[i], source.memory[i + 2]);
    instance_->clips["Source"].set.Put<std::string>("OfxImageEffectPropPixelOrder", {"OfxImagePixelOrderBGRA"});
    ASSERT_EQ(Draw(output), kOfxStatOK);
    for (std::size_t i = 0; i < output.memory.size(); i += 4) std::swap(output.memory[i], output.memory[i + 2]);
    ExpectSame(output.View(), expected);
}

TEST_F(OpenfxForms, TexturesAreWhereTheirClipIs) {
    Put("texture_blend_mode", 0);
    expected_.Set("texture/blend-mode", "normal");
    HostImage source(kFrame, false), output(kFrame, false), texture({10, -5, 50, 30}, false, false, 8);
    Connect(source);
    for (std::size_t i = 0; i < texture.memory.size(); ++i)
        texture.memory[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : i * 7);
    SmallClip& clip = instance_->clips["Texture"];
    clip.image = &texture.image;
    clip.region = {10, -5, 50, 30};
    clip.set.Put(kOfxImageClipPropConnected, {1});
    ASSERT_EQ(Draw(output), kOfxStatOK);
    FrameOptions options;
    options.canvas = Canvas::kLayer;
    options.texture = texture.View();
    options.textureX = 10;
    options.textureY = kHeight - 30;
    ExpectSame(output.View(), expected_.Render(source.View(), options));
    // Connected without an image, as some hosts have it.
    clip.image = nullptr;
    ASSERT_EQ(Draw(output), kOfxStatOK);
    ExpectSame(output.View(), Expected(source.View()));
}

TEST_F(OpenfxForms, NoSourceIsTransparent) {
    HostImage output(kFrame, false);
    instance_->clips["Source"].image = nullptr;
    ASSERT_EQ(Draw(output), kOfxStatOK);
    EXPECT_EQ(output.memory, std::vector<std::uint8_t>(output.memory.size(), 0));
    // An image without pixels is none.
    HostImage empty(kFrame, false);
    empty.image.bottom = nullptr;
    openfx::Describe(empty.image);
    ConnectImage(empty);
    output.memory.assign(output.memory.size(), 9);
    ASSERT_EQ(Draw(output), kOfxStatOK);
    EXPECT_EQ(output.memory, std::vector<std::uint8_t>(output.memory.size(), 0));
}

TEST_F(OpenfxForms, OtherFormatsAreRefusedWithASentence) {
    HostImage source(kFrame, false), output(kFrame, false);
    Connect(source);
    for (const auto& [property, value, part] :
         {std::tuple{kOfxImageEffectPropPixelDepth, kOfxBitDepthShort, "OfxBitDepthShort"},
          std::tuple{kOfxImageEffectPropComponents, kOfxImageComponentAlpha, "OfxImageComponentAlpha"}}) {
        openfx::Describe(source.image);
        source.image.set.Put<std::string>(property, {value});
        EXPECT_EQ(Draw(output), kOfxStatErrImageFormat);
        ASSERT_EQ(host_.messages.size(), 1u);
        EXPECT_NE(host_.messages[0].find(part), std::string::npos) << host_.messages[0];
        EXPECT_NE(host_.messages[0].find("the source"), std::string::npos) << host_.messages[0];
        host_.messages.clear();
    }
    openfx::Describe(source.image);
    source.image.set.Put(kOfxImagePropRowBytes, {4});
    EXPECT_EQ(Draw(output), kOfxStatFailed);
    EXPECT_EQ(host_.messages.size(), 1u);
    host_.messages.clear();
    source.image.set.values.erase(kOfxImagePropBounds);
    EXPECT_EQ(Draw(output), kOfxStatFailed);
    EXPECT_EQ(host_.messages.size(), 1u);
    host_.messages.clear();
}

TEST_F(OpenfxForms, WithoutAShadowTheRegionIsTheSources) {
    instance_->clips["Source"].region = {0, 0, kWidth, kHeight};
    instance_->clips["Texture"].set.Put(kOfxImageClipPropConnected, {0});
    Put("opacity_opacity_start", 0.0);
    Put("opacity_opacity_end", 0.0);
    SmallSet in, out;
    in.Put(kOfxPropTime, {0.0});
    ASSERT_EQ(host_.Call(kOfxImageEffectActionGetRegionOfDefinition, instance_.get(), &in, &out), kOfxStatOK);
    const auto& region = out.values[kOfxImageEffectPropRegionOfDefinition];
    EXPECT_EQ(region, (std::vector<SmallValue>{0.0, 0.0, 1.0 * kWidth, 1.0 * kHeight}));
}

}  // namespace
}  // namespace umbrant::openfx
