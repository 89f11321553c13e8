// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/timed_call.h"

#include "host/suites/services.h"

namespace umbrant::host {

TimedCall::TimedCall(PixelCall call) : clock_(nullptr), call_(call) {
    if (CommandNotes* notes = ServiceScope::Current().second) clock_ = &notes->stages;
    if (clock_) clock_->Enter(call_);
}

TimedCall::~TimedCall() {
    if (clock_) clock_->Leave(call_);
}

}  // namespace umbrant::host
