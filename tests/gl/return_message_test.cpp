// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "pixel/return_message.h"

#include <cstring>

#include "gl/framebuffer.h"
#include "gl/program.h"
#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

/// The two classes that write messages do it alike.
struct Writer {
    const char* name;
    void (*send)(const std::string&, PF_OutData*);
};

void PrintTo(const Writer& writer, std::ostream* out) {
    *out << writer.name;
}

const Writer kWriters[] = {
    {"the function", WriteReturnMessage},
    {"Program", [](const std::string& text, PF_OutData* out) { Program().SendMessage(text, out); }},
    {"Framebuffer", [](const std::string& text, PF_OutData* out) { Framebuffer().SendMessage(text, out); }},
};

class ReturnMessage : public ::testing::TestWithParam<Writer> {
 protected:
    PF_OutData outData_{};
};

TEST_P(ReturnMessage, OfThreeHundredCharactersTheFirst255Arrive) {
    std::memset(outData_.return_msg, '#', sizeof outData_.return_msg);
    outData_.start_sampL = 0x12345678;
    std::string text;
    for (int i = 0; i < 300; ++i) text += static_cast<char>('a' + i % 26);
    GetParam().send(text, &outData_);
    EXPECT_EQ(std::string(outData_.return_msg, 255), text.substr(0, 255));
    EXPECT_EQ(outData_.return_msg[255], '#');
    EXPECT_EQ(outData_.start_sampL, 0x12345678);
}

TEST_P(ReturnMessage, ShorterLeavesTheTailOfTheLonger) {
    const std::string longer = "0123456789012345678901234567890123456789";
    GetParam().send(longer, &outData_);
    GetParam().send("abcdefghij", &outData_);
    EXPECT_STREQ(outData_.return_msg, "abcdefghij012345678901234567890123456789");
}

TEST_P(ReturnMessage, SetsNoFlag) {
    GetParam().send("text", &outData_);
    EXPECT_EQ(outData_.out_flags, 0);
    EXPECT_EQ(outData_.out_flags2, 0);
}

TEST_P(ReturnMessage, EmptyWritesNothing) {
    outData_.return_msg[0] = 'x';
    GetParam().send("", &outData_);
    EXPECT_EQ(outData_.return_msg[0], 'x');
}

INSTANTIATE_TEST_SUITE_P(All, ReturnMessage, ::testing::ValuesIn(kWriters));

}  // namespace

}  // namespace umbrant::effect
