// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Parameter definitions: one record per panel row, tagged by `param_type`. The same record declares a row, carries its
// value when checked out, and changes the panel's look. Strings are NUL-terminated and the giver's; bounds are
// inclusive.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/param_flags.h"
#include "hostapi/pixels.h"

typedef A_long PF_ParamType;

inline constexpr PF_ParamType PF_Param_RESERVED = -1;
inline constexpr PF_ParamType PF_Param_LAYER = 0;
inline constexpr PF_ParamType PF_Param_SLIDER = 1;
inline constexpr PF_ParamType PF_Param_FIX_SLIDER = 2;
inline constexpr PF_ParamType PF_Param_ANGLE = 3;
inline constexpr PF_ParamType PF_Param_CHECKBOX = 4;
inline constexpr PF_ParamType PF_Param_COLOR = 5;
inline constexpr PF_ParamType PF_Param_POINT = 6;
inline constexpr PF_ParamType PF_Param_POPUP = 7;
inline constexpr PF_ParamType PF_Param_CUSTOM = 8;
inline constexpr PF_ParamType PF_Param_NO_DATA = 9;
inline constexpr PF_ParamType PF_Param_FLOAT_SLIDER = 10;
inline constexpr PF_ParamType PF_Param_ARBITRARY_DATA = 11;
inline constexpr PF_ParamType PF_Param_PATH = 12;
inline constexpr PF_ParamType PF_Param_GROUP_START = 13;
inline constexpr PF_ParamType PF_Param_GROUP_END = 14;
inline constexpr PF_ParamType PF_Param_BUTTON = 15;
inline constexpr PF_ParamType PF_Param_RESERVED2 = 16;
inline constexpr PF_ParamType PF_Param_RESERVED3 = 17;
inline constexpr PF_ParamType PF_Param_POINT_3D = 18;

typedef A_long PF_ParamValue;
typedef A_long PF_ParamIndex;

inline constexpr PF_ParamIndex PF_ParamIndex_NONE = -1;
inline constexpr PF_ParamIndex PF_ParamIndex_CHECK_ALL = -2;
inline constexpr PF_ParamIndex PF_ParamIndex_CHECK_ALL_EXCEPT_LAYER_PARAMS = -3;
inline constexpr PF_ParamIndex PF_ParamIndex_CHECK_ALL_HONOR_EXCLUDE = -4;

typedef A_short PF_Precision;

inline constexpr PF_Precision PF_Precision_INTEGER = 0;
inline constexpr PF_Precision PF_Precision_TENTHS = 1;
inline constexpr PF_Precision PF_Precision_HUNDREDTHS = 2;
inline constexpr PF_Precision PF_Precision_THOUSANDTHS = 3;
inline constexpr PF_Precision PF_Precision_TEN_THOUSANDTHS = 4;

inline constexpr A_long PF_LayerDefault_MYSELF = -1;
inline constexpr A_long PF_LayerDefault_NONE = 0;

typedef A_u_long PF_PathID;

inline constexpr PF_PathID PF_PathID_NONE = 0;

typedef PF_Handle PF_ArbitraryH;

/// Whole numbers.
struct PF_SliderDef {
    PF_ParamValue value;
    A_char value_str[32];
    A_char value_desc[32];
    /// What may be typed.
    PF_ParamValue valid_min;
    PF_ParamValue valid_max;
    /// What the slider reaches.
    PF_ParamValue slider_min;
    PF_ParamValue slider_max;
    PF_ParamValue dephault;
};

/// Numbers in 16.16 fixed.
struct PF_FixedSliderDef {
    PF_Fixed value;
    A_char value_str[32];
    A_char value_desc[32];
    /// What may be typed.
    PF_Fixed valid_min;
    PF_Fixed valid_max;
    /// What the slider reaches.
    PF_Fixed slider_min;
    PF_Fixed slider_max;
    PF_Fixed dephault;
    /// Decimals shown.
    PF_Precision precision;
    PF_ValueDisplayFlags display_flags;
};

/// Floating-point numbers. A percent slider holds 50 for 50 %.
struct PF_FloatSliderDef {
    PF_FpLong value;
    PF_FpLong phase;
    A_char value_desc[32];
    /// What may be typed.
    PF_FpShort valid_min;
    PF_FpShort valid_max;
    /// What the slider reaches.
    PF_FpShort slider_min;
    PF_FpShort slider_max;
    PF_FpShort dephault;
    /// Decimals shown.
    PF_Precision precision;
    /// A percent sign or a pixel unit after the number.
    PF_ValueDisplayFlags display_flags;
    PF_FSliderFlags fs_flags;
    /// Only for audio.
    PF_FpShort curve_tolerance;
    PF_Boolean useExponent;
    PF_FpShort exponent;
};

