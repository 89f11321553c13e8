// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant validate` as a command: what it says to wrong usage, what its reports hold, how findings are waived and
// repeated.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

struct UsageRow {
    const char* name;
    std::vector<std::string> arguments;
    int code;
    const char* sentence;
};

std::string Write(const Folder& folder, const std::string& name, const std::string& text) {
    const std::string file = (folder.Path() / name).string();
    std::ofstream(file) << text;
    return file;
}

TEST(Validate, RefusesWrongUsageWithASentence) {
    const Folder folder;
    const std::string module = TestModule("JudgedNone");
    const auto waive = [&](const std::string& name, const std::string& text) {
        return std::vector<std::string>{module, "--waive", Write(folder, name, text)};
    };
    const UsageRow rows[] = {
        {"no such module",
         {"/nowhere/effect.so"},
         4,
         "cannot load the module '/nowhere/effect.so': there is no such file"},
        {"a level too high", {module, "--strictness", "11"}, 2, "'11' is not a number from 1 to 10"},
        {"a level that is no number", {module, "--strictness", "high"}, 2, "'high' is not a number from 1 to 10"},
        {"no repetition", {module, "--repeat", "0"}, 2, "'0' is not a number from 1 to 1000"},
        {"no time", {module, "--timeout-ms", "0"}, 2, "'0' is not a number from 1 to 86400000"},
        {"a broken expression", {module, "--include", "["}, 2, "--include '[' is not a regular expression"},
        {"another broken one", {module, "--exclude", "("}, 2, "--exclude '(' is not a regular expression"},
        {"nothing chosen",
         {module, "--include", "^99"},
         2,
         "no check of level 5 or below is chosen; --list shows them"},
        {"an unknown form", {module, "--report", "html"}, 2, "--report"},
        {"an incomplete fault", {module, "--fault", "PF_NewWorld"}, 2, "--fault 'PF_NewWorld' is not CALLEE:K:ERROR"},
        {"a fault without an error", {module, "--fault", "utils.fill:1:0"}, 2, "is not CALLEE:K:ERROR"},
        {"no such waiver file", {module, "--waive", "/nowhere.json"}, 3, "cannot read the waiver file '/nowhere.json'"},
        {"a waiver file that is none", waive("a.json", "checks"), 2, "is not JSON"},
        {"no list", waive("b.json", "{}"), 2, "has no list 'waivers'"},
        {"an unknown check", waive("c.json", R"({"waivers":[{"check":"1.99","finding":"x","reason":"y"}]})"), 2,
         "names the check '1.99', which does not exist; --list shows all checks"},
        {"no reason", waive("d.json", R"({"waivers":[{"check":"1.1","finding":"x"}]})"), 2,
         "has an entry for check 1.1 without a reason"},
        {"no finding", waive("e.json", R"({"waivers":[{"check":"1.1","reason":"y"}]})"), 2,
         "has an entry for check 1.1 without a finding"},
        {"an unknown key", waive("f.json", R"({"waivers":[{"check":"1.1","because":"y"}]})"), 2,
         "known are check, finding, reason and always"},
        {"a broken finding", waive("g.json", R"({"waivers":[{"check":"1.1","finding":"(","reason":"y"}]})"), 2,
         "has the finding '(', which is not a regular expression"},
        {"a trace that cannot be written",
         {module, "--include", "^1.1", "--trace", "/nowhere/t.json"},
         3,
         "cannot write the trace '/nowhere/t.json'"},
    };
    for (const UsageRow& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.begin(), "validate");
        const Outcome run = RunUmbrant(folder, arguments);
        EXPECT_EQ(run.code, row.code) << run.out;
        EXPECT_THAT(run.err, HasSubstr(row.sentence));
    }
}

TEST(Validate, ListsItsChecks) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"validate", "--list"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, StartsWith("1.1   it loads with every symbol found, and has both entries\n"));
    EXPECT_THAT(run.out, HasSubstr("\n10.5  it survives a long session on all threads\n"));
}

