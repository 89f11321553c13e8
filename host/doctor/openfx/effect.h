// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An effect as this host has it, descriptor or instance: its properties, clips and parameters.

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/doctor/openfx/property_set.h"
#include "openfx/abi/image_effect_suite.h"
#include "openfx/abi/parameter_suite.h"

namespace umbrant::host {

struct OpenFxParameter {
    std::string name;
    std::string type;
    PropertySet properties;
    PropertySet::Values value;  ///< of an instance; never animated
};

struct OpenFxParameterSet {
    PropertySet properties;
    std::vector<std::unique_ptr<OpenFxParameter>> parameters;

    OpenFxParameter* Find(const std::string& name) const;
};

/// An image that a clip has. Pixels are in `memory`, with guard bytes around them; the properties say where.
struct OpenFxImage {
    PropertySet properties;
    std::vector<std::byte> memory;
    std::atomic<int> taken{0};  ///< how often the plug-in has it and has not released it
};

struct OpenFxClip {
    std::string name;
    PropertySet properties;
    std::unique_ptr<OpenFxImage> image;  ///< of an instance; null where nothing is connected
    OfxRectD region{};                   ///< canonical
};

struct OpenFxEffect {
    PropertySet properties;
    OpenFxParameterSet parameters;
    std::vector<std::unique_ptr<OpenFxClip>> clips;

    OpenFxClip* Find(const std::string& clip) const;
    OfxImageEffectHandle Handle() { return reinterpret_cast<OfxImageEffectHandle>(this); }
};

/// The functions that plug-ins call.
const OfxImageEffectSuiteV1& ImageEffectSuite();
const OfxParameterSuiteV1& ParameterSuite();

/// The elements of a parameter's value: 0 for one without a value, as a group; -1 for a type that this host does not
/// know.
int ValueCount(const std::string& parameterType);

}  // namespace umbrant::host
