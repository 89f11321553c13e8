// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Events that the host sends to a parameter which draws itself.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/drawbot_types.h"
#include "hostapi/geometry.h"
#include "hostapi/params.h"

typedef A_long PF_CustomEventFlags;

inline constexpr PF_CustomEventFlags PF_CustomEFlag_NONE = 0;
inline constexpr PF_CustomEventFlags PF_CustomEFlag_COMP = 1;
inline constexpr PF_CustomEventFlags PF_CustomEFlag_LAYER = 2;
inline constexpr PF_CustomEventFlags PF_CustomEFlag_EFFECT = 4;
inline constexpr PF_CustomEventFlags PF_CustomEFlag_PREVIEW = 8;

typedef A_long PF_WindowType;

inline constexpr PF_WindowType PF_Window_NONE = -1;
inline constexpr PF_WindowType PF_Window_COMP = 0;
inline constexpr PF_WindowType PF_Window_LAYER = 1;
inline constexpr PF_WindowType PF_Window_EFFECT = 2;
inline constexpr PF_WindowType PF_Window_PREVIEW = 3;

typedef A_long PF_EventType;

inline constexpr PF_EventType PF_Event_NONE = -1;
inline constexpr PF_EventType PF_Event_NEW_CONTEXT = 0;
inline constexpr PF_EventType PF_Event_ACTIVATE = 1;
inline constexpr PF_EventType PF_Event_DO_CLICK = 2;
inline constexpr PF_EventType PF_Event_DRAG = 3;
inline constexpr PF_EventType PF_Event_DRAW = 4;
inline constexpr PF_EventType PF_Event_DEACTIVATE = 5;
inline constexpr PF_EventType PF_Event_CLOSE_CONTEXT = 6;
inline constexpr PF_EventType PF_Event_IDLE = 7;
inline constexpr PF_EventType PF_Event_KEYDOWN_OBSOLETE = 8;
inline constexpr PF_EventType PF_Event_ADJUST_CURSOR = 9;
inline constexpr PF_EventType PF_Event_KEYDOWN = 10;
inline constexpr PF_EventType PF_Event_MOUSE_EXITED = 11;
inline constexpr PF_EventType PF_Event_NUM_EVENTS = 12;

typedef A_long PF_CursorType;
typedef A_long PF_Modifiers;

inline constexpr PF_Modifiers PF_Mod_NONE = 0;
inline constexpr PF_Modifiers PF_Mod_CMD_CTRL_KEY = 256;
inline constexpr PF_Modifiers PF_Mod_SHIFT_KEY = 512;
inline constexpr PF_Modifiers PF_Mod_CAPS_LOCK_KEY = 1024;
inline constexpr PF_Modifiers PF_Mod_OPT_ALT_KEY = 2048;
inline constexpr PF_Modifiers PF_Mod_MAC_CONTROL_KEY = 4096;

typedef A_u_long PF_KeyCode;
typedef A_long PF_EffectArea;

inline constexpr PF_EffectArea PF_EA_NONE = 0;
inline constexpr PF_EffectArea PF_EA_PARAM_TITLE = 1;
inline constexpr PF_EffectArea PF_EA_CONTROL = 2;

typedef A_long PF_EventOutFlags;

inline constexpr PF_EventOutFlags PF_EO_NONE = 0;
inline constexpr PF_EventOutFlags PF_EO_HANDLED_EVENT = 1;
inline constexpr PF_EventOutFlags PF_EO_ALWAYS_UPDATE = 2;
inline constexpr PF_EventOutFlags PF_EO_NEVER_UPDATE = 4;
inline constexpr PF_EventOutFlags PF_EO_UPDATE_NOW = 8;

typedef A_long PF_EventInFlags;

inline constexpr PF_EventInFlags PF_EI_NONE = 0;
inline constexpr PF_EventInFlags PF_EI_DONT_DRAW = 1;

typedef A_long PF_UIAlignment;

inline constexpr PF_UIAlignment PF_UIAlignment_NONE = 0;
inline constexpr PF_UIAlignment PF_UIAlignment_TOP = 1;
inline constexpr PF_UIAlignment PF_UIAlignment_LEFT = 2;
inline constexpr PF_UIAlignment PF_UIAlignment_BOTTOM = 4;
inline constexpr PF_UIAlignment PF_UIAlignment_RIGHT = 8;

inline constexpr A_long PF_Step_FORWARD = 0;
inline constexpr A_long PF_Step_BACKWARD = 1;

/// The pointer moved; the effect may choose its shape.
struct PF_AdjustCursorEventInfo {
    /// In panel pixels.
    PF_Point screen_point;
    PF_Modifiers modifiers;
    PF_CursorType set_cursor;
};

/// A press, or a drag that began with one.
struct PF_DoClickEventInfo {
    /// Ticks of the system's clock.
    A_u_long when;
    /// In panel pixels.
    PF_Point screen_point;
    A_long num_clicks;
    PF_Modifiers modifiers;
    /// The effect's own, kept from press to release.
    A_intptr_t continue_refcon[4];
    /// Set by the effect that wants the drag.
    PF_Boolean send_drag;
    /// Not 0: the button was released.
    PF_Boolean last_time;
};

