// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/large_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace umbrant::host {

void AskForLargePages([[maybe_unused]] std::byte* data, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
    // Taking such a block page by page costs more than a pass over the pixels.
    constexpr std::size_t kWorthwhile = std::size_t{4} << 20;
    if (!data || size < kWorthwhile) return;
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(data) % page) % page;
    madvise(data + before, (size - before) / page * page, MADV_HUGEPAGE);
#endif
}

}  // namespace umbrant::host
