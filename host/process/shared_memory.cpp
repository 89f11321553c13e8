// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/shared_memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <utility>

namespace umbrant::host {

namespace {

constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

/// Blocks that wait to be used again. A frame has a layer, a texture and an output.
constexpr std::size_t kMostFree = 3;

}  // namespace

std::shared_ptr<SharedMemory> SharedMemory::Create(std::size_t size) {
    static std::atomic<std::uint64_t> last{0};
    if (size == 0 || size > static_cast<std::size_t>(std::numeric_limits<off_t>::max())) return nullptr;
    std::shared_ptr<SharedMemory> block(new SharedMemory);
    block->size_ = size;
    block->id_ = ++last;
    block->descriptor_ = memfd_create("umbrant-pixels", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (block->descriptor_ < 0) return nullptr;
    // The pages are taken here: want of memory is an answer now, and would be a signal at the first touch.
    int error = 0;
    do {
        error = posix_fallocate(block->descriptor_, 0, static_cast<off_t>(size));
    } while (error == EINTR);
    if (error != 0 || fcntl(block->descriptor_, F_ADD_SEALS, kSeals) != 0 || !block->Map()) return nullptr;
    return block;
}

std::shared_ptr<SharedMemory> SharedMemory::Open(int descriptor) {
    std::shared_ptr<SharedMemory> block(new SharedMemory);
    block->descriptor_ = descriptor;
    struct stat status {};
    const int seals = fcntl(descriptor, F_GET_SEALS);
    if (seals < 0 || (seals & kSeals) != kSeals || fstat(descriptor, &status) != 0 || status.st_size <= 0) {
        return nullptr;
    }
    block->size_ = static_cast<std::size_t>(status.st_size);
    return block->Map() ? block : nullptr;
}

SharedMemory::~SharedMemory() {
    if (data_) munmap(data_, size_);
    if (descriptor_ >= 0) close(descriptor_);
}

bool SharedMemory::Map() {
    void* mapped = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, descriptor_, 0);
    if (mapped == MAP_FAILED) return false;
    data_ = static_cast<std::byte*>(mapped);
    return true;
}

std::shared_ptr<SharedMemory> SharedMemoryPool::Take(std::size_t size) {
    std::shared_ptr<SharedMemory> block;
    {
        const std::lock_guard lock(mutex_);
        // The smallest that is large enough, unless most of it would be unused.
        auto best = free_.end();
        for (auto each = free_.begin(); each != free_.end(); ++each) {
            if ((*each)->Size() < size || (*each)->Size() / 4 > size) continue;
            if (best == free_.end() || (*each)->Size() < (*best)->Size()) best = each;
        }
        if (best != free_.end()) {
            block = std::move(*best);
            free_.erase(best);
        }
    }
    if (!block) block = SharedMemory::Create(size);
    if (!block) return nullptr;
    SharedMemory* const taken = block.get();
    return {taken, [pool = shared_from_this(), block = std::move(block)](SharedMemory*) mutable {
                pool->Return(std::move(block));
            }};
}

std::vector<std::uint64_t> SharedMemoryPool::TakeDropped() {
    const std::lock_guard lock(mutex_);
    return std::exchange(dropped_, {});
}

void SharedMemoryPool::Return(std::shared_ptr<SharedMemory> block) {
    std::shared_ptr<SharedMemory> ended;
    const std::lock_guard lock(mutex_);
    free_.push_back(std::move(block));
    if (free_.size() <= kMostFree) return;
    ended = std::move(free_.front());
    free_.erase(free_.begin());
    dropped_.push_back(ended->Id());
}

}  // namespace umbrant::host
