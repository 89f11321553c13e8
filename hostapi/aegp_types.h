// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Handles and records of the application-level (layer, effect, stream) suites.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/params.h"
#include "hostapi/transfer.h"

struct _AEGP_Layer;
struct _AEGP_Effect;
struct _AEGP_Comp;
struct _AEGP_Item;
struct _Up_OpaqueMem;
struct _AEGPp_Stream;
struct _AEGP_Mask;
struct _AEGP_MaskOutline;
struct _AEGP_TextDocument;
struct _AEGP_MarkerVal;

typedef _Up_OpaqueMem** AEGP_MemHandle;
typedef _AEGP_Item** AEGP_ItemH;
typedef _AEGP_Comp** AEGP_CompH;
typedef _AEGP_Layer** AEGP_LayerH;
typedef _AEGP_Effect** AEGP_EffectRefH;
typedef _AEGP_Mask** AEGP_MaskRefH;
typedef _AEGPp_Stream** AEGP_StreamRefH;
typedef _AEGP_MaskOutline** AEGP_MaskOutlineValH;
typedef _AEGP_TextDocument** AEGP_TextDocumentH;
typedef _AEGP_MarkerVal* AEGP_MarkerValP;

typedef A_long AEGP_PluginID;
typedef A_long AEGP_LayerIDVal;
typedef A_long AEGP_MaskIDVal;
typedef A_char AEGP_LabelID;
typedef A_long AEGP_TransferFlags;
typedef A_long AEGP_TrackMatte;
typedef A_short AEGP_LayerQuality;
typedef A_short AEGP_LayerSamplingQuality;
typedef A_long AEGP_LayerFlags;
typedef A_long AEGP_ObjectType;
typedef A_short AEGP_LTimeMode;
typedef A_long AEGP_LayerStream;
typedef A_long AEGP_MaskStream;
typedef A_long AEGP_StreamFlags;
typedef A_FpLong AEGP_OneDVal;
typedef A_FpLong AEGP_FourDVal[4];
typedef A_Handle AEGP_ArbBlockVal;
typedef A_long AEGP_KeyInterpolationMask;
typedef A_long AEGP_StreamType;
typedef A_long AEGP_StreamGroupingType;
typedef A_u_long AEGP_DynStreamFlags;
typedef A_long AEGP_InstalledEffectKey;
typedef A_long AEGP_EffectFlags;
typedef A_long AEGP_EffectIndex;

inline constexpr A_long AEGP_LayerIDVal_NONE = 0;
inline constexpr A_long AEGP_InstalledEffectKey_NONE = 0;

inline constexpr AEGP_TransferFlags AEGP_TransferFlag_PRESERVE_ALPHA = 1;
inline constexpr AEGP_TransferFlags AEGP_TransferFlag_RANDOMIZE_DISSOLVE = 2;

inline constexpr AEGP_TrackMatte AEGP_TrackMatte_NO_TRACK_MATTE = 0;
inline constexpr AEGP_TrackMatte AEGP_TrackMatte_ALPHA = 1;
inline constexpr AEGP_TrackMatte AEGP_TrackMatte_NOT_ALPHA = 2;
inline constexpr AEGP_TrackMatte AEGP_TrackMatte_LUMA = 3;
inline constexpr AEGP_TrackMatte AEGP_TrackMatte_NOT_LUMA = 4;

inline constexpr AEGP_LayerQuality AEGP_LayerQual_NONE = -1;
inline constexpr AEGP_LayerQuality AEGP_LayerQual_WIREFRAME = 0;
inline constexpr AEGP_LayerQuality AEGP_LayerQual_DRAFT = 1;
inline constexpr AEGP_LayerQuality AEGP_LayerQual_BEST = 2;

inline constexpr AEGP_LayerSamplingQuality AEGP_LayerSamplingQual_BILINEAR = 0;
inline constexpr AEGP_LayerSamplingQuality AEGP_LayerSamplingQual_BICUBIC = 1;

