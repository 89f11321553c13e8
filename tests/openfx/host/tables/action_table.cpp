// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Every action and the answers that an effect may give to it.

#include "tests/openfx/host/tables/tables.h"

namespace umbrant::ofx {

const std::vector<ActionRow>& ActionTable() {
    static const std::vector<ActionRow> rows = {
        // Without a suite that it needs, an effect may say so at once.
        {"OfxActionLoad", "OK, ReplyDefault, ErrMissingHostFeature, Failed, ErrFatal"},
        {"OfxActionUnload", "OK, ReplyDefault, ErrFatal"},
        {"OfxActionDescribe", "OK, ErrMissingHostFeature, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionDescribeInContext", "OK, ErrMissingHostFeature, ErrMemory, Failed, ErrFatal"},
        {"OfxActionCreateInstance", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxActionDestroyInstance", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionBeginInstanceChanged", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionInstanceChanged", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionEndInstanceChanged", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionPurgeCaches", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionSyncPrivateData", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionBeginInstanceEdit", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxActionEndInstanceEdit", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxImageEffectActionGetRegionOfDefinition", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionGetRegionsOfInterest", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionGetFramesNeeded", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionIsIdentity", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionRender", "OK, ErrMemory, Failed, Unlicensed, ErrFatal"},
        {"OfxImageEffectActionBeginSequenceRender", "OK, ReplyDefault, ErrMemory, Failed, Unlicensed, ErrFatal"},
        {"OfxImageEffectActionEndSequenceRender", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionGetClipPreferences", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionGetTimeDomain", "OK, ReplyDefault, ErrMemory, Failed, ErrFatal"},
        {"OfxImageEffectActionGetOutputColourspace", "OK, ReplyDefault, Failed"},
        {"OfxActionOpenGLContextAttached", "OK, ReplyDefault, ErrMemory, Failed"},
        {"kOfxActionOpenGLContextDetached", "OK, ReplyDefault, ErrMemory, Failed"},
        {"OfxActionDialog", "OK"},
        {"OfxInteractActionDraw", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionPenMotion", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionPenDown", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionPenUp", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionKeyDown", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionKeyUp", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionKeyRepeat", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionGainFocus", "OK, ReplyDefault, Failed, ErrFatal"},
        {"OfxInteractActionLoseFocus", "OK, ReplyDefault, Failed, ErrFatal"},
    };
    return rows;
}

}  // namespace umbrant::ofx
