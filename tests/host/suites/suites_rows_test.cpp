// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Walks over rows: every row once, at its first pixel, errors and exceptions brought back.

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <vector>

#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "host/suites/offered_rows.h"
#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

namespace {

class RowWalks : public SuitesTest {
 protected:
    PF_Err Walk(PF_EffectWorld* world, void* refcon, UMBRANT_RowFunction function) {
        return kUmbrantHostSuite2.WalkRows(ref, world, refcon, function);
    }
};

struct Visits {
    const PF_EffectWorld* world = nullptr;
    std::vector<std::atomic<int>> rows;
    std::atomic<int> wrongPlaces{0};
};

PF_Err Visit(void* refcon, A_long y, void* pixels) {
    auto& visits = *static_cast<Visits*>(refcon);
    ++visits.rows[static_cast<std::size_t>(y)];
    if (pixels != RowOf<char>(*visits.world, y)) ++visits.wrongPlaces;
    return PF_Err_NONE;
}

TEST_F(RowWalks, VisitEveryRowOnceInEveryDepth) {
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::k32}) {
        World world = World::Create(5, 37, depth);
        Visits visits{&world.Def(), std::vector<std::atomic<int>>(37)};
        EXPECT_EQ(Walk(&world.Def(), &visits, Visit), PF_Err_NONE);
        for (const std::atomic<int>& row : visits.rows) EXPECT_EQ(row, 1);
        EXPECT_EQ(visits.wrongPlaces, 0);
    }
}

TEST_F(RowWalks, BringBackErrorsAndExceptions) {
    World world = World::Create(5, 9, Depth::k8);
    const auto failing = [](void*, A_long y, void*) -> PF_Err { return y == 4 ? 777 : PF_Err_NONE; };
    EXPECT_EQ(Walk(&world.Def(), nullptr, failing), 777);
    EXPECT_TRUE(services.Misbehaviour().empty());
    const auto throwing = [](void*, A_long, void*) -> PF_Err { throw std::runtime_error("row"); };
    EXPECT_EQ(Walk(&world.Def(), nullptr, throwing), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_FALSE(services.Misbehaviour().empty());
}

TEST_F(RowWalks, RefuseWhatIsNotTheHosts) {
    World world = World::Create(5, 9, Depth::k8);
    Visits visits{&world.Def(), std::vector<std::atomic<int>>(9)};
    EXPECT_EQ(Walk(nullptr, &visits, Visit), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(Walk(&world.Def(), &visits, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kUmbrantHostSuite2.WalkRows(nullptr, &world.Def(), &visits, Visit), PF_Err_BAD_CALLBACK_PARAM);
    PF_EffectWorld longer = world.Def();
    longer.height = 1000;
    EXPECT_EQ(Walk(&longer, &visits, Visit), PF_Err_BAD_CALLBACK_PARAM) << "it leads out of the world's memory";
    for (const std::atomic<int>& row : visits.rows) EXPECT_EQ(row, 0);
}

TEST_F(RowWalks, CountAsUploadAndReadBack) {
    World world = World::Create(5, 9, Depth::k8);
    const auto nothing = [](void*, A_long, void*) -> PF_Err { return PF_Err_NONE; };
    ASSERT_EQ(Walk(&world.Def(), nullptr, nothing), PF_Err_NONE);
    EXPECT_GT(notes.stages.Snapshot().upload, 0);
    ASSERT_EQ(Walk(&world.Def(), nullptr, nothing), PF_Err_NONE);
    EXPECT_GT(notes.stages.Snapshot().readBack, 0);
    EXPECT_EQ(notes.stages.Snapshot().composite, 0);
}

TEST_F(RowWalks, AreNotOfferedToAJudge) {
    const void* suite = nullptr;
    {
        const WithoutRows none;
        EXPECT_EQ(basicSuite.AcquireSuite("Umbrant Host Suite", 2, &suite), A_Err_MISSING_SUITE);
        EXPECT_NE(Acquire<UMBRANT_HostSuite1>("Umbrant Host Suite", 1), nullptr);
    }
    EXPECT_EQ(Acquire<UMBRANT_HostSuite2>("Umbrant Host Suite", 2), &kUmbrantHostSuite2);
}

TEST_F(RowWalks, TheFirstVersionsCallIsInTheSecond) {
    services.renderer = UMBRANT_Renderer_PROCESSOR;
    UMBRANT_Renderer renderer = UMBRANT_Renderer_ANY;
    ASSERT_EQ(kUmbrantHostSuite2.GetRenderer(ref, &renderer), PF_Err_NONE);
    EXPECT_EQ(renderer, UMBRANT_Renderer_PROCESSOR);
}

}  // namespace

}  // namespace umbrant::host
