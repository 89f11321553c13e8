// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What an effect has taken from the host and not given back, by kind.

#include <array>
#include <cstddef>
#include <string>

namespace umbrant::host {

/// What the host hands out and expects back.
enum class Resource {
    kSuite,        ///< suites acquired
    kHandle,       ///< memory handles
    kLock,         ///< locks on handles
    kWorld,        ///< temporary worlds
    kBlock,        ///< blocks of the basic suite
    kParam,        ///< parameter check-outs
    kLayerPixels,  ///< layer pixel check-outs
    kEffectRef,    ///< effect references of the application suites
    kStream,       ///< stream references
    kDrawObject,   ///< pens, brushes, fonts, paths and images for drawing on the panel
};
inline constexpr std::size_t kResourceCount = 10;

/// Plural name of a kind of resource, as messages have it ("handles").
const char* ResourceName(Resource resource);

/// Numbers still open, one per kind. A negative number means that more was given back than taken.
struct Balance {
    std::array<int, kResourceCount> open{};

    int operator[](Resource resource) const { return open[static_cast<std::size_t>(resource)]; }
    /// Nothing is open.
    bool IsBalanced() const;
    /// "nothing open", or the open kinds with their numbers: "handles 1, locks 1".
    std::string Text() const;
    bool operator==(const Balance&) const = default;
};

}  // namespace umbrant::host
