// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Help, version, wrong usage and wrong values: exit codes and the sentences that go with them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(CliUsage, HelpHasExamplesAndExitCodes) {
    const Folder folder;
    const Outcome help = RunInProcess(folder, {"--help"});
    EXPECT_EQ(help.code, 0);
    for (const char* text : {"render", "params", "info", "compare", "Examples:", "--version", "Exit codes: 0 done",
                             "2 wrong usage", "129 the terminal was closed", "130 interrupted", "131 quit",
                             "141 nobody reads standard output", "143 terminated"}) {
        EXPECT_THAT(help.out, HasSubstr(text));
    }
    EXPECT_EQ(help.err, "");
}

TEST(CliUsage, EveryCommandHasHelpWithExamples) {
    const Folder folder;
    const struct {
        const char* command;
        std::vector<const char*> texts;
    } cases[] = {
        {"render",
         {"INPUT", "--output", "--set", "--texture", "--depth", "--downsample", "--canvas", "--mkdir", "--collapsed",
          "--time", "--module", "--verbose", "umbrant render title.png -o shadow.png"}},
        {"params", {"--json", "--module", "umbrant params --json"}},
        {"info", {"--json", "--module", "umbrant info"}},
        {"compare",
         {"FIRST", "SECOND", "--warn", "--percent", "--hard", "--diff", "--straight", "umbrant compare actual.png"}},
    };
    for (const auto& row : cases) {
        const Outcome help = RunInProcess(folder, {row.command, "--help"});
        EXPECT_EQ(help.code, 0) << row.command;
        EXPECT_THAT(help.out, HasSubstr("Examples:"));
        for (const char* text : row.texts) EXPECT_THAT(help.out, HasSubstr(text)) << row.command;
    }
}

TEST(CliUsage, VersionIsOneLine) {
    const Folder folder;
    const Outcome version = RunInProcess(folder, {"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, "umbrant " PROJECT_VERSION "\n");
}

struct UsageCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* sentence;
};

const UsageCase kWrongUsage[] = {
    {"nothing", {}, "subcommand is required"},
    {"an unknown command", {"rendr"}, "there is no command 'rendr'; did you mean 'render'?"},
    {"a command that is like none", {"bogus"}, "there is no command 'bogus'\n"},
    {"an option that is like none",
     {"render", "in.png", "-o", "out.png", "--zyxwvuts", "8"},
     "there is no option '--zyxwvuts'\n"},
    {"a texture without a name",
     {"render", "in.png", "-o", "out.png", "--texture", ""},
     "--texture: '' names no file; leave the option out to draw without a texture\n"},
    {"an unknown option",
     {"render", "in.png", "-o", "out.png", "--dpeth", "8"},
     "there is no option '--dpeth'; did you mean '--depth'?"},
    {"an unknown option with a value",
     {"render", "in.png", "-o", "out.png", "--canvsa=layer"},
     "there is no option '--canvsa'; did you mean '--canvas'?"},
    {"no input", {"render", "-o", "out.png"}, "INPUT is required"},
    {"no output", {"render", "in.png"}, "--output is required"},
    {"two inputs", {"render", "in.png", "other.png", "-o", "out.png"}, "'other.png' is not expected here"},
    {"a depth that is none",
     {"render", "in.png", "-o", "out.png", "--depth", "16"},
     "--depth: the effect renders in 8 or 32 bits; --output-depth 16 sets the depth of the file"},
    {"a canvas that is none",
     {"render", "in.png", "-o", "out.png", "--canvas", "wide"},
     "--canvas: 'wide' is neither grow, frame, layer, tight nor a rectangle LEFT,TOP,RIGHT,BOTTOM"},
    {"a downsample of 0",
     {"render", "in.png", "-o", "out.png", "--downsample", "0"},
     "--downsample: Value 0 not in range"},
    {"a downsample that is no number", {"render", "in.png", "-o", "out.png", "--downsample", "two"}, "--downsample"},
    {"a time before the start",
     {"render", "in.png", "-o", "out.png", "--time", "-1"},
     "--time: '-1' is not a number from 0 to 86400"},
    {"a time that is no number", {"render", "in.png", "-o", "out.png", "--time", "soon"}, "--time"},
    {"a time that is not a number",
     {"render", "in.png", "-o", "out.png", "--time", "nan"},
     "--time: 'nan' is not a number"},
    {"a setting without a value",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "paint/border"},
     "'--set paint/border' has no value; write --set PATH=VALUE"},
    {"an unknown parameter",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "paint/boarder=1"},
     "there is no parameter 'paint/boarder'; closest: 'paint/border'"},
    {"an unknown index",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "#99=1"},
     "there is no parameter '#99'; the effect has #0 to #9"},
    {"a value out of range",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "paint/border=40001"},
     "'paint/border' takes 0 to 40000, not 40001"},
    {"not a number",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "paint/border=wide"},
     "'paint/border' takes a number from 0 to 40000, not 'wide'"},
    {"an unknown item",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "flaw=leek"},
     "'flaw' has no item 'leek'; closest: 'leak'"},
    {"a colour that is none",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "paint/color=reddish"},
     "'paint/color' takes a colour as #rrggbb, #rgb or a CSS name, not 'reddish'"},
    {"a point that is none",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "paint/centre=3"},
     "'paint/centre' takes a point as x,y"},
    {"an argument too many", {"params", "more"}, "'more' is not expected here"},
    {"a tolerance that is none",
     {"compare", "in.png", "in.png", "--warn", "some"},
     "--warn: 'some' is not a channel difference"},
    {"a tolerance by nothing",
     {"compare", "in.png", "in.png", "--hard", "1/0"},
     "--hard: '1/0' is not a channel difference"},
    {"more than all pixels",
     {"compare", "in.png", "in.png", "--percent", "101"},
     "--percent: '101' is not a number from 0 to 100"},
};

TEST(CliUsage, WrongUsageIsCodeTwoAndNamesTheRightOne) {
    const Folder folder;
    WriteLayer(folder / "in.png", 4, 3, {255, 1, 2, 3});
    for (const UsageCase& row : kWrongUsage) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = RunInProcess(folder, row.arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr("umbrant: "));
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(folder.Entries(), 1) << "nothing is left behind";
    }
}

TEST(CliUsage, ResultsThatCannotBeWrittenAreAnError) {
    const Folder folder;
    const Outcome outcome = RunUmbrant(folder, {"params", "--module", TestModule("painter")}, {{}, "/dev/full"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("the results cannot be written to standard output"));
}

}  // namespace

}  // namespace umbrant::host
