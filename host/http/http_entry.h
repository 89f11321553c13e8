// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one entry of umbrant_http.so.

#include "host/http/http_server.h"

namespace umbrant::host {

/// A server that is bound to 127.0.0.1 and this port, 0 for any free one; the caller's to delete. Null when the port
/// cannot be had.
extern "C" __attribute__((visibility("default"))) HttpServer* UmbrantNewHttpServer(int port,
                                                                                   const HttpHandlers& handlers);

}  // namespace umbrant::host
