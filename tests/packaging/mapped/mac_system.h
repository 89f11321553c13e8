// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What macOS's system library is to a mapped image: the C library's function where it means the same, our own where it
// does not, and for names that the effect never reaches a stub that ends the program and says which it was.

#include <string>

class MachoImage;

/// The address for a name of libSystem (with its leading underscore), or null for one that is not known here.
void* SystemSymbol(const std::string& name);

/// The addresses of the pthread calls whose objects differ between the two systems; null for any other name.
void* ThreadingSymbol(const std::string& name);

/// The addresses of CGL's and OpenGL's calls, which the platform layer and the driver of this machine answer.
void* GraphicsSymbol(const std::string& name);

/// Makes the image's unwind tables known to code that looks them up by address. Not undone: images are mapped once.
void AnnounceUnwindTables(const MachoImage* image);

/// The last command that a mapped image gave to `system`. It is not run. Empty when there was none.
const char* LastSystemCommand();
