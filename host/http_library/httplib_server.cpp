// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// HttpServer over cpp-httplib. The only file that includes its header.

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "host/http/http_entry.h"

namespace umbrant::host {

namespace {

/// A connection takes a thread while it is open; a page has a stream of events and up to five others.
constexpr int kThreads = 32;
/// Seconds for which a connection may wait for its next request, or for the bytes of this one.
constexpr int kKeepAlive = 5;

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

HttpRequest RequestOf(const httplib::Request& from) {
    HttpRequest request{from.method, from.path};
    for (const auto& [name, value] : from.params) request.query.emplace(name, value);
    for (const auto& [name, value] : from.headers) request.headers.emplace(LowerCase(name), value);
    return request;
}

void Send(HttpReply reply, httplib::Response& response) {
    response.status = reply.status;
    if (reply.stream) {
        response.set_chunked_content_provider(reply.type,
                                              [stream = std::move(reply.stream)](size_t, httplib::DataSink& sink) {
                                                  std::string part;
                                                  if (!stream->Next(part)) {
                                                      sink.done();
                                                      return true;
                                                  }
                                                  return part.empty() || sink.write(part.data(), part.size());
                                              });
    } else if (reply.shared) {
        const std::size_t size = reply.shared->size();
        response.set_content_provider(
            size, reply.type, [bytes = std::move(reply.shared)](size_t at, size_t count, httplib::DataSink& sink) {
                return sink.write(bytes->data() + at, count);
            });
    } else {
        response.set_content(reply.body, reply.type);
    }
}

class HttplibServer : public HttpServer {
 public:
    explicit HttplibServer(const HttpHandlers& handlers) : handlers_(handlers) {
        server_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
        server_.set_payload_max_length(handlers_.mostBytes);
        server_.set_keep_alive_timeout(kKeepAlive);
        server_.set_keep_alive_max_count(std::numeric_limits<std::size_t>::max());
        server_.set_read_timeout(kKeepAlive, 0);
        server_.set_tcp_nodelay(true);
        // Not SO_REUSEPORT, with which two programs could have one port.
        server_.set_socket_options([](socket_t socket) {
            const int yes = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        });
        httplib::Headers headers(handlers_.headers.begin(), handlers_.headers.end());
        server_.set_default_headers(std::move(headers));
        SetHandlers();
    }

    bool Bind(int port) {
        constexpr char kAddress[] = "127.0.0.1";
        port_ = port == 0 ? server_.bind_to_any_port(kAddress) : server_.bind_to_port(kAddress, port) ? port : -1;
        return port_ > 0;
    }

    int Port() const override { return port_; }

    void Serve() override {
        if (!isStopped_) server_.listen_after_bind();
    }

    void Stop() override {
        isStopped_ = true;
        server_.stop();
    }

 private:
    void SetHandlers() {
        server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            return Guarded(response, [&] {
                auto refused = handlers_.check(RequestOf(request));
                if (!refused) return httplib::Server::HandlerResponse::Unhandled;
                Send(std::move(*refused), response);
                return httplib::Server::HandlerResponse::Handled;
            });
        });
        const auto answer = [this](const httplib::Request& from, httplib::Response& response) {
            Guarded(response, [&] {
                HttpRequest request = RequestOf(from);
                request.body = from.body;
                Send(handlers_.answer(request), response);
                return httplib::Server::HandlerResponse::Handled;
            });
        };
        server_.Get(".*", answer);
        server_.Post(".*", answer);
        server_.set_error_handler([this](const httplib::Request&, httplib::Response& response) {
            if (response.body.empty() && response.content_length_ == 0) {
                Send(handlers_.refuse(response.status), response);
            }
        });
    }

    template <typename Step>
    httplib::Server::HandlerResponse Guarded(httplib::Response& response, Step step) {
        try {
            return step();
        } catch (const std::bad_alloc&) {
            Send(handlers_.refuse(503), response);
            return httplib::Server::HandlerResponse::Handled;
        }
    }

    const HttpHandlers handlers_;
    httplib::Server server_;
    std::atomic<bool> isStopped_{false};
    int port_ = -1;
};

}  // namespace

HttpServer* UmbrantNewHttpServer(int port, const HttpHandlers& handlers) {
    auto server = std::make_unique<HttplibServer>(handlers);
    return server->Bind(port) ? server.release() : nullptr;
}

}  // namespace umbrant::host
