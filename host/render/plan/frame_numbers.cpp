// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <unordered_set>

namespace umbrant::host {

namespace {

constexpr char kForms[] =
    "write frames as 7, 1-10, 1-240x2, 1-10x0.25, 1-100y5 or 1-100:8, several of them with commas";

Failure Wrong(std::string_view text, const std::string& reason) {
    return {ErrorKind::kUsage, fmt::format("'{}' is not a set of frames: {}; {}", text, reason, kForms)};
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

/// Takes a number with up to four decimals from the front of the text, in parts of a frame; nothing when there is none,
/// or when it has more.
std::optional<std::int64_t> TakeParts(std::string_view& text) {
    const bool isNegative = text.starts_with('-');
    const auto whole = TakeNumber(text);
    if (!whole) return std::nullopt;
    const std::int64_t size = std::abs(std::int64_t{*whole}) * FrameNumber::kParts;
    std::int64_t decimals = 0;
    if (text.size() > 1 && text[0] == '.' && std::isdigit(static_cast<unsigned char>(text[1]))) {
        text.remove_prefix(1);
        for (std::int64_t unit = FrameNumber::kParts;
             !text.empty() && std::isdigit(static_cast<unsigned char>(text[0]));) {
            if (text[0] != '0' && unit == 1) return std::nullopt;
            unit = std::max<std::int64_t>(unit / 10, 1);
            decimals += (text[0] - '0') * unit;
            text.remove_prefix(1);
        }
    }
    return isNegative ? -size - decimals : size + decimals;
}

/// From `first` to `last`, upwards or downwards, every `step`; all in parts.
std::vector<std::int64_t> Every(std::int64_t first, std::int64_t last, std::int64_t step) {
    std::vector<std::int64_t> frames;
    const int direction = first <= last ? 1 : -1;
    for (std::int64_t frame = first; (last - frame) * direction >= 0; frame += direction * step)
        frames.push_back(frame);
    return frames;
}

/// All, beginning with every `step`-th; the steps are halved until nothing is left out.
std::vector<std::int64_t> CoarseToFine(std::int64_t first, std::int64_t last, std::int64_t step) {
    std::vector<std::int64_t> frames;
    std::vector<std::int64_t> before;  // the steps that were taken, in parts
    for (; step > 0; step /= 2) {
        const std::int64_t parts = step * FrameNumber::kParts;
        for (const std::int64_t frame : Every(first, last, parts)) {
            const auto isTaken = [&](std::int64_t each) { return (frame - first) % each == 0; };
            if (std::none_of(before.begin(), before.end(), isTaken)) frames.push_back(frame);
        }
        before.push_back(parts);
    }
    return frames;
}

std::vector<std::int64_t> AllBut(std::int64_t first, std::int64_t last, std::int64_t step) {
    std::vector<std::int64_t> frames = Every(first, last, FrameNumber::kParts);
    std::erase_if(frames, [&](std::int64_t frame) { return (frame - first) % (step * FrameNumber::kParts) == 0; });
    return frames;
}

/// One part between two commas, in parts of a frame.
Result<std::vector<std::int64_t>> ParsePart(std::string_view whole, std::string_view text) {
    constexpr std::int64_t kFrame = FrameNumber::kParts;
    const std::string_view part = Trimmed(text);
    std::string_view rest = part;
    if (part.empty()) return Wrong(whole, "nothing before or after a comma");
    const auto first = TakeParts(rest);
    if (!first) return Wrong(whole, fmt::format("'{}' does not begin with a frame of up to four decimals", part));
    auto last = first;
    if (rest.starts_with('-')) {
        rest.remove_prefix(1);
        last = TakeParts(rest);
        if (!last) return Wrong(whole, fmt::format("'{}' has no end", part));
    }
    for (const std::int64_t frame : {*first, *last}) {
        if (std::abs(frame) <= kFarthestFrame * kFrame) continue;
        return Wrong(whole, fmt::format("frame {} is not between {} and {}", FrameNumber::OfParts(frame),
                                        -kFarthestFrame, kFarthestFrame));
    }
    if (rest.empty()) return Every(*first, *last, kFrame);

    const char kind = rest.front();
    if (kind != 'x' && kind != 'y' && kind != ':') return Wrong(whole, fmt::format("'{}' is not expected here", rest));
    rest.remove_prefix(1);
    auto step = TakeParts(rest);
    if (kind == 'x' && step && *step > 0 && rest.empty()) {
        if (std::abs(*last - *first) / *step >= kMostFrames) {
            return Wrong(whole, fmt::format("'{}' has more than {} frames", part, kMostFrames));
        }
        return Every(*first, *last, *step);
    }
    if (kind == 'x') {
        return Wrong(
            whole, fmt::format("in '{}' the 'x' must be followed by a number above 0 with up to four decimals", part));
    }
    if (!step || *step < kFrame || *step % kFrame != 0 || !rest.empty()) {
        return Wrong(whole, fmt::format("in '{}' a whole number of at least 1 must follow the '{}'", part, kind));
    }
    step = std::min<std::int64_t>(*step / kFrame, kMostFrames);
    if (kind == 'y' && *step == 1) return Wrong(whole, fmt::format("'{}' leaves no frame", part));
    return kind == 'y' ? AllBut(*first, *last, *step) : CoarseToFine(*first, *last, *step);
}

/// Frames that came up already. Whole ones, of which there may be millions, take a bit each.
class SeenFrames {
 public:
    /// Whether it is new.
    bool Insert(std::int64_t parts) {
        if (parts % FrameNumber::kParts != 0) return between_.insert(parts).second;
        auto isSeen = whole_[static_cast<std::size_t>(parts / FrameNumber::kParts + kFarthestFrame)];
        if (isSeen) return false;
        isSeen = true;
        return true;
    }

 private:
    std::vector<bool> whole_ = std::vector<bool>(kMostFrames);
    std::unordered_set<std::int64_t> between_;
};

/// Whether `next` is the whole frame after a whole one: what a range without a step goes on with.
bool Follows(const FrameNumber& frame, const FrameNumber& next) {
    return frame.IsWhole() && next.Parts() - frame.Parts() == FrameNumber::kParts;
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

Result<std::vector<FrameNumber>> ParseFrames(std::string_view text) {
    std::vector<FrameNumber> frames;
    SeenFrames seen;
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        more = comma != std::string_view::npos;
        const auto part = TRY(ParsePart(text, rest.substr(0, comma)));
        frames.reserve(frames.size() + part.size());
        for (const std::int64_t frame : part) {
            if (seen.Insert(frame)) frames.push_back(FrameNumber::OfParts(frame));
        }
        if (frames.size() > static_cast<std::size_t>(kMostFrames)) {
            return Wrong(text, fmt::format("more than {} frames", kMostFrames));
        }
        if (more) rest.remove_prefix(comma + 1);
    }
    return frames;
}

std::string FramesText(std::vector<FrameNumber> frames) {
    constexpr int kRuns = 8;
    std::sort(frames.begin(), frames.end());
    std::string text;
    int runs = 0;
    for (std::size_t i = 0; i < frames.size();) {
        if (runs++ == kRuns) return text + fmt::format(" and {} more", frames.size() - i);
        std::size_t end = i + 1;
        while (end < frames.size() && Follows(frames[end - 1], frames[end])) ++end;
        if (!text.empty()) text += ", ";
        text += frames[i].Text();
        if (end - i > 1) text += fmt::format("{}{}", end - i == 2 ? ", " : "-", frames[end - 1]);
        i = end;
    }
    return text;
}

std::string FrameSetText(const std::vector<FrameNumber>& frames) {
    std::string text;
    for (std::size_t i = 0; i < frames.size();) {
        std::size_t end = i + 1;
        while (end < frames.size() && Follows(frames[end - 1], frames[end])) ++end;
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
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' is not a chunk: write the i-th of n as i/n, such as 1/4 to 4/4", text)};
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
    const Failure wrong{
        ErrorKind::kUsage,
        fmt::format("'{}' is not a frame rate: write frames per second from 0.1 to 1000, such as 24, 29.97 or "
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

}  // namespace umbrant::host
