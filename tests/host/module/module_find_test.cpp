// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The order in which a module is looked for.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/module/module.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

class FindModuleTest : public ::testing::Test {
 protected:
    FindModuleTest() : root_(fs::path(::testing::TempDir()) / ("module_find_test_" + std::to_string(getpid()))) {
        search_.folders = {program_, library_};
        for (const fs::path& folder : search_.folders) fs::create_directories(folder);
    }
    ~FindModuleTest() override { fs::remove_all(root_); }

    void Put(const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "module";
    }

    const fs::path root_;
    const fs::path program_ = root_ / "bin";
    const fs::path library_ = root_ / "lib";
    ModuleSearch search_;
};

TEST_F(FindModuleTest, TakesTheOptionFirst) {
    Put(program_ / "umbrant2.so");
    search_.environment = "environment.so";
    search_.option = "option.so";
    EXPECT_EQ(*FindModule(search_), "option.so");
}

TEST_F(FindModuleTest, ThenTheEnvironment) {
    Put(program_ / "umbrant2.so");
    search_.environment = "environment.so";
    EXPECT_EQ(*FindModule(search_), "environment.so");
}

TEST_F(FindModuleTest, ThenBesideTheProgram) {
    Put(program_ / "umbrant2.so");
    Put(library_ / "umbrant2.so");
    EXPECT_EQ(*FindModule(search_), program_ / "umbrant2.so");
}

TEST_F(FindModuleTest, ThenTheLibraryFolder) {
    Put(library_ / "umbrant2.so");
    EXPECT_EQ(*FindModule(search_), library_ / "umbrant2.so");
}

TEST_F(FindModuleTest, KnowsTheBundleToo) {
    const fs::path file = program_ / "Umbrant 2.plugin" / "Contents" / "MacOS" / "Umbrant 2";
    Put(file);
    EXPECT_EQ(*FindModule(search_), file);
}

TEST_F(FindModuleTest, SaysWhereItLooked) {
    const Result<fs::path> found = FindModule(search_);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().kind, ErrorKind::kModule);
    EXPECT_EQ(found.error().sentence, "no module was found in '" + program_.string() + "' or '" + library_.string() +
                                          "'; name one with --module or UMBRANT_MODULE");
}

TEST(DefaultModuleSearch, ReadsTheEnvironment) {
    ASSERT_EQ(setenv("UMBRANT_MODULE", "from/environment.so", 1), 0);
    ModuleSearch search = DefaultModuleSearch(std::nullopt);
    EXPECT_EQ(search.environment, "from/environment.so");
    ASSERT_EQ(setenv("UMBRANT_MODULE", "", 1), 0);
    search = DefaultModuleSearch("option.so");
    EXPECT_FALSE(search.environment);
    EXPECT_EQ(search.option, "option.so");
    unsetenv("UMBRANT_MODULE");
}

/// The folder of this test's program.
fs::path OwnFolder() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

TEST(DefaultModuleSearch, TheProgramLooksBesideItselfAndInTheLibraryFolderOfItsPrefix) {
    const fs::path own = OwnFolder();
    const std::vector<fs::path> folders = DefaultModuleSearch(std::nullopt).folders;
    ASSERT_GE(folders.size(), 2u);
    EXPECT_EQ(folders.front(), own);
    EXPECT_TRUE(fs::exists(folders.front() / "host_module_test"));
    EXPECT_EQ(folders[1], (own / ".." / UMBRANT_LIBRARY_FOLDER).lexically_normal());
    EXPECT_EQ(folders.back(), (own / "../lib/umbrant").lexically_normal());
}

TEST(DefaultModuleSearch, TheLibraryLooksBesideASharedLibraryAndInTheSystemToo) {
    const fs::path own = OwnFolder();
    const std::vector<fs::path> folders = DefaultModuleSearch(std::nullopt, ModuleSeeker::kLibrary).folders;
    const auto place = [&](const fs::path& folder) {
        return std::find(folders.begin(), folders.end(), folder.lexically_normal()) - folders.begin();
    };
    const auto count = static_cast<std::ptrdiff_t>(folders.size());
    EXPECT_EQ(place(own), 0);
    EXPECT_EQ(place(own / "../umbrant"), 1);
    EXPECT_LT(place(own / ".." / UMBRANT_LIBRARY_FOLDER), place(fs::path("/usr/local") / UMBRANT_LIBRARY_FOLDER));
    EXPECT_EQ(place(fs::path("/usr/local") / UMBRANT_LIBRARY_FOLDER), count - 2);
    EXPECT_EQ(place(fs::path("/usr") / UMBRANT_LIBRARY_FOLDER), count - 1);
}

}  // namespace

}  // namespace umbrant::host
