// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/guarded_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "host/compositing/large_pages.h"
#include "host/compositing/memory_recycler.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kAlignment = 16;
constexpr std::byte kSlack{0xC7};

GuardRules rules;

std::size_t PageSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t RoundedUp(std::size_t size, std::size_t unit) {
    return (size + unit - 1) / unit * unit;
}

}  // namespace

void SetGuardRules(const GuardRules& wanted) {
    rules = wanted;
}

const GuardRules& CurrentGuardRules() {
    return rules;
}

GuardedBytes GuardedBytes::Create(std::size_t size, bool clear) {
    GuardedBytes bytes;
    if (size > std::numeric_limits<std::size_t>::max() / 2) return bytes;
    bytes.size_ = size;
    if (rules.placement == MemoryPlacement::kPlain) {
        bytes.data_ = TakeRecycled(size, clear, &bytes.recycled_);
        if (bytes.data_) return bytes;
        const std::size_t asked = std::max<std::size_t>(size, 1);
        bytes.data_ = static_cast<std::byte*>(clear ? std::calloc(asked, 1) : std::malloc(asked));
        AskForLargePages(bytes.data_, asked);
        return bytes;
    }
    const std::size_t page = PageSize();
    const std::size_t open = RoundedUp(std::max<std::size_t>(size, 1), page);
    void* mapped = mmap(nullptr, open + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) return bytes;
    std::byte* pages = static_cast<std::byte*>(mapped) + page;
    if (mprotect(pages, open, PROT_READ | PROT_WRITE) != 0) {
        munmap(mapped, open + 2 * page);
        return bytes;
    }
    bytes.pages_ = pages;
    bytes.pagesSize_ = open;
    const std::size_t slack = rules.placement == MemoryPlacement::kFlushRight ? open - RoundedUp(size, kAlignment) : 0;
    bytes.data_ = pages + slack;
    std::fill(pages, bytes.data_, kSlack);
    // The pages' other end is watched as far as alignment leaves it open, and on its whole length flush left.
    std::fill(bytes.data_ + size, pages + open, kSlack);
    return bytes;
}

GuardedBytes GuardedBytes::Over(std::byte* data, std::size_t size, std::shared_ptr<void> owner) {
    GuardedBytes bytes;
    bytes.data_ = data;
    bytes.size_ = size;
    bytes.owner_ = std::move(owner);
    return bytes;
}

GuardedBytes::~GuardedBytes() {
    Free();
}

GuardedBytes::GuardedBytes(GuardedBytes&& other) noexcept {
    *this = std::move(other);
}

GuardedBytes& GuardedBytes::operator=(GuardedBytes&& other) noexcept {
    if (this == &other) return *this;
    Free();
    data_ = std::exchange(other.data_, nullptr);
    size_ = std::exchange(other.size_, 0);
    pages_ = std::exchange(other.pages_, nullptr);
    pagesSize_ = std::exchange(other.pagesSize_, 0);
    recycled_ = std::exchange(other.recycled_, 0);
    owner_ = std::move(other.owner_);
    return *this;
}

bool GuardedBytes::SetReadOnly(bool readOnly) const {
    return pages_ && mprotect(pages_, pagesSize_, readOnly ? PROT_READ : PROT_READ | PROT_WRITE) == 0;
}

bool GuardedBytes::SlackIsWhole() const {
    if (!pages_) return true;
    const auto whole = [](const std::byte* begin, const std::byte* end) {
        return std::all_of(begin, end, [](std::byte byte) { return byte == kSlack; });
    };
    return whole(pages_, data_) && whole(data_ + size_, pages_ + pagesSize_);
}

void GuardedBytes::Free() {
    if (owner_) {
        owner_.reset();
    } else if (recycled_ > 0) {
        GiveRecycled(data_, recycled_);
    } else if (!pages_) {
        std::free(data_);
    } else {
        // The addresses stay reserved and guarded, so that a late access is detected.
        (void)mmap(pages_, pagesSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0);
    }
    data_ = pages_ = nullptr;
    recycled_ = 0;
}

}  // namespace umbrant::host
