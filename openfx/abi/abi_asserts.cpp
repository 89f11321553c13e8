// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Proves the records and suites of the standard at compile time: size of each, offset and type of every field. The
// asserts themselves are data, one line a fact, in layout_asserts.inc.

#include <cstddef>
#include <type_traits>

#include "openfx/abi/core.h"
#include "openfx/abi/image_effect_suite.h"
#include "openfx/abi/memory_suite.h"
#include "openfx/abi/message_suite.h"
#include "openfx/abi/multi_thread_suite.h"
#include "openfx/abi/parameter_suite.h"
#include "openfx/abi/progress_suite.h"
#include "openfx/abi/property_suite.h"
#include "openfx/abi/time_line_suite.h"

#define OPENFX_SIZE(record, size) static_assert(sizeof(record) == (size), "sizeof " #record);
// The type is variadic: the commas of a function's arguments divide it.
#define OPENFX_FIELD(record, field, offset, ...)                                      \
    static_assert(offsetof(record, field) == (offset), "offset " #record "." #field); \
    static_assert(std::is_same_v<decltype(record::field), __VA_ARGS__>, "type " #record "." #field);

#include "openfx/abi/layout_asserts.inc"

#undef OPENFX_FIELD
#undef OPENFX_SIZE
