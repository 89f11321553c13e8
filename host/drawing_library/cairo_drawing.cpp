// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Drawings by Cairo, as the one class behind the entry of a shared object.

#include <cairo.h>

#include <new>
#include <utility>

#include "host/drawing/drawing_entry.h"

namespace umbrant::host {

namespace {

struct EndPen {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
struct EndSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct EndPath {
    void operator()(cairo_path_t* path) const { cairo_path_destroy(path); }
};
using Pen = std::unique_ptr<cairo_t, EndPen>;
using Surface = std::unique_ptr<cairo_surface_t, EndSurface>;

/// The figures of a pen, for a separate path and for a drawing.
template <typename Base>
class Figures : public Base {
 public:
    explicit Figures(Pen pen) : pen_(std::move(pen)) {}

    cairo_t* Cairo() const { return pen_.get(); }

    void MoveTo(double x, double y) override { cairo_move_to(Cairo(), x, y); }
    void LineTo(double x, double y) override { cairo_line_to(Cairo(), x, y); }
    void CurveTo(double x1, double y1, double x2, double y2, double x, double y) override {
        cairo_curve_to(Cairo(), x1, y1, x2, y2, x, y);
    }
    void AddRect(double left, double top, double width, double height) override {
        cairo_rectangle(Cairo(), left, top, width, height);
    }
    void AddArc(double x, double y, double radius, double from, double to, bool backwards) override {
        (backwards ? cairo_arc_negative : cairo_arc)(Cairo(), x, y, radius, from, to);
    }
    void Close() override { cairo_close_path(Cairo()); }

 private:
    Pen pen_;
};

using CairoPath = Figures<DrawnPath>;

class CairoImage : public DrawnImage {
 public:
    explicit CairoImage(Surface surface) : surface_(std::move(surface)) {}
    cairo_surface_t* Pixels() const { return surface_.get(); }

 private:
    Surface surface_;
};

std::uint32_t* RowOf(cairo_surface_t* surface, int y) {
    unsigned char* const bytes = cairo_image_surface_get_data(surface);
    // A surface's rows are aligned for its pixels.
    return reinterpret_cast<std::uint32_t*>(bytes +
                                            static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface));
}

class CairoDrawing : public Figures<Drawing> {
 public:
    CairoDrawing(Pen pen, cairo_surface_t* surface) : Figures(std::move(pen)), surface_(surface) {}

    int Width() const override { return cairo_image_surface_get_width(surface_); }
    int Height() const override { return cairo_image_surface_get_height(surface_); }
    const std::uint32_t* Row(int y) override {
        cairo_surface_flush(surface_);
        return RowOf(surface_, y);
    }
    void Flush() override { cairo_surface_flush(surface_); }
    void Clear() override {
        cairo_save(Cairo());
        cairo_reset_clip(Cairo());
        cairo_set_operator(Cairo(), CAIRO_OPERATOR_CLEAR);
        cairo_paint(Cairo());
        cairo_restore(Cairo());
    }

    void Save() override { cairo_save(Cairo()); }
    void Restore() override { cairo_restore(Cairo()); }

    DrawingMatrix Matrix() const override {
        cairo_matrix_t matrix;
        cairo_get_matrix(Cairo(), &matrix);
        return {matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0};
    }
    void SetMatrix(const DrawingMatrix& matrix) override {
        const cairo_matrix_t same{matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0};
        cairo_set_matrix(Cairo(), &same);
    }
    void ClipTo(double left, double top, double width, double height) override {
        cairo_new_path(Cairo());
        cairo_rectangle(Cairo(), left, top, width, height);
        cairo_clip(Cairo());
    }
    DrawingBounds ClipBounds() const override {
        DrawingBounds bounds{};
        cairo_clip_extents(Cairo(), &bounds.left, &bounds.top, &bounds.right, &bounds.bottom);
        return bounds;
    }

