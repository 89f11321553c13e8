// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Words for a shell: how they look, and that bash reads from them what went in.

#include "host/process/shell_word.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "tests/support/run_program.h"

namespace umbrant::host {

namespace {

using namespace std::string_literals;

/// What bash hands to a program for the word; a dot behind it keeps line ends at its end.
std::string ReadByBash(const std::string& word) {
    // Through a file, as a job is: a command line could not hold everything.
    const std::string file = testing::TempDir() + "shell_word_test.sh";
    std::FILE* script = std::fopen(file.c_str(), "w");
    std::fputs(("printf '%s.' " + word + "\n").c_str(), script);
    std::fclose(script);
    const ProgramRun run = RunProgram({"bash", file});
    EXPECT_EQ(run.code, 0) << word;
    std::string text = run.output;
    std::remove(file.c_str());
    return text.empty() ? text : text.substr(0, text.size() - 1);
}

TEST(ShellWord, LooksAsPeopleWriteIt) {
    const struct {
        const char* name;
        std::string text;
        std::string word;
    } rows[] = {
        {"nothing", "", "''"},
        {"a plain name", "out/shot-1_v2.exr", "out/shot-1_v2.exr"},
        {"a setting", "style/angle=90%", "style/angle=90%"},
        {"a field of signs begins a comment", "#.png", "'#.png'"},
        {"a variable", "shot.$F4.exr", "'shot.$F4.exr'"},
        {"a home folder", "~/x", "'~/x'"},
        {"a blank", "my shot.png", "'my shot.png'"},
        {"a quote", "it's", "'it'\\''s'"},
        {"the other quote", "a\"b", "'a\"b'"},
        {"a backslash", "a\\b", "'a\\b'"},
        {"a line end", "a\nb", "$'a\\012b'"},
        {"a line end beside a quote and a backslash", "'\\\n", "$'\\047\\134\\012'"},
        {"letters", "Träger.png", "'Träger.png'"},
        {"bytes that are no text", "a\xff\xc3", "$'a\\377\\303'"},
        {"two braces, which a template takes for its own", "{{Task.Param.Chunk}}",
         "$'\\173\\173Task.Param.Chunk\\175\\175'"},
        {"single braces", "{a,b}", "'{a,b}'"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ShellWord(row.text), row.word);
        EXPECT_EQ(ReadByBash(row.word), row.text);
    }
}

TEST(ShellWord, OnlyTextIsShownAsText) {
    const struct {
        const char* name;
        std::string text;
        bool isText;
    } rows[] = {
        {"two bytes", "\xc2\x80", true},
        {"three bytes", "\xe0\xa0\x80", true},
        {"four bytes", "\xf4\x8f\xbf\xbf", true},
        {"a longer form than needed", "\xc1\xbf", false},
        {"the same in three bytes", "\xe0\x9f\xbf", false},
        {"the same in four", "\xf0\x8f\xbf\xbf", false},
        {"half of a pair", "\xed\xa0\x80", false},
        {"behind the last character", "\xf4\x90\x80\x80", false},
        {"far behind it", "\xf5\x80\x80\x80", false},
        {"cut off", "\xe2\x82", false},
        {"a middle without a beginning", "\x80", false},
        {"a beginning in the middle", "\xe2\x82\xc3", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ShellWord(row.text).starts_with("$'"), !row.isText);
        EXPECT_EQ(ReadByBash(ShellWord(row.text)), row.text);
    }
}

TEST(ShellWord, BashReadsBackAnyBytes) {
    std::mt19937 random(1);
    std::string every;
    for (int c = 1; c < 256; ++c) every += static_cast<char>(c);
    std::vector<std::string> texts = {every};
    for (int i = 0; i < 40; ++i) {
        std::string text;
        for (unsigned length = random() % 30; length > 0; --length) {
            // Half of them signs that mean something somewhere.
            const std::string_view signs = "'\"\\$`!*?[]{}();&|<>#~ \n\t\r";
            text += random() % 2 ? signs[random() % signs.size()] : static_cast<char>(1 + random() % 255);
        }
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        const std::string word = ShellWord(text);
        EXPECT_EQ(ReadByBash(word), text) << word;
        EXPECT_EQ(word.find('\n'), std::string::npos) << "it lies on one line";
        EXPECT_EQ(word.find("{{"), std::string::npos);
    }
    EXPECT_EQ(ShellWords({"a b", "", "c"}), "'a b' '' c");
}

}  // namespace

}  // namespace umbrant::host
