// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pictures that do not fit: on a disk that is full, and where files may not be as large as they would be.

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <set>

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/support/child_process.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kEndings[] = {"png", "exr", "tif", "jpg"};

struct StoredAs {
    const char* ending;
    const char* compression;  ///< empty for the format's own
};

constexpr StoredAs kStored[] = {{"png", ""},     {"exr", "zip"},      {"exr", "none"}, {"tif", "zip"},
                                {"tif", "none"}, {"tif", "packbits"}, {"tif", "lzw"},  {"jpg", ""}};

/// Noise, which no format makes small.
World Noise(int width, int height) {
    World noise = World::Create(width, height, Depth::k8);
    unsigned state = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            state = state * 1664525 + 1013904223;
            Pixel8(noise, x, y) = {255, static_cast<A_u_char>(state >> 24), static_cast<A_u_char>(state >> 16), 1};
        }
    }
    return noise;
}

/// Files of 8 KiB at most.
const std::vector<std::string> kLimited = {"prlimit", "--fsize=8192:8192"};

/// What work on a small disk returns besides the program's exit codes.
constexpr int kNoDisk = 200;
constexpr int kChanged = 201;
constexpr char kWhyNoDisk[] = "no disk of a limited size can be mounted here";

/// Mounts a disk that this process and its children alone see; false where this user may not.
bool MountSmallDisk(const std::filesystem::path& folder, std::uintmax_t bytes) {
    const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
    if (unshare(CLONE_NEWNS) != 0) {
        // Root of a user namespace of its own may.
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        WriteBytes("/proc/self/setgroups", "deny");
        WriteBytes("/proc/self/uid_map", "0 " + user + " 1");
        WriteBytes("/proc/self/gid_map", "0 " + group + " 1");
    }
    const std::string size = "size=" + std::to_string(bytes);
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

class CliFullDisk : public CliSequence {
 protected:
    CliFullDisk() {
        EXPECT_TRUE(WritePicture(folder_ / "in.2.png", Noise(200, 200), {{0, 0, 200, 200}, 200, 200}));
        std::filesystem::create_directory(folder_ / "disk");
    }
    /// Runs the program with its outputs in files; `before` are words in front of it.
    int Draw(const std::string& output, const std::vector<std::string>& more, const std::string& input = "in.@.png",
             const std::vector<std::string>& before = {}) const {
        std::vector<std::string> words = before;
        words.emplace_back(UMBRANT_PROGRAM);
        for (const std::string& argument : Arguments(input, output, more)) words.push_back(argument);
        // On a slow machine writing takes so long that it would be reported.
        words.insert(words.end(), {"--progress", "0"});
        return Run(words);
    }
    int Run(const std::vector<std::string>& words, const std::vector<std::string>& environment = {}) const {
        ProgramStart start;
        start.folder = folder_.Path().string();
        start.environment = environment;
        start.output = Stream::File("out.txt");
        start.errors = Stream::File("err.txt");
        return RunProgram(words, start).code;
    }
    /// Does it in a child of this process that alone sees a disk of this size in the folder "disk", whose files are
    /// then listed in list.txt. Returns what it returns, or kNoDisk where this user may not have such a disk.
    int OnSmallDisk(const std::function<int()>& work, std::uintmax_t bytes = 16384) const {
        return RunInChild([&] {
            const std::filesystem::path disk = folder_ / "disk";
            if (!MountSmallDisk(disk, bytes)) return kNoDisk;
            const int code = work();
            std::set<std::string> names;
            for (const auto& entry : std::filesystem::directory_iterator(disk)) {
                names.insert(entry.path().filename().string());
            }
            std::string list;
            for (const std::string& name : names) list += name + "\n";
            WriteBytes(folder_ / "list.txt", list);
            return code;
        });
    }
};

TEST_F(CliFullDisk, AFullDiskFailsAFrameAndLeavesNoHalfFile) {
    for (const char* ending : kEndings) {
        SCOPED_TRACE(ending);
        const std::string output = std::string("disk/full.@.") + ending;
        const int code = OnSmallDisk([&] {
            return Draw(output, {"--frames", "1-3", "--keep-going", "--threads", "1"});
        });
        if (code == kNoDisk) GTEST_SKIP() << kWhyNoDisk;
        EXPECT_EQ(code, 1);
        const std::string err = ReadBytes(folder_ / "err.txt");
        EXPECT_THAT(err, HasSubstr(std::string("umbrant: frame 2: cannot write 'disk/full.2.") + ending +
                                   "': No space left on device\n"));
        EXPECT_THAT(err, HasSubstr("2 drawn, 1 failed"));
        EXPECT_EQ(ReadBytes(folder_ / "list.txt"), std::string("full.1.") + ending + "\nfull.3." + ending + "\n")
            << "the others are there, and no half file";
    }
}

TEST_F(CliFullDisk, WithoutKeepGoingItEndsWithThree) {
    for (const char* ending : kEndings) {
        SCOPED_TRACE(ending);
        const std::string output = std::string("disk/full.") + ending;
        const int code = OnSmallDisk([&] { return Draw(output, {"--quiet"}, "in.2.png"); });
        if (code == kNoDisk) GTEST_SKIP() << kWhyNoDisk;
        EXPECT_EQ(code, 3);
        EXPECT_EQ(ReadBytes(folder_ / "err.txt"), "umbrant: cannot write '" + output + "': No space left on device\n");
        EXPECT_EQ(ReadBytes(folder_ / "list.txt"), "");
    }
    EXPECT_EQ(OnSmallDisk([&] { return Draw("disk/full.@.png", {"--frames", "2-3", "--threads", "1"}); }), 3);
}

// The pixels fill the disk to its last page, so that only what a format writes at its end does not fit.
TEST_F(CliFullDisk, AFileWhoseEndDoesNotFitIsNoFile) {
    ASSERT_TRUE(WritePicture(folder_ / "pages.png", Noise(128, 64), {{0, 0, 128, 64}, 128, 64}));
    for (const StoredAs& row : kStored) {
        SCOPED_TRACE(std::string(row.ending) + " " + row.compression);
        std::vector<std::string> more = {"--canvas", "layer", "--quiet"};
        if (*row.compression) more.insert(more.end(), {"--compression", row.compression});
        const std::string name = std::string("whole.") + row.ending;
        ASSERT_EQ(Draw(name, more, "pages.png"), 0) << ReadBytes(folder_ / "err.txt");
        constexpr std::uintmax_t kPage = 4096;
        const std::uintmax_t pages = (std::filesystem::file_size(folder_ / name) - 1) / kPage;
        const int code = OnSmallDisk(
            [&] {
                return Draw("disk/" + name, more, "pages.png", {"timeout", "300"});
            },
            pages * kPage);
        if (code == kNoDisk) GTEST_SKIP() << kWhyNoDisk;
        EXPECT_EQ(code, 3) << "124 says that it did not end";
        EXPECT_EQ(ReadBytes(folder_ / "err.txt"),
                  "umbrant: cannot write 'disk/" + name + "': No space left on device\n");
        EXPECT_EQ(ReadBytes(folder_ / "list.txt"), "");
    }
}

TEST_F(CliFullDisk, AnOldPictureStays) {
    const int code = OnSmallDisk([&] {
        std::filesystem::copy_file(folder_ / "in.1.png", folder_ / "disk/full.png");
        const int drawn = Draw("disk/full.png", {}, "in.2.png");
        return ReadBytes(folder_ / "disk/full.png") == ReadBytes(folder_ / "in.1.png") ? drawn : kChanged;
    });
    if (code == kNoDisk) GTEST_SKIP() << kWhyNoDisk;
    EXPECT_EQ(code, 3);
}

TEST_F(CliFullDisk, ALimitOnTheSizeOfFilesIsTheSame) {
    for (const char* ending : kEndings) {
        SCOPED_TRACE(ending);
        const std::string output = std::string("full.@.") + ending;
        // The program's own module, as the pixels of another one's process count as files.
        std::vector<std::string> words = kLimited;
        for (const std::string& word : {std::string(UMBRANT_PROGRAM), std::string("render"), std::string("in.@.png"),
                                        std::string("-o"), output}) {
            words.push_back(word);
        }
        for (const std::string& word : Words("--frames 1-3 --keep-going --set style/distance=0 --set style/softness=0 "
                                             "--set quality/samples=1")) {
            words.push_back(word);
        }
        EXPECT_EQ(Run(words, {"UMBRANT_MODULE"}), 1);
        const std::string err = ReadBytes(folder_ / "err.txt");
        EXPECT_THAT(err, HasSubstr(std::string("umbrant: frame 2: cannot write 'full.2.") + ending + "': "));
        EXPECT_THAT(err, HasSubstr("2 drawn, 1 failed"));
        EXPECT_TRUE(Exists(std::string("full.1.") + ending));
        EXPECT_FALSE(Exists(std::string("full.2.") + ending));
        EXPECT_TRUE(Exists(std::string("full.3.") + ending));
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            EXPECT_THAT(entry.path().filename().string(), Not(StartsWith("."))) << "a half file";
        }
    }
}

TEST_F(CliFullDisk, ALimitThatTheSharedPixelsExceedIsNamed) {
    EXPECT_EQ(Draw("full.png", {}, "in.2.png", kLimited), 5);
    EXPECT_EQ(ReadBytes(folder_ / "err.txt"),
              "umbrant: the limit of file sizes is 8 KiB, and the pixels that a module's process needs are 1 MiB of "
              "shared memory, which it counts; raise it (`ulimit -f`)\n");
    EXPECT_FALSE(Exists("full.png"));
}

}  // namespace

}  // namespace umbrant::host
