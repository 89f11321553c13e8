// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A session's services without a session: the suites are called as an effect calls them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "host/suites/aegp/tokens.h"
#include "host/suites/services.h"
#include "host/suites/tables.h"

namespace umbrant::host {

/// A pixel of a world of 8 bits.
inline PF_Pixel At(const World& world, int x, int y) {
    return RowOf<PF_Pixel>(world.Def(), y)[x];
}

class SuitesTest : public ::testing::Test {
 protected:
    ~SuitesTest() override { DropTokens(&services); }

    /// The suite, acquired; null when it is refused.
    template <typename Suite>
    const Suite* Acquire(const char* name, int32_t version) {
        const void* suite = nullptr;
        basicSuite.AcquireSuite(name, version, &suite);
        return static_cast<const Suite*>(suite);
    }

    int Open(Resource resource) const { return services.tally.Snapshot()[resource]; }

    Services services;
    CommandNotes notes;
    ServiceScope scope{&services, &notes};
    EffectRef effect{&services, nullptr};
    PF_ProgPtr ref = effect.Pointer();
};

}  // namespace umbrant::host
