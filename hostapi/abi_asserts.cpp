// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Proves the host interface at compile time: size, alignment, offset and type of every field, and every constant. A
// module that differs from the host's records by one byte is worthless, so a wrong declaration must not build. The
// asserts themselves are data, one line a fact, in layout_asserts.inc.

#include <cstddef>
#include <type_traits>

#include "hostapi/hostapi.h"
#include "hostapi/layout_asserts.inc"

static_assert(PF_VERSION(1, 3, 3, PF_Stage_DEVELOP, 1) == 0x99801u, "PF_VERSION");
