// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's books on one frame: what was asked, what was checked out, what is to come back. Inside host/session only.

#include <list>
#include <mutex>
#include <optional>
#include <vector>

#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "host/session/effect_session.h"
#include "host/session/session_state.h"
#include "hostapi/smart_render.h"

namespace umbrant::host {

/// The layers of a moment, and their places.
struct LayersSeen {
    LayersSeen(MomentLayers shown, const FrameRequest& request);
    MomentLayers pictures;
    LayerGeometry geometry;
    PF_LRect layerBounds{};
    PF_LRect textureBounds{};  ///< all zero without a texture
};

/// A layer that the effect asked for in pre-render.
struct LayerCheckout {
    A_long id = 0;
    bool isTexture = false;
    const World* world = nullptr;  ///< what it is a part of; null for nothing
    PF_LRect rect{};               ///< what it will get, in downsampled pixels of the layer; all zero for nothing
    bool out = false;              ///< its pixels are with the effect
    bool used = false;
    World pixels;
};

/// One pass of pre-render and render. The effect's reference to the frame is `ref`, so the record does not move.
struct FrameRecord {
    FrameRecord(SessionState& session, const FrameRequest& asked);

    SessionState& state;
    const FrameRequest& request;
    EffectRef ref;
    const ParamSet params;
    const LayersSeen layers;

    /// Times other than the frame's that the effect asked about. `mutex` is to be held for these, and what they return
    /// stays until the record goes.
    struct OtherMoment {
        Moment moment;
        std::optional<ParamSet> params;
        std::optional<LayersSeen> layers;
    };
    std::list<OtherMoment> moments;
    const ParamSet& ParamsAt(const Moment& moment);
    /// Null, with `failure` set, when they are not available.
    const LayersSeen* LayersAt(const Moment& moment);
    std::optional<Failure> failure;  ///< why the effect was refused what it may have asked for

    enum class Phase { kIdle, kPreRender, kRender };
    Phase phase = Phase::kIdle;
    PF_RenderRequest outputRequest{};
    std::list<LayerCheckout> checkouts;
    std::mutex mutex;  ///< guards the check-outs and moments: an effect may ask from its own threads

    World output;
    bool outputTaken = false;
    std::vector<CommandRecord> commands;
    Balance total;  ///< of all commands so far, and of the deletion of the pre-render data

    short BitDepth() const { return static_cast<short>(request.layer->PixelDepth()); }
    void Note(const Answer& answer);

 private:
    /// The moment's place in `moments`; null for the frame's own.
    OtherMoment* Other(const Moment& moment);
};

/// The frame that an effect reference belongs to, when the callback may be made now; null, with a report, otherwise.
FrameRecord* FrameOf(PF_ProgPtr effectRef, FrameRecord::Phase phase, const char* call);

/// What `PF_PreRenderExtra::cb` and `PF_SmartRenderExtra::cb` point to. The pointers that effects get are not const;
/// none writes through them.
extern PF_PreRenderCallbacks preRenderCallbacks;
extern PF_SmartRenderCallbacks smartRenderCallbacks;

}  // namespace umbrant::host
