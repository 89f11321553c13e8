// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The command entry: selectors, the records handed in and out, and the flags an effect announces. Both records are the
// host's and live for one command.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/callbacks.h"
#include "hostapi/errors.h"
#include "hostapi/sound.h"
#include "hostapi/suites/basic_suite.h"

/// What the host asks of the effect. Smart pre-render and smart render come on render threads, several at once where
/// the effect announces PF_OutFlag2_SUPPORTS_THREADED_RENDERING; the set-up, parameter and panel commands on the main
/// thread.
typedef A_long PF_Cmd;

inline constexpr PF_Cmd PF_Cmd_ABOUT = 0;
inline constexpr PF_Cmd PF_Cmd_GLOBAL_SETUP = 1;
inline constexpr PF_Cmd PF_Cmd_UNUSED_0 = 2;
inline constexpr PF_Cmd PF_Cmd_GLOBAL_SETDOWN = 3;
inline constexpr PF_Cmd PF_Cmd_PARAMS_SETUP = 4;
inline constexpr PF_Cmd PF_Cmd_SEQUENCE_SETUP = 5;
inline constexpr PF_Cmd PF_Cmd_SEQUENCE_RESETUP = 6;
inline constexpr PF_Cmd PF_Cmd_SEQUENCE_FLATTEN = 7;
inline constexpr PF_Cmd PF_Cmd_SEQUENCE_SETDOWN = 8;
inline constexpr PF_Cmd PF_Cmd_DO_DIALOG = 9;
inline constexpr PF_Cmd PF_Cmd_FRAME_SETUP = 10;
inline constexpr PF_Cmd PF_Cmd_RENDER = 11;
inline constexpr PF_Cmd PF_Cmd_FRAME_SETDOWN = 12;
inline constexpr PF_Cmd PF_Cmd_USER_CHANGED_PARAM = 13;
inline constexpr PF_Cmd PF_Cmd_UPDATE_PARAMS_UI = 14;
inline constexpr PF_Cmd PF_Cmd_EVENT = 15;
inline constexpr PF_Cmd PF_Cmd_GET_EXTERNAL_DEPENDENCIES = 16;
inline constexpr PF_Cmd PF_Cmd_COMPLETELY_GENERAL = 17;
inline constexpr PF_Cmd PF_Cmd_QUERY_DYNAMIC_FLAGS = 18;
inline constexpr PF_Cmd PF_Cmd_AUDIO_RENDER = 19;
inline constexpr PF_Cmd PF_Cmd_AUDIO_SETUP = 20;
inline constexpr PF_Cmd PF_Cmd_AUDIO_SETDOWN = 21;
inline constexpr PF_Cmd PF_Cmd_ARBITRARY_CALLBACK = 22;
inline constexpr PF_Cmd PF_Cmd_SMART_PRE_RENDER = 23;
inline constexpr PF_Cmd PF_Cmd_SMART_RENDER = 24;
inline constexpr PF_Cmd PF_Cmd_RESERVED1 = 25;
inline constexpr PF_Cmd PF_Cmd_RESERVED2 = 26;
inline constexpr PF_Cmd PF_Cmd_RESERVED3 = 27;
inline constexpr PF_Cmd PF_Cmd_GET_FLATTENED_SEQUENCE_DATA = 28;
inline constexpr PF_Cmd PF_Cmd_TRANSLATE_PARAMS_TO_PREFS = 29;
inline constexpr PF_Cmd PF_Cmd_RESERVED4 = 30;
inline constexpr PF_Cmd PF_Cmd_SMART_RENDER_GPU = 31;
inline constexpr PF_Cmd PF_Cmd_GPU_DEVICE_SETUP = 32;
inline constexpr PF_Cmd PF_Cmd_GPU_DEVICE_SETDOWN = 33;
inline constexpr PF_Cmd PF_Cmd_NUM_CMDS = 34;

