// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A tiny effect for tests of the host: what it has seen, for a test to read through the module's exports, and the
// flaws that its "Flaw" popup makes it show.

#include "hostapi/commands.h"
#include "hostapi/smart_render.h"

/// The painter's rows.
enum PainterRow {
    PAINTER_LAYER = 0,
    PAINTER_GROUP_START,
    PAINTER_COLOR,
    PAINTER_BORDER,
    PAINTER_CENTRE,
    PAINTER_ANGLE,
    PAINTER_PICTURE,
    PAINTER_GROUP_END,
    PAINTER_FLAW,
    PAINTER_BUTTON,
    PAINTER_COUNT
};

/// 1-based items of the "Flaw" popup.
enum PainterFlaw {
    FLAW_NONE = 1,
    FLAW_THROW,
    FLAW_THROW_NUMBER,
    FLAW_ERROR_WITH_MESSAGE,
    FLAW_PRE_RENDER_ERROR,
    FLAW_LONG_MESSAGE,
    FLAW_LEAK,
    FLAW_UNKNOWN_CHECKOUT,
    FLAW_CHECKOUT_TWICE,
    FLAW_SAME_ID,
    FLAW_NO_CHECKIN,
    FLAW_NO_OUTPUT,
    FLAW_TOO_LARGE,
    FLAW_NO_EXTRA_FLAG,
    FLAW_UNKNOWN_SUITE,
    FLAW_MISSING_SLOT,
    FLAW_BAD_REFERENCE,
    FLAW_THROW_IN_PIXELS,
    FLAW_ERROR_IN_PIXELS,
    FLAW_LATE_CHECKOUT
};
inline constexpr char kPainterFlaws[] =
    "None|Throw|Throw Number|Error With Message|Pre-Render Error|Long Message|Leak|Unknown Checkout|Checkout Twice|"
    "Same Id|No Checkin|No Output|Too Large|No Extra Flag|Unknown Suite|Missing Slot|Bad Reference|Throw In Pixels|"
    "Error In Pixels|Late Checkout";
inline constexpr A_short kPainterFlawCount = 20;

inline constexpr A_long kPainterInputId = 7;
inline constexpr A_long kPainterPictureId = 8;

/// What the painter saw last. Exported as `painterSeen`.
struct PainterSeen {
    int commands[PF_Cmd_NUM_CMDS];  ///< how often each was sent
    PF_InData preRenderIn;
    PF_InData renderIn;
    PF_PreRenderInput preRender;
    PF_LRect resultBefore;  ///< what the output record held when pre-render began
    PF_LRect maxBefore;
    PF_CheckoutResult input;
    PF_CheckoutResult picture;
    PF_SmartRenderInput render;
    PF_EffectWorld inputWorld;  ///< zero when there was none
    PF_EffectWorld pictureWorld;
    PF_EffectWorld outputWorld;
    A_u_char firstOutputByte;  ///< what an unwritten output holds
    PF_ParamDef centre;        ///< as checked out in render
    PF_ParamDef layer;
    PF_OutData outBefore;  ///< what the output record held when render began
    int allocated;         ///< pre-render records
    int deleted;
};
