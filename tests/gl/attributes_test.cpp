// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/attributes.h"

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using AttributesTest = FakeGLTest;

TEST_F(AttributesTest, MakeAttribIgnoresItsLastTwoArguments) {
    const AttributeType attribute = make_attrib(3, 2, GL_FLOAT, 20, 99, 98);
    EXPECT_EQ(attribute.buffer, 3u);
    EXPECT_EQ(attribute.size, 2);
    EXPECT_EQ(attribute.type, static_cast<GLenum>(GL_FLOAT));
    EXPECT_EQ(attribute.stride, 20);
}

TEST_F(AttributesTest, CreateAttributeIsTightlyPacked) {
    GLuint buffer = 6;
    const AttributeType attribute = CreateAttribute(buffer, 3, GL_UNSIGNED_BYTE);
    EXPECT_EQ(attribute.buffer, 6u);
    EXPECT_EQ(attribute.size, 3);
    EXPECT_EQ(attribute.type, static_cast<GLenum>(GL_UNSIGNED_BYTE));
    EXPECT_EQ(attribute.stride, 0);
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

TEST_F(AttributesTest, CreateBufferUploadsAndLeavesItBound) {
    const uint8_t data[3] = {1, 2, 3};
    CaptureStdout out;
    EXPECT_EQ(CreateBuffer(data, 3, GL_ARRAY_BUFFER, GL_STATIC_DRAW), 1u);
    EXPECT_EQ(out.Text(), "");
    EXPECT_THAT(fake::Calls(), ElementsAre("glGenBuffers(1)", "glBindBuffer(GL_ARRAY_BUFFER, 1)",
                                           "glBufferData(GL_ARRAY_BUFFER, 3, GL_STATIC_DRAW)"));
    EXPECT_THAT(fake::Gl().uploads.back(), ElementsAre(1, 2, 3));
}

TEST_F(AttributesTest, CreateBufferReturnsTheNameAlsoAfterAnError) {
    fake::Gl().errors = {GL_OUT_OF_MEMORY};
    CaptureStdout out;
    EXPECT_EQ(CreateBuffer(nullptr, 3, GL_ARRAY_BUFFER, GL_STATIC_DRAW), 1u);
    EXPECT_EQ(out.TextWithoutFlush(), " Create Buffer Error: 1285\n");
}

TEST_F(AttributesTest, DeleteBuffer) {
    DeleteBuffer(0);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    fake::Gl().errors = {GL_INVALID_VALUE};
    CaptureStdout out;
    DeleteBuffer(4);
    EXPECT_EQ(out.TextWithoutFlush(), " Delete Buffer Error: 1281\n");
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteBuffers(4)"));
}

TEST_F(AttributesTest, ClearAttribBuffersDeletesAllAndEmpties) {
    std::unordered_map<std::string, AttributeType> table = {
        {"a", {2, 3, GL_FLOAT, 0}}, {"b", {0, 3, GL_FLOAT, 0}}, {"c", {5, 3, GL_FLOAT, 0}}};
    ClearAttribBuffers(table);
    EXPECT_THAT(fake::Calls(), UnorderedElementsAre("glDeleteBuffers(2)", "glDeleteBuffers(5)"));
    EXPECT_THAT(table, IsEmpty());
}

TEST_F(AttributesTest, SetsNamedAttributesAndListsTheRest) {
    fake::Gl().attributes = {{"position", 2}, {"other", 3}};
    CaptureStdout out;
    SetProgramAttributes(8, 9, {{"position", {6, 3, GL_FLOAT, 20}}, {"unknown", {7, 1, GL_FLOAT, 0}}});
    EXPECT_EQ(out.TextWithoutFlush(), "The Following Attributes are not set:\nother\n");
    EXPECT_THAT(
        fake::Calls(),
        ElementsAre("glGetProgramiv(9, GL_ACTIVE_ATTRIBUTES)", "glGetActiveAttrib(9, 0, 32)",
                    "glGetAttribLocation(9, \"position\")", "glGetActiveAttrib(9, 1, 32)",
                    "glGetAttribLocation(9, \"other\")", "glBindVertexArray(8)", "glBindBuffer(GL_ARRAY_BUFFER, 6)",
                    "glVertexAttribPointer(2, 3, GL_FLOAT, 0, 20, 0)", "glEnableVertexAttribArray(2)",
                    "glBindBuffer(GL_ARRAY_BUFFER, 0)", "glBindVertexArray(0)"));
}

TEST_F(AttributesTest, NoActiveAttributes) {
    CaptureStdout out;
    SetProgramAttributes(8, 9, {});
    EXPECT_EQ(out.TextWithoutFlush(), "No Active Attribs shader: 9\n");
}

struct ErrorCase {
    const char* name;
    std::deque<GLenum> errors;
    const char* text;
};

void PrintTo(const ErrorCase& row, std::ostream* out) {
    *out << row.name;
}

class AttributeErrors : public FakeGLTest, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(AttributeErrors, ArePrintedAndGoneOnWith) {
    fake::Gl().attributes = {{"position", 2}};
    fake::Gl().errors = GetParam().errors;
    CaptureStdout out;
    SetProgramAttributes(8, 9, {{"position", {6, 3, GL_FLOAT, 20}}});
    EXPECT_EQ(out.TextWithoutFlush(), GetParam().text);
    EXPECT_EQ(fake::CallsTo("glEnableVertexAttribArray").size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(All, AttributeErrors,
                         ::testing::Values(ErrorCase{"counting, in hexadecimal", {1282}, "Active Attrib Error: 502\n"},
                                           ErrorCase{"locating", {0, 1282}, "Attrib Location:1282\n"},
                                           ErrorCase{"binding", {0, 0, 1282}, "Buff:1282\n"},
                                           ErrorCase{"pointing", {0, 0, 0, 1282}, " Vertex Attrib: 1282\n"}));

}  // namespace

}  // namespace umbrant::effect
