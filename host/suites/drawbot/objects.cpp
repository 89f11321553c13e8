// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/drawbot/objects.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "host/process/fork_lock.h"
#include "host/suites/services.h"

namespace umbrant::host {

namespace {

struct Counted {
    DrawObject object;
    int users = 1;
};

struct Table {
    ForkLock mutex;
    std::unordered_map<const void*, std::unique_ptr<Counted>> objects;
};

// Kept: never destroyed, because an effect may give objects back while the program ends.
Table& TheTable() {
    static Table* table = new Table;
    return *table;
}
[[maybe_unused]] const Table& earlyTable = TheTable();  // before there are threads: see fork_lock.h

/// The order of one pixel's bytes; alpha at -1 is always opaque.
struct Layout {
    int bytes, alpha, red, green, blue;
    bool premultiplied;
};

/// In the order of the layouts' numbers.
constexpr Layout kLayouts[] = {
    {3, -1, 0, 1, 2, false}, {3, -1, 2, 1, 0, false},  // 24 bits, red first and blue first
    {4, -1, 0, 1, 2, false}, {4, -1, 2, 1, 0, false},  // the same with a byte that nobody uses
    {4, 0, 1, 2, 3, false},  {4, 0, 1, 2, 3, true},    // alpha, red, green, blue
    {4, 3, 2, 1, 0, false},  {4, 3, 2, 1, 0, true},    // blue, green, red, alpha
};

uint32_t Multiplied(uint32_t channel, uint32_t alpha) {
    return (channel * alpha + 127) / 255;
}

/// One pixel as a drawing has it. A premultiplied channel above its alpha is none, and cut.
uint32_t PremultipliedPixel(const unsigned char* pixel, const Layout& layout) {
    const uint32_t alpha = layout.alpha < 0 ? 255 : pixel[layout.alpha];
    const auto channel = [&](int place) {
        const uint32_t value = pixel[place];
        return layout.premultiplied ? std::min(value, alpha) : Multiplied(value, alpha);
    };
    return alpha << 24 | channel(layout.red) << 16 | channel(layout.green) << 8 | channel(layout.blue);
}

}  // namespace

DRAWBOT_ObjectRef NewDrawObject(DrawObject object) {
    auto counted = std::make_unique<Counted>(Counted{std::move(object)});
    auto* reference = reinterpret_cast<DRAWBOT_ObjectRef>(counted.get());
    {
        Table& table = TheTable();
        const std::lock_guard lock(table.mutex);
        table.objects.emplace(reference, std::move(counted));
    }
    Count(Resource::kDrawObject, 1);
    return reference;
}

bool RetainDrawObject(DRAWBOT_ObjectRef reference) {
    {
        Table& table = TheTable();
        const std::lock_guard lock(table.mutex);
        const auto found = table.objects.find(reference);
        if (found != table.objects.end()) {
            ++found->second->users;
            return true;
        }
    }
    Report("an invalid or released drawing object was retained");
    return false;
}

bool ReleaseDrawObject(DRAWBOT_ObjectRef reference) {
    std::unique_ptr<Counted> last;
    bool live = false;
    {
        Table& table = TheTable();
        const std::lock_guard lock(table.mutex);
        const auto found = table.objects.find(reference);
        live = found != table.objects.end();
        if (live && --found->second->users == 0) {
            last = std::move(found->second);
            table.objects.erase(found);
        }
    }
    if (!live) Report("an invalid or released drawing object was released");
    if (last) Count(Resource::kDrawObject, -1);
    return live;
}

DrawObject* FindDrawObject(const void* reference, const char* call) {
    {
        Table& table = TheTable();
        const std::lock_guard lock(table.mutex);
        const auto found = table.objects.find(reference);
        if (found != table.objects.end()) return &found->second->object;
    }
    Report(std::string(call) + " was called with an invalid or released drawing object");
    return nullptr;
}

void ReportWrongKind(const char* call) {
    Report(std::string(call) + " was called with a drawing object of another kind");
}

std::unique_ptr<DrawnImage> ImageFromBytes(const Drawing& drawing, int width, int height, int rowBytes,
                                           DRAWBOT_PixelLayout layout, const void* bytes) {
    const bool known = layout >= 0 && layout < static_cast<int>(std::size(kLayouts));
    if (!known || width < 1 || height < 1 || !bytes) return nullptr;
    const Layout& lie = kLayouts[layout];
    if (rowBytes < static_cast<int64_t>(width) * lie.bytes) return nullptr;
    return drawing.MakeImage(width, height, [&](int y, std::uint32_t* pixels) {
        const unsigned char* row = static_cast<const unsigned char*>(bytes) + static_cast<ptrdiff_t>(y) * rowBytes;
        for (int x = 0; x < width; ++x) {
            pixels[x] = PremultipliedPixel(row + static_cast<ptrdiff_t>(x) * lie.bytes, lie);
        }
    });
}

}  // namespace umbrant::host
