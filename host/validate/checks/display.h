// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An OpenGL context of the host's own, as a host that draws with OpenGL has one current while it calls an effect. The
// system's library is looked up when it is wanted: the program itself draws nothing.

#include <memory>

namespace umbrant::host {

class Display {
 public:
    /// A context without a surface; null where none can be made.
    static std::unique_ptr<Display> Open();
    /// On the calling thread.
    void MakeCurrent() const;
    bool IsCurrent() const;

 private:
    Display() = default;
    void* display_ = nullptr;
    void* context_ = nullptr;
};

}  // namespace umbrant::host
