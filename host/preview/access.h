// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Who may use a preview's server: its own page alone. A page of somebody else's must not reach it, neither by its
// address nor under a name that leads to this machine.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "host/http/http_server.h"

namespace umbrant::host {

/// The most bytes of an image that the page sends.
constexpr std::uint64_t kMostUploadBytes = std::uint64_t{256} << 20;

/// A random token of 32 hexadecimal digits.
std::string NewToken();

/// The headers of every reply.
std::map<std::string, std::string> SafetyHeaders();

/// A reply of one sentence.
HttpReply Refusal(int status, const std::string& sentence);

/// Checks requests to one server.
class Access {
 public:
    Access(std::string token, int port);

    /// "http://127.0.0.1:PORT/TOKEN/"
    std::string Address() const;
    /// The refusal of a request without the token, for another host, or by another page; nothing for an allowed one.
    std::optional<HttpReply> Check(const HttpRequest& request) const;
    /// The path of an allowed request behind the token's slash.
    std::string_view PathOf(const HttpRequest& request) const;

 private:
    std::optional<HttpReply> CheckBody(const HttpRequest& request) const;

    const std::string token_;
    const std::string host_;
};

}  // namespace umbrant::host
