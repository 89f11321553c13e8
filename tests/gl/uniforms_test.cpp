// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/uniforms.h"

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using UniformsTest = FakeGLTest;

std::vector<std::string> SettingCalls() {
    std::vector<std::string> calls;
    for (const std::string& call : fake::Calls()) {
        const bool sets =
            call.starts_with("glUniform") || call.starts_with("glActiveTexture") || call.starts_with("glBindTexture");
        if (sets) calls.push_back(call);
    }
    return calls;
}

Matrix44f Counted() {
    Matrix44f matrix{};
    for (int i = 0; i < 16; ++i) matrix.m[i] = static_cast<float>(i);
    return matrix;
}

struct UniformCase {
    const char* name;
    uniform_t value;
    uint32_t type;
    std::vector<std::string> calls;
};

void PrintTo(const UniformCase& row, std::ostream* out) {
    *out << row.name;
}

const UniformCase kCases[] = {
    {"UIVEC", UIVEC(4000000000u), 0, {"glUniform1ui(5, 4000000000)"}},
    {"IVEC", IVEC(-3), 1, {"glUniform1i(5, -3)"}},
    {"IVEC2", IVEC2({1, -2}), 2, {"glUniform2i(5, 1, -2)"}},
    {"IVEC3", IVEC3({1, 2, 3}), 3, {"glUniform3i(5, 1, 2, 3)"}},
    {"IVEC4", IVEC4({1, 2, 3, 4}), 4, {"glUniform4i(5, 1, 2, 3, 4)"}},
    {"VEC", VEC(0.5f), 5, {"glUniform1f(5, 0.5)"}},
    {"VEC2", VEC2({1.5f, 2.5f}), 6, {"glUniform2f(5, 1.5, 2.5)"}},
    {"VEC3", VEC3({1, 2, 3.5f}), 7, {"glUniform3f(5, 1, 2, 3.5)"}},
    {"VEC4", VEC4({1, 2, 3, 4.5f}), 8, {"glUniform4f(5, 1, 2, 3, 4.5)"}},
    {"MAT44, not transposed",
     MAT44(Counted()),
     9,
     {"glUniformMatrix4fv(5, 1, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)"}},
    {"TEX1D", TEX1D(9), 10, {"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_1D, 9)", "glUniform1i(5, 0)"}},
    {"TEX2D", TEX2D(9), 11, {"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 9)", "glUniform1i(5, 0)"}},
    {"a tag of 12 sets nothing", {12, {}}, 12, {}},
    {"a large tag sets nothing", {0xFFFFFFFFu, {}}, 0xFFFFFFFFu, {}},
};

class UniformTags : public FakeGLTest, public ::testing::WithParamInterface<UniformCase> {};

TEST_P(UniformTags, AreSetByTheirOwnCall) {
    const UniformCase& row = GetParam();
    EXPECT_EQ(row.value.type, row.type);
    fake::Gl().uniforms = {{"value", 5}};
    CaptureStdout out;
    SetProgramUniforms(3, {{"value", row.value}});
    EXPECT_EQ(SettingCalls(), row.calls);
    EXPECT_EQ(out.Text(), "");
}

INSTANTIATE_TEST_SUITE_P(All, UniformTags, ::testing::ValuesIn(kCases));

TEST(Uniform, IsATagAndSixteenWords) {
    EXPECT_EQ(sizeof(uniform_t), 17 * 4u);
    EXPECT_EQ(sizeof(uniform_t::f), 64u);
}

TEST_F(UniformsTest, ReadsTheProgramBindsItAndLeavesItBound) {
    fake::Gl().uniforms = {{"value", 5}};
    SetProgramUniforms(3, {{"value", VEC(1)}});
    EXPECT_THAT(fake::Calls(), ElementsAre("glGetProgramiv(3, GL_LINK_STATUS)", "glGetProgramiv(3, GL_ACTIVE_UNIFORMS)",
                                           "glGetActiveUniform(3, 0, 32)", "glGetUniformLocation(3, \"value\")",
                                           "glUseProgram(3)", "glUniform1f(5, 1)"));
}

TEST_F(UniformsTest, TwoTexturesTakeUnitsZeroAndOne) {
    fake::Gl().uniforms = {{"first", 1}, {"second", 2}};
    SetProgramUniforms(3, {{"first", TEX2D(7)}, {"second", TEX2D(8)}});
    // Which sampler comes first is not fixed; unit, texture and sampler must belong together.
    const std::vector<std::string> firstThenSecond = {
        "glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 7)", "glUniform1i(1, 0)",
        "glActiveTexture(GL_TEXTURE1)", "glBindTexture(GL_TEXTURE_2D, 8)", "glUniform1i(2, 1)"};
    const std::vector<std::string> secondThenFirst = {
        "glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 8)", "glUniform1i(2, 0)",
        "glActiveTexture(GL_TEXTURE1)", "glBindTexture(GL_TEXTURE_2D, 7)", "glUniform1i(1, 1)"};
    EXPECT_THAT(SettingCalls(), ::testing::AnyOf(firstThenSecond, secondThenFirst));
}

TEST_F(UniformsTest, UnlinkedProgramIsReportedAndGoneOnWith) {
    fake::Gl().programs[3].failure = "no";
    fake::Gl().uniforms = {{"value", 5}};
    CaptureStdout out;
    SetProgramUniforms(3, {{"value", VEC(1)}});
    EXPECT_EQ(out.TextWithoutFlush(), "Program Not Linked : 3\n");
    EXPECT_THAT(SettingCalls(), ElementsAre("glUniform1f(5, 1)"));
}

TEST_F(UniformsTest, NoActiveUniforms) {
    CaptureStdout out;
    SetProgramUniforms(3, {{"value", VEC(1)}});
    EXPECT_EQ(out.TextWithoutFlush(), "No Active Uniforms for prog: 3\n");
    EXPECT_THAT(SettingCalls(), IsEmpty());
    EXPECT_THAT(fake::CallsTo("glUseProgram"), ElementsAre("glUseProgram(3)"));
}

TEST_F(UniformsTest, ActiveUniformsWithoutAValueAreListed) {
    fake::Gl().uniforms = {{"set", 1}, {"unset", 2}};
    CaptureStdout out;
    SetProgramUniforms(3, {{"set", VEC(1)}, {"unknown", VEC(2)}});
    EXPECT_EQ(out.TextWithoutFlush(), "Num Uniforms: 2\nThe Following Uniforms are not set:\nunset\n");
    EXPECT_THAT(SettingCalls(), ElementsAre("glUniform1f(1, 1)")) << "a value without uniform is ignored";
}

TEST_F(UniformsTest, ErrorNamesTheLocationTwiceAndNeverTheValue) {
    fake::Gl().uniforms = {{"value", 5}};
    fake::Gl().errors = {GL_INVALID_OPERATION};
    CaptureStdout out;
    SetProgramUniforms(3, {{"value", VEC(77)}});
    EXPECT_EQ(out.TextWithoutFlush(), "Uniform Error: value:5:1282\nUni Index: 5Uni Value: 5\n");
}

TEST_F(UniformsTest, NamesAreReadInto32Characters) {
    const std::string longName(40, 'n');
    fake::Gl().uniforms = {{longName, 5}};
    CaptureStdout out;
    SetProgramUniforms(3, {{longName, VEC(1)}});
    EXPECT_EQ(out.Text(), "Num Uniforms: 1\nThe Following Uniforms are not set:\n" + std::string(31, 'n') + "\n");
}

}  // namespace

}  // namespace umbrant::effect