inline constexpr AEGP_LayerFlags AEGP_LayerFlag_NONE = 0;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_VIDEO_ACTIVE = 1;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_AUDIO_ACTIVE = 2;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_EFFECTS_ACTIVE = 4;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_MOTION_BLUR = 8;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_FRAME_BLENDING = 16;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_LOCKED = 32;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_SHY = 64;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_COLLAPSE = 128;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_AUTO_ORIENT_ROTATION = 256;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_ADJUSTMENT_LAYER = 512;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_TIME_REMAPPING = 1024;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_LAYER_IS_3D = 2048;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_LOOK_AT_CAMERA = 4096;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_LOOK_AT_POI = 8192;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_SOLO = 16384;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_MARKERS_LOCKED = 32768;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_NULL_LAYER = 65536;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_HIDE_LOCKED_MASKS = 131072;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_GUIDE_LAYER = 262144;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_ADVANCED_FRAME_BLENDING = 524288;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_SUBLAYERS_RENDER_SEPARATELY = 1048576;
inline constexpr AEGP_LayerFlags AEGP_LayerFlag_ENVIRONMENT_LAYER = 2097152;

inline constexpr AEGP_ObjectType AEGP_ObjectType_NONE = -1;
inline constexpr AEGP_ObjectType AEGP_ObjectType_AV = 0;
inline constexpr AEGP_ObjectType AEGP_ObjectType_LIGHT = 1;
inline constexpr AEGP_ObjectType AEGP_ObjectType_CAMERA = 2;
inline constexpr AEGP_ObjectType AEGP_ObjectType_TEXT = 3;
inline constexpr AEGP_ObjectType AEGP_ObjectType_VECTOR = 4;
inline constexpr AEGP_ObjectType AEGP_ObjectType_3D_MODEL = 5;
inline constexpr AEGP_ObjectType AEGP_ObjectType_RESERVED1 = 6;
inline constexpr AEGP_ObjectType AEGP_ObjectType_RESERVED2 = 7;
inline constexpr AEGP_ObjectType AEGP_ObjectType_RESERVED3 = 8;
inline constexpr AEGP_ObjectType AEGP_ObjectType_NUM_TYPES = 9;

inline constexpr AEGP_LTimeMode AEGP_LTimeMode_LayerTime = 0;
inline constexpr AEGP_LTimeMode AEGP_LTimeMode_CompTime = 1;

