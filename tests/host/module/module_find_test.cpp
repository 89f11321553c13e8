// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The order in which a module is looked for.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/module/module.h"

namespace {

namespace fs = std::filesystem;

class FindModuleTest : public ::testing::Test {
 protected:
    FindModuleTest() : root_(fs::path(::testing::TempDir()) / ("module_find_test_" + std::to_string(getpid()))) {
        search_.programFolder = root_ / "bin";
        search_.libraryFolder = root_ / "lib";
        fs::create_directories(search_.programFolder);
        fs::create_directories(search_.libraryFolder);
    }
    ~FindModuleTest() override { fs::remove_all(root_); }

    void Put(const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "module";
    }

    fs::path root_;
    ModuleSearch search_;
};

TEST_F(FindModuleTest, TakesTheOptionFirst) {
    Put(search_.programFolder / "umbrant2.so");
    search_.environment = "environment.so";
    search_.option = "option.so";
    EXPECT_EQ(*FindModule(search_), "option.so");
}

TEST_F(FindModuleTest, ThenTheEnvironment) {
    Put(search_.programFolder / "umbrant2.so");
    search_.environment = "environment.so";
    EXPECT_EQ(*FindModule(search_), "environment.so");
}

TEST_F(FindModuleTest, ThenBesideTheProgram) {
    Put(search_.programFolder / "umbrant2.so");
    Put(search_.libraryFolder / "umbrant2.so");
    EXPECT_EQ(*FindModule(search_), search_.programFolder / "umbrant2.so");
}

TEST_F(FindModuleTest, ThenTheLibraryFolder) {
    Put(search_.libraryFolder / "umbrant2.so");
    EXPECT_EQ(*FindModule(search_), search_.libraryFolder / "umbrant2.so");
}

TEST_F(FindModuleTest, KnowsTheBundleToo) {
    const fs::path file = search_.programFolder / "Umbrant 2.plugin" / "Contents" / "MacOS" / "Umbrant 2";
    Put(file);
    EXPECT_EQ(*FindModule(search_), file);
}

TEST_F(FindModuleTest, SaysWhereItLooked) {
    const Result<fs::path> found = FindModule(search_);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.Error().code, ExitCode::kModule);
    EXPECT_EQ(found.Error().sentence, "no module was found in '" + search_.programFolder.string() + "' or '" +
                                          search_.libraryFolder.string() +
                                          "'; name one with --module or UMBRANT_MODULE");
}

TEST(DefaultModuleSearch, ReadsTheEnvironmentAndTheProgramsFolder) {
    ASSERT_EQ(setenv("UMBRANT_MODULE", "from/environment.so", 1), 0);
    ModuleSearch search = DefaultModuleSearch(std::nullopt);
    EXPECT_EQ(search.environment, "from/environment.so");
    ASSERT_EQ(setenv("UMBRANT_MODULE", "", 1), 0);
    search = DefaultModuleSearch("option.so");
    EXPECT_FALSE(search.environment);
    EXPECT_EQ(search.option, "option.so");
    unsetenv("UMBRANT_MODULE");
    EXPECT_TRUE(fs::exists(search.programFolder / "host_module_test"));
    EXPECT_EQ(search.libraryFolder, (search.programFolder / ".." / "lib" / "umbrant").lexically_normal());
}

}  // namespace
