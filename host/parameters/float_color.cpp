// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/parameters/float_color.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

/// Behind the colour's own member. The mark is one that no effect leaves there by chance.
struct Kept {
    std::uint64_t mark = 0;
    PF_Pixel bytes{};  ///< the value that the numbers belong to
    FloatColor color;
};
constexpr std::uint64_t kMark = 0x9E3779B97F4A7C15;
constexpr std::size_t kPlace = sizeof(PF_ColorDef);
static_assert(kPlace + sizeof(Kept) <= sizeof(PF_ParamDefUnion));

void Keep(PF_ParamDef& def, const Kept& kept) {
    std::memcpy(reinterpret_cast<std::byte*>(&def.u) + kPlace, &kept, sizeof kept);
}

A_u_char ByteOf(float channel) {
    return static_cast<A_u_char>(std::lround(std::clamp(channel, 0.0f, 1.0f) * PF_MAX_CHAN8));
}

bool IsSame(const PF_Pixel& a, const PF_Pixel& b) {
    return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

}  // namespace

void SetFloatColor(PF_ParamDef& def, const FloatColor& color) {
    def.u.cd.value = {PF_MAX_CHAN8, ByteOf(color.red), ByteOf(color.green), ByteOf(color.blue)};
    Keep(def, {kMark, def.u.cd.value, color});
}

void SetByteColor(PF_ParamDef& def, const PF_Pixel& color) {
    def.u.cd.value = color;
    Keep(def, {});
}

FloatColor FloatColorOf(const PF_ParamDef& def) {
    Kept kept;
    std::memcpy(&kept, reinterpret_cast<const std::byte*>(&def.u) + kPlace, sizeof kept);
    const PF_Pixel& value = def.u.cd.value;
    if (kept.mark == kMark && IsSame(kept.bytes, value)) return kept.color;
    const auto channel = [](A_u_char byte) { return static_cast<float>(byte) / PF_MAX_CHAN8; };
    return {channel(value.red), channel(value.green), channel(value.blue)};
}

}  // namespace umbrant::host
