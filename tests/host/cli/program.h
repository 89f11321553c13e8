// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Runs the built program as a process of its own, as a person at a shell would.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "host/image/picture.h"
#include "tests/host/image/picture_files.h"

/// What a run left: its exit code and both outputs.
struct Outcome {
    int code = -1;
    std::string out;
    std::string err;
};

inline std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

/// How a run differs from the plain one.
struct RunOptions {
    std::vector<std::string> environment;  ///< "NAME=VALUE"
    std::string standardOutput;            ///< a file for it, instead of `out`
};

/// Runs `umbrant` with these arguments in the folder.
inline Outcome RunUmbrant(const Folder& folder, const std::vector<std::string>& arguments, const RunOptions& run = {}) {
    static int count = 0;
    const std::string logs =
        testing::TempDir() + "umbrant_run_" + std::to_string(::getpid()) + "_" + std::to_string(count++);
    std::string command = "cd " + Quoted(folder.Path().string()) + " && env -u UMBRANT_MODULE";
    for (const std::string& variable : run.environment) command += " " + Quoted(variable);
    command += " " + Quoted(UMBRANT_PROGRAM);
    for (const std::string& argument : arguments) command += " " + Quoted(argument);
    command +=
        " >" + Quoted(run.standardOutput.empty() ? logs + ".out" : run.standardOutput) + " 2>" + Quoted(logs + ".err");
    const int status = std::system(command.c_str());
    Outcome outcome;
    outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (run.standardOutput.empty()) outcome.out = ReadBytes(logs + ".out");
    outcome.err = ReadBytes(logs + ".err");
    std::filesystem::remove(logs + ".out");
    std::filesystem::remove(logs + ".err");
    return outcome;
}

/// One of the modules built for tests.
inline std::string TestModule(const std::string& name) {
    return std::string(TEST_MODULES) + "/" + name + ".so";
}

/// Writes a layer of one pixel value: alpha, red, green, blue.
inline void WriteLayer(const std::filesystem::path& file, int width, int height, PF_Pixel pixel) {
    const auto written = WritePicture(file, Filled8(width, height, pixel), {{0, 0, width, height}, width, height});
    ASSERT_TRUE(written) << written.Error().sentence;
}

/// A picture that must be there.
inline Picture Read(const std::filesystem::path& file) {
    auto picture = ReadPicture(file);
    if (!picture) {
        ADD_FAILURE() << picture.Error().sentence;
        return {};
    }
    return std::move(*picture);
}
