// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/channel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

namespace umbrant::host {

namespace {

using nlohmann::json;

class ChannelTest : public testing::Test {
 protected:
    ChannelTest() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_), 0); }
    ~ChannelTest() override {
        Close(0);
        Close(1);
    }
    void Close(int end) {
        if (ends_[end] >= 0) close(ends_[end]);
        ends_[end] = -1;
    }
    int ends_[2] = {-1, -1};
};

struct Numbers {
    int whole;
    double real;
};

TEST_F(ChannelTest, CarriesValuesBytesAndDescriptors) {
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const json sent{{"text", "not \xff UTF-8"}, {"numbers", BytesOf(std::vector<Numbers>{{1, 0.1}, {2, 0.2}})}};
    ASSERT_TRUE(Channel(ends_[0]).Send(sent, {pipe[1]}));
    Message message;
    ASSERT_EQ(Channel(ends_[1]).Receive(message, {}), Received::kMessage);
    EXPECT_EQ(message.content.at("text"), "not \xff UTF-8");
    const auto numbers = RecordsOf<Numbers>(message.content.at("numbers"));
    ASSERT_EQ(numbers.size(), 2u);
    EXPECT_EQ(numbers[1].whole, 2);
    EXPECT_EQ(numbers[1].real, 0.2);
    ASSERT_EQ(message.descriptors.size(), 1u);
    EXPECT_EQ(write(message.descriptors[0], "x", 1), 1);
    char byte = 0;
    EXPECT_EQ(read(pipe[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
    for (const int each : {pipe[0], pipe[1], message.descriptors[0]}) close(each);
}

TEST_F(ChannelTest, CarriesMoreThanTheSocketHolds) {
    const std::string much(5 << 20, 'a');
    std::thread sender([&] { EXPECT_TRUE(Channel(ends_[0]).Send({{"much", much}})); });
    Message message;
    EXPECT_EQ(Channel(ends_[1]).Receive(message, {}), Received::kMessage);
    sender.join();
    EXPECT_EQ(message.content.at("much"), much);
}

TEST_F(ChannelTest, AnotherEndThatIsGoneIsSaid) {
    Close(0);
    Message message;
    EXPECT_EQ(Channel(ends_[1]).Receive(message, {}), Received::kClosed);
    EXPECT_FALSE(Channel(ends_[1]).Send({{"a", 1}})) << "and there is no SIGPIPE";
}

TEST_F(ChannelTest, AnotherEndMayBeOverWhileItIsOpen) {
    ASSERT_TRUE(Channel(ends_[0]).Send({{"last", true}}));
    Message message;
    const auto over = [] { return true; };
    EXPECT_EQ(Channel(ends_[1]).Receive(message, over), Received::kMessage) << "what was sent is still read";
    EXPECT_EQ(Channel(ends_[1]).Receive(message, over), Received::kClosed);
}

TEST_F(ChannelTest, NonsenseIsNoMessage) {
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {{"no message", std::string("\x04\0\0\0babb", 8)},
                {"a length beyond all messages", std::string("\xff\xff\xff\xff", 4)},
                {"a value that is no object", std::string("\x01\0\0\0\x05", 5)},
                {"no value", std::string("\0\0\0\0", 4)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(write(ends_[0], row.bytes.data(), row.bytes.size()), static_cast<ssize_t>(row.bytes.size()));
        Message message;
        EXPECT_EQ(Channel(ends_[1]).Receive(message, {}), Received::kWrong);
    }
}

}  // namespace

}  // namespace umbrant::host
