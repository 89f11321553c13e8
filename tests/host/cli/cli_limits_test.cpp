// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The program where the system has limits: threads that it refuses, memory that it does not give, and a number of
// threads in the environment that no system has.

#include <algorithm>
#include <filesystem>

#include "tests/host/cli/render/sequence_fixture.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

constexpr char kShortage[] =
    " threads could be started; the work continues with fewer and takes longer (`ulimit -u`, or the container's limits "
    "of "
    "tasks and memory, allow more)\n";

/// OpenGL's drivers have threads and memory of their own.
constexpr char kNoDriver[] = "__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent";

class CliLimits : public CliSequence {
 protected:
    CliLimits() { fs::permissions(folder_.Path(), fs::perms::all); }

    /// What a run is started with, word for word: variables for `env`, then a program that runs it.
    using Before = std::vector<std::string>;

    /// As a user without any other process, in any test, who may have so many threads besides those that libraries
    /// start before the program begins, and the one that waits for signals; root has no such limit.
    Before WithThreads(int count) const { return WithTasks(ofLibraries_ + 1 + count); }
    static Before WithTasks(int count) {
        return {kNoDriver,        "setpriv", "--reuid=" + std::to_string(200'000'000 + getpid()),
                "--clear-groups", "prlimit", "--nproc=" + std::to_string(count) + ":" + std::to_string(count)};
    }
    /// Why such a run is not possible here, or nothing.
    std::string WhyNoOtherUser() {
        Outcome outcome;
        for (ofLibraries_ = 0; ofLibraries_ < 40; ++ofLibraries_) {
            // On a busy machine a thread that has ended may be counted for so long that a run fails for it.
            for (int attempt = 0; attempt < 3; ++attempt) {
                outcome = Run({"--version"}, WithTasks(ofLibraries_ + 1));
                if (outcome.code == 0) return "";
            }
        }
        return "the program cannot be run as another user here: " + outcome.err;
    }
    /// With the module of the program's folder, which needs no process of its own.
    static std::vector<std::string> Own(const std::string& input, const std::string& output,
                                        const std::vector<std::string>& more) {
        std::vector<std::string> all = {"render",     input, "-o",    output,
                                        "--renderer", "cpu", "--set", "style/distance=9"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    Outcome Run(const std::vector<std::string>& arguments, const Before& before) const {
        std::vector<std::string> words = {"env", "-u", "UMBRANT_MODULE"};
        words.insert(words.end(), before.begin(), before.end());
        words.emplace_back(UMBRANT_PROGRAM);
        words.insert(words.end(), arguments.begin(), arguments.end());
        ProgramStart start;
        start.folder = folder_.Path().string();
        const ProgramRun run = RunProgram(words, start);
        return {run.code, run.output, run.errors};
    }

    int ofLibraries_ = 0;
};

TEST_F(CliLimits, ASequenceIsDrawnWithTheThreadsThatCanBeHad) {
    if (const std::string reason = WhyNoOtherUser(); !reason.empty()) GTEST_SKIP() << reason;
    ASSERT_EQ(Run(Own("in.@.png", "all.@.png", {"--threads", "4", "--quiet"}), {}).code, 0);
    for (const int threads : {2, 3, 5}) {
        SCOPED_TRACE(threads);
        const std::string name = "of" + std::to_string(threads) + ".";
        const Outcome outcome =
            Run(Own("in.@.png", name + "@.png", {"--threads", "4", "--quiet"}), WithThreads(threads));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        // Fewer than are left, where one that has ended is still counted.
        std::vector<std::string> counts;
        for (int had = 1; had < threads; ++had)
            counts.push_back("umbrant: only " + std::to_string(had) + " of 10" + kShortage);
        EXPECT_TRUE(std::any_of(counts.begin(), counts.end(), [&](const std::string& line) {
            return outcome.err.find(line) != std::string::npos;
        })) << outcome.err;
        for (int frame = 1; frame <= 6; ++frame) {
            const std::string number = std::to_string(frame) + ".png";
            EXPECT_TRUE(Exists(name + number));
            EXPECT_TRUE(ReadBytes(folder_ / (name + number)) == ReadBytes(folder_ / ("all." + number))) << number;
        }
    }
}

TEST_F(CliLimits, WithoutAnyThreadASequenceIsNotBegun) {
    if (const std::string reason = WhyNoOtherUser(); !reason.empty()) GTEST_SKIP() << reason;
    for (const char* ending : {"png", "exr"}) {
        SCOPED_TRACE(ending);
        const Outcome outcome = Run(Own("in.@.png", std::string("none.@.") + ending, {"--quiet"}), WithThreads(1));
        EXPECT_EQ(outcome.code, 5);
        // The module's own lines about the missing driver are there too.
        EXPECT_THAT(outcome.err,
                    StartsWith("umbrant: cannot start a thread to draw frames; raise the limit of processes (`ulimit "
                               "-u`), or the container's limit of tasks or memory\n"));
        EXPECT_FALSE(Exists(std::string("none.1.") + ending));
    }
}

TEST_F(CliLimits, OnePngOrExrNeedsNoOtherThread) {
    if (const std::string reason = WhyNoOtherUser(); !reason.empty()) GTEST_SKIP() << reason;
    for (const int threads : {1, 2}) {
        SCOPED_TRACE(threads);
        for (const char* ending : {".png", ".exr"}) {
            const std::string name = "one" + std::to_string(threads) + ending;
            const Outcome outcome = Run(Own("still.png", name, {"--progress", "0"}), WithThreads(threads));
            EXPECT_EQ(outcome.code, 0) << outcome.err;
            EXPECT_TRUE(Exists(name));
            EXPECT_EQ(Run({"compare", name, name}, WithThreads(1)).code, 0);
        }
    }
}

TEST_F(CliLimits, TheImageLibraryIsNotLoadedWithoutTheThreadsThatItNeeds) {
    if (const std::string reason = WhyNoOtherUser(); !reason.empty()) GTEST_SKIP() << reason;
    constexpr int kMany = 12;
    for (const char* name : {"one.tif", "one.jpg"}) {
        SCOPED_TRACE(name);
        const Outcome outcome = Run(Own("still.png", name, {"--progress", "0"}), WithThreads(kMany));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_TRUE(Exists(name));
        EXPECT_EQ(Run({"compare", name, name}, WithThreads(kMany)).code, 0);
        const std::string none = std::string("none_") + name;
        const Outcome few = Run(Own("still.png", none, {"--progress", "0"}), WithThreads(2));
        EXPECT_EQ(few.code, 5) << few.err;
        EXPECT_THAT(few.err, HasSubstr("cannot write '" + none +
                                       "': the library for this format needs 5 threads, and "
                                       "the system refuses them: Resource temporarily unavailable\n"));
        EXPECT_FALSE(Exists(none));
    }
}

TEST_F(CliLimits, NoNumberOfImageThreadsIsTooLarge) {
    for (const char* name : {"many.png", "many.exr", "many.tif"}) {
        SCOPED_TRACE(name);
        // A minute is many times what it takes; that many threads take longer, or cannot be had.
        const Before options{"OPENIMAGEIO_THREADS=99999", "timeout", "60"};
        const Outcome outcome = Run(Own("still.png", name, {"--quiet"}), options);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(Run({"compare", name, name}, options).code, 0);
    }
}

/// How a run ends that has too little memory: in the program's own words, or before the program begins.
void ExpectDoneOrNoMemory(const Outcome& outcome) {
    if (outcome.code == 0) return;
    EXPECT_EQ(outcome.code, 5) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("not enough memory for "));
    EXPECT_THAT(outcome.err, MatchesRegex("(.|\n)*umbrant: (frame [0-9]+: )?not enough memory for [^\n]*, "
                                          "(more than the )?[0-9]+ MiB( in use)?\n(.|\n)*"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("internal error")));
    EXPECT_THAT(outcome.err, Not(HasSubstr("terminate")));
}

class CliMemory : public CliLimits {
 protected:
    CliMemory() {
        WriteLayer(folder_ / "large.tif", 3000, 2500, {255, 200, 100, 50});
        WriteLayer(folder_ / "large.png", 3000, 2500, {255, 200, 100, 50});
        for (int frame = 1; frame <= 3; ++frame) {
            fs::copy_file(folder_ / "large.png", folder_ / ("large." + std::to_string(frame) + ".png"));
        }
    }
    static Before WithMiB(int count) {
        const std::string bytes = std::to_string(static_cast<long long>(count) << 20);
        return {kNoDriver, "prlimit", "--as=" + bytes + ":" + bytes};
    }
    /// The least address space, in steps of 16 MiB, in which a small picture is drawn.
    int LeastForSmall() const {
        for (int count = 64; count < 4096; count += 16) {
            if (Run(Own("still.png", "small.png", {"--quiet"}), WithMiB(count)).code == 0) return count;
        }
        return 0;
    }
};

TEST_F(CliMemory, EveryWantOfItHasOneFace) {
    const int least = LeastForSmall();
    if (least == 0) GTEST_SKIP() << "no address space is enough here, as with a sanitizer's";
    int failed = 0, drawn = 0;
    // The image library takes so much besides when it is loaded.
    constexpr int kLibrary = 480;
    for (const std::string ending : {"png", "exr"}) {
        const bool isOwn = ending == "png";
        // From hardly more than nothing to room for everything: each step of a picture's way runs out in turn.
        for (const int more : {8, 24, 40, 72, 104, 136, 200, 1500}) {
            SCOPED_TRACE(std::to_string(least) + " and " + std::to_string(more) + " MiB, " + ending);
            const Outcome outcome = Run(Own(isOwn ? "large.png" : "large.tif", "out." + ending, {"--quiet"}),
                                        WithMiB(least + more + (isOwn ? 0 : kLibrary)));
            ExpectDoneOrNoMemory(outcome);
            EXPECT_EQ(Exists("out." + ending), outcome.code == 0) << "nothing half written";
            fs::remove(folder_ / ("out." + ending));
            ++(outcome.code == 0 ? drawn : failed);
        }
    }
    EXPECT_GE(failed, 2) << "no memory was ever missing";
    EXPECT_GE(drawn, 2) << "all of it was always missing";
}

TEST_F(CliMemory, ASequenceHasIt) {
    const int least = LeastForSmall();
    if (least == 0) GTEST_SKIP() << "no address space is enough here, as with a sanitizer's";
    for (const int more : {24, 104, 400}) {
        SCOPED_TRACE(std::to_string(least) + " and " + std::to_string(more) + " MiB");
        const Outcome outcome = Run(Own("large.@.png", "out.@.png", {"--quiet"}), WithMiB(least + more));
        ExpectDoneOrNoMemory(outcome);
    }
    // With room for one frame at a time, beside what threads reserve, all are drawn.
    const Outcome verbose = Run(Own("large.@.png", "out.@.png", {"--verbose"}), WithMiB(least + 3000));
    EXPECT_EQ(verbose.code, 0) << verbose.err;
    EXPECT_THAT(verbose.err, MatchesRegex("(.|\n)*at most [1-4] frames in progress(.|\n)*"));
}

}  // namespace

}  // namespace umbrant::host
