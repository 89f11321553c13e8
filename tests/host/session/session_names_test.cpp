// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Numbers of the interface in words.

#include <gtest/gtest.h>

#include "host/session/error_names.h"

namespace umbrant::host {

namespace {

TEST(ErrorNames, NameTheCode) {
    EXPECT_STREQ(ErrorName(0), "PF_Err_NONE");
    EXPECT_STREQ(ErrorName(4), "PF_Err_OUT_OF_MEMORY");
    EXPECT_STREQ(ErrorName(13), "A_Err_MISSING_SUITE");
    EXPECT_STREQ(ErrorName(512), "PF_Err_INTERNAL_STRUCT_DAMAGED");
    EXPECT_STREQ(ErrorName(513), "PF_Err_INVALID_INDEX");
    EXPECT_STREQ(ErrorName(514), "PF_Err_UNRECOGNIZED_PARAM_TYPE");
    EXPECT_STREQ(ErrorName(515), "PF_Err_INVALID_CALLBACK");
    EXPECT_STREQ(ErrorName(516), "PF_Err_BAD_CALLBACK_PARAM");
    EXPECT_STREQ(ErrorName(517), "PF_Interrupt_CANCEL");
    EXPECT_STREQ(ErrorName(4711), "unknown error");
}

TEST(ErrorNames, NameTheCommand) {
    EXPECT_STREQ(CommandName(0), "PF_Cmd_ABOUT");
    EXPECT_STREQ(CommandName(23), "PF_Cmd_SMART_PRE_RENDER");
    EXPECT_STREQ(CommandName(24), "PF_Cmd_SMART_RENDER");
    EXPECT_STREQ(CommandName(-1), "unknown command");
}

TEST(ErrorNames, TheEffectsWordsComeFirst) {
    EXPECT_EQ(EffectErrorText(4, ""), "error 4, PF_Err_OUT_OF_MEMORY");
    EXPECT_EQ(EffectErrorText(13, "Not able to acquire AEFX Suite."),
              "Not able to acquire AEFX Suite. (error 13, A_Err_MISSING_SUITE)");
    EXPECT_EQ(EffectErrorText(4, "two\nlines\n\n"), "two\nlines (error 4, PF_Err_OUT_OF_MEMORY)");
}

}  // namespace

}  // namespace umbrant::host
