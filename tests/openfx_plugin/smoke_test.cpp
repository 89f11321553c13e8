// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The built bundle in a host of the fewest functions: it draws what the library draws.

#include <fstream>

#include "openfx/abi/parameter_properties.h"
#include "tests/openfx_plugin/smoke_fixture.h"

namespace umbrant::openfx {
namespace {

TEST_F(OpenfxSmoke, GrowsAsTheLibraryDoes) {
    HostImage source({-7, 11, kWidth - 7, kHeight + 11}, false, false, 12);
    Connect(source);
    SmallSet in, out;
    in.Put(kOfxPropTime, {0.0});
    in.Put(kOfxImageEffectPropRenderScale, {1.0, 1.0});
    ASSERT_EQ(host_.Call(kOfxImageEffectActionGetRegionOfDefinition, instance_.get(), &in, &out), kOfxStatOK);
    const auto pixels = Disc();
    const Image expected = expected_.Render({pixels.data(), kWidth, kHeight});
    const auto region = [&](std::size_t i) {
        return static_cast<int>(std::get<double>(out.values[kOfxImageEffectPropRegionOfDefinition][i]));
    };
    const OfxRectI bounds{region(0), region(1), region(2), region(3)};
    EXPECT_EQ(bounds.x1, -7 + expected.Place().left);
    EXPECT_EQ(bounds.y2, kHeight + 11 - expected.Place().top);
    HostImage output(bounds, false);
    instance_->clips["Output"].image = &output.image;
    EXPECT_EQ(host_.Render(*instance_, bounds), kOfxStatOK);
    ExpectSame(output.View(), expected);
}

TEST_F(OpenfxSmoke, FixedFramesAreTheLayersCanvas) {
    HostImage source({0, 0, kWidth, kHeight}, false), output({0, 0, kWidth, kHeight}, false, false, 4);
    Connect(source);
    instance_->clips["Output"].image = &output.image;
    EXPECT_EQ(host_.Render(*instance_, output.image.bounds), kOfxStatOK);
    FrameOptions options;
    options.canvas = Canvas::kLayer;
    const auto pixels = Disc();
    ExpectSame(output.View(), expected_.Render({pixels.data(), kWidth, kHeight}, options));
}

TEST_F(OpenfxSmoke, WritesTheWindowAlone) {
    HostImage source({0, 0, kWidth, kHeight}, false), output({-20, -30, kWidth + 30, kHeight + 10}, false);
    Connect(source);
    instance_->clips["Output"].image = &output.image;
    const OfxRectI window{10, 5, 90, 40};
    EXPECT_EQ(host_.Render(*instance_, window), kOfxStatOK);
    const auto pixels = Disc();
    const Image expected = expected_.Render({pixels.data(), kWidth, kHeight});
    const MutableImageView view = output.View();
    for (int y = 0; y < view.height; ++y) {
        for (int x = 0; x < view.width; ++x) {
            const int left = x - 20, up = kHeight + 10 - 1 - y, top = y - 10;
            const Rectangle& at = expected.Place();
            std::uint32_t wanted = 0x09090909, found = 0;
            if (left >= window.x1 && left < window.x2 && up >= window.y1 && up < window.y2) {
                wanted = 0;
                if (left >= at.left && left < at.right && top >= at.top && top < at.bottom)
                    std::memcpy(&wanted, expected.View().Row(top - at.top) + 4 * (left - at.left), 4);
            }
            std::memcpy(&found, view.Row(y) + 4 * x, 4);
            ASSERT_EQ(found, wanted) << x << "," << y;
        }
    }
}

TEST_F(OpenfxSmoke, WithoutOpacityTheResultIsTheSource) {
    Put("opacity_opacity_master", 0.0);
    HostImage source({0, 0, kWidth, kHeight}, false);
    Connect(source);
    SmallSet in, out;
    in.Put(kOfxPropTime, {3.0});
    EXPECT_EQ(host_.Call(kOfxImageEffectActionIsIdentity, instance_.get(), &in, &out), kOfxStatOK);
    EXPECT_EQ(out.Text(kOfxPropName), "Source");
    // The claim, checked where it is computed. Colours beside an alpha of 0 cannot be seen; the effect drops them.
    expected_.Set("opacity/opacity-master", 0);
    const auto pixels = Disc();
    FrameOptions options;
    options.canvas = Canvas::kLayer;
    const Image drawn = expected_.Render({pixels.data(), kWidth, kHeight}, options);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (pixels[i | 3] == 0) continue;
        ASSERT_EQ(drawn.Bytes()[i], pixels[i]) << i;
    }
}

TEST_F(OpenfxSmoke, RowsFollowTheShadowType) {
    const auto isSecret = [&](const char* name) {
        return instance_->parameters.at(name).set.values.contains(kOfxParamPropSecret) &&
               instance_->parameters.at(name).set.Int(kOfxParamPropSecret) == 1;
    };
    EXPECT_FALSE(isSecret("style_angle"));
    EXPECT_TRUE(isSecret("style_origin"));
    Put("style_shadow_type", 2);
    SmallSet in;
    in.Put<std::string>(kOfxPropType, {kOfxTypeParameter});
    in.Put<std::string>(kOfxPropName, {"style_shadow_type"});
    in.Put<std::string>(kOfxPropChangeReason, {kOfxChangeUserEdited});
    in.Put(kOfxPropTime, {0.0});
    EXPECT_EQ(host_.Call(kOfxActionInstanceChanged, instance_.get(), &in), kOfxStatOK);
    EXPECT_TRUE(isSecret("style_angle"));
    EXPECT_FALSE(isSecret("style_origin"));
}

TEST_F(OpenfxSmoke, LoadsPresets) {
    const std::string file = testing::TempDir() + "openfx_preset.json";
    std::ofstream(file) << R"({"version": 2, "values": {"style/distance": 33, "style/blend-mode": "add",
                               "style/color": "#ff0033", "easing/mode": "ease-in-out"}})";
    Put("preset_file", file);
    instance_->clips["Source"].region = {0, 0, kWidth, kHeight};
    SmallSet in;
    in.Put<std::string>(kOfxPropType, {kOfxTypeParameter});
    in.Put<std::string>(kOfxPropName, {"load_preset"});
    in.Put<std::string>(kOfxPropChangeReason, {kOfxChangeUserEdited});
    EXPECT_EQ(host_.Call(kOfxActionInstanceChanged, instance_.get(), &in), kOfxStatOK);
    EXPECT_EQ(std::get<double>(instance_->parameters.at("style_distance").value[0]), 33);
    EXPECT_EQ(std::get<double>(instance_->parameters.at("style_softness").value[0]), 6);
    EXPECT_EQ(std::get<int>(instance_->parameters.at("style_blend_mode").value[0]), 1);
    EXPECT_EQ(std::get<int>(instance_->parameters.at("easing_mode").value[0]), 1);
    EXPECT_EQ(std::get<double>(instance_->parameters.at("style_color").value[2]), 0.2);

    Put("preset_file", file + ".missing");
    EXPECT_EQ(host_.Call(kOfxActionInstanceChanged, instance_.get(), &in), kOfxStatFailed);
    ASSERT_EQ(host_.messages.size(), 1u);
    EXPECT_NE(host_.messages[0].find(file + ".missing"), std::string::npos);
    host_.messages.clear();
}