TEST(Validate, TellsATotalLast) {
    const Folder folder;
    const Outcome run =
        RunUmbrant(folder, {"validate", TestModule("JudgedNone"), "--strictness", "1", "--exclude", "^1\\.4"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, EndsWith("4 passed, 0 failed, 0 skipped, 0 waived\n"));
    EXPECT_EQ(run.err, "");
}

TEST(Validate, GivesTheCommandThatRepeatsAFinding) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"validate", TestModule("JudgedSwallowsError"), "--strictness", "7",
                                            "--include", "^7\\.1 ", "--seed", "5"});
    EXPECT_EQ(run.code, 1);
    std::smatch found;
    const std::regex again(
        "seed 5; again with: umbrant (validate [^\n]*--include '\\^7\\\\.1 ' --seed 5 --fault "
        "'interact.checkout_param:[0-9]+:[0-9]+')");
    ASSERT_TRUE(std::regex_search(run.out, found, again)) << run.out;
    // The words as a shell would part them, without their quotes.
    std::vector<std::string> arguments;
    std::istringstream words(std::regex_replace(found[1].str(), std::regex("'\\^7\\\\.1 '"), "^7\\.1"));
    for (std::string word; words >> word;) arguments.push_back(std::regex_replace(word, std::regex("'"), ""));
    const Outcome repeated = RunUmbrant(folder, arguments);
    EXPECT_EQ(repeated.code, 1);
    EXPECT_THAT(repeated.out, HasSubstr("instead of"));
    EXPECT_THAT(repeated.out, EndsWith("0 passed, 1 failed, 0 skipped, 0 waived\n"));
}

TEST(Validate, WaivesFindingsWithAReason) {
    const Folder folder;
    const std::string file = Write(folder, "accepted.json", R"({"waivers": [
        {"check": "2.2", "finding": "stored under one id", "reason": "they always were"}]})");
    const std::vector<std::string> arguments{
        "validate", TestModule("JudgedSameDiskId"), "--include", "^2\\.2 ", "--waive", file};
    const Outcome run = RunUmbrant(folder, arguments);
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, StartsWith("waived   2.2 "));
    EXPECT_THAT(run.out, HasSubstr("because they always were"));
    EXPECT_THAT(run.out, EndsWith("0 passed, 0 failed, 0 skipped, 1 waived\n"));
}

TEST(Validate, AWaivedFindingThatDoesNotOccurFails) {
    const Folder folder;
    const std::string text = R"({"waivers": [
        {"check": "2.2", "finding": "stored under one id", "reason": "they always were"ALWAYS}]})";
    const auto run = [&](const std::string& always) {
        const std::string file = Write(folder, "accepted.json", std::regex_replace(text, std::regex("ALWAYS"), always));
        return RunUmbrant(folder, {"validate", TestModule("JudgedNone"), "--include", "^2\\.2 ", "--waive", file});
    };
    const Outcome stale = run("");
    EXPECT_EQ(stale.code, 1);
    EXPECT_THAT(stale.out, HasSubstr("the waived finding 'stored under one id' did not occur"));
    const Outcome sometimes = run(R"(, "always": false)");
    EXPECT_EQ(sometimes.code, 0) << sometimes.out;
}

TEST(Validate, OtherFindingsOfAWaivedCheckStillFail) {
    const Folder folder;
    const std::string file = Write(folder, "accepted.json", R"({"waivers": [
        {"check": "2.2", "finding": "something else", "reason": "because", "always": false}]})");
    const Outcome run =
        RunUmbrant(folder, {"validate", TestModule("JudgedSameDiskId"), "--include", "^2\\.2 ", "--waive", file});
    EXPECT_EQ(run.code, 1);
}

TEST(Validate, FindsTheWaiversBesideTheModule) {
    const Folder folder;
    std::filesystem::copy_file(TestModule("JudgedSameDiskId"), folder.Path() / "effect.so");
    Write(folder, "effect.waivers.json", R"({"waivers": [
        {"check": "2.2", "finding": "stored under one id", "reason": "they always were"}]})");
    const Outcome run = RunUmbrant(folder, {"validate", "effect.so", "--include", "^2\\.2 "});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, EndsWith("0 passed, 0 failed, 0 skipped, 1 waived\n"));
    EXPECT_THAT(run.err, HasSubstr("effect.waivers.json' are accepted"));
}

