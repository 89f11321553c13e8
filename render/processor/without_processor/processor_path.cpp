// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The CPU renderer is not here.

#include "render/processor/processor_path.h"

namespace umbrant::effect {

bool HasProcessorPath() {
    return false;
}

std::string ProcessorName() {
    return {};
}

const uint16_t* DrawNormalOnProcessor(const myParams&, const ProcessorLayer&) {
    return nullptr;
}

const uint16_t* DrawInnerOnProcessor(const myParams&, const ProcessorLayer&) {
    return nullptr;
}

const uint16_t* DrawRadialOnProcessor(const myParams&, const ProcessorLayer&, const RadialGeometry&) {
    return nullptr;
}

void TakeAlphas(const void*, size_t, int, void*) {}

void ColourRow(const uint16_t*, size_t, const myParams&, void*) {}

void ConvertAlpha(const uint16_t*, size_t, int, void*) {}

void EndProcessorThreads() {}

}  // namespace umbrant::effect
