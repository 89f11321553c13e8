// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A library that calls a function that none has.

extern "C" int FunctionOfNoLibrary();

extern "C" [[gnu::visibility("default")]] int OfxGetNumberOfPlugins() {
    return FunctionOfNoLibrary();
}
