// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/world.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "host/compositing/row_pool.h"
#include "host/process/fork_lock.h"

namespace umbrant::host {

namespace {

constexpr int kRowAlignment = 16;

/// Its address marks a record as one of ours. The mark and the format are in reserved fields, so they travel with a
/// by-value copy of the record.
char ownMark;

/// The memory of every world that lives: its first byte and the byte after its last.
struct Registry {
    ForkLock mutex;
    std::map<std::int64_t, std::int64_t> blocks;
};
// Kept: never destroyed, because an effect may call the host while the program ends.
Registry& TheRegistry() {
    static Registry* registry = new Registry;
    return *registry;
}
[[maybe_unused]] const Registry& earlyRegistry = TheRegistry();  // before there are threads: see fork_lock.h

/// Whether all pixels that a record describes are in the memory of one world. Effects copy records, and may change
/// them.
bool LeadsToAWorld(const PF_EffectWorld& world) {
    if (world.width <= 0 || world.height <= 0) return true;
    if (!world.data) return false;
    const std::int64_t pixel = world.reserved_long1 == PF_PixelFormat_ARGB128  ? 16
                               : world.reserved_long1 == PF_PixelFormat_ARGB64 ? 8
                                                                               : 4;
    // Rows may run from the bottom up.
    const std::int64_t lastRow = std::int64_t{world.rowbytes} * (world.height - 1);
    const auto address = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(world.data));
    const std::int64_t begin = address + std::min<std::int64_t>(lastRow, 0);
    const std::int64_t end = address + std::max<std::int64_t>(lastRow, 0) + pixel * world.width;
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto after = registry.blocks.upper_bound(begin);
    return after != registry.blocks.begin() && end <= std::prev(after)->second;
}

/// Bytes from one row to the next; nothing for a shape that no world has.
std::optional<std::int64_t> RowBytesOf(int width, int height, Depth depth) {
    if (width < 0 || height < 0) return std::nullopt;
    const std::int64_t pixelBytes = BytesPerPixel(depth);
    std::int64_t rowBytes =
        ((static_cast<std::int64_t>(width) + 1) * pixelBytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    if (const auto padding = CurrentGuardRules().rowPadding) rowBytes = width * pixelBytes + *padding;
    if (rowBytes > std::numeric_limits<A_long>::max()) return std::nullopt;
    return rowBytes;
}

/// Fills with half-transparent light pixels, so that an effect which leaves a pixel unwritten is seen at once. On all
/// cores: these are the first writes into the memory, and the system hands its pages out only then.
template <typename Channel>
void FillPattern(World& world, Channel alpha, Channel colour) {
    const Channel pixel[4] = {alpha, colour, colour, colour};
    const auto size = static_cast<std::size_t>(world.Def().rowbytes);
    ForEachRowRange(world.Height(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            std::byte* row = world.Row(y);
            for (std::size_t at = 0; at + sizeof(pixel) <= size; at += sizeof(pixel)) {
                std::memcpy(row + at, pixel, sizeof(pixel));
            }
        }
    });
}

}  // namespace

/// The record, and the pixels that its `data` points to.
struct World::Block {
    PF_EffectWorld def{};
    Depth depth = Depth::k8;
    GuardedBytes bytes;

    Block() = default;
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() {
        Registry& registry = TheRegistry();
        const std::lock_guard lock(registry.mutex);
        registry.blocks.erase(Address());
    }
    void Register() const {
        if (!bytes.Data()) return;
        Registry& registry = TheRegistry();
        const std::lock_guard lock(registry.mutex);
        registry.blocks.insert_or_assign(Address(), Address() + static_cast<std::int64_t>(bytes.Size()));
    }
    std::int64_t Address() const { return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(bytes.Data())); }
};

int BytesPerPixel(Depth depth) {
    return static_cast<int>(depth) / 8 * 4;
}

PF_PixelFormat PixelFormatOf(Depth depth) {
    switch (depth) {
        case Depth::k8:
            return PF_PixelFormat_ARGB32;
        case Depth::k16:
            return PF_PixelFormat_ARGB64;
        case Depth::k32:
            return PF_PixelFormat_ARGB128;
    }
    return PF_PixelFormat_INVALID;
}

