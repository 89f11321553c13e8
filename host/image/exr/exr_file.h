// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An EXR file that OpenEXR's core reads or writes. Inside host/image only.

#include <OpenEXR/openexr.h>

#include <memory>
#include <string>

namespace umbrant::host {

/// The library's sentence about a failure.
std::string ExrReason(exr_result_t failure);

struct EndExr {
    void operator()(exr_context_t file) const { exr_finish(&file); }
};
using ExrFile = std::unique_ptr<std::remove_pointer_t<exr_context_t>, EndExr>;

/// The library's context options: it prints nothing.
exr_context_initializer_t QuietExr();

}  // namespace umbrant::host
