// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A small picture to draw on, through the suites as an effect calls them, and its pixels.

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

#include "host/suites/drawbot_canvas.h"
#include "tests/host/suites/suites_fixture.h"

/// A pixel of the picture, straight or premultiplied as Cairo has it: premultiplied.
struct Premultiplied {
    int alpha, red, green, blue;
    bool operator==(const Premultiplied&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Premultiplied& pixel) {
    return out << "(" << pixel.alpha << ", " << pixel.red << ", " << pixel.green << ", " << pixel.blue << ")";
}

inline constexpr Premultiplied kClear{0, 0, 0, 0};
inline constexpr Premultiplied kRed{255, 255, 0, 0};
inline constexpr Premultiplied kGreen{255, 0, 255, 0};
inline constexpr Premultiplied kBlue{255, 0, 0, 255};

class DrawbotTest : public SuitesTest {
 protected:
    static constexpr int kSize = 16;

    DrawbotTest() {
        picture = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize);
        cairo = cairo_create(picture);
        canvas = std::make_unique<DrawbotCanvas>(cairo, 2.0f);
        supplier = canvas->Supplier();
        surface = canvas->Surface();
    }
    ~DrawbotTest() override {
        canvas.reset();
        cairo_destroy(cairo);
        cairo_surface_destroy(picture);
    }

    Premultiplied At(int x, int y) const {
        cairo_surface_flush(picture);
        const unsigned char* row = cairo_image_surface_get_data(picture) + y * cairo_image_surface_get_stride(picture);
        const uint32_t pixel = reinterpret_cast<const uint32_t*>(row)[x];
        return {static_cast<int>(pixel >> 24), static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
                static_cast<int>(pixel & 255)};
    }
    /// How many pixels are not clear.
    int Covered() const {
        int covered = 0;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) covered += At(x, y) != kClear;
        }
        return covered;
    }
    void Clear() {
        cairo_save(cairo);
        cairo_reset_clip(cairo);
        cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
        cairo_paint(cairo);
        cairo_restore(cairo);
    }

    SPErr Paint(const DRAWBOT_ColorRGBA& color, const DRAWBOT_RectF32& rect) {
        return kDrawbotSurfaceSuite.PaintRect(surface, &color, &rect);
    }
    /// An image of these bytes; null when it is refused.
    DRAWBOT_ImageRef Image(int width, int height, int rowBytes, DRAWBOT_PixelLayout layout, const void* bytes) {
        DRAWBOT_ImageRef image = nullptr;
        kDrawbotSupplierSuite.NewImageFromBuffer(supplier, width, height, rowBytes, layout, bytes, &image);
        return image;
    }
    DRAWBOT_BrushRef Brush(const DRAWBOT_ColorRGBA& color) {
        DRAWBOT_BrushRef brush = nullptr;
        kDrawbotSupplierSuite.NewBrush(supplier, &color, &brush);
        return brush;
    }
    DRAWBOT_PathRef Path() {
        DRAWBOT_PathRef path = nullptr;
        kDrawbotSupplierSuite.NewPath(supplier, &path);
        return path;
    }
    template <typename Reference>
    void Release(Reference reference) {
        EXPECT_EQ(kDrawbotSupplierSuite.ReleaseObject(reinterpret_cast<DRAWBOT_ObjectRef>(reference)), 0);
    }
    int Objects() const { return Open(Resource::kDrawObject); }

    static constexpr DRAWBOT_ColorRGBA kRedColor{1, 0, 0, 1}, kBlueColor{0, 0, 1, 1};
    cairo_surface_t* picture;
    cairo_t* cairo;
    std::unique_ptr<DrawbotCanvas> canvas;
    DRAWBOT_SupplierRef supplier;
    DRAWBOT_SurfaceRef surface;
};
