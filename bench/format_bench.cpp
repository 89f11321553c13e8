// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What each compression of EXR and TIFF costs: the time to write and to read a picture, and the size of its file. All
// of them take turns, picture by picture; the medians of each picture's rounds are added up:
//   format_bench [--rounds N] PICTURE...
// Pictures of 8 bits become EXR of halves and TIFF of 8 bits.

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/compositing/row_pool.h"
#include "host/image/picture.h"

using namespace umbrant::host;

namespace {

namespace fs = std::filesystem;

struct Way {
    const char* format;
    const char* compression;
    double write = 0;  ///< milliseconds
    double read = 0;
    std::uintmax_t bytes = 0;
};

[[noreturn]] void Stop(const std::string& sentence) {
    std::fprintf(stderr, "%s\n", sentence.c_str());
    std::exit(3);
}

double Milliseconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Measure(const std::string& file, const fs::path& folder, int rounds, std::vector<Way>& ways) {
    const auto picture = ReadPicture(file);
    if (!picture) Stop(picture.error().sentence);
    const World& world = picture->pixels;
    std::vector<std::vector<double>> writes(ways.size()), reads(ways.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < ways.size(); ++i) {
            const fs::path out = folder / (std::string("out.") + ways[i].format);
            WriteOptions options;
            options.compression = ways[i].compression;
            const Placement place{{0, 0, world.Width(), world.Height()}, world.Width(), world.Height(), {}};
            writes[i].push_back(Milliseconds([&] {
                if (const auto written = WritePicture(out, world, place, options); !written) {
                    Stop(written.error().sentence);
                }
            }));
            reads[i].push_back(Milliseconds([&] {
                if (const auto read = ReadPicture(out); !read) Stop(read.error().sentence);
            }));
            if (round == 0) ways[i].bytes += fs::file_size(out);
        }
    }
    for (std::size_t i = 0; i < ways.size(); ++i) {
        ways[i].write += Median(writes[i]);
        ways[i].read += Median(reads[i]);
    }
}

}  // namespace

int main(int argc, char** argv) {
    int rounds = 5;
    std::vector<std::string> files(argv + 1, argv + argc);
    if (files.size() > 2 && files[0] == "--rounds") {
        rounds = std::max(1, std::atoi(files[1].c_str()));
        files.erase(files.begin(), files.begin() + 2);
    }
    if (files.empty()) {
        std::fprintf(stderr, "Usage: format_bench [--rounds N] PICTURE...\n");
        return 2;
    }
    std::vector<Way> ways;
    for (const char* name : {"none", "rle", "zips", "zip", "piz", "pxr24", "b44", "dwaa", "dwab"}) {
        ways.push_back({"exr", name});
    }
    for (const char* name : {"none", "packbits", "lzw", "zip"}) ways.push_back({"tif", name});

    std::string pattern = (fs::temp_directory_path() / "format_bench_XXXXXX").string();
    if (!mkdtemp(pattern.data())) Stop("no folder could be made in " + fs::temp_directory_path().string());
    const fs::path folder = pattern;
    for (const std::string& file : files) Measure(file, folder, rounds, ways);
    fs::remove_all(folder);

    fmt::print("{} pictures, {} rounds, {} threads\n", files.size(), rounds, RowThreads());
    fmt::print("| Format | Compression | write, ms | read, ms | MB | of `none` |\n|---|---|---|---|---|---|\n");
    const Way* none = nullptr;
    for (const Way& way : ways) {
        if (std::string_view(way.compression) == "none") none = &way;
        fmt::print("| {} | {} | {:.0f} | {:.0f} | {:.2f} | {:.3f} |\n", way.format, way.compression, way.write,
                   way.read, static_cast<double>(way.bytes) / 1e6,
                   static_cast<double>(way.bytes) / static_cast<double>(none->bytes));
    }
}
