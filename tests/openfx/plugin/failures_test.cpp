// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Hosts that have little, and suite functions that fail: each life of the plug-in ends in order, and a failure is a
// status.

#include <set>

#include "tests/openfx/plugin/plugin_fixture.h"
#include "tests/support/sanitized.h"

namespace umbrant::ofx {
namespace {

constexpr OfxRectI kFailureBounds{2, 1, 18, 13};

/// One life in a host; the status of the first step that did not succeed, and the frame.
struct Life {
    std::string step = "done";
    OfxStatus status = kOfxStatOK;
    Picture output{};
    std::string violations{};
    std::map<std::string, int> calls{};
};

void Live(Host& host, PlugIn& plugIn, Life& life, const std::vector<Fault>& inFrame) {
    life.step = "start";
    life.status = plugIn.Start();
    if (!Succeeded(life.status)) return;
    life.step = "create";
    life.status = kOfxStatFailed;
    if (plugIn.Context(kGeneral) == nullptr) return;
    auto instance = Instance::Create(plugIn, kGeneral, life.status);
    if (instance == nullptr) return;
    life.step = "frame";
    const Picture source = Disc(kFailureBounds);
    Inputs inputs{source, source};
    instance->Connect(inputs);
    for (const auto& setting : SmallSettings()) {
        // A row that the host refused is absent; the effect then has its default.
        if (instance->FindParam(ParamName(setting.first)) == nullptr) continue;
        Session::Apply(*instance, {setting}, kFailureBounds);
    }
    instance->IsIdentity();
    std::map<std::string, OfxRectD> regions;
    instance->RegionsOfInterest(0, {0, 0, 8, 8}, regions);
    if (!inFrame.empty()) {
        host.record.ClearCalls();
        host.record.SetFaults(inFrame);
    }
    Frame frame = instance->Render();
    life.status = frame.status;
    if (!inFrame.empty()) {
        // What failed once must not be remembered.
        host.record.SetFaults({});
        const Frame again = instance->Render();
        EXPECT_EQ(again.status, kOfxStatOK) << "after " << inFrame[0].function << " " << inFrame[0].nth;
        frame = again;
    }
    life.output = frame.output;
    if (Succeeded(life.status)) life.step = "done";
}

/// With faults for the whole life, or only for its frame.
Life LifeWith(HostOptions options, const std::vector<Fault>& faults = {}, const std::vector<Fault>& inFrame = {}) {
    setenv("UMBRANT_RENDERER", "cpu", 1);
    Life life;
    Host host(std::move(options));
    std::string error;
    auto plugIn = PlugIn::Open(host, Bundle(), error);
    EXPECT_NE(plugIn, nullptr) << error;
    if (plugIn == nullptr) return life;
    host.record.SetFaults(faults);
    Live(host, *plugIn, life, inFrame);
    host.record.SetFaults({});
    plugIn->Unload();
    life.violations = host.record.ViolationText();
    life.calls = host.record.Calls();
    return life;
}

/// The life that nothing disturbs, to compare with.
class OpenFxFailures : public testing::Test {
 protected:
    OpenFxFailures() : whole_(LifeWith({})) {
        EXPECT_EQ(whole_.step, "done") << StatusName(whole_.status);
        EXPECT_EQ(whole_.violations, "");
    }

