// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/memory_recycler.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "host/compositing/large_pages.h"
#include "host/process/fork_lock.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kLarge = std::size_t{1} << 20;

struct Block {
    std::byte* data;
    std::size_t size;
};

struct Store {
    ForkLock mutex;
    int recyclers = 0;
    std::size_t used = 0;
    std::size_t mostUsed = 0;
    std::size_t kept = 0;
    std::vector<Block> blocks;  ///< the one that was given back first at the front

    void FreeFirst() {
        kept -= blocks.front().size;
        std::free(blocks.front().data);
        blocks.erase(blocks.begin());
    }
};

// Kept: never destroyed, because an effect may give memory back while the program ends.
Store& TheStore() {
    static Store* store = new Store;
    return *store;
}
[[maybe_unused]] const Store& earlyStore = TheStore();  // before there are threads: see fork_lock.h

/// The smallest kept block that holds `size` bytes and wastes at most a quarter; null data for none.
Block TakeKept(Store& store, std::size_t size) {
    auto best = store.blocks.end();
    for (auto block = store.blocks.begin(); block != store.blocks.end(); ++block) {
        if (block->size < size || block->size - size > size / 4) continue;
        if (best == store.blocks.end() || block->size < best->size) best = block;
    }
    if (best == store.blocks.end()) return {nullptr, 0};
    const Block found = *best;
    store.blocks.erase(best);
    store.kept -= found.size;
    return found;
}

}  // namespace

MemoryRecycler::MemoryRecycler() {
    Store& store = TheStore();
    const std::lock_guard lock(store.mutex);
    ++store.recyclers;
}

MemoryRecycler::~MemoryRecycler() {
    Store& store = TheStore();
    const std::lock_guard lock(store.mutex);
    if (--store.recyclers > 0) return;
    while (!store.blocks.empty()) store.FreeFirst();
    store.mostUsed = 0;
}

std::size_t MemoryRecycler::Kept() {
    Store& store = TheStore();
    const std::lock_guard lock(store.mutex);
    return store.kept;
}

std::byte* TakeRecycled(std::size_t size, bool clear, std::size_t* capacity) {
    if (size < kLarge) return nullptr;
    Store& store = TheStore();
    Block block{};
    {
        const std::lock_guard lock(store.mutex);
        if (store.recyclers == 0) return nullptr;
        block = TakeKept(store, size);
        store.used += block.data ? block.size : size;
        store.mostUsed = std::max(store.mostUsed, store.used);
        while (!store.blocks.empty() && store.used + store.kept > store.mostUsed) store.FreeFirst();
    }
    *capacity = block.size;
    if (block.data) {
        if (clear) std::memset(block.data, 0, size);
        return block.data;
    }
    *capacity = size;
    block.data = static_cast<std::byte*>(clear ? std::calloc(size, 1) : std::malloc(size));
    if (!block.data) {
        const std::lock_guard lock(store.mutex);
        while (!store.blocks.empty()) store.FreeFirst();
        block.data = static_cast<std::byte*>(clear ? std::calloc(size, 1) : std::malloc(size));
        if (!block.data) store.used -= size;
    }
    AskForLargePages(block.data, size);
    return block.data;
}

void GiveRecycled(std::byte* data, std::size_t capacity) {
    Store& store = TheStore();
    const std::lock_guard lock(store.mutex);
    store.used -= capacity;
    if (store.recyclers == 0 || store.used + store.kept + capacity > store.mostUsed) {
        std::free(data);
        return;
    }
    store.blocks.push_back({data, capacity});
    store.kept += capacity;
}

}  // namespace umbrant::host
