// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Messages between two processes over a socket: a JSON value each, and at most a few descriptors with it.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <nlohmann/json.hpp>
#include <span>
#include <type_traits>
#include <vector>

namespace umbrant::host {

/// A message that came. Its descriptors are the receiver's to close.
struct Message {
    nlohmann::json content;
    std::vector<int> descriptors;
};

/// What came of waiting for a message.
enum class Received {
    kMessage,
    kClosed,  ///< the other end is gone
    kWrong,   ///< what came is no message
};

/// One end of a socket. Neither sending nor receiving raises a signal. Not for several threads at once.
class Channel {
 public:
    /// The socket stays its owner's.
    explicit Channel(int socket) : socket_(socket) {}

    /// False when the other end is gone.
    bool Send(const nlohmann::json& content, const std::vector<int>& descriptors = {});
    /// Waits for a message. `isOver` is asked every 50 milliseconds in which nothing comes; when it says so, and
    /// nothing is left to read, the other end counts as gone.
    Received Receive(Message& message, const std::function<bool()>& isOver);

 private:
    bool SendAll(std::span<const std::byte> bytes, const std::vector<int>& descriptors);
    bool ReceiveAll(std::span<std::byte> bytes, std::vector<int>& descriptors, const std::function<bool()>& isOver);

    int socket_;
};

/// The bytes of a record as a message carries it; both ends are the same program.
template <typename Record>
nlohmann::json BytesOf(const std::vector<Record>& records) {
    static_assert(std::is_trivially_copyable_v<Record>);
    const auto* begin = reinterpret_cast<const std::uint8_t*>(records.data());
    return nlohmann::json::binary(std::vector<std::uint8_t>(begin, begin + records.size() * sizeof(Record)));
}
template <typename Record>
nlohmann::json BytesOf(const Record& record) {
    return BytesOf(std::vector<Record>{record});
}

/// The records again. Throws nlohmann::json::exception when the message holds something else.
template <typename Record>
std::vector<Record> RecordsOf(const nlohmann::json& message) {
    static_assert(std::is_trivially_copyable_v<Record>);
    const auto& bytes = message.get_binary();
    std::vector<Record> records(bytes.size() / sizeof(Record));
    std::memcpy(static_cast<void*>(records.data()), bytes.data(), records.size() * sizeof(Record));
    return records;
}
template <typename Record>
Record RecordOf(const nlohmann::json& message) {
    const std::vector<Record> records = RecordsOf<Record>(message);
    return records.empty() ? Record{} : records.front();
}

}  // namespace umbrant::host
