// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/color/render_colors.h"

#include <algorithm>
#include <array>

#include "host/color/convert_world.h"
#include "host/color/own_config.h"
#include "host/parameters/float_color.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/set_row.h"

namespace umbrant::host {

namespace {

/// What files call the program's own spaces. A configuration of the user's may mean anything by a name.
ColorWords WordsFor(const OpenedColorSpaces& spaces, const std::string& name) {
    constexpr std::array<float, 8> kRec709 = {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3290f};
    constexpr std::array<float, 8> kAp1 = {0.713f, 0.293f, 0.165f, 0.830f, 0.128f, 0.044f, 0.32168f, 0.33767f};
    if (!spaces.AreOwn()) return {};
    if (name == kSrgbSpace) return {"sRGB", 0, kRec709};
    if (name == kLinearSpace) return {"Linear", 0, kRec709};
    if (name == kGammaSpace) return {"GammaCorrected", 2.4f, kRec709};
    if (name == kAcesSpace) return {"", 0, kAp1};
    return {};
}

Result<Done> Apply(const std::shared_ptr<const ColorConversion>& conversion, World& world) {
    return conversion ? ConvertColors(world, *conversion) : Result<Done>(Done{});
}

bool AsksForNone(const ColorOptions& color) {
    return color.input.empty() && color.output.empty() && color.working.empty() && color.texture.empty();
}

}  // namespace

Result<std::shared_ptr<const RenderColors>> RenderColors::Open(const RenderOptions& options) {
    const ColorOptions& color = options.color;
    if (color.input.empty()) {
        return Usage(
            "a conversion of colours needs --input-space, because no file says for certain which space it is in; "
            "for most PNG and JPEG files write --input-space sRGB, for most EXR files --input-space 'Linear "
            "Rec.709'");
    }
    if (options.depth == 8) {
        return Usage(
            "--depth 8 has too few steps for a conversion of colours, which draws in 32 bits; leave it out, and "
            "give --output-depth 8 for a file of 8 bits");
    }
    const auto spaces = TRY(OpenedColorSpaces::Open());
    const std::string input = TRY(spaces.Find(color.input));
    const std::string output = color.output.empty() ? input : TRY(spaces.Find(color.output));
    const std::string working = color.working.empty() ? input : TRY(spaces.Find(color.working));
    const std::string texture = color.texture.empty() ? input : TRY(spaces.Find(color.texture));
    const auto colors = std::make_shared<RenderColors>();
    colors->fromInput_ = TRY(spaces.Conversion(input, working));
    colors->fromTexture_ = TRY(spaces.Conversion(texture, working));
    colors->toOutput_ = TRY(spaces.Conversion(working, output));
    colors->fromValues_ = TRY(spaces.Conversion(output, working));
    if (output != input) colors->words_ = WordsFor(spaces, output);
    return std::shared_ptr<const RenderColors>(colors);
}

void RenderColors::Connect(LayerOptions& layers) const {
    layers.convert = [input = fromInput_, texture = fromTexture_](World& world, bool isTexture) {
        return Apply(isTexture ? texture : input, world);
    };
    layers.words = words_;
}

void RenderColors::Connect(FrameJob& job) const {
    if (toOutput_) job.convert = [output = toOutput_](World& world) { return Apply(output, world); };
}

void RenderColors::ConvertValues(ParamSet& values, const Animation* moving) const {
    if (!fromValues_) return;
    for (int i = 0; i < values.Count(); ++i) {
        ParamRow& row = values.RawRow(i);
        if (KindOf(row.def) != ParamKind::kColor || (moving && !moving->Find(i))) continue;
        FloatColor color = FloatColorOf(row.def);
        std::array<float, 3> channels = {color.red, color.green, color.blue};
        if (!fromValues_->Apply(channels.data(), 3, 1)) continue;
        for (float& channel : channels) channel = std::clamp(channel, -kColorLimit, kColorLimit);
        SetFloatColor(row.def, {channels[0], channels[1], channels[2]});
    }
}

std::optional<ColorTags> RenderColors::Tags() const {
    if (!words_) return std::nullopt;
    // A clip for a display of gamma 2.4 has the transfer of Rec. 709 by convention.
    const std::string transfer = words_->space == "sRGB"             ? "iec61966-2-1"
                                 : words_->space == "Linear"         ? "linear"
                                 : words_->space == "GammaCorrected" ? "bt709"
                                                                     : "";
    return ColorTags{transfer.empty() ? "" : "bt709", transfer, "", ""};
}

Result<RenderOptions> WithColors(RenderOptions options) {
    if (AsksForNone(options.color)) return options;
    options.colors = TRY(RenderColors::Open(options));
    return options;
}

}  // namespace umbrant::host
