// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the plug-in says of itself: its description, its parameters beside the panel's rows, its regions, identity and
// clip preferences.

#include <cmath>
#include <set>

#include "tests/openfx/plugin/plugin_fixture.h"

namespace umbrant::ofx {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr OfxRectI kQuestionBounds{-7, 11, 57, 59};

TEST(OpenFxDescription, SaysWhatTheEffectIs) {
    Session session;
    const OfxPlugin& plugIn = session.ThePlugIn().Struct();
    EXPECT_THAT(plugIn.pluginIdentifier, testing::EndsWith(".umbrant2"));
    EXPECT_EQ(plugIn.pluginVersionMajor, 1u);
    EXPECT_EQ(plugIn.pluginVersionMinor, 0u);
    PropertySet& set = session.ThePlugIn().Descriptor().Properties();
    EXPECT_THAT(set.String("OfxPropLabel"), HasSubstr("Umbrant"));
    EXPECT_THAT(set.Strings("OfxImageEffectPropSupportedContexts"), UnorderedElementsAre(kFilter, kGeneral));
    EXPECT_THAT(set.Strings("OfxImageEffectPropSupportedPixelDepths"),
                UnorderedElementsAre("OfxBitDepthByte", "OfxBitDepthFloat"));
    EXPECT_EQ(set.Int("OfxImageEffectPropSupportsTiles"), 0);
    EXPECT_EQ(set.Int("OfxImageEffectPropSupportsMultiResolution"), 1);
    EXPECT_EQ(set.Int("OfxImageEffectPropTemporalClipAccess"), 0);
    EXPECT_EQ(set.Int("OfxImageEffectPluginPropHostFrameThreading"), 0);
    EXPECT_EQ(set.Int("OfxImageEffectPropMultipleClipDepths"), 0);
    EXPECT_EQ(set.String("OfxImageEffectPluginRenderThreadSafety"), "OfxImageEffectRenderFullySafe");
}

TEST(OpenFxDescription, HasTheClips) {
    Session session;
    for (const std::string context : {kFilter, kGeneral}) {
        EffectObject* effect = session.ThePlugIn().Context(context);
        ASSERT_NE(effect, nullptr) << context;
        std::set<std::string> names;
        for (const auto& clip : effect->Clips()) {
            names.insert(clip->Name());
            EXPECT_THAT(clip->Properties().Strings("OfxImageEffectPropSupportedComponents"),
                        ElementsAre("OfxImageComponentRGBA"));
            EXPECT_EQ(clip->Properties().Int("OfxImageEffectPropSupportsTiles"), 0) << clip->Name();
        }
        EXPECT_THAT(names, UnorderedElementsAre("Source", "Output", "Texture")) << context;
        EXPECT_EQ(effect->FindClip("Texture")->Properties().Int("OfxImageClipPropOptional"), 1);
        EXPECT_EQ(effect->FindClip("Source")->Properties().Int("OfxImageClipPropOptional"), 0);
    }
}

TEST(OpenFxDescription, HasTheSameParametersInBothContexts) {
    Session session;
    const auto names = [&](const char* context) {
        std::vector<std::string> all;
        for (const auto& param : session.ThePlugIn().Context(context)->Params().All()) {
            all.push_back(param->Name() + " " + std::string(param->Type().name));
        }
        return all;
    };
    EXPECT_EQ(names(kFilter), names(kGeneral));
}

/// The plug-in's types for a row of the panel.
std::set<std::string> TypesOf(const umbrant::Parameter& row) {
    switch (row.kind) {
        case umbrant::ParameterKind::kInteger:
        case umbrant::ParameterKind::kNumber:
            return {"OfxParamTypeInteger", "OfxParamTypeDouble"};
        case umbrant::ParameterKind::kAngle:
            return {"OfxParamTypeDouble"};
        case umbrant::ParameterKind::kCheckBox:
            return {"OfxParamTypeBoolean"};
        case umbrant::ParameterKind::kPopup:
            return {"OfxParamTypeChoice"};
        case umbrant::ParameterKind::kColor:
            return {"OfxParamTypeRGB"};
        case umbrant::ParameterKind::kPoint:
            return {"OfxParamTypeDouble2D"};
        default:
            return {};
    }
}

void CompareRow(Param& param, const umbrant::Parameter& row) {
    SCOPED_TRACE(row.path);
    PropertySet& set = param.Properties();
    EXPECT_EQ(TypesOf(row).count(std::string(param.Type().name)), 1u) << param.Type().name;
    if (row.kind == umbrant::ParameterKind::kPopup) {
        std::vector<std::string> items;
        for (const std::string& item : row.itemNames) {
            if (!item.empty() && item != "(-" && item != "-") items.push_back(item);
        }
        EXPECT_EQ(set.Strings("OfxParamPropChoiceOption"), items);
        const auto chosen = static_cast<std::size_t>(row.defaultNumbers.at(0)) - 1;
        EXPECT_EQ(items.at(static_cast<std::size_t>(set.Int("OfxParamPropDefault"))), row.itemNames.at(chosen));
    }
    if (row.kind == umbrant::ParameterKind::kNumber || row.kind == umbrant::ParameterKind::kInteger) {
        const bool whole = param.Type().value == "int";
        const auto number = [&](const char* name) { return whole ? set.Int(name) : set.Double(name); };
        EXPECT_DOUBLE_EQ(number("OfxParamPropMin"), row.minimum);
        EXPECT_DOUBLE_EQ(number("OfxParamPropMax"), row.maximum);
        // The slider is the panel's, within the limits, and has the default on it.
        EXPECT_DOUBLE_EQ(number("OfxParamPropDisplayMin"),
                         std::min(std::max(row.sliderMinimum, row.minimum), row.defaultNumbers.at(0)));
        EXPECT_DOUBLE_EQ(number("OfxParamPropDisplayMax"),
                         std::max(std::min(row.sliderMaximum, row.maximum), row.defaultNumbers.at(0)));
        EXPECT_NEAR(number("OfxParamPropDefault"), row.defaultNumbers.at(0), 1e-9);
    }
    if (row.kind == umbrant::ParameterKind::kColor) {
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(set.Double("OfxParamPropDefault", c), row.defaultNumbers.at(static_cast<std::size_t>(c)) / 255,
                        1e-9);
        }
    }
}

