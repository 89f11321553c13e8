// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Callback tables that hang off the command record: interaction with the host, utilities, the C library, colour. They
// are the host's, valid for the command that carries them, and take the effect reference of that command.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset. A non-zero result is an error of
// hostapi/errors.h, and only after a zero may an out-parameter be read. Times are ticks, `time_scale` of them a second.

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

/// How the sampling calls read a world. Radii are 16.16 fixed pixels.
struct PF_SampPB {
    PF_Fixed x_radius;
    PF_Fixed y_radius;
    PF_Fixed area;
    /// The world that is sampled; it stays the caller's.
    PF_EffectWorld* src;
    /// What is outside the source; PF_SampleEdgeBehav_ZERO is transparent black.
    PF_SampleEdgeBehav samp_behave;
    A_long allow_asynch;
    A_long motion_blur;
    PF_CompositeMode comp_mode;
    /// May be null.
    PF_PixelPtr mask0;
    A_u_char* fcm_table;
    A_u_char* fcd_table;
    A_long reserved[8];
};

/// What an effect asks of the host while a command runs.
struct PF_InteractCallbacks {
    /// Fills the caller's record with a parameter's definition and value at a time; 0 is the input layer. Each success
    /// is answered by one checkin_param, before the command ends. [any]
    PF_Err (*checkout_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long what_time, A_long time_step,
                             A_u_long time_scale, PF_ParamDef* param);
    /// Gives a checked-out parameter back, exactly once. What its record points to is dead afterwards. [any]
    PF_Err (*checkin_param)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    /// Declares one more parameter, during parameter set-up only; index -1 appends. The host copies the record, strings
    /// included. [main]
    PF_Err (*add_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDefPtr def);
    /// Non-zero when the user wants the command to end; an effect then returns that very value. [any]
    PF_Err (*abort)(PF_ProgPtr effect_ref);
    /// Shows how far a command is, and answers as abort does. [any]
    PF_Err (*progress)(PF_ProgPtr effect_ref, A_long current, A_long total);
    /// Announces which events a self-drawn parameter wants, during parameter set-up only. The record is copied. [main]
    PF_Err (*register_ui)(PF_ProgPtr effect_ref, PF_CustomUIInfo* cust_info);
    /// The sound of a layer over a span of time, converted to the format asked for. Answered by one
    /// checkin_layer_audio. [any]
    PF_Err (*checkout_layer_audio)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long start_time, A_long duration,
                                   A_u_long time_scale, PF_UFixed rate, A_long bytes_per_sample, A_long num_channels,
                                   A_long fmt_signed, PF_LayerAudio* audio);
    /// Gives a layer's sound back, exactly once. [any]
    PF_Err (*checkin_layer_audio)(PF_ProgPtr effect_ref, PF_LayerAudio audio);
    /// The samples and the format of checked-out sound; each pointer may be null. The samples stay the host's. [any]
    PF_Err (*get_audio_data)(PF_ProgPtr effect_ref, PF_LayerAudio audio, PF_SndSamplePtr* data0, A_long* num_samples0,
                             PF_UFixed* rate0, A_long* bytes_per_sample0, A_long* num_channels0, A_long* fmt_signed0);
    void* reserved_str[3];
    void* reserved[10];
};

/// The C library's arithmetic and formatting, part of the utility table. Nothing here fails or allocates.
struct PF_ANSICallbacksBlock {
    /// Arc tangent, in radians. [any]
    A_FpLong (*atan)(A_FpLong);
    /// Angle of the point (x, y) from the x axis, in radians. [any]
    A_FpLong (*atan2)(A_FpLong y, A_FpLong x);
    /// The next whole number upwards. [any]
    A_FpLong (*ceil)(A_FpLong);
    /// Cosine of an angle in radians. [any]
    A_FpLong (*cos)(A_FpLong);
    /// e to the power of the argument. [any]
    A_FpLong (*exp)(A_FpLong);
    /// Absolute value. [any]
    A_FpLong (*fabs)(A_FpLong);
    /// The next whole number downwards. [any]
    A_FpLong (*floor)(A_FpLong);
    /// Remainder of x ÷ y, with the sign of x. [any]
    A_FpLong (*fmod)(A_FpLong x, A_FpLong y);
    /// Length of the vector (x, y). [any]
    A_FpLong (*hypot)(A_FpLong x, A_FpLong y);
    /// Natural logarithm. [any]
    A_FpLong (*log)(A_FpLong);
    /// Logarithm to base 10. [any]
    A_FpLong (*log10)(A_FpLong);
    /// x to the power of y. [any]
    A_FpLong (*pow)(A_FpLong x, A_FpLong y);
    /// Sine of an angle in radians. [any]
    A_FpLong (*sin)(A_FpLong);
    /// Square root. [any]
    A_FpLong (*sqrt)(A_FpLong);
    /// Tangent of an angle in radians. [any]
    A_FpLong (*tan)(A_FpLong);
    /// Formats into the caller's buffer, which must be large enough: no length is passed. Returns the number of
    /// characters without the NUL. Variadic, so it is called through this very type. [any]
    int (*sprintf)(A_char*, const A_char*, ...);
    /// Copies a string with its NUL into the caller's buffer, which must be large enough, and returns that buffer.
    /// [any]
    A_char* (*strcpy)(A_char*, const A_char*);
    /// Arc sine, in radians. [any]
    A_FpLong (*asin)(A_FpLong);
    /// Arc cosine, in radians. [any]
    A_FpLong (*acos)(A_FpLong);
    A_long unused_longA[1];
};

