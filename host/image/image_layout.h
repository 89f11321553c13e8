// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The description of an image file, in the form that all codecs share: its size, place, channels, and attributes
// under the image library's names. Inside host/image and host/image_library only.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace umbrant::host {

/// The kind of an attribute's values, numbered as the image library numbers them.
struct AttributeType {
    enum Base : unsigned char { kUint8 = 2, kUint32 = 6, kInt = 7, kFloat = 11, kDouble = 12, kString = 13 };
    enum Semantics : unsigned char { kIsNothing = 0, kIsVector = 3, kIsTimeCode = 5, kIsRational = 7 };
    unsigned char base = kString;
    unsigned char aggregate = 1;           ///< 1 a number, 2 to 4 a vector, 9 or 16 a matrix
    unsigned char semantics = kIsNothing;  ///< what the values mean
    int count = 0;                         ///< of an array; 0 for a single value

    bool operator==(const AttributeType&) const = default;
};

/// One attribute. Texts are in `texts`; values of all other kinds are in `bytes`, in native layout.
struct Attribute {
    std::string name;
    AttributeType type;
    std::vector<std::byte> bytes;
    std::vector<std::string> texts;

    bool operator==(const Attribute&) const = default;
};

/// An image as its file describes it.
struct ImageLayout {
    int x = 0, y = 0, width = 0, height = 0;
    int depth = 1;  ///< more than 1 for a volume
    int fullX = 0, fullY = 0, fullWidth = 0, fullHeight = 0;
    std::vector<std::string> channels;
    int alphaChannel = -1;  ///< which channel is the alpha; -1 for none
    int channelBytes = 1;   ///< of one value in the file
    bool isHalf = false;
    bool isDeep = false;
    bool isStraight = false;  ///< the colours are not multiplied by alpha
    std::vector<Attribute> attributes;

    int ChannelCount() const { return static_cast<int>(channels.size()); }

    /// The attribute of that name, ignoring case; null for none.
    const Attribute* Find(std::string_view name) const;
    /// The text of an attribute, or `otherwise` if it is missing or not a text.
    std::string Text(std::string_view name, const std::string& otherwise = "") const;
    /// The number of an attribute, or `otherwise` if it is missing or not an integer.
    int Number(std::string_view name, int otherwise) const;
    /// The number of an attribute, or `otherwise` if it is missing or not a real number.
    float Real(std::string_view name, float otherwise) const;

    /// Each sets an attribute in place of the one of that name.
    void Set(Attribute attribute);
    void SetText(const std::string& name, const std::string& text);
    void SetNumber(const std::string& name, int value);
    void SetReal(const std::string& name, float value);
    void SetBytes(const std::string& name, std::span<const std::byte> bytes);
};

}  // namespace umbrant::host
