// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Runs a fuzz target over files that are kept: the seeds, and every input that once broke it. Needs no fuzzer, so the
// cases are checked in every build.
//
//   replay FILE|FOLDER...

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/target.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) {
            files.emplace_back(argv[i]);
            continue;
        }
        for (const auto& entry : fs::directory_iterator(argv[i])) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        std::fprintf(stderr, "case %s\n", file.c_str());
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            std::fprintf(stderr, "cannot read %s\n", file.c_str());
            return 1;
        }
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu cases\n", files.size());
    return files.empty() ? 1 : 0;
}
