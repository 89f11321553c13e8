// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/channels/picture_channels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>
#include <system_error>
#include <vector>

namespace umbrant::host {

namespace {

bool SameIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

int ChannelNamed(const ImageLayout& layout, const std::string& name) {
    for (int i = 0; i < layout.ChannelCount(); ++i) {
        if (SameIgnoringCase(layout.channels[static_cast<std::size_t>(i)], name)) return i;
    }
    return -1;
}

/// "diffuse" of "diffuse.R"; empty for a channel of the image itself.
std::string LayerOf(const std::string& channel) {
    const std::size_t dot = channel.rfind('.');
    return dot == std::string::npos ? "" : channel.substr(0, dot);
}

/// A channel of a layer by any of its names.
int ChannelOf(const ImageLayout& layout, const std::string& layer, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const int found = ChannelNamed(layout, layer.empty() ? name : layer + "." + name);
        if (found >= 0) return found;
    }
    return -1;
}

bool HasColours(const Channels& channels) {
    return channels.red >= 0 && channels.green >= 0 && channels.blue >= 0;
}

/// The channels that have the names of colours, or of a luminance, in a layer.
Channels NamedChannels(const ImageLayout& layout, const std::string& layer) {
    Channels found;
    found.red = ChannelOf(layout, layer, {"R", "red"});
    found.green = ChannelOf(layout, layer, {"G", "green"});
    found.blue = ChannelOf(layout, layer, {"B", "blue"});
    found.alpha = ChannelOf(layout, layer, {"A", "alpha"});
    if (HasColours(found)) return found;
    // With an X it is a coordinate.
    const bool isLuminance = ChannelOf(layout, layer, {"X"}) < 0;
    found.red = found.green = found.blue = isLuminance ? ChannelOf(layout, layer, {"Y"}) : -1;
    return found;
}

/// The first three channels of a layer, whatever their names.
Channels FirstChannels(const ImageLayout& layout, const std::string& layer, int alpha) {
    std::vector<int> colours;
    for (int i = 0; i < layout.ChannelCount(); ++i) {
        if (i != alpha && LayerOf(layout.channels[static_cast<std::size_t>(i)]) == layer) colours.push_back(i);
    }
    if (colours.size() >= 3) return {colours[0], colours[1], colours[2], alpha};
    if (colours.size() == 2) return {colours[0], colours[1], -1, alpha};
    if (colours.size() == 1) return {colours[0], colours[0], colours[0], alpha};
    return {-1, -1, -1, alpha};
}

/// What --layer takes for this file, in its order.
std::vector<std::string> LayerNames(const ImageLayout& layout) {
    const Channels own = NamedChannels(layout, "");
    std::vector<std::string> names;
    for (int i = 0; i < layout.ChannelCount(); ++i) {
        if (i == own.red || i == own.green || i == own.blue || i == own.alpha) continue;
        const std::string& channel = layout.channels[static_cast<std::size_t>(i)];
        const std::string layer = LayerOf(channel);
        const std::string& name = layer.empty() ? channel : layer;
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
    return names;
}

/// Names with commas, and the count of those that are too many.
std::string Listed(const std::vector<std::string>& names) {
    constexpr std::size_t kMost = 12;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) text += (i == 0 ? "" : ", ") + names[i];
    if (names.size() > kMost) text += fmt::format(" and {} more", names.size() - kMost);
    return text;
}

/// What was read and what was left; empty when that is nothing.
std::string NoteOn(const ImageLayout& layout, const Channels& channels, const std::string& fileName) {
    std::vector<std::string> read, left;
    for (int i = 0; i < layout.ChannelCount(); ++i) {
        const bool used = i == channels.red || i == channels.green || i == channels.blue || i == channels.alpha;
        (used ? read : left).push_back(layout.channels[static_cast<std::size_t>(i)]);
    }
    if (left.empty()) return "";
    return fmt::format("'{}' has {} channels: {} were read, {} were left out; --layer reads one of: {}", fileName,
                       layout.ChannelCount(), Listed(read), Listed(left), Listed(LayerNames(layout)));
}

Channels ChannelsWithoutLayer(const ImageLayout& layout) {
    Channels channels = NamedChannels(layout, "");
    if (channels.red >= 0) {
        if (channels.alpha < 0 && layout.alphaChannel >= 0 &&
            LayerOf(layout.channels[static_cast<std::size_t>(layout.alphaChannel)]).empty()) {
            channels.alpha = layout.alphaChannel;
        }
        return channels;
    }
    const int alpha = channels.alpha;
    for (const std::string& name : layout.channels) {
        Channels layer = NamedChannels(layout, LayerOf(name));
        if (LayerOf(name).empty() || !HasColours(layer)) continue;
        if (layer.alpha < 0) layer.alpha = alpha;
        return layer;
    }
    Channels first = FirstChannels(layout, "", alpha >= 0 ? alpha : layout.alphaChannel);
    if (first.red < 0 && first.alpha < 0 && layout.ChannelCount() > 0) {
        first = FirstChannels(layout, LayerOf(layout.channels.front()), -1);
    }
    return first;
}

std::string PartText(ImageReader& input, int part) {
    const std::string name = input.PartName(part);
    return name.empty() ? fmt::format("{}", part) : fmt::format("{} ({})", part, name);
}

}  // namespace

Result<ChannelChoice> ChooseChannels(const ImageLayout& layout, const std::string& layer, const std::string& fileName) {
    if (layer.empty()) {
        const Channels channels = ChannelsWithoutLayer(layout);
        return ChannelChoice{channels, NoteOn(layout, channels, fileName)};
    }
    Channels channels = NamedChannels(layout, layer);
    const int alpha = channels.alpha >= 0 ? channels.alpha : NamedChannels(layout, "").alpha;
    if (channels.red < 0) channels = FirstChannels(layout, layer, channels.alpha);
    if (channels.red < 0) channels.red = channels.green = channels.blue = ChannelNamed(layout, layer);
    if (channels.red < 0) {
        return Failure{ErrorKind::kUsage, fmt::format("'{}' has no layer '{}'; its channels are {}", fileName, layer,
                                                      Listed(layout.channels))};
    }
    channels.alpha = alpha;
    return ChannelChoice{channels, ""};
}

Result<std::string> ChoosePart(ImageReader& input, const std::string& part, const std::string& fileName) {
    const int count = std::max(1, input.PartCount());
    std::vector<std::string> parts;
    for (int i = 0; i < count; ++i) parts.push_back(PartText(input, i));
    input.OpenPart(0);  // asking for a part moves to it
    if (part.empty()) {
        if (count == 1) return std::string();
        const std::string read = parts.front();
        parts.erase(parts.begin());
        return fmt::format(
            "'{}' has {} parts: part {} was read, {} were left out; --part chooses one by its number or "
            "name",
            fileName, count, read, Listed(parts));
    }
    int number = -1;
    const char* end = part.data() + part.size();
    const auto [stop, error] = std::from_chars(part.data(), end, number);
    if (error != std::errc() || stop != end) {
        number = -1;
        for (int i = 0; i < count && number < 0; ++i) {
            if (input.PartName(i) == part) number = i;
        }
    }
    // Formats whose parts cannot be counted before they are read are asked for the one that is wanted.
    if (number >= 0 && input.OpenPart(number)) return std::string();
    return Failure{ErrorKind::kUsage,
                   fmt::format("'{}' has no part '{}'; its parts are {}", fileName, part, Listed(parts))};
}

}  // namespace umbrant::host
