// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the host draws pictures with: lines, areas, text and images on pixels. An interface: what is behind it lives in
// a shared object (host/drawing_library), so that no program needs a drawing library before it draws. new_drawing.h
// makes drawings. One thread at a time for each drawing. Lengths are units of the drawing's matrix; y grows downwards.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace umbrant::host {

/// A list of figures, open or closed.
class DrawnPath {
 public:
    DrawnPath() = default;
    DrawnPath(const DrawnPath&) = delete;
    DrawnPath& operator=(const DrawnPath&) = delete;
    virtual ~DrawnPath() = default;

    /// Begins a figure.
    virtual void MoveTo(double x, double y) = 0;
    /// A line from the current point; begins a figure if there is none.
    virtual void LineTo(double x, double y) = 0;
    virtual void CurveTo(double x1, double y1, double x2, double y2, double x, double y) = 0;
    virtual void AddRect(double left, double top, double width, double height) = 0;
    /// Part of a circle, after a line to its beginning from the current point. Angles are radians, clockwise from the
    /// right; `from` to `to` is passed clockwise, or with `backwards` anticlockwise.
    virtual void AddArc(double x, double y, double radius, double from, double to, bool backwards = false) = 0;
    virtual void Close() = 0;
};

/// Pixels that can be drawn.
class DrawnImage {
 public:
    DrawnImage() = default;
    DrawnImage(const DrawnImage&) = delete;
    DrawnImage& operator=(const DrawnImage&) = delete;
    virtual ~DrawnImage() = default;
};

/// How points become points of the pixels: (xx * x + xy * y + x0, yx * x + yy * y + y0).
struct DrawingMatrix {
    double xx = 1, yx = 0, xy = 0, yy = 1, x0 = 0, y0 = 0;
};

/// Left, top, right and bottom.
struct DrawingBounds {
    double left, top, right, bottom;
};

enum class FillRule { kWinding, kEvenOdd };
enum class DrawnEdges { kJagged, kGood, kBest };
enum class Resampling { kNearest, kGood, kBest };

/// Pixels and what is drawn on them now: the current path is the drawing's own DrawnPath. A pixel is a number whose
/// bytes from the highest on are alpha, red, green and blue, premultiplied.
class Drawing : public DrawnPath {
 public:
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    /// The pixels of a row, with everything that was drawn; good until something is drawn.
    virtual const std::uint32_t* Row(int y) = 0;
    /// Ends what the drawing keeps back, so that the pixels are complete.
    virtual void Flush() = 0;
    /// Makes every pixel transparent black, whatever the clip.
    virtual void Clear() = 0;

    /// Remembers everything but path and pixels.
    virtual void Save() = 0;
    /// Restores what was remembered last.
    virtual void Restore() = 0;

    virtual DrawingMatrix Matrix() const = 0;
    /// The matrix must have an inverse.
    virtual void SetMatrix(const DrawingMatrix& matrix) = 0;
    /// Nothing is drawn outside of the rectangle and of the clip so far.
    virtual void ClipTo(double left, double top, double width, double height) = 0;
    virtual DrawingBounds ClipBounds() const = 0;

    /// Channels from 0 to 1, straight.
    virtual void SetColor(double red, double green, double blue, double alpha = 1) = 0;
    virtual void SetEdges(DrawnEdges edges) = 0;
    virtual void SetLineWidth(double width) = 0;
    virtual void SetDashes(double on, double off) = 0;
    virtual void SetRoundCaps() = 0;
    virtual void SetRoundJoins() = 0;

    /// Makes the path empty.
    virtual void NewPath() = 0;
    /// Makes the figures of another path the path.
    virtual void TakePath(const DrawnPath& path) = 0;
    /// Fills the figures; empties the path.
    virtual void Fill(FillRule rule = FillRule::kWinding) = 0;
    /// Fills the figures; the path stays.
    virtual void FillAndKeep() = 0;
    /// Draws a line along the figures; empties the path.
    virtual void Stroke() = 0;

    /// Another typeface replaces one that is not installed.
    virtual void SetFont(const char* family, double size) = 0;
    /// Draws text with grey edges and without hinting, so that its shape depends on neither place nor size.
    virtual void SetUnhintedText() = 0;
    /// How far letters go above and below their line.
    virtual double FontAscent() const = 0;
    virtual double FontDescent() const = 0;
    /// How far the text moves its line on. Text is UTF-8.
    virtual double TextWidth(const std::string& text) const = 0;
    /// Draws text from (x, y) on its line; empties the path.
    virtual void DrawText(const std::string& text, double x, double y) = 0;

    /// Draws an image with its upper left corner at (x, y), as strong as `alpha` from 0 to 1.
    virtual void DrawImage(const DrawnImage& image, double x, double y, double alpha, Resampling resampling) = 0;

    /// A separate path, for TakePath.
    virtual std::unique_ptr<DrawnPath> MakePath() const = 0;
    /// An image whose rows are written by `fill`, or null when there is no memory or the size is too large.
    virtual std::unique_ptr<DrawnImage> MakeImage(int width, int height,
                                                  const std::function<void(int y, std::uint32_t* row)>& fill) const = 0;
};

}  // namespace umbrant::host
