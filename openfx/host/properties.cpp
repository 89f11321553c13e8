// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Reads and writes properties one value at a time: not every host has the functions for several.

#include "openfx/host/properties.h"

#include "openfx/host/suites.h"

namespace umbrant::openfx {

bool Properties::Set(const char* name, int value, int index) const {
    return handle_ && TheSuites().property->propSetInt(handle_, name, index, value) == kOfxStatOK;
}

bool Properties::Set(const char* name, double value, int index) const {
    return handle_ && TheSuites().property->propSetDouble(handle_, name, index, value) == kOfxStatOK;
}

bool Properties::Set(const char* name, const char* value, int index) const {
    return handle_ && TheSuites().property->propSetString(handle_, name, index, value) == kOfxStatOK;
}

bool Properties::Set(const char* name, void* value, int index) const {
    return handle_ && TheSuites().property->propSetPointer(handle_, name, index, value) == kOfxStatOK;
}

bool Properties::SetAll(const char* name, std::initializer_list<double> values) const {
    bool isTaken = true;
    int index = 0;
    for (const double value : values) isTaken &= Set(name, value, index++);
    return isTaken;
}

bool Properties::SetAll(const char* name, std::initializer_list<const char*> values) const {
    bool isTaken = true;
    int index = 0;
    for (const char* value : values) isTaken &= Set(name, value, index++);
    return isTaken;
}

std::optional<int> Properties::Int(const char* name, int index) const {
    int value = 0;
    if (!handle_ || TheSuites().property->propGetInt(handle_, name, index, &value) != kOfxStatOK) return std::nullopt;
    return value;
}

std::optional<double> Properties::Double(const char* name, int index) const {
    double value = 0;
    if (!handle_ || TheSuites().property->propGetDouble(handle_, name, index, &value) != kOfxStatOK)
        return std::nullopt;
    return value;
}

std::optional<std::string> Properties::String(const char* name, int index) const {
    char* value = nullptr;
    if (!handle_ || TheSuites().property->propGetString(handle_, name, index, &value) != kOfxStatOK || !value)
        return std::nullopt;
    return value;
}

void* Properties::Pointer(const char* name) const {
    void* value = nullptr;
    if (!handle_ || TheSuites().property->propGetPointer(handle_, name, 0, &value) != kOfxStatOK) return nullptr;
    return value;
}

}  // namespace umbrant::openfx
