// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// One frame at a time, on demand, for bench/peers/compare: the module in a session as the program opens it, the layer
// in memory, everything included. It speaks as the other two peers do: after "ready W H LEFT TOP" (the frame's size,
// and where its corner is in the layer's coordinates) every line "frame" is answered with the seconds that a frame
// took, and "save FILE" writes the last frame's alpha, one byte a pixel.
//
// Usage: peers_ours LAYER WIDTH HEIGHT [8|32] [ROW=VALUE ...]; LAYER holds four bytes a pixel, red first.

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "host/session/effect_session.h"

using namespace umbrant::host;

namespace {

[[noreturn]] void Fail(const std::string& sentence) {
    std::cerr << sentence << '\n';
    std::exit(1);
}

template <class T>
T Take(Result<T> result) {
    if (!result) Fail(result.error().sentence);
    return *std::move(result);
}

World ReadLayer(const char* file, int width, int height, Depth depth) {
    std::vector<unsigned char> bytes(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()))) {
        Fail(std::string(file) + " does not hold " + std::to_string(bytes.size()) + " bytes.");
    }
    World world = World::Create(width, height, depth);
    const unsigned char* p = bytes.data();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, p += 4) {
            if (depth == Depth::k8) {
                RowOf<PF_Pixel>(world.Def(), y)[x] = {p[3], p[0], p[1], p[2]};
            } else {
                RowOf<PF_PixelFloat>(world.Def(), y)[x] = {
                    static_cast<float>(p[3]) / 255, static_cast<float>(p[0]) / 255, static_cast<float>(p[1]) / 255,
                    static_cast<float>(p[2]) / 255};
            }
        }
    }
    return world;
}

void SaveAlpha(const World& world, Depth depth, const std::string& file) {
    std::ofstream stream(file, std::ios::binary);
    for (int y = 0; y < world.Height(); ++y) {
        for (int x = 0; x < world.Width(); ++x) {
            const int alpha = depth == Depth::k8
                                  ? RowOf<PF_Pixel>(world.Def(), y)[x].alpha
                                  : static_cast<int>(RowOf<PF_PixelFloat>(world.Def(), y)[x].alpha * 255 + 0.5f);
            stream.put(static_cast<char>(alpha));
        }
    }
    if (!stream.flush()) Fail(file + " could not be written.");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) Fail("Usage: peers_ours LAYER WIDTH HEIGHT 8|32 [ROW=VALUE ...]");
    const Depth depth = std::string(argv[4]) == "32" ? Depth::k32 : Depth::k8;
    const World layer = ReadLayer(argv[1], std::atoi(argv[2]), std::atoi(argv[3]), depth);
    const Module module = Take(Module::Load(UMBRANT_MODULE_FILE));
    EffectSession session = Take(EffectSession::Start(module));
    for (int i = 5; i < argc; ++i) {
        const std::string setting = argv[i];
        const size_t equals = setting.find('=');
        Take(session.Params().SetFromText(setting.substr(0, equals), setting.substr(equals + 1)));
    }

    Frame frame = Take(session.Render({.layer = &layer}));
    std::cout << "ready " << frame.output.Width() << ' ' << frame.output.Height() << ' ' << frame.rect.left << ' '
              << frame.rect.top << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "frame") {
            frame = Frame{};
            const auto begin = std::chrono::steady_clock::now();
            frame = Take(session.Render({.layer = &layer}));
            std::cout << std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() << std::endl;
        } else if (line.rfind("save ", 0) == 0) {
            SaveAlpha(frame.output, depth, line.substr(5));
            std::cout << "saved" << std::endl;
        }
    }
}