/// Conversions of one 8-bit colour to and from 16.16 fixed numbers.
struct PF_ColorCallbacks {
    /// Red, green, blue to hue, lightness, saturation: three 16.16 fixed numbers in the caller's array. A grey has the
    /// hue PF_HUE_UNDEFINED. [any]
    PF_Err (*RGBtoHLS)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* hls);
    /// Hue, lightness, saturation back to red, green, blue. [any]
    PF_Err (*HLStoRGB)(PF_ProgPtr effect_ref, PF_Fixed* hls, PF_Pixel* rgb);
    /// Red, green, blue to luminance and two colour differences, three 16.16 fixed numbers. [any]
    PF_Err (*RGBtoYIQ)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* yiq);
    /// Luminance and two colour differences back to red, green, blue. [any]
    PF_Err (*YIQtoRGB)(PF_ProgPtr effect_ref, PF_Fixed* yiq, PF_Pixel* rgb);
    /// A colour's luminance times 100. [any]
    PF_Err (*Luminance)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lum100);
    /// A colour's hue as a whole number. [any]
    PF_Err (*Hue)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* hue);
    /// A colour's lightness as a whole number. [any]
    PF_Err (*Lightness)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lightness);
    /// A colour's saturation as a whole number. [any]
    PF_Err (*Saturation)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* saturation);
};

