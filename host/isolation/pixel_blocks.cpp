// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/pixel_blocks.h"

#include <fmt/format.h>
#include <sys/resource.h>

#include "host/compositing/copy_world.h"
#include "host/isolation/module_messages.h"
#include "host/process/channel.h"

namespace umbrant::host {

Failure NoPixelMemory(std::size_t bytes) {
    // The system counts shared memory as a file.
    rlimit files{};
    if (getrlimit(RLIMIT_FSIZE, &files) == 0 && files.rlim_cur != RLIM_INFINITY && files.rlim_cur < bytes) {
        return {
            ErrorKind::kInternal,
            fmt::format("the limit of file sizes is {} KiB, and the pixels that a module's process needs are {} MiB "
                        "of shared memory, which it counts; raise it (`ulimit -f`)",
                        files.rlim_cur >> 10, (bytes >> 20) + 1)};
    }
    return {ErrorKind::kInternal,
            fmt::format("not enough memory for the pixels that a module's process needs, {} MiB", (bytes >> 20) + 1)};
}

void PixelBlocks::Attach(Parcel& parcel, const std::shared_ptr<SharedMemory>& block) {
    parcel.blocks.push_back(block);
    if (!known_.insert(block->Id()).second) return;
    parcel.content["blocks"].push_back(block->Id());
    parcel.descriptors.push_back(block->Descriptor());
}

Result<Done> PixelBlocks::Put(const World& world, const char* name, Parcel& parcel) {
    const auto size = World::BytesOf(world.Width(), world.Height(), world.PixelDepth());
    if (!size) return NoPixelMemory(0);
    std::shared_ptr<SharedMemory> block;
    if (*size > 0) {
        block = Take(*size);
        if (!block) return NoPixelMemory(*size);
        World shared = World::CreateOver(GuardedBytes::Over(block->Data(), block->Size(), block), world.Width(),
                                         world.Height(), world.PixelDepth());
        if (shared.IsNull()) return NoPixelMemory(*size);
        CopyWorld(&world.Def(), &shared.Def(), nullptr, nullptr);
        Attach(parcel, block);
    }
    parcel.content[name] = BytesOf(FactsOf(world, block ? block->Id() : 0));
    return Done{};
}

void PixelBlocks::NameDropped(Parcel& parcel) {
    for (const std::uint64_t id : pool_->TakeDropped()) {
        if (known_.erase(id) > 0) parcel.content["forget"].push_back(id);
    }
}

}  // namespace umbrant::host
