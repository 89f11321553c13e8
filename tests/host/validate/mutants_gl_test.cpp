// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The wrong modules that need a driver to go wrong.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/program.h"

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;

Outcome Validate(const std::string& module, const std::string& include) {
    const Folder folder;
    return RunUmbrant(folder, {"validate", TestModule(module), "--strictness", "10", "--include", include});
}

TEST(DriverMutants, ClearsContext) {
    const Outcome run = Validate("JudgedClearsContext", "^3\\.5 ");
    if (run.out.find("no OpenGL context can be made here") != std::string::npos) GTEST_SKIP() << "no driver";
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.out, HasSubstr("PF_Cmd_GLOBAL_SETUP leaves another OpenGL context current than the host's"));
}

TEST(DriverMutants, TrustsDriver) {
    const Outcome run = Validate("JudgedTrustsDriver", "^7\\.5 ");
    if (run.out.find("makes no call to OpenGL") != std::string::npos) GTEST_SKIP() << "no driver";
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.out, HasSubstr("the frame differs without an error or a message"));
}

}  // namespace

}  // namespace umbrant::host
