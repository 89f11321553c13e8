// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF Handle Suite" 2: host memory behind handles.

#include "hostapi/suites/handle_suite.h"

#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "host/compositing/guarded_memory.h"
#include "host/process/fork_lock.h"
#include "host/suites/pf/handles.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

/// Fresh bytes hold this, so that memory which an effect takes for zero is not.
constexpr int kFreshByte = 0xA5;

struct Block {
    char* master = nullptr;
    GuardedBytes bytes;
    A_HandleSize size = 0;
    int locks = 0;
};

/// Every live handle. Handles outlive commands and threads, so there is one table.
struct Table {
    ForkLock mutex;
    std::unordered_map<PF_Handle, std::unique_ptr<Block>> blocks;

    Block* Find(PF_Handle handle) {
        const auto found = blocks.find(handle);
        return found == blocks.end() ? nullptr : found->second.get();
    }
};

// Kept: never destroyed, because an effect may give memory back while the program ends.
Table& TheTable() {
    static Table* table = new Table;
    return *table;
}
[[maybe_unused]] const Table& earlyTable = TheTable();  // before there are threads: see fork_lock.h

GuardedBytes Allocate(A_HandleSize size) {
    return GuardedBytes::Create(static_cast<std::size_t>(size), false);
}

char* Characters(const GuardedBytes& bytes) {
    return reinterpret_cast<char*>(bytes.Data());
}

}  // namespace

PF_Handle NewHandle(A_HandleSize size) {
    auto block = std::make_unique<Block>();
    block->bytes = Allocate(size);
    if (!block->bytes.Data()) return nullptr;
    std::memset(block->bytes.Data(), kFreshByte, static_cast<std::size_t>(size));
    block->size = size;
    block->master = Characters(block->bytes);
    const PF_Handle handle = &block->master;
    Table& table = TheTable();
    {
        const std::lock_guard lock(table.mutex);
        table.blocks.emplace(handle, std::move(block));
    }
    Count(Resource::kHandle, 1);
    return handle;
}

void* LockHandle(PF_Handle handle) {
    if (!handle) return nullptr;
    Table& table = TheTable();
    {
        const std::lock_guard lock(table.mutex);
        if (Block* block = table.Find(handle)) {
            ++block->locks;
            Count(Resource::kLock, 1);
            return block->master;
        }
    }
    Report("a lock of an invalid handle was requested");
    return nullptr;
}

void UnlockHandle(PF_Handle handle) {
    if (!handle) return;
    Table& table = TheTable();
    bool locked = false;
    {
        const std::lock_guard lock(table.mutex);
        if (Block* block = table.Find(handle); block && block->locks > 0) {
            locked = true;
            --block->locks;
        }
    }
    if (locked) {
        Count(Resource::kLock, -1);
    } else {
        Report("a handle was unlocked that was not locked");
    }
}

void DisposeHandle(PF_Handle handle) {
    if (!handle) return;
    Table& table = TheTable();
    std::unique_ptr<Block> block;
    {
        const std::lock_guard lock(table.mutex);
        const auto found = table.blocks.find(handle);
        if (found != table.blocks.end()) {
            block = std::move(found->second);
            table.blocks.erase(found);
        }
    }
    if (!block) {
        Report("an invalid or released handle was disposed of");
        return;
    }
    Count(Resource::kHandle, -1);
    if (block->locks > 0) {
        Report("a handle was disposed of while it was locked");
        Count(Resource::kLock, -block->locks);
    }
    if (!block->bytes.SlackIsWhole()) Report("bytes outside of a handle's memory were written");
}

A_HandleSize HandleSize(PF_Handle handle) {
    if (!handle) return 0;
    Table& table = TheTable();
    {
        const std::lock_guard lock(table.mutex);
        if (const Block* block = table.Find(handle)) return block->size;
    }
    Report("the size of an invalid handle was requested");
    return 0;
}

PF_Err ResizeHandle(A_HandleSize size, PF_Handle* handle) {
    if (!handle || !*handle) return PF_Err_BAD_CALLBACK_PARAM;
    Table& table = TheTable();
    const std::lock_guard lock(table.mutex);
    Block* block = table.Find(*handle);
    if (!block || block->locks > 0) {
        Report(block ? "a locked handle was resized" : "an invalid handle was resized");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    GuardedBytes bytes = Allocate(size);
    if (!bytes.Data()) return PF_Err_OUT_OF_MEMORY;
    const A_HandleSize kept = size < block->size ? size : block->size;
    std::memcpy(bytes.Data(), block->bytes.Data(), static_cast<std::size_t>(kept));
    std::memset(bytes.Data() + kept, kFreshByte, static_cast<std::size_t>(size - kept));
    block->bytes = std::move(bytes);
    block->master = Characters(block->bytes);
    block->size = size;
    return PF_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFHandleSuiteName, Call, Function>;

const PF_HandleSuite1 kHandleSuite = {
    .host_new_handle = Slot<"host_new_handle", NewHandle>(),
    .host_lock_handle = Slot<"host_lock_handle", LockHandle>(),
    .host_unlock_handle = Slot<"host_unlock_handle", UnlockHandle>(),
    .host_dispose_handle = Slot<"host_dispose_handle", DisposeHandle>(),
    .host_get_handle_size = Slot<"host_get_handle_size", HandleSize>(),
    .host_resize_handle = Slot<"host_resize_handle", ResizeHandle>(),
};

}  // namespace umbrant::host
