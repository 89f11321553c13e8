// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/effect_instances.h"

#include <utility>

namespace umbrant::host {

Result<Done> EffectInstances::Start(EffectSession& first, int count) {
    all_ = {&first};
    // Effects that do not say so may not be called from several threads.
    if (!(first.OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING)) count = 1;
    others_.reserve(static_cast<std::size_t>(count));
    for (int i = 1; i < count; ++i) {
        auto another = TRY(EffectSession::StartInstance(first));
        others_.push_back(std::move(another));
        all_.push_back(&others_.back());
        TRY(others_.back().UpdateParamsUI());
    }
    return Done{};
}

Result<Done> EffectInstances::End() {
    Result<Done> outcome = Done{};
    for (auto session = all_.rbegin(); session != all_.rend(); ++session) {
        auto ended = (*session)->End();
        if (!ended && outcome) outcome = ended;
    }
    return outcome;
}

}  // namespace umbrant::host
