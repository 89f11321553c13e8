// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How a clip is stored: the codecs by name, the containers that hold them, what the colours are called and what becomes
// of the sound. Starts nothing.

#include <string>
#include <vector>

#include "host/result.h"
#include "host/video/clip_facts.h"
#include "host/video/raw_pixels.h"

namespace umbrant::host {

/// A way to store pictures with their alpha.
struct ClipCodec {
    const char* name;                     ///< "prores4444"
    const char* words;                    ///< for people: "ProRes 4444"
    const char* encoder;                  ///< ffmpeg's
    const char* pixels8;                  ///< ffmpeg's pixel format for pictures of 8 bits
    const char* pixelsDeep;               ///< for deeper ones
    bool isRgb;                           ///< stores red, green and blue as they are
    bool keepsRange;                      ///< can say that its values span the whole range
    std::vector<std::string> arguments;   ///< more for the encoder
    std::vector<std::string> extensions;  ///< the containers; the first codec with an extension is its default
    bool keepsAlpha = true;
    bool needsEvenSize = false;  ///< has one chroma sample for four pixels and no way around it
};

/// All of them.
const std::vector<ClipCodec>& ClipCodecs();

/// "prores4444, ffv1, vp9, png, h264, webp, apng".
std::string ClipCodecNames();

/// The codec of this name for a clip of this name, or without a name the extension's default. Fails with
/// `ErrorKind::kUsage` for an unknown codec, one that the container does not hold, and an extension that no clip with
/// alpha is written to.
Result<const ClipCodec*> CodecFor(const std::string& path, const std::string& name);

/// Whether a path means a clip that can be written, by its extension. Not all of these are read: `IsClipName`.
bool IsWrittenAsClip(const std::string& path);

/// ffmpeg's name of the container that a clip of this name is written in.
const char* MuxerOf(const std::string& path);

/// Whether that container can have sound.
bool HoldsSound(const std::string& path);

/// What becomes of a clip's sound streams in a container.
struct SoundPlan {
    std::vector<std::string> codecs{};  ///< ffmpeg's encoder for each stream, "copy" where it stays as it is
    std::string note{};                 ///< what is to be said about it; empty where all stay
};
SoundPlan PlanSound(const ClipFacts& clip, const std::string& output);

/// The tags of a clip that this codec stores, made from one with these facts, or (null) from pictures: those are taken
/// for Rec. 709. Primaries and transfer are always kept; a codec of red, green and blue has no matrix, and one that
/// cannot say a range has the narrow one. `matrix` is empty where nothing says which it is.
ColorTags TagsFor(const ClipCodec& codec, const ClipFacts* from);

/// The filters that turn what comes through the pipe into what the encoder takes, with the tags and the pixel's aspect.
std::string EncoderFilters(const ClipCodec& codec, RawFormat raw, const ColorTags& tags, const std::string& aspect);

/// The filters in front of the pipe from a clip: from frame `first` on, turned into pictures.
std::string DecoderFilters(RawFormat raw, int width, int height, int first);

}  // namespace umbrant::host
