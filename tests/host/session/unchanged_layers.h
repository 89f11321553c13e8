// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the module promises by acquiring the host's own suite: it writes into no layer.

#include <gtest/gtest.h>

#include <vector>

#include "host/session/effect_session.h"

namespace umbrant::host {

/// Draws all three shadows; expects every byte of the layer and of the texture to stay.
inline void ExpectLayersUnchanged(EffectSession& session, Depth depth) {
    const World layer = World::Create(40, 30, depth, false), texture = World::Create(20, 25, depth, false);
    const auto bytes = [](const World& world) {
        return std::vector<std::byte>(world.Row(0), world.Row(0) + world.Memory().Size());
    };
    const auto layerBefore = bytes(layer), textureBefore = bytes(texture);
    for (const char* type : {"normal", "inner", "radial"}) {
        ASSERT_TRUE(session.Params().SetFromText("style/shadow-type", type));
        const auto frame = session.Render({.layer = &layer, .texture = &texture});
        ASSERT_TRUE(frame) << frame.error().sentence;
        EXPECT_EQ(bytes(layer), layerBefore) << type;
        EXPECT_EQ(bytes(texture), textureBefore) << type;
    }
}

}  // namespace umbrant::host
