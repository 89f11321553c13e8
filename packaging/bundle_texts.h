// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The texts by which macOS and the host know the bundle, from the constants that the module compiles.

#include <string>

/// Package type and signature, eight characters and no line end.
std::string PkgInfo();

/// The property list in XML. The executable bears the effect's name; `identifier` is the bundle's reverse domain name,
/// of letters, digits, '.' and '-' only.
std::string InfoPlist(const std::string& identifier);

/// Whether `identifier` may be one.
bool IsBundleIdentifier(const std::string& identifier);
