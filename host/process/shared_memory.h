// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Memory that two processes see: blocks without a name, which end with the last process that has them open.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace umbrant::host {

/// One block, mapped. Its size is fixed for good, so that no process can take its pages away from another.
class SharedMemory {
 public:
    /// Null when memory cannot be had; the bytes are zero.
    static std::shared_ptr<SharedMemory> Create(std::size_t size);
    /// Maps the block behind a descriptor, which it owns from here on. Null when it is not such a block.
    static std::shared_ptr<SharedMemory> Open(int descriptor);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    std::byte* Data() const { return data_; }
    std::size_t Size() const { return size_; }
    int Descriptor() const { return descriptor_; }
    /// A number that no other block of this process had; blocks that were opened have 0.
    std::uint64_t Id() const { return id_; }

 private:
    SharedMemory() = default;
    bool Map();

    std::byte* data_ = nullptr;
    std::size_t size_ = 0;
    int descriptor_ = -1;
    std::uint64_t id_ = 0;
};

/// Blocks that are used again: new pages cost more than a pass over the pixels. Every thread.
class SharedMemoryPool : public std::enable_shared_from_this<SharedMemoryPool> {
 public:
    /// A block of at least this size, its bytes of any value. It returns to the pool with its last owner. Null when
    /// memory cannot be had.
    std::shared_ptr<SharedMemory> Take(std::size_t size);
    /// The blocks that the pool has given up since the last call.
    std::vector<std::uint64_t> TakeDropped();

 private:
    void Return(std::shared_ptr<SharedMemory> block);

    std::mutex mutex_;
    std::vector<std::shared_ptr<SharedMemory>> free_;  ///< the one that was returned last at the end
    std::vector<std::uint64_t> dropped_;
};

}  // namespace umbrant::host