    void SetColor(double red, double green, double blue, double alpha) override {
        cairo_set_source_rgba(Cairo(), red, green, blue, alpha);
    }
    void SetEdges(DrawnEdges edges) override {
        constexpr cairo_antialias_t kAntiAlias[] = {CAIRO_ANTIALIAS_NONE, CAIRO_ANTIALIAS_GOOD, CAIRO_ANTIALIAS_BEST};
        cairo_set_antialias(Cairo(), kAntiAlias[static_cast<int>(edges)]);
    }
    void SetLineWidth(double width) override { cairo_set_line_width(Cairo(), width); }
    void SetDashes(double on, double off) override {
        const double dashes[] = {on, off};
        cairo_set_dash(Cairo(), dashes, 2, 0);
    }
    void SetRoundCaps() override { cairo_set_line_cap(Cairo(), CAIRO_LINE_CAP_ROUND); }
    void SetRoundJoins() override { cairo_set_line_join(Cairo(), CAIRO_LINE_JOIN_ROUND); }

    void NewPath() override { cairo_new_path(Cairo()); }
    void TakePath(const DrawnPath& path) override {
        const std::unique_ptr<cairo_path_t, EndPath> copy(cairo_copy_path(static_cast<const CairoPath&>(path).Cairo()));
        cairo_new_path(Cairo());
        cairo_append_path(Cairo(), copy.get());
    }
    void Fill(FillRule rule) override {
        cairo_set_fill_rule(Cairo(), rule == FillRule::kEvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        cairo_fill(Cairo());
    }
    void Stroke() override { cairo_stroke(Cairo()); }
    void FillAndKeep() override {
        cairo_set_fill_rule(Cairo(), CAIRO_FILL_RULE_WINDING);
        cairo_fill_preserve(Cairo());
    }

    void SetFont(const char* family, double size) override {
        cairo_select_font_face(Cairo(), family, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(Cairo(), size);
    }
    void SetUnhintedText() override {
        cairo_font_options_t* const options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_set_font_options(Cairo(), options);
        cairo_font_options_destroy(options);
    }
    double FontAscent() const override { return FontExtents().ascent; }
    double FontDescent() const override { return FontExtents().descent; }
    double TextWidth(const std::string& text) const override {
        cairo_text_extents_t extents;
        cairo_text_extents(Cairo(), text.c_str(), &extents);
        return extents.x_advance;
    }
    void DrawText(const std::string& text, double x, double y) override {
        cairo_move_to(Cairo(), x, y);
        cairo_show_text(Cairo(), text.c_str());
        cairo_new_path(Cairo());
    }

    void DrawImage(const DrawnImage& image, double x, double y, double alpha, Resampling resampling) override {
        constexpr cairo_filter_t kFilters[] = {CAIRO_FILTER_NEAREST, CAIRO_FILTER_GOOD, CAIRO_FILTER_BEST};
        cairo_save(Cairo());
        cairo_set_source_surface(Cairo(), static_cast<const CairoImage&>(image).Pixels(), x, y);
        cairo_pattern_set_filter(cairo_get_source(Cairo()), kFilters[static_cast<int>(resampling)]);
        cairo_paint_with_alpha(Cairo(), alpha);
        cairo_restore(Cairo());
    }

    std::unique_ptr<DrawnPath> MakePath() const override {
        // On pixels that are not shown.
        const Surface unseen(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
        return std::make_unique<CairoPath>(Pen(cairo_create(unseen.get())));
    }
    std::unique_ptr<DrawnImage> MakeImage(int width, int height,
                                          const std::function<void(int y, std::uint32_t* row)>& fill) const override {
        Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
        if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
        cairo_surface_flush(surface.get());
        for (int y = 0; y < height; ++y) fill(y, RowOf(surface.get(), y));
        cairo_surface_mark_dirty(surface.get());
        return std::make_unique<CairoImage>(std::move(surface));
    }

 private:
    cairo_font_extents_t FontExtents() const {
        cairo_font_extents_t extents;
        cairo_font_extents(Cairo(), &extents);
        return extents;
    }

    cairo_surface_t* const surface_;  ///< the pen's
};

}  // namespace

Drawing* UmbrantNewDrawing(int width, int height, bool isOpaque) {
    const Surface surface(
        cairo_image_surface_create(isOpaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, width, height));
    Pen pen(cairo_create(surface.get()));
    if (cairo_status(pen.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return new CairoDrawing(std::move(pen), surface.get());
}

}  // namespace umbrant::host
