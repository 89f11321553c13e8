// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is offered, what is refused, and how the books are kept.

#include <cstring>

#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

struct Offered {
    const char* name;
    int32_t version;
};

class OfferedSuites : public SuitesTest, public ::testing::WithParamInterface<Offered> {};

TEST_P(OfferedSuites, AreGrantedAndCounted) {
    const auto [name, version] = GetParam();
    const void* suite = nullptr;
    EXPECT_EQ(basicSuite.AcquireSuite(name, version, &suite), 0);
    EXPECT_NE(suite, nullptr);
    const void* again = nullptr;
    EXPECT_EQ(basicSuite.AcquireSuite(name, version, &again), 0);
    EXPECT_EQ(again, suite);
    EXPECT_EQ(Open(Resource::kSuite), 2);
    EXPECT_THAT(services.acquired.Names(), ElementsAre(std::string(name) + " " + std::to_string(version)));
    EXPECT_EQ(notes.acquired.Names(), services.acquired.Names());

    EXPECT_EQ(basicSuite.ReleaseSuite(name, version), 0);
    EXPECT_EQ(basicSuite.ReleaseSuite(name, version), 0);
    EXPECT_EQ(Open(Resource::kSuite), 0);
    EXPECT_TRUE(services.Misbehaviour().empty());
    EXPECT_NE(basicSuite.ReleaseSuite(name, version), 0);
    EXPECT_EQ(services.Misbehaviour().size(), 1u);
    EXPECT_EQ(Open(Resource::kSuite), 0);
}

