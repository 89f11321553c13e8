// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The checks of the report pass a correct plug-in, and each finds a plug-in that is wrong there.

#include <gmock/gmock.h>

#include "tests/openfx/report/checks.h"

namespace umbrant::ofx {
namespace {

std::string File(const char* name) {
    return std::string(OPENFX_PLANTED) + "/" + name + ".ofx";
}

TEST(Report, EveryCheckPassesTheCorrectPlugIn) {
    for (const Check& check : AllChecks()) EXPECT_EQ(check.run(File("kNone")), "") << check.name;
}

TEST(Report, ChecksFindWhatIsWrong) {
    const struct {
        const char* check;
        const char* flaw;
    } rows[] = {
        {"loads, describes itself and makes an instance in the filter context", "kThrows"},
        {"makes an instance in the general context", "kNoOutput"},
        {"draws 8-bit images", "kLeavesPixels"},
        {"draws float images", "kKeepsImage"},
        {"draws premultiplied images", "kWritesSource"},
        {"draws the same with negative row bytes", "kIgnoresNegativeRows"},
        {"draws the same with gaps between rows", "kWritesGap"},
        {"draws the same without the actions around Render", "kThrowsInRender"},
        {"follows a source that begins elsewhere", "kIgnoresOrigin"},
        {"draws a part of a frame as that part of the whole", "kIgnoresWindow"},
        {"draws at half of the scale", "kWrongRegion"},
        {"draws eight frames at once", "kReleasesTwice"},
        {"draws in a host with fixed sizes", "kWritesBefore"},
        {"draws without an image of its source", "kOtherTime"},
        {"stops when the host asks", "kDefaultsRender"},
        {"needs only the necessary properties and suites", "kNeedsSuites"},
        {"refuses a host without a necessary suite", "kIgnoresMissingSuites"},
        {"survives each suite function that fails", "kTrustsHandles"},
        {"is the source to the bit where it claims identity", "kClaimsIdentity"},
        {"leaves unknown actions to the host", "kAnswersUnknown"},
        {"starts again after it was unloaded", "kLeaksMemory"},
    };
    for (const auto& row : rows) {
        bool found = false;
        for (const Check& check : AllChecks()) {
            if (check.name != row.check) continue;
            found = true;
            EXPECT_NE(check.run(File(row.flaw)), "") << row.check << ": " << row.flaw;
        }
        EXPECT_TRUE(found) << row.check;
    }
    EXPECT_EQ(std::size(rows), AllChecks().size());
}

}  // namespace
}  // namespace umbrant::ofx
