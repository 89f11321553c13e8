// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant farm --submit` with an sbatch that is a script: what it is handed, and every way in which it fails. A real
// one is in tests/farm.

#include <cstdlib>

#include "host/farm/slurm_submit.h"
#include "tests/host/cli/render/sequence_fixture.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CliFarmSubmit : public CliSequence {
 protected:
    CliFarmSubmit() {
        fs::create_directory(folder_ / "bin");
        setenv("PATH", ((folder_ / "bin").string() + ":" + path_).c_str(), 1);
    }
    ~CliFarmSubmit() override { setenv("PATH", path_.c_str(), 1); }

    /// An sbatch that keeps its script and its arguments, and then does this.
    void Sbatch(const std::string& text) const {
        const std::string keep = "#!/bin/bash\ncat >'" + (folder_ / "script").string() + "'\necho \"$*\" >'" +
                                 (folder_ / "arguments").string() + "'\n";
        WriteBytes(folder_ / "bin" / "sbatch", keep + text + "\n");
        fs::permissions(folder_ / "bin" / "sbatch", fs::perms::owner_all);
    }
    /// Submits frames 1 to 6 in tasks of two.
    Outcome Submit(const std::vector<std::string>& options = {"--yes"},
                   const std::vector<std::string>& render = {}) const {
        std::vector<std::string> words = {"farm", "--submit", "--frames-per-task", "2"};
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(),
                     {"slurm", "in.@.png", "-o", "out.##.png", "--frames", "1-6", "--module", TestModule("painter")});
        words.insert(words.end(), render.begin(), render.end());
        return RunInProcess(folder_, words);
    }

    const std::string path_ = std::getenv("PATH");
};

TEST_F(CliFarmSubmit, TheJobIsMeasuredShownAndSubmitted) {
    Sbatch("echo 17");
    const Outcome outcome = Submit();
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "17\n");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: the job 'umbrant': 6 frames in 3 tasks of up to 2 frames\n"));
    EXPECT_THAT(outcome.err, HasSubstr(" here, measured by drawing frames 1, 4, 6; its time limit is "));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: submitted as job 17; "));
    const std::string script = ReadBytes(folder_ / "script");
    EXPECT_THAT(script, StartsWith("#!/bin/bash\n#SBATCH --job-name=umbrant\n#SBATCH --array=1-3\n"));
    EXPECT_THAT(script, testing::ContainsRegex("\n#SBATCH --time=[0-9]+\n"));
    EXPECT_THAT(outcome.err, HasSubstr("\n" + script)) << "what is shown is what is submitted";
    EXPECT_EQ(ReadBytes(folder_ / "arguments"), "--parsable\n");
    EXPECT_FALSE(Exists("out.01.png")) << "the measured frames are not written";
}

TEST_F(CliFarmSubmit, WithoutAFirstFrameThereIsNoLimit) {
    Sbatch("echo 'sbatch: a remark' >&2; echo '18;other'");
    const Outcome outcome = Submit({"--yes", "--no-first-frame"}, {"--canvas", "layer"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "18;other\n");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: sbatch says: sbatch: a remark\n"));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: submitted as job 18; "));
    EXPECT_THAT(ReadBytes(folder_ / "script"), Not(HasSubstr("--time")));
}

