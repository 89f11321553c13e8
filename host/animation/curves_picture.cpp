// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/animation/curves_picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "host/drawing/new_drawing.h"
#include "host/parameters/param_kind.h"
#include "host/suites/drawbot/text.h"

namespace umbrant::host {

namespace {

constexpr char kPicture[] = "an image of the curves";

constexpr double kLeft = 76;
constexpr double kRight = 20;
constexpr double kTop = 28;     ///< of a plot, for its title
constexpr double kBottom = 22;  ///< of a plot, for its numbers
constexpr double kKeySize = 4.5;
constexpr double kStrip = 8;  ///< a colour's strip
constexpr double kTypeSize = 11;

struct Ink {
    double red, green, blue;
};
constexpr Ink kGround{0.985, 0.983, 0.978};
constexpr Ink kPlotGround{1, 1, 1};
constexpr Ink kGrid{0.88, 0.88, 0.9};
constexpr Ink kText{0.16, 0.16, 0.2};
constexpr Ink kFaintText{0.45, 0.45, 0.5};
/// Single numbers and x, then y, then z.
constexpr std::array<Ink, 3> kCurves = {{{0.10, 0.35, 0.80}, {0.83, 0.33, 0.10}, {0.15, 0.55, 0.25}}};
constexpr std::array<Ink, 3> kChannels = {{{0.80, 0.12, 0.12}, {0.10, 0.55, 0.15}, {0.12, 0.25, 0.80}}};

/// The values of all rows that move, at the columns of the plots.
struct Samples {
    std::vector<double> frames;
    std::vector<std::vector<std::vector<double>>> numbers;  ///< by track, then by column
};

Samples Sample(const ParamSet& values, const Animation& animation, const AnimationClock& clock,
               const CurvesOptions& options, int columns) {
    Samples samples;
    samples.numbers.resize(animation.Tracks().size());
    for (int i = 0; i <= columns; ++i) {
        const double frame = options.firstFrame + (options.lastFrame - options.firstFrame) * i / columns;
        const ParamSet now = animation.ValuesAt(values, frame, clock);
        samples.frames.push_back(frame);
        for (std::size_t track = 0; track < samples.numbers.size(); ++track) {
            samples.numbers[track].push_back(NumbersOf(now.Row(animation.Tracks()[track].row)).values);
        }
    }
    return samples;
}

/// One plot: frames across, values upwards.
class Plot {
 public:
    Plot(Drawing& drawing, const CurvesOptions& options, double top, const std::vector<std::vector<double>>& numbers)
        : drawing_(drawing),
          options_(options),
          left_(kLeft),
          top_(top + kTop),
          width_(options.width - kLeft - kRight),
          height_(kPlotHeight - kTop - kBottom) {
        low_ = high_ = numbers.front().front();
        for (const auto& column : numbers) {
            low_ = std::min(low_, *std::min_element(column.begin(), column.end()));
            high_ = std::max(high_, *std::max_element(column.begin(), column.end()));
        }
        // A row that keeps still has its line in the middle.
        if (low_ == high_) {
            low_ -= 1;
            high_ += 1;
        }
    }

    double X(double frame) const {
        return left_ + (frame - options_.firstFrame) / (options_.lastFrame - options_.firstFrame) * width_;
    }
    double Y(double value) const { return top_ + height_ - (value - low_) / (high_ - low_) * height_; }

    void DrawGround(const std::string& title) {
        Use(kPlotGround);
        drawing_.AddRect(left_, top_ - 4, width_, height_ + 8);
        drawing_.Fill();
        DrawFrames();
        for (const double value : {low_, (low_ + high_) / 2, high_}) {
            Line(left_, Y(value), left_ + width_, Y(value));
            Write(fmt::format("{:.6g}", value), left_ - 8, Y(value) + 4, 1, kFaintText);
        }
        Write(title, left_, top_ - 12, 0, kText);
    }

    void DrawCurve(const Samples& samples, std::size_t track, std::size_t number, const Ink& ink) {
        Use(ink);
        drawing_.SetLineWidth(1.75);
        for (std::size_t i = 0; i < samples.frames.size(); ++i) {
            drawing_.LineTo(X(samples.frames[i]), Y(samples.numbers[track][i][number]));
        }
        drawing_.Stroke();
    }

    /// A diamond, or a square where the value is held.
    void DrawKey(double frame, double value, bool holds, const Ink& ink) {
        if (frame < options_.firstFrame || frame > options_.lastFrame) return;
        const double x = X(frame), y = Y(value);
        if (holds) {
            drawing_.AddRect(x - kKeySize * 0.8, y - kKeySize * 0.8, kKeySize * 1.6, kKeySize * 1.6);
        } else {
            drawing_.MoveTo(x, y - kKeySize);
            drawing_.LineTo(x + kKeySize, y);
            drawing_.LineTo(x, y + kKeySize);
            drawing_.LineTo(x - kKeySize, y);
            drawing_.Close();
        }
        Use(ink);
        drawing_.FillAndKeep();
        Use(kPlotGround);
        drawing_.SetLineWidth(1);
        drawing_.Stroke();
    }

