// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What commands that write a file do with the folder that it goes into.

#include <string>

/// Removes what killed runs left in the output's folder, and says so on standard error unless it is to be `quiet`.
void CleanFolderOf(const std::string& output, bool quiet = false);
