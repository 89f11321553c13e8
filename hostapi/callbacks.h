// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Callback tables that hang off the command record: interaction, utilities, ANSI, colour.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/custom_ui.h"
#include "hostapi/params.h"
#include "hostapi/transfer.h"

struct PF_InData;

typedef A_long PF_CallbackID;
struct PF_YouMustCastThisToActualFunctionType;
typedef PF_YouMustCastThisToActualFunctionType* PF_CallbackFunc;
typedef A_long PF_PlatDataID;

inline constexpr PF_PlatDataID PF_PlatData_MAIN_WND = 0;
inline constexpr PF_PlatDataID PF_PlatData_EXE_FILE_PATH_DEPRECATED = 1;
inline constexpr PF_PlatDataID PF_PlatData_RES_FILE_PATH_DEPRECATED = 2;
inline constexpr PF_PlatDataID PF_PlatData_RES_REFNUM = 3;
inline constexpr PF_PlatDataID PF_PlatData_RES_DLLINSTANCE = 4;
inline constexpr PF_PlatDataID PF_PlatData_SP_PLUG_REF = 5;
inline constexpr PF_PlatDataID PF_PlatData_BUNDLE_REF = 6;
inline constexpr PF_PlatDataID PF_PlatData_EXE_FILE_PATH_W = 7;
inline constexpr PF_PlatDataID PF_PlatData_RES_FILE_PATH_W = 8;

struct PF_SampPB {
    PF_Fixed x_radius;
    PF_Fixed y_radius;
    PF_Fixed area;
    PF_EffectWorld* src;
    PF_SampleEdgeBehav samp_behave;
    A_long allow_asynch;
    A_long motion_blur;
    PF_CompositeMode comp_mode;
    PF_PixelPtr mask0;
    A_u_char* fcm_table;
    A_u_char* fcd_table;
    A_long reserved[8];
};

struct PF_InteractCallbacks {
    PF_Err (*checkout_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long what_time, A_long time_step,
                             A_u_long time_scale, PF_ParamDef* param);
    PF_Err (*checkin_param)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    PF_Err (*add_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDefPtr def);
    PF_Err (*abort)(PF_ProgPtr effect_ref);
    PF_Err (*progress)(PF_ProgPtr effect_ref, A_long current, A_long total);
    PF_Err (*register_ui)(PF_ProgPtr effect_ref, PF_CustomUIInfo* cust_info);
    PF_Err (*checkout_layer_audio)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long start_time, A_long duration,
                                   A_u_long time_scale, PF_UFixed rate, A_long bytes_per_sample, A_long num_channels,
                                   A_long fmt_signed, PF_LayerAudio* audio);
    PF_Err (*checkin_layer_audio)(PF_ProgPtr effect_ref, PF_LayerAudio audio);
    PF_Err (*get_audio_data)(PF_ProgPtr effect_ref, PF_LayerAudio audio, PF_SndSamplePtr* data0, A_long* num_samples0,
                             PF_UFixed* rate0, A_long* bytes_per_sample0, A_long* num_channels0, A_long* fmt_signed0);
    void* reserved_str[3];
    void* reserved[10];
};

struct PF_ANSICallbacksBlock {
    A_FpLong (*atan)(A_FpLong);
    A_FpLong (*atan2)(A_FpLong y, A_FpLong x);
    A_FpLong (*ceil)(A_FpLong);
    A_FpLong (*cos)(A_FpLong);
    A_FpLong (*exp)(A_FpLong);
    A_FpLong (*fabs)(A_FpLong);
    A_FpLong (*floor)(A_FpLong);
    A_FpLong (*fmod)(A_FpLong x, A_FpLong y);
    A_FpLong (*hypot)(A_FpLong x, A_FpLong y);
    A_FpLong (*log)(A_FpLong);
    A_FpLong (*log10)(A_FpLong);
    A_FpLong (*pow)(A_FpLong x, A_FpLong y);
    A_FpLong (*sin)(A_FpLong);
    A_FpLong (*sqrt)(A_FpLong);
    A_FpLong (*tan)(A_FpLong);
    int (*sprintf)(A_char*, const A_char*, ...);
    A_char* (*strcpy)(A_char*, const A_char*);
    A_FpLong (*asin)(A_FpLong);
    A_FpLong (*acos)(A_FpLong);
    A_long unused_longA[1];
};

