// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pictures that do not fit: on a disk that is full, and where files may not be as large as they would be.

#include "tests/host/cli/sequence_fixture.h"

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

class CliFullDisk : public CliSequence {
 protected:
    CliFullDisk() {
        EXPECT_TRUE(WritePicture(folder_ / "in.2.png", Noise(200, 200), {{0, 0, 200, 200}, 200, 200}));
        std::filesystem::create_directory(folder_ / "disk");
    }
    /// The program's command line for a shell, with its outputs in files.
    std::string Command(const std::string& output, const std::vector<std::string>& more,
                        const std::string& input = "in.@.png") const {
        std::string command = Quoted(UMBRANT_PROGRAM);
        for (const std::string& argument : Arguments(input, output, more)) command += " " + Quoted(argument);
        return command + " >out.txt 2>err.txt";
    }
    int Bash(const std::string& script) const {
        const int status = std::system(("cd " + Quoted(folder_.Path().string()) + " && " + script).c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// A shell that sees a disk of this size in the folder "disk"; nothing outside of it does. Empty, with the reason
    /// in `whyNot`, where this user may not have one.
    std::string OnSmallDisk(const std::string& script, std::uintmax_t bytes = 16384) {
        const std::string mount = "mount -t tmpfs -o size=" + std::to_string(bytes) + " tmpfs disk";
        for (const char* shell : {"unshare -m bash -c ", "unshare -rm bash -c "}) {
            if (Bash(shell + Quoted(mount) + " 2>why.txt") == 0) return shell + Quoted(mount + " && " + script);
        }
        whyNot = "no disk of a limited size can be mounted here: " + ReadBytes(folder_ / "why.txt");
        return "";
    }

    std::string whyNot;
};

TEST_F(CliFullDisk, AFullDiskFailsAFrameAndLeavesNoHalfFile) {
    for (const char* ending : kEndings) {
        SCOPED_TRACE(ending);
        const std::string output = std::string("disk/full.@.") + ending;
        // What is on the disk is seen by the shell alone.
        const std::string script = OnSmallDisk(Command(output, {"--frames", "1-3", "--keep-going", "--threads", "1"}) +
                                               "; code=$?; ls -A disk >list.txt; exit $code");
        if (script.empty()) GTEST_SKIP() << whyNot;
        EXPECT_EQ(Bash(script), 1);
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
        const std::string single =
            OnSmallDisk(Command(output, {}, "in.2.png") + "; code=$?; ls -A disk >list.txt; exit $code");
        if (single.empty()) GTEST_SKIP() << whyNot;
        EXPECT_EQ(Bash(single), 3);
        EXPECT_EQ(ReadBytes(folder_ / "err.txt"), "umbrant: cannot write '" + output + "': No space left on device\n");
        EXPECT_EQ(ReadBytes(folder_ / "list.txt"), "");
    }
    const std::string many = OnSmallDisk(Command("disk/full.@.png", {"--frames", "2-3", "--threads", "1"}));
    EXPECT_EQ(Bash(many), 3);
}

// The pixels fill the disk to its last page, so that only what a format writes at its end does not fit.
TEST_F(CliFullDisk, AFileWhoseEndDoesNotFitIsNoFile) {
    ASSERT_TRUE(WritePicture(folder_ / "pages.png", Noise(128, 64), {{0, 0, 128, 64}, 128, 64}));
    for (const StoredAs& row : kStored) {
        SCOPED_TRACE(std::string(row.ending) + " " + row.compression);
        std::vector<std::string> more = {"--canvas", "layer"};
        if (*row.compression) more.insert(more.end(), {"--compression", row.compression});
        const std::string name = std::string("whole.") + row.ending;
        ASSERT_EQ(Bash(Command(name, more, "pages.png")), 0) << ReadBytes(folder_ / "err.txt");
        constexpr std::uintmax_t kPage = 4096;
        const std::uintmax_t pages = (std::filesystem::file_size(folder_ / name) - 1) / kPage;
        const std::string script = OnSmallDisk(
            "timeout 300 " + Command("disk/" + name, more, "pages.png") + "; code=$?; ls -A disk >list.txt; exit $code",
            pages * kPage);
        if (script.empty()) GTEST_SKIP() << whyNot;
        EXPECT_EQ(Bash(script), 3) << "124 says that it did not end";
        EXPECT_EQ(ReadBytes(folder_ / "err.txt"),
                  "umbrant: cannot write 'disk/" + name + "': No space left on device\n");
        EXPECT_EQ(ReadBytes(folder_ / "list.txt"), "");
    }
}

TEST_F(CliFullDisk, AnOldPictureStays) {
    const std::string script = OnSmallDisk("cp in.1.png disk/full.png && " + Command("disk/full.png", {}, "in.2.png") +
                                           "; code=$?; cmp in.1.png disk/full.png && exit $code");
    if (script.empty()) GTEST_SKIP() << whyNot;
    EXPECT_EQ(Bash(script), 3);
}

TEST_F(CliFullDisk, ALimitOnTheSizeOfFilesIsTheSame) {
    for (const char* ending : kEndings) {
        SCOPED_TRACE(ending);
        const std::string output = std::string("full.@.") + ending;
        // The program's own module, as the pixels of another one's process count as files.
        const std::string command = Quoted(UMBRANT_PROGRAM) + " render in.@.png -o " + Quoted(output) +
                                    " --frames 1-3 --keep-going --set style/distance=0 --set style/softness=0"
                                    " --set quality/samples=1 >out.txt 2>err.txt";
        EXPECT_EQ(Bash("env -u UMBRANT_MODULE bash -c " + Quoted("ulimit -f 8 && " + command)), 1);
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
    EXPECT_EQ(Bash("bash -c " + Quoted("ulimit -f 8 && " + Command("full.png", {}, "in.2.png"))), 5);
    EXPECT_EQ(ReadBytes(folder_ / "err.txt"),
              "umbrant: the limit of file sizes is 8 KiB, and the pixels that a module's process needs are 1 MiB of "
              "shared memory, which it counts; raise it (`ulimit -f`)\n");
    EXPECT_FALSE(Exists("full.png"));
}

}  // namespace
