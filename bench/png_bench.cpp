// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How long a PNG takes to write and how large it becomes: each --compression beside one thread of zlib's level 6 over
// the same filtered rows. All of them take turns, picture by picture; the medians of each picture's rounds are added
// up:
//   png_bench [--rounds N] PICTURE...

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "host/compositing/row_pool.h"
#include "host/image/picture.h"
#include "host/image/png/png_filter.h"

using namespace umbrant::host;

namespace {

struct Sum {
    double milliseconds = 0;
    std::size_t bytes = 0;
};

/// Filtered rows, one thread, level 6: what most programs write.
std::size_t ByZlib(const World& world) {
    const std::size_t rowBytes = static_cast<std::size_t>(world.Width()) * 4;
    std::vector<std::uint8_t> above(rowBytes, 0), row(rowBytes);
    std::vector<std::uint8_t> filtered((rowBytes + 1) * static_cast<std::size_t>(world.Height()));
    for (int y = 0; y < world.Height(); ++y) {
        const auto* pixels = static_cast<const PF_Pixel*>(static_cast<const void*>(world.Row(y)));
        for (int x = 0; x < world.Width(); ++x) {
            const auto at = static_cast<std::size_t>(x) * 4;
            row[at] = pixels[x].red;
            row[at + 1] = pixels[x].green;
            row[at + 2] = pixels[x].blue;
            row[at + 3] = pixels[x].alpha;
        }
        FilterRow(row, above, 4,
                  std::span(filtered).subspan(static_cast<std::size_t>(y) * (rowBytes + 1), rowBytes + 1));
        row.swap(above);
    }
    uLongf size = compressBound(static_cast<uLong>(filtered.size()));
    std::vector<Bytef> out(size);
    compress2(out.data(), &size, filtered.data(), static_cast<uLong>(filtered.size()), 6);
    return size;
}

std::size_t ByProgram(const World& world, const char* compression) {
    WriteOptions options;
    options.compression = compression;
    options.format = "png";
    auto encoded =
        EncodePicture(world, {{0, 0, world.Width(), world.Height()}, world.Width(), world.Height(), {}}, options);
    if (!encoded) {
        std::fprintf(stderr, "%s\n", encoded.error().sentence.c_str());
        std::exit(3);
    }
    return encoded->size();
}

/// The median time of each way, in turns, and the size.
void Measure(const World& world, const std::vector<std::function<std::size_t(const World&)>>& ways, int rounds,
             std::vector<Sum>& sums) {
    std::vector<std::vector<double>> times(ways.size());
    std::vector<std::size_t> bytes(ways.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < ways.size(); ++i) {
            const auto begin = std::chrono::steady_clock::now();
            bytes[i] = ways[i](world);
            times[i].push_back(
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
        }
    }
    for (std::size_t i = 0; i < ways.size(); ++i) {
        std::nth_element(times[i].begin(), times[i].begin() + rounds / 2, times[i].end());
        sums[i].milliseconds += times[i][static_cast<std::size_t>(rounds / 2)];
        sums[i].bytes += bytes[i];
    }
}

}  // namespace

int main(int argc, char** argv) {
    int rounds = 9;
    std::vector<std::string> files(argv + 1, argv + argc);
    if (files.size() > 2 && files[0] == "--rounds") {
        rounds = std::max(1, std::atoi(files[1].c_str()));
        files.erase(files.begin(), files.begin() + 2);
    }
    if (files.empty()) {
        std::fprintf(stderr, "Usage: png_bench [--rounds N] PICTURE...\n");
        return 2;
    }
    const std::vector<std::string> names = {"zlib 6, one thread", "small", "default", "fast"};
    std::vector<std::function<std::size_t(const World&)>> ways = {ByZlib};
    for (std::size_t i = 1; i < names.size(); ++i) {
        ways.emplace_back([name = names[i]](const World& world) { return ByProgram(world, name.c_str()); });
    }
    std::vector<Sum> sums(ways.size());
    for (const std::string& file : files) {
        const auto picture = ReadPicture(file);
        if (!picture || picture->pixels.PixelDepth() != Depth::k8) {
            std::fprintf(stderr, "'%s' is no picture of 8 bits\n", file.c_str());
            return 3;
        }
        Measure(picture->pixels, ways, rounds, sums);
    }
    fmt::print("{} pictures, {} rounds, {} threads\n", files.size(), rounds, RowThreads());
    for (std::size_t i = 0; i < names.size(); ++i) {
        fmt::print("{:<20} {:8.1f} ms {:10} bytes   {:5.2f} times as fast, {:.3f} of the size\n", names[i],
                   sums[i].milliseconds, sums[i].bytes, sums[0].milliseconds / sums[i].milliseconds,
                   static_cast<double>(sums[i].bytes) / static_cast<double>(sums[0].bytes));
    }
}
