// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A frame's number, whole or not: frame 7.25 is a quarter of a frame after frame 7. Exact: a number
// of parts of a frame, never a rounded fraction.

#include <fmt/format.h>

#include <compare>
#include <cstdint>
#include <string>

namespace umbrant::host {

class FrameNumber {
 public:
    /// Parts of a frame: four decimals.
    static constexpr int kParts = 10'000;

    constexpr FrameNumber(int whole = 0) : parts_(std::int64_t{whole} * kParts) {}  // NOLINT: frames are mostly whole
    static constexpr FrameNumber OfParts(std::int64_t parts) {
        FrameNumber frame;
        frame.parts_ = parts;
        return frame;
    }

    constexpr std::int64_t Parts() const { return parts_; }
    constexpr double Value() const { return static_cast<double>(parts_) / kParts; }
    constexpr bool IsWhole() const { return parts_ % kParts == 0; }
    /// The whole frame that has begun: the number itself or the last whole one before it.
    constexpr int Begun() const { return static_cast<int>(parts_ / kParts - (parts_ % kParts < 0 ? 1 : 0)); }
    /// "7", "-0.25"; with at least `width` signs before the point, of which a minus is one: "0007.25", "-007".
    std::string Text(int width = 1) const {
        const std::int64_t size = parts_ < 0 ? -parts_ : parts_;
        const char* sign = parts_ < 0 ? "-" : "";
        std::string text = fmt::format("{}{:0{}d}", sign, size / kParts, width - (parts_ < 0 && width > 1 ? 1 : 0));
        if (IsWhole()) return text;
        text += fmt::format(".{:04d}", size % kParts);
        return text.substr(0, text.find_last_not_of('0') + 1);
    }
    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 that this compares with for a pointer
    constexpr auto operator<=>(const FrameNumber&) const = default;

 private:
    std::int64_t parts_;
};

}  // namespace umbrant::host

template <>
struct fmt::formatter<umbrant::host::FrameNumber> : fmt::formatter<std::string> {
    template <typename Context>
    auto format(const umbrant::host::FrameNumber& frame, Context& context) const {
        return fmt::formatter<std::string>::format(frame.Text(), context);
    }
};