    Life whole_;
};

TEST_F(OpenFxFailures, AHostWithTheNecessaryPropertiesAlone) {
    HostOptions options;
    options.minimal = true;
    const Life life = LifeWith(options);
    EXPECT_EQ(life.step, "done") << StatusName(life.status);
    EXPECT_EQ(life.violations, "");
    EXPECT_EQ(Difference(life.output, whole_.output), "");
}

TEST_F(OpenFxFailures, EachPropertyMissing) {
    // Without these no effect can know what to draw where.
    const std::set<std::string> necessary = {
        "OfxImagePropData",
        "OfxImagePropBounds",
        "OfxImagePropRowBytes",
        "OfxImageEffectPropPixelDepth",
        "OfxImageEffectPropRenderWindow",
        "OfxPropTime",
        "OfxImageEffectPropContext",
        "OfxImageEffectPropRegionOfDefinition",
        "OfxImageEffectPropSupportedContexts",
        "OfxParamPropChoiceOption",
        "OfxImageEffectPropSupportedComponents",
        "OfxParamPropDefault",
        "OfxImageEffectPropSupportedPixelDepths",
        "OfxPropInstanceData",
        "OfxImageEffectPropComponents",
    };
    int count = 0;
    for (const PropertyRow& row : PropertyTable()) {
        if (kIsSanitized && ++count % 8 != 0) continue;
        HostOptions options;
        options.missing = {std::string(row.name)};
        const Life life = LifeWith(options);
        EXPECT_EQ(life.violations, "") << row.name;
        if (necessary.contains(std::string(row.name))) continue;
        EXPECT_EQ(life.step, "done") << row.name << ": " << StatusName(life.status);
        if (life.step == "done") {
            EXPECT_EQ(Difference(life.output, whole_.output), "") << row.name;
        }
    }
}

TEST_F(OpenFxFailures, EachSuiteAbsent) {
    for (const std::string suite : {"OfxPropertySuite", "OfxImageEffectSuite", "OfxParameterSuite"}) {
        HostOptions options;
        options.absentSuites = {suite};
        const Life life = LifeWith(options);
        EXPECT_EQ(life.step, "start") << suite;
        EXPECT_FALSE(Succeeded(life.status)) << suite;
        EXPECT_EQ(life.violations, "") << suite;
    }
    const std::set<std::string> rest = {"OfxMemorySuite",   "OfxMultiThreadSuite", "OfxMessageSuite",
                                        "OfxProgressSuite", "OfxTimeLineSuite",    "OfxInteractSuite"};
    std::vector<std::set<std::string>> rows = {rest, {"OfxMessageSuite/2"}, {"OfxMessageSuite/1"}};
    for (const std::string& suite : rest) rows.push_back({suite});
    for (const auto& absent : rows) {
        HostOptions options;
        options.absentSuites = absent;
        const Life life = LifeWith(options);
        EXPECT_EQ(life.step, "done") << *absent.begin() << ": " << StatusName(life.status);
        EXPECT_EQ(life.violations, "") << *absent.begin();
        EXPECT_EQ(Difference(life.output, whole_.output), "") << *absent.begin();
    }
}

/// The calls at which a function fails in turn: all of them, or so many of them, the first ones and others evenly.
/// Every one takes a life of the plug-in, which takes ten times as long under a sanitizer.
std::vector<int> CallsToFail(int calls) {
    constexpr int kFirst = kIsSanitized ? 1 : 6, kOthers = kIsSanitized ? 1 : 6;
    std::vector<int> chosen;
    const bool all = std::getenv("UMBRANT_SOAK") != nullptr || calls <= kFirst + kOthers;
    for (int call = 1; call <= calls; ++call) {
        const int step = std::max(1, (calls - kFirst) / kOthers);
        if (all || call <= kFirst || (call - kFirst) % step == 0) chosen.push_back(call);
    }
    return chosen;
}

TEST_F(OpenFxFailures, EachFunctionAtEachCall) {
    for (const auto& [function, calls] : whole_.calls) {
        for (const int nth : CallsToFail(calls)) {
            const Life life = LifeWith({}, {{function, nth, kOfxStatFailed}});
            EXPECT_EQ(life.violations, "") << function << " at call " << nth << " of " << calls;
        }
    }
}

TEST_F(OpenFxFailures, EachFunctionAtEveryCall) {
    for (const auto& [function, calls] : whole_.calls) {
        for (const OfxStatus status : {kOfxStatErrMemory, kOfxStatFailed, kOfxStatErrUnknown, kOfxStatErrBadHandle}) {
            if (kIsSanitized && status != kOfxStatErrMemory) break;
            const Life life = LifeWith({}, {{function, 0, status}});
            EXPECT_EQ(life.violations, "") << function << " answers " << StatusName(status);
        }
    }
}

TEST_F(OpenFxFailures, EachFunctionAtEachCallOfAFrame) {
    const Life first = LifeWith({}, {}, {{"no such function", 1, kOfxStatFailed}});
    EXPECT_EQ(Difference(first.output, whole_.output), "");
    for (const auto& [function, calls] : first.calls) {
        for (const int nth : CallsToFail(calls / 2)) {
            const Life life = LifeWith({}, {}, {{function, nth, kOfxStatFailed}});
            EXPECT_EQ(life.violations, "") << function << " at call " << nth << " of a frame";
            EXPECT_EQ(Difference(life.output, whole_.output), "") << function << " at call " << nth;
        }
    }
}

TEST(OpenFxFrame, WithoutASource) {
    Session session;
    session.TheInstance().Connect({Disc(kFailureBounds)});
    session.Apply(SmallSettings(), kFailureBounds);
    FrameOptions rows[2];
    rows[0].sourceMissing = true;
    rows[1].sourceWithoutData = true;
    for (const FrameOptions& options : rows) {
        const Frame frame = session.TheInstance().Render(options);
        ASSERT_EQ(frame.status, kOfxStatOK);
        EXPECT_EQ(Difference(frame.output, Picture(frame.output.bounds, Depth::kByte)), "");
    }
    EXPECT_EQ(session.TheInstance().Render().status, kOfxStatOK);
}

TEST(OpenFxFrame, StopsWhenTheHostAsks) {
    Session session;
    session.TheInstance().Connect({Disc(kFailureBounds)});
    session.Apply(ManySettings(), kFailureBounds);
    const Frame whole = session.TheInstance().Render();
    ASSERT_EQ(whole.status, kOfxStatOK);
    ASSERT_GE(whole.abortCalls, 1) << "the effect never asks whether to stop";
    for (int at = 1; at <= whole.abortCalls; ++at) {
        FrameOptions options;
        options.abortAt = at;
        const Frame frame = session.TheInstance().Render(options);
        EXPECT_LE(frame.abortCalls, whole.abortCalls) << at;
        // OK is for a complete frame, which the host checks; anything else must be a status of a render.
        EXPECT_TRUE(frame.status == kOfxStatFailed || frame.status == kOfxStatOK) << StatusName(frame.status);
    }
    EXPECT_EQ(Difference(session.TheInstance().Render().output, whole.output), "");
}

TEST(OpenFxFrame, WithoutTheActionsAroundIt) {
    Session session;
    session.TheInstance().Connect({Disc(kFailureBounds)});
    session.Apply(SmallSettings(), kFailureBounds);
    FrameOptions options;
    options.onlyRender = true;
    const Frame frame = session.TheInstance().Render(options);
    EXPECT_EQ(Difference(frame.output, FromLibrary(Disc(kFailureBounds), SmallSettings())), "");
}

}  // namespace
}  // namespace umbrant::ofx
