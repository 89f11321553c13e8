// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The checks checked: every check fails the wrong modules that are made for it, and passes the right one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <csignal>
#include <set>
#include <string>
#include <vector>

#include "tests/host/cli/program.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using ::testing::AnyOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;

/// A wrong module, the check that must fail it, and words of the finding.
struct Row {
    const char* mutant;
    const char* check;
    const char* finding;
};

constexpr Row kRows[] = {
    {"MissingMain", "1.1", "the registered entry 'ElsewhereMain' is not exported"},
    {"WrongReserved", "1.2", "the reserved number is 7, not 8"},
    {"NewerInterface", "1.2", "the interface version is 13.99; this host has 13.28"},
    {"RegistersTwice", "1.2", "the callback was called 2 times, not once"},
    {"SwallowsRefusal", "1.2", "the callback refused with 1001, but registration returned 0"},
    {"ExportsMore", "1.3", "'judgedHelper' is exported besides the entries"},
    {"SlowSetup", "1.4", "loading and set-up took more than 1000 ms"},
    {"PrintsOnLoad", "1.5", "printed something: 'Judged was loaded"},
    {"LeaksFile", "1.5", "loading 10 times left 10 files open"},
    {"NoVersion", "2.1", "leaves the version at 0"},
    {"FlagsChange", "2.1", "a second set-up announces another version or other flags"},
    {"SameDiskId", "2.2", "rows #6 and #7 are stored under one id, 6"},
    {"DefaultOutside", "2.2", "look/amount: the default 120 is outside of the valid range 0 to 100"},
    {"WrongItemCount", "2.2", "look/mode: the popup has 3 items but declares 5"},
    {"EndlessName", "2.2", "row #2: the name has no end within its 32 bytes"},
    {"EndlessAbout", "2.3", "the about text has no end within the message's 256 bytes"},
    {"NoAbout", "2.3", "about leaves no text"},
    {"AboutOverruns", "2.3", "about writes beyond the message's 256 bytes"},
    {"CrashesInPremiere", "2.4", "in Premiere Pro crashed: Aborted (signal 6)"},
    {"RefusesUnknown", "2.5", "command 2147483647 (unknown command) is answered with PF_Err_BAD_CALLBACK_PARAM"},
    {"RendersOldWay", "2.5", "changes the output world"},
    {"DrawsNothing", "2.6", "the default frame at 8 bits is all zero"},
    {"DrawsNaN", "2.6", "the default frame at 32 bits has a channel at 0,0 that is not finite"},
    {"Exits", "2.6", "check 2.6 ended the process with code 3"},
    {"Hangs", "2.6", "check 2.6 timed out"},
    {"FailsAfterAbout", "3.1", "render: Judged failed in PF_Cmd_SMART_RENDER: error 512"},
    {"CrashesOnSecondSetdown", "3.2", "set-down twice crashed"},
    {"NeedsDriver", "3.2", "set-up without any OpenGL driver crashed"},
    {"LeaksSuite", "3.3", "suite PF Handle Suite 2 was acquired 1 time and released 0 times (PF_Cmd_GLOBAL_SETUP)"},
    {"ReleasesTwice", "3.3", "the suite PF Handle Suite 2 was released without being acquired"},
    {"UsesReleasedSuite", "3.3", "check 3.3 crashed: Segmentation fault (signal 11)"},
    {"AsksUnknownSuite", "3.4", "the suite PF Suite Of Dreams 3 is requested"},
    {"WritesStatic", "3.6", "a render changes static data"},
    {"TakesUnknownLayer", "3.7", "render takes the layer with id 77, which pre-render did not check out"},
    {"LeaksHandle", "4.1", "handle #2 was acquired 1 time and released 0 times (PF_Cmd_GLOBAL_SETUP)"},
    {"LeaksLock", "4.1", "lock #1 was acquired 1 time and released 0 times (PF_Cmd_GLOBAL_SETUP)"},
    {"UsesDisposedHandle", "4.1", "with handles' memory before a guard page crashed"},
    {"WritesPastHandle", "4.1", "with handles' memory before a guard page crashed"},
    {"LeaksParam", "4.2", "and released 0 times"},
    {"ChecksInTwice", "4.2", "parameter check-out was acquired"},
    {"ReadsCheckedIn", "4.3", "a frame differs when parameter definitions are overwritten after their check-in"},
    {"FreesPreRenderData", "4.4", "check 4.4 crashed"},
    {"LeaksPreRenderData", "4.4", "1000 pre-renders without a render left"},
    {"LeaksWorld", "4.5", "world #1 was acquired 1 time and released 0 times (PF_Cmd_SMART_RENDER)"},
    {"KeepsLayer", "4.5", "layer check-out id 1 was acquired 1 time and released 0 times"},
    {"WritesInput", "4.6", "with read-only inputs crashed"},
    {"WritesGlobalData", "4.7", "a render writes the global data"},
    {"CrashesOnTinyLayer", "5.1", "with layers of common sizes crashed"},
    {"CrashesAt16Bits", "5.2", "at 16 bits crashed"},
    {"AssumesTightRows", "5.3", "the frame changes when rows are"},
    {"WritesPadding", "5.3", "bytes between the rows of the output were written"},
    {"WritesRowTooFar", "5.4", "with worlds before a guard page crashed"},
    {"WritesBefore", "5.4", "with worlds behind a guard page crashed"},
    {"MaxFollowsRequest", "5.5", "for the whole layer it was"},
    {"ResultBeyondMax", "5.5", "reaches beyond the largest"},
    {"TrustsExtentHint", "5.6", "crashed"},
    {"IgnoresDownsample", "5.7", "where the full size has it"},
    {"DividesByStep", "5.8", "at a step of 0 crashed: Floating point exception (signal 8)"},
    {"TrustsIndex", "5.9", "with changes of any row crashed"},
    {"HandlesEverything", "5.9", "in which nothing happens, is reported as handled"},
    {"NaNInRange", "6.1", "is not finite"},
    {"FailsAtMaximum", "6.2", "with look/amount at 100: Judged failed"},
    {"TrustsPopup", "6.3", "look/mode at item 0"},
    {"LoopsOnHuge", "6.4", "timed out; it last printed: "},
    {"TrustsPointers", "6.5", "with no suites crashed"},
    {"TilesDiffer", "6.6", "tiles of 64 pixels differ from the whole frame"},
    {"IndexesByPixel", "6.7", "with pixels of random bits crashed"},
    {"SwallowsError", "7.1", "returns 0 (PF_Err_NONE) instead of 1001"},
    {"ReplacesError", "7.1", "returns 4 (PF_Err_OUT_OF_MEMORY) instead of 1001"},
    {"GoesOnAfterError", "7.1", "continues to call interact.checkout_param"},
    {"LeaksOnError", "7.1", "world #1 was acquired 1 time and released 0 times"},
    {"TrustsSuite", "7.2", "refused: a fault crashed"},
    {"IgnoresMissingSuite", "7.2", "returns no error and no message, but the frame differs"},
    {"TrustsHandle", "7.3", "with PF Handle Suite.host_new_handle:1:4 refused: a fault crashed"},
    {"TrustsMalloc", "7.4", "with the module's own allocations failing, style 1 crashed"},
    {"SharesEnvironment", "7.6", "draws another frame than the first"},
    {"SharesScratch", "8.1", "differ from those of one thread"},
    {"LeaksPerThread", "8.3", "each thread that rendered once and ended leaves"},
    {"OutlivesUnload", "8.4", "that ends after the module was unloaded crashed"},
    {"LocksWhileCalling", "8.5", "about on one thread waits for a render on another, which waits for the host in "},
    {"LocksInPreRender", "8.5", "about on one thread waits for a pre-render on another"},
    {"LocksInSetUp", "8.5", "about on one thread waits for parameter set-up on another"},
    {"LocksInUpdate", "8.5", "a pre-render on one thread waits for an update of the panel on another"},
    {"LocksInChange", "8.5", "a pre-render on one thread waits for a changed parameter on another"},
    {"LocksInDraw", "8.5", "a pre-render on one thread waits for a draw event on another"},
    {"CountsRows", "8.6", "the frame differs when rows come scattered"},
    {"DrawsChance", "9.1", "another process draws another frame"},
    {"RemembersFrame", "9.2", "frames drawn backwards differ from those drawn forwards"},
    {"DrawsTime", "9.4", "the frame changes with time, which the effect does not announce"},
    {"ClaimsLess", "9.5", "excludes the pixel"},
    {"EndlessErrorText", "9.6", "the message of PF_Cmd_SMART_RENDER has no end within its 256 bytes"},
    {"GrowsPerFrame", "10.1", "grow the process by"},
    {"SlowsDown", "10.2", "look/steps from 8 to 32: 4 times the work takes"},
    {"CrashesLate", "10.5", "a long session crashed"},
};

