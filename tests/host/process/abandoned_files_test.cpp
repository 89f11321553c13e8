// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is removed from a folder of killed runs' files, and what stays.

#include "host/process/files/abandoned_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/time.h>

#include <ctime>

#include "host/image/picture.h"
#include "host/process/files/file_owner.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

constexpr std::time_t kDay = 24 * 60 * 60;

class AbandonedFiles : public testing::Test {
 protected:
    static FileOwner Dead() {
        FileOwner owner = ThisProcess();
        owner.start -= 1;
        return owner;
    }
    static FileOwner Elsewhere() {
        FileOwner owner = ThisProcess();
        owner.host ^= 1;
        return owner;
    }
    void Put(const std::string& name, std::time_t age = 0) const {
        const std::filesystem::path file = folder_ / name;
        WriteBytes(file, "half");
        const timeval then{std::time(nullptr) - age, 0};
        const timeval both[] = {then, then};
        ASSERT_EQ(utimes(file.c_str(), both), 0);
    }
    bool Exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }
    std::string Remove() const { return RemoveAbandonedFiles({folder_.Path()}); }

    const Folder folder_;
};

TEST_F(AbandonedFiles, ThoseOfDeadProcessesGo) {
    Put(HiddenName(Dead(), 0));
    Put(HiddenName(Dead(), 1));
    EXPECT_EQ(Remove(), "removed 2 unfinished files of earlier runs from '" + folder_.Path().string() + "'");
    EXPECT_EQ(folder_.Entries(), 0);
    EXPECT_EQ(Remove(), "") << "and nothing is said of nothing";
}

TEST_F(AbandonedFiles, ThoseOfRunningProcessesStay) {
    Put(HiddenName(ThisProcess(), 0), 30 * kDay);
    EXPECT_EQ(Remove(), "");
    EXPECT_EQ(folder_.Entries(), 1);
}

TEST_F(AbandonedFiles, ThoseOfOtherHostsGoAfterSevenDays) {
    const std::string young = HiddenName(Elsewhere(), 0), old = HiddenName(Elsewhere(), 1);
    Put(young, 7 * kDay - 3600);
    Put(old, 7 * kDay + 3600);
    EXPECT_EQ(Remove(), "removed 1 unfinished file of earlier runs from '" + folder_.Path().string() + "'");
    EXPECT_TRUE(Exists(young));
    EXPECT_FALSE(Exists(old));
}

TEST_F(AbandonedFiles, OtherFilesStay) {
    const std::string name = HiddenName(Dead(), 0);
    Put(name + ".png", 30 * kDay);
    Put(".hidden", 30 * kDay);
    Put("a.png", 30 * kDay);
    std::filesystem::create_directory(folder_ / name);
    std::filesystem::create_symlink("a.png", folder_ / HiddenName(Dead(), 1));
    EXPECT_EQ(Remove(), "");
    EXPECT_EQ(folder_.Entries(), 5);
}

TEST_F(AbandonedFiles, SeveralFoldersAreOneSentence) {
    std::set<std::filesystem::path> folders;
    for (const char* name : {"a", "b", "c", "empty"}) {
        std::filesystem::create_directory(folder_ / name);
        folders.insert(folder_ / name);
        if (name != std::string("empty")) Put(std::string(name) + "/" + HiddenName(Dead(), 0));
    }
    folders.insert(folder_ / "none");
    EXPECT_EQ(RemoveAbandonedFiles(folders),
              "removed 3 unfinished files of earlier runs from '" + (folder_ / "a").string() + "' and 2 other folders");
    Put("a/" + HiddenName(Dead(), 0));
    Put("b/" + HiddenName(Dead(), 0));
    EXPECT_EQ(RemoveAbandonedFiles(folders),
              "removed 2 unfinished files of earlier runs from '" + (folder_ / "a").string() + "' and 1 other folder");
}

TEST_F(AbandonedFiles, AFileWithoutAFolderIsInTheCurrentOne) {
    EXPECT_EQ(FolderOf("a.png"), ".");
    EXPECT_EQ(FolderOf("b/a.png"), "b");
}

}  // namespace

}  // namespace umbrant::host
