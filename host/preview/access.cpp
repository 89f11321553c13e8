// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/access.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <utility>

namespace umbrant::host {

namespace {

constexpr std::size_t kTokenDigits = 32;

/// Compares in the same time whatever the first difference is.
bool IsSame(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) return false;
    unsigned different = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        different |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    }
    return different == 0;
}

/// Messages of the page have a few kilobytes; only an image is large.
constexpr std::uint64_t kMostMessageBytes = std::uint64_t{1} << 20;

}  // namespace

std::string NewToken() {
    std::random_device random;
    std::string token;
    while (token.size() < kTokenDigits) token += fmt::format("{:08x}", random());
    return token;
}

std::map<std::string, std::string> SafetyHeaders() {
    return {{"Content-Security-Policy",
             "default-src 'self'; img-src 'self' blob:; base-uri 'none'; frame-ancestors 'none'"},
            {"Referrer-Policy", "no-referrer"},
            {"X-Content-Type-Options", "nosniff"},
            {"Cross-Origin-Resource-Policy", "same-origin"},
            {"Cache-Control", "no-store"}};
}

HttpReply Refusal(int status, const std::string& sentence) {
    const nlohmann::json body = {{"error", sentence}};
    return {status, "application/json", body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)};
}

Access::Access(std::string token, int port) : token_(std::move(token)), host_(fmt::format("127.0.0.1:{}", port)) {}

std::string Access::Address() const {
    return fmt::format("http://{}/{}/", host_, token_);
}

std::optional<HttpReply> Access::Check(const HttpRequest& request) const {
    if (request.Header("host") != host_) {
        return Refusal(403, "The request is for another host; use the address that `umbrant preview` printed.");
    }
    if (const std::string& origin = request.Header("origin"); !origin.empty() && origin != "http://" + host_) {
        return Refusal(403, "The request comes from another page, which may not use this preview.");
    }
    if (const std::string& site = request.Header("sec-fetch-site");
        !site.empty() && site != "same-origin" && site != "none") {
        return Refusal(403, "The request comes from another page, which may not use this preview.");
    }
    const std::string_view path = request.path;
    if (path.size() < kTokenDigits + 2 || path.front() != '/' || path[kTokenDigits + 1] != '/' ||
        !IsSame(path.substr(1, kTokenDigits), token_)) {
        return Refusal(403, "The address has no valid token; use the address that `umbrant preview` printed.");
    }
    if (request.method != "GET" && request.method != "POST") {
        return Refusal(405, "Only GET and POST are known here.");
    }
    return CheckBody(request);
}

std::optional<HttpReply> Access::CheckBody(const HttpRequest& request) const {
    if (!request.Header("content-encoding").empty()) {
        return Refusal(415, "A compressed body is not accepted; send the file as it is.");
    }
    const std::string& text = request.Header("content-length");
    // A body in chunks has no length that could be checked.
    if (!request.Header("transfer-encoding").empty() || (request.method == "POST" && text.empty())) {
        return Refusal(411, "The request does not say how long its body is.");
    }
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (!text.empty() && (end != text.data() + text.size() || error == std::errc::invalid_argument)) {
        return Refusal(400, "The length of the request's body is not a number.");
    }
    const std::uint64_t most = PathOf(request) == "layer" ? kMostUploadBytes : kMostMessageBytes;
    if (error == std::errc::result_out_of_range || length > most) {
        return Refusal(413,
                       fmt::format("The body is larger than {} MiB; `umbrant render` draws larger files.", most >> 20));
    }
    return std::nullopt;
}

std::string_view Access::PathOf(const HttpRequest& request) const {
    return std::string_view(request.path).substr(kTokenDigits + 2);
}

}  // namespace umbrant::host
