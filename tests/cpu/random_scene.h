// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Scenes to compare renderers by: small layers of many shapes under parameters from everywhere in the panel.

#include <string>

#include "tests/render/shadow_scene.h"

namespace umbrant::effect {

/// One render, defined by its number alone.
struct RandomScene {
    int type = 0;
    int depth = 8;
    int width = 0;
    int height = 0;
    PanelValues panel;
    double originX = 0;
    double originY = 0;
    double (*alphaOf)(int, int) = nullptr;
    std::string words;  ///< for messages
};

/// A number of 32 bits for a pixel, that looks random and is the same everywhere.
unsigned PixelHash(unsigned seed, int x, int y);

/// Scene `number`; costly values are rare. Sets what the scene's `alphaOf` draws, until the next call.
RandomScene MakeRandomScene(unsigned number);

/// Which alphas `MakeOddScene` draws.
enum class OddAlphas {
    kFinite,  ///< from -2 to 3
    kAny,     ///< the largest floats, infinite ones and not-a-number as well
};

/// Scene `number` in float, with alphas in its layer that are none of 0..1: one, some, or all that are not 0. Sets what
/// the scene's `alphaOf` draws, until the next call.
RandomScene MakeOddScene(unsigned number, OddAlphas alphas);

/// How many scenes a test draws: `usual`, or what UMBRANT_TEST_SCENES says, for long runs.
unsigned ScenesToDraw(unsigned usual);

}  // namespace umbrant::effect
