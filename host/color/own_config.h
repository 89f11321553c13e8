// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The colour spaces that are there without a configuration of the user's, as an OpenColorIO configuration.

namespace umbrant::host {

/// The names in kOwnConfig that files have a word for.
inline constexpr char kSrgbSpace[] = "sRGB";
inline constexpr char kLinearSpace[] = "Linear Rec.709";
inline constexpr char kGammaSpace[] = "Gamma 2.4 Rec.709";
inline constexpr char kAcesSpace[] = "ACEScg";

/// sRGB: IEC 61966-2-1. Rec.709 with a pure power of 2.4: ITU-R BT.1886 with a black of 0. ACEScg: the primaries AP1 of
/// SMPTE ST 2065-1's supplement S-2014-004; its matrix adapts D65 to the white of ACES after Bradford.
inline constexpr char kOwnConfig[] = R"(ocio_profile_version: 2
search_path: ""
strictparsing: true
roles:
  default: sRGB
  scene_linear: Linear Rec.709
file_rules:
  - !<Rule> {name: Default, colorspace: default}
displays:
  sRGB:
    - !<View> {name: Raw, colorspace: sRGB}
colorspaces:
  - !<ColorSpace>
    name: sRGB
    aliases: [srgb_texture]
    to_scene_reference: !<ExponentWithLinearTransform> {gamma: 2.4, offset: 0.055, direction: forward}
  - !<ColorSpace>
    name: Linear Rec.709
    aliases: [linear, lin_rec709, lin_srgb]
  - !<ColorSpace>
    name: Gamma 2.4 Rec.709
    aliases: [g24_rec709, rec709]
    to_scene_reference: !<ExponentTransform> {value: 2.4, style: mirror, direction: forward}
  - !<ColorSpace>
    name: ACEScg
    aliases: [lin_ap1]
    from_scene_reference: !<MatrixTransform> {matrix: [0.6130974024, 0.3395231462, 0.0473794514, 0, 0.0701937225, 0.9163538791, 0.0134523985, 0, 0.0206155929, 0.1095697729, 0.8698146342, 0, 0, 0, 0, 1]}
)";

}  // namespace umbrant::host
