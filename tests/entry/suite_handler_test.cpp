// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The suite cache: what it asks the host for, when, and that it gives everything back.

#include "entry/suites/suite_handler.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/test_host.h"

namespace umbrant::effect {

namespace {

using Lines = std::vector<std::string>;

struct Accessor {
    const char* name;
    int32_t version;
    std::function<const void*(AEGP_SuiteHandler&)> get;
};

const Accessor kAccessors[] = {
    {"PF Handle Suite", 2, [](AEGP_SuiteHandler& s) { return s.HandleSuite1(); }},
    {"PF ANSI Suite", 1, [](AEGP_SuiteHandler& s) { return s.ANSICallbacksSuite1(); }},
    {"PF World Suite", 2, [](AEGP_SuiteHandler& s) { return s.WorldSuite2(); }},
    {"PF Iterate8 Suite", 1, [](AEGP_SuiteHandler& s) { return s.Iterate8Suite1(); }},
    {"PF iterateFloat Suite", 1, [](AEGP_SuiteHandler& s) { return s.IterateFloatSuite1(); }},
    {"PF World Transform Suite", 1, [](AEGP_SuiteHandler& s) { return s.WorldTransformSuite1(); }},
    {"PF ColorParamSuite", 1, [](AEGP_SuiteHandler& s) { return s.ColorParamSuite1(); }},
    {"PF Param Utils Suite", 3, [](AEGP_SuiteHandler& s) { return s.ParamUtilsSuite3(); }},
    {"PF Effect UI Suite", 1, [](AEGP_SuiteHandler& s) { return s.EffectUISuite1(); }},
    {"PF Effect Custom UI Suite", 1, [](AEGP_SuiteHandler& s) { return s.EffectCustomUISuite1(); }},
    {"DRAWBOT Draw Suite", 1, [](AEGP_SuiteHandler& s) { return s.DrawbotSuite1(); }},
    {"DRAWBOT Supplier Suite", 1, [](AEGP_SuiteHandler& s) { return s.SupplierSuite1(); }},
    {"DRAWBOT Surface Suite", 1, [](AEGP_SuiteHandler& s) { return s.SurfaceSuite1(); }},
    {"DRAWBOT Path Suite", 1, [](AEGP_SuiteHandler& s) { return s.PathSuite1(); }},
    {"AEGP PF Interface Suite", 1, [](AEGP_SuiteHandler& s) { return s.PFInterfaceSuite1(); }},
    {"AEGP Layer Suite", 13, [](AEGP_SuiteHandler& s) { return s.LayerSuite7(); }},
    {"AEGP Effect Suite", 2, [](AEGP_SuiteHandler& s) { return s.EffectSuite2(); }},
    {"AEGP Stream Suite", 7, [](AEGP_SuiteHandler& s) { return s.StreamSuite2(); }},
    {"AEGP Dynamic Stream Suite", 2, [](AEGP_SuiteHandler& s) { return s.DynamicStreamSuite2(); }},
};

/// A place for each suite; the cache never looks inside.
char tables[std::size(kAccessors)];

void OfferAll(TestHost* host) {
    for (size_t i = 0; i < std::size(kAccessors); ++i) {
        host->Offer(kAccessors[i].name, kAccessors[i].version, &tables[i]);
    }
}

int ThrownBy(const std::function<void()>& action) {
    try {
        action();
    } catch (PF_Err err) {
        return err;
    }
    return 0;
}

TEST(SuiteHandler, NullBasicSuiteThrowsAtOnce) {
    EXPECT_EQ(ThrownBy([] { AEGP_SuiteHandler suites(nullptr); }), 516);
}

TEST(SuiteHandler, MissingSuiteErrorIsThePlainInteger) {
    int caught = 0;
    try {
        MissingSuiteError();
    } catch (int err) {
        caught = err;
    } catch (...) {
        ADD_FAILURE() << "not a plain integer";
    }
    EXPECT_EQ(caught, 516);
}

TEST(SuiteHandler, ConstructionAcquiresNothing) {
    TestHost host;
    { AEGP_SuiteHandler suites(&host.basic); }
    EXPECT_TRUE(host.calls.empty());
}

TEST(SuiteHandler, EveryAccessorAsksForItsNameAndVersion) {
    for (size_t i = 0; i < std::size(kAccessors); ++i) {
        TestHost host;
        OfferAll(&host);
        const std::string suite = std::string(kAccessors[i].name) + " " + std::to_string(kAccessors[i].version);
        SCOPED_TRACE(suite);
        {
            AEGP_SuiteHandler suites(&host.basic);
            EXPECT_EQ(kAccessors[i].get(suites), &tables[i]);
            EXPECT_EQ(kAccessors[i].get(suites), &tables[i]);
            EXPECT_EQ(host.calls, (Lines{"AcquireSuite " + suite})) << "acquired once, then cached";
        }
        EXPECT_EQ(host.calls, (Lines{"AcquireSuite " + suite, "ReleaseSuite " + suite}));
        EXPECT_TRUE(host.Balanced());
    }
}

TEST(SuiteHandler, AllTogether) {
    TestHost host;
    OfferAll(&host);
    {
        AEGP_SuiteHandler suites(&host.basic);
        for (const Accessor& accessor : kAccessors) accessor.get(suites);
        EXPECT_EQ(host.calls.size(), std::size(kAccessors));
    }
    EXPECT_EQ(host.calls.size(), 2 * std::size(kAccessors));
    std::string why;
    EXPECT_TRUE(host.Balanced(&why)) << why;
}

TEST(SuiteHandler, AMissingSuiteThrowsAndIsNotRetried) {
    for (const Accessor& accessor : kAccessors) {
        SCOPED_TRACE(accessor.name);
        for (const bool asNull : {false, true}) {
            TestHost host;
            OfferAll(&host);
            if (asNull) {
                host.OfferNull(accessor.name, accessor.version);
            } else {
                host.Refuse(accessor.name, 4711);
            }
            {
                AEGP_SuiteHandler suites(&host.basic);
                EXPECT_EQ(ThrownBy([&] { accessor.get(suites); }), 516);
                EXPECT_EQ(host.CountOf(std::string("AcquireSuite ") + accessor.name), 1);
            }
            EXPECT_EQ(host.CountOf("ReleaseSuite"), 0) << "nothing was acquired";
        }
    }
}

TEST(SuiteHandler, AMissingSuiteLeavesTheOthersBalanced) {
    TestHost host;
    host.Refuse("PF ANSI Suite");
    EXPECT_EQ(ThrownBy([&] {
                  AEGP_SuiteHandler suites(&host.basic);
                  suites.HandleSuite1();
                  suites.WorldSuite2();
                  suites.ANSICallbacksSuite1();
              }),
              516);
    EXPECT_EQ(host.CountOf("ReleaseSuite PF Handle Suite 2"), 1);
    EXPECT_EQ(host.CountOf("ReleaseSuite PF World Suite 2"), 1);
    EXPECT_TRUE(host.Balanced());
}

TEST(SuiteHandler, ReleaseAllForgetsAndAcquiresAnew) {
    TestHost host;
    {
        AEGP_SuiteHandler suites(&host.basic);
        suites.HandleSuite1();
        suites.ReleaseAllSuites();
        EXPECT_TRUE(host.Balanced());
        suites.ReleaseAllSuites();
        EXPECT_EQ(host.CountOf("ReleaseSuite"), 1) << "the slot is clear";
        EXPECT_EQ(suites.HandleSuite1(), &host.handleSuite);
        EXPECT_EQ(host.CountOf("AcquireSuite"), 2);
    }
    EXPECT_TRUE(host.Balanced());
}

TEST(SuiteHandler, LoadAndReleaseByName) {
    TestHost host;
    AEGP_SuiteHandler suites(&host.basic);
    EXPECT_EQ(suites.LoadSuite("PF ANSI Suite", 1), &host.ansiSuite);
    suites.ReleaseSuite("PF ANSI Suite", 1);
    EXPECT_TRUE(host.Balanced());
    EXPECT_EQ(ThrownBy([&] { suites.LoadSuite("PF ANSI Suite", 2); }), 516) << "another version is another suite";
    EXPECT_EQ(ThrownBy([&] { suites.LoadSuite("No Such Suite", 1); }), 516);
}

int throwingReleases = 0;
SPErr ThrowingRelease(const char*, int32_t) {
    throw PF_Err{4711 + throwingReleases++};
}

TEST(SuiteHandler, NothingLeavesTheDestructorAndEverySuiteIsReleasedOnce) {
    TestHost host;
    host.basic.ReleaseSuite = ThrowingRelease;
    throwingReleases = 0;
    EXPECT_EQ(ThrownBy([&] {
                  AEGP_SuiteHandler suites(&host.basic);
                  suites.HandleSuite1();
                  suites.WorldSuite2();
              }),
              0);
    EXPECT_EQ(throwingReleases, 2);
    // Also while another exception is on its way.
    EXPECT_EQ(ThrownBy([&] {
                  AEGP_SuiteHandler suites(&host.basic);
                  suites.HandleSuite1();
                  throw PF_Err{12};
              }),
              12);
    EXPECT_EQ(throwingReleases, 3);
}

TEST(SuiteHandler, ReleaseAllReleasesEachOnceAndThrowsTheFirst) {
    TestHost host;
    host.basic.ReleaseSuite = ThrowingRelease;
    throwingReleases = 0;
    {
        AEGP_SuiteHandler suites(&host.basic);
        suites.HandleSuite1();
        suites.ANSICallbacksSuite1();
        EXPECT_EQ(ThrownBy([&] { suites.ReleaseAllSuites(); }), 4711);
        EXPECT_EQ(throwingReleases, 2);
        EXPECT_EQ(ThrownBy([&] { suites.ReleaseAllSuites(); }), 0);
    }
    EXPECT_EQ(throwingReleases, 2);
}

static_assert(std::is_nothrow_destructible_v<AEGP_SuiteHandler>);
static_assert(!std::is_copy_constructible_v<AEGP_SuiteHandler> && !std::is_copy_assignable_v<AEGP_SuiteHandler>);

}  // namespace

}  // namespace umbrant::effect
