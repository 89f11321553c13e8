// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The about text: what is written, through which call, and where it is not.

#include "entry/about.h"

#include <cstdarg>
#include <cstring>

#include "tests/entry/entry_fixture.h"

namespace umbrant::effect {

namespace {

constexpr char kAboutText[] = "Umbrant 2 v1.3.3\nSimulates a variety of shadow styles.\n\n";

std::string lastFormat;
A_char* lastTarget = nullptr;
int RecordingSprintf(A_char* target, const A_char* format, ...) {
    lastTarget = target;
    lastFormat = format;
    return 0;
}

TEST_F(EntryTest, AboutWritesTheText) {
    std::memset(host.outData.return_msg, 0x55, sizeof(host.outData.return_msg));
    EXPECT_EQ(Call(PF_Cmd_ABOUT), PF_Err_NONE);
    EXPECT_STREQ(host.outData.return_msg, kAboutText);
    for (size_t i = sizeof(kAboutText); i < sizeof(host.outData.return_msg); ++i) {
        ASSERT_EQ(host.outData.return_msg[i], 0x55) << i;
    }
    EXPECT_EQ(host.calls, (std::vector<std::string>{"AcquireSuite PF ANSI Suite 1", "ReleaseSuite PF ANSI Suite 1"}));
    EXPECT_EQ(host.outData.out_flags, 0);
    ExpectBalanced();
}

TEST_F(EntryTest, AboutPassesTheTextItselfAsTheFormat) {
    host.ansiSuite.sprintf = RecordingSprintf;
    EXPECT_EQ(Call(PF_Cmd_ABOUT), PF_Err_NONE);
    EXPECT_EQ(lastFormat, kAboutText);
    EXPECT_EQ(lastTarget, host.outData.return_msg);
    EXPECT_EQ(lastFormat.find('%'), std::string::npos);
}

TEST_F(EntryTest, AboutLeavesTheMessageAloneInPremiere) {
    host.inData.appl_id = kPremiere;
    std::strcpy(host.outData.return_msg, "untouched");
    EXPECT_EQ(Call(PF_Cmd_ABOUT), PF_Err_NONE);
    EXPECT_STREQ(host.outData.return_msg, "untouched");
    EXPECT_TRUE(host.calls.empty());
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(Call(PF_Cmd_ABOUT), PF_Err_NONE) << "nothing is done, so nothing is missing";
}

TEST_F(EntryTest, AboutWithoutTheAnsiSuite) {
    host.Refuse("PF ANSI Suite");
    EXPECT_EQ(Call(PF_Cmd_ABOUT), 516);
    EXPECT_STREQ(host.outData.return_msg, "");
    ExpectBalanced();
}

TEST(About, VersionedNameComesFromTheNumbers) {
    EXPECT_EQ(VersionedEffectName(), "Umbrant 2 v1.3.3");
}

}  // namespace

}  // namespace umbrant::effect