struct PF_ColorCallbacks {
    PF_Err (*RGBtoHLS)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* hls);
    PF_Err (*HLStoRGB)(PF_ProgPtr effect_ref, PF_Fixed* hls, PF_Pixel* rgb);
    PF_Err (*RGBtoYIQ)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* yiq);
    PF_Err (*YIQtoRGB)(PF_ProgPtr effect_ref, PF_Fixed* yiq, PF_Pixel* rgb);
    PF_Err (*Luminance)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lum100);
    PF_Err (*Hue)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* hue);
    PF_Err (*Lightness)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lightness);
    PF_Err (*Saturation)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* saturation);
};

struct PF_UtilCallbacks {
    PF_Err (*begin_sampling)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params);
    PF_Err (*subpixel_sample)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                              PF_Pixel* dst_pixel);
    PF_Err (*area_sample)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params, PF_Pixel* dst_pixel);
    void* get_batch_func_is_deprecated;
    PF_Err (*end_sampling)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params);
    PF_Err (*composite_rect)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity, PF_EffectWorld* source_wld,
                             A_long dest_x, A_long dest_y, PF_Field field_rdr, PF_XferMode xfer_mode,
                             PF_EffectWorld* dest_wld);
    PF_Err (*blend)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2, PF_Fixed ratio,
                    PF_EffectWorld* dst);
    PF_Err (*convolve)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                       A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                       PF_EffectWorld* dst);
    PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r);
    PF_Err (*fill)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect, PF_EffectWorld* world);
    PF_Err (*gaussian_kernel)(PF_ProgPtr effect_ref, A_FpLong kRadius, PF_KernelFlags flags, A_FpLong multiplier,
                              A_long* diameter, void* kernel);
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*premultiply)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst);
    PF_Err (*premultiply_color)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel* color, A_long forward,
                                PF_EffectWorld* dst);
    PF_Err (*new_world)(PF_ProgPtr effect_ref, A_long width, A_long height, PF_NewWorldFlags flags,
                        PF_EffectWorld* world);
    PF_Err (*dispose_world)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel8Func pix_fn,
                             PF_EffectWorld* dst);
    PF_Err (*iterate_lut)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                          const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0, A_u_char* g_lut0, A_u_char* b_lut0,
                          PF_EffectWorld* dst);
    PF_Err (*transfer_rect)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                            const PF_Rect* src_rec, const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                            const PF_MaskWorld* mask_world0, A_long dest_x, A_long dest_y, PF_EffectWorld* dst_world);
    PF_Err (*transform_world)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                              const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                              const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices, A_long num_matrices,
                              PF_Boolean src2dst_matrix, const PF_Rect* dest_rect, PF_EffectWorld* dst_world);
    PF_Handle (*host_new_handle)(A_u_longlong size);
    void* (*host_lock_handle)(PF_Handle pf_handle);
    void (*host_unlock_handle)(PF_Handle pf_handle);
    void (*host_dispose_handle)(PF_Handle pf_handle);
    PF_Err (*get_callback_addr)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags mode_flags,
                                PF_CallbackID which_callback, PF_CallbackFunc* fn_ptr);
    PF_Err (*app)(PF_ProgPtr, A_long, ...);
    PF_ANSICallbacksBlock ansi;
    PF_ColorCallbacks colorCB;
    PF_Err (*get_platform_data)(PF_ProgPtr effect_ref, PF_PlatDataID which, void* data);
    A_u_longlong (*host_get_handle_size)(PF_Handle pf_handle);
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_generic)(A_long iterationsL, void* refconPV,
                              PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i, A_long iterationsL));
    PF_Err (*host_resize_handle)(A_u_longlong new_sizeL, PF_Handle* handlePH);
    PF_Err (*subpixel_sample16)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                                PF_Pixel16* dst_pixel);
    PF_Err (*area_sample16)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                            PF_Pixel16* dst_pixel);
    PF_Err (*fill16)(PF_ProgPtr effect_ref, const PF_Pixel16* color, const PF_Rect* dst_rect, PF_EffectWorld* world);
    PF_Err (*premultiply_color16)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel16* color, A_long forward,
                                  PF_EffectWorld* dst);
    PF_Err (*iterate16)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                        const PF_Rect* area, void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin16)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                               const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel16Func pix_fn,
                               PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src16)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                            PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                            void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*get_pixel_data8)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel8** pixPP);
    PF_Err (*get_pixel_data16)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel16** pixPP);
    A_long reserved[1];
};