TEST(OpenFxDescription, HasTheRowsOfThePanel) {
    Session session;
    const ParamSet& params = session.ThePlugIn().Context(kFilter)->Params();
    int compared = 0;
    for (const umbrant::Parameter& row : PanelRows()) {
        // Rows about the driver and for developers are the panel's own.
        const bool own = row.path.starts_with("about-support") || row.path.starts_with("debug");
        if (own || !row.hasValue || row.kind == umbrant::ParameterKind::kLayer) continue;
        Param* param = params.Find(ParamName(row.path));
        ASSERT_NE(param, nullptr) << row.path;
        CompareRow(*param, row);
        ++compared;
    }
    EXPECT_GE(compared, 20);
}

TEST(OpenFxDescription, HasTheOriginAsAPointOfTheProject) {
    Session session;
    Param* origin = session.ThePlugIn().Context(kFilter)->Params().Find("style_origin");
    ASSERT_NE(origin, nullptr);
    EXPECT_EQ(origin->Properties().String("OfxParamPropDoubleType"), "OfxParamDoubleTypeXYAbsolute");
    EXPECT_EQ(origin->Properties().String("OfxParamPropDefaultCoordinateSystem"), "OfxParamCoordinatesNormalised");
    EXPECT_EQ(origin->Properties().Double("OfxParamPropDefault", 0), 0);
    EXPECT_EQ(origin->Properties().Double("OfxParamPropDefault", 1), 1);
    const ParamValue value = session.TheInstance().FindParam("style_origin")->Constant();
    EXPECT_EQ(std::get<double>(value[0]), 0);
    EXPECT_EQ(std::get<double>(value[1]), 48);
}

/// The choice named alpha, of how the colours of images are to be read.
Param* AlphaOf(Instance& instance) {
    for (const auto& param : instance.Effect().Params().All()) {
        const std::string label = param->Properties().String("OfxPropLabel");
        if (param->Type().name == "OfxParamTypeChoice" && label.find("lpha") != std::string::npos &&
            param->Properties().Count("OfxParamPropChoiceOption") == 3) {
            return param.get();
        }
    }
    return nullptr;
}

TEST(OpenFxClips, PreferencesFollowTheSource) {
    Session session;
    Instance& instance = session.TheInstance();
    for (const char* state : {kStraight, kPremultiplied}) {
        Inputs inputs{Disc(kQuestionBounds)};
        inputs.premultiplication = state;
        const OfxStatus status = instance.Connect(inputs);
        EXPECT_TRUE(Succeeded(status)) << StatusName(status);
        EXPECT_EQ(instance.OutputPremultiplication(), state);
    }
    Inputs opaque{Disc(kQuestionBounds)};
    opaque.premultiplication = kOpaque;
    instance.Connect(opaque);
    // The shadow's edges are not opaque.
    EXPECT_NE(instance.OutputPremultiplication(), kOpaque);
}

