// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Processes that end, or fork before OpenGL is used, with effects of the library.

#include "tests/host/library/library_gl_fixture.h"

namespace umbrant::host {

namespace {

TEST_F(LibraryGl, AProcessEndsWhateverItsEffectsDo) {
    for (const char* name : {"static", "exit-on-a-thread", "leaked", "fork-first", "fork-before-the-first-frame"}) {
        const ProgramRun run = RunProgram({EFFECTS_AT_EXIT, UMBRANT_MODULE_FILE, name});
        EXPECT_EQ(run.code, 0) << name;
        EXPECT_EQ(run.errors, "") << name;
    }
}

}  // namespace

}  // namespace umbrant::host
