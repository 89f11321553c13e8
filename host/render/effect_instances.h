// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The instances of an effect that the drawing threads use.

#include <vector>

#include "host/result.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// One instance for each drawing thread; the first is the caller's own. Move-only.
class EffectInstances {
 public:
    /// Starts instances, in addition to `first`, until there are `count`; an effect that may not be called from several
    /// threads keeps to one. `first` must outlive them. Fails as EffectSession::StartInstance does.
    Result<Done> Start(EffectSession& first, int count);

    /// Ends them, the first one last. Returns the first failure.
    Result<Done> End();

    const std::vector<EffectSession*>& All() const { return all_; }

 private:
    std::vector<EffectSession> others_;
    std::vector<EffectSession*> all_;
};

}  // namespace umbrant::host
