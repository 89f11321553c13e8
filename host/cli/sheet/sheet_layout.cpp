// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/sheet/sheet_layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace umbrant::host {

namespace {

constexpr int kMargin = 28;
constexpr int kGap = 14;       ///< between cells
constexpr int kBlockGap = 36;  ///< between blocks
constexpr int kLabelLine = 24;
constexpr int kHeadingLine = 30;
constexpr int kTitleLine = 30;
constexpr int kHeaderGap = 14;
constexpr int kMostRowLabel = 220;
constexpr int kLeastContent = 420;  ///< for the title
/// Sheets are looked at on wide screens.
constexpr double kShape = 1.5;

struct Size {
    std::int64_t width = 0;
    std::int64_t height = 0;
};

std::int64_t Spanned(std::int64_t count, std::int64_t size, int gap) {
    return count * size + (count - 1) * gap;
}

/// How many items of a size side by side give the best shape with the fewest empty places.
int ColumnsFor(int count, const Size& item, int gap) {
    int best = 1;
    double least = 0;
    for (int columns = 1; columns <= count; ++columns) {
        const int rows = (count + columns - 1) / columns;
        const double shape = static_cast<double>(Spanned(columns, item.width, gap)) /
                             static_cast<double>(Spanned(rows, item.height, gap));
        const double score = std::abs(std::log(shape / kShape)) + 0.3 * (columns * rows - count) / columns;
        if (columns == 1 || score < least) {
            best = columns;
            least = score;
        }
    }
    return best;
}

/// A heading for each combination of the labels from the third direction on.
std::vector<std::string> Headings(const std::vector<std::vector<std::string>>& labels) {
    std::vector<std::string> all = {""};
    for (std::size_t axis = 2; axis < labels.size(); ++axis) {
        std::vector<std::string> more;
        for (const std::string& one : all) {
            for (const std::string& label : labels[axis])
                more.push_back(one.empty() ? label : fmt::format("{} · {}", one, label));
        }
        all = std::move(more);
    }
    return all;
}

class Layouter {
 public:
    Layouter(const SheetContent& content, const std::function<double(SheetText, const std::string&)>& widthOf)
        : content_(content), cell_{content.cellWidth, content.cellHeight}, widthOf_(widthOf) {
        top_ = kMargin + kTitleLine + (content.settings.empty() ? 0 : kLabelLine) + kHeaderGap;
    }

    Result<SheetLayout> LayOut() {
        const Size inner = content_.labels.size() < 2 ? LayOutFlow() : LayOutBlocks();
        const std::int64_t width = std::int64_t{2} * kMargin + std::max<std::int64_t>(inner.width, kLeastContent);
        const std::int64_t height = top_ + inner.height + kMargin;
        if (width > kLongestSheet || height > kLongestSheet) {
            return Failure{ErrorKind::kUsage,
                           fmt::format("the sheet would have {} x {} pixels; no side may be longer than {}; give fewer "
                                       "values, or smaller images with --cell",
                                       width, height, kLongestSheet)};
        }
        layout_.width = static_cast<int>(width);
        layout_.height = static_cast<int>(height);
        const double room = layout_.width - 2.0 * kMargin;
        layout_.labels.push_back({SheetText::kTitle, content_.title, kMargin, kMargin + 20.0, room});
        if (!content_.settings.empty()) {
            layout_.labels.push_back(
                {SheetText::kSettings, content_.settings, kMargin, kMargin + kTitleLine + 14.0, room});
        }
        return std::move(layout_);
    }

 private:
    Size LayOutFlow() {
        const std::vector<std::string> labels =
            content_.labels.empty() ? std::vector<std::string>(1) : content_.labels[0];
        const Size item{cell_.width, cell_.height + (content_.labels.empty() ? 0 : kLabelLine)};
        const int count = static_cast<int>(labels.size());
        const int columns = ColumnsFor(count, item, kGap);
        for (int i = 0; i < count; ++i) {
            const auto x = kMargin + (i % columns) * (item.width + kGap);
            const auto y = top_ + (i / columns) * (item.height + kGap);
            AddCell(x, y);
            AddLabel(labels[static_cast<std::size_t>(i)], x, y + cell_.height + 17, static_cast<double>(cell_.width));
        }
        return {Spanned(columns, item.width, kGap), Spanned((count + columns - 1) / columns, item.height, kGap)};
    }

