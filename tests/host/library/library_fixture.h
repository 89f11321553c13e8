// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pictures for the library's tests, and what the program makes of the same ones.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <umbrant/effect.h>

#include "tests/host/cli/program.h"

namespace umbrant::host {

/// This project's effect with the CPU renderer.
inline umbrant::Effect RealEffect() {
    return umbrant::Effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
}

/// The effect of the test module `painter`. `message` receives what it reports.
inline umbrant::Effect Painter(std::function<void(const std::string&)> message = {}) {
    return umbrant::Effect({TestModule("painter"), umbrant::Renderer::kAuto, false, std::move(message)});
}

/// Pixels of a program of somebody's: rows of red, green, blue, alpha without gaps.
template <typename Channel>
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<Channel> channels;

    umbrant::ImageView View() const { return {channels.data(), width, height}; }
    const Channel* At(int x, int y) const { return &channels[4 * (static_cast<std::size_t>(y) * width + x)]; }
    Channel* At(int x, int y) { return const_cast<Channel*>(std::as_const(*this).At(x, y)); }
};

/// A disc with a soft edge over nothing, its colour running from corner to corner; where its alpha is 0 it has a colour
/// too. Values are multiples of 1/255.
inline Pixels<std::uint8_t> Disc8(int width, int height) {
    Pixels<std::uint8_t> disc{width, height, std::vector<std::uint8_t>(4u * width * height)};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double dx = (x + 0.5) / width - 0.5, dy = (y + 0.5) / height - 0.5;
            const double edge = 0.35 - std::sqrt(dx * dx + dy * dy);
            const double alpha = std::clamp(edge * 10 + 0.5, 0.0, 1.0);
            const std::uint8_t pixel[] = {static_cast<std::uint8_t>(255 * x / width),
                                          static_cast<std::uint8_t>(255 * y / height), 77,
                                          static_cast<std::uint8_t>(255 * alpha)};
            std::memcpy(disc.At(x, y), pixel, 4);
        }
    }
    return disc;
}

inline Pixels<float> DiscFloat(int width, int height) {
    const auto bytes = Disc8(width, height);
    Pixels<float> disc{width, height, {}};
    for (const std::uint8_t channel : bytes.channels) disc.channels.push_back(channel / 255.0f);
    return disc;
}

/// The pixels in a world, for the program's files.
template <typename Channel>
World WorldOfPixels(const Pixels<Channel>& pixels) {
    World world = World::Create(pixels.width, pixels.height, sizeof(Channel) == 1 ? Depth::k8 : Depth::k32);
    for (int y = 0; y < pixels.height; ++y) {
        for (int x = 0; x < pixels.width; ++x) {
            const Channel* from = pixels.At(x, y);
            const Channel argb[] = {from[3], from[0], from[1], from[2]};
            std::memcpy(world.Row(y) + static_cast<std::size_t>(x) * sizeof argb, argb, sizeof argb);
        }
    }
    return world;
}

template <typename Channel>
void WritePixels(const std::filesystem::path& file, const Pixels<Channel>& pixels) {
    const PF_LRect frame{0, 0, pixels.width, pixels.height};
    const auto written = WritePicture(file, WorldOfPixels(pixels), {frame, pixels.width, pixels.height});
    ASSERT_TRUE(written) << written.error().sentence;
}

/// Counts the pixels in which a world and an image differ in any byte, or all when their sizes do.
inline int DifferentPixels(const World& world, const umbrant::ImageView& image) {
    if (world.Width() != image.width || world.Height() != image.height) return image.width * image.height + 1;
    const std::size_t bytes = BytesPerPixel(image.format);
    if (static_cast<std::size_t>(BytesPerPixel(world.PixelDepth())) != bytes) return image.width * image.height + 1;
    const std::size_t channel = bytes / 4;
    int different = 0;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const std::byte* argb = world.Row(y) + static_cast<std::size_t>(x) * bytes;
            const std::byte* rgba = image.Row(y) + static_cast<std::size_t>(x) * bytes;
            different += std::memcmp(argb, rgba + 3 * channel, channel) != 0 ||
                         std::memcmp(argb + channel, rgba, 3 * channel) != 0;
        }
    }
    return different;
}

/// Counts the bytes in which two images differ, or one when their places or formats do.
inline std::size_t DifferentBytes(const umbrant::Image& a, const umbrant::Image& b) {
    if (a.Place() != b.Place() || a.Format() != b.Format()) return 1;
    std::size_t different = 0;
    const std::size_t bytes = a.PixelCount() * umbrant::BytesPerPixel(a.Format());
    for (std::size_t i = 0; i < bytes; ++i) different += a.Bytes()[i] != b.Bytes()[i];
    return different;
}

/// The sentence and the code of what `call` throws: "2: the layer is ..."; empty when it throws nothing.
template <typename Call>
std::string Thrown(Call call) {
    try {
        call();
    } catch (const umbrant::Error& error) {
        return std::to_string(static_cast<int>(error.Code())) + ": " + error.what();
    }
    return "";
}

}  // namespace umbrant::host