PF_PixelFormat PixelFormatOf(const PF_EffectWorld& world) {
    return world.reserved0 == &ownMark && LeadsToAWorld(world) ? world.reserved_long1 : PF_PixelFormat_INVALID;
}

Depth DepthOf(const PF_EffectWorld& world) {
    switch (world.reserved_long1) {
        case PF_PixelFormat_ARGB128:
            return Depth::k32;
        case PF_PixelFormat_ARGB64:
            return Depth::k16;
        default:
            return Depth::k8;
    }
}

void World::Deleter::operator()(Block* block) const {
    delete block;
}

World World::Create(int width, int height, Depth depth, bool clear) {
    World world = Allocate(width, height, depth, clear);
    if (!clear && !world.IsNull()) world.FillUnwritten();
    return world;
}

World World::CreateUnwritten(int width, int height, Depth depth) {
    return Allocate(width, height, depth, false);
}

World World::CreateWithoutPixels(int width, int height, Depth depth) {
    if (!BytesOf(width, height, depth)) return {};
    return Describe({}, width, height, depth);
}

World World::CreateOver(GuardedBytes bytes, int width, int height, Depth depth) {
    const auto needed = BytesOf(width, height, depth);
    if (!needed || bytes.Size() < *needed) return {};
    return Describe(std::move(bytes), width, height, depth);
}

World World::Borrow(const World& lender) {
    World world = CreateWithoutPixels(lender.Width(), lender.Height(), lender.PixelDepth());
    if (!world.IsNull()) world.Def() = lender.Def();
    return world;
}

std::optional<std::size_t> World::BytesOf(int width, int height, Depth depth) {
    const auto rowBytes = RowBytesOf(width, height, depth);
    if (!rowBytes) return std::nullopt;
    if (width == 0) return 0;
    return static_cast<std::size_t>(*rowBytes) * static_cast<std::size_t>(height);
}

void World::FillUnwritten() {
    if (PixelDepth() == Depth::k8) FillPattern<A_u_char>(*this, 128, 205);
    if (PixelDepth() == Depth::k16) FillPattern<A_u_short>(*this, 16384, 26214);
    if (PixelDepth() == Depth::k32) FillPattern<PF_FpShort>(*this, 0.5f, 0.8f);
}

World World::Allocate(int width, int height, Depth depth, bool clear) {
    const auto size = BytesOf(width, height, depth);
    if (!size) return {};
    GuardedBytes bytes;
    if (*size > 0) {
        bytes = GuardedBytes::Create(*size, clear);
        if (!bytes.Data()) return {};
    }
    return Describe(std::move(bytes), width, height, depth);
}

World World::Describe(GuardedBytes bytes, int width, int height, Depth depth) {
    World world;
    std::unique_ptr<Block, Deleter> block(new (std::nothrow) Block);
    if (!block) return world;
    PF_EffectWorld& def = block->def;
    block->bytes = std::move(bytes);
    if (width > 0 && height > 0) def.data = reinterpret_cast<PF_PixelPtr>(block->bytes.Data());
    block->Register();
    block->depth = depth;
    def.reserved0 = &ownMark;
    def.reserved_long1 = PixelFormatOf(depth);
    def.world_flags = PF_WorldFlag_WRITEABLE | (depth == Depth::k16 ? PF_WorldFlag_DEEP : 0);
    def.rowbytes = static_cast<A_long>(*RowBytesOf(width, height, depth));
    def.width = width;
    def.height = height;
    def.extent_hint = {0, 0, width, height};
    def.pix_aspect_ratio = {1, 1};
    world.block_ = std::move(block);
    return world;
}

PF_EffectWorld& World::Def() {
    return block_->def;
}

const PF_EffectWorld& World::Def() const {
    return block_->def;
}

const GuardedBytes& World::Memory() const {
    return block_->bytes;
}

Depth World::PixelDepth() const {
    return block_->depth;
}

std::byte* World::Row(int y) {
    if (!block_->def.data) return nullptr;
    return reinterpret_cast<std::byte*>(block_->def.data) + static_cast<std::ptrdiff_t>(y) * block_->def.rowbytes;
}

const std::byte* World::Row(int y) const {
    return const_cast<World*>(this)->Row(y);
}

}  // namespace umbrant::host
