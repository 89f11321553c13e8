// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A session whose effect runs in another process, as EffectSession forwards to it. This folder knows nothing of
// processes: host/process implements it. One call at a time, except Now.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/session/effect_session.h"

namespace umbrant::host {

/// How a panel is drawn where the effect is; see PanelPictureOptions.
struct RemotePanelOptions {
    int width = 0;
    int scale = 1;
    bool light = false;
    std::string effectName;
};

/// Each function means what EffectSession's function of the same name means.
class RemoteSession {
 public:
    virtual ~RemoteSession() = default;

    virtual Result<std::unique_ptr<RemoteSession>> StartInstance(const std::optional<SessionOptions>& options) = 0;
    virtual Result<Done> End() = 0;
    virtual Result<std::string> About() = 0;
    virtual Result<Done> UpdateParamsUI() = 0;
    virtual Result<Done> UserChangedParam(int index) = 0;
    virtual bool SetTwirl(int index, bool collapsed) = 0;
    virtual void SetRenderer(UMBRANT_Renderer renderer) = 0;
    virtual Result<PreRendered> PreRender(const FrameRequest& request) = 0;
    virtual Result<Frame> Render(const FrameRequest& request) = 0;
    /// The panel's pixels, the rows that the effect draws itself included.
    virtual Result<World> DrawPanel(const RemotePanelOptions& options) = 0;

    virtual ParamSet& Params() = 0;
    virtual const PanelState& Panel() const = 0;
    virtual LayerGeometry PanelGeometry() const = 0;
    virtual PF_OutFlags OutFlags() const = 0;
    virtual PF_OutFlags2 OutFlags2() const = 0;
    virtual A_u_long EffectVersion() const = 0;
    virtual Balance Open() const = 0;
    virtual std::vector<std::string> Misbehaviour() const = 0;
    virtual std::vector<std::string> AcquiredSuites() const = 0;
    virtual std::vector<std::string> RefusedSuites() const = 0;
    virtual std::optional<Activity> Now() const = 0;
    virtual std::vector<CommandRecord> Commands() const = 0;
};

}  // namespace umbrant::host