    void DrawStrip(const Samples& samples, std::size_t track) {
        for (std::size_t i = 0; i + 1 < samples.frames.size(); ++i) {
            const auto& color = samples.numbers[track][i];
            Use({color[0] / 255, color[1] / 255, color[2] / 255});
            const double x = X(samples.frames[i]);
            drawing_.AddRect(x, top_ - 4, X(samples.frames[i + 1]) - x + 0.5, kStrip);
            drawing_.Fill();
        }
    }

    /// A label next to a key, for values that are names.
    void DrawName(double frame, double value, const std::string& name) {
        if (frame >= options_.firstFrame && frame <= options_.lastFrame) {
            Write(name, X(frame) + 8, Y(value) - 6, 0, kText);
        }
    }

 private:
    /// Frame numbers at round places, at most about one in sixty pixels.
    void DrawFrames() {
        const double span = options_.lastFrame - options_.firstFrame;
        double step = 1;
        for (int i = 0; span / step * 60 > width_; ++i) step *= i % 3 == 1 ? 2.5 : 2;
        for (double frame = std::ceil(options_.firstFrame / step) * step; frame <= options_.lastFrame; frame += step) {
            Line(X(frame), top_ - 4, X(frame), top_ + height_ + 4);
            Write(fmt::format("{:.6g}", frame), X(frame), top_ + height_ + 18, 0.5, kFaintText);
        }
    }

    void Use(const Ink& ink) { drawing_.SetColor(ink.red, ink.green, ink.blue); }

    void Line(double x1, double y1, double x2, double y2) {
        Use(kGrid);
        drawing_.SetLineWidth(1);
        drawing_.MoveTo(x1, y1);
        drawing_.LineTo(x2, y2);
        drawing_.Stroke();
    }

    /// `anchor` is the part of the text's width to the left of `x`.
    void Write(const std::string& text, double x, double y, double anchor, const Ink& ink) {
        Use(ink);
        drawing_.DrawText(text, x - drawing_.TextWidth(text) * anchor, y);
    }

    Drawing& drawing_;
    const CurvesOptions& options_;
    const double left_, top_, width_, height_;
    double low_ = 0, high_ = 1;
};

std::string TitleOf(const ParamRow& row, const RowTrack& track) {
    const std::string name = row.path.empty() ? fmt::format("#{}", row.index) : row.path;
    const bool isPoint = KindOf(row.def) == ParamKind::kPoint;
    return fmt::format("{}{}   {} key{}", name,
                       isPoint ? (track.isPercent ? "  (x blue, y orange; %)" : "  (x blue, y orange; pixels)") : "",
                       track.track.keys.size(), track.track.keys.size() == 1 ? "" : "s");
}

void DrawTrack(Drawing& drawing, const ParamSet& values, const RowTrack& track, std::size_t index,
               const Samples& samples, const AnimationClock& clock, const CurvesOptions& options) {
    const ParamRow& row = values.Row(track.row);
    Plot plot(drawing, options, kCurvesHead + static_cast<double>(index) * kPlotHeight, samples.numbers[index]);
    plot.DrawGround(TitleOf(row, track));
    const bool isColor = KindOf(row.def) == ParamKind::kColor;
    if (isColor) plot.DrawStrip(samples, index);
    const auto& inks = isColor ? kChannels : kCurves;
    const std::size_t count = track.track.keys.front().value.size();
    for (std::size_t number = 0; number < count; ++number) plot.DrawCurve(samples, index, number, inks[number]);
    for (const Keyframe& key : track.track.keys) {
        const double frame = track.track.FrameOf(key, clock);
        for (std::size_t number = 0; number < count; ++number) {
            plot.DrawKey(frame, key.value[number], key.out.kind == Interpolation::kHold, inks[number]);
        }
        if (!IsDiscrete(KindOf(row.def))) continue;
        ParamSet probe = values;
        SetNumbers(probe.RawRow(track.row), {key.value, track.isPercent});
        plot.DrawName(frame, key.value[0], probe.ValueText(track.row));
    }
}

}  // namespace

Result<World> DrawCurves(const ParamSet& values, const Animation& animation, const AnimationClock& clock,
                         const CurvesOptions& options) {
    const int height = kCurvesHead + kPlotHeight * static_cast<int>(animation.Tracks().size());
    const auto made = TRY(NewDrawing(kPicture, options.width, height));
    Drawing& drawing = *made;
    drawing.SetColor(kGround.red, kGround.green, kGround.blue);
    drawing.AddRect(0, 0, options.width, height);
    drawing.Fill();
    drawing.SetFont(kPanelTypeface, kTypeSize);
    drawing.SetRoundJoins();
    drawing.SetColor(kText.red, kText.green, kText.blue);
    drawing.DrawText(fmt::format("frames {:g} to {:g}, {:.6g} a second", options.firstFrame, options.lastFrame,
                                 clock.framesPerSecond),
                     kLeft, 20);

    const Samples samples =
        Sample(values, animation, clock, options, std::max(1, options.width - static_cast<int>(kLeft + kRight)));
    for (std::size_t i = 0; i < animation.Tracks().size(); ++i) {
        DrawTrack(drawing, values, animation.Tracks()[i], i, samples, clock, options);
    }
    return WorldOf(kPicture, drawing);
}

}  // namespace umbrant::host