/// Degrees in 16.16 fixed; turns may exceed 360.
struct PF_AngleDef {
    PF_Fixed value;
    PF_Fixed dephault;
    PF_Fixed valid_min;
    PF_Fixed valid_max;
};

/// 0 or 1.
struct PF_CheckBoxDef {
    PF_ParamValue value;
    PF_Boolean dephault;
    A_char reserved;
    A_short reserved1;
    union {
        /// Text next to the box.
        const A_char* nameptr;
    } u;
};

/// An 8-bit colour; the colour parameter suite gives it in floating point.
struct PF_ColorDef {
    PF_UnionablePixel value;
    PF_UnionablePixel dephault;
};

/// A point in the layer.
struct PF_PointDef {
    /// 16.16 fixed, in downsampled pixels.
    PF_Fixed x_value;
    PF_Fixed y_value;
    A_char reserved[3];
    /// Not 0: the point stays inside the layer.
    PF_Boolean restrict_bounds;
    /// 16.16 fixed, in percent of the layer's size.
    PF_Fixed x_dephault;
    PF_Fixed y_dephault;
};

/// A point in space.
struct PF_Point3DDef {
    /// In downsampled pixels.
    PF_FpLong x_value;
    PF_FpLong y_value;
    PF_FpLong z_value;
    /// In percent of the layer's size.
    PF_FpLong x_dephault;
    PF_FpLong y_dephault;
    PF_FpLong z_dephault;
    char reserved[16];
};

/// One of several items, counted from 1; a separator "(-" takes a number too.
struct PF_PopupDef {
    PF_ParamValue value;
    A_short num_choices;
    A_short dephault;
    union {
        /// The items, parted by '|'.
        const A_char* namesptr;
    } u;
};

/// A button; a press comes as PF_Cmd_USER_CHANGED_PARAM.
struct PF_ButtonDef {
    PF_ParamValue value;
    union {
        /// Text on the button.
        const A_char* namesptr;
    } u;
};

/// One of the layer's masks.
struct PF_PathDef {
    PF_PathID path_id;
    A_long reserved0;
    A_long dephault;
};

/// Data that only the effect understands; the host handles it through PF_ArbParamsExtra.
struct PF_ArbitraryDef {
    /// The effect's own number for the kind of data.
    A_short id;
    A_short pad;
    /// Made by the effect for the declaration and the host's afterwards; null where there is none.
    PF_ArbitraryH dephault;
    /// The host's.
    PF_ArbitraryH value;
    void* refconPV;
};

/// The value part; `param_type` says which member.
union PF_ParamDefUnion {
    PF_LayerDef ld;
    PF_SliderDef sd;
    PF_FixedSliderDef fd;
    PF_AngleDef ad;
    PF_CheckBoxDef bd;
    PF_ColorDef cd;
    PF_PointDef td;
    PF_PopupDef pd;
    PF_FloatSliderDef fs_d;
    PF_ArbitraryDef arb_d;
    PF_PathDef path_d;
    PF_ButtonDef button_d;
    PF_Point3DDef point3d_d;
};

/// A panel row.
struct PF_ParamDef {
    union {
        /// Declaring: the number under which projects store the row.
        A_long id;
        /// Afterwards: what happened to the value.
        PF_ChangeFlags change_flags;
    } uu;
    PF_ParamUIFlags ui_flags;
    /// Size of a self-drawn control in panel pixels.
    A_short ui_width;
    A_short ui_height;
    PF_ParamType param_type;
    /// The row's name, 31 characters and a NUL.
    A_char name_do_not_use_directly[32];
    PF_ParamFlags flags;
    A_long unused;
    PF_ParamDefUnion u;
};

typedef PF_ParamDef* PF_ParamDefPtr;
typedef PF_ParamDef** PF_ParamDefH;
typedef PF_ParamDef** PF_ParamList;

/// `extra` of PF_Cmd_USER_CHANGED_PARAM: which row.
struct PF_UserChangedParamExtra {
    PF_ParamIndex param_index;
};

/// A mark of a parameter's state, only good for the parameter utilities suite.
struct PF_State {
    A_long reservedAL[4];
};
