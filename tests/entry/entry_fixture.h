// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the tests of the entry share: the recording host, a fake driver in its first state, and one call per command.

#include <gtest/gtest.h>

#include <string>

#include "entry/entry_points.h"
#include "hostapi/commands.h"
#include "hostapi/custom_ui.h"
#include "platform/fake/call_log.h"
#include "platform/fake/cgl_fake.h"
#include "platform/fake/gl_fake.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

class EntryTest : public ::testing::Test {
 protected:
    EntryTest() {
        fake::Reset();
        host.inData.effect_ref = reinterpret_cast<PF_ProgPtr>(0x5150);
        host.inData.appl_id = 0x46585443;
    }

    PF_Err Call(PF_Cmd cmd, void* extra = nullptr, PF_LayerDef* output = nullptr) {
        return EffectMain(cmd, &host.inData, &host.outData, nullptr, output, extra);
    }

    void ExpectBalanced() {
        std::string why;
        EXPECT_TRUE(host.Balanced(&why)) << why;
    }

    static constexpr A_long kPremiere = 0x50724D72;
    TestHost host;
};

}  // namespace umbrant::effect