TEST_F(CliFarmSubmit, AnSbatchThatFailsIsOneSentence) {
    const struct {
        const char* text;
        const char* said;
    } rows[] = {
        {"echo 'sbatch: error: invalid partition' >&2; echo 'sbatch: error: no job' >&2; exit 1",
         "umbrant: the job was not submitted: sbatch ended with exit code 1: sbatch: error: invalid partition; sbatch: "
         "error: no job\n"},
        {"exit 7", "umbrant: the job was not submitted: sbatch ended with exit code 7\n"},
        {"kill -9 $$", "umbrant: the job was not submitted: sbatch was ended by signal 9\n"},
        {"exit 0", "umbrant: the job was not submitted: sbatch printed no number of a job\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Sbatch(row.text);
        const Outcome outcome = Submit({"--yes", "--no-first-frame"});
        EXPECT_EQ(outcome.code, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, EndsWith(row.said));
    }
    Sbatch("for ((i = 0; i < 1000; ++i)); do echo 'the same again' >&2; done; exit 1");
    EXPECT_THAT(Submit({"--yes", "--no-first-frame"}).err, EndsWith(" ...\n")) << "what it says has an end";
    // A script that sbatch does not read to its end.
    WriteBytes(folder_ / "bin" / "sbatch", "#!/bin/bash\nexit 9\n");
    EXPECT_THAT(Submit({"--yes", "--no-first-frame"}).err, HasSubstr("sbatch ended with exit code 9"));
}

TEST_F(CliFarmSubmit, WithoutSbatchItSaysWhatCanBeDone) {
    setenv("PATH", (folder_ / "bin").c_str(), 1);
    const Outcome outcome = Submit({"--yes", "--no-first-frame"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: cannot submit the job: sbatch cannot be started: No such file"));
    EXPECT_THAT(outcome.err, HasSubstr("leave --submit out"));
}

TEST_F(CliFarmSubmit, NothingIsSubmittedThatCannotBeMeasured) {
    Sbatch("echo 17");
    Outcome outcome = Submit({"--yes"}, {"--set", "flaw=throw"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: the first frames cannot be drawn here, so that the time of a task is "
                                       "not known: 3 frames failed:"));
    EXPECT_THAT(outcome.err, HasSubstr("; --no-first-frame submits the job without a time limit\n"));
    EXPECT_FALSE(Exists("script"));
    for (int frame = 1; frame <= 6; ++frame) fs::remove(folder_ / ("in." + std::to_string(frame) + ".png"));
    outcome = Submit();
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("frame 1: cannot read 'in.@.png': there is no such file; --no-first-frame"));
    EXPECT_FALSE(Exists("script"));
    outcome = Submit({"--yes", "--no-first-frame"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(Exists("script"));
}

TEST_F(CliFarmSubmit, WrongUsage) {
    Sbatch("echo 17");
    const auto farm = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "farm");
        words.insert(words.end(), {"in.@.png", "-o", "out.##.png"});
        return RunInProcess(folder_, words);
    };
    const struct {
        std::vector<std::string> words;
        int code;
        const char* said;
    } rows[] = {
        {{"--submit", "--yes", "openjd"},
         2,
         "--submit applies to slurm only; without it the job for openjd is printed"},
        {{"--yes", "slurm"}, 2, "--yes requires --submit"},
        {{"--no-first-frame", "slurm"}, 2, "--no-first-frame requires --submit"},
        {{"slurm", "still.png", "--submit"},
         2,
         "--submit is an option of farm, not of render; write it before 'slurm'"},
        {{"slurm", "--watch"}, 2, "--watch is not for the tasks of a job; leave it out"},
        {{"slurm", "--dry-run"}, 2, "--dry-run is not for the tasks of a job; leave it out"},
        {{"--submit", "--yes", "--logs", "nowhere", "slurm"}, 3, "the folder of the logs, 'nowhere', does not exist"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.said);
        const Outcome outcome = farm(row.words);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(outcome.err, StartsWith(std::string("umbrant: ") + row.said));
        EXPECT_EQ(outcome.out, "");
    }
    // Nobody can be asked: the standard input of this process is empty.
    const Outcome asked = RunUmbrant(folder_, {"farm", "--submit", "slurm", "in.@.png", "-o", "out.##.png"});
    EXPECT_EQ(asked.code, 2);
    EXPECT_THAT(asked.err, HasSubstr("standard input is not a terminal; add --yes to submit without being asked"));
    EXPECT_FALSE(Exists("script"));
}

TEST(MinutesForTask, ArePlentyAndWhole) {
    EXPECT_EQ(MinutesForTask(0, 1), 6);
    EXPECT_EQ(MinutesForTask(12, 1), 6);
    EXPECT_EQ(MinutesForTask(12, 3), 8);
    EXPECT_EQ(MinutesForTask(3600, 3), 905);
    EXPECT_EQ(MinutesForTask(1e12, 100), 525600);
}

}  // namespace

}  // namespace umbrant::host
