// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/cpu/random_scene.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <sstream>

namespace umbrant::effect {

namespace {

/// What the current layer looks like.
struct Layer {
    int shape = 0;
    int width = 0;
    int height = 0;
    unsigned seed = 0;
    int left = 0, top = 0, right = 0, bottom = 0;
    // Of an odd scene.
    OddAlphas odd = OddAlphas::kFinite;
    double oddShare = 0;  ///< of the pixels that are not 0
    int oddX = 0, oddY = 0;
    int oddValue = 0;  ///< of the pixel at (oddX, oddY)
};
Layer current;

double Noise(int x, int y) {
    return static_cast<double>(PixelHash(current.seed, x, y) & 0xFFFF) / 65535.0;
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

constexpr double kFinite[] = {-2, -0.25, 1.25, 3};
constexpr double kHuge = std::numeric_limits<float>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kAny[] = {-2,        1.25,      -kHuge,     kHuge,
                           kInfinity, kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()};

double OddValue(int index) {
    return current.odd == OddAlphas::kFinite ? kFinite[index % 4] : kAny[index % 8];
}

double OddAlphaOf(int x, int y) {
    if (x == current.oddX && y == current.oddY) return OddValue(current.oddValue);
    const double alpha = AlphaOf(x, y);
    // Other places of the noise than the alphas themselves.
    if (alpha == 0 || Noise(x + 1000, y + 1000) >= current.oddShare) return alpha;
    return OddValue(static_cast<int>(Noise(x + 2000, y + 2000) * 65535));
}

std::string Words(unsigned number, const RandomScene& scene) {
    const PanelValues& p = scene.panel;
    std::ostringstream words;
    words << "scene " << number << ": type " << scene.type << ", " << scene.depth << " bits, " << scene.width << " x "
          << scene.height << ", shape " << current.shape << ", angle " << p.angle << ", distance " << p.distance
          << ", softness " << p.softness << ", opacity " << p.opacityStart << " to " << p.opacityEnd << ", samples "
          << p.samples << ", resolution " << p.resolution;
    return words.str();
}

}  // namespace

unsigned PixelHash(unsigned seed, int x, int y) {
    unsigned h = seed + static_cast<unsigned>(x) * 374761393u + static_cast<unsigned>(y) * 668265263u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return h ^ (h >> 16);
}

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

    scene.words = Words(number, scene);
    return scene;
}

RandomScene MakeOddScene(unsigned number, OddAlphas alphas) {
    RandomScene scene = MakeRandomScene(number);
    std::mt19937 engine(number * 104729u + 71u);
    scene.depth = 32;
    scene.alphaOf = OddAlphaOf;
    current.odd = alphas;
    const double shares[] = {0, 0, 0.05, 1};
    current.oddShare = shares[engine() % 4];
    current.oddX = static_cast<int>(engine() % static_cast<unsigned>(scene.width));
    current.oddY = static_cast<int>(engine() % static_cast<unsigned>(scene.height));
    current.oddValue = static_cast<int>(engine() % 8);
    std::ostringstream words;
    words << "odd " << Words(number, scene) << ", alpha " << OddValue(current.oddValue) << " at " << current.oddX
          << ", " << current.oddY << ", " << current.oddShare * 100 << " % odd elsewhere";
    scene.words = words.str();
    return scene;
}

unsigned ScenesToDraw(unsigned usual) {
    const char* text = std::getenv("UMBRANT_TEST_SCENES");
    const int scenes = text ? std::atoi(text) : 0;
    return scenes > 0 ? static_cast<unsigned>(scenes) : usual;
}

}  // namespace umbrant::effect
