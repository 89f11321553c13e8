// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Hidden names of files under construction: what they carry, and whether their owner is still there.

#include "host/process/files/file_owner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace umbrant::host {

namespace {

const std::time_t kNow = std::time(nullptr);

TEST(FileOwner, TheNameHasFortyBytesWhateverItCarries) {
    const FileOwner least{}, most{~0ULL, ~0ULL, ~0ULL, ~0ULL};
    EXPECT_EQ(HiddenName(least, 0), ".umbrant-00000000000000000000000000.part");
    EXPECT_EQ(HiddenName(most, ~0U), ".umbrant-vvvvvvvvvvvvvvvvvvvvvvvvvv.part");
    EXPECT_EQ(HiddenName(ThisProcess(), 7).size(), 40u);
}

TEST(FileOwner, TheNameLeadsBackToTheOwner) {
    const FileOwner here = ThisProcess();
    EXPECT_EQ(here.process, static_cast<std::uint64_t>(getpid()));
    EXPECT_GT(here.start, 0u);
    for (const unsigned count : {0u, 1u, 32767u}) {
        const auto owner = OwnerOf(HiddenName(here, count));
        ASSERT_TRUE(owner);
        EXPECT_EQ(owner->host, here.host);
        EXPECT_EQ(owner->boot, here.boot);
        EXPECT_EQ(owner->process, here.process);
        EXPECT_EQ(owner->start, here.start);
    }
    EXPECT_NE(HiddenName(here, 0), HiddenName(here, 1));
}

TEST(FileOwner, OtherNamesHaveNone) {
    const std::string name = HiddenName(ThisProcess(), 0);
    std::string capital = name, longer = name, shorter = name;
    capital[10] = 'W';
    longer.insert(10, "0");
    shorter.erase(10, 1);
    for (const std::string& other : {std::string(), std::string(".umbrant-"), std::string("a.png"), capital, longer,
                                     shorter, name + ".png", name.substr(1), name.substr(0, 39)}) {
        EXPECT_FALSE(OwnerOf(other)) << other;
    }
}

TEST(FileOwner, ThisProcessIsAlive) {
    EXPECT_EQ(StateOf(ThisProcess(), kNow), OwnerState::kAlive);
    EXPECT_EQ(StateOf(ThisProcess(), 0), OwnerState::kAlive) << "however old its file is";
}

TEST(FileOwner, AKilledProcessIsGone) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const FileOwner own = ThisProcess();
        if (write(ends[1], &own, sizeof own) != sizeof own) _exit(1);
        for (;;) pause();
    }
    FileOwner owner;
    ASSERT_EQ(read(ends[0], &owner, sizeof owner), static_cast<ssize_t>(sizeof owner));
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(owner.process, static_cast<std::uint64_t>(child));
    EXPECT_EQ(StateOf(owner, kNow), OwnerState::kAlive);
    kill(child, SIGKILL);
    siginfo_t info{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(StateOf(owner, kNow), OwnerState::kGone) << "nobody has waited for it yet";
    waitpid(child, nullptr, 0);
    EXPECT_EQ(StateOf(owner, kNow), OwnerState::kGone);
}

TEST(FileOwner, AProcessThatOnlyHasItsNumberIsNotTheOwner) {
    FileOwner owner = ThisProcess();
    owner.start -= 1;
    EXPECT_EQ(StateOf(owner, kNow), OwnerState::kGone);
}

TEST(FileOwner, AProcessOfAnEarlierBootIsGone) {
    FileOwner owner = ThisProcess();
    owner.boot ^= 1;
    EXPECT_EQ(StateOf(owner, 1'000'000'000), OwnerState::kGone) << "written long before this boot";
    EXPECT_EQ(StateOf(owner, kNow), OwnerState::kUnknown) << "written since: another host that looks like this one";
}

TEST(FileOwner, OtherHostsCannotBeSeen) {
    FileOwner owner = ThisProcess();
    owner.host ^= 1;
    EXPECT_EQ(StateOf(owner, kNow), OwnerState::kUnknown);
    EXPECT_EQ(StateOf(owner, 0), OwnerState::kUnknown);
}

}  // namespace

}  // namespace umbrant::host
