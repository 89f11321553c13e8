// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/cpu/hard_scene.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "cpu/coarse/decimation.h"

namespace umbrant::effect {

namespace {

struct HardLayer {
    int shape = 0;
    int width = 0;
    int height = 0;
    unsigned seed = 0;
};
HardLayer layer;

unsigned Hash(int x, int y) {
    return PixelHash(layer.seed, x, y);
}

double AlphaOf(int x, int y) {
    switch (layer.shape) {
        case 0:  // an edge down the middle
            return x < layer.width / 2 ? 1 : 0;
        case 1:  // lines across
            return y % 40 == 7 ? 1 : 0;
        case 2:  // lines down
            return x % 40 == 7 ? 1 : 0;
        case 3:  // black and white noise
            return Hash(x, y) & 1u ? 1 : 0;
        case 4:  // hard blocks
            return Hash(x / 23, y / 17) & 1u ? 1 : 0;
        case 5:  // strokes, as of text
            return Hash(x / 30, y / 30) % 3 == 0 && (x % 30 / 3 == 2 || y % 30 / 3 == 5) ? 1 : 0;
        case 6:  // a disc that touches no edge
            return std::clamp(layer.width / 3.0 - std::hypot(x - layer.width / 2.0, y - layer.height / 2.0), 0.0, 1.0);
        case 7:  // full
            return 1;
        default:  // one pixel
            return x == layer.width / 2 && y == layer.height / 2 ? 1 : 0;
    }
}

/// Pixels of areas of at least 64 equal values that are within 2/65535 of a step of 8 bits: there the last bit of a sum
/// decides for a whole area.
std::vector<bool> Ties(const Plane& exact) {
    constexpr double kSteps = 65535;
    constexpr std::size_t kArea = 64;
    std::vector<bool> ties(exact.values.size(), false);
    std::vector<bool> seen(exact.values.size(), false);
    const auto isNear = [&](double value) {
        const double step = value * 255;
        return std::abs(step - std::floor(step) - 0.5) * kSteps / 255 <= 2;
    };
    for (std::size_t start = 0; start < exact.values.size(); ++start) {
        if (seen[start] || !isNear(exact.values[start])) continue;
        std::vector<std::size_t> area{start};
        seen[start] = true;
        for (std::size_t i = 0; i < area.size(); ++i) {
            const auto x = static_cast<int>(area[i]) % exact.width;
            const auto y = static_cast<int>(area[i]) / exact.width;
            for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                if (x + dx < 0 || x + dx >= exact.width || y + dy < 0 || y + dy >= exact.height) continue;
                const auto next = static_cast<std::size_t>((y + dy) * exact.width + x + dx);
                if (seen[next] || exact.values[next] != exact.values[start]) continue;
                seen[next] = true;
                area.push_back(next);
            }
        }
        if (area.size() < kArea) continue;
        for (const std::size_t pixel : area) ties[pixel] = true;
    }
    return ties;
}

Plane DrawnExactly(SceneRenderer& renderer, const RandomScene& scene, bool exactly) {
    SetDrawsExactly(exactly);
    return renderer.Draw(scene);
}

}  // namespace

RandomScene MakeHardScene(unsigned number) {
    std::mt19937 engine(number * 104729u + 5u);
    const auto uniform = [&](double low, double high) {
        return low + (high - low) * (static_cast<double>(engine()) / 4294967296.0);
    };
    const auto whole = [&](int low, int high) {
        return low + static_cast<int>(engine() % static_cast<unsigned>(high - low + 1));
    };
    RandomScene scene;
    scene.type = static_cast<int>(number % 3) + 1;
    scene.depth = whole(0, 1) ? 8 : 32;
    scene.width = whole(120, 330);
    scene.height = whole(100, 260);
    PanelValues& p = scene.panel;
    p.angle = uniform(-180, 180);
    p.distance = uniform(0, 120);
    p.softness = uniform(20, 160);
    p.opacityStart = whole(0, 2) ? uniform(0, 100) : 100;
    p.opacityEnd = whole(0, 2) ? uniform(0, 100) : 100;
    p.easeMode = whole(1, 2);
    p.ease = whole(0, 2) ? uniform(0, 100) : 0;
    p.easeDistance = uniform(0, 100);
    p.easeSoftness = uniform(0, 100);
    p.easeOpacity = uniform(0, 100);
    p.samples = whole(0, 2) ? whole(1, 8) : whole(9, 48);
    p.resolution = whole(0, 1) ? 5 : whole(2, 4);
    scene.originX = uniform(-40, 200);
    scene.originY = uniform(-40, 200);
    layer = {whole(0, 8), scene.width, scene.height, static_cast<unsigned>(engine())};
    scene.alphaOf = AlphaOf;
    std::ostringstream words;
    words << "hard scene " << number << ": type " << scene.type << ", " << scene.depth << " bits, " << scene.width
          << " x " << scene.height << ", shape " << layer.shape << ", softness " << p.softness << ", opacity "
          << p.opacityStart << " to " << p.opacityEnd << ", samples " << p.samples << ", resolution " << p.resolution;
    scene.words = words.str();
    return scene;
}

SceneErrors MeasureErrors(SceneRenderer& renderer, RandomScene scene) {
    const int depth = scene.depth;
    scene.depth = 32;
    const Plane inFloat = DrawnExactly(renderer, scene, true);
    scene.depth = depth;
    const Plane exact = depth == 32 ? inFloat : DrawnExactly(renderer, scene, true);
    const Plane wide = DrawnExactly(renderer, scene, false);
    const double unit = depth == 8 ? 255 : 65535;
    SceneErrors errors;
    errors.allowed = depth == 8 ? 1.01 : 1.5 * std::floor(scene.panel.samples) + 0.5;
    std::size_t different = 0;
    std::vector<bool> ties;
    for (std::size_t i = 0; i < exact.values.size(); ++i) {
        const double difference = std::abs(exact.values[i] - wide.values[i]) * unit;
        errors.worst = std::max(errors.worst, difference);
        if (difference < 0.5) continue;
        if (depth == 8 && ties.empty()) ties = Ties(inFloat);
        const bool isTie = depth == 8 && ties[i];
        different += isTie ? 0 : 1;
        errors.ties += isTie ? 1 : 0;
    }
    errors.isDecimated = different + errors.ties > 0;
    if (depth == 8) errors.share = static_cast<double>(different) / static_cast<double>(exact.values.size());
    return errors;
}

}  // namespace umbrant::effect
