// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the fake GL writes a call to the log.

#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/fake/call_log.h"
#include "platform/fake/gl_fake.h"

namespace fake {

/// Marks an argument that is to be spelled as an enumerant.
struct Enum {
    GLenum value;
};

inline std::string Text(Enum value) {
    return EnumName(value.value);
}
inline std::string Text(int value) {
    return std::to_string(value);
}
inline std::string Text(unsigned value) {
    return std::to_string(value);
}
inline std::string Text(long value) {
    return std::to_string(value);
}
inline std::string Text(const char* value) {
    return std::string("\"") + value + "\"";
}
inline std::string Text(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}
/// Small addresses are offsets into a buffer; others are just memory.
inline std::string Text(const void* value) {
    const auto address = reinterpret_cast<uintptr_t>(value);
    return address < 4096 ? std::to_string(address) : std::string("memory");
}

inline std::string Joined() {
    return "";
}
template <typename First, typename... Rest>
std::string Joined(First first, Rest... rest) {
    const std::string tail = Joined(rest...);
    return Text(first) + (tail.empty() ? "" : ", " + tail);
}

/// Counts a call outside any context.
void NoteContext();

template <typename... Arguments>
void LogGl(const char* name, Arguments... arguments) {
    NoteContext();
    LogCall(std::string(name) + "(" + Joined(arguments...) + ")");
}

}  // namespace fake
