// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_channels.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace umbrant::host {

namespace {

/// The position of a channel among those of its layer; equal positions are in alphabetical order. X, Y and Z
/// are a vector where X and another of them are there; else Z is a depth, and Y a luminance.
int RankOf(const std::string& suffix, bool isVector) {
    constexpr const char* kVectorOrder[] = {"R",  "Red", "G",    "Green", "B",  "Blue",  "X",
                                            "Y",  "Z",   "real", "imag",  "A",  "Alpha", "AR",
                                            "RA", "AG",  "GA",   "AB",    "BA", "Depth", "Zback"};
    constexpr const char* kPlainOrder[] = {"R",     "Red", "G",  "Green", "B",  "Blue", "Y",  "real", "imag",  "A",
                                           "Alpha", "AR",  "RA", "AG",    "GA", "AB",   "BA", "Z",    "Depth", "Zback"};
    const auto rank = [&](const auto& order) {
        return std::distance(std::begin(order), std::find_if(std::begin(order), std::end(order), [&](const char* one) {
                                 return strcasecmp(suffix.c_str(), one) == 0;
                             }));
    };
    return static_cast<int>(isVector ? rank(kVectorOrder) : rank(kPlainOrder));
}

/// Ranks every channel among those of its layer.
void Rank(std::vector<ExrChannel>& channels) {
    for (ExrChannel& channel : channels) {
        const auto has = [&](const char* suffix) {
            return std::any_of(channels.begin(), channels.end(), [&](const ExrChannel& other) {
                return other.layer == channel.layer && strcasecmp(other.suffix.c_str(), suffix) == 0;
            });
        };
        channel.rank = RankOf(channel.suffix, has("X") && (has("Y") || has("Z")));
    }
}

}  // namespace

std::optional<std::vector<ExrChannel>> ExrChannelsOf(exr_const_context_t file) {
    const exr_attr_chlist_t* list = nullptr;
    if (exr_get_channels(file, 0, &list) != EXR_ERR_SUCCESS || list->num_channels < 1) return std::nullopt;
    std::vector<ExrChannel> channels;
    for (int i = 0; i < list->num_channels; ++i) {
        const exr_attr_chlist_entry_t& entry = list->entries[i];
        if (entry.pixel_type == EXR_PIXEL_UINT || entry.x_sampling != 1 || entry.y_sampling != 1) return std::nullopt;
        ExrChannel channel;
        channel.name = std::string(entry.name.str, static_cast<std::size_t>(entry.name.length));
        const std::size_t dot = channel.name.rfind('.');
        channel.layer = dot == std::string::npos ? "" : channel.name.substr(0, dot + 1);
        channel.suffix = dot == std::string::npos ? channel.name : channel.name.substr(dot + 1);
        channel.type = entry.pixel_type;
        channel.number = i;
        channels.push_back(std::move(channel));
    }
    Rank(channels);
    return channels;
}

std::optional<std::vector<int>> NameExrChannels(const std::vector<ExrChannel>& channels, ImageLayout& layout) {
    std::vector<ExrChannel> ordered = channels;
    std::sort(ordered.begin(), ordered.end(), [](const ExrChannel& a, const ExrChannel& b) {
        return std::tie(a.layer, a.rank, a.name) < std::tie(b.layer, b.rank, b.name);
    });
    const auto isSame = [](const ExrChannel& a, const ExrChannel& b) { return a.name == b.name; };
    if (std::adjacent_find(ordered.begin(), ordered.end(), isSame) != ordered.end()) return std::nullopt;
    std::vector<int> places(ordered.size());
    layout.isHalf = true;
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        const ExrChannel& channel = ordered[i];
        places[static_cast<std::size_t>(channel.number)] = static_cast<int>(i);
        layout.channels.push_back(channel.name);
        if (channel.type != EXR_PIXEL_HALF) layout.isHalf = false;
        const bool isAlpha =
            strcasecmp(channel.suffix.c_str(), "A") == 0 || strcasecmp(channel.suffix.c_str(), "Alpha") == 0;
        if (isAlpha && layout.alphaChannel < 0) layout.alphaChannel = static_cast<int>(i);
    }
    layout.channelBytes = layout.isHalf ? 2 : 4;
    return places;
}

}  // namespace umbrant::host
