// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The program `umbrant`: everything happens in the command that it is asked for.

#include "host/cli/run_program.h"
#include "host/doctor/examination_process.h"
#include "host/isolation/module_child.h"
#include "host/process/interruption.h"

using namespace umbrant::host;

int main(int argc, char** argv) {
    if (const auto served = RunModuleProcess(argc, argv)) return *served;
    if (const auto examined = RunExaminationProcess(argc, argv)) return *examined;
    PrepareProcess();
    const int code = RunProgram(argc, argv);
    StayWhileEnding();
    return code;
}
