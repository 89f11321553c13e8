// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Runs the built program as a process of its own.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/support/folder.h"
#include "tests/support/run_program.h"

namespace umbrant::host {

/// What a run left: its exit code and both outputs.
struct Outcome {
    int code = -1;
    std::string out;
    std::string err;
};

/// How a run differs from the plain one.
struct ProgramOptions {
    std::vector<std::string> environment;  ///< "NAME=VALUE"
    std::string standardOutput;            ///< a file for it, instead of `out`
};

/// Runs `umbrant` with these arguments in the folder.
inline Outcome RunUmbrant(const Folder& folder, const std::vector<std::string>& arguments,
                          const ProgramOptions& run = {}) {
    std::vector<std::string> words = {UMBRANT_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    ProgramStart start;
    start.folder = folder.Path().string();
    start.environment = {"UMBRANT_MODULE"};
    start.environment.insert(start.environment.end(), run.environment.begin(), run.environment.end());
    if (!run.standardOutput.empty()) start.output = Stream::File(run.standardOutput);
    const ProgramRun left = RunProgram(words, start);
    return {left.code, left.output, left.errors};
}

/// One of the modules built for tests.
inline std::string TestModule(const std::string& name) {
    return std::string(TEST_MODULES) + "/" + name + ".so";
}

/// Writes a layer of one pixel value: alpha, red, green, blue.
inline void WriteLayer(const std::filesystem::path& file, int width, int height, PF_Pixel pixel) {
    const auto written = WritePicture(file, Filled8(width, height, pixel), {{0, 0, width, height}, width, height});
    ASSERT_TRUE(written) << written.error().sentence;
}

/// A picture that must be there.
inline Picture Read(const std::filesystem::path& file) {
    auto picture = ReadPicture(file);
    if (!picture) {
        ADD_FAILURE() << picture.error().sentence;
        return {};
    }
    return std::move(*picture);
}

}  // namespace umbrant::host
