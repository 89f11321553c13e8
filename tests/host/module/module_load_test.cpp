// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Loading modules, right and wrong ones: every failure is exit code 4 and one sentence that names the file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/module/module.h"

namespace umbrant::host {

namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

std::filesystem::path TestModule(const std::string& name) {
    return std::filesystem::path(TEST_MODULES) / (name + ".so");
}

TEST(ModuleLoad, RecordsTheRegistration) {
    const Result<Module> module = Module::Load(TestModule("painter"));
    ASSERT_TRUE(module) << module.error().sentence;
    const Registration& effect = module->Effect();
    EXPECT_EQ(effect.name, "Painter");
    EXPECT_EQ(effect.matchName, "TEST painter");
    EXPECT_EQ(effect.category, "Tests");
    EXPECT_EQ(effect.entryPoint, "PaintMain");
    EXPECT_EQ(effect.kind, 0x65464B54);
    EXPECT_EQ(effect.apiMajor, 13);
    EXPECT_EQ(effect.apiMinor, 28);
    EXPECT_EQ(effect.reservedInfo, 8);
    EXPECT_EQ(module->File(), TestModule("painter"));
}

TEST(ModuleLoad, CallsTheEntry) {
    const Result<Module> module = Module::Load(TestModule("painter"));
    ASSERT_TRUE(module);
    PF_InData in{};
    PF_OutData out{};
    const CallOutcome outcome = module->Call(PF_Cmd_ABOUT, &in, &out, nullptr, nullptr, nullptr);
    EXPECT_EQ(outcome.error, PF_Err_NONE);
    EXPECT_FALSE(outcome.exception);
    EXPECT_STREQ(out.return_msg, "Painter\nfor tests\n");
}

TEST(ModuleLoad, MovesAndUnloadsAndLoadsAgain) {
    for (int i = 0; i < 3; ++i) {
        Result<Module> module = Module::Load(TestModule("painter"));
        ASSERT_TRUE(module);
        const Module moved = *std::move(module);
        EXPECT_EQ(moved.Effect().name, "Painter");
    }
}

TEST(ModuleLoad, TakesABareFileNameFromTheWorkingFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(TEST_MODULES);
    const Result<Module> module = Module::Load("painter.so");
    std::filesystem::current_path(before);
    EXPECT_TRUE(module);
}

TEST(ModuleCall, CatchesAnException) {
    const Result<Module> module = Module::Load(TestModule("SetupThrows"));
    ASSERT_TRUE(module);
    PF_InData in{};
    PF_OutData out{};
    const CallOutcome outcome = module->Call(PF_Cmd_GLOBAL_SETUP, &in, &out, nullptr, nullptr, nullptr);
    EXPECT_EQ(outcome.error, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(outcome.exception, "no set-up today");
}

TEST(ModuleLoad, CutsANameThatIsTooLongForPeople) {
    const Result<Module> module = Module::Load(TestModule("LongName"));
    ASSERT_TRUE(module) << module.error().sentence;
    EXPECT_EQ(module->Effect().name, std::string(251, 'n') + "...") << "254 bytes: a character is not cut in two";
    EXPECT_EQ(module->Effect().matchName, "TEST flawed");
}

struct WrongModule {
    const char* name;
    const char* file;
    const char* reason;
};

class WrongModules : public ::testing::TestWithParam<WrongModule> {};

TEST_P(WrongModules, FailWithOneSentence) {
    const Result<Module> module = Module::Load(TestModule(GetParam().file));
    ASSERT_FALSE(module);
    EXPECT_EQ(module.error().kind, ErrorKind::kModule);
    const std::string file = TestModule(GetParam().file).string();
    EXPECT_EQ(module.error().sentence, "cannot load the module '" + file + "': " + GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongModules,
    ::testing::Values(
        WrongModule{"Missing", "no_such_module", "there is no such file; name the module's file"},
        WrongModule{"NoExport", "no_export", "'PluginDataEntryFunction' is not exported; an effect module exports it"},
        WrongModule{"Throws", "Throws",
                    "its registration threw an exception (no registration today); it should return an error instead"},
        WrongModule{"ThrowsNumber", "ThrowsNumber",
                    "its registration threw an exception (the number 12); it should return an error instead"},
        WrongModule{"ReturnsError", "ReturnsError", "its registration returned error 25; it should return 0"},
        WrongModule{"Nothing", "RegistersNothing",
                    "0 effects are registered; this host takes modules with exactly one"},
        WrongModule{"Twice", "RegistersTwice", "2 effects are registered; this host takes modules with exactly one"},
        WrongModule{"WrongKind", "WrongKind", "the registered kind is 'AEGP'; an effect has the kind 'eFKT'"},
        WrongModule{"WrongEntry", "WrongEntry", "the registered entry 'ElsewhereMain' is not exported"},
        WrongModule{"NullName", "NullName",
                    "its registration lacks a name; name, match name, category and entry are needed"}),
    [](const auto& row) { return row.param.name; });

TEST(ModuleLoad, RefusesAFileThatIsNoLibrary) {
    const std::filesystem::path folder = std::filesystem::path(::testing::TempDir()) / "module_load_test";
    std::filesystem::create_directories(folder);
    for (const char* content : {"", "this is no module\n"}) {
        const std::filesystem::path file = folder / "text.so";
        std::ofstream(file) << content;
        const Result<Module> module = Module::Load(file);
        ASSERT_FALSE(module);
        EXPECT_EQ(module.error().kind, ErrorKind::kModule);
        EXPECT_THAT(module.error().sentence,
                    AllOf(StartsWith("cannot load the module '" + file.string() + "': not a loadable module ("),
                          EndsWith("); a shared library with an effect is needed")));
    }
    const Result<Module> module = Module::Load(folder);
    ASSERT_FALSE(module);
    EXPECT_THAT(module.error().sentence, EndsWith("a folder; name the module's file inside it"));
    std::filesystem::remove_all(folder);
}

}  // namespace

}  // namespace umbrant::host
