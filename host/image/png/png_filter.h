// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The filters of PNG's rows. Inside host/image only.

#include <cstddef>
#include <cstdint>
#include <span>

namespace umbrant::host {

/// Writes a row as PNG stores it: the number of the filter, then the bytes minus the prediction. Of the filters
/// none, sub and up it takes the one whose bytes, as signed numbers, have the smallest sum of sizes; the first of equal
/// ones.
/// \param above: the row before, zeros for the first; as long as `row`
/// \param pixel: bytes of a pixel
/// \param to: one byte longer than `row`
void FilterRow(std::span<const std::uint8_t> row, std::span<const std::uint8_t> above, std::size_t pixel,
               std::span<std::uint8_t> to);

}  // namespace umbrant::host
