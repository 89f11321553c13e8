// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "platform/fake/call_log.h"

#include <mutex>

#include "platform/fake/cgl_fake.h"
#include "platform/fake/gl_fake.h"
#include "platform/fake/renderer_choice_fake.h"

using namespace umbrant::effect;

namespace fake {

namespace {

std::mutex mutex;
std::vector<std::string> lines;

}  // namespace

void LogCall(const std::string& line) {
    const std::lock_guard lock(mutex);
    lines.push_back(line);
}

std::vector<std::string> Calls() {
    const std::lock_guard lock(mutex);
    return lines;
}

std::vector<std::string> CallsTo(const std::string& prefix) {
    std::vector<std::string> found;
    for (const std::string& line : Calls()) {
        if (line.starts_with(prefix)) found.push_back(line);
    }
    return found;
}

void ClearCalls() {
    const std::lock_guard lock(mutex);
    lines.clear();
}

void Reset() {
    ClearCalls();
    Cgl() = CglState{};
    Gl() = GlState{};
    Renderer() = RendererChoice::kOpenGL;
}

}  // namespace fake