/// First word of what an effect announces at global set-up; a few bits, such as PF_OutFlag_DISPLAY_ERROR_MESSAGE,
/// answer any command. The module's resources repeat both words.
typedef A_long PF_OutFlags;

inline constexpr PF_OutFlags PF_OutFlag_NONE = 0;
inline constexpr PF_OutFlags PF_OutFlag_KEEP_RESOURCE_OPEN = 1;
inline constexpr PF_OutFlags PF_OutFlag_WIDE_TIME_INPUT = 2;
inline constexpr PF_OutFlags PF_OutFlag_NON_PARAM_VARY = 4;
inline constexpr PF_OutFlags PF_OutFlag_RESERVED6 = 8;
inline constexpr PF_OutFlags PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING = 16;
inline constexpr PF_OutFlags PF_OutFlag_I_DO_DIALOG = 32;
inline constexpr PF_OutFlags PF_OutFlag_USE_OUTPUT_EXTENT = 64;
inline constexpr PF_OutFlags PF_OutFlag_SEND_DO_DIALOG = 128;
inline constexpr PF_OutFlags PF_OutFlag_DISPLAY_ERROR_MESSAGE = 256;
inline constexpr PF_OutFlags PF_OutFlag_I_EXPAND_BUFFER = 512;
inline constexpr PF_OutFlags PF_OutFlag_PIX_INDEPENDENT = 1024;
inline constexpr PF_OutFlags PF_OutFlag_I_WRITE_INPUT_BUFFER = 2048;
inline constexpr PF_OutFlags PF_OutFlag_I_SHRINK_BUFFER = 4096;
inline constexpr PF_OutFlags PF_OutFlag_WORKS_IN_PLACE = 8192;
inline constexpr PF_OutFlags PF_OutFlag_RESERVED8 = 16384;
inline constexpr PF_OutFlags PF_OutFlag_CUSTOM_UI = 32768;
inline constexpr PF_OutFlags PF_OutFlag_RESERVED7 = 65536;
inline constexpr PF_OutFlags PF_OutFlag_REFRESH_UI = 131072;
inline constexpr PF_OutFlags PF_OutFlag_NOP_RENDER = 262144;
inline constexpr PF_OutFlags PF_OutFlag_I_USE_SHUTTER_ANGLE = 524288;
inline constexpr PF_OutFlags PF_OutFlag_I_USE_AUDIO = 1048576;
inline constexpr PF_OutFlags PF_OutFlag_I_AM_OBSOLETE = 2097152;
inline constexpr PF_OutFlags PF_OutFlag_FORCE_RERENDER = 4194304;
inline constexpr PF_OutFlags PF_OutFlag_PiPL_OVERRIDES_OUTDATA_OUTFLAGS = 8388608;
inline constexpr PF_OutFlags PF_OutFlag_I_HAVE_EXTERNAL_DEPENDENCIES = 16777216;
inline constexpr PF_OutFlags PF_OutFlag_DEEP_COLOR_AWARE = 33554432;
inline constexpr PF_OutFlags PF_OutFlag_SEND_UPDATE_PARAMS_UI = 67108864;
inline constexpr PF_OutFlags PF_OutFlag_AUDIO_FLOAT_ONLY = 134217728;
inline constexpr PF_OutFlags PF_OutFlag_AUDIO_IIR = 268435456;
inline constexpr PF_OutFlags PF_OutFlag_I_SYNTHESIZE_AUDIO = 536870912;
inline constexpr PF_OutFlags PF_OutFlag_AUDIO_EFFECT_TOO = 1073741824;
inline constexpr PF_OutFlags PF_OutFlag_AUDIO_EFFECT_ONLY = static_cast<PF_OutFlags>(0x80000000u);

/// Second word. Bit 9 has no name.
typedef A_long PF_OutFlags2;