inline constexpr AEGP_LayerStream AEGP_LayerStream_NONE = -1;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ANCHORPOINT = 0;
inline constexpr AEGP_LayerStream AEGP_LayerStream_POSITION = 1;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SCALE = 2;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ROTATION = 3;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ROTATE_Z = 3;
inline constexpr AEGP_LayerStream AEGP_LayerStream_OPACITY = 4;
inline constexpr AEGP_LayerStream AEGP_LayerStream_AUDIO = 5;
inline constexpr AEGP_LayerStream AEGP_LayerStream_MARKER = 6;
inline constexpr AEGP_LayerStream AEGP_LayerStream_TIME_REMAP = 7;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ROTATE_X = 8;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ROTATE_Y = 9;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ORIENTATION = 10;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ZOOM = 11;
inline constexpr AEGP_LayerStream AEGP_LayerStream_DEPTH_OF_FIELD = 12;
inline constexpr AEGP_LayerStream AEGP_LayerStream_FOCUS_DISTANCE = 13;
inline constexpr AEGP_LayerStream AEGP_LayerStream_APERTURE = 14;
inline constexpr AEGP_LayerStream AEGP_LayerStream_BLUR_LEVEL = 15;
inline constexpr AEGP_LayerStream AEGP_LayerStream_INTENSITY = 16;
inline constexpr AEGP_LayerStream AEGP_LayerStream_COLOR = 17;
inline constexpr AEGP_LayerStream AEGP_LayerStream_CONE_ANGLE = 18;
inline constexpr AEGP_LayerStream AEGP_LayerStream_CONE_FEATHER = 19;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SHADOW_DARKNESS = 20;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SHADOW_DIFFUSION = 21;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ACCEPTS_SHADOWS = 22;
inline constexpr AEGP_LayerStream AEGP_LayerStream_ACCEPTS_LIGHTS = 23;
inline constexpr AEGP_LayerStream AEGP_LayerStream_AMBIENT_COEFF = 24;
inline constexpr AEGP_LayerStream AEGP_LayerStream_DIFFUSE_COEFF = 25;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SPECULAR_INTENSITY = 26;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SPECULAR_SHININESS = 27;
inline constexpr AEGP_LayerStream AEGP_LayerStream_CASTS_SHADOWS = 28;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_TRANSMISSION = 29;
inline constexpr AEGP_LayerStream AEGP_LayerStream_METAL = 30;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SOURCE_TEXT = 31;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_SHAPE = 32;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_ROTATION = 33;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_ROUNDNESS = 34;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_ASPECT_RATIO = 35;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_DIFFRACTION_FRINGE = 36;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_HIGHLIGHT_GAIN = 37;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_HIGHLIGHT_THRESHOLD = 38;
inline constexpr AEGP_LayerStream AEGP_LayerStream_IRIS_HIGHLIGHT_SATURATION = 39;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_FALLOFF_TYPE = 40;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_FALLOFF_START = 41;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_FALLOFF_DISTANCE = 42;
inline constexpr AEGP_LayerStream AEGP_LayerStream_REFLECTION_INTENSITY = 43;
inline constexpr AEGP_LayerStream AEGP_LayerStream_REFLECTION_SHARPNESS = 44;
inline constexpr AEGP_LayerStream AEGP_LayerStream_REFLECTION_ROLLOFF = 45;
inline constexpr AEGP_LayerStream AEGP_LayerStream_TRANSPARENCY_COEFF = 46;
inline constexpr AEGP_LayerStream AEGP_LayerStream_TRANSPARENCY_ROLLOFF = 47;
inline constexpr AEGP_LayerStream AEGP_LayerStream_INDEX_OF_REFRACTION = 48;
inline constexpr AEGP_LayerStream AEGP_LayerStream_EXTRUSION_BEVEL_STYLE = 49;
inline constexpr AEGP_LayerStream AEGP_LayerStream_EXTRUSION_BEVEL_DIRECTION = 50;
inline constexpr AEGP_LayerStream AEGP_LayerStream_EXTRUSION_BEVEL_DEPTH = 51;
inline constexpr AEGP_LayerStream AEGP_LayerStream_EXTRUSION_HOLE_BEVEL_DEPTH = 52;
inline constexpr AEGP_LayerStream AEGP_LayerStream_EXTRUSION_DEPTH = 53;
inline constexpr AEGP_LayerStream AEGP_LayerStream_PLANE_CURVATURE = 54;
inline constexpr AEGP_LayerStream AEGP_LayerStream_PLANE_SUBDIVISION = 55;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_BACKGROUND_VISIBLE = 56;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_BACKGROUND_OPACITY = 57;
inline constexpr AEGP_LayerStream AEGP_LayerStream_LIGHT_BACKGROUND_BLUR = 58;
inline constexpr AEGP_LayerStream AEGP_LayerStream_SHADOW_COLOR = 59;
inline constexpr AEGP_LayerStream AEGP_LayerStream_NUMTYPES = 60;
inline constexpr AEGP_LayerStream AEGP_LayerStream_BEGIN = 0;
inline constexpr AEGP_LayerStream AEGP_LayerStream_END = 60;

inline constexpr AEGP_MaskStream AEGP_MaskStream_OUTLINE = 400;
inline constexpr AEGP_MaskStream AEGP_MaskStream_OPACITY = 401;
inline constexpr AEGP_MaskStream AEGP_MaskStream_FEATHER = 402;
inline constexpr AEGP_MaskStream AEGP_MaskStream_EXPANSION = 403;
inline constexpr AEGP_MaskStream AEGP_MaskStream_BEGIN = 400;
inline constexpr AEGP_MaskStream AEGP_MaskStream_END = 404;

inline constexpr AEGP_StreamFlags AEGP_StreamFlag_NONE = 0;
inline constexpr AEGP_StreamFlags AEGP_StreamFlag_HAS_MIN = 1;
inline constexpr AEGP_StreamFlags AEGP_StreamFlag_HAS_MAX = 2;
inline constexpr AEGP_StreamFlags AEGP_StreamFlag_IS_SPATIAL = 4;

