// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host runs a correct small plug-in without a violation, and finds the error of each wrong one.

#include <gmock/gmock.h>

#include "tests/openfx/host/instance.h"
#include "tests/openfx/openfx_fixture.h"

namespace umbrant::ofx {
namespace {

using testing::HasSubstr;

/// What the small effect makes of a picture.
Picture Bordered(const Picture& source, int border, float gain = 1) {
    const OfxRectI& area = source.bounds;
    Picture expected({area.x1 - border, area.y1 - border, area.x2 + border, area.y2 + border}, source.depth);
    for (int y = area.y1; y < area.y2; ++y) {
        for (int x = area.x1; x < area.x2; ++x) {
            for (int c = 0; c < 4; ++c) {
                const float value = source.At(x, y)[c] * gain;
                expected.At(x, y)[c] = source.depth == Depth::kByte ? std::round(value) : value;
            }
        }
    }
    return expected;
}

/// Takes a plug-in through its whole life, and returns what the host has to say.
std::string Life(const std::string& name) {
    Host host;
    std::string error;
    const auto plugIn = PlugIn::Open(host, std::string(OPENFX_PLANTED) + "/" + name + ".ofx", error);
    if (plugIn == nullptr) return error;
    std::string differences;
    if (plugIn->Start() == kOfxStatOK) {
        OfxStatus status = kOfxStatOK;
        if (auto instance = Instance::Create(*plugIn, kFilter, status)) {
            const Picture source = Disc({-7, 11, 9, 23});
            instance->Connect({source});
            instance->Set("gain", 1.0);
            instance->Set("gain", 1.0);
            instance->FindParam("gain")->SetKey(0, {0.0});
            instance->FindParam("gain")->SetKey(4, {1.0});
            FrameOptions options;
            options.time = 2;
            options.gap = 12;
            options.negativeRows = true;
            const Frame frame = instance->Render(options);
            if (frame.status == kOfxStatOK) differences += Difference(frame.output, Bordered(source, 2, 0.5f));
            options.window = OfxRectI{-5, 12, 3, 20};
            instance->Render(options);
            options.abortAt = 2;
            const Frame aborted = instance->Render(options);
            if (aborted.status == kOfxStatOK && aborted.abortCalls > 2) {
                differences += "the render went on after abort answered 1";
            }
            instance->Set("border", 0);
            instance->IsIdentity();
        }
        plugIn->Call("org.umbrant.noSuchAction", nullptr, nullptr, nullptr);
    }
    plugIn->Unload();
    return host.record.ViolationText() + differences;
}

TEST(Planted, TheCorrectOneHasNoViolation) {
    EXPECT_EQ(Life("kNone"), "");
}

TEST(Planted, EveryErrorIsFound) {
    const struct {
        const char* flaw;
        const char* sentence;
    } rows[] = {
        {"kCallsTooEarly", "fetchSuite was called while no action runs"},
        {"kWrongApi", "pluginApi is 'ImageEffect', not OfxImageEffectPluginAPI"},
        {"kThrows", "OfxActionCreateInstance: an exception left the entry point: planted"},
        {"kThrowsInRender", "OfxImageEffectActionRender: an exception left the entry point"},
        {"kAnswersUnknown", "the unknown action org.umbrant.noSuchAction was answered with Failed instead of"},
        {"kAnswersFatal", "OfxActionLoad was answered with ErrFatal"},
        {"kDefaultsRender", "OfxImageEffectActionRender was answered with ReplyDefault; its answers are"},
        {"kNoLabel", "OfxActionDescribe did not set OfxPropLabel"},
        {"kWrongType",
         "propSetDouble: the property OfxImageEffectPropSupportsTiles of the effect's descriptor has the "
         "type int, not double"},
        {"kWrongDimension", "OfxImageEffectPropSupportsTiles of the effect's descriptor has 1 value(s), not 2"},
        {"kWrongIndex", "OfxImageEffectPropSupportsTiles of the effect's descriptor has 1 value(s), no index 1"},
        {"kWrongValue",
         "may be OfxImageEffectRenderUnsafe|OfxImageEffectRenderInstanceSafe|"
         "OfxImageEffectRenderFullySafe, not 'FullySafe'"},
        {"kUnknownProperty", "the property OfxImageEffectPropTiles of the effect's descriptor is unknown"},
        {"kForeignProperty", "OfxImageClipPropOptional of the effect's descriptor belongs to clip descriptor"},
        {"kParamTwice", "the parameter gain is defined twice"},
        {"kClipTwice", "the clip Source is defined twice"},
        {"kWrongName", "the name 'style/gain' has other characters than letters, digits and _"},
        {"kNoOutput", "no clip Output is defined"},
        {"kNoComponents", "the clip Source has no components"},
        {"kMandatoryTexture", "the clip Texture must be optional in a filter"},
        {"kParentLater", "the parameter gain is in the group group, which is defined after it"},
        {"kDefaultOutside", "the parameter gain has its default outside of its limits"},
        {"kEmptySlider", "the parameter gain has an empty slider"},
        {"kNoOptions", "the parameter mode has no options"},
        {"kOptionGap", "OfxParamPropChoiceOption of the parameter mode has 1 value(s), no index 2"},
        {"kDefinesLate", "paramDefine was called outside of OfxImageEffectActionDescribeInContext"},
        {"kKeepsArguments", "propGetString was called with a handle that is not (or no longer) a property set"},
        {"kKeepsText", "the effect did not define a clip ??????"},
        {"kNullHandle", "propSetInt was called with a null handle instead of a property set"},
        {"kWrongHandle", "propSetInt was called with a handle that is not (or no longer) a property set"},
        {"kEndlessChange", "OfxActionInstanceChanged sets gain again and again"},
        {"kSetsInRender", "the parameter gain was set during OfxImageEffectActionRender"},
        {"kIgnoresTime", "the parameter gain is animated; a render must use paramGetValueAtTime"},
        {"kNoSuchOption", "the parameter mode has no value 7"},
        {"kWrongRegion", "OfxImageEffectActionGetRegionOfDefinition: the rectangle is not in order"},
        {"kUnsetRegion", "OfxImageEffectActionGetRegionOfDefinition answered OK and did not set its result"},
        {"kUnknownIdentity", "OfxImageEffectActionIsIdentity: there is no clip 'source'"},
        {"kIgnoresWindow", "the render wrote pixels outside of its window"},
        {"kWritesGap", "the render wrote outside of the rows of its output"},
        {"kWritesBefore", "the render wrote outside of the rows of its output"},
        {"kIgnoresNegativeRows", "the render wrote outside of the rows of its output"},
        {"kLeavesPixels", "the render did not write every pixel of its window"},
        {"kWritesSource", "the render wrote to its source"},
        {"kWritesImageProperty", "OfxImagePropRowBytes of the image of clip Output is read-only"},
        {"kUpsideDown", "pixels differ"},
        {"kIgnoresOrigin", "pixels differ"},
        {"kKeepsImage", "OfxImageEffectActionRender: the image of clip Output is not released"},
        {"kReleasesTwice", "clipReleaseImage was called with a handle that is not (or no longer) an image"},
        {"kOtherTime", "clipGetImage asked clip Source for another time than the frame's"},
        {"kNeverAborts", "the render went on after abort answered 1"},
        {"kLeaksMemory", "OfxActionUnload: 1 of memoryAlloc not given back"},
        {"kFreesTwice", "memoryFree was called with a block that memoryAlloc did not give, or twice"},
        {"kLeaksMutex", "OfxActionUnload: 1 of mutexCreate not given back"},
        {"kLeaksImageMemory", "OfxActionDestroyInstance: image memory is not given back"},
        {"kOpenEdit", "OfxActionUnload: 1 of paramEditBegin not given back"},
        {"kWrongMessage", "message: no message has the type 'Error'"},
        {"kNestedThreads", "multiThread was called from one of its own threads"},
        {"kWrongProgress", "progressUpdate: a progress is from 0 to 1"},
    };
    for (const auto& row : rows) EXPECT_THAT(Life(row.flaw), HasSubstr(row.sentence)) << row.flaw;
}

TEST(Planted, AFileThatIsNoPlugIn) {
    Host host;
    std::string error;
    EXPECT_EQ(PlugIn::Open(host, "/nonexistent/Umbrant.ofx.bundle", error), nullptr);
    EXPECT_THAT(error, HasSubstr("'/nonexistent/Umbrant.ofx.bundle' cannot be loaded: "));
}

TEST(Difference, SaysThatAnImageIsUpsideDown) {
    const Picture picture = Disc({0, 0, 8, 6});
    Picture flipped(picture.bounds, picture.depth);
    for (int y = 0; y < 6; ++y) std::copy_n(picture.At(0, y), 32, flipped.At(0, 5 - y));
    EXPECT_THAT(Difference(flipped, picture), HasSubstr("the image is upside down"));
    EXPECT_EQ(Difference(picture, picture), "");
    EXPECT_THAT(Difference(Disc({0, 0, 8, 5}), picture),
                HasSubstr("the image covers (0, 0)-(8, 5), not (0, 0)-(8, 6)"));
}

}  // namespace
}  // namespace umbrant::ofx
