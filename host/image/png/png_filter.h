// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The filters of PNG's rows. Inside host/image only.

#include <cstddef>
#include <cstdint>

namespace umbrant::host {

/// Writes a row as PNG stores it: the number of the filter, then the bytes minus the prediction. Of the filters
/// none, sub and up it takes the one whose bytes, as signed numbers, have the smallest sum of sizes; the first of equal
/// ones.
/// \param row, above: `size` bytes each; `above` is the row before, zeros for the first
/// \param pixel: bytes of a pixel
/// \param to: `size` + 1 bytes
void FilterRow(const std::uint8_t* row, const std::uint8_t* above, std::size_t size, std::size_t pixel,
               std::uint8_t* to);

}  // namespace umbrant::host
