// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A file's format from its first bytes, and what the readers of all formats share.

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

#include "host/image/recipe/recipe_bytes.h"

namespace umbrant::host {

std::size_t MemoryBytes::Read(std::uint64_t at, std::span<std::byte> bytes) const {
    if (at >= bytes_.size()) return 0;
    const std::size_t count = std::min<std::size_t>(bytes.size(), bytes_.size() - at);
    std::memcpy(bytes.data(), bytes_.data() + at, count);
    return count;
}

std::size_t DescriptorBytes::Read(std::uint64_t at, std::span<std::byte> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size() && at + done <= static_cast<std::uint64_t>(INT64_MAX)) {
        const ssize_t count =
            pread(descriptor_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(at + done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

std::optional<std::string> TextAt(const ByteSource& file, std::uint64_t at, std::uint64_t count) {
    if (count > 2 * kMostRecipeBytes) return std::nullopt;
    std::string text(static_cast<std::size_t>(count), '\0');
    const auto bytes = std::as_writable_bytes(std::span(text));
    if (file.Read(at, bytes) != bytes.size()) return std::nullopt;
    return text;
}

std::optional<std::uint64_t> NumberAt(const ByteSource& file, std::uint64_t at, int bytes, bool isBigEndian) {
    auto text = TextAt(file, at, static_cast<std::uint64_t>(bytes));
    if (!text) return std::nullopt;
    if (!isBigEndian) std::reverse(text->begin(), text->end());
    std::uint64_t number = 0;
    for (const char byte : *text) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

std::optional<std::string> ZeroEndedAt(const ByteSource& file, std::uint64_t at, std::size_t most) {
    std::string text(most + 1, '\1');
    text.resize(file.Read(at, std::as_writable_bytes(std::span(text))));
    const std::size_t end = text.find('\0');
    if (end == std::string::npos) return std::nullopt;
    text.resize(end);
    return text;
}

FoundRecipe Found(const std::optional<std::string>& text) {
    if (!text || text->size() > kMostRecipeBytes) return {FoundRecipe::Kind::kDamaged, {}};
    return {FoundRecipe::Kind::kFound, *text};
}

FoundRecipe FindRecipe(const ByteSource& file) {
    using namespace std::string_view_literals;
    constexpr std::pair<std::string_view, FoundRecipe (*)(const ByteSource&)> kFormats[] = {
        {"\x89PNG"sv, FindInPng},       {"\x76\x2f\x31\x01"sv, FindInExr},
        {"II*\0"sv, FindInTiff},        {"MM\0*"sv, FindInTiff},
        {"II+\0"sv, FindInTiff},        {"MM\0+"sv, FindInTiff},
        {"\xff\xd8\xff"sv, FindInJpeg}, {"\x1a\x45\xdf\xa3"sv, FindInMatroska},
    };
    const auto begin = TextAt(file, 0, 8);
    if (!begin) return {FoundRecipe::Kind::kNoFormat, {}};
    for (const auto& [magic, find] : kFormats) {
        if (begin->starts_with(magic)) return find(file);
    }
    constexpr std::string_view kBoxes[] = {"ftyp", "moov", "mdat", "wide", "free", "skip"};
    if (std::find(std::begin(kBoxes), std::end(kBoxes), begin->substr(4)) != std::end(kBoxes)) {
        return FindInBoxes(file);
    }
    return {FoundRecipe::Kind::kNoFormat, {}};
}

}  // namespace umbrant::host