/// Checks whose wrong module draws with OpenGL; see mutants_gl_test.cpp.
constexpr const char* kDriverChecks[] = {"3.5", "7.5"};

std::string ExactId(const std::string& id) {
    std::string escaped = id;
    escaped.insert(escaped.find('.'), "\\");
    return "^" + escaped + " ";
}

/// A limit that a machine ten times slower keeps, in milliseconds.
constexpr const char* kPatient = "300000";

/// Short limits where the wrong module hangs on purpose.
std::vector<std::string> Arguments(const std::string& module, const std::string& check) {
    const bool hangs = module == "JudgedHangs" || module == "JudgedLoopsOnHuge";
    return {"validate",     TestModule(module),        "--strictness",   "10", "--include", ExactId(check),
            "--timeout-ms", hangs ? "6000" : kPatient, "--soak-seconds", "2"};
}

class Mutants : public ::testing::TestWithParam<Row> {};

TEST_P(Mutants, FailTheirCheck) {
    if (kIsSanitized) GTEST_SKIP() << "a sanitizer reports what is wrong before the judge does";
    const Folder folder;
    const Outcome run = RunUmbrant(folder, Arguments(std::string("Judged") + GetParam().mutant, GetParam().check));
    EXPECT_EQ(run.code, 1) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr(GetParam().finding));
    EXPECT_THAT(run.out, HasSubstr("again with: umbrant validate"));
    EXPECT_THAT(run.out, HasSubstr("0 passed, 1 failed, 0 skipped, 0 waived"));
}

