// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// openfx_host_report BUNDLE: runs every check on a plug-in and prints one line for each.
//
//     passed  draws 8-bit images
//     FAILED  draws float images: the render did not write every pixel of its window
//
// Exit codes: 0 every check passed, 1 one failed, 2 wrong usage.

#include <cstdio>
#include <filesystem>

#include "tests/openfx/report/checks.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: openfx_host_report BUNDLE\nBUNDLE is a folder 'Name.ofx.bundle' or a binary.\n");
        return 2;
    }
    if (!std::filesystem::exists(argv[1])) {
        std::fprintf(stderr, "'%s' cannot be checked: there is no such file or folder.\n", argv[1]);
        return 2;
    }
    int failed = 0;
    for (const umbrant::ofx::Check& check : umbrant::ofx::AllChecks()) {
        std::string problems = check.run(argv[1]);
        if (problems.empty()) {
            std::printf("passed  %s\n", check.name.c_str());
        } else {
            ++failed;
            while (problems.ends_with('\n')) problems.pop_back();
            for (std::size_t at = 0; (at = problems.find('\n', at)) != std::string::npos;)
                problems.replace(at, 1, "; ");
            std::printf("FAILED  %s: %s\n", check.name.c_str(), problems.c_str());
        }
        std::fflush(stdout);
    }
    std::printf("%zu checks, %d failed\n", umbrant::ofx::AllChecks().size(), failed);
    return failed == 0 ? 0 : 1;
}
