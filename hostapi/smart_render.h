// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The two halves of a smart render: what an effect asks for before, and receives during, a frame. Rectangles are in
// downsampled layer pixels, right and bottom exclusive.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/params.h"
#include "hostapi/pixels.h"

typedef A_long PF_ChannelMask;

inline constexpr PF_ChannelMask PF_ChannelMask_ALPHA = 1;
inline constexpr PF_ChannelMask PF_ChannelMask_RED = 2;
inline constexpr PF_ChannelMask PF_ChannelMask_GREEN = 4;
inline constexpr PF_ChannelMask PF_ChannelMask_BLUE = 8;
inline constexpr PF_ChannelMask PF_ChannelMask_ARGB = 15;

typedef A_long PF_GPU_Framework;

inline constexpr PF_GPU_Framework PF_GPU_Framework_NONE = 0;
inline constexpr PF_GPU_Framework PF_GPU_Framework_OPENCL = 1;
inline constexpr PF_GPU_Framework PF_GPU_Framework_METAL = 2;
inline constexpr PF_GPU_Framework PF_GPU_Framework_CUDA = 3;
inline constexpr PF_GPU_Framework PF_GPU_Framework_DIRECTX = 4;

typedef void (*PF_DeletePreRenderDataFunc)(void* pre_render_data);
typedef short PF_RenderOutputFlags;

inline constexpr PF_RenderOutputFlags PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS = 1;
inline constexpr PF_RenderOutputFlags PF_RenderOutputFlag_GPU_RENDER_POSSIBLE = 2;
inline constexpr PF_RenderOutputFlags PF_RenderOutputFlag_RESERVED1 = 4;

/// Which pixels somebody wants: the host of the effect, or the effect of one of its inputs.
struct PF_RenderRequest {
    PF_LRect rect;
    PF_Field field;
    PF_ChannelMask channel_mask;
    /// Not 0: colour under alpha 0 matters too.
    PF_Boolean preserve_rgb_of_zero_alpha;
    char unused[3];
    A_long reserved[4];
};

/// What the host wants of the next render.
struct PF_PreRenderInput {
    PF_RenderRequest output_request;
    /// Bits per channel: 8, 16 or 32 (float).
    short bitdepth;
    /// Null, and `what_gpu` is PF_GPU_Framework_NONE, unless the host renders on a GPU of its own.
    const void* gpu_data;
    PF_GPU_Framework what_gpu;
    A_u_long device_index;
};

/// The effect's answer.
struct PF_PreRenderOutput {
    /// What this request will give; the output world of the render covers exactly this.
    PF_LRect result_rect;
    /// The most that any request could give.
    PF_LRect max_result_rect;
    /// Not 0: the result is opaque everywhere.
    PF_Boolean solid;
    PF_Boolean reserved;
    /// PF_RenderOutputFlag bits; RETURNS_EXTRA_PIXELS allows a result larger than the request.
    PF_RenderOutputFlags flags;
    /// The effect's own record for the render, handed over to the host, which frees it through the function below, also
    /// when no render follows.
    void* pre_render_data;
    /// Called once with `pre_render_data`, on any thread. [any]
    PF_DeletePreRenderDataFunc delete_pre_render_data_func;
};

/// What an input can give.
struct PF_CheckoutResult {
    /// What the request will bring.
    PF_LRect result_rect;
    /// The most that any request could bring.
    PF_LRect max_result_rect;
    /// Pixel aspect ratio, width over height.
    PF_RationalScale par;
    /// Not 0: opaque everywhere.
    PF_Boolean solid;
    PF_Boolean reservedB[3];
    /// The size of the input's whole frame in downsampled pixels; the rectangles are relative to its top-left.
    A_long ref_width;
    A_long ref_height;
    A_long reserved[6];
};

/// Offered while PF_Cmd_SMART_PRE_RENDER runs.
struct PF_PreRenderCallbacks {
    /// Asks for pixels of a layer parameter at a time, to be had under `checkout_idL` during the render. Ids are
    /// positive, and each is used once. A layer parameter without a layer gives empty rectangles. An error means that
    /// the id may not be used. [render]
    PF_Err (*checkout_layer)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long checkout_idL,
                             const PF_RenderRequest* req, A_long what_time, A_long time_step, A_u_long time_scale,
                             PF_CheckoutResult* checkout_result);
    /// Mixes `buf_sizeLu` bytes into the identity of the frame, so that a change of them renders anew. The bytes stay
    /// the caller's. [render]
    PF_Err (*GuidMixInPtr)(PF_ProgPtr effect_ref, A_u_long buf_sizeLu, const void* buf);
};

/// `extra` of PF_Cmd_SMART_PRE_RENDER. All three stay the host's.
struct PF_PreRenderExtra {
    PF_PreRenderInput* input;
    PF_PreRenderOutput* output;
    PF_PreRenderCallbacks* cb;
};

/// What the host renders now.
struct PF_SmartRenderInput {
    /// The request of the pre-render.
    PF_RenderRequest output_request;
    /// Bits per channel: 8, 16 or 32 (float).
    short bitdepth;
    /// What the pre-render handed over; still the host's to free.
    void* pre_render_data;
    const void* gpu_data;
    PF_GPU_Framework what_gpu;
    A_u_long device_index;
};

/// Offered while PF_Cmd_SMART_RENDER runs.
struct PF_SmartRenderCallbacks {
    /// The pixels asked for under an id in the pre-render, once per id; null where the layer parameter is empty. The
    /// world stays the host's and lives until it is checked in. [render]
    PF_Err (*checkout_layer_pixels)(PF_ProgPtr effect_ref, A_long checkout_idL, PF_EffectWorld** pixels);
    /// Gives an id's pixels back before the command ends. [render]
    PF_Err (*checkin_layer_pixels)(PF_ProgPtr effect_ref, A_long checkout_idL);
    /// The world to draw into, as large as the pre-render's `result_rect`. It stays the host's and is never checked in.
    /// [render]
    PF_Err (*checkout_output)(PF_ProgPtr effect_ref, PF_EffectWorld** output);
};

/// `extra` of PF_Cmd_SMART_RENDER. Both stay the host's.
struct PF_SmartRenderExtra {
    PF_SmartRenderInput* input;
    PF_SmartRenderCallbacks* cb;
};
