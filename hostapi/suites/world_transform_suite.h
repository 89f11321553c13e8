// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's compositing: copies, blends and transfer modes between worlds. Worlds and records stay the caller's, and
// only the destination is written; a destination is never one of the sources.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/transfer.h"

inline constexpr char kPFWorldTransformSuiteName[] = "PF World Transform Suite";
inline constexpr int32_t kPFWorldTransformSuiteVersion1 = 1;

struct PF_WorldTransformSuite1 {
    /// Places `src_rect` of the source with its top-left at (dest_x, dest_y) and blends it by a transfer mode; opacity
    /// 0 to 255. [any]
    PF_Err (*composite_rect)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity, PF_EffectWorld* source_wld,
                             A_long dest_x, A_long dest_y, PF_Field field_rdr, PF_XferMode xfer_mode,
                             PF_EffectWorld* dest_wld);
    /// Mixes two worlds of one size into a third: `ratio` 0 gives the first, 1.0 (16.16 fixed) the second. [any]
    PF_Err (*blend)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2, PF_Fixed ratio,
                    PF_EffectWorld* dst);
    /// Convolves `area` (null: all) with one kernel per channel, `kernel_size` entries along a side, in the form that
    /// the flags name. [any]
    PF_Err (*convolve)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                       A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                       PF_EffectWorld* dst);
    /// Copies a rectangle of one world into one of another, scaling where their sizes differ; a null rectangle is the
    /// whole world. [any]
    PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r);
    /// The same at the host's best quality. [any]
    PF_Err (*copy_hq)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r);
    /// Lays `src_rec` (null: all) with its top-left at (dest_x, dest_y) and composites it by mode, opacity and mask;
    /// the mask may be null. The mode flags say how both worlds carry alpha. An unknown mode is an error and writes
    /// nothing. [any]
    PF_Err (*transfer_rect)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                            const PF_Rect* src_rec, const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                            const PF_MaskWorld* mask_world0, A_long dest_x, A_long dest_y, PF_EffectWorld* dst_world);
    /// As transfer_rect through matrices: one per moment of the shutter, from destination to source, or the other way
    /// where `src2dst_matrix` is not 0. Only `dest_rect` is drawn. [any]
    PF_Err (*transform_world)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                              const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                              const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices, A_long num_matrices,
                              PF_Boolean src2dst_matrix, const PF_Rect* dest_rect, PF_EffectWorld* dst_world);
};
