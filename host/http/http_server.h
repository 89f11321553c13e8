// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A server of HTTP on one address of this machine, and what it exchanges with its owner. The implementation is in
// umbrant_http.so.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace umbrant::host {

/// What a client sends. Header names are in lower case.
struct HttpRequest {
    std::string method;
    std::string path;  ///< decoded, without the query
    std::map<std::string, std::string> query{};
    std::map<std::string, std::string> headers{};  ///< of several with one name the first
    std::string body{};

    /// The value of a header or a query's field; empty for none.
    const std::string& Header(const std::string& name) const { return Find(headers, name); }
    const std::string& Field(const std::string& name) const { return Find(query, name); }

 private:
    static const std::string& Find(const std::map<std::string, std::string>& in, const std::string& name) {
        static const std::string none;
        const auto found = in.find(name);
        return found == in.end() ? none : found->second;
    }
};

/// A body without an end that is known before.
class HttpStream {
 public:
    virtual ~HttpStream() = default;
    /// Waits for the next part, at most about a second. An empty part checks nothing; false ends the body.
    virtual bool Next(std::string& part) = 0;
};

/// What the client gets.
struct HttpReply {
    int status = 200;
    std::string type{};
    std::string body{};
    std::shared_ptr<const std::string> shared{};  ///< instead of `body`, for bytes that are kept elsewhere
    std::shared_ptr<HttpStream> stream{};         ///< instead of `body`; destroyed when the connection ends
};

struct HttpHandlers {
    /// Asked before a body is read. A reply refuses the request.
    std::function<std::optional<HttpReply>(const HttpRequest&)> check;
    std::function<HttpReply(const HttpRequest&)> answer;
    /// The reply to what is refused before it reaches `check`: a malformed request, a body that is too large.
    std::function<HttpReply(int status)> refuse;
    std::map<std::string, std::string> headers;  ///< of every reply
    std::uint64_t mostBytes = 0;                 ///< of a request's body
};

/// Handlers are called on several threads at once, and throw nothing but std::bad_alloc.
class HttpServer {
 public:
    HttpServer() = default;
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;
    virtual ~HttpServer() = default;

    virtual int Port() const = 0;
    /// Serves until Stop is called. Once.
    virtual void Serve() = 0;
    /// From any thread, also before Serve. Streams have to end by themselves.
    virtual void Stop() = 0;
};

}  // namespace umbrant::host
