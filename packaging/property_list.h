// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the host reads about the effect before it loads any code: a list of properties, which repeat what the module
// says of itself. Both come from entry/version.h.

#include <cstdint>
#include <string>

/// The resource that holds the list.
inline constexpr std::uint32_t kPropertyListType = 'P' << 24 | 'i' << 16 | 'P' << 8 | 'L';
inline constexpr std::int16_t kPropertyListId = 16000;

/// Which processors the executable has code for; each needs its own property with the entry point.
enum class Slices { kX86_64, kUniversal };

/// The list in the form of macOS: big-endian, each property padded to a multiple of four bytes.
std::string PropertyList(Slices slices);
