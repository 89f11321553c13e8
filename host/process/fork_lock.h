// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Locks of what a child of fork() goes on with. The child has one thread; a lock that another thread held at that
// moment would stay held for good, around a table that is half changed. So fork() waits here until no other thread
// holds one.

#include <mutex>

namespace umbrant::host {

/// The order of the locks: a thread that holds one takes, makes and destroys only those of later ranks. fork() takes
/// them in this order too.
enum class ForkRank {
    kModules,  ///< the modules of the process
    kEffect,   ///< one effect's values
    kModule,   ///< one module's panel, and its frames where they cannot be drawn side by side
    kSession,  ///< what a session has under way, and the suites that are held in it
    kTable,    ///< what is held for a few instructions
    kRecord,   ///< what reports and counts of host calls are written to, and how they find it
};

/// What is made at its first use, by a function, is also used once while the program starts: a child whose parent was
/// just making it would wait for that for good.
///
/// A mutex for std::lock_guard and std::unique_lock. A thread that forks while it holds one goes on holding it in the
/// child; the fork waits for those of later ranks only. [any]
class ForkLock {
 public:
    explicit ForkLock(ForkRank rank = ForkRank::kTable);
    ~ForkLock();
    ForkLock(const ForkLock&) = delete;
    ForkLock& operator=(const ForkLock&) = delete;

    void lock();
    void unlock();

 private:
    friend class ForkLocks;

    const ForkRank rank_;
    std::mutex mutex_;
};

}  // namespace umbrant::host
