// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/channel.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace umbrant::host {

namespace {

using nlohmann::json;

constexpr int kPause = 50;  // milliseconds
constexpr std::size_t kMostDescriptors = 4;
/// Beyond it no message of this program's goes.
constexpr std::uint32_t kLongest = 64u << 20;

union Control {
    cmsghdr header;
    std::array<char, CMSG_SPACE(kMostDescriptors * sizeof(int))> space;
};

void TakeDescriptors(msghdr& header, std::vector<int>& descriptors) {
    for (cmsghdr* each = CMSG_FIRSTHDR(&header); each; each = CMSG_NXTHDR(&header, each)) {
        if (each->cmsg_level != SOL_SOCKET || each->cmsg_type != SCM_RIGHTS) continue;
        const std::size_t count = (each->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        const std::size_t before = descriptors.size();
        descriptors.resize(before + count);
        std::memcpy(descriptors.data() + before, CMSG_DATA(each), count * sizeof(int));
    }
}

void CloseAll(std::vector<int>& descriptors) {
    for (const int descriptor : descriptors) close(descriptor);
    descriptors.clear();
}

}  // namespace

bool Channel::Send(const json& content, const std::vector<int>& descriptors) {
    const std::vector<std::uint8_t> bytes = json::to_cbor(content);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    return SendAll(std::as_bytes(std::span(&length, 1)), descriptors) && SendAll(std::as_bytes(std::span(bytes)), {});
}

bool Channel::SendAll(std::span<const std::byte> bytes, const std::vector<int>& descriptors) {
    std::size_t attached = std::min(descriptors.size(), kMostDescriptors);
    while (!bytes.empty()) {
        iovec part{const_cast<std::byte*>(bytes.data()), bytes.size()};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        Control control{};
        if (attached > 0) {
            header.msg_control = control.space.data();
            header.msg_controllen = CMSG_SPACE(attached * sizeof(int));
            cmsghdr* rights = CMSG_FIRSTHDR(&header);
            rights->cmsg_level = SOL_SOCKET;
            rights->cmsg_type = SCM_RIGHTS;
            rights->cmsg_len = CMSG_LEN(attached * sizeof(int));
            std::memcpy(CMSG_DATA(rights), descriptors.data(), attached * sizeof(int));
        }
        const ssize_t sent = sendmsg(socket_, &header, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent < 0) return false;
        attached = 0;
        bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
    return true;
}

bool Channel::ReceiveAll(std::span<std::byte> bytes, std::vector<int>& descriptors,
                         const std::function<bool()>& isOver) {
    bool over = false;
    while (!bytes.empty()) {
        pollfd waiting{socket_, POLLIN, 0};
        const int ready = poll(&waiting, 1, over ? 0 : kPause);
        if (ready < 0 && errno != EINTR) return false;
        if (ready <= 0) {
            // Something that the other process started may hold its end of the socket long after it.
            if (over) return false;
            over = isOver && isOver();
            continue;
        }
        iovec part{bytes.data(), bytes.size()};
        Control control{};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control.space.data();
        header.msg_controllen = control.space.size();
        const ssize_t got = recvmsg(socket_, &header, MSG_CMSG_CLOEXEC);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        TakeDescriptors(header, descriptors);
        bytes = bytes.subspan(static_cast<std::size_t>(got));
    }
    return true;
}

Received Channel::Receive(Message& message, const std::function<bool()>& isOver) {
    message = {};
    std::uint32_t length = 0;
    if (!ReceiveAll(std::as_writable_bytes(std::span(&length, 1)), message.descriptors, isOver)) {
        CloseAll(message.descriptors);
        return Received::kClosed;
    }
    std::vector<std::uint8_t> bytes;
    const bool fits = length <= kLongest;
    if (fits) bytes.resize(length);
    if (fits && !ReceiveAll(std::as_writable_bytes(std::span(bytes)), message.descriptors, isOver)) {
        CloseAll(message.descriptors);
        return Received::kClosed;
    }
    message.content = fits ? json::from_cbor(bytes, true, false) : json(json::value_t::discarded);
    if (message.content.is_object()) return Received::kMessage;
    CloseAll(message.descriptors);
    return Received::kWrong;
}

}  // namespace umbrant::host
