// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Files for the picture tests: a folder that goes with its test, and pictures written by the image library itself, so
// that reading and writing are not checked by each other.

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/compositing/world.h"

namespace umbrant::host {

/// A fresh folder, removed with everything in it.
class Folder {
 public:
    Folder() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = "umbrant_" + std::to_string(getpid()) + "_" + info->test_suite_name() + "_" + info->name();
        // The names of tests over parameters have slashes, which would leave the folders above this one behind.
        std::replace(name.begin(), name.end(), '/', '_');
        path_ = std::filesystem::path(testing::TempDir()) / name;
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& Path() const { return path_; }

    /// How many entries it has, hidden ones included.
    std::ptrdiff_t Entries() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

 private:
    std::filesystem::path path_;
};

inline void WriteBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

inline std::string ReadBytes(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Writes every pixel with the same values, given per channel as they are to stand in the file. The alpha, if any, is
/// called "A"; `straight` declares it unassociated.
inline void WriteFile(const std::filesystem::path& file, OIIO::ImageSpec layout, const std::vector<float>& pixel,
                      bool straight = true) {
    if (straight) layout.attribute("oiio:UnassociatedAlpha", 1);
    std::vector<float> values;
    for (int i = 0; i < layout.width * layout.height; ++i) values.insert(values.end(), pixel.begin(), pixel.end());
    const auto output = OIIO::ImageOutput::create(file.string());
    ASSERT_TRUE(output) << OIIO::geterror();
    ASSERT_TRUE(output->open(file.string(), layout)) << output->geterror();
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, values.data())) << output->geterror();
    ASSERT_TRUE(output->close());
}

/// A file as the image library sees it: its description and its untouched values.
struct RawFile {
    OIIO::ImageSpec layout;
    std::vector<float> values;
};

inline RawFile ReadRaw(const std::filesystem::path& file) {
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file.string(), &config);
    if (!input) {
        ADD_FAILURE() << OIIO::geterror();
        return {};
    }
    RawFile raw{input->spec(), {}};
    raw.values.resize(static_cast<std::size_t>(raw.layout.width) * static_cast<std::size_t>(raw.layout.height) *
                      static_cast<std::size_t>(raw.layout.nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, raw.layout.nchannels, OIIO::TypeDesc::FLOAT, raw.values.data()));
    return raw;
}

inline PF_Pixel& Pixel8(World& world, int x, int y) {
    return static_cast<PF_Pixel*>(static_cast<void*>(world.Row(y)))[x];
}

inline PF_PixelFloat& PixelFloat(World& world, int x, int y) {
    return static_cast<PF_PixelFloat*>(static_cast<void*>(world.Row(y)))[x];
}

inline World Filled8(int width, int height, PF_Pixel pixel) {
    World world = World::Create(width, height, Depth::k8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) Pixel8(world, x, y) = pixel;
    }
    return world;
}

inline World FilledFloat(int width, int height, PF_PixelFloat pixel) {
    World world = World::Create(width, height, Depth::k32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) PixelFloat(world, x, y) = pixel;
    }
    return world;
}

}  // namespace umbrant::host
