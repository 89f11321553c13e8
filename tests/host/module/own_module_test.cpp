// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/module/own_module.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

class OwnModule : public testing::Test {
 protected:
    OwnModule() {
        fs::create_directories(root_ / "program");
        Write("program/umbrant2.so", "our module");
    }
    ~OwnModule() override { fs::remove_all(root_); }
    void Write(const char* name, const std::string& bytes) const {
        std::ofstream(root_ / name, std::ios::binary) << bytes;
    }
    bool IsOwn(const char* name) const { return IsOwnModule(root_ / name, {root_ / "nowhere", root_ / "program"}); }

    const fs::path root_ = fs::path(testing::TempDir()) / ("own_module_test_" + std::to_string(getpid()));
};

TEST_F(OwnModule, IsTheOneThatIsFoundUnasked) {
    EXPECT_TRUE(IsOwn("program/umbrant2.so"));
    EXPECT_TRUE(IsOwn("program/../program/umbrant2.so"));
    fs::create_symlink(root_ / "program/umbrant2.so", root_ / "link.so");
    EXPECT_TRUE(IsOwn("link.so"));
    fs::create_hard_link(root_ / "program/umbrant2.so", root_ / "hard.so");
    EXPECT_TRUE(IsOwn("hard.so"));
}

TEST_F(OwnModule, IsACopyOfIt) {
    Write("copy.so", "our module");
    EXPECT_TRUE(IsOwn("copy.so"));
}

TEST_F(OwnModule, IsNoOther) {
    Write("umbrant2.so", "our nodule");
    EXPECT_FALSE(IsOwn("umbrant2.so")) << "the name says nothing";
    Write("longer.so", "our module, and more");
    EXPECT_FALSE(IsOwn("longer.so"));
    EXPECT_FALSE(IsOwn("missing.so"));
    EXPECT_FALSE(IsOwn("program"));
    ASSERT_EQ(mkfifo((root_ / "pipe.so").c_str(), 0600), 0);
    EXPECT_FALSE(IsOwn("pipe.so")) << "and nobody waits for it";
}

TEST_F(OwnModule, IsNoneWhereNoneIsInstalled) {
    EXPECT_FALSE(IsOwnModule(root_ / "program/umbrant2.so", {root_ / "nowhere"}));
}

}  // namespace

}  // namespace umbrant::host
