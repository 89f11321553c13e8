// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where everything of a contact sheet is: a pure computation.

#include <functional>
#include <string>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// How a text of a sheet looks.
enum class SheetText {
    kTitle,
    kSettings,  ///< the line below the title
    kHeading,   ///< above a block
    kLabel,     ///< of a row, a column or a cell
};

struct SheetLabel {
    SheetText kind = SheetText::kLabel;
    std::string text;
    double x = 0;  ///< left end of its line
    double y = 0;
    double room = 0;  ///< pixels; the text is cut to it
};

struct SheetPlace {
    int x = 0;
    int y = 0;
};

/// What is laid out.
struct SheetContent {
    std::string title;
    std::string settings;  ///< empty for none
    /// The labels along each direction: none for a single cell; one: cells that flow; from two on: rows, columns, and
    /// for each combination of the others a block with a heading.
    std::vector<std::vector<std::string>> labels;
    int cellWidth = 0;  ///< pixels
    int cellHeight = 0;
};

struct SheetLayout {
    int width = 0;
    int height = 0;
    std::vector<SheetPlace> cells;  ///< the upper left corners, the last direction changing first
    std::vector<SheetLabel> labels;
};

/// The longest side of a sheet and its most cells.
inline constexpr int kLongestSheet = 10'000;
inline constexpr int kMostCells = 400;

/// `widthOf` measures texts, in pixels. Fails with `ErrorKind::kUsage` when the sheet would be too large.
Result<SheetLayout> LayOutSheet(const SheetContent& content,
                                const std::function<double(SheetText, const std::string&)>& widthOf);

}  // namespace umbrant::host
