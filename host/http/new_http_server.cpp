// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/http/new_http_server.h"

#include <fmt/format.h>

#include "host/http/http_entry.h"
#include "host/loading/own_objects.h"

namespace umbrant::host {

Result<std::unique_ptr<HttpServer>> NewHttpServer(int port, const HttpHandlers& handlers) {
    const auto opened = OpenOwnObject(kHttpObject);
    if (const auto* reason = std::get_if<std::string>(&opened)) {
        return Failure{ErrorKind::kInternal, fmt::format("cannot serve the page: {}", *reason)};
    }
    const auto entry = reinterpret_cast<decltype(&UmbrantNewHttpServer)>(std::get<void*>(opened));
    std::unique_ptr<HttpServer> server(entry(port, handlers));
    if (server) return server;
    if (port == 0) return Failure{ErrorKind::kInternal, "cannot serve the page: no port of 127.0.0.1 is free"};
    return Failure{ErrorKind::kUsage, fmt::format("port {} of 127.0.0.1 cannot be used: another program has it, or it "
                                                  "needs more rights; leave out --port to take a free one",
                                                  port)};
}

}  // namespace umbrant::host
