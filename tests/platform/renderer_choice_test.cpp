// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Whether the CPU renderer draws is read from the environment, once.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/run_program.h"

namespace umbrant::effect {

using namespace host;

namespace {

std::string Probe(const std::string& program, const std::string& environment) {
    ProgramStart start;
    start.environment = {environment};
    start.errors = Stream::AsOutput();
    const ProgramRun run = RunProgram({program}, start);
    EXPECT_EQ(run.code, 0);
    return run.output;
}

TEST(ChosenRenderer, IsReadFromTheEnvironmentOnce) {
    const struct {
        const char* environment;
        const char* output;
    } rows[] = {
        {"UMBRANT_RENDERER", "OpenGL OpenGL\n"},
        {"UMBRANT_RENDERER=", "OpenGL OpenGL\n"},
        {"UMBRANT_RENDERER=gl", "OpenGL OpenGL\n"},
        {"UMBRANT_RENDERER=cpu", "processor processor\n"},
        {"UMBRANT_RENDERER=CPU",
         "UMBRANT_RENDERER is \"CPU\"; it must be \"gl\", \"cpu\" or \"auto\"\nrefused refused\n"},
        {"UMBRANT_RENDERER=auto", "OpenGL OpenGL\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(Probe(LINUX_CHOICE_PROBE, row.environment), row.output) << row.environment;
}

TEST(ChosenRenderer, IsAlwaysOpenGLOnMacOS) {
    EXPECT_EQ(Probe(MACOS_CHOICE_PROBE, "UMBRANT_RENDERER=cpu"), "OpenGL OpenGL\n");
}

}  // namespace

}  // namespace umbrant::effect