/// A part of the panel must be drawn.
struct PF_DrawEventInfo {
    /// In panel pixels.
    PF_UnionableRect update_rect;
    /// Bits per pixel of the screen.
    A_long depth;
};

/// A key was pressed.
struct PF_KeyDownEvent {
    /// Ticks of the system's clock.
    A_u_long when;
    /// In panel pixels.
    PF_Point screen_point;
    PF_KeyCode keycode;
    PF_Modifiers modifiers;
};

/// The event's own part; `e_type` says which member.
union PF_EventUnion {
    PF_DoClickEventInfo do_click;
    PF_DrawEventInfo draw;
    PF_KeyDownEvent key_down;
    PF_AdjustCursorEventInfo adjust_cursor;
};

struct _PF_ContextRefcon;
typedef _PF_ContextRefcon* PF_ContextRefcon;

/// The window in which events happen.
struct PF_Context {
    /// PF_CONTEXT_MAGIC.
    A_u_long magic;
    PF_WindowType w_type;
    PF_ContextRefcon reserved_flt;
    /// The effect's own, kept with the window.
    A_intptr_t plugin_state[4];
    DRAWBOT_DrawRef reserved_drawref;
    void* reserved_paneP;
    void* reserved_job_manageP;
};

inline constexpr A_u_long PF_CONTEXT_MAGIC = 99251998u;

typedef PF_Context* PF_ContextPtr;
typedef PF_Context** PF_ContextH;

/// Offered while PF_Cmd_EVENT runs; the first argument is always `refcon`, itself the host's. Points are 16.16 fixed
/// pixels and are changed in place.
struct PF_EventCallbacks {
    void* refcon;
    /// A point of the layer as the composition places it at a time. [main]
    PF_Err (*layer_to_comp)(void* refcon, PF_ContextH context, A_long curr_time, A_long time_scale, PF_FixedPoint* pt);
    /// A point of the composition as the layer has it at a time. [main]
    PF_Err (*comp_to_layer)(void* refcon, PF_ContextH context, A_long curr_time, A_long time_scale, PF_FixedPoint* pt);
    /// The matrix from composition to layer; `*exists` is 0 where there is none. [main]
    PF_Err (*get_comp2layer_xform)(void* refcon, PF_ContextH context, A_long curr_time, A_long time_scale,
                                   A_long* exists, PF_FloatMatrix* c2l);
    /// The matrix from layer to composition. [main]
    PF_Err (*get_layer2comp_xform)(void* refcon, PF_ContextH context, A_long curr_time, A_long time_scale,
                                   PF_FloatMatrix* l2c);
    /// A point of the layer as the window shows it. [main]
    PF_Err (*source_to_frame)(void* refcon, PF_ContextH context, PF_FixedPoint* pt);
    /// A point of the window as the layer has it. [main]
    PF_Err (*frame_to_source)(void* refcon, PF_ContextH context, PF_FixedPoint* pt);
    /// Shows a colour in the application's info panel; the pixel goes by value. [main]
    PF_Err (*info_draw_color)(void* refcon, PF_Pixel color);
    /// Shows two lines in the info panel; either may be null. The strings stay the caller's. [main]
    PF_Err (*info_draw_text)(void* refcon, const A_char* text1Z0, const A_char* text2Z0);
};

typedef PF_EventCallbacks* PF_EventCallbacksPtr;

/// Where in the effect's panel an event happened.
struct PF_EffectWindowInfo {
    /// The row's parameter index.
    PF_ParamIndex index;
    PF_EffectArea area;
    /// The control, in panel pixels.
    PF_UnionableRect current_frame;
    /// The row's title, in panel pixels.
    PF_UnionableRect param_title_frame;
    A_long horiz_offset;
};

/// Where in a composition or layer window an event happened.
struct PF_ItemWindowInfo {
    PF_UnionableRect port_rect;
};

/// The window's own part; the context's `w_type` says which member.
union PF_WindowUnion {
    PF_EffectWindowInfo effect_win;
    PF_ItemWindowInfo item_win;
};

/// `extra` of PF_Cmd_EVENT. The record is the host's; the effect writes `evt_out_flags`.
struct PF_EventExtra {
    PF_ContextH contextH;
    PF_EventType e_type;
    PF_EventUnion u;
    PF_EffectWindowInfo effect_win;
    PF_EventCallbacks cbs;
    PF_EventInFlags evt_in_flags;
    PF_EventOutFlags evt_out_flags;
};

/// Which events a self-drawn parameter wants, and how large it is in other windows, in pixels.
struct PF_CustomUIInfo {
    A_long reserved;
    PF_CustomEventFlags events;
    A_long comp_ui_width;
    A_long comp_ui_height;
    PF_UIAlignment comp_ui_alignment;
    A_long layer_ui_width;
    A_long layer_ui_height;
    PF_UIAlignment layer_ui_alignment;
    A_long preview_ui_width;
    A_long preview_ui_height;
    PF_UIAlignment preview_ui_alignment;
};

struct _PF_AsyncManager;
typedef _PF_AsyncManager* PF_AsyncManagerP;