TEST_F(OpenfxSmoke, UnknownActionsAndNoHandlesAreAnswered) {
    EXPECT_EQ(host_.Call("OfxActionOfTheFuture", instance_.get()), kOfxStatReplyDefault);
    EXPECT_EQ(host_.Call("OfxActionOfTheFuture", nullptr), kOfxStatReplyDefault);
    EXPECT_EQ(host_.Call(kOfxImageEffectActionRender, nullptr), kOfxStatFailed);
    EXPECT_EQ(host_.Call(kOfxActionCreateInstance, nullptr), kOfxStatFailed);
    EXPECT_EQ(host_.Call(kOfxImageEffectActionGetRegionOfDefinition, nullptr), kOfxStatReplyDefault);
    EXPECT_EQ(host_.Call(kOfxActionLoad, nullptr), kOfxStatOK);
    EXPECT_EQ(host_.Call(kOfxActionUnload, nullptr), kOfxStatOK);
    EXPECT_EQ(host_.Call(kOfxActionUnload, nullptr), kOfxStatOK);
    EXPECT_EQ(host_.Call(kOfxActionLoad, nullptr), kOfxStatOK);
}

TEST_F(OpenfxSmoke, SeveralFailingFramesAreOneMessageThatDoesNotStay) {
    HostImage source({0, 0, kWidth, kHeight}, false), output({0, 0, kWidth, kHeight}, false);
    Connect(source);
    instance_->clips["Output"].image = nullptr;
    host_.hasPersistentMessages = false;
    EXPECT_EQ(host_.Call(kOfxActionLoad, nullptr), kOfxStatOK);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(host_.Render(*instance_, output.image.bounds), kOfxStatFailed);
    EXPECT_EQ(host_.messages.size(), 1u);
    instance_->clips["Output"].image = &output.image;
    EXPECT_EQ(host_.Render(*instance_, output.image.bounds), kOfxStatOK);
    instance_->clips["Output"].image = nullptr;
    EXPECT_EQ(host_.Render(*instance_, output.image.bounds), kOfxStatFailed);
    EXPECT_EQ(host_.messages.size(), 2u);
    // One that stays at the instance is the newest.
    host_.hasPersistentMessages = true;
    EXPECT_EQ(host_.Call(kOfxActionLoad, nullptr), kOfxStatOK);
    EXPECT_EQ(host_.Render(*instance_, output.image.bounds), kOfxStatFailed);
    EXPECT_EQ(host_.messages.size(), 3u);
    host_.messages.clear();
}

TEST_F(OpenfxSmoke, StopsWhereItIsAborted) {
    HostImage source({0, 0, kWidth, kHeight}, false), output({0, 0, kWidth, kHeight}, false);
    Connect(source);
    instance_->clips["Output"].image = &output.image;
    host_.isAborted = true;
    EXPECT_EQ(host_.Render(*instance_, output.image.bounds), kOfxStatFailed);
    host_.isAborted = false;
    EXPECT_EQ(output.memory, std::vector<std::uint8_t>(output.memory.size(), 9));
}

}  // namespace
}  // namespace umbrant::openfx
