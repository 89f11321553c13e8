// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Global set-up and set-down on a driver that answers.

#include <string>
#include <vector>

#include "entry/global_data.h"
#include "gl/context.h"
#include "tests/entry/entry_fixture.h"

namespace umbrant::effect {

using Lines = std::vector<std::string>;

class GlobalSetupTest : public EntryTest {
 protected:
    GlobalSetupTest() {
        fake::Gl().strings = {{GL_VERSION, "3.3 Test"},
                              {GL_VENDOR, "The Vendor"},
                              {GL_RENDERER, "The Renderer"},
                              {GL_SHADING_LANGUAGE_VERSION, "3.30"}};
    }
    ~GlobalSetupTest() override {
        writtenRecords.Forget(host.outData.global_data);
        SetCurrentContext(nullptr);
    }

    PF_Err SetUpModule() { return Call(PF_Cmd_GLOBAL_SETUP); }
    PF_Err SetDownModule() {
        host.inData.global_data = host.outData.global_data;
        return Call(PF_Cmd_GLOBAL_SETDOWN);
    }
    GlobalData& Record() { return *static_cast<GlobalData*>(host.BytesOf(host.outData.global_data)); }
};

}  // namespace umbrant::effect
