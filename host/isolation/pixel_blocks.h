// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pixels on their way to a module's process: blocks of shared memory, used again from frame to frame, and what that
// process knows of them.

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "host/compositing/world.h"
#include "host/process/shared_memory.h"
#include "host/result.h"

namespace umbrant::host {

/// A message that is being made, with the blocks that it names: they are to be held until it is answered.
struct Parcel {
    nlohmann::json content;
    std::vector<int> descriptors;
    std::vector<std::shared_ptr<SharedMemory>> blocks;
};

/// For one process at a time; not for several threads at once.
class PixelBlocks {
 public:
    /// Null when memory cannot be had.
    std::shared_ptr<SharedMemory> Take(std::size_t size) { return pool_->Take(size); }
    /// Adds a block to the message, and its descriptor unless the process has it.
    void Attach(Parcel& parcel, const std::shared_ptr<SharedMemory>& block);
    /// Copies a world's pixels into a block and names it in the message. Fails with `ErrorKind::kInternal`.
    Result<Done> Put(const World& world, const char* name, Parcel& parcel);
    /// Names the blocks that the process need not keep any more.
    void NameDropped(Parcel& parcel);
    /// Another process begins, which knows none.
    void ForgetAll() { known_.clear(); }

 private:
    const std::shared_ptr<SharedMemoryPool> pool_ = std::make_shared<SharedMemoryPool>();
    std::set<std::uint64_t> known_;
};

Failure NoPixelMemory(std::size_t bytes);

}  // namespace umbrant::host
