// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF ANSI Suite" 1: the C library's mathematics and formatting, as they are. The fault hook does not reach these
// calls: they return no error.

#include "hostapi/suites/ansi_suite.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

/// Effects build their messages with this, so it must format exactly as the C library does.
int Format(A_char* text, const A_char* format, ...) {
    if (!text || !format) return -1;
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsprintf(text, format, arguments);
    va_end(arguments);
    return length;
}

A_char* CopyText(A_char* to, const A_char* from) {
    return std::strcpy(to, from);
}

}  // namespace

// Constant, because the utility table copies these pointers while the program starts.
constinit const PF_ANSICallbacksSuite1 kANSISuite = {
    .atan = [](A_FpLong x) { return std::atan(x); },
    .atan2 = [](A_FpLong y, A_FpLong x) { return std::atan2(y, x); },
    .ceil = [](A_FpLong x) { return std::ceil(x); },
    .cos = [](A_FpLong x) { return std::cos(x); },
    .exp = [](A_FpLong x) { return std::exp(x); },
    .fabs = [](A_FpLong x) { return std::fabs(x); },
    .floor = [](A_FpLong x) { return std::floor(x); },
    .fmod = [](A_FpLong x, A_FpLong y) { return std::fmod(x, y); },
    .hypot = [](A_FpLong x, A_FpLong y) { return std::hypot(x, y); },
    .log = [](A_FpLong x) { return std::log(x); },
    .log10 = [](A_FpLong x) { return std::log10(x); },
    .pow = [](A_FpLong x, A_FpLong y) { return std::pow(x, y); },
    .sin = [](A_FpLong x) { return std::sin(x); },
    .sqrt = [](A_FpLong x) { return std::sqrt(x); },
    .tan = [](A_FpLong x) { return std::tan(x); },
    .sprintf = Format,
    .strcpy = CopyText,
    .asin = [](A_FpLong x) { return std::asin(x); },
    .acos = [](A_FpLong x) { return std::acos(x); },
};

}  // namespace umbrant::host
