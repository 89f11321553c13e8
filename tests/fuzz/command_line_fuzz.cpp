// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Any arguments, one a line: they are read, and either a command is found or the usage is reported. Nothing is run.

#include <string>
#include <vector>

#include "host/cli/run_program.h"
#include "tests/fuzz/target.h"

using namespace umbrant::host;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> arguments = {"umbrant"};
    std::string argument;
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n') {
            arguments.push_back(argument);
            argument.clear();
        } else if (data[i] != 0) {  // no argument of a process holds one
            argument += static_cast<char>(data[i]);
        }
    }
    if (!argument.empty()) arguments.push_back(argument);
    std::vector<const char*> pointers;
    for (const std::string& text : arguments) pointers.push_back(text.c_str());

    int found = 0;
    const int code = RunProgram(static_cast<int>(pointers.size()), pointers.data(), [&](const Command&) {
        ++found;
        return 0;
    });
    Promise(code == 0 || code == static_cast<int>(ExitCode::kUsage), "arguments are right or wrong usage");
    Promise(found <= 1 && (found == 0 || code == 0), "at most one command is found");
    return 0;
}