INSTANTIATE_TEST_SUITE_P(All, Mutants, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.mutant); });

TEST(Judge, HasAMutantForEveryCheck) {
    const Folder folder;
    std::set<std::string> covered(std::begin(kDriverChecks), std::end(kDriverChecks));
    for (const Row& row : kRows) covered.insert(row.check);
    std::istringstream lines(RunUmbrant(folder, {"validate", "--list"}).out);
    int checks = 0;
    for (std::string id, rest; lines >> id && std::getline(lines, rest); ++checks) {
        EXPECT_TRUE(covered.contains(id)) << "no wrong module shows that check " << id << " finds anything";
    }
    EXPECT_GT(checks, 50);
}

TEST(Judge, PassesTheRightModuleOnEveryLevel) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"validate", TestModule("JudgedNone"), "--strictness", "10",
                                            "--soak-seconds", "2", "--timeout-ms", kPatient});
    EXPECT_EQ(run.code, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr(" 0 failed, "));
}

/// Programs that compute without end, to keep the machine busy.
class Load {
 public:
    explicit Load(int count) {
        for (int i = 0; i < count; ++i) {
            const pid_t child = fork();
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                volatile unsigned turns = 0;
                for (;;) turns = turns + 1;
            }
            if (child > 0) children_.push_back(child);
        }
    }
    ~Load() {
        for (const pid_t child : children_) kill(child, SIGKILL);
        for (const pid_t child : children_) waitpid(child, nullptr, 0);
    }
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;

 private:
    std::vector<pid_t> children_;
};

Outcome Time(const std::string& module) {
    const Folder folder;
    return RunUmbrant(folder, Arguments(module, "10.2"));
}

TEST(Judge, WaitingIsNotTakenForWork) {
    const Outcome run = Time("JudgedWaits");
    EXPECT_EQ(run.code, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr(" 0 failed, "));
}

TEST(Judge, TimesThatDoNotAgreeAreReportedAsNotMeasured) {
    const Outcome run = Time("JudgedUnsteady");
    EXPECT_EQ(run.code, 0) << run.out;
    EXPECT_THAT(run.out, ContainsRegex("skip     10.2[^\n]*\n +could not be measured on this machine: look/steps from "
                                       "8 to 32: 4 times the work takes [0-9.]+ to [0-9.]+ times the time"));
    EXPECT_THAT(run.out, HasSubstr("0 failed, 1 skipped, 0 waived"));
}

TEST(Judge, ABusyMachineRaisesNoFalseAlarm) {
    const Load load(4);
    const Outcome right = Time("JudgedNone");
    EXPECT_EQ(right.code, 0) << right.out;
    EXPECT_THAT(right.out, HasSubstr(" 0 failed, "));
    const Outcome wrong = Time("JudgedSlowsDown");
    EXPECT_THAT(wrong.out, AnyOf(HasSubstr("fail: look/steps from 8 to 32: 4 times the work takes"),
                                 HasSubstr("could not be measured on this machine: look/steps from 8 to 32")));
}

}  // namespace

}  // namespace umbrant::host
