// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Each installed header compiles on its own, in the order in which none has been seen before, and twice: this file is
// compiled as C++17 without any folder of the project but the headers'.

// clang-format off
#include <umbrant/image.h>
#include <umbrant/parameter.h>
#include <umbrant/export.h>
#include <umbrant/error.h>
#include <umbrant/values.h>
#include <umbrant/effect.h>
#include <umbrant/effect.h>
// clang-format on

static_assert(__cplusplus == 201703L);
static_assert(umbrant::Rectangle{-2, 1, 5, 4}.Width() == 7);
static_assert(umbrant::BytesPerPixel(umbrant::PixelFormat::kRgbaFloat) == 16);

/// What a program writes; it is compiled, not run.
umbrant::Image DrawOnce(const std::uint8_t* pixels, int width, int height) {
    umbrant::Effect effect;
    effect.Set("style/distance", 80);
    effect.Set("style/shadow-type", "inner");
    return effect.Render({pixels, width, height});
}

/// The forms of calls that were there before others were added still mean the same.
umbrant::Rectangle PlaceOnce(const umbrant::Effect& effect, const std::uint8_t* pixels) {
    umbrant::Values values = effect.CurrentValues();
    values.Set(17, 80);
    values.Set("style/color", umbrant::Color{2.5f, 0, 1});
    const umbrant::FrameOptions options{umbrant::Canvas::kLayer};
    effect.Render({pixels, 4, 3}, values, options);
    effect.Place({});
    effect.Place({pixels, 4, 3}, {umbrant::Canvas::kLayer});
    return effect.Place(4, 3, values, {umbrant::Canvas::kGrow});
}
