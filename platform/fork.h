// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a host's fork does to the module. The child has one thread, the one that forked; whatever the others held or did
// stays as it was at that moment, for good. So nobody waits in the child for threads or locks of the parent: each part
// of the module that has any starts afresh.

namespace umbrant::effect {

/// Has `inChild` called in every child that this process forks from now on, on its only thread, before anything else
/// runs there. It ends with the module. [any]
void OnFork(void (*inChild)());

/// Whether OpenGL cannot be used because this process was forked from one that had begun to use it: the driver's
/// threads are not here, and it would wait for them. CGL's calls do nothing then, and fail where they can. [any]
bool OpenGLLostByFork();

}  // namespace umbrant::effect
