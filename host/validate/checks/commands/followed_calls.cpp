// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/commands/followed_calls.h"

namespace umbrant::host {

namespace {

bool IsWhereHostsReenter(std::string_view call) {
    for (const char* part : {"checkout_param", "checkout_layer", "checkout_output", "add_param", "UpdateParamUI",
                             "SetDynamicStreamFlag", "GetDrawingReference", "DrawImage"}) {
        if (call.find(part) != std::string_view::npos) return true;
    }
    return false;
}

}  // namespace

void FollowedCalls::Call(std::string_view call) {
    // A command from inside of a callback is not followed: its own calls have nothing to wait for.
    if (std::this_thread::get_id() != thread_ || depth_ != 1 || isNested_) return;
    calls_.emplace_back(call);
    if (inside_ && IsWhereHostsReenter(call)) {
        isNested_ = true;
        inside_();
        isNested_ = false;
    }
    std::unique_lock lock(mutex_);
    if (calls_.size() != target_) return;
    waits_ = true;
    changed_.wait(lock, [&] { return target_ == 0; });
    waits_ = false;
}

}  // namespace umbrant::host
