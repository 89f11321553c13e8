// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The module's copy of each shader is the file, byte for byte; and the files keep what other code relies on.

#include "render/shader_sources.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace umbrant::effect {

namespace {

std::string FileText(const std::string& name) {
    std::ifstream file(std::string(SHADER_FOLDER) + "/" + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Row {
    const char* name;
    const char* embedded;
};

const Row kRows[] = {{"quad.vert", kQuadVert},    {"invert.frag", kInvertFrag}, {"blur_w.frag", kBlurWFrag},
                     {"blur_h.frag", kBlurHFrag}, {"copy_a.frag", kCopyAFrag},  {"copy_b.frag", kCopyBFrag}};

TEST(ShaderSources, AreTheFiles) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        ASSERT_FALSE(FileText(row.name).empty());
        EXPECT_EQ(FileText(row.name), row.embedded);
    }
}

TEST(ShaderSources, OpenAndCloseWithAComment) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        std::istringstream lines(row.embedded);
        std::string first;
        std::string second;
        std::getline(lines, first);
        std::getline(lines, second);
        EXPECT_TRUE(first == "//" || first == "// begin shader") << first;
        EXPECT_EQ(second, "#version 330");
        std::string last;
        for (std::string line; std::getline(lines, line);) last = line;
        EXPECT_EQ(last.rfind("//", 0), 0u) << last;
    }
}

TEST(ShaderSources, BlursKeepTheirDivisorAndItsComment) {
    // Intended: the comment speaks of 0.09, the formula divides by 0.06.
    for (const char* source : {kBlurWFrag, kBlurHFrag}) {
        const std::string text = source;
        EXPECT_NE(text.find("0.09 is sgima * sigma, or 0.3 * 0.3"), std::string::npos);
        EXPECT_NE(text.find("exp(-0.5 * x * x / 0.06)"), std::string::npos);
    }
}

TEST(ShaderSources, CopiesDifferInWhiteSpaceOnly) {
    const auto squeezed = [](std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        return text;
    };
    EXPECT_NE(std::string(kCopyAFrag), kCopyBFrag);
    EXPECT_EQ(squeezed(kCopyAFrag), squeezed(kCopyBFrag));
}

}  // namespace

}  // namespace umbrant::effect
