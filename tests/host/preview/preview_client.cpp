// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/host/preview/preview_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <span>

namespace umbrant::host {

namespace {

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \r\n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \r\n") + 1 - begin);
}

}  // namespace

std::string WireReply::Error() const {
    return Json().is_object() ? Json().value("error", "") : "";
}

Wire::Wire(int port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // A server that never answers is a failure, not a test without end.
    const timeval longest{300, 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &longest, sizeof longest);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(socket_);
        socket_ = -1;
    }
}

Wire::~Wire() {
    if (socket_ >= 0) close(socket_);
}

void Wire::Send(const std::string& bytes) const {
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return;
        sent += static_cast<std::size_t>(count);
    }
}

bool Wire::Fill() {
    char block[65536];
    const ssize_t count = recv(socket_, block, sizeof block, 0);
    if (count <= 0) return false;
    rest_.append(block, static_cast<std::size_t>(count));
    return true;
}

std::string Wire::ReadLine() {
    std::size_t end = 0;
    while ((end = rest_.find('\n')) == std::string::npos) {
        if (!Fill()) return "";
    }
    const std::string line = rest_.substr(0, end + 1);
    rest_.erase(0, end + 1);
    return line;
}

WireReply Wire::Read() {
    WireReply reply;
    const std::string first = ReadLine();
    if (first.size() < 12) return reply;
    reply.status = std::atoi(first.c_str() + 9);
    for (std::string line = ReadLine(); line.size() > 2; line = ReadLine()) {
        const std::size_t colon = line.find(':');
        reply.headers[LowerCase(line.substr(0, colon))] = Trimmed(line.substr(colon + 1));
    }
    const auto length = reply.headers.find("content-length");
    const std::size_t wanted = length == reply.headers.end() ? 0 : std::stoul(length->second);
    while (rest_.size() < wanted && Fill()) {
    }
    reply.body = rest_.substr(0, wanted);
    rest_.erase(0, reply.body.size());
    return reply;
}

RunningPreview::RunningPreview(const Folder& folder, std::vector<std::string> arguments,
                               std::vector<std::string> environment) {
    ProgramStart start;
    start.program = UMBRANT_PROGRAM;
    start.arguments = {"preview", "--no-open"};
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    start.folder = folder.Path().string();
    start.environment = {"UMBRANT_MODULE"};
    start.environment.insert(start.environment.end(), environment.begin(), environment.end());
    start.output = Stream::Pipe();
    start.errors = Stream::LastLine();
    auto started = ChildProcess::Start(start);
    if (!started) {
        ADD_FAILURE() << started.error().sentence;
        return;
    }
    child_ = std::move(*started);
    char letter = 0;
    while (child_->Read(std::as_writable_bytes(std::span(&letter, 1))) == 1 && letter != '\n') address_ += letter;
    const std::string begin = "http://127.0.0.1:";
    if (!address_.starts_with(begin)) return;
    port_ = std::stoi(address_.substr(begin.size()));
    const std::size_t slash = address_.find('/', begin.size());
    token_ = address_.substr(slash + 1, address_.size() - slash - 2);
}

WireReply RunningPreview::Request(const std::string& method, const std::string& path, const std::string& body) const {
    return Ask(method + " /" + token_ + "/" + path, {}, body);
}

WireReply RunningPreview::Ask(const std::string& line, std::map<std::string, std::string> headers,
                              const std::string& body) const {
    headers.emplace("Host", "127.0.0.1:" + std::to_string(port_));
    headers.emplace("Connection", "close");
    if (!line.starts_with("GET")) headers.emplace("Content-Length", std::to_string(body.size()));
    std::string text = line + " HTTP/1.1\r\n";
    for (const auto& [name, value] : headers) {
        if (!value.empty()) text += name + ": " + value + "\r\n";
    }
    Wire wire(port_);
    wire.Send(text + "\r\n" + body);
    return wire.Read();
}

Page::Page(const RunningPreview& preview) : preview_(preview), events_(preview.Port()) {
    events_.Send("GET /" + preview.Token() + "/events HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(preview.Port()) +
                 "\r\n\r\n");
    const auto [kind, data] = NextEvent();
    if (kind == "hello") client_ = data.value("client", 0);
}

int Page::Draw(const nlohmann::json& values, bool moving, int layer, int texture) {
    const nlohmann::json request = {{"client", client_}, {"serial", ++serial_}, {"moving", moving},
                                    {"layer", layer},    {"texture", texture},  {"values", values}};
    return preview_.Post("draw", request.dump()).status;
}

nlohmann::json Page::DrawThis(nlohmann::json request, const std::string& kind) {
    request["serial"] = ++serial_;
    EXPECT_EQ(preview_.Post("draw", request.dump()).status, 202);
    return Await(kind);
}

nlohmann::json Page::NextOf(const std::string& kind) {
    for (auto event = NextEvent(); !event.first.empty(); event = NextEvent()) {
        if (event.first == kind) return event.second;
    }
    return nullptr;
}

std::pair<std::string, nlohmann::json> Page::NextEvent() {
    // The lines of chunks have no event's names.
    std::string kind;
    for (std::string line = events_.ReadLine(); !line.empty(); line = events_.ReadLine()) {
        if (line.starts_with("event: ")) kind = Trimmed(line.substr(7));
        if (line.starts_with("data: ")) return {kind, ParseJsonOrDiscard(line.substr(6))};
    }
    return {};
}

nlohmann::json Page::Await(const std::string& kind) {
    for (auto event = NextEvent(); !event.first.empty(); event = NextEvent()) {
        if (event.first == kind && event.second.value("serial", 0) == serial_) return event.second;
        if (event.first == "failure" && kind != "failure") {
            ADD_FAILURE() << event.second.dump();
            return nullptr;
        }
    }
    return nullptr;
}

std::string Page::Pixels(const nlohmann::json& frame) const {
    return preview_.Get("frame?client=" + std::to_string(client_) + "&frame=" + std::to_string(frame.value("frame", 0)))
        .body;
}

std::string RgbaOf(const World& world) {
    std::string bytes;
    for (int y = 0; y < world.Height(); ++y) {
        const auto* row = reinterpret_cast<const PF_Pixel*>(world.Row(y));
        for (int x = 0; x < world.Width(); ++x) {
            for (const A_u_char channel : {row[x].red, row[x].green, row[x].blue, row[x].alpha}) {
                bytes += static_cast<char>(channel);
            }
        }
    }
    return bytes;
}

}  // namespace umbrant::host