TEST(Validate, ReportsJson) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"validate", TestModule("JudgedNoVersion"), "--strictness", "2", "--include",
                                            "^(1\\.1|2\\.1) ", "--report", "json"});
    EXPECT_EQ(run.code, 1);
    const json report = ParseJson(run.out);
    EXPECT_EQ(report["passed"], 1);
    EXPECT_EQ(report["failed"], 1);
    EXPECT_EQ(report["checks"][1]["id"], "2.1");
    EXPECT_EQ(report["checks"][1]["level"], 2);
    EXPECT_EQ(report["checks"][1]["verdict"], "fail");
    EXPECT_EQ(report["checks"][1]["findings"][0]["text"], "global set-up leaves the version at 0");
    EXPECT_THAT(report["checks"][1]["findings"][0]["repeat"].get<std::string>(), StartsWith("umbrant validate "));
}

TEST(Validate, ReportsJunit) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"validate", TestModule("JudgedNoVersion"), "--strictness", "2", "--include",
                                            "^(1\\.1|2\\.1) ", "--report", "junit"});
    EXPECT_THAT(run.out, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name="));
    EXPECT_THAT(run.out, HasSubstr("tests=\"2\" failures=\"1\" skipped=\"0\""));
    EXPECT_THAT(run.out, HasSubstr("<failure type=\"fail\" message=\"global set-up leaves the version at 0\">"));
    EXPECT_THAT(run.out, EndsWith("</testsuite>\n"));
}

TEST(Validate, WritesEveryCallInTheTraceFormat) {
    const Folder folder;
    const std::string file = (folder.Path() / "trace.json").string();
    const Outcome run =
        RunUmbrant(folder, {"validate", TestModule("JudgedNone"), "--include", "^2\\.6 ", "--trace", file});
    EXPECT_EQ(run.code, 0);
    const json events = ParseJson(ReadBytes(file));
    ASSERT_TRUE(events.is_array());
    int commands = 0, calls = 0;
    for (const json& event : events) {
        if (event.value("cat", "") == "command") ++commands;
        if (event.value("name", "") == "smart-render.checkout_output") {
            ++calls;
            EXPECT_EQ(event["ph"], "X");
            EXPECT_EQ(event["args"]["result"], 0);
        }
    }
    EXPECT_EQ(calls, 2);  // one frame at 8 bits, one at 32
    EXPECT_GE(commands, 8);
}

TEST(Validate, RunsInThisProcessWhenAsked) {
    const Folder folder;
    const Outcome run = RunUmbrant(
        folder, {"validate", TestModule("JudgedNone"), "--in-process", "--include", "^(2\\.6|4\\.1|5\\.4) "});
    EXPECT_EQ(run.code, 0) << run.out << run.err;
    EXPECT_THAT(run.out, EndsWith("3 passed, 0 failed, 0 skipped, 0 waived\n"));
}

TEST(Validate, RepeatsWithOtherSeeds) {
    const Folder folder;
    const Outcome run = RunUmbrant(
        folder, {"validate", TestModule("JudgedNone"), "--include", "^3\\.1 ", "--repeat", "3", "--report", "json"});
    EXPECT_EQ(run.code, 0);
    // One check, three runs: three times the commands of one.
    EXPECT_GT(ParseJson(run.out)["checks"][0]["figures"]["commands"].get<double>(), 400);
}

