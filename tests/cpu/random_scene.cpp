// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/cpu/random_scene.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>

namespace {

/// What the current layer looks like.
struct Layer {
    int shape = 0;
    int width = 0;
    int height = 0;
    unsigned seed = 0;
    int left = 0, top = 0, right = 0, bottom = 0;
};
Layer current;

double Noise(int x, int y) {
    unsigned h = current.seed + static_cast<unsigned>(x) * 374761393u + static_cast<unsigned>(y) * 668265263u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return static_cast<double>((h ^ (h >> 16)) & 0xFFFF) / 65535.0;
}

double AlphaOf(int x, int y) {
    const bool inside = x >= current.left && x < current.right && y >= current.top && y < current.bottom;
    switch (current.shape) {
        case 0:  // a box in the middle
            return inside ? 1 : 0;
        case 1:  // noise in a box
            return inside ? Noise(x, y) : 0;
        case 2:  // a soft disc that may touch the edges
            return std::clamp(1.3 - std::hypot(x - current.width / 2.0, y - current.height / 2.0) / current.right, 0.0,
                              1.0);
        case 3:  // full
            return 1;
        case 4:  // noise everywhere
            return Noise(x, y);
        case 5:  // one pixel
            return x == current.left && y == current.top ? 1 : 0;
        case 6:  // nothing
            return 0;
        default:  // touches one corner
            return x + y < current.right ? 0.8 : 0;
    }
}

}  // namespace

RandomScene MakeRandomScene(unsigned number) {
    std::mt19937 engine(number * 7919u + 17u);
    const auto uniform = [&](double low, double high) {
        return low + (high - low) * (static_cast<double>(engine()) / 4294967296.0);
    };
    const auto whole = [&](int low, int high) {
        return low + static_cast<int>(engine() % static_cast<unsigned>(high - low + 1));
    };
    const auto small = [&](double high) {
        const double u = uniform(0, 1);
        return high * u * u * u;
    };

    RandomScene scene;
    scene.type = static_cast<int>(number % 3) + 1;
    scene.depth = whole(0, 1) ? 8 : 32;
    scene.width = whole(1, 90);
    scene.height = whole(1, 70);
    PanelValues& p = scene.panel;
    p.angle = whole(0, 5) ? uniform(-360, 360) : 90.0 * whole(0, 3);
    p.distance = std::round(small(160) * 10) / 10;
    p.softness = std::round(small(120) * 10) / 10;
    p.opacityStart = whole(0, 4) ? uniform(0, 100) : 0;
    p.opacityEnd = whole(0, 4) ? uniform(0, 100) : 100;
    p.opacityMaster = whole(0, 3) ? 100 : uniform(0, 100);
    p.easeMode = whole(1, 2);
    p.ease = whole(0, 3) ? uniform(0, 100) : 0;
    p.easeDistance = uniform(0, 100);
    p.easeSoftness = uniform(0, 100);
    p.easeOpacity = uniform(0, 100);
    p.samples = whole(0, 7) ? 1 + std::floor(small(36)) : 1 + std::floor(small(100));
    p.resolution = whole(1, 5);
    p.offsetShadow = whole(0, 2) ? 1 : small(60);
    scene.originX = uniform(-40, 120);
    scene.originY = uniform(-40, 120);

    current.shape = whole(0, 7);
    current.width = scene.width;
    current.height = scene.height;
    current.seed = engine();
    current.left = whole(0, scene.width - 1);
    current.top = whole(0, scene.height - 1);
    current.right = whole(current.left + 1, scene.width);
    current.bottom = whole(current.top + 1, scene.height);
    scene.alphaOf = AlphaOf;

    std::ostringstream words;
    words << "scene " << number << ": type " << scene.type << ", " << scene.depth << " bits, " << scene.width << " x "
          << scene.height << ", shape " << current.shape << ", angle " << p.angle << ", distance " << p.distance
          << ", softness " << p.softness << ", opacity " << p.opacityStart << " to " << p.opacityEnd << ", samples "
          << p.samples << ", resolution " << p.resolution;
    scene.words = words.str();
    return scene;
}

unsigned ScenesToDraw(unsigned usual) {
    const char* text = std::getenv("UMBRANT_TEST_SCENES");
    const int scenes = text ? std::atoi(text) : 0;
    return scenes > 0 ? static_cast<unsigned>(scenes) : usual;
}
