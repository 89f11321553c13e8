// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Loading, unloading and loading again, with and without a life in between. None of it needs a driver: without one the
// effect goes through its life just the same.

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "tests/hostapi/loaded_module.h"
#include "tests/support/capture_stdout.h"
#include "tests/support/test_host.h"

namespace {

std::string registeredName;
A_Err Register(PF_PluginDataPtr, const A_u_char* name, const A_u_char*, const A_u_char*, const A_u_char*, A_long,
               A_long, A_long, A_long) {
    registeredName = reinterpret_cast<const char*>(name);
    return 0;
}

int added = 0;
PF_Err AddParam(PF_ProgPtr, PF_ParamIndex, PF_ParamDefPtr) {
    ++added;
    return PF_Err_NONE;
}
PF_Err RegisterUI(PF_ProgPtr, PF_CustomUIInfo*) {
    return PF_Err_NONE;
}

/// Scan, set-up, parameters, set-down.
void WholeLife(const LoadedModule& module) {
    ASSERT_NE(module.main, nullptr) << module.error;
    registeredName.clear();
    EXPECT_EQ(module.registration(nullptr, Register, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(registeredName, "Umbrant 2");

    TestHost host;
    host.inData.inter.add_param = AddParam;
    host.inData.inter.register_ui = RegisterUI;
    EXPECT_EQ(module.main(PF_Cmd_GLOBAL_SETUP, &host.inData, &host.outData, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(host.outData.my_version, 0x99801u);
    host.inData.global_data = host.outData.global_data;
    added = 0;
    EXPECT_EQ(module.main(PF_Cmd_PARAMS_SETUP, &host.inData, &host.outData, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(added, 60);
    EXPECT_EQ(module.main(PF_Cmd_GLOBAL_SETDOWN, &host.inData, &host.outData, nullptr, nullptr, nullptr), 0);
    std::string why;
    EXPECT_TRUE(host.Balanced(&why)) << why;
}

TEST(ModuleLoad, LoadingSaysAndLeavesNothing) {
    for (int i = 0; i < 3; ++i) {
        CaptureStdout output;
        LoadedModule module;
        EXPECT_NE(module.main, nullptr) << module.error;
        EXPECT_NE(module.registration, nullptr);
        EXPECT_TRUE(LoadedModule::IsMapped());
        module.Unload();
        EXPECT_EQ(LoadedModule::IsMapped(), LoadedModule::kStaysMapped) << "nothing keeps the module in the process";
        EXPECT_EQ(output.Text(), "");
    }
}

// On a thread of its own: what the driver's layer keeps for a thread goes with the thread, and then the module can go.
TEST(ModuleLoad, UnloadsAfterItsLife) {
    for (int i = 0; i < 3; ++i) {
        LoadedModule module;
        std::thread([&] { WholeLife(module); }).join();
        module.Unload();
        EXPECT_EQ(LoadedModule::IsMapped(), LoadedModule::kStaysMapped) << "round " << i;
    }
}

TEST(ModuleLoad, ReloadsOnOneThread) {
    for (int i = 0; i < 3; ++i) {
        LoadedModule module;
        WholeLife(module);
    }
}

TEST(ModuleLoad, TwoLoadsAreOneModule) {
    LoadedModule first, second;
    EXPECT_EQ(first.main, second.main);
    first.Unload();
    WholeLife(second);
}

}  // namespace
