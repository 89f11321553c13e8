// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/codec.h"

#include <array>

#include "host/image/exr/exr_reader.h"
#include "host/image/exr/exr_writer.h"
#include "host/image/png/png_reader.h"
#include "host/image/png/png_writer.h"

namespace umbrant::host {

namespace {

const Codec& PngCodec() {
    static const Codec codec{"png", ReadsPng, OpenPng, EncodePng};
    return codec;
}

const Codec& ExrCodec() {
    static const Codec codec{"openexr", ReadsExr, OpenExr, EncodeExr};
    return codec;
}

/// The formats of nearly every frame, by their own libraries.
std::array<const Codec*, 2> OwnCodecs() {
    return {&PngCodec(), &ExrCodec()};
}

}  // namespace

std::variant<const Codec*, std::string> CodecToRead(int descriptor) {
    for (const Codec* codec : OwnCodecs()) {
        if (codec->reads(descriptor)) return codec;
    }
    return LibraryCodec();
}

std::variant<const Codec*, std::string> CodecToWrite(const Format& format) {
    for (const Codec* codec : OwnCodecs()) {
        if (codec->name == format.name) return codec;
    }
    return LibraryCodec();
}

}  // namespace umbrant::host
