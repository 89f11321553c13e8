// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the desktop's opener is given. A shell script takes its place, first in the search path of a process of its
// own, for both platforms: macOS's file needs nothing that only macOS has.

#include "platform/open_url.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "platform/fake/call_log.h"
#include "tests/support/run_program.h"

namespace umbrant::effect {

using namespace host;

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct Platform {
    const char* name;
    const char* probe;   ///< a program that opens the address it is given
    const char* opener;  ///< what the desktop's opener is called
};

const Platform kLinux = {"Linux", LINUX_OPEN_URL_PROBE, "xdg-open"};
const Platform kMacos = {"Macos", MACOS_OPEN_URL_PROBE, "open"};

std::string PlatformName(const ::testing::TestParamInfo<Platform>& info) {
    return info.param.name;
}

class OpenUrlTest : public ::testing::TestWithParam<Platform> {
 protected:
    OpenUrlTest() { std::filesystem::create_directories(folder_); }
    ~OpenUrlTest() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path Given() const { return folder_ / "given"; }

    /// Puts a script in the opener's place.
    void WriteOpener(const std::string& commands) {
        const std::filesystem::path file = folder_ / GetParam().opener;
        std::ofstream(file) << "#!/bin/sh\n" << commands << "\n";
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }

    /// Opens an address with the scripts alone in the search path; what was printed is in `output`.
    int Open(const std::string& url, std::string* output = nullptr) {
        ProgramStart start;
        start.environment = {"PATH=" + folder_.string()};
        start.output = Stream::Pipe();
        start.errors = Stream::AsOutput();
        const ProgramRun run = RunProgram({GetParam().probe, url}, start);
        if (output) *output += run.output;
        return run.code;
    }

    /// What the opener wrote; waits for it.
    std::string Record() const {
        for (const auto end = steady_clock::now() + std::chrono::seconds(100); steady_clock::now() < end;) {
            std::ifstream file(Given());
            std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
            if (text.ends_with("done\n")) return text;
            std::this_thread::sleep_for(milliseconds(10));
        }
        return "nothing";
    }

    const std::filesystem::path folder_ =
        std::filesystem::path(::testing::TempDir()) / ("open_url_" + std::to_string(getpid()));
};

TEST_P(OpenUrlTest, HandsOverTheAddressAlone) {
    for (const std::string url :
         {"https://example.com/umbrant", "https://me@example.com:80/~a_b/%20,?c=1+2#d-e.html"}) {
        std::filesystem::remove(Given());
        WriteOpener("{ echo \"$#\"; echo \"$1\"; echo done; } > '" + Given().string() + "'");
        std::string output;
        EXPECT_EQ(Open(url, &output), 0);
        EXPECT_EQ(Record(), "1\n" + url + "\ndone\n");
        EXPECT_EQ(output, "");
    }
}

TEST_P(OpenUrlTest, TheOpenersFailureIsIgnored) {
    WriteOpener("echo done > '" + Given().string() + "'; exit 3");
    EXPECT_EQ(Open("https://example.com"), 0);
    EXPECT_EQ(Record(), "done\n");
}

INSTANTIATE_TEST_SUITE_P(On, OpenUrlTest, ::testing::Values(kLinux, kMacos), PlatformName);

using OpenUrlOnLinuxTest = OpenUrlTest;

TEST_P(OpenUrlOnLinuxTest, WithoutAnOpenerNothingHappensAndNothingIsPrinted) {
    std::string output;
    EXPECT_EQ(Open("https://example.com", &output), 0);
    EXPECT_EQ(output, "");
}

TEST_P(OpenUrlOnLinuxTest, WhatTheOpenerPrintsIsNotShown) {
    WriteOpener("echo noise; echo noise >&2; echo done > '" + Given().string() + "'");
    std::string output;
    EXPECT_EQ(Open("https://example.com", &output), 0);
    EXPECT_EQ(Record(), "done\n");
    EXPECT_EQ(output, "");
}

// The call waits for 300 ms, which a busy machine may need to start the opener alone.
TEST_P(OpenUrlOnLinuxTest, AQuickOpenerIsDoneWhenTheCallReturns) {
    WriteOpener("echo done > '" + Given().string() + "'");
    const auto begin = steady_clock::now();
    EXPECT_EQ(Open("https://example.com"), 0);
    EXPECT_TRUE(std::filesystem::exists(Given()) || steady_clock::now() - begin >= milliseconds(300));
}

TEST_P(OpenUrlOnLinuxTest, ASlowOpenerIsNotWaitedFor) {
    const std::string go = (folder_ / "go").string();
    WriteOpener("i=0; while [ ! -e '" + go +
                "' ] && [ $i -lt 1000 ]; do /bin/sleep 0.1; i=$((i + 1)); done; echo done > '" + Given().string() +
                "'");
    EXPECT_EQ(Open("https://example.com"), 0);
    EXPECT_FALSE(std::filesystem::exists(Given())) << "the call returned while the opener was at work";
    std::ofstream(go).close();
    EXPECT_EQ(Record(), "done\n") << "it goes on by itself";
}

TEST_P(OpenUrlOnLinuxTest, AnAddressIsNeverACommand) {
    WriteOpener("{ echo \"$1\"; echo done; } > '" + Given().string() + "'");
    EXPECT_EQ(Open("$(id); id & id | id"), 0);
    EXPECT_EQ(Record(), "$(id); id & id | id\ndone\n");
}

// A shell in between would leave its own variables in the opener's environment.
TEST_P(OpenUrlOnLinuxTest, NoShellIsInvolved) {
    std::filesystem::copy_file(OPENER_PROBE, folder_ / "xdg-open");
    const std::string url = "https://example.com/?a=1&b='2'*#$HOME;id";
    std::string path = "/nowhere::" + (folder_ / "given").string() + ":" + folder_.string();
    EXPECT_EQ(
        RunProgram({"/usr/bin/env", "-i", "PATH=" + path, "RECORD=" + Given().string(), GetParam().probe, url}).code,
        0);
    EXPECT_EQ(Record(), "argument " + url + "\nvariable PATH=" + path + "\nvariable RECORD=" + Given().string() +
                            "\nstream open\nstream open\nstream open\nleader 1\ndone\n");
}

TEST_P(OpenUrlOnLinuxTest, WhatCannotBeRunIsNotAnOpener) {
    std::filesystem::create_directory(folder_ / "xdg-open");
    std::string output;
    EXPECT_EQ(Open("https://example.com", &output), 0);
    std::filesystem::remove(folder_ / "xdg-open");
    std::ofstream(folder_ / "xdg-open") << "no program\n";
    EXPECT_EQ(Open("https://example.com", &output), 0);
    EXPECT_EQ(output, "");
}

// Nothing stays behind for the host to wait for, also while an opener still runs: the probe looks itself.
TEST_P(OpenUrlOnLinuxTest, LeavesNoChild) {
    WriteOpener("/bin/sleep 1; echo done > '" + Given().string() + "'");
    std::string output;
    EXPECT_EQ(Open("https://example.com", &output), 0);
    EXPECT_EQ(output, "");
    EXPECT_EQ(Record(), "done\n");
}

INSTANTIATE_TEST_SUITE_P(On, OpenUrlOnLinuxTest, ::testing::Values(kLinux), PlatformName);

TEST(OpenUrlFake, WritesTheAddressToTheCallLog) {
    fake::Reset();
    OpenUrl("https://example.com/a");
    EXPECT_THAT(fake::Calls(), ::testing::ElementsAre("OpenUrl https://example.com/a"));
    fake::Reset();
}

}  // namespace

}  // namespace umbrant::effect
