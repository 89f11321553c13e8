// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A small picture to draw on, through the suites as an effect calls them, and its pixels.

#include <cstdint>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "host/drawing/new_drawing.h"
#include "host/suites/drawbot/canvas.h"
#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

/// A pixel of the picture, premultiplied as a drawing has it.
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
        drawing = NewPicture();
        canvas = std::make_unique<DrawbotCanvas>(*drawing, 2.0f);
        supplier = canvas->Supplier();
        surface = canvas->Surface();
    }

    static std::unique_ptr<Drawing> NewPicture() {
        auto made = NewDrawing("a picture", kSize, kSize, DrawnPixels::kWithAlpha);
        if (!made) throw std::runtime_error(made.error().sentence);
        return std::move(*made);
    }

    Premultiplied At(int x, int y) const {
        const std::uint32_t pixel = drawing->Row(y)[x];
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
    void Clear() { drawing->Clear(); }

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
    std::unique_ptr<Drawing> drawing;
    std::unique_ptr<DrawbotCanvas> canvas;
    DRAWBOT_SupplierRef supplier;
    DRAWBOT_SurfaceRef surface;
};

}  // namespace umbrant::host
