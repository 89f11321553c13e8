// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/fork_lock.h"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <vector>

namespace umbrant::host {

namespace {

constexpr std::size_t kRanks = 6;

/// How many locks of each rank the thread holds.
thread_local std::array<int, kRanks> held{};

/// The first rank that the thread may still take locks of.
std::size_t FirstFree() {
    std::size_t rank = kRanks;
    while (rank > 0 && held[rank - 1] == 0) --rank;
    return rank;
}

}  // namespace

/// Every lock that lives, by rank.
class ForkLocks {
 public:
    static ForkLocks& All() {
        // Kept: never destroyed, because effects may be members of static objects.
        static ForkLocks* all = new ForkLocks;
        return *all;
    }

    void Add(ForkLock* added) {
        Rank& rank = RankOf(added);
        const std::lock_guard lock(rank.mutex);
        rank.locks.push_back(added);
    }

    void Remove(ForkLock* gone) {
        Rank& rank = RankOf(gone);
        const std::lock_guard lock(rank.mutex);
        std::erase(rank.locks, gone);
    }

 private:
    struct Rank {
        std::mutex mutex;  ///< while it is held no lock of the rank is made or goes
        std::vector<ForkLock*> locks;
    };

    // Without memory for the handlers a forked child is what it would be without them.
    ForkLocks() { pthread_atfork(Hold, Release, Release); }

    Rank& RankOf(const ForkLock* lock) { return ranks_[static_cast<std::size_t>(lock->rank_)]; }

    static void Hold() {
        for (std::size_t rank = FirstFree(); rank < kRanks; ++rank) {
            All().ranks_[rank].mutex.lock();
            for (ForkLock* lock : All().ranks_[rank].locks) lock->mutex_.lock();
        }
    }

    static void Release() {
        for (std::size_t rank = FirstFree(); rank < kRanks; ++rank) {
            for (ForkLock* lock : All().ranks_[rank].locks) lock->mutex_.unlock();
            All().ranks_[rank].mutex.unlock();
        }
    }

    std::array<Rank, kRanks> ranks_;
};

ForkLock::ForkLock(ForkRank rank) : rank_(rank) {
    assert(FirstFree() <= static_cast<std::size_t>(rank_));
    ForkLocks::All().Add(this);
}

ForkLock::~ForkLock() {
    assert(FirstFree() <= static_cast<std::size_t>(rank_));
    ForkLocks::All().Remove(this);
}

void ForkLock::lock() {
    // A lock out of its turn would be waited for by the thread that forks, which its own holder waits for.
    assert(FirstFree() <= static_cast<std::size_t>(rank_));
    mutex_.lock();
    ++held[static_cast<std::size_t>(rank_)];
}

void ForkLock::unlock() {
    --held[static_cast<std::size_t>(rank_)];
    mutex_.unlock();
}

}  // namespace umbrant::host