TEST_P(OfferedSuites, AreNotGrantedInAnotherVersion) {
    const void* suite = &services;
    EXPECT_EQ(basicSuite.AcquireSuite(GetParam().name, GetParam().version + 100, &suite), A_Err_MISSING_SUITE);
    EXPECT_EQ(suite, nullptr);
    EXPECT_EQ(services.refused.Names().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(All, OfferedSuites,
                         ::testing::Values(Offered{"PF World Transform Suite", 1}, Offered{"PF Iterate8 Suite", 1},
                                           Offered{"PF iterate16 Suite", 1}, Offered{"PF iterateFloat Suite", 1},
                                           Offered{"PF Handle Suite", 2}, Offered{"PF World Suite", 2},
                                           Offered{"PF ColorParamSuite", 1}, Offered{"PF ANSI Suite", 1},
                                           Offered{"PF Param Utils Suite", 3}, Offered{"PF Effect UI Suite", 1},
                                           Offered{"PF Effect Custom UI Suite", 1}, Offered{"DRAWBOT Draw Suite", 1},
                                           Offered{"DRAWBOT Supplier Suite", 1}, Offered{"DRAWBOT Surface Suite", 1},
                                           Offered{"DRAWBOT Path Suite", 1}, Offered{"AEGP PF Interface Suite", 1},
                                           Offered{"AEGP Layer Suite", 13}, Offered{"AEGP Effect Suite", 2},
                                           Offered{"AEGP Stream Suite", 7}, Offered{"AEGP Dynamic Stream Suite", 2},
                                           Offered{"Umbrant Host Suite", 1}, Offered{"Umbrant Host Suite", 2}));

TEST_F(SuitesTest, RefusesUnknownSuites) {
    const void* suite = nullptr;
    for (const char* name : {"No Suite", "", "drawbot draw suite"}) {
        EXPECT_EQ(basicSuite.AcquireSuite(name, 1, &suite), A_Err_MISSING_SUITE) << name;
    }
    EXPECT_THAT(services.refused.Names(), ElementsAre(" 1", "No Suite 1", "drawbot draw suite 1"));
    EXPECT_EQ(basicSuite.AcquireSuite(nullptr, 1, &suite), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(basicSuite.AcquireSuite("PF Handle Suite", 2, nullptr), PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(SuitesTest, TheFaultHookRefusesASuite) {
    services.fault = [](std::string_view call) { return call == "AcquireSuite:PF Handle Suite" ? 13 : 0; };
    EXPECT_EQ(Acquire<PF_HandleSuite1>("PF Handle Suite", 2), nullptr);
    EXPECT_NE(Acquire<PF_WorldSuite2>("PF World Suite", 2), nullptr);
    EXPECT_THAT(services.refused.Names(), ElementsAre("PF Handle Suite 2"));
}

TEST_F(SuitesTest, TheFaultHookFailsACall) {
    services.fault = [](std::string_view call) {
        return call == "PF World Suite.PF_NewWorld" ? 4 : call == "PF Handle Suite.host_new_handle" ? 4 : 0;
    };
    PF_EffectWorld world{};
    EXPECT_EQ(kWorldSuite.PF_NewWorld(ref, 2, 2, 1, PF_PixelFormat_ARGB32, &world), 4);
    EXPECT_EQ(kHandleSuite.host_new_handle(8), nullptr);
    EXPECT_EQ(Open(Resource::kWorld) + Open(Resource::kHandle), 0);
    EXPECT_NE(utilCallbacks.host_new_handle(8), nullptr) << "the utilities have names of their own";
}

TEST_F(SuitesTest, ComparesTokens) {
    const std::string copy = "token";
    EXPECT_TRUE(basicSuite.IsEqual("token", copy.c_str()));
    EXPECT_FALSE(basicSuite.IsEqual("token", "other"));
    EXPECT_FALSE(basicSuite.IsEqual("token", nullptr));
    EXPECT_EQ(basicSuite.Undefined(), PF_Err_INVALID_CALLBACK);
}

TEST_F(SuitesTest, HandsOutBlocks) {
    void* block = nullptr;
    ASSERT_EQ(basicSuite.AllocateBlock(4, &block), 0);
    std::memcpy(block, "abc", 4);
    EXPECT_EQ(Open(Resource::kBlock), 1);
    void* larger = nullptr;
    ASSERT_EQ(basicSuite.ReallocateBlock(block, 4000, &larger), 0);
    EXPECT_STREQ(static_cast<char*>(larger), "abc");
    EXPECT_EQ(Open(Resource::kBlock), 1);
    EXPECT_EQ(basicSuite.FreeBlock(larger), 0);
    EXPECT_EQ(Open(Resource::kBlock), 0);
    EXPECT_EQ(basicSuite.FreeBlock(nullptr), 0);
    EXPECT_EQ(basicSuite.FreeBlock(larger), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_THAT(services.Misbehaviour(), ElementsAre("an invalid or released memory block was released"));
}

TEST_F(SuitesTest, AMissingSlotSaysWhichItIs) {
    EXPECT_EQ(kWorldTransformSuite.convolve(ref, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr),
              PF_Err_INVALID_CALLBACK);
    EXPECT_EQ(kLayerSuite.AEGP_DeleteLayer(nullptr), PF_Err_INVALID_CALLBACK);
    EXPECT_EQ(utilCallbacks.app(ref, 0), PF_Err_INVALID_CALLBACK);
    EXPECT_EQ(utilCallbacks.colorCB.Hue(ref, nullptr, nullptr), PF_Err_INVALID_CALLBACK);
    EXPECT_THAT(services.Misbehaviour(),
                ElementsAre("PF World Transform Suite.convolve was called, which this host does not implement",
                            "AEGP Layer Suite.AEGP_DeleteLayer was called, which this host does not implement",
                            "utils.app was called, which this host does not implement",
                            "utils.colorCB.Hue was called, which this host does not implement"));
}

/// Every slot of a table of functions is filled.
template <typename Table>
void ExpectFilled(const Table& table, const char* name, std::initializer_list<std::size_t> empty = {}) {
    void* slots[sizeof(Table) / sizeof(void*)];
    std::memcpy(slots, &table, sizeof(slots));
    for (std::size_t i = 0; i < std::size(slots); ++i) {
        if (std::find(empty.begin(), empty.end(), i) != empty.end()) continue;
        EXPECT_NE(slots[i], nullptr) << name << ", slot " << i;
    }
}

TEST_F(SuitesTest, NoSlotIsEmpty) {
    ExpectFilled(kHandleSuite, "handle");
    ExpectFilled(kANSISuite, "ansi");
    ExpectFilled(kWorldSuite, "world");
    ExpectFilled(kIterate8Suite, "iterate8");
    ExpectFilled(kIterate16Suite, "iterate16");
    ExpectFilled(kIterateFloatSuite, "iterateFloat");
    ExpectFilled(kWorldTransformSuite, "world transform");
    ExpectFilled(kColorParamSuite, "color param");
    ExpectFilled(kParamUtilsSuite, "param utils");
    ExpectFilled(kEffectUISuite, "effect ui");
    ExpectFilled(kEffectCustomUISuite, "effect custom ui");
    ExpectFilled(kDrawbotDrawSuite, "draw");
    ExpectFilled(kDrawbotSupplierSuite, "supplier");
    ExpectFilled(kDrawbotSurfaceSuite, "surface");
    ExpectFilled(kDrawbotPathSuite, "path");
    ExpectFilled(kPFInterfaceSuite, "interface");
    ExpectFilled(kLayerSuite, "layer");
    ExpectFilled(kEffectSuite, "effect");
    ExpectFilled(kStreamSuite, "stream");
    ExpectFilled(kDynamicStreamSuite, "dynamic stream");
    ExpectFilled(kUmbrantHostSuite, "umbrant host");
    ExpectFilled(kUmbrantHostSuite2, "umbrant host 2");
    ExpectFilled(basicSuite, "basic");
    // The batch function that is no more, the ANSI block's spare word and the table's.
    ExpectFilled(utilCallbacks, "utilities",
                 {3, offsetof(PF_UtilCallbacks, ansi.unused_longA) / 8, offsetof(PF_UtilCallbacks, reserved) / 8});
}

TEST_F(SuitesTest, AnswersOnAThreadWithoutAScope) {
    const ServiceScope none(nullptr, nullptr);
    EXPECT_EQ(CurrentServices(), &services) << "the session that began last";
    const PF_Handle handle = kHandleSuite.host_new_handle(1);
    EXPECT_EQ(Open(Resource::kHandle), 1);
    EXPECT_EQ(notes.tally.Snapshot()[Resource::kHandle], 0);
    kHandleSuite.host_dispose_handle(handle);
    EXPECT_EQ(Open(Resource::kHandle), 0);
}

TEST(SuitesWithoutASession, StillAnswer) {
    ASSERT_EQ(CurrentServices(), nullptr);
    const PF_Handle handle = kHandleSuite.host_new_handle(1);
    EXPECT_NE(kHandleSuite.host_lock_handle(handle), nullptr);
    kHandleSuite.host_dispose_handle(handle);
    EXPECT_EQ(utilCallbacks.fill(nullptr, nullptr, nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
}

TEST(Balances, SayWhatIsOpen) {
    Balance balance;
    EXPECT_TRUE(balance.IsBalanced());
    EXPECT_EQ(balance.Text(), "nothing open");
    Tally tally;
    tally.Add(Resource::kHandle, 2);
    tally.Add(Resource::kParam, -1);
    balance = tally.Snapshot();
    EXPECT_FALSE(balance.IsBalanced());
    EXPECT_EQ(balance.Text(), "handles 2, parameter check-outs -1");
}

}  // namespace

}  // namespace umbrant::host
