// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is made of measured times: sure answers where the measurements allow them, "unclear" where they do not. The
// times are made up, so that the tests depend on no machine.

#include "host/validate/runner/timing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace umbrant::host {

namespace {

const std::vector<double> kWork{8, 16, 32};

/// Costs that follow a law, each of them multiplied by noise of its own.
std::vector<std::vector<double>> Rounds(int count, const std::function<double(double)>& law,
                                        const std::function<double(int round, std::size_t k)>& noise) {
    std::vector<std::vector<double>> rounds;
    for (int i = 0; i < count; ++i) {
        std::vector<double> round;
        for (std::size_t k = 0; k < kWork.size(); ++k) round.push_back(law(kWork[k]) * noise(i, k));
        rounds.push_back(round);
    }
    return rounds;
}

double Quiet(int, std::size_t) {
    return 1;
}
double Linear(double work) {
    return 0.5 + 0.1 * work;
}
double Quadratic(double work) {
    return 0.5 + 0.02 * work * work;
}

TEST(Timing, JudgesGrowthByItsLaw) {
    const struct {
        const char* name;
        std::function<double(double)> law;
        Claim expected;
    } rows[] = {
        {"constant", [](double) { return 3.0; }, Claim::kHolds},
        {"linear", Linear, Claim::kHolds},
        {"linear through zero", [](double work) { return work; }, Claim::kHolds},
        {"linear with a logarithm", [](double work) { return work * std::log2(32 * work); }, Claim::kHolds},
        {"quadratic", Quadratic, Claim::kFails},
        {"work to the power of 1.5", [](double work) { return std::pow(work, 1.5); }, Claim::kFails},
        {"cubic", [](double work) { return work * work * work; }, Claim::kFails},
        {"a jump at the first step alone", [](double work) { return work < 10 ? 1 : work / 4; }, Claim::kHolds},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(JudgeGrowth(kWork, Rounds(7, row.law, Quiet)).proportional, row.expected);
    }
}

TEST(Timing, ReportsBetweenWhichRatiosTheGrowthIs) {
    const Growth growth = JudgeGrowth({1, 4}, {{1, 4}, {1, 5}, {1, 6}, {1, 7}, {1, 8}, {1, 9}, {1, 16}});
    EXPECT_EQ(growth.least, 4);
    EXPECT_EQ(growth.most, 16);
    EXPECT_EQ(growth.proportional, Claim::kUnclear);
}

TEST(Timing, OneDisturbedRoundDecidesNothing) {
    // 0.8 ms, then 4.5 ms: what a busy machine made of a linear effect once.
    std::vector<std::vector<double>> rounds = Rounds(7, Linear, Quiet);
    rounds[3] = {0.8, 1.6, 4.5};
    EXPECT_NE(JudgeGrowth(kWork, rounds).proportional, Claim::kFails);
    int round = 0;
    const Growth growth = MeasureGrowth(
        kWork, [&](std::size_t k) { return round++ / 3 == 3 ? rounds[3][k] : Linear(kWork[k]); },
        ElapsedMilliseconds() + 1e6);
    EXPECT_EQ(growth.proportional, Claim::kHolds) << "more rounds settle it";
}

TEST(Timing, NoiseNeverFailsALinearEffectAndNeverPassesAQuadraticOne) {
    // Each cost is stretched by up to 5 times, at random, in a quarter of the measurements by up to 20 times.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> share(0, 1);
    const auto noise = [&](int, std::size_t) { return 1 + share(random) * (share(random) < 0.25 ? 19 : 4); };
    const auto disturbed = [&](double (*law)(double)) {
        return MeasureGrowth(
                   kWork, [&](std::size_t k) { return law(kWork[k]) * noise(0, k); }, ElapsedMilliseconds() + 1e6)
            .proportional;
    };
    int sure = 0;
    for (int i = 0; i < 300; ++i) {
        EXPECT_NE(disturbed(Linear), Claim::kFails);
        const Claim quadratic = disturbed(Quadratic);
        EXPECT_NE(quadratic, Claim::kHolds);
        if (quadratic == Claim::kFails) ++sure;
    }
    EXPECT_GT(sure, 100) << "most of it can be decided all the same";
}

TEST(Timing, WithoutEnoughToGoByGrowthIsUnclear) {
    EXPECT_EQ(JudgeGrowth(kWork, Rounds(6, Quadratic, Quiet)).proportional, Claim::kUnclear) << "too few rounds";
    EXPECT_EQ(JudgeGrowth(kWork, Rounds(
                                     7, [](double) { return 0.0; }, Quiet))
                  .proportional,
              Claim::kUnclear)
        << "a clock that does not advance";
    EXPECT_EQ(JudgeGrowth({8}, Rounds(7, Linear, Quiet)).proportional, Claim::kUnclear) << "one amount";
    int calls = 0;
    const Growth late = MeasureGrowth(
        kWork, [&](std::size_t) { return ++calls; }, ElapsedMilliseconds() - 1);
    EXPECT_EQ(late.proportional, Claim::kUnclear) << "no time left";
    EXPECT_EQ(calls, 0);
}

TEST(Timing, AsksForMoreRoundsOnlyAsLongAsTheAnswerIsOpen) {
    const auto countedCalls = [](const std::function<double(int, std::size_t)>& cost) {
        int calls = 0;
        MeasureGrowth(
            kWork, [&](std::size_t k) { return cost(calls++ / 3, k); }, ElapsedMilliseconds() + 1e6);
        return calls;
    };
    EXPECT_EQ(countedCalls([](int, std::size_t k) { return Linear(kWork[k]); }), 7 * 3);
    EXPECT_EQ(countedCalls([](int round, std::size_t k) { return k == 2 && round % 2 ? 100 : kWork[k]; }), 31 * 3);
}

TEST(Timing, JudgesALimitByWhatTheMachineLeft) {
    constexpr double kLimit = 100;
    const MachinePace quiet{1, 1}, busy{4, 1}, slow{1, 10}, both{4, 10};
    const struct {
        const char* name;
        std::vector<TimedTry> tries;
        Claim expected;
    } rows[] = {
        {"one try within", {{90, 80, quiet}}, Claim::kHolds},
        {"one beyond is not enough", {{500, 400, quiet}}, Claim::kUnclear},
        {"two beyond", {{500, 400, quiet}, {300, 290, quiet}}, Claim::kFails},
        {"a good one among bad ones", {{500, 400, quiet}, {90, 80, quiet}}, Claim::kHolds},
        {"kept waiting by others", {{150, 40, busy}, {160, 40, busy}}, Claim::kUnclear},
        {"sleeps on a busy machine", {{1500, 4, busy}, {1400, 4, busy}}, Claim::kFails},
        {"computes long on a busy machine", {{40000, 2000, busy}, {42000, 2100, busy}}, Claim::kFails},
        {"a slow machine", {{600, 600, slow}, {610, 610, slow}}, Claim::kHolds},
        {"too long even for a slow machine", {{1600, 1600, slow}, {1610, 1610, slow}}, Claim::kFails},
        {"sleeps on a slow machine", {{700, 100, slow}, {700, 100, slow}}, Claim::kFails},
        {"a slow and busy machine", {{2400, 600, both}, {2400, 600, both}}, Claim::kUnclear},
        {"several threads", {{90, 170, quiet}}, Claim::kHolds},
        {"several threads beyond", {{200, 390, quiet}, {200, 390, quiet}}, Claim::kFails},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(JudgeLimit(row.tries, kLimit), row.expected);
    }
}

TEST(Timing, MeasuresProcessorTimeApartFromWaiting) {
    const TimedTry waiting = TimeOf([] {
        const timespec pause{0, 50000000};
        nanosleep(&pause, nullptr);
    });
    EXPECT_GE(waiting.elapsed, 50);
    EXPECT_LT(waiting.processor, 40);
    const TimedTry computing = TimeOf([] {
        const double begin = ProcessorMilliseconds();
        while (ProcessorMilliseconds() < begin + 20) {
        }
    });
    EXPECT_GE(computing.processor, 20);
    EXPECT_GE(computing.elapsed, 19);
    EXPECT_GE(computing.pace.stretch, 1);
    EXPECT_GE(computing.pace.slowness, 1);
}

}  // namespace

}  // namespace umbrant::host
