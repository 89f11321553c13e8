// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Measures one call of the effect to a service of the host.

#include "host/accounting/stage_clock.h"

namespace umbrant::host {

/// One call, for as long as it lives: counts for the command that the calling thread is in.
class TimedCall {
 public:
    explicit TimedCall(PixelCall call);
    ~TimedCall();
    TimedCall(const TimedCall&) = delete;
    TimedCall& operator=(const TimedCall&) = delete;

 private:
    StageClock* clock_;
    PixelCall call_;
};

}  // namespace umbrant::host