inline constexpr PF_OutFlags2 PF_OutFlag2_NONE = 0;
inline constexpr PF_OutFlags2 PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS = 1;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_USE_3D_CAMERA = 2;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_USE_3D_LIGHTS = 4;
inline constexpr PF_OutFlags2 PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG = 8;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_AM_THREADSAFE = 16;
inline constexpr PF_OutFlags2 PF_OutFlag2_CAN_COMBINE_WITH_DESTINATION = 32;
inline constexpr PF_OutFlags2 PF_OutFlag2_DOESNT_NEED_EMPTY_PIXELS = 64;
inline constexpr PF_OutFlags2 PF_OutFlag2_REVEALS_ZERO_ALPHA = 128;
inline constexpr PF_OutFlags2 PF_OutFlag2_PRESERVES_FULLY_OPAQUE_PIXELS = 256;
inline constexpr PF_OutFlags2 PF_OutFlag2_SUPPORTS_SMART_RENDER = 1024;
inline constexpr PF_OutFlags2 PF_OutFlag2_RESERVED9 = 2048;
inline constexpr PF_OutFlags2 PF_OutFlag2_FLOAT_COLOR_AWARE = 4096;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_USE_COLORSPACE_ENUMERATION = 8192;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_AM_DEPRECATED = 16384;
inline constexpr PF_OutFlags2 PF_OutFlag2_PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER = 32768;
inline constexpr PF_OutFlags2 PF_OutFlag2_RESERVED10 = 65536;
inline constexpr PF_OutFlags2 PF_OutFlag2_AUTOMATIC_WIDE_TIME_INPUT = 131072;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_USE_TIMECODE = 262144;
inline constexpr PF_OutFlags2 PF_OutFlag2_DEPENDS_ON_UNREFERENCED_MASKS = 524288;
inline constexpr PF_OutFlags2 PF_OutFlag2_OUTPUT_IS_WATERMARKED = 1048576;
inline constexpr PF_OutFlags2 PF_OutFlag2_I_MIX_GUID_DEPENDENCIES = 2097152;
inline constexpr PF_OutFlags2 PF_OutFlag2_AE13_5_THREADSAFE = 4194304;
inline constexpr PF_OutFlags2 PF_OutFlag2_SUPPORTS_GET_FLATTENED_SEQUENCE_DATA = 8388608;
inline constexpr PF_OutFlags2 PF_OutFlag2_CUSTOM_UI_ASYNC_MANAGER = 16777216;
inline constexpr PF_OutFlags2 PF_OutFlag2_SUPPORTS_GPU_RENDER_F32 = 33554432;
inline constexpr PF_OutFlags2 PF_OutFlag2_RESERVED12 = 67108864;
inline constexpr PF_OutFlags2 PF_OutFlag2_SUPPORTS_THREADED_RENDERING = 134217728;
inline constexpr PF_OutFlags2 PF_OutFlag2_MUTABLE_RENDER_SEQUENCE_DATA_SLOWER = 268435456;
inline constexpr PF_OutFlags2 PF_OutFlag2_SUPPORTS_DIRECTX_RENDERING = 536870912;

typedef A_long PF_InFlags;

inline constexpr PF_InFlags PF_InFlag_NONE = 0;
inline constexpr PF_InFlags PF_InFlag_PROJECT_IS_RENDER_ONLY = 1;

typedef A_long A_AppID;

/// appl_id values, read most significant byte first.
inline constexpr A_AppID kAppID_AfterEffects = 0x46585443;  // 'FXTC'
inline constexpr A_AppID kAppID_Premiere = 0x50724D72;      // 'PrMr'
/// Registration kind of an effect.
inline constexpr A_long kPluginKind_Effect = 0x65464B54;  // 'eFKT'

struct PF_SpecVersion {
    A_short major;
    A_short minor;
};