TEST(Validate, AFaultThatNeverComesDoesNotPass) {
    const Folder folder;
    const std::string module = TestModule("JudgedNone");
    const UsageRow rows[] = {
        {"no such call",
         {"--include", "^7\\.3 ", "--strictness", "7", "--fault", "PF Wrld Suite.NewWorld:1:4"},
         2,
         "--fault 'PF Wrld Suite.NewWorld:1:4': there was no such call; the closest is 'PF World Suite.PF_NewWorld', "
         "with K from 1 to 1"},
        {"the name of the function alone",
         {"--include", "^7\\.1 ", "--strictness", "7", "--fault", "checkout_param:1:1001"},
         2,
         "there was no such call; the closest is 'interact.checkout_param', with K from 1 to "},
        {"too late a call",
         {"--include", "^7\\.3 ", "--strictness", "7", "--fault", "PF World Suite.PF_NewWorld:9:4"},
         2,
         "--fault 'PF World Suite.PF_NewWorld:9:4': that call came 1 times at most; K from 1 to 1 would work"},
        {"no check that refuses calls",
         {"--fault", "PF World Suite.PF_NewWorld:1:4"},
         2,
         "no check is chosen that refuses host calls (7.1, 7.2, 7.3 and 9.6); --strictness 7 chooses three of them"},
    };
    for (const UsageRow& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments{"validate", module};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const Outcome run = RunUmbrant(folder, arguments);
        EXPECT_EQ(run.code, row.code) << run.out;
        EXPECT_THAT(run.err, HasSubstr(row.sentence));
        EXPECT_THAT(run.out, Not(HasSubstr("pass     7.")));
    }
}

TEST(Validate, AFaultThatComesIsPutWithAnyError) {
    const Folder folder;
    for (const char* fault : {"PF World Suite.PF_NewWorld:1:4", "PF World Suite.PF_NewWorld:1:25"}) {
        SCOPED_TRACE(fault);
        const Outcome run = RunUmbrant(folder, {"validate", TestModule("JudgedNone"), "--include", "^7\\.[12] ",
                                                "--strictness", "7", "--fault", fault});
        EXPECT_EQ(run.code, 0) << run.out << run.err;
        EXPECT_THAT(run.out, HasSubstr("pass     7.1 "));
        EXPECT_THAT(run.out, HasSubstr("skip     7.2 "));
        EXPECT_THAT(run.out, HasSubstr(std::string("the fault '") + fault + "' was not reached"));
        EXPECT_THAT(run.out, HasSubstr("1 passed, 0 failed, 1 skipped, 0 waived"));
    }
}

TEST(Validate, AFileThatIsNoModuleStopsAtTheFirstCheck) {
    const Folder folder;
    const std::string text = Write(folder, "notes.txt", "this is no module, but a text that is longer than a header\n");
    const UsageRow rows[] = {
        {"a text", {text}, 4, "fail: it cannot be loaded: "},
        {"a text, other checks chosen", {text, "--include", "^5"}, 4, "fail: it cannot be loaded: "},
        {"a folder", {folder.Path().string()}, 4, "fail: it cannot be loaded: "},
        {"another library", {TestModule("no_export")}, 4, "fail: PluginDataEntryFunction is not exported"},
        {"in this process", {text, "--in-process"}, 4, "fail: it cannot be loaded: "},
    };
    for (const UsageRow& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.begin(), "validate");
        const Outcome run = RunUmbrant(folder, arguments);
        EXPECT_EQ(run.code, row.code) << run.out;
        EXPECT_THAT(run.out, StartsWith("fail     1.1   it loads with every symbol found, and has both entries"));
        EXPECT_THAT(run.out, HasSubstr(row.sentence));
        EXPECT_THAT(run.out, EndsWith("0 passed, 1 failed, 0 skipped, 0 waived\n"));
    }
    const Outcome listed = RunUmbrant(folder, {"validate", text, "--report", "json"});
    EXPECT_EQ(listed.code, 4);
    EXPECT_EQ(ParseJson(listed.out)["checks"].size(), 1u);
}

/// The module of this project on the levels that every build runs.
TEST(Validate, PassesThisProjectsModule) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"validate", UMBRANT_MODULE_FILE, "--timeout-ms", "300000"});
    EXPECT_EQ(run.code, 0) << run.out << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("crash:")));
}

}  // namespace

}  // namespace umbrant::host
