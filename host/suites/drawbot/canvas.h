// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What an effect draws on during one draw event: an area of the host's picture of the panel. The event's context leads
// to it. [main]

#include <vector>

#include "host/drawing/drawing.h"
#include "hostapi/custom_ui.h"

namespace umbrant::host {

/// Lives for one draw event. Its references are good for as long as it lives, and distinguished from wrong ones without
/// being touched.
class DrawbotCanvas {
 public:
    /// Draws on `drawing`, which stays the caller's. The matrix and clip that it has now are what the effect finds:
    /// its coordinates are panel pixels. `screenScale` is the number of the picture's pixels per panel pixel.
    DrawbotCanvas(Drawing& drawing, float screenScale);
    /// Puts matrix and clip back; reports a state that the effect has pushed and not popped.
    ~DrawbotCanvas();
    DrawbotCanvas(const DrawbotCanvas&) = delete;
    DrawbotCanvas& operator=(const DrawbotCanvas&) = delete;

    /// What goes into the event's record.
    PF_ContextH Context() { return &contextPointer_; }

    // The three references, each with an address of its own.
    DRAWBOT_DrawRef Draw() { return reinterpret_cast<DRAWBOT_DrawRef>(&references_[0]); }
    DRAWBOT_SupplierRef Supplier() { return reinterpret_cast<DRAWBOT_SupplierRef>(&references_[1]); }
    DRAWBOT_SurfaceRef Surface() { return reinterpret_cast<DRAWBOT_SurfaceRef>(&references_[2]); }

    /// The living canvas that a reference belongs to; null, with a report that names the call, when there is none.
    static DrawbotCanvas* Of(PF_ContextH context, const char* call);
    static DrawbotCanvas* Of(DRAWBOT_DrawRef reference, const char* call);
    static DrawbotCanvas* Of(DRAWBOT_SupplierRef reference, const char* call);
    static DrawbotCanvas* Of(DRAWBOT_SurfaceRef reference, const char* call);

    Drawing& On() { return drawing_; }
    const Drawing& On() const { return drawing_; }
    float ScreenScale() const { return screenScale_; }

    /// How images are resampled and edges drawn.
    struct Policies {
        DRAWBOT_InterpolationPolicy interpolation = kDRAWBOT_InterpolationPolicy_Default;
        DRAWBOT_AntiAliasPolicy antiAlias = kDRAWBOT_AntiAliasPolicy_Default;
    };
    Policies policies;

    /// Remembers matrix, clip and policies.
    void Push();
    /// Restores what was remembered last; false when nothing was.
    bool Pop();

 private:
    Drawing& drawing_;
    float screenScale_;
    std::vector<Policies> pushed_;
    PF_Context context_{};
    PF_Context* contextPointer_ = &context_;
    char references_[3] = {};
};

}  // namespace umbrant::host
