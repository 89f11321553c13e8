// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recipe as a private tag of a TIFF, which the image library neither writes nor reads. The directory is copied to
// the end of the file with one entry more, so nothing that is referred to moves.

#include <algorithm>
#include <utility>
#include <vector>

#include "host/image/recipe/put_formats.h"
#include "host/image/recipe/recipe_bytes.h"

namespace umbrant::host {

namespace {

/// The sizes that differ between files of up to 4 GiB and larger ones.
struct TiffForm {
    bool isBigEndian = false;
    bool isLarge = false;

    int OffsetBytes() const { return isLarge ? 8 : 4; }
    int CountBytes() const { return isLarge ? 8 : 2; }
    int EntryBytes() const { return isLarge ? 20 : 12; }
    std::uint64_t OffsetPlace() const { return isLarge ? 8 : 4; }

    std::string Bytes(std::uint64_t number, int count) const {
        std::string bytes;
        for (int i = 0; i < count; ++i) {
            const int shift = 8 * (isBigEndian ? count - 1 - i : i);
            bytes += static_cast<char>(number >> shift & 255);
        }
        return bytes;
    }
};

struct Directory {
    TiffForm form;
    std::vector<std::pair<std::uint16_t, std::string>> entries;  ///< tags and whole entries
    std::uint64_t place = 0;
    std::uint64_t next = 0;  ///< the place of the next directory; 0 for none
};

std::optional<Directory> FirstDirectory(const ByteSource& file) {
    const auto magic = TextAt(file, 0, 4);
    if (!magic) return std::nullopt;
    Directory first;
    TiffForm& form = first.form;
    form.isBigEndian = magic->front() == 'M';
    form.isLarge = magic->find('+') != std::string::npos;
    const auto place = NumberAt(file, form.OffsetPlace(), form.OffsetBytes(), form.isBigEndian);
    if (!place) return std::nullopt;
    const auto count = NumberAt(file, *place, form.CountBytes(), form.isBigEndian);
    if (!count || *count > 65535) return std::nullopt;
    first.place = *place;
    std::uint64_t at = *place + static_cast<std::uint64_t>(form.CountBytes());
    for (std::uint64_t i = 0; i < *count; ++i, at += static_cast<std::uint64_t>(form.EntryBytes())) {
        const auto tag = NumberAt(file, at, 2, form.isBigEndian);
        auto entry = TextAt(file, at, static_cast<std::uint64_t>(form.EntryBytes()));
        if (!tag || !entry) return std::nullopt;
        first.entries.emplace_back(static_cast<std::uint16_t>(*tag), std::move(*entry));
    }
    const auto next = NumberAt(file, at, form.OffsetBytes(), form.isBigEndian);
    if (!next) return std::nullopt;
    first.next = *next;
    return first;
}

void Append(EncodedFile& encoded, const std::string& bytes) {
    encoded.Append(std::as_bytes(std::span(bytes)));
}

}  // namespace

FoundRecipe FindInTiff(const ByteSource& file) {
    const auto first = FirstDirectory(file);
    if (!first) return {};
    const TiffForm& form = first->form;
    for (const auto& [tag, entry] : first->entries) {
        if (tag != kRecipeTag) continue;
        const MemoryBytes bytes(std::as_bytes(std::span(entry)));
        constexpr std::uint64_t kText = 2;
        const auto count = NumberAt(bytes, 4, form.OffsetBytes(), form.isBigEndian);
        const auto at =
            NumberAt(bytes, 4 + static_cast<std::uint64_t>(form.OffsetBytes()), form.OffsetBytes(), form.isBigEndian);
        if (NumberAt(bytes, 2, 2, form.isBigEndian) != kText || *count == 0) return Found(std::nullopt);
        // With the zero that ends it; such a text is never so short that it would be in the entry itself.
        auto text = TextAt(file, *at, *count);
        if (!text || text->back() != '\0') return Found(std::nullopt);
        text->pop_back();
        return Found(text);
    }
    return {};
}

void PutIntoTiff(std::string_view text, EncodedFile& encoded) {
    const EncodedBytes bytes(encoded);
    auto first = FirstDirectory(bytes);
    // In a directory that is at the limit of the format, or a file that is, nothing has a place.
    if (!first || first->entries.size() >= 65535) return;
    const TiffForm& form = first->form;
    const std::uint64_t end = encoded.Size() + encoded.Size() % 2;
    if (!form.isLarge && end + text.size() + (first->entries.size() + 2) * 12 > 0xffffffff) return;
    std::string stored(text);
    stored.resize(stored.size() + 2 - stored.size() % 2, '\0');
    const std::string entry = form.Bytes(kRecipeTag, 2) + form.Bytes(2, 2) +
                              form.Bytes(text.size() + 1, form.OffsetBytes()) + form.Bytes(end, form.OffsetBytes());
    const auto after = std::find_if(first->entries.begin(), first->entries.end(),
                                    [](const auto& other) { return other.first >= kRecipeTag; });
    first->entries.emplace(after, kRecipeTag, entry);
    std::string directory = form.Bytes(first->entries.size(), form.CountBytes());
    for (const auto& [tag, each] : first->entries) directory += each;
    directory += form.Bytes(first->next, form.OffsetBytes());
    if (encoded.Size() % 2 != 0) Append(encoded, std::string(1, '\0'));
    Append(encoded, stored);
    Append(encoded, directory);
    const std::string place = form.Bytes(end + stored.size(), form.OffsetBytes());
    encoded.Write(form.OffsetPlace(), std::as_bytes(std::span(place)));
}

}  // namespace umbrant::host
