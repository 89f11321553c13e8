// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// transfer_rect over small worlds of any content, anywhere, in any mode, against the double-precision model: what is
// written, and that nothing else is.

#include <cmath>
#include <limits>
#include <optional>

#include "host/compositing/transfer/transfer_rect.h"
#include "hostapi/errors.h"
#include "tests/fuzz/target.h"
#include "tests/host/compositing/transfer_worlds.h"

using namespace umbrant::host;

namespace {

/// Where in the plane: mostly near, sometimes as far as numbers go.
A_long Place(Bytes& bytes) {
    const int choice = bytes.Byte();
    if (choice < 240) return choice % 24 - 12;
    constexpr A_long kFar[] = {std::numeric_limits<A_long>::min(), std::numeric_limits<A_long>::max(), -30000, 30000};
    return choice < 252 ? kFar[choice % 4] : bytes.Take<A_long>();
}

Depth AnyDepth(int choice) {
    constexpr Depth kDepths[] = {Depth::k8, Depth::k16, Depth::k32};
    return kDepths[choice % 3];
}

/// Float channels from a byte each: alpha in 0..1, colours in -0.5..2, both with their ends; or any bits at all.
World AnyWorld(Bytes& bytes, Depth depth, int width, int height, bool anyBits) {
    World world = World::Create(width, height, depth);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            Stored stored{};
            for (int i = 0; i < 4; ++i) {
                if (depth == Depth::k32 && anyBits) {
                    const auto value = bytes.Take<float>();
                    std::memcpy(world.Row(y) + 16 * x + 4 * i, &value, sizeof(value));
                    continue;
                }
                const double unit = bytes.Byte() / 255.0;
                stored.value[i] = depth == Depth::k32 ? (i == 0 ? unit : unit * 2.5 - 0.5)
                                                      : std::floor(unit * FullScale(depth) + 0.5);
            }
            if (depth != Depth::k32 || !anyBits) WriteStored(world, x, y, stored);
        }
    }
    return world;
}

struct Case {
    PF_CompositeMode mode{};
    PF_Field field = PF_Field_FRAME;
    std::optional<PF_Rect> rect;
    PF_Point at{};
    std::optional<PF_MaskWorld> mask;
};

bool IsAlphaMode(int mode) {
    return mode >= PF_Xfer_MULTIPLY_ALPHA && mode <= PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA;
}

/// Of the alpha modes the two that keep the destination only under the source.
bool ActsOutside(int mode) {
    return mode == PF_Xfer_MULTIPLY_ALPHA || mode == PF_Xfer_MULTIPLY_ALPHA_LUMA;
}

double MaskWeight(const PF_MaskWorld& mask, const World& pixels, int sourceX, int sourceY) {
    const std::int64_t x = std::int64_t{sourceX} - mask.offset.h;
    const std::int64_t y = std::int64_t{sourceY} - mask.offset.v;
    double weight = 0;
    if (x >= 0 && y >= 0 && x < pixels.Width() && y < pixels.Height()) {
        const model::Pixel p = ReadPixel(pixels, static_cast<int>(x), static_cast<int>(y));
        weight = mask.what_is_mask & PF_MaskFlag_LUMINANCE ? model::Y(p.rgb) : p.alpha;
    }
    return weight;
}

/// How far a float result may lie from the exact one, next to what its operands add up to: near zero the sums of some
/// modes cancel.
double Allowed(Depth depth, double exact) {
    if (depth == Depth::k8) return 0.5 + 0.02;
    if (depth == Depth::k16) return 0.5 + 0.3;
    return 2e-4 * std::max(1.0, std::abs(exact));
}

/// Modes whose result jumps: where single and double precision may fall on two sides of the step.
bool Jumps(int mode, const model::Pixel& s, const model::Pixel& d) {
    const double ys = model::Y(s.rgb);
    const double yd = model::Y(d.rgb);
    if (mode == PF_Xfer_LIGHTER_COLOR || mode == PF_Xfer_DARKER_COLOR) return std::abs(ys - yd) < 1e-5;
    for (int i = 0; i < 3; ++i) {
        const double sc = s.rgb.c[i];
        const double dc = d.rgb.c[i];
        if (mode == PF_Xfer_HARD_MIX && std::abs(sc + dc - 1) < 1e-5) return true;
        if (mode == PF_Xfer_VIVID_LIGHT && std::abs(sc - 0.5) > 0.499) return true;
    }
    return false;
}

std::string Where(const Case& c, Depth depth, int x, int y, int channel, double actual, double exact) {
    return "mode " + std::to_string(c.mode.xfer) + " at " + std::to_string(static_cast<int>(depth)) + " bits, pixel " +
           std::to_string(x) + "," + std::to_string(y) + " channel " + std::to_string(channel) + ": " +
           std::to_string(actual) + ", the model says " + std::to_string(exact);
}

