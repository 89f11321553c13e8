// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Large blocks that are given back in one frame and used again in the next. The system clears a page before it hands it
// out, which takes as long as one more pass over the pixels.

#include <cstddef>

namespace umbrant::host {

/// While one lives, blocks of plain memory from 1 MiB on are kept when they are freed, for the next block of about
/// their size. What is kept and what is in use are together never more than what was in use at one time before. [any]
class MemoryRecycler {
 public:
    MemoryRecycler();
    /// Frees what is kept, with the last one.
    ~MemoryRecycler();
    MemoryRecycler(const MemoryRecycler&) = delete;
    MemoryRecycler& operator=(const MemoryRecycler&) = delete;

    /// Bytes that are kept now.
    static std::size_t Kept();
};

/// Inside host/compositing only: a block of `size` bytes or somewhat more, aligned to 16, or null when no recycler
/// lives, when the block is small or when there is no memory. `*capacity` is what it holds. Its bytes are zero when
/// `clear`.
std::byte* TakeRecycled(std::size_t size, bool clear, std::size_t* capacity);
/// Gives such a block back.
void GiveRecycled(std::byte* data, std::size_t capacity);

}  // namespace umbrant::host
