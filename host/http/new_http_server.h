// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// New servers of HTTP. Any thread.

#include <memory>

#include "host/http/http_server.h"
#include "host/result.h"

namespace umbrant::host {

/// A server on 127.0.0.1 and this port, 0 for any free one. The first one opens umbrant_http.so. Fails with
/// `ErrorKind::kUsage` when the port cannot be had, and with `ErrorKind::kInternal` when the library cannot be loaded.
Result<std::unique_ptr<HttpServer>> NewHttpServer(int port, const HttpHandlers& handlers);

}  // namespace umbrant::host
