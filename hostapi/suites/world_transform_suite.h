// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's compositing: copies, blends and transfer modes between worlds.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/transfer.h"

inline constexpr char kPFWorldTransformSuiteName[] = "PF World Transform Suite";
inline constexpr int32_t kPFWorldTransformSuiteVersion1 = 1;

struct PF_WorldTransformSuite1 {
    PF_Err (*composite_rect)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity, PF_EffectWorld* source_wld,
                             A_long dest_x, A_long dest_y, PF_Field field_rdr, PF_XferMode xfer_mode,
                             PF_EffectWorld* dest_wld);
    PF_Err (*blend)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2, PF_Fixed ratio,
                    PF_EffectWorld* dst);
    PF_Err (*convolve)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                       A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                       PF_EffectWorld* dst);
    PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r);
    PF_Err (*copy_hq)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r);
    PF_Err (*transfer_rect)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                            const PF_Rect* src_rec, const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                            const PF_MaskWorld* mask_world0, A_long dest_x, A_long dest_y, PF_EffectWorld* dst_world);
    PF_Err (*transform_world)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                              const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                              const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices, A_long num_matrices,
                              PF_Boolean src2dst_matrix, const PF_Rect* dest_rect, PF_EffectWorld* dst_world);
};
