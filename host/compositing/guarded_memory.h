// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Memory that effects get to touch: the bytes of worlds and of handles. Usually that is the C library's memory. A judge
// of effects asks for pages of its own instead, with inaccessible guard pages before and after them, so that a byte
// written or read outside ends the process on the spot, also when a driver does it on the effect's behalf; released
// pages stay guarded, so that a late access does the same.

#include <cstddef>
#include <memory>
#include <optional>

namespace umbrant::host {

/// The position of guarded bytes between their guard pages.
enum class MemoryPlacement {
    kPlain,       ///< the C library's memory, no pages around it
    kFlushLeft,   ///< the first byte follows a guard page
    kFlushRight,  ///< a guard page follows the last byte; up to 15 bytes between them, for alignment, are checked
};

/// How memory is placed from now on, in the whole process.
struct GuardRules {
    MemoryPlacement placement = MemoryPlacement::kPlain;
    /// Bytes added to the shortest possible row of a world; none for the usual padding.
    std::optional<int> rowPadding;
};

/// Set before the threads start whose memory is to follow the rules. Blocks remember the rules that they were made by.
void SetGuardRules(const GuardRules& wanted);
const GuardRules& CurrentGuardRules();

/// A block of bytes for effects, aligned to 16. Move-only; frees, or guards, its bytes when destroyed.
class GuardedBytes {
 public:
    GuardedBytes() = default;
    /// `size` may be 0. Null (Data() is null) when memory cannot be had. Bytes are zero when `clear`.
    static GuardedBytes Create(std::size_t size, bool clear);
    /// Somebody else's bytes, aligned to 16, for as long as `owner` is held. The rules do not hold for them.
    static GuardedBytes Over(std::byte* data, std::size_t size, std::shared_ptr<void> owner);
    ~GuardedBytes();
    GuardedBytes(GuardedBytes&& other) noexcept;
    GuardedBytes& operator=(GuardedBytes&& other) noexcept;

    std::byte* Data() const { return data_; }
    std::size_t Size() const { return size_; }
    /// Makes the bytes, and everything on their pages, read-only or writeable again. False without separate pages.
    bool SetReadOnly(bool readOnly) const;
    /// Whether the watched bytes between the block and its pages' ends are as they were. True without any.
    bool SlackIsWhole() const;

 private:
    void Free();
    std::byte* data_ = nullptr;
    std::size_t size_ = 0;
    std::byte* pages_ = nullptr;  ///< the open pages; null for the C library's memory
    std::size_t pagesSize_ = 0;
    std::size_t recycled_ = 0;     ///< bytes of a block that goes back to the recycler; 0 for all others
    std::shared_ptr<void> owner_;  ///< of bytes that are not this object's
};

}  // namespace umbrant::host