void Judge(const Case& c, const World& source, const World& mask, const World& before, const World& after) {
    const Depth depth = before.PixelDepth();
    const double full = FullScale(depth);
    const PF_Rect whole = {0, 0, source.Width(), source.Height()};
    const PF_Rect rect = c.rect.value_or(whole);
    for (int y = 0; y < before.Height(); ++y) {
        for (int x = 0; x < before.Width(); ++x) {
            const std::int64_t sx = std::int64_t{rect.left} + x - c.at.h;
            const std::int64_t sy = std::int64_t{rect.top} + y - c.at.v;
            const bool covered = sx >= std::max(rect.left, 0) && sx < std::min(rect.right, source.Width()) &&
                                 sy >= std::max(rect.top, 0) && sy < std::min(rect.bottom, source.Height());
            const bool isFieldRow = c.field == PF_Field_FRAME || (y % 2 == 0) == (c.field == PF_Field_UPPER);
            const Stored old = ReadStored(before, x, y);
            const Stored actual = ReadStored(after, x, y);
            double exact[4] = {old.value[0], old.value[1], old.value[2], old.value[3]};
            bool touched = isFieldRow && covered;
            if (isFieldRow && (covered || (ActsOutside(c.mode.xfer) && !c.mode.rgb_only))) {
                model::Pixel s{0, {{0, 0, 0}}};
                double weight = 1;
                if (covered) {
                    s = ReadPixel(source, static_cast<int>(sx), static_cast<int>(sy));
                    if (c.mask) weight = MaskWeight(*c.mask, mask, static_cast<int>(sx), static_cast<int>(sy));
                }
                const model::Pixel d = ReadPixel(before, x, y);
                if (Jumps(c.mode.xfer, s, d)) continue;
                if (IsAlphaMode(c.mode.xfer) && c.mask) continue;
                const model::Pixel p =
                    model::Composite(c.mode.xfer, c.mode.rgb_only != 0, s, d, c.mode.opacity / 255.0, weight);
                const double values[4] = {p.alpha, p.rgb.c[0], p.rgb.c[1], p.rgb.c[2]};
                for (int i = 0; i < 4; ++i) {
                    exact[i] = (depth == Depth::k32 ? values[i] : std::clamp(values[i], 0.0, 1.0)) * full;
                }
                touched = true;
            }
            // A mask below zero may take away what was there: colours are then divided by an alpha of rounding errors.
            const bool hasColour = !touched || depth != Depth::k32 || std::abs(exact[0]) >= 1e-4;
            for (int i = 0; i < (hasColour ? 4 : 1); ++i) {
                const double allowed = touched ? Allowed(depth, exact[i]) : 0;
                Promise(std::abs(actual.value[i] - exact[i]) <= allowed,
                        Where(c, depth, x, y, i, actual.value[i], exact[i]));
            }
        }
    }
}

bool PaddingKept(const World& before, const World& after) {
    if (!before.Def().data) return true;
    const auto row = static_cast<std::size_t>(before.Def().rowbytes);
    const auto used = static_cast<std::size_t>(before.Width() * BytesPerPixel(before.PixelDepth()));
    for (int y = 0; y < before.Height(); ++y) {
        if (std::memcmp(before.Row(y) + used, after.Row(y) + used, row - used) != 0) return false;
    }
    return true;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const Depth depth = AnyDepth(bytes.Byte());
    const bool anyBits = bytes.Byte() > 200;
    Case c;
    c.mode.xfer = bytes.Within(-1, PF_Xfer_DIVIDE + 1);
    c.mode.opacity = bytes.Byte();
    c.mode.rgb_only = bytes.Flag();
    c.field = bytes.Within(0, 2);
    c.at.h = Place(bytes);
    c.at.v = Place(bytes);
    if (bytes.Flag()) c.rect = PF_Rect{Place(bytes), Place(bytes), Place(bytes), Place(bytes)};
    const bool masked = bytes.Byte() > 160;
    if (masked) {
        c.mask.emplace();
        c.mask->offset.h = Place(bytes);
        c.mask->offset.v = Place(bytes);
        c.mask->what_is_mask = bytes.Flag() ? PF_MaskFlag_LUMINANCE : 0;
    }
    const int sizes[] = {bytes.Within(0, 9), bytes.Within(0, 5), bytes.Within(0, 20), bytes.Within(0, 5)};
    const World source = AnyWorld(bytes, depth, sizes[0], sizes[1], anyBits);
    const World mask = AnyWorld(bytes, depth, masked ? sizes[0] : 0, masked ? sizes[1] : 0, anyBits);
    const World before = AnyWorld(bytes, depth, sizes[2], sizes[3], anyBits);
    if (c.mask) c.mask->mask = mask.Def();
    World after = CopyOfWorld(before);

    const PF_Err error =
        TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, c.field, c.rect ? &*c.rect : nullptr, &source.Def(), &c.mode,
                     c.mask ? &*c.mask : nullptr, c.at.h, c.at.v, &after.Def());
    Promise(PaddingKept(before, after), "the bytes beside the rows stay as they are");
    if (error != PF_Err_NONE) {
        Promise(c.mode.xfer < PF_Xfer_COPY || c.mode.xfer > PF_Xfer_DIVIDE || sizes[0] * sizes[1] * sizes[2] == 0,
                "a known mode over worlds of one depth is done");
        Promise(SameBytes(before, after), "a refused transfer writes nothing");
        return 0;
    }
    if (!anyBits && c.mode.xfer != PF_Xfer_DISSOLVE) Judge(c, source, mask, before, after);
    return 0;
}