/// What an effect answers.
struct PF_OutData {
    /// PF_VERSION of the effect; read after global set-up.
    A_u_long my_version;
    A_char name[32];
    /// The effect's own handle, made by the effect in global set-up and freed by it in global set-down.
    PF_Handle global_data;
    /// Count of declared parameters, the input layer included; read after parameter set-up.
    A_long num_params;
    /// The effect's own handle per instance; null where it keeps none.
    PF_Handle sequence_data;
    A_long flat_sdata_size;
    /// The effect's own handle per frame, outside smart rendering.
    PF_Handle frame_data;
    /// Size and origin in pixels, outside smart rendering.
    A_long width;
    A_long height;
    PF_Point origin;
    PF_OutFlags out_flags;
    /// A text for the user; shown as an error where PF_OutFlag_DISPLAY_ERROR_MESSAGE is set, else as a message. 255
    /// characters and a NUL.
    A_char return_msg[256];
    /// Sound, in samples; of no use to a picture effect.
    A_long start_sampL;
    A_long dur_sampL;
    PF_SoundWorld dest_snd;
    /// Read after global set-up, like `out_flags`.
    PF_OutFlags2 out_flags2;
};

/// What the host passes to an effect with every command. Times are ticks, `time_scale` of them a second.
struct PF_InData {
    PF_InteractCallbacks inter;
    /// The host's, for this command.
    PF_UtilCallbacks* utils;
    /// Names this effect instance to every callback and suite of the command.
    PF_ProgPtr effect_ref;
    /// PF_Quality_LO for drafts, PF_Quality_HI otherwise.
    PF_Quality quality;
    /// Version of the host interface: 13.28 and the like.
    PF_SpecVersion version;
    A_long serial_num;
    /// Which application this is: kAppID_AfterEffects, kAppID_Premiere.
    A_AppID appl_id;
    A_long num_params;
    A_long reserved;
    A_long what_cpu;
    A_long what_fpu;
    /// The frame's time within the layer.
    A_long current_time;
    /// One frame; negative where the layer runs backwards.
    A_long time_step;
    /// The layer's length.
    A_long total_time;
    A_long local_time_step;
    A_u_long time_scale;
    /// PF_Field_FRAME, or the field that is rendered.
    PF_Field field;
    /// 16.16 fixed, 1.0 for 360 degrees.
    PF_Fixed shutter_angle;
    /// The layer's full size in pixels, before downsampling.
    A_long width;
    A_long height;
    /// Which pixels matter, outside smart rendering.
    PF_Rect extent_hint;
    A_long output_origin_x;
    A_long output_origin_y;
    /// Rendered pixels per layer pixel, 1/2 at half resolution.
    PF_RationalScale downsample_x;
    PF_RationalScale downsample_y;
    /// A pixel's width over its height.
    PF_RationalScale pixel_aspect_ratio;
    PF_InFlags in_flags;
    /// What global set-up put into PF_OutData.
    PF_Handle global_data;
    PF_Handle sequence_data;
    PF_Handle frame_data;
    /// Sound, in samples; of no use to a picture effect.
    A_long start_sampL;
    A_long dur_sampL;
    A_long total_sampL;
    PF_SoundWorld src_snd;
    /// The door to all suites; may be null, as in hosts that have none.
    SPBasicSuite* pica_basicP;
    /// Where earlier effects that grew the picture put the layer's own top-left, in pixels.
    A_long pre_effect_source_origin_x;
    A_long pre_effect_source_origin_y;
    /// 16.16 fixed, 1.0 for 360 degrees.
    PF_Fixed shutter_phase;
};

typedef A_long PF_DepCheckType;

/// `extra` of PF_Cmd_GET_EXTERNAL_DEPENDENCIES. The string handle is made by the effect and freed by the host.
struct PF_ExtDependenciesExtra {
    PF_DepCheckType check_type;
    PF_Handle dependencies_strH;
};

/// The type of the exported command entry, EffectMain. `params` and `output` are null, and `extra` has no meaning, for
/// commands that do not use them. Returns 0 or an error of hostapi/errors.h; no exception may leave it. The thread is
/// the command's. [any]
typedef PF_Err (*PF_FilterProc)(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamList params,
                                PF_LayerDef* output, void* extra);