TEST(OpenFxClips, TheAlphaChoiceOverridesTheHost) {
    Session session;
    Instance& instance = session.TheInstance();
    Param* alpha = AlphaOf(instance);
    ASSERT_NE(alpha, nullptr) << "no choice of the alpha";
    const Picture source = Disc(kQuestionBounds, Depth::kFloat);
    const Picture straight = FromPlugIn(session, {source}, ManySettings());
    Inputs wrong{source};
    wrong.premultiplication = kPremultiplied;
    instance.Connect(wrong);
    for (const std::string& option : alpha->Properties().Strings("OfxParamPropChoiceOption")) {
        if (option.find("traight") == std::string::npos) continue;
        instance.SetChoice(alpha->Name(), option);
        instance.ClipPreferences();
        EXPECT_EQ(instance.OutputPremultiplication(), kStraight);
        EXPECT_EQ(Difference(instance.Render().output, straight), "");
    }
}

TEST(OpenFxRegion, IsTheLibrarysImage) {
    Session session;
    for (const char* type : {"normal", "inner", "radial"}) {
        for (const char* distance : {"0", "3", "41.5"}) {
            const Settings settings = {{"style/shadow-type", type},
                                       {"style/origin", "5,9"},
                                       {"style/distance", distance},
                                       {"style/softness", "7"}};
            const Picture source = Disc(kQuestionBounds);
            session.TheInstance().Connect({source});
            session.Apply(settings, kQuestionBounds);
            OfxRectD region{};
            EXPECT_EQ(session.TheInstance().RegionOfDefinition(0, region), kOfxStatOK);
            const OfxRectI expected = FromLibrary(source, settings).bounds;
            EXPECT_EQ(region.x1, expected.x1) << type << " " << distance;
            EXPECT_EQ(region.y1, expected.y1) << type << " " << distance;
            EXPECT_EQ(region.x2, expected.x2) << type << " " << distance;
            EXPECT_EQ(region.y2, expected.y2) << type << " " << distance;
        }
    }
}

TEST(OpenFxRegion, OfInterestIsAtLeastTheWholeSource) {
    Session session;
    session.TheInstance().Connect({Disc(kQuestionBounds)});
    std::map<std::string, OfxRectD> regions;
    const OfxStatus status = session.TheInstance().RegionsOfInterest(0, {0, 20, 4, 24}, regions);
    EXPECT_TRUE(Succeeded(status)) << StatusName(status);
    EXPECT_LE(regions["Source"].x1, kQuestionBounds.x1);
    EXPECT_LE(regions["Source"].y1, kQuestionBounds.y1);
    EXPECT_GE(regions["Source"].x2, kQuestionBounds.x2);
    EXPECT_GE(regions["Source"].y2, kQuestionBounds.y2);
}

TEST(OpenFxIdentity, IsWhereNothingIsDrawn) {
    Session session;
    Instance& instance = session.TheInstance();
    const Picture source = Disc(kQuestionBounds);
    instance.Connect({source});
    session.Apply(SmallSettings(), kQuestionBounds);
    EXPECT_EQ(instance.IsIdentity().status, kOfxStatReplyDefault);
    session.Apply({{"opacity/opacity-master", "0"}}, kQuestionBounds);
    FrameOptions options;
    options.time = 5;
    const Identity identity = instance.IsIdentity(options);
    EXPECT_EQ(identity.status, kOfxStatOK);
    EXPECT_EQ(identity.clip, "Source");
    EXPECT_EQ(identity.time, 5);
    session.Apply({{"compositing/source-opacity", "99"}}, kQuestionBounds);
    EXPECT_EQ(instance.IsIdentity().status, kOfxStatReplyDefault);
}

TEST(OpenFxIdentity, IsTrueToTheBitWhereItIsClaimed) {
    const Settings rows[] = {
        {{"opacity/opacity-master", "0"}},
        {{"opacity/opacity-start", "0"}, {"opacity/opacity-end", "0"}},
        {{"style/distance", "0"}, {"style/softness", "0"}},
        {{"opacity/opacity-master", "0"}, {"style/shadow-type", "inner"}},
    };
    for (const Depth depth : {Depth::kByte, Depth::kFloat}) {
        for (const Settings& settings : rows) {
            Session session;
            const Picture source = Disc(kQuestionBounds, depth);
            session.TheInstance().Connect({source});
            session.Apply(settings, kQuestionBounds);
            if (session.TheInstance().IsIdentity().status != kOfxStatOK) continue;
            const Frame frame = session.TheInstance().Render();
            for (int y = kQuestionBounds.y1; y < kQuestionBounds.y2; ++y) {
                for (int x = kQuestionBounds.x1; x < kQuestionBounds.x2; ++x) {
                    // A colour below an alpha of 0 is not visible, and is not kept by the effect.
                    for (int c = source.At(x, y)[3] > 0 ? 0 : 3; c < 4; ++c) {
                        ASSERT_EQ(frame.output.At(x, y)[c], source.At(x, y)[c])
                            << settings.front().first << " at " << x << ", " << y;
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace umbrant::ofx
