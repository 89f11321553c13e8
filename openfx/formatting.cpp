// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The functions of the text library that the host's code calls, compiled into the plug-in: the process of a host may
// have another version of that library, or none.

#include <fmt/format-inl.h>

template FMT_API fmt::detail::thousands_sep_result<char> fmt::detail::thousands_sep_impl<char>(fmt::detail::locale_ref);
template FMT_API char fmt::detail::decimal_point_impl<char>(fmt::detail::locale_ref);
