// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A format's own codec beside the image library's.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/image/codec.h"
#include "host/image/metadata.h"

namespace umbrant::host {

/// The file as a codec opens it, or null and the reason.
inline std::unique_ptr<ImageReader> Opened(const Codec& codec, const std::filesystem::path& path,
                                           std::string* problem) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    OpenedImage opened = codec.open({fileno(file), path.string(), ""});
    std::fclose(file);
    if (auto* reader = std::get_if<std::unique_ptr<ImageReader>>(&opened)) return std::move(*reader);
    *problem = std::get<std::string>(opened);
    return nullptr;
}

inline const Codec& Library() {
    const auto codec = LibraryCodec();
    return *std::get<const Codec*>(codec);
}

/// The codec that a file of this name is read with.
inline const Codec& Chosen(const std::filesystem::path& path) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    const auto codec = CodecToRead(fileno(file));
    std::fclose(file);
    return *std::get<const Codec*>(codec);
}

/// The values of some channels.
template <typename Value>
std::vector<Value> Values(ImageReader& reader, int begin, int end) {
    const ImageLayout& layout = reader.Layout();
    std::vector<Value> values(static_cast<std::size_t>(layout.width * layout.height * (end - begin)));
    const auto problem = reader.Read(begin, end, sizeof(Value) == 1, values.data());
    EXPECT_EQ(problem.value_or("none"), "none");
    return values;
}

/// That both codecs say the same of a file beside its pixels.
inline void ExpectSameLayout(const std::string& format, const ImageLayout& ours, const ImageLayout& theirs) {
    EXPECT_EQ(ours.channels, theirs.channels);
    EXPECT_EQ(ours.alphaChannel, theirs.alphaChannel);
    EXPECT_EQ(ours.channelBytes, theirs.channelBytes);
    EXPECT_EQ(ours.isHalf, theirs.isHalf);
    EXPECT_EQ(ours.isDeep, theirs.isDeep);
    EXPECT_EQ(ours.isStraight || ours.alphaChannel < 0, theirs.isStraight || theirs.alphaChannel < 0);
    EXPECT_EQ((std::array{ours.x, ours.y, ours.width, ours.height, ours.depth, ours.fullX, ours.fullY, ours.fullWidth,
                          ours.fullHeight}),
              (std::array{theirs.x, theirs.y, theirs.width, theirs.height, theirs.depth, theirs.fullX, theirs.fullY,
                          theirs.fullWidth, theirs.fullHeight}));
    const PictureMetadata kept = MetadataOf(ours, format), theirKept = MetadataOf(theirs, format);
    EXPECT_EQ(kept.compression, theirKept.compression);
    EXPECT_EQ(kept.attributes.size(), theirKept.attributes.size());
    for (const Attribute& attribute : theirKept.attributes) {
        const Attribute* own = ours.Find(attribute.name);
        ASSERT_TRUE(own) << attribute.name;
        EXPECT_EQ(*own, attribute) << attribute.name;
    }
}

/// That the format's own codec is chosen, and that both read the same from a file: all channels, and the last alone.
inline void ExpectReadAlike(const std::string& format, const std::filesystem::path& path) {
    std::string problem;
    ASSERT_EQ(Chosen(path).name, format);
    for (const bool floats : {false, true}) {
        for (const bool onlyLast : {false, true}) {
            const auto ours = Opened(Chosen(path), path, &problem);
            const auto theirs = Opened(Library(), path, &problem);
            ASSERT_TRUE(ours && theirs) << problem;
            EXPECT_EQ(ours->FormatName(), theirs->FormatName());
            ExpectSameLayout(format, ours->Layout(), theirs->Layout());
            const int end = ours->Layout().ChannelCount();
            const int begin = onlyLast ? end - 1 : 0;
            if (floats) {
                EXPECT_EQ(Values<float>(*ours, begin, end), Values<float>(*theirs, begin, end));
            } else if (ours->Layout().channelBytes == 1) {
                EXPECT_EQ(Values<unsigned char>(*ours, begin, end), Values<unsigned char>(*theirs, begin, end));
            }
        }
    }
}

}  // namespace umbrant::host
