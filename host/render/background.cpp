// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/background.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <type_traits>
#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/resample.h"
#include "host/compositing/resize.h"
#include "host/compositing/row_pool.h"
#include "host/parameters/color_names.h"
#include "host/parameters/echo_text.h"

namespace umbrant::host {

namespace {

constexpr char kChecker[] = "checker";
constexpr int kSquare = 8;  ///< pixels
constexpr float kLight = 204.0f / 255.0f;
constexpr float kDark = 153.0f / 255.0f;

constexpr char kForms[] = "a colour is #rrggbb, #rgb or a CSS name";

PF_PixelFloat ColorOf(std::uint32_t value) {
    const auto channel = [&](int shift) { return static_cast<float>(value >> shift & 0xFF) / 255.0f; };
    return {1.0f, channel(16), channel(8), channel(0)};
}

template <typename Pixel>
Pixel PixelOf(const PF_PixelFloat& color) {
    using Channel = decltype(Pixel::alpha);
    if constexpr (std::is_floating_point_v<Channel>) {
        return color;
    } else {
        const auto channel = [](float value) { return static_cast<Channel>(value * 255.0f + 0.5f); };
        return {255, channel(color.red), channel(color.green), channel(color.blue)};
    }
}

PF_Pixel Over(const PF_Pixel& front, const PF_Pixel& behind) {
    const auto mix = [a = int{front.alpha}](int over, int under) {
        return static_cast<A_u_char>((over * a + under * (255 - a) + 127) / 255);
    };
    return {255, mix(front.red, behind.red), mix(front.green, behind.green), mix(front.blue, behind.blue)};
}

PF_PixelFloat Over(const PF_PixelFloat& front, const PF_PixelFloat& behind) {
    // Written so that not-a-number is transparent, and that a colour without alpha, which may be anything, is not read.
    const float a = front.alpha > 0.0f ? std::min(front.alpha, 1.0f) : 0.0f;
    if (a == 0.0f) return {1.0f, behind.red, behind.green, behind.blue};
    const auto mix = [a](float over, float under) { return over * a + under * (1.0f - a); };
    return {1.0f, mix(front.red, behind.red), mix(front.green, behind.green), mix(front.blue, behind.blue)};
}

/// `behind(x, y)` is the background's pixel in the world's.
template <typename Pixel, typename Behind>
void Flatten(World& world, Behind behind) {
    ForEachRowRange(world.Height(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            auto* row = static_cast<Pixel*>(static_cast<void*>(world.Row(y)));
            for (int x = 0; x < world.Width(); ++x) row[x] = Over(row[x], behind(x, y));
        }
    });
}

template <typename Pixel>
void FlattenOverColor(World& world, const PF_PixelFloat& color) {
    Flatten<Pixel>(world, [pixel = PixelOf<Pixel>(color)](int, int) { return pixel; });
}

template <typename Pixel>
void FlattenOverChecker(World& world, const PF_LRect& place) {
    const Pixel light = PixelOf<Pixel>({1.0f, kLight, kLight, kLight});
    const Pixel dark = PixelOf<Pixel>({1.0f, kDark, kDark, kDark});
    // Squares left of and above the layer count down.
    const auto square = [](int at) { return (at >= 0 ? at : at - kSquare + 1) / kSquare; };
    Flatten<Pixel>(
        world, [&](int x, int y) { return (square(place.left + x) + square(place.top + y)) % 2 == 0 ? light : dark; });
}

template <typename Pixel>
void FlattenOverImage(World& world, const World& image) {
    Flatten<Pixel>(world,
                   [&](int x, int y) { return static_cast<const Pixel*>(static_cast<const void*>(image.Row(y)))[x]; });
}

/// The largest part in the middle of the world that has this shape.
WorldPart MiddleOf(const World& world, int width, int height) {
    const double scale =
        std::min(static_cast<double>(world.Width()) / width, static_cast<double>(world.Height()) / height);
    const double across = width * scale;
    const double down = height * scale;
    return {(world.Width() - across) / 2, (world.Height() - down) / 2, across, down};
}

}  // namespace

bool IsBackgroundFile(const std::string& text) {
    return text != kChecker && !text.starts_with('#') && !ColorFromText(text);
}

std::string WhyNoBackground(const std::string& text) {
    if (text.empty()) return "'' is no background; leave the option out for a transparent image";
    if (text == "-") return "'-' is no background: standard input can be the layer or the texture; name a file";
    if (!IsBackgroundFile(text)) {
        if (text == kChecker || ColorFromText(text)) return "";
        return fmt::format("'{}' is no colour: {}; a file of this name is './{}'", EchoText(text), kForms,
                           EchoText(text));
    }
    std::error_code none;
    // Without an extension and a folder it is more likely a colour with a mistake in it.
    if (text.find_first_of("./") != std::string::npos || std::filesystem::exists(text, none)) return "";
    return fmt::format("'{}' is neither checker, a colour nor a file: {}", EchoText(text), kForms);
}

Result<std::unique_ptr<Background>> Background::Read(const std::string& text) {
    if (const std::string why = WhyNoBackground(text); !why.empty()) return Failure{ErrorKind::kUsage, why};
    const auto made = [](Kind kind) { return std::unique_ptr<Background>(new Background(std::move(kind))); };
    if (text == kChecker) return made(Checker{});
    if (const auto color = ColorFromText(text)) return made(ColorOf(*color));
    Picture picture = TRY(ReadPicture(text));
    Drawn image;
    image.pixels = TRY(LayerOf(picture, picture.pixels.PixelDepth(), 1));
    image.rect = {0, 0, image.pixels.Width(), image.pixels.Height()};
    TRY(made(PF_PixelFloat{1.0f, 0.0f, 0.0f, 0.0f})->PutBehind(image));
    return made(std::move(image.pixels));
}

Result<std::shared_ptr<const World>> Background::ScaledTo(int width, int height, Depth depth) {
    const std::lock_guard lock(mutex_);
    if (scaled_.pixels && scaled_.width == width && scaled_.height == height && scaled_.depth == depth) {
        return scaled_.pixels;
    }
    const World& whole = std::get<World>(kind_);
    World pixels = Resize(whole, MiddleOf(whole, width, height), width, height);
    if (!pixels.IsNull() && pixels.PixelDepth() != depth) pixels = ConvertDepth(pixels, depth);
    if (pixels.IsNull()) return NotEnoughMemory("the background", width, height, depth);
    scaled_ = {width, height, depth, std::make_shared<const World>(std::move(pixels))};
    return scaled_.pixels;
}

Result<Done> Background::PutBehind(Drawn& image) {
    World& world = image.pixels;
    const bool isFloat = world.PixelDepth() == Depth::k32;
    if (const auto* color = std::get_if<PF_PixelFloat>(&kind_)) {
        isFloat ? FlattenOverColor<PF_PixelFloat>(world, *color) : FlattenOverColor<PF_Pixel>(world, *color);
        return Done{};
    }
    if (std::holds_alternative<Checker>(kind_)) {
        isFloat ? FlattenOverChecker<PF_PixelFloat>(world, image.rect)
                : FlattenOverChecker<PF_Pixel>(world, image.rect);
        return Done{};
    }
    const auto behind = TRY(ScaledTo(world.Width(), world.Height(), world.PixelDepth()));
    isFloat ? FlattenOverImage<PF_PixelFloat>(world, *behind) : FlattenOverImage<PF_Pixel>(world, *behind);
    return Done{};
}

}  // namespace umbrant::host
