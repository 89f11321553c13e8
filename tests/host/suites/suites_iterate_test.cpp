// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Walks over pixels: every pixel once, where the area and the source say, errors and exceptions brought back.

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include "host/compositing/rectangles.h"
#include "host/compositing/row_pool.h"
#include "host/compositing/world.h"
#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

namespace {

/// Marks each pixel with its coordinates and what it was given.
PF_Err Mark8(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out) {
    if (refcon) ++*static_cast<std::atomic<int>*>(refcon);
    *out = {static_cast<A_u_char>(in->alpha + 1), static_cast<A_u_char>(x), static_cast<A_u_char>(y), in->blue};
    return PF_Err_NONE;
}

TEST_F(SuitesTest, IterateVisitsEveryPixelOnce) {
    World world = World::Create(37, 23, Depth::k8);
    std::atomic<int> visits{0};
    ASSERT_EQ(kIterate8Suite.iterate(nullptr, 0, 23, &world.Def(), nullptr, &visits, Mark8, &world.Def()), 0);
    EXPECT_EQ(visits, 37 * 23);
    for (int y = 0; y < 23; ++y) {
        for (int x = 0; x < 37; ++x) {
            EXPECT_EQ(At(world, x, y).alpha, 1);
            EXPECT_EQ(At(world, x, y).red, x);
            EXPECT_EQ(At(world, x, y).green, y);
        }
    }
}

TEST_F(SuitesTest, IterateKeepsToItsAreaAndItsSource) {
    World source = World::Create(3, 9, Depth::k8);
    World world = World::Create(8, 8, Depth::k8);
    const PF_Rect area{1, 2, 100, 5};
    std::atomic<int> visits{0};
    ASSERT_EQ(utilCallbacks.iterate(nullptr, 0, 8, &source.Def(), &area, &visits, Mark8, &world.Def()), 0);
    EXPECT_EQ(visits, 2 * 3) << "columns 1 and 2, rows 2 to 4";
    EXPECT_EQ(At(world, 1, 2).alpha, 1);
    EXPECT_EQ(At(world, 3, 2).alpha, 0);
    EXPECT_EQ(At(world, 1, 5).alpha, 0);
    const PF_Rect empty{5, 5, 5, 5};
    ASSERT_EQ(utilCallbacks.iterate(nullptr, 0, 8, nullptr, &empty, &visits, Mark8, &world.Def()), 0);
    EXPECT_EQ(visits, 6);
}

TEST_F(SuitesTest, WithoutASourceThePixelIsItsOwnInput) {
    World world = World::Create(2, 2, Depth::k8);
    RowOf<PF_Pixel>(world.Def(), 1)[1] = {40, 0, 0, 9};
    ASSERT_EQ(kIterate8Suite.iterate(nullptr, 0, 2, nullptr, nullptr, nullptr, Mark8, &world.Def()), 0);
    EXPECT_EQ(At(world, 1, 1).alpha, 41);
    EXPECT_EQ(At(world, 1, 1).blue, 9);
}

TEST_F(SuitesTest, AnOriginMovesTheSource) {
    World source = World::Create(2, 2, Depth::k8);
    RowOf<PF_Pixel>(source.Def(), 0)[0] = {100, 0, 0, 7};
    World world = World::Create(6, 6, Depth::k8);
    const PF_Point origin{{3}, {4}};
    std::atomic<int> visits{0};
    ASSERT_EQ(
        kIterate8Suite.iterate_origin(nullptr, 0, 6, &source.Def(), nullptr, &origin, &visits, Mark8, &world.Def()), 0);
    EXPECT_EQ(visits, 4) << "only where there is a source pixel";
    EXPECT_EQ(At(world, 3, 4).alpha, 101);
    EXPECT_EQ(At(world, 3, 4).blue, 7);
    visits = 0;
    ASSERT_EQ(kIterate8Suite.iterate_origin_non_clip_src(nullptr, 0, 6, &source.Def(), nullptr, &origin, &visits, Mark8,
                                                         &world.Def()),
              0);
    EXPECT_EQ(visits, 36) << "transparent pixels elsewhere";
    EXPECT_EQ(At(world, 0, 0).alpha, 1);
    EXPECT_EQ(At(world, 3, 4).alpha, 101);
}

TEST_F(SuitesTest, TheOtherDepthsWalkTheSameWay) {
    World deep = World::Create(5, 4, Depth::k16);
    ASSERT_EQ(kIterate16Suite.iterate(
                  nullptr, 0, 4, nullptr, nullptr, nullptr,
                  [](void*, A_long x, A_long y, PF_Pixel16*, PF_Pixel16* out) {
                      out->red = static_cast<A_u_short>(1000 * x + y);
                      return PF_Err_NONE;
                  },
                  &deep.Def()),
              0);
    EXPECT_EQ(RowOf<PF_Pixel16>(deep.Def(), 3)[4].red, 4003);
    World floating = World::Create(5, 4, Depth::k32);
    ASSERT_EQ(kIterateFloatSuite.iterate(
                  nullptr, 0, 4, nullptr, nullptr, nullptr,
                  [](void*, A_long x, A_long y, PF_PixelFloat*, PF_PixelFloat* out) {
                      out->red = static_cast<float>(x) + static_cast<float>(y) / 16;
                      return PF_Err_NONE;
                  },
                  &floating.Def()),
              0);
    EXPECT_EQ(RowOf<PF_PixelFloat>(floating.Def(), 3)[4].red, 4.1875f);
    EXPECT_EQ(kIterate8Suite.iterate(nullptr, 0, 4, nullptr, nullptr, nullptr, Mark8, &deep.Def()),
              PF_Err_BAD_CALLBACK_PARAM)
        << "a world of another depth";
    EXPECT_EQ(kIterate8Suite.iterate(nullptr, 0, 4, nullptr, nullptr, nullptr, nullptr, &deep.Def()),
              PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kIterate8Suite.iterate(nullptr, 0, 4, nullptr, nullptr, nullptr, Mark8, nullptr),
              PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(SuitesTest, AnErrorStopsTheWalkAndComesBack) {
    World world = World::Create(4, 400, Depth::k8);
    std::atomic<int> visits{0};
    const auto fail = [](void* refcon, A_long, A_long y, PF_Pixel*, PF_Pixel*) {
        ++*static_cast<std::atomic<int>*>(refcon);
        return y == 2 ? PF_Err{777} : PF_Err_NONE;
    };
    EXPECT_EQ(kIterate8Suite.iterate(nullptr, 0, 400, nullptr, nullptr, &visits, fail, &world.Def()), 777);
    EXPECT_LT(visits, 4 * 400);
}

TEST_F(SuitesTest, AnExceptionDoesNotCrossThreads) {
    World world = World::Create(4, 40, Depth::k8);
    const auto fail = [](void*, A_long, A_long, PF_Pixel*, PF_Pixel*) -> PF_Err { throw std::runtime_error("pixel"); };
    EXPECT_EQ(kIterate8Suite.iterate(nullptr, 0, 40, nullptr, nullptr, nullptr, fail, &world.Def()),
              PF_Err_INTERNAL_STRUCT_DAMAGED);
    ASSERT_FALSE(services.Misbehaviour().empty());
    EXPECT_EQ(services.Misbehaviour().front(), "a pixel function of the effect threw an exception");
}

TEST_F(SuitesTest, PixelFunctionsMeanTheSessionOfTheirCaller) {
    World world = World::Create(4, 64, Depth::k8);
    const auto take = [](void*, A_long x, A_long, PF_Pixel*, PF_Pixel*) {
        if (x == 0) kHandleSuite.host_dispose_handle(kHandleSuite.host_new_handle(1));
        if (x == 1) kHandleSuite.host_new_handle(1);
        return PF_Err_NONE;
    };
    ASSERT_EQ(kIterate8Suite.iterate(nullptr, 0, 64, nullptr, nullptr, nullptr, take, &world.Def()), 0);
    EXPECT_EQ(notes.tally.Snapshot()[Resource::kHandle], 64);
}

TEST_F(SuitesTest, GenericIterationCountsAndNamesItsThreads) {
    struct Seen {
        std::mutex mutex;
        std::multiset<A_long> indices;
        std::set<A_long> threads;
        A_long iterations = 0;
    } seen;
    const auto note = [](void* refcon, A_long thread, A_long i, A_long iterations) {
        auto& s = *static_cast<Seen*>(refcon);
        const std::lock_guard lock(s.mutex);
        s.indices.insert(i);
        s.threads.insert(thread);
        s.iterations = iterations;
        return PF_Err_NONE;
    };
    ASSERT_EQ(kIterate8Suite.iterate_generic(50, &seen, note), 0);
    EXPECT_EQ(seen.indices.size(), 50u);
    EXPECT_EQ(std::set<A_long>(seen.indices.begin(), seen.indices.end()).size(), 50u);
    EXPECT_EQ(seen.iterations, 50);
    EXPECT_GE(*seen.threads.begin(), 0);
    EXPECT_LT(*seen.threads.rbegin(), RowThreads());
    seen.indices.clear();
    ASSERT_EQ(utilCallbacks.iterate_generic(PF_Iterations_ONCE_PER_PROCESSOR, &seen, note), 0);
    EXPECT_EQ(static_cast<int>(seen.indices.size()), RowThreads());
    EXPECT_EQ(kIterate8Suite.iterate_generic(-2, &seen, note), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kIterate8Suite.iterate_generic(1, &seen, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    const auto fail = [](void*, A_long, A_long i, A_long) { return i == 3 ? PF_Err{9} : PF_Err_NONE; };
    EXPECT_EQ(kIterate8Suite.iterate_generic(10, nullptr, fail), 9);
}

TEST_F(SuitesTest, TablesOfValuesReplaceChannels) {
    World world = World::Create(2, 1, Depth::k8);
    RowOf<PF_Pixel>(world.Def(), 0)[1] = {1, 2, 3, 4};
    A_u_char inverse[256];
    for (int i = 0; i < 256; ++i) inverse[i] = static_cast<A_u_char>(255 - i);
    ASSERT_EQ(kIterate8Suite.iterate_lut(nullptr, 0, 1, &world.Def(), nullptr, inverse, nullptr, inverse, nullptr,
                                         &world.Def()),
              0);
    const PF_Pixel pixel = At(world, 1, 0);
    EXPECT_EQ(pixel.alpha, 254);
    EXPECT_EQ(pixel.red, 2);
    EXPECT_EQ(pixel.green, 252);
    EXPECT_EQ(pixel.blue, 4);
}

TEST(RowPool, TakesEveryRowOnceAlsoFromSeveralThreadsAndFromInside) {
    std::atomic<int> rows{0};
    const auto sweep = [&] {
        for (int i = 0; i < 50; ++i) {
            ForEachRowRange(17, [&](int begin, int end) {
                ForEachRowRange(2, [&](int b, int e) { rows += (end - begin) * (e - b); });
            });
        }
    };
    std::thread other(sweep);
    sweep();
    other.join();
    EXPECT_EQ(rows, 2 * 50 * 17 * 2);
    ForEachRowRange(0, [](int, int) { FAIL(); });
    ForEachRowRange(-3, [](int, int) { FAIL(); });
}

TEST(RowPool, BringsAnExceptionToItsCaller) {
    EXPECT_THROW(
        RunRows(64, [](int index, int) -> bool { return index == 5 ? throw std::runtime_error("row") : true; }),
        std::runtime_error);
    std::atomic<int> rows{0};
    RunRows(1000, [&](int, int) { return ++rows < 3; });
    EXPECT_LT(rows, 1000) << "a false ends the walk";
}

}  // namespace

}  // namespace umbrant::host