    Size LayOutBlocks() {
        const auto& rows = content_.labels[0];
        const auto& columns = content_.labels[1];
        double widest = 0;
        for (const std::string& label : rows) widest = std::max(widest, widthOf_(SheetText::kLabel, label));
        rowLabel_ = std::min(static_cast<int>(std::ceil(widest)), kMostRowLabel) + kGap;
        const std::vector<std::string> headings = Headings(content_.labels);
        heading_ = content_.labels.size() > 2 ? kHeadingLine : 0;
        const Size block{rowLabel_ + Spanned(static_cast<int>(columns.size()), cell_.width, kGap),
                         heading_ + kLabelLine + Spanned(static_cast<int>(rows.size()), cell_.height, kGap)};
        const int count = static_cast<int>(headings.size());
        const int across = ColumnsFor(count, block, kBlockGap);
        // Cells go by their directions in the order of --vary: the blocks change first.
        std::vector<SheetPlace> corners;
        for (int i = 0; i < count; ++i) {
            corners.push_back({static_cast<int>(kMargin + (i % across) * (block.width + kBlockGap)),
                               static_cast<int>(top_ + (i / across) * (block.height + kBlockGap))});
            AddBlockLabels(corners.back(), headings[static_cast<std::size_t>(i)], static_cast<double>(block.width));
        }
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t column = 0; column < columns.size(); ++column) {
                for (const SheetPlace& corner : corners) {
                    AddCell(CellX(corner, column), CellY(corner, row));
                }
            }
        }
        return {Spanned(across, block.width, kBlockGap),
                Spanned((count + across - 1) / across, block.height, kBlockGap)};
    }

    void AddBlockLabels(const SheetPlace& corner, const std::string& heading, double width) {
        if (heading_ > 0) {
            layout_.labels.push_back(
                {SheetText::kHeading, heading, static_cast<double>(corner.x), corner.y + 17.0, width});
        }
        for (std::size_t i = 0; i < content_.labels[1].size(); ++i) {
            AddLabel(content_.labels[1][i], CellX(corner, i), corner.y + heading_ + 16,
                     static_cast<double>(cell_.width));
        }
        for (std::size_t i = 0; i < content_.labels[0].size(); ++i) {
            AddLabel(content_.labels[0][i], corner.x, CellY(corner, i) + cell_.height / 2 + 5, rowLabel_ - kGap);
        }
    }

    std::int64_t CellX(const SheetPlace& corner, std::size_t column) const {
        return corner.x + rowLabel_ + static_cast<std::int64_t>(column) * (cell_.width + kGap);
    }
    std::int64_t CellY(const SheetPlace& corner, std::size_t row) const {
        return corner.y + heading_ + kLabelLine + static_cast<std::int64_t>(row) * (cell_.height + kGap);
    }
    void AddCell(std::int64_t x, std::int64_t y) {
        layout_.cells.push_back({static_cast<int>(x), static_cast<int>(y)});
    }
    void AddLabel(const std::string& text, std::int64_t x, std::int64_t y, double room) {
        layout_.labels.push_back({SheetText::kLabel, text, static_cast<double>(x), static_cast<double>(y), room});
    }

    const SheetContent& content_;
    const Size cell_;
    const std::function<double(SheetText, const std::string&)>& widthOf_;
    int top_ = 0;
    int rowLabel_ = 0;
    int heading_ = 0;
    SheetLayout layout_;
};

}  // namespace

Result<SheetLayout> LayOutSheet(const SheetContent& content,
                                const std::function<double(SheetText, const std::string&)>& widthOf) {
    return Layouter(content, widthOf).LayOut();
}

}  // namespace umbrant::host
