// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pictures as ffmpeg takes and gives them through a pipe: straight alpha, rows without gaps.

#include <cstddef>
#include <vector>

#include "host/compositing/world.h"

namespace umbrant::host {

/// A pixel format of the pipe. ffmpeg rounds to fewer bits when it converts between integers and floats, so pictures of
/// integer channels go through as such, and are exact.
enum class RawFormat {
    k8,      ///< rgba: red, green, blue, alpha, a byte each
    k16,     ///< rgba64le: the same with two bytes, the lower first
    kFloat,  ///< gbrapf32le: planes of single-precision floats: green, blue, red, alpha
};

/// ffmpeg's name of the format.
const char* NameOf(RawFormat format);

/// The format that keeps a channel of this many bits; 32 are floats.
RawFormat RawFormatFor(int bits);

/// Bytes of a picture.
std::size_t RawSize(RawFormat format, int width, int height);

/// A world of the picture: 8 bits for `k8`, else float. `bytes` are RawSize many. Null when memory cannot be had.
World WorldFromRaw(RawFormat format, int width, int height, const std::vector<std::byte>& bytes);

/// The picture of a world of 8 bits (`k8`) or floats (the others; to integers clamped and rounded to nearest).
std::vector<std::byte> RawFromWorld(RawFormat format, const World& world);

}  // namespace umbrant::host
