// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A small, right effect, and many wrong ones: the same objects linked with another number. The judge must pass the
// right one on every level, and must fail each wrong one in the check that is about its fault.

#include "hostapi/hostapi.h"

/// The faults; each wrong module has one. MUTANTS in tests/modules/CMakeLists.txt lists them too.
enum class Mutant {
    kNone,
    // 1: the file and its registration
    kMissingMain,
    kWrongReserved,
    kNewerInterface,
    kRegistersTwice,
    kSwallowsRefusal,
    kExportsMore,
    kSlowSetup,
    kPrintsOnLoad,
    kLeaksFile,
    // 2: the declaration
    kNoVersion,
    kFlagsChange,
    kSameDiskId,
    kDefaultOutside,
    kWrongItemCount,
    kEndlessName,
    kEndlessAbout,
    kNoAbout,
    kAboutOverruns,
    kCrashesInPremiere,
    kRefusesUnknown,
    kRendersOldWay,
    kDrawsNothing,
    kDrawsNaN,
    kExits,
    kHangs,
    // 3: orders
    kFailsAfterAbout,
    kCrashesOnSecondSetdown,
    kNeedsDriver,
    kLeaksSuite,
    kReleasesTwice,
    kUsesReleasedSuite,
    kAsksUnknownSuite,
    kClearsContext,
    kWritesStatic,
    kTakesUnknownLayer,
    // 4: memory
    kLeaksHandle,
    kLeaksLock,
    kUsesDisposedHandle,
    kWritesPastHandle,
    kLeaksParam,
    kChecksInTwice,
    kReadsCheckedIn,
    kFreesPreRenderData,
    kLeaksPreRenderData,
    kLeaksWorld,
    kKeepsLayer,
    kWritesInput,
    kWritesGlobalData,
    // 5: frames and the panel
    kCrashesOnTinyLayer,
    kCrashesAt16Bits,
    kAssumesTightRows,
    kWritesPadding,
    kWritesRowTooFar,
    kWritesBefore,
    kMaxFollowsRequest,
    kResultBeyondMax,
    kTrustsExtentHint,
    kIgnoresDownsample,
    kDividesByStep,
    kTrustsIndex,
    kHandlesEverything,
    // 6: values
    kNaNInRange,
    kFailsAtMaximum,
    kTrustsPopup,
    kLoopsOnHuge,
    kTrustsPointers,
    kTilesDiffer,
    kIndexesByPixel,
    // 7: faults
    kSwallowsError,
    kReplacesError,
    kGoesOnAfterError,
    kLeaksOnError,
    kTrustsSuite,
    kIgnoresMissingSuite,
    kTrustsHandle,
    kTrustsMalloc,
    kTrustsDriver,
    kSharesEnvironment,
    // 8: threads
    kSharesScratch,
    kLeaksPerThread,
    kOutlivesUnload,
    kLocksWhileCalling,
    kLocksInPreRender,
    kLocksInSetUp,
    kLocksInUpdate,
    kLocksInChange,
    kLocksInDraw,
    kCountsRows,
    // 9: results
    kDrawsChance,
    kRemembersFrame,
    kDrawsTime,
    kClaimsLess,
    kEndlessErrorText,
    // 10: endurance
    kGrowsPerFrame,
    kSlowsDown,
    kCrashesLate,
    // Right, but hard to measure
    kWaits,     ///< frames with many steps are kept waiting, as by a busy machine
    kUnsteady,  ///< the same work takes now more and now less time
};

/// The fault of this module; defined by the one source that is its own.
extern const Mutant kMutant;

/// A factor of 1 that comes by way of the driver; only the module that trusts one has it.
extern float (*const kDriverFactor)();

inline bool Is(Mutant mutant) {
    return kMutant == mutant;
}

enum JudgedRow {
    JUDGED_INPUT = 0,
    JUDGED_GROUP,
    JUDGED_AMOUNT,  ///< percent of the layer's own alpha that is kept
    JUDGED_MODE,    ///< 1 plain, 2 tinted, 3 with the picture
    JUDGED_COLOUR,
    JUDGED_ANGLE,  ///< not drawn
    JUDGED_CENTRE,
    JUDGED_SHOWN,
    JUDGED_PICTURE,
    JUDGED_STEPS,  ///< how often a pixel is worked on; changes nothing
    JUDGED_BORDER,
    JUDGED_GROUP_END,
    JUDGED_BUTTON,
    JUDGED_PAINTED,  ///< drawn by the effect
    JUDGED_COUNT
};

inline constexpr A_long kInputId = 1;
inline constexpr A_long kPictureId = 2;

/// What pre-render hands to render.
struct Handed {
    A_long border;
};

/// A suite held for a scope. Throws its error, or A_Err_MISSING_SUITE when the host lends nothing.
template <typename Suite>
class Held {
 public:
    Held(const PF_InData* in, const char* name, int32_t version)
        : basic_(in->pica_basicP), name_(name), version_(version) {
        if (!basic_ && !Is(Mutant::kTrustsPointers)) throw PF_Err{A_Err_MISSING_SUITE};
        const void* suite = nullptr;
        const PF_Err error = basic_->AcquireSuite(name, version, &suite);
        if (!Is(Mutant::kTrustsSuite)) {
            if (error) throw PF_Err{error};
            if (!suite) throw PF_Err{A_Err_MISSING_SUITE};
        }
        suite_ = static_cast<const Suite*>(suite);
    }
    ~Held() {
        if (!Is(Mutant::kLeaksSuite)) basic_->ReleaseSuite(name_, version_);
        if (Is(Mutant::kReleasesTwice)) basic_->ReleaseSuite(name_, version_);
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    const Suite* operator->() const { return suite_; }
    const Suite* Get() const { return suite_; }

 private:
    SPBasicSuite* basic_;
    const char* name_;
    int32_t version_;
    const Suite* suite_ = nullptr;
};

/// A parameter, checked out and in again.
PF_ParamDef ValueOf(PF_InData* in, PF_ParamIndex index);

/// What two rectangles share; all zero for nothing.
PF_LRect IntersectionOf(const PF_LRect& a, const PF_LRect& b);

PF_Err SetUpParams(PF_InData* in, PF_OutData* out);
PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra);
PF_Err Render(PF_InData* in, PF_OutData* out, PF_SmartRenderExtra* extra);
PF_Err UpdatePanel(PF_InData* in, PF_ParamDef* params[]);
PF_Err DrawPanel(PF_InData* in, PF_EventExtra* event);
