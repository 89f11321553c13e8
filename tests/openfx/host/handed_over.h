// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a plug-in owns until it gives it back, held where a checker of leaks finds it: what is never given back is the
// plug-in's fault, which the record reports.

#include <mutex>
#include <set>

namespace umbrant::ofx {

/// Never destroyed, so that it holds them to the end of the process. Any thread.
class HandedOver {
 public:
    static void Add(const void* thing) {
        HandedOver& all = All();
        const std::lock_guard lock(all.mutex_);
        all.things_.insert(thing);
    }
    /// False for what was not handed over, or came back already.
    static bool Remove(const void* thing) {
        HandedOver& all = All();
        const std::lock_guard lock(all.mutex_);
        return all.things_.erase(thing) > 0;
    }

 private:
    static HandedOver& All() {
        static HandedOver& all = *new HandedOver;
        return all;
    }

    std::mutex mutex_;
    std::set<const void*> things_;
};

}  // namespace umbrant::ofx
