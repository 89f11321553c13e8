// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the host receives when it scans the module.

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "entry/entry_points.h"
#include "entry/version.h"

namespace umbrant::effect {

namespace {

struct Registration {
    PF_PluginDataPtr ptr;
    std::string name, matchName, category, entryPoint;
    A_long kind, major, minor, reserved;
};
std::vector<Registration> registrations;
A_Err answer = 0;

std::string Text(const A_u_char* text) {
    return reinterpret_cast<const char*>(text);
}

A_Err Record(PF_PluginDataPtr ptr, const A_u_char* name, const A_u_char* matchName, const A_u_char* category,
             const A_u_char* entryPoint, A_long kind, A_long major, A_long minor, A_long reserved) {
    registrations.push_back(
        {ptr, Text(name), Text(matchName), Text(category), Text(entryPoint), kind, major, minor, reserved});
    return answer;
}

TEST(Registration, TellsTheHostOnceAndReturnsItsAnswer) {
    for (A_Err wanted : {0, 25, -3}) {
        registrations.clear();
        answer = wanted;
        const auto ptr = reinterpret_cast<PF_PluginDataPtr>(0x77);
        EXPECT_EQ(PluginDataEntryFunction(ptr, Record, nullptr, nullptr, nullptr), wanted);
        ASSERT_EQ(registrations.size(), 1u);
        const Registration& registered = registrations[0];
        EXPECT_EQ(registered.ptr, ptr);
        EXPECT_EQ(registered.name, "Umbrant 2");
        EXPECT_EQ(registered.matchName, "KAUM2");
        EXPECT_EQ(registered.category, "Halvane");
        EXPECT_EQ(registered.entryPoint, "EffectMain");
        EXPECT_EQ(registered.kind, 0x65464B54) << "'eFKT'";
        EXPECT_EQ(registered.major, 13);
        EXPECT_EQ(registered.minor, 28);
        EXPECT_EQ(registered.reserved, 8);
    }
}

template <typename Thrown, Thrown kValue>
A_Err Throwing(PF_PluginDataPtr, const A_u_char*, const A_u_char*, const A_u_char*, const A_u_char*, A_long, A_long,
               A_long, A_long) {
    throw kValue;
}
A_Err ThrowingException(PF_PluginDataPtr, const A_u_char*, const A_u_char*, const A_u_char*, const A_u_char*, A_long,
                        A_long, A_long, A_long) {
    throw std::runtime_error("inside the host");
}

TEST(Registration, NoExceptionLeavesIt) {
    EXPECT_EQ(PluginDataEntryFunction(nullptr, Throwing<PF_Err, 4711>, nullptr, nullptr, nullptr), 4711);
    EXPECT_EQ(PluginDataEntryFunction(nullptr, Throwing<PF_Err, 516>, nullptr, nullptr, nullptr), 516);
    EXPECT_EQ(PluginDataEntryFunction(nullptr, Throwing<char, 'x'>, nullptr, nullptr, nullptr), 512);
    EXPECT_EQ(PluginDataEntryFunction(nullptr, ThrowingException, nullptr, nullptr, nullptr), 512);
}

TEST(Version, PacksToTheAnnouncedWord) {
    EXPECT_EQ(kVersionPacked, 0x99801u);
    EXPECT_EQ(kVersionMajor, 1u);
    EXPECT_EQ(kVersionMinor, 3u);
    EXPECT_EQ(kVersionBugFix, 3u);
}

static_assert(std::is_same_v<decltype(&EffectMain), PF_FilterProc>);

}  // namespace

}  // namespace umbrant::effect
