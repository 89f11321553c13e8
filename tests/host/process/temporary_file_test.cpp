// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Files under construction: where they are, when they go, and that an interruption finds every one of them.

#include "host/process/files/temporary_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

#include "host/image/picture.h"
#include "host/process/files/file_owner.h"
#include "host/process/interruption.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

TEST(TemporaryFile, GoesWithItsOwner) {
    const Folder folder;
    {
        const TemporaryFile temporary(folder / "a.png");
        EXPECT_EQ(temporary.Name().parent_path(), folder.Path());
        EXPECT_TRUE(OwnerOf(temporary.Name().filename().string())) << temporary.Name();
        EXPECT_EQ(ReadBytes(temporary.Name()), "") << "it is there, and empty";
        EXPECT_FALSE(temporary.Problem());
        WriteBytes(temporary.Name(), "half");
    }
    EXPECT_EQ(folder.Entries(), 0);
}

TEST(TemporaryFile, TakesItsPlaceWhole) {
    const Folder folder;
    {
        TemporaryFile temporary(folder / "a.png");
        WriteBytes(temporary.Name(), "whole");
        ASSERT_TRUE(temporary.PutInPlace());
    }
    EXPECT_EQ(ReadBytes(folder / "a.png"), "whole");
    EXPECT_EQ(folder.Entries(), 1);
}

TEST(TemporaryFile, KeepsTheOldFileWhenItsPlaceIsTaken) {
    const Folder folder;
    std::filesystem::create_directories(folder / "a.png/inside");
    {
        TemporaryFile temporary(folder / "a.png");
        WriteBytes(temporary.Name(), "whole");
        const auto put = temporary.PutInPlace();
        ASSERT_FALSE(put);
        EXPECT_EQ(put.error().kind, ErrorKind::kFile);
    }
    EXPECT_EQ(folder.Entries(), 1);
}

TEST(TemporaryFile, AnInterruptionRemovesThemAll) {
    const Folder folder;
    const TemporaryFile first(folder / "a.png");
    const TemporaryFile second(folder / "b.png");
    WriteBytes(first.Name(), "half");
    WriteBytes(second.Name(), "half");
    WriteBytes(folder / "c.png", "whole");
    RemoveTemporaryFiles();
    EXPECT_EQ(folder.Entries(), 1);
}

TEST(TemporaryFile, AFolderThatIsNotThereIsAProblem) {
    const Folder folder;
    const TemporaryFile temporary(folder / "none/a.png");
    EXPECT_LT(temporary.Descriptor(), 0);
    EXPECT_EQ(temporary.Problem(), "No such file or directory");
}

TEST(TemporaryFile, WhoWritesOnAfterAnInterruptionMakesNoNewFile) {
    const Folder folder;
    const TemporaryFile temporary(folder / "a.exr");
    RemoveTemporaryFiles();
    EXPECT_EQ(write(temporary.Descriptor(), "half", 4), 4) << "the writer notices nothing";
    if (temporary.OpenName() == temporary.Name()) return;
    const int again = open(temporary.OpenName().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    EXPECT_EQ(write(again, "half", 4), 4);
    close(again);
    EXPECT_EQ(folder.Entries(), 0);
}

/// Makes and writes files on several threads until the process ends.
[[noreturn]] void WriteForEver(const Folder& folder) {
#if defined(__SANITIZE_THREAD__)
    // On the stacks that the C library keeps from before the fork, the checker would take new threads for the parent's.
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{10} << 20);
    pthread_setattr_default_np(&attributes);
#endif
    HandleInterruptions(EndTemporaryFiles);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&folder] {
            for (;;) {
                const TemporaryFile temporary(folder / "a.exr");
                if (write(temporary.Descriptor(), "half", 4) != 4) _exit(1);
            }
        });
    }
    threads.front().join();
    _exit(1);
}

TEST(TemporaryFile, AnInterruptionAtAnyMomentLeavesNone) {
    // Each round interrupts four threads at another moment of what they do all the time.
    int interrupted = 0;
    for (int round = 0; round < 150; ++round) {
        const Folder folder;
        const pid_t writer = fork();
        if (writer == 0) WriteForEver(folder);
        std::this_thread::sleep_for(std::chrono::microseconds(3000 + 37 * round));
        kill(writer, SIGINT);
        int status = 0;
        waitpid(writer, &status, 0);
        if (WIFSIGNALED(status)) continue;  // before it was ready for one
        ASSERT_EQ(WEXITSTATUS(status), 130);
        ASSERT_EQ(folder.Entries(), 0) << "in round " << round;
        ++interrupted;
    }
    EXPECT_GT(interrupted, 0) << "every writer was ended before it was ready";
}

TEST(TemporaryFile, TheNameOfTheFileMayBeAsLongAsTheSystemTakes) {
    const Folder folder;
    const std::string longest(255, 'n');
    {
        TemporaryFile temporary(folder / longest);
        EXPECT_FALSE(temporary.Problem());
        ASSERT_TRUE(temporary.PutInPlace());
    }
    EXPECT_TRUE(std::filesystem::exists(folder / longest));
}

TEST(TemporaryFile, ANameThatIsTakenIsPassedOver) {
    const Folder folder;
    const std::string name = TemporaryFile(folder / "a.png").Name().filename().string();
    const auto owner = OwnerOf(name);
    ASSERT_TRUE(owner);
    unsigned count = 0;
    while (HiddenName(*owner, count) != name) ++count;
    for (unsigned next = 1; next <= 3; ++next) WriteBytes(folder / HiddenName(*owner, count + next), "another's");
    {
        const TemporaryFile temporary(folder / "a.png");
        EXPECT_FALSE(temporary.Problem());
        EXPECT_EQ(ReadBytes(temporary.Name()), "");
        EXPECT_EQ(folder.Entries(), 4);
    }
    EXPECT_EQ(folder.Entries(), 3);
}

}  // namespace

}  // namespace umbrant::host
