// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/frame_numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <set>

namespace {

constexpr char kForms[] = "write frames as 7, 1-10, 1-240x2, 1-100y5 or 1-100:8, several of them with commas";

Failure Wrong(std::string_view text, const std::string& reason) {
    return {ExitCode::kUsage, fmt::format("'{}' is no set of frames: {}; {}", text, reason, kForms)};
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

/// Takes a whole number from the front of the text, with a sign; nothing when there is none or it is too long.
std::optional<int> TakeNumber(std::string_view& text) {
    int number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
    return number;
}

/// From `first` to `last`, upwards or downwards, every `step`-th.
std::vector<int> Every(int first, int last, int step) {
    std::vector<int> frames;
    const int direction = first <= last ? 1 : -1;
    for (int frame = first; (last - frame) * direction >= 0; frame += direction * step) frames.push_back(frame);
    return frames;
}

/// All, beginning with every `step`-th; the steps are halved until nothing is left out.
std::vector<int> CoarseToFine(int first, int last, int step) {
    std::vector<int> frames;
    std::set<int> seen;
    for (; step > 0; step /= 2) {
        for (const int frame : Every(first, last, step)) {
            if (seen.insert(frame).second) frames.push_back(frame);
        }
    }
    return frames;
}

std::vector<int> AllBut(int first, int last, int step) {
    std::vector<int> frames = Every(first, last, 1);
    std::erase_if(frames, [&](int frame) { return (frame - first) % step == 0; });
    return frames;
}

/// One part between two commas.
Result<std::vector<int>> ParsePart(std::string_view whole, std::string_view text) {
    const std::string_view part = Trimmed(text);
    std::string_view rest = part;
    if (part.empty()) return Wrong(whole, "there is nothing beside a comma");
    const auto first = TakeNumber(rest);
    if (!first) return Wrong(whole, fmt::format("'{}' does not begin with a frame", part));
    auto last = first;
    if (rest.starts_with('-')) {
        rest.remove_prefix(1);
        last = TakeNumber(rest);
        if (!last) return Wrong(whole, fmt::format("'{}' does not say where it ends", part));
    }
    for (const int frame : {*first, *last}) {
        if (std::abs(frame) <= kFarthestFrame) continue;
        return Wrong(whole, fmt::format("frame {} is not between {} and {}", frame, -kFarthestFrame, kFarthestFrame));
    }
    if (rest.starts_with('.')) return Wrong(whole, "frames are whole numbers");
    if (rest.empty()) return Every(*first, *last, 1);

    const char kind = rest.front();
    if (kind != 'x' && kind != 'y' && kind != ':') return Wrong(whole, fmt::format("'{}' means nothing here", rest));
    rest.remove_prefix(1);
    auto step = TakeNumber(rest);
    if (rest.starts_with('.')) return Wrong(whole, "frames are whole numbers");
    if (!step || *step < 1 || !rest.empty()) {
        return Wrong(whole, fmt::format("in '{}' a whole number of at least 1 belongs after the '{}'", part, kind));
    }
    step = std::min(*step, 2 * kFarthestFrame + 1);
    if (kind == 'y' && *step == 1) return Wrong(whole, fmt::format("'{}' leaves no frame", part));
    return kind == 'x'   ? Every(*first, *last, *step)
           : kind == 'y' ? AllBut(*first, *last, *step)
                         : CoarseToFine(*first, *last, *step);
}

/// A rate's numerator or its decimal form, or nothing.
std::optional<double> Decimal(std::string_view text) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

}  // namespace

Result<std::vector<int>> ParseFrames(std::string_view text) {
    std::vector<int> frames;
    std::set<int> seen;
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        more = comma != std::string_view::npos;
        const auto part = ParsePart(text, rest.substr(0, comma));
        if (!part) return part.Error();
        for (const int frame : *part) {
            if (seen.insert(frame).second) frames.push_back(frame);
        }
        if (more) rest.remove_prefix(comma + 1);
    }
    return frames;
}

std::string FramesText(std::vector<int> frames) {
    constexpr int kRuns = 8;
    std::sort(frames.begin(), frames.end());
    std::string text;
    int runs = 0;
    for (std::size_t i = 0; i < frames.size();) {
        if (runs++ == kRuns) return text + fmt::format(" and {} more", frames.size() - i);
        std::size_t end = i + 1;
        while (end < frames.size() && frames[end] == frames[end - 1] + 1) ++end;
        if (!text.empty()) text += ", ";
        text += std::to_string(frames[i]);
        if (end - i > 1) text += fmt::format("{}{}", end - i == 2 ? ", " : "-", frames[end - 1]);
        i = end;
    }
    return text;
}

std::string FrameSetText(const std::vector<int>& frames) {
    std::string text;
    for (std::size_t i = 0; i < frames.size();) {
        std::size_t end = i + 1;
        while (end < frames.size() && frames[end] == frames[end - 1] + 1) ++end;
        text += fmt::format("{}{}", text.empty() ? "" : ",", frames[i]);
        if (end - i > 1) text += fmt::format("-{}", frames[end - 1]);
        i = end;
    }
    return text;
}

Result<Chunk> ParseChunk(std::string_view text) {
    Chunk chunk;
    std::string_view rest = text;
    const auto number = TakeNumber(rest);
    const bool slash = rest.starts_with('/');
    if (slash) rest.remove_prefix(1);
    const auto count = TakeNumber(rest);
    if (!number || !slash || !count || !rest.empty() || *count < 1 || *number < 1 || *number > *count) {
        return Failure{ExitCode::kUsage,
                       fmt::format("'{}' is no chunk: write the i-th of n as i/n, like 1/4 to 4/4", text)};
    }
    chunk.number = *number;
    chunk.count = *count;
    return chunk;
}

std::pair<std::size_t, std::size_t> ChunkRange(std::size_t size, const Chunk& chunk) {
    const auto behind = [&](int number) {
        return size * static_cast<std::size_t>(number) / static_cast<std::size_t>(chunk.count);
    };
    return {behind(chunk.number - 1), behind(chunk.number)};
}

Result<FrameRate> ParseRate(std::string_view text) {
    const Failure wrong{ExitCode::kUsage,
                        fmt::format("'{}' is no frame rate: write frames per second from 0.1 to 1000, as 24, 29.97 or "
                                    "30000/1001",
                                    text)};
    const std::size_t slash = text.find('/');
    if (slash != std::string_view::npos) {
        std::string_view above = text.substr(0, slash), below = text.substr(slash + 1);
        const auto scale = TakeNumber(above);
        const auto step = TakeNumber(below);
        if (!scale || !step || !above.empty() || !below.empty() || *scale < 1 || *step < 1) return wrong;
        const double rate = static_cast<double>(*scale) / *step;
        if (rate < 0.1 || rate > 1000 || *step > 100000) return wrong;
        return FrameRate{static_cast<A_u_long>(*scale), *step};
    }
    const auto rate = Decimal(text);
    if (!rate || !(*rate >= 0.1 && *rate <= 1000)) return wrong;
    constexpr struct {
        double shown;
        A_u_long scale;
    } kBroadcast[] = {{23.976, 24000}, {23.98, 24000}, {29.97, 30000},
                      {47.952, 48000}, {59.94, 60000}, {119.88, 120000}};
    for (const auto& known : kBroadcast) {
        if (*rate == known.shown) return FrameRate{known.scale, 1001};
    }
    if (*rate == std::floor(*rate)) return FrameRate{static_cast<A_u_long>(*rate), 1};
    return FrameRate{static_cast<A_u_long>(std::lround(*rate * 1000)), 1000};
}
