// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one error that a plug-in of this folder makes. Each binary is the same objects with another number.

namespace umbrant::ofx::planted {

enum class Flaw {
    kNone,
    // Its binary and its answers.
    kCallsTooEarly,
    kWrongApi,
    kThrows,
    kAnswersUnknown,
    kAnswersFatal,
    kDefaultsRender,
    kThrowsInRender,
    kNeedsSuites,
    kIgnoresMissingSuites,
    kTrustsHandles,
    kClaimsIdentity,
    // Its description.
    kNoLabel,
    kWrongType,
    kWrongDimension,
    kWrongIndex,
    kWrongValue,
    kUnknownProperty,
    kForeignProperty,
    kParamTwice,
    kClipTwice,
    kWrongName,
    kNoOutput,
    kNoComponents,
    kMandatoryTexture,
    kParentLater,
    kDefaultOutside,
    kEmptySlider,
    kNoOptions,
    kOptionGap,
    kDefinesLate,
    // Handles and texts.
    kKeepsArguments,
    kKeepsText,
    kNullHandle,
    kWrongHandle,
    // Values.
    kEndlessChange,
    kSetsInRender,
    kIgnoresTime,
    kNoSuchOption,
    // Frames.
    kWrongRegion,
    kUnsetRegion,
    kUnknownIdentity,
    kIgnoresWindow,
    kWritesGap,
    kWritesBefore,
    kIgnoresNegativeRows,
    kLeavesPixels,
    kWritesSource,
    kWritesImageProperty,
    kUpsideDown,
    kIgnoresOrigin,
    kKeepsImage,
    kReleasesTwice,
    kOtherTime,
    kNeverAborts,
    // Services.
    kLeaksMemory,
    kFreesTwice,
    kLeaksMutex,
    kLeaksImageMemory,
    kOpenEdit,
    kWrongMessage,
    kNestedThreads,
    kWrongProgress,
};

/// Defined by each binary.
extern const Flaw flaw;

inline bool Has(Flaw which) {
    return flaw == which;
}

}  // namespace umbrant::ofx::planted
