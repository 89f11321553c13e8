// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/loading/program_file.h"

#include <system_error>

namespace umbrant::host {

namespace {

std::filesystem::path& StandIn() {
    static std::filesystem::path& program = *new std::filesystem::path;
    return program;
}
// A child of fork() would wait forever for a thread of its parent that was creating it.
[[maybe_unused]] const std::filesystem::path& earlyStandIn = StandIn();

}  // namespace

std::filesystem::path ProgramFile() {
    if (!StandIn().empty()) return StandIn();
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : program;
}

void StandInForProgram(const std::filesystem::path& program) {
    StandIn() = program;
}

}  // namespace umbrant::host