/// Services on pixels and memory. Worlds and records stay the caller's.
struct PF_UtilCallbacks {
    /// Prepares sampling with a set of parameters; answered by one end_sampling. [any]
    PF_Err (*begin_sampling)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params);
    /// The 8-bit colour at a point between pixels, in 16.16 fixed source pixels. [any]
    PF_Err (*subpixel_sample)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                              PF_Pixel* dst_pixel);
    /// The mean 8-bit colour of a rectangle about a point, its radii taken from the parameters. [any]
    PF_Err (*area_sample)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params, PF_Pixel* dst_pixel);
    /// An unused slot.
    void* get_batch_func_is_deprecated;
    /// Ends what begin_sampling prepared. [any]
    PF_Err (*end_sampling)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params);
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
    /// Fills a rectangle of a world, the whole world where it is null, with a colour, transparent black where it is
    /// null. Right for 8-bit worlds, and for any world where the colour is null. [any]
    PF_Err (*fill)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect, PF_EffectWorld* world);
    /// Fills the caller's kernel with a bell curve of a radius in pixels and reports how many entries it took. [any]
    PF_Err (*gaussian_kernel)(PF_ProgPtr effect_ref, A_FpLong kRadius, PF_KernelFlags flags, A_FpLong multiplier,
                              A_long* diameter, void* kernel);
    /// Calls `pix_fn` once for every pixel of `area`, with the source and destination pixel at (x, y); null area: the
    /// whole destination. Rows run on several threads at once, in no order. A non-zero result of `pix_fn` ends the walk
    /// and is returned. [any]
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    /// Multiplies colour by alpha in place where `forward` is not 0, else divides. [any]
    PF_Err (*premultiply)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst);
    /// The same from one world to another, over a background colour; the source may be the destination. [any]
    PF_Err (*premultiply_color)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel* color, A_long forward,
                                PF_EffectWorld* dst);
    /// Allocates an 8-bit or, by a flag, 16-bit world of a size in pixels into the caller's record. The caller frees it
    /// with dispose_world. [any]
    PF_Err (*new_world)(PF_ProgPtr effect_ref, A_long width, A_long height, PF_NewWorldFlags flags,
                        PF_EffectWorld* world);
    /// Frees the pixels of a world of new_world; the record is the caller's. [any]
    PF_Err (*dispose_world)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
    /// The same with the source shifted by `origin` against the destination; only where both worlds have pixels. [any]
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel8Func pix_fn,
                             PF_EffectWorld* dst);
    /// Looks every channel up in a table of 256 bytes of its own; a null table leaves its channel. [any]
    PF_Err (*iterate_lut)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                          const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0, A_u_char* g_lut0, A_u_char* b_lut0,
                          PF_EffectWorld* dst);
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
    /// As in the handle suite: null when memory is short, freed with host_dispose_handle. [any]
    PF_Handle (*host_new_handle)(A_u_longlong size);
    /// As in the handle suite: the data's address, or null; answered by one host_unlock_handle. [any]
    void* (*host_lock_handle)(PF_Handle pf_handle);
    /// As in the handle suite. Reports nothing. [any]
    void (*host_unlock_handle)(PF_Handle pf_handle);
    /// As in the handle suite. Reports nothing. [any]
    void (*host_dispose_handle)(PF_Handle pf_handle);
    /// The address of the variant of a callback that suits a quality and alpha mode; it stays the host's. [any]
    PF_Err (*get_callback_addr)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags mode_flags,
                                PF_CallbackID which_callback, PF_CallbackFunc* fn_ptr);
    /// A door for questions that only one application understands. Variadic, so it is called through this very type.
    /// [any]
    PF_Err (*app)(PF_ProgPtr, A_long, ...);
    /// The C library block, in place, not a pointer.
    PF_ANSICallbacksBlock ansi;
    /// The colour block, in place, not a pointer.
    PF_ColorCallbacks colorCB;
    /// A fact about the running application, such as a path or a window; `which` says what `data` must point to. [main]
    PF_Err (*get_platform_data)(PF_ProgPtr effect_ref, PF_PlatDataID which, void* data);
    /// The data's size in bytes. [any]
    A_u_longlong (*host_get_handle_size)(PF_Handle pf_handle);
    /// As iterate_origin, but also where the source has no pixel: there `in` is transparent black. [any]
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    /// Calls `fn_func` once for every i below `iterationsL`, on several threads; PF_Iterations_ONCE_PER_PROCESSOR asks
    /// for one call per core. A non-zero result ends the loop and is returned. [any]
    PF_Err (*iterate_generic)(A_long iterationsL, void* refconPV,
                              PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i, A_long iterationsL));
    /// As in the handle suite: `*handlePH` may be replaced; an error leaves the old handle valid. [any]
    PF_Err (*host_resize_handle)(A_u_longlong new_sizeL, PF_Handle* handlePH);
    /// As subpixel_sample, from a 16-bit world. [any]
    PF_Err (*subpixel_sample16)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                                PF_Pixel16* dst_pixel);
    /// As area_sample, from a 16-bit world. [any]
    PF_Err (*area_sample16)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                            PF_Pixel16* dst_pixel);
    /// As fill, for a 16-bit world. [any]
    PF_Err (*fill16)(PF_ProgPtr effect_ref, const PF_Pixel16* color, const PF_Rect* dst_rect, PF_EffectWorld* world);
    /// As premultiply_color, for 16-bit worlds. [any]
    PF_Err (*premultiply_color16)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel16* color, A_long forward,
                                  PF_EffectWorld* dst);
    /// As iterate, for 16-bit worlds. [any]
    PF_Err (*iterate16)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                        const PF_Rect* area, void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    /// As iterate_origin, for 16-bit worlds. [any]
    PF_Err (*iterate_origin16)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                               const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel16Func pix_fn,
                               PF_EffectWorld* dst);
    /// As iterate_origin_non_clip_src, for 16-bit worlds. [any]
    PF_Err (*iterate_origin_non_clip_src16)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                            PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                            void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    /// The address of a world's pixels, or of `pixelsP0` where that is given, as 8-bit ones; null where the world has
    /// another depth. The pixels stay the world's. [any]
    PF_Err (*get_pixel_data8)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel8** pixPP);
    /// The same as 16-bit pixels. [any]
    PF_Err (*get_pixel_data16)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel16** pixPP);
    A_long reserved[1];
};
