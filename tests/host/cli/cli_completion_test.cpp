// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What `umbrant __complete` answers to a shell's script. The scripts themselves are tested with the shells, in
// tests/packaging.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "tests/host/cli/in_process.h"

namespace umbrant::host {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

struct Answer {
    std::vector<std::string> texts;  ///< of the candidates
    std::vector<std::string> descriptions;
    std::string last;
};

Answer Ask(const std::vector<std::string>& words, const std::vector<std::string>& options = {}) {
    const Folder folder;
    std::vector<std::string> arguments = {"__complete"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back("--");
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Outcome outcome = RunInProcess(folder, arguments);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    Answer answer;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_EQ(answer.last, "") << "nothing follows the last line";
        const std::size_t tab = line.find('\t');
        if (line.starts_with(':')) {
            answer.last = line;
            continue;
        }
        answer.texts.push_back(line.substr(0, tab));
        answer.descriptions.push_back(tab == line.npos ? "" : line.substr(tab + 1));
    }
    return answer;
}

TEST(CliCompletion, TheLastLineSaysWhatFollowsAndWhere) {
    const struct {
        const char* name;
        std::vector<std::string> words;
        const char* last;
        std::vector<std::string> some;
        const char* absent;
    } cases[] = {
        {"commands", {""}, ":words\t", {"render", "completion"}, "__complete"},
        {"commands, whatever is typed", {"x"}, ":words\t", {"render"}, "--help"},
        {"the program's options", {"-"}, ":options\t", {"-h", "--help", "--version"}, "--output="},
        {"a command's options", {"render", "--"}, ":options\t", {"--output=", "--mkdir"}, "-o"},
        {"short ones too", {"render", "-"}, ":options\t", {"-o", "--output="}, "--strictness="},
        {"after a flag", {"render", "--mkdir", "--canvas", ""}, ":words\t", {"grow"}, "auto"},
        {"after a short option", {"render", "-o", ""}, ":files\t", {}, ""},
        {"a joined value", {"render", "--canvas=x"}, ":words\t--canvas=", {"grow"}, "--canvas=grow"},
        {"a joined file", {"render", "--texture=pict"}, ":files\t--texture=", {}, ""},
        {"a short one's joined file", {"render", "-opict"}, ":files\t-o", {}, ""},
        {"an argument", {"render", ""}, ":files\t", {}, ""},
        {"an argument after the mark", {"render", "--", "-"}, ":files\t", {}, ""},
        {"a stream's name is an argument", {"compare", "-", ""}, ":files\t", {}, ""},
        {"too many arguments", {"render", "a", ""}, ":words\t", {}, "grow"},
        {"a value that is free", {"render", "--time", ""}, ":words\t", {}, "grow"},
        {"a folder", {"farm", "--logs", ""}, ":files\t", {}, ""},
        {"a background", {"render", "--background", ""}, ":words\t", {"checker"}, "grow"},
        {"a colour space",
         {"render", "--input-space", ""},
         ":words\t",
         {"sRGB", "Linear Rec.709", "Gamma 2.4 Rec.709", "ACEScg"},
         "grow"},
        {"a colour space, joined", {"render", "--texture-space="}, ":words\t--texture-space=", {"ACEScg"}, "grow"},
        {"an image as background", {"render", "--background", "pl"}, ":files\t", {}, ""},
        {"what varies", {"sheet", "--vary", "style/shadow-type="}, ":words\tstyle/shadow-type=", {"radial"}, "screen"},
        {"a preset", {"curves", "--preset", ""}, ":words\t", {"soft-drop", "neon"}, "soft-drop.json"},
        {"a preset's file", {"curves", "--preset", "./"}, ":files\t", {}, ""},
        {"a module", {"validate", ""}, ":files\t", {}, ""},
        {"parameters", {"render", "--set", "st"}, ":settings\t", {"style/distance=", "debug/counter="}, "style="},
        {"parameters, joined", {"render", "--set=st"}, ":settings\t--set=", {"style/distance="}, "--set=style/angle="},
        {"a popup", {"params", "--set", "style/shadow-type=r"}, ":words\tstyle/shadow-type=", {"radial"}, "screen"},
        {"a popup, joined",
         {"render", "--set=style/shadow-type="},
         ":words\t--set=style/shadow-type=",
         {"normal", "inner", "radial"},
         "screen"},
        {"a number", {"render", "--set", "style/distance="}, ":words\tstyle/distance=", {}, "style/distance"},
        {"no parameter", {"render", "--set", "nothing="}, ":words\t", {}, "normal"},
        {"rows", {"panel", "--open", ""}, ":words\t", {"all", "style", "easing/advanced"}, "style/shadow-type"},
        {"an engine", {"farm", "--tasks", "5", ""}, ":words\t", {"slurm", "openjd", "parallel"}, "render"},
        {"a task's options", {"farm", "slurm", "-"}, ":options\t", {"--output=", "-o"}, "--tasks="},
        {"a command that there is not", {"bogus", ""}, ":words\t", {"render"}, "--help"},
        {"an option that there is not", {"render", "--bogus=x", "--canvas="}, ":words\t--canvas=", {"grow"}, ""},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Answer answer = Ask(row.words);
        EXPECT_EQ(answer.last, row.last);
        EXPECT_THAT(answer.texts, IsSupersetOf(row.some));
        EXPECT_THAT(answer.texts, Not(Contains(row.absent)));
        if (std::string(row.last).starts_with(":files")) {
            EXPECT_THAT(answer.texts, ElementsAre());
        }
    }
}

TEST(CliCompletion, AConfigurationOfTheUsersHasOtherColourSpaces) {
    ASSERT_EQ(setenv("OCIO", "studio.ocio", 1), 0);
    const Answer answer = Ask({"render", "--input-space", ""});
    unsetenv("OCIO");
    EXPECT_EQ(answer.last, ":words\t");
    EXPECT_THAT(answer.texts, ElementsAre());
}

TEST(CliCompletion, CandidatesHaveTheDescriptionsOfTheHelp) {
    const Answer commands = Ask({""});
    ASSERT_FALSE(commands.texts.empty());
    EXPECT_EQ(commands.texts[0], "render");
    EXPECT_THAT(commands.descriptions[0], StartsWith("Render an image"));
    const Answer options = Ask({"render", "--"});
    const auto at = std::find(options.texts.begin(), options.texts.end(), "--quiet") - options.texts.begin();
    ASSERT_LT(static_cast<std::size_t>(at), options.descriptions.size());
    EXPECT_EQ(options.descriptions[static_cast<std::size_t>(at)], "Report failures only");
}

TEST(CliCompletion, AnOptionIsOfferedOnceUnlessItMayBeRepeated) {
    const Answer answer = Ask({"render", "-o", "a.png", "--canvas=grow", "--set", "a=1", "--quiet", "-"});
    for (const char* used : {"-o", "--output=", "--canvas=", "--quiet"}) {
        EXPECT_THAT(answer.texts, Not(Contains(used)));
    }
    EXPECT_THAT(answer.texts, IsSupersetOf({"--set=", "--json"}));
    // An option of another command is another option.
    EXPECT_THAT(Ask({"farm", "--name", "a", "slurm", "--"}).texts, Contains("--output="));
}

TEST(CliCompletion, AModuleThatCannotBeLoadedHasNoParameters) {
    const Answer none = Ask({"render", "--set", ""}, {"--module", "none.so"});
    EXPECT_EQ(none.last, ":settings\t");
    EXPECT_THAT(none.texts, ElementsAre());
    // All else needs no module.
    EXPECT_THAT(Ask({"render", "--canvas", ""}, {"--module", "none.so"}).texts, Contains("grow"));
}

TEST(CliCompletion, ParametersAreThoseOfTheModuleThatIsNamed) {
    EXPECT_THAT(Ask({"render", "--set", ""}, {"--module", TestModule("painter")}).texts,
                Not(Contains("style/distance=")));
    EXPECT_THAT(Ask({"render", "--set", ""}).texts, Contains("style/distance="));
    // By the environment too, and a wrong one is not reported.
    const Folder folder;
    const Outcome wrong =
        RunUmbrant(folder, {"__complete", "--", "render", "--set", ""}, {{"UMBRANT_MODULE=none.so"}, ""});
    EXPECT_EQ(wrong.code, 0);
    EXPECT_EQ(wrong.out + wrong.err, ":settings\t\n");
}

TEST(CliCompletion, WordsOfEveryKindAreAnswered) {
    const std::string wrong[] = {"\n",  "\t", "\x01", "\xff\xfe", "--=", "--=x",     "--\n=x",
                                 "-\n", "{}", "[]",   "%%",       "=",   "--set=\n="};
    for (const std::string& word : wrong) {
        SCOPED_TRACE(testing::PrintToString(word));
        EXPECT_THAT(Ask({word}).last, StartsWith(":"));
        EXPECT_THAT(Ask({"render", word}).last, StartsWith(":"));
        EXPECT_THAT(Ask({"render", "--set", word}).last, StartsWith(":"));
        EXPECT_THAT(Ask({"render", word, "--canvas", ""}).texts, Contains("grow"));
    }
    EXPECT_EQ(Ask({"render", "--set=\n="}).last, ":words\t");
}

TEST(CliCompletion, AnotherFormIsWrongUsage) {
    const Folder folder;
    const std::vector<std::string> cases[] = {
        {},         {"--"},         {"render"}, {"--module"}, {"--module", "x.so"}, {"--module", "x.so", "--"},
        {"--help"}, {"", "--", ""},
    };
    for (std::vector<std::string> arguments : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        arguments.insert(arguments.begin(), "__complete");
        const Outcome outcome = RunInProcess(folder, arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(
            outcome.err,
            "umbrant: __complete is for the scripts of `umbrant completion`; it takes [--module FILE] -- WORDS...\n");
    }
}

TEST(CliCompletion, TheRequestIsHidden) {
    const Folder folder;
    EXPECT_THAT(RunInProcess(folder, {"--help"}).out, Not(HasSubstr("__complete")));
    EXPECT_THAT(RunInProcess(folder, {"__complet"}).err, Not(HasSubstr("did you mean")));
    EXPECT_THAT(RunInProcess(folder, {"completion", "--help"}).out, Not(HasSubstr("__complete")));
}

TEST(CliCompletion, TheScriptNeedsNoModuleUnlessOneIsNamed) {
    const Folder folder;
    const ProgramOptions wrong = {{"UMBRANT_MODULE=none.so"}, ""};
    const Outcome script = RunUmbrant(folder, {"completion", "bash"}, wrong);
    EXPECT_EQ(script.code, 0) << script.err;
    EXPECT_THAT(script.out, HasSubstr("complete -o default -F _umbrant umbrant"));
    const Outcome named = RunUmbrant(folder, {"completion", "bash", "--module", "none.so"});
    EXPECT_EQ(named.code, 4);
    EXPECT_EQ(named.out, "");
}

}  // namespace

}  // namespace umbrant::host
