// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The actions of instances, one function each. All may throw Error, Refusal and what the standard library throws; the
// entry point makes statuses of it.

#include "openfx/abi/effect_properties.h"
#include "openfx/host/properties.h"
#include "openfx/instance.h"

namespace umbrant::openfx {

OfxStatus CreateInstance(OfxImageEffectHandle effect);
OfxStatus DestroyInstance(OfxImageEffectHandle effect);
/// Rows that are shown and hidden, and the buttons. [main]
OfxStatus InstanceChanged(Instance& instance, const Properties& arguments);

/// Canonical region of the result. ReplyDefault where it cannot be told: some hosts give up on an effect that fails
/// here.
OfxStatus GetRegionOfDefinition(const Instance& instance, const Properties& arguments, const Properties& answers);
OfxStatus GetRegionsOfInterest(const Instance& instance, const Properties& arguments, const Properties& answers);
OfxStatus IsIdentity(const Instance& instance, const Properties& arguments, const Properties& answers);
OfxStatus GetClipPreferences(const Instance& instance, const Properties& answers);
OfxStatus Render(Instance& instance, const Properties& arguments);

/// Whether the result at a time is the source to the bit.
bool IsSource(const Instance& instance, OfxTime time);

/// Loads the preset file and sets the parameters, in one step of undo. [main]
OfxStatus LoadPreset(Instance& instance, OfxTime time);
/// Shows and hides rows by the values at a time, and enables those that need a texture. [main]
void UpdateRows(Instance& instance, OfxTime time);

// Arguments that hosts give, and what a missing one is taken for.
inline OfxTime TimeOf(const Properties& arguments) {
    return arguments.Double(kOfxPropTime).value_or(0);
}

/// Of the argument and not of the images, which lack it or have another one in some hosts.
inline Scale ScaleOf(const Properties& arguments) {
    const auto scale = arguments.Doubles<2>(kOfxImageEffectPropRenderScale);
    return scale && (*scale)[0] > 0 && (*scale)[1] > 0 ? Scale{(*scale)[0], (*scale)[1]} : Scale{};
}

}  // namespace umbrant::openfx
