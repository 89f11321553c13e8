// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "bench/rig.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include "host/compositing/rectangles.h"

using namespace umbrant::host;

namespace {

template <class T>
T Take(Result<T> result) {
    if (!result) {
        std::cerr << result.error().sentence << '\n';
        std::exit(1);
    }
    return *std::move(result);
}

}  // namespace

World DiscLayer(int width, int height, Depth depth, double share) {
    World world = World::Create(width, height, depth);
    const double side = std::sqrt(share);
    const double marginX = std::max(4.0, width * (1 - side) / 2);
    const double marginY = std::max(4.0, height * (1 - side) / 2);
    const double grid = height / 9.0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double edge = std::min({x - marginX, width - 1 - marginX - x, y - marginY, height - 1 - marginY - y});
            const double disc = 0.75 * grid - std::hypot(std::fmod(x, 2 * grid) - grid, std::fmod(y, 2 * grid) - grid);
            // The frame of the box belongs to the picture, so that its bounds are those that were asked for.
            const double cover = std::clamp(std::min(std::max(disc, 12 - edge), edge), 0.0, 1.0);
            if (depth == Depth::k8) {
                RowOf<PF_Pixel>(world.Def(), y)[x] = {static_cast<A_u_char>(cover * 255 + 0.5), 200, 100, 50};
            } else {
                RowOf<PF_PixelFloat>(world.Def(), y)[x] = {static_cast<float>(cover), 0.8f, 0.4f, 0.2f};
            }
        }
    }
    return world;
}

Rig& Rig::Get() {
    static Rig rig;
    return rig;
}

const char* ModuleFile() {
    const char* other = std::getenv("UMBRANT_BENCH_MODULE");
    return other ? other : UMBRANT_MODULE_FILE;
}

Rig::Rig()
    : module_(Take(Module::Load(ModuleFile()))),
      session_(Take(EffectSession::Start(module_))),
      defaults_(session_.Params()) {}

Frame Rig::Draw(const World& layer, bool isFramed) {
    FrameRequest request{.layer = &layer};
    if (isFramed) request.region = PF_LRect{0, 0, layer.Width(), layer.Height()};
    return Take(session_.Render(request));
}

void Rig::Set(const std::string& path, const std::string& value) {
    Take(session_.Params().SetFromText(path, value));
}

void Rig::SetDefaults() {
    session_.Params() = defaults_;
}
