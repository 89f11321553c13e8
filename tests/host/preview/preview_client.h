// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A preview that runs as a process, and what a page does with it, over plain sockets.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/process/child_process.h"
#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

/// What came back. Header names are in lower case.
struct WireReply {
    int status = 0;  ///< 0: the connection ended without one
    std::map<std::string, std::string> headers;
    std::string body;

    nlohmann::json Json() const { return ParseJsonOrDiscard(body); }
    /// The sentence of a refusal.
    std::string Error() const;
};

/// A connection to a port of this machine.
class Wire {
 public:
    explicit Wire(int port);
    ~Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    bool IsOpen() const { return socket_ >= 0; }
    void Send(const std::string& bytes) const;
    /// Reads a reply with a known length.
    WireReply Read();
    /// Reads to the end of a line; empty at the end of the connection.
    std::string ReadLine();

 private:
    bool Fill();
    int socket_ = -1;
    std::string rest_;
};

/// `umbrant preview --no-open` as a process.
class RunningPreview {
 public:
    /// Starts it in the folder and waits for the address that it prints.
    RunningPreview(const Folder& folder, std::vector<std::string> arguments, std::vector<std::string> environment = {});

    const std::string& Address() const { return address_; }
    int Port() const { return port_; }
    const std::string& Token() const { return token_; }
    ChildProcess& Process() { return *child_; }

    /// A request of the page's own. `path` is behind the token.
    WireReply Get(const std::string& path) const { return Request("GET", path, ""); }
    WireReply Post(const std::string& path, const std::string& body) const { return Request("POST", path, body); }
    WireReply Request(const std::string& method, const std::string& path, const std::string& body) const;
    /// Any request: a line without the version, and headers that replace the page's own.
    WireReply Ask(const std::string& line, std::map<std::string, std::string> headers,
                  const std::string& body = "") const;

 private:
    std::unique_ptr<ChildProcess> child_;
    std::string address_;
    std::string token_;
    int port_ = 0;
};

/// A connected page.
class Page {
 public:
    explicit Page(const RunningPreview& preview);

    int Client() const { return client_; }
    /// Whether it was accepted.
    bool IsConnected() const { return client_ != 0; }

    /// Asks for a frame. Returns the reply's status.
    int Draw(const nlohmann::json& values, bool moving = false, int layer = 1, int texture = 0);
    /// Asks for the frame of a whole request, with a serial of its own, and returns its event of this kind.
    nlohmann::json DrawThis(nlohmann::json request, const std::string& kind = "frame");
    int Serial() const { return serial_; }
    /// The next event of this kind, whatever it is about. Others are passed over.
    nlohmann::json NextOf(const std::string& kind);
    /// The next event of this kind for the last request, or null at the end of the stream. Others are passed over.
    nlohmann::json Await(const std::string& kind);
    /// The pixels of a frame's event.
    std::string Pixels(const nlohmann::json& frame) const;

 private:
    std::pair<std::string, nlohmann::json> NextEvent();

    const RunningPreview& preview_;
    Wire events_;
    int client_ = 0;
    int serial_ = 0;
};

/// The image as the page gets it: rows of red, green, blue, alpha in 8 bits.
std::string RgbaOf(const World& world);

}  // namespace umbrant::host
