// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Whether the processor draws is read from the environment, once.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

std::string Probe(const std::string& program, const std::string& environment) {
    const std::string command = "env " + environment + " '" + program + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[512];
    while (pipe && fgets(buffer, sizeof buffer, pipe)) output += buffer;
    EXPECT_EQ(pipe ? pclose(pipe) : -1, 0);
    return output;
}

TEST(ChosenRenderer, IsReadFromTheEnvironmentOnce) {
    const struct {
        const char* environment;
        const char* output;
    } rows[] = {
        {"-u UMBRANT_RENDERER", "OpenGL OpenGL\n"},
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
