// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A run in the test's process returns what a process of the program returns, as often as it is repeated, and leaves the
// process as it was.

#include "tests/host/cli/in_process.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "tests/host/cli/render/sequence_fixture.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

class CliInProcess : public CliSequence {
 protected:
    /// The files of the folder, by name, and none of them afterwards but the inputs.
    std::map<std::string, std::string> TakeOutputs() const {
        std::map<std::string, std::string> outputs;
        for (const auto& entry : fs::directory_iterator(folder_.Path())) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("out")) outputs[name] = ReadBytes(entry.path());
        }
        for (const auto& [name, bytes] : outputs) fs::remove(folder_ / name);
        return outputs;
    }
};

std::ptrdiff_t OpenDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

TEST_F(CliInProcess, TheSameAsAProcess) {
    WriteBytes(folder_ / "preset.json", R"({"version": 1, "values": {"paint/border": 2}})");
    WriteBytes(folder_ / "wrong.json", R"({"version": 1, "values": {"paint/boarder": 2}})");
    WriteBytes(folder_ / "text.png", "no image");
    const std::string painter = TestModule("painter");
    const std::vector<std::string> rows[] = {
        {},
        {"--help"},
        {"--version"},
        {"render", "--help"},
        {"rendr"},
        {"render", "still.png", "-o", "out.png", "--dpeth", "8"},
        {"params"},
        {"params", "--json", "--module", painter},
        {"params", "--json", "--values", "--module", painter, "--preset", "preset.json"},
        {"info"},
        {"info", "--json", "--module", painter},
        {"compare", "in.1.png", "in.6.png"},
        {"panel", "-o", "out.png", "--open", "all"},
        {"panel", "--json", "--module", painter},
        {"render", "still.png", "-o", "out.png", "--module", painter, "--preset", "wrong.json"},
        {"render", "still.png", "-o", "out.png", "--module", painter, "--set", "flaw=throw"},
        {"render", "text.png", "-o", "out.png", "--module", painter},
        {"render", "still.png", "-o", "out.png", "--module", "none.so"},
        {"render", "still.png", "-o", "out.exr", "--module", painter, "--depth", "32"},
        {"render", "still.png", "-o", "out.png", "--renderer", "cpu", "--set", "style/distance=9"},
        {"render", "in.@.png", "-o", "out.@.tif", "--quiet", "--preset", "preset.json", "--module", painter},
        {"farm", "slurm", "in.@.png", "-o", "out.@.png"},
        {"validate", "--list"},
    };
    for (const auto& arguments : rows) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome process = RunUmbrant(folder_, arguments);
        const auto files = TakeOutputs();
        // The second run shows what the first one may have left in the process.
        for (int run = 1; run <= 2; ++run) {
            SCOPED_TRACE(run);
            const Outcome here = RunInProcess(folder_, arguments);
            EXPECT_EQ(here.code, process.code);
            EXPECT_EQ(here.out, process.out);
            EXPECT_EQ(here.err, process.err);
            EXPECT_TRUE(TakeOutputs() == files);
        }
    }
}

TEST_F(CliInProcess, LeavesTheProcessAsItWas) {
    const auto before = fs::current_path();
    const char* const set = std::getenv("UMBRANT_MODULE");
    const std::string variable = set ? set : "";
    setenv("UMBRANT_MODULE", "/nonexistent.so", 1);
    const std::vector<std::string> render = {"render", "still.png", "-o", "out.png", "--renderer", "cpu"};
    ASSERT_EQ(RunInProcess(folder_, render).code, 0) << "the variable is not for this run";
    EXPECT_STREQ(std::getenv("UMBRANT_MODULE"), "/nonexistent.so");
    EXPECT_EQ(fs::current_path(), before);
    const std::ptrdiff_t open = OpenDescriptors();
    ASSERT_EQ(RunInProcess(folder_, render).code, 0);
    EXPECT_EQ(RunInProcess(folder_, {"rendr"}).code, 2);
    EXPECT_EQ(OpenDescriptors(), open);
    if (set) {
        setenv("UMBRANT_MODULE", variable.c_str(), 1);
    } else {
        unsetenv("UMBRANT_MODULE");
    }
}

TEST_F(CliInProcess, WhatAModulePrintsIsNoResult) {
    const std::vector<std::string> arguments = {"params", "--json", "--module", TestModule("JudgedPrintsOnLoad")};
    const Outcome process = RunUmbrant(folder_, arguments);
    EXPECT_THAT(process.err, testing::HasSubstr("Judged was loaded\n"));
    const Outcome here = RunInProcess(folder_, arguments);
    EXPECT_EQ(here.code, process.code);
    EXPECT_EQ(here.out, process.out);
    EXPECT_EQ(here.err, process.err);
}

}  // namespace

}  // namespace umbrant::host
