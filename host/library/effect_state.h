// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What an effect of the library is: an instance of the module's, its values under a lock, and frames outside of it.

#include <umbrant/effect.h>

#include <functional>
#include <string>

#include "host/animation/preset.h"
#include "host/library/effect_request.h"
#include "host/library/shared_module.h"
#include "host/library/value_store.h"
#include "host/process/fork_lock.h"

namespace umbrant {

struct Effect::State {
    State(host::SharedInstance started, std::function<void(const std::string&)> report);

    /// Lets the effect see what was set since it last did. With `mutex` held. Throws Error.
    void UpdatePanel();

    /// The effect's own values at the time of the options, which were checked. Throws Error.
    host::ParamSet ValuesAt(const FrameOptions& options);
    /// Those of a snapshot. Throws Error with ErrorCode::kUsage for one of another module's.
    host::ParamSet ValuesAt(const host::ValueStore& store, const FrameOptions& options);
    /// A snapshot of the effect's own.
    host::ValueStore Snapshot();

    /// Renders a frame. Throws Error.
    host::Frame Draw(const host::Layers& layers, const FrameOptions& options, const host::ParamSet& values);
    /// The rectangle that it would cover; no pixel of the layers is read. Throws Error.
    Rectangle Place(const host::Layers& layers, const FrameOptions& options, const host::ParamSet& values);

    host::Failure Explained(const host::Failure& failure);

    host::SharedInstance instance;
    const std::function<void(const std::string&)> message;
    const host::ParamSet declared;

    host::ForkLock mutex{host::ForkRank::kEffect};  ///< around what follows
    host::AnimatedParams params;
    bool isChanged = true;  ///< the effect has not seen the values

 private:
    template <typename Call>
    auto Send(Call call);
};

namespace host {

Rectangle RectangleOf(const PF_LRect& rect);
bool IsEmpty(const Rectangle& place);

}  // namespace host

}  // namespace umbrant
