// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Images: what a test compares, the guarded memory that a plug-in gets, and the images of one frame with who holds
// them.

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/openfx/host/effect.h"

namespace umbrant::ofx {

enum class Depth { kByte, kFloat };
/// "OfxBitDepthByte" or "OfxBitDepthFloat".
std::string DepthName(Depth depth);

inline int WidthOf(const OfxRectI& area) {
    return area.x2 - area.x1;
}
inline int HeightOf(const OfxRectI& area) {
    return area.y2 - area.y1;
}
inline bool Contains(const OfxRectI& area, int x, int y) {
    return x >= area.x1 && x < area.x2 && y >= area.y1 && y < area.y2;
}

/// An image as numbers: red, green, blue, alpha; 0 to 255 for bytes. y points upwards.
struct Picture {
    OfxRectI bounds{};
    Depth depth = Depth::kByte;
    std::vector<float> channels{};

    Picture() = default;
    Picture(const OfxRectI& area, Depth kind);
    float* At(int x, int y);
    const float* At(int x, int y) const { return const_cast<Picture*>(this)->At(x, y); }
};

/// The first pixel in which two images differ, with both values, as a sentence; empty if no channel differs by more
/// than the tolerance. Says so if one is the other upside down.
std::string Difference(const Picture& actual, const Picture& expected, float tolerance = 0);

struct Layout {
    OfxRectI bounds{};
    Depth depth = Depth::kByte;
    bool negativeRows = false;
    int gap = 0;  ///< bytes between rows
};

/// The memory of an image with guard bytes before, after and between its rows. Every pixel begins with a pattern of its
/// own, so that a pixel that was never written can be seen.
class GuardedImage {
 public:
    explicit GuardedImage(const Layout& layout);

    /// The first byte of the bottom row, and the step to the row above.
    void* Data();
    int RowBytes() const;
    const Layout& TheLayout() const { return layout_; }
    void Write(const Picture& picture);
    Picture Read() const;
    bool Written(int x, int y) const;
    /// False if a byte outside of all pixels has changed.
    bool GuardsIntact() const;

 private:
    std::size_t Offset(int x, int y) const;
    std::size_t PixelBytes() const { return layout_.depth == Depth::kByte ? 4 : 16; }
    void Pattern(int x, int y, std::byte* pixel) const;

    Layout layout_;
    std::size_t row_ = 0;     ///< bytes from a row to the next in memory
    std::size_t margin_ = 0;  ///< guard bytes at either end
    std::vector<std::byte> memory_;
};

class FrameJob;

/// An image that a plug-in holds.
class ImageSet : public PropertySet {
 public:
    ImageSet(Host& host, FrameJob& owner, const Clip& clip);

    FrameJob& job;
    const Clip& clip;
};

/// One frame: its images, and the property sets that the plug-in holds of them.
class FrameJob {
 public:
    struct Entry {
        Clip* clip = nullptr;
        GuardedImage* image = nullptr;  ///< null: the clip has no image at this time
        std::string premultiplication{};
        bool nullData = false;  ///< the image has no data
    };

    FrameJob(double time, double scaleX, double scaleY, double pixelAspect);
    ~FrameJob();

    void Add(Entry entry) { entries_.push_back(std::move(entry)); }
    /// Gives out the image of a clip; Failed if there is none.
    OfxStatus Fetch(Clip& clip, double time, OfxPropertySetHandle* set);
    /// Takes an image back, and ends its property set.
    void Release(const ImageSet& set);
    /// The names of the clips whose images are held.
    std::vector<std::string> Held() const;

    std::atomic<int> abortCalls{0};
    int abortAt = 0;  ///< the call of `abort` from which on the frame is to stop; 0: never

 private:
    double time_, scaleX_, scaleY_, pixelAspect_;
    std::vector<Entry> entries_;
    mutable std::mutex mutex_;
    std::vector<std::unique_ptr<ImageSet>> held_;
};

}  // namespace umbrant::ofx