inline constexpr AEGP_KeyInterpolationMask AEGP_KeyInterpMask_NONE = 0;
inline constexpr AEGP_KeyInterpolationMask AEGP_KeyInterpMask_LINEAR = 1;
inline constexpr AEGP_KeyInterpolationMask AEGP_KeyInterpMask_BEZIER = 2;
inline constexpr AEGP_KeyInterpolationMask AEGP_KeyInterpMask_HOLD = 4;
inline constexpr AEGP_KeyInterpolationMask AEGP_KeyInterpMask_CUSTOM = 8;
inline constexpr AEGP_KeyInterpolationMask AEGP_KeyInterpMask_ANY = 65535;

inline constexpr AEGP_StreamType AEGP_StreamType_NO_DATA = 0;
inline constexpr AEGP_StreamType AEGP_StreamType_ThreeD_SPATIAL = 1;
inline constexpr AEGP_StreamType AEGP_StreamType_ThreeD = 2;
inline constexpr AEGP_StreamType AEGP_StreamType_TwoD_SPATIAL = 3;
inline constexpr AEGP_StreamType AEGP_StreamType_TwoD = 4;
inline constexpr AEGP_StreamType AEGP_StreamType_OneD = 5;
inline constexpr AEGP_StreamType AEGP_StreamType_COLOR = 6;
inline constexpr AEGP_StreamType AEGP_StreamType_ARB = 7;
inline constexpr AEGP_StreamType AEGP_StreamType_MARKER = 8;
inline constexpr AEGP_StreamType AEGP_StreamType_LAYER_ID = 9;
inline constexpr AEGP_StreamType AEGP_StreamType_MASK_ID = 10;
inline constexpr AEGP_StreamType AEGP_StreamType_MASK = 11;
inline constexpr AEGP_StreamType AEGP_StreamType_TEXT_DOCUMENT = 12;

inline constexpr AEGP_StreamGroupingType AEGP_StreamGroupingType_NONE = -1;
inline constexpr AEGP_StreamGroupingType AEGP_StreamGroupingType_LEAF = 0;
inline constexpr AEGP_StreamGroupingType AEGP_StreamGroupingType_NAMED_GROUP = 1;
inline constexpr AEGP_StreamGroupingType AEGP_StreamGroupingType_INDEXED_GROUP = 2;

inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_ACTIVE_EYEBALL = 1;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_HIDDEN = 2;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_DISABLED = 16;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_ELIDED = 32;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_SHOWN_WHEN_EMPTY = 1024;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_SKIP_REVEAL_WHEN_UNHIDDEN = 65536;

inline constexpr AEGP_EffectFlags AEGP_EffectFlags_NONE = 0;
inline constexpr AEGP_EffectFlags AEGP_EffectFlags_ACTIVE = 1;
inline constexpr AEGP_EffectFlags AEGP_EffectFlags_AUDIO_ONLY = 2;
inline constexpr AEGP_EffectFlags AEGP_EffectFlags_AUDIO_TOO = 4;
inline constexpr AEGP_EffectFlags AEGP_EffectFlags_MISSING = 8;

inline constexpr A_long PF_MaskMode_NONE = 0;
inline constexpr A_long PF_MaskMode_ADD = 1;
inline constexpr A_long PF_MaskMode_SUBTRACT = 2;
inline constexpr A_long PF_MaskMode_INTERSECT = 3;
inline constexpr A_long PF_MaskMode_LIGHTEN = 4;
inline constexpr A_long PF_MaskMode_DARKEN = 5;
inline constexpr A_long PF_MaskMode_DIFFERENCE = 6;
inline constexpr A_long PF_MaskMode_ACCUM = 7;
inline constexpr A_long PF_NUM_MASKMODES = 8;

/// 0 to 1 per channel, and beyond.
struct AEGP_ColorVal {
    A_FpLong alphaF;
    A_FpLong redF;
    A_FpLong greenF;
    A_FpLong blueF;
};

/// A layer's place in the blending of its composition.
struct AEGP_LayerTransferMode {
    PF_TransferMode mode;
    AEGP_TransferFlags flags;
    AEGP_TrackMatte track_matte;
};

/// A pair of numbers in the stream's unit.
struct AEGP_TwoDVal {
    A_FpLong x;
    A_FpLong y;
};

/// Three numbers in the stream's unit.
struct AEGP_ThreeDVal {
    A_FpLong x;
    A_FpLong y;
    A_FpLong z;
};
