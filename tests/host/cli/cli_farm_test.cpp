// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant farm`: what it prints, what it refuses and with which sentence. The engines' own tests are in tests/farm.

#include "host/process/child_process.h"
#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/host/cli/running_program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CliFarm : public CliSequence {
 protected:
    Outcome Farm(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "farm");
        return RunInProcess(folder_, arguments);
    }
    /// The script that runs as a task of Slurm would, in a folder of no importance.
    int RunTask(const std::string& script, const std::string& task) const {
        WriteBytes(folder_ / "job.sh", script);
        ProgramStart start;
        start.folder = "/";
        start.environment = {"SLURM_ARRAY_TASK_ID=" + task};
        start.output = Stream::File((folder_ / "log").string());
        start.errors = Stream::AsOutput();
        return RunProgram({"bash", (folder_ / "job.sh").string()}, start).code;
    }
};

TEST_F(CliFarm, PrintsAJobAndNothingElse) {
    const auto before = folder_.Entries();
    for (const char* engine : {"slurm", "parallel", "openjd"}) {
        SCOPED_TRACE(engine);
        const Outcome outcome = Farm({engine, "in.@.png", "-o", "out.##.png", "--frames", "1-6", "--canvas", "layer"});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_THAT(outcome.out,
                    HasSubstr("umbrant render in.@.png -o 'out.##.png' --frames 1-6 --canvas layer --chunk "));
        EXPECT_EQ(folder_.Entries(), before);
    }
    EXPECT_THAT(Farm({"slurm", "in.@.png", "-o", "out.##.png"}).out,
                StartsWith("#!/bin/bash\n#SBATCH --job-name=umbrant\n"));
    EXPECT_EQ(ParseJson(Farm({"openjd", "in.@.png", "-o", "out.##.png"}).out)["specificationVersion"],
              "jobtemplate-2023-09");
}

TEST_F(CliFarm, DividesTheFrames) {
    const struct {
        const char* name;
        std::vector<std::string> options;
        const char* frames;
        const char* line;
    } rows[] = {
        {"ten to a task", {}, "1-48", "#SBATCH --array=1-5\n"},
        {"some to a task", {"--frames-per-task", "4"}, "1-48", "#SBATCH --array=1-12\n"},
        {"a number of tasks", {"--tasks=7"}, "1-48", "#SBATCH --array=1-7\n"},
        {"more tasks than frames", {"--tasks", "9"}, "1-8x2", "#SBATCH --array=1-4\n"},
        {"one frame", {}, "7", "#SBATCH --array=1-1\n"},
        {"a name", {"--name", "a.b_c-1"}, "1-48", "#SBATCH --job-name=a.b_c-1\n"},
        {"no second try", {"--retries", "0"}, "1-2", "for ((try = 1; try <= 1; ++try)); do\n"},
        {"three tries", {}, "1-2", "for ((try = 1; try <= 3; ++try)); do\n"},
        {"another program",
         {"--program", "/opt/our tools/umbrant"},
         "1-2",
         "    '/opt/our tools/umbrant' render in.1.png "},
        {"logs", {"--logs", "logs/./today/"}, "1-2", "#SBATCH --output=\"logs/today/umbrant-%A_%a.log\"\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments = row.options;
        for (const char* more : {"slurm", "in.1.png", "-o", "out.##.png", "--frames", row.frames})
            arguments.push_back(more);
        const Outcome outcome = Farm(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr(row.line));
    }
}

TEST_F(CliFarm, APresetIsFoundByItsName) {
    const Outcome outcome = Farm({"slurm", "still.png", "-o", "out.##.png", "--frames", "1-4", "--preset",
                                  "turning-title", "--renderer", "cpu"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr(" --preset turning-title ")) << "each machine finds its own";
    EXPECT_EQ(Farm({"slurm", "still.png", "-o", "out.##.png", "--frames", "1-4", "--preset", "no-such"}).code, 3);
}

TEST_F(CliFarm, TheSetIsThatOfTheMomentOfPrinting) {
    std::filesystem::remove(folder_ / "in.4.png");
    EXPECT_THAT(
        Farm({"slurm", "in.@.png", "-o", "out.##.png", "--skip-existing", "--canvas", "layer"}).out,
        HasSubstr(
            "-o 'out.##.png' --canvas layer --frames=1-3,5-6 --chunk \"$SLURM_ARRAY_TASK_ID\"/1 --skip-existing &\n"));
    EXPECT_THAT(Farm({"slurm", "in.@.png", "-o", "out.##.png", "--input-offset", "4"}).out,
                HasSubstr(" --frames=-3--1,1-2 --chunk "));
    EXPECT_EQ(Farm({"slurm", "late.@.png", "-o", "out.##.png", "--frames", "1-6"}).code, 0)
        << "files may come before they are needed";
}

TEST_F(CliFarm, TheScriptDrawsWithAnyNames) {
    const std::string name = "a 'b' \"c\" $HOME `d` \\ {{e}} ! \n #";
    std::filesystem::rename(folder_ / "still.png", folder_ / (name + ".png"));
    const Outcome job =
        Farm({"--tasks", "2", "slurm", name + ".png", "-o", "out.%d." + name.substr(0, name.size() - 1) + ".png",
              "--frames", "1-4", "--module", TestModule("painter")});
    ASSERT_EQ(job.code, 0) << job.err;
    EXPECT_EQ(RunTask(job.out, "1"), 0) << ReadBytes(folder_ / "log");
    EXPECT_TRUE(Exists("out.2." + name.substr(0, name.size() - 1) + ".png"));
    EXPECT_FALSE(Exists("out.3." + name.substr(0, name.size() - 1) + ".png"));
    EXPECT_EQ(RunTask(job.out, "2"), 0);
    EXPECT_TRUE(Exists("out.4." + name.substr(0, name.size() - 1) + ".png"));
}

TEST_F(CliFarm, ATaskKeepsItsExitCodeAndIsTriedAgainWhereThatMayHelp) {
    const struct {
        const char* name;
        const char* program;
        int code;
        int tries;
    } rows[] = {
        {"a file that cannot be read", "exit 3", 3, 3},
        {"a module that cannot be loaded", "exit 4", 4, 3},
        {"the second try helps", "[[ $(wc -l <tries) -gt 1 ]]", 0, 2},
        {"wrong usage", "exit 2", 2, 1},
        {"a terminal that was closed", "exit 129", 129, 1},
        {"an interruption", "exit 130", 130, 1},
        {"a quit", "exit 131", 131, 1},
        {"an end by the engine", "exit 143", 143, 1},
        {"killed", "kill -9 $$", 137, 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        WriteBytes(folder_ / "tool", "#!/bin/bash\necho try >>tries\n" + std::string(row.program) + "\n");
        std::filesystem::permissions(folder_ / "tool", std::filesystem::perms::owner_all);
        std::filesystem::remove(folder_ / "tries");
        const Outcome job = Farm({"--program", "./tool", "slurm", "in.@.png", "-o", "out.##.png"});
        ASSERT_EQ(job.code, 0) << job.err;
        EXPECT_EQ(RunTask(job.out, "1"), row.code);
        EXPECT_EQ(ReadBytes(folder_ / "tries").size(), 4u * static_cast<unsigned>(row.tries));
    }
}

TEST_F(CliFarm, ATasksNumberIsANumberBeforeAnythingIsDoneWithIt) {
    WriteBytes(folder_ / "tool", "#!/bin/bash\necho \"$@\" >>ran\n");
    std::filesystem::permissions(folder_ / "tool", std::filesystem::perms::owner_all);
    const Outcome job = Farm({"--program", "./tool", "slurm", "in.@.png", "-o", "out.##.png", "--canvas", "layer"});
    ASSERT_EQ(job.code, 0) << job.err;
    for (const char* task : {"x", "", "1x", "-1", "1 2", "a[$(touch stolen)]", "$(touch stolen)"}) {
        SCOPED_TRACE(task);
        EXPECT_EQ(RunTask(job.out, task), 2);
        EXPECT_THAT(ReadBytes(folder_ / "log"), HasSubstr("', not a number; submit this with sbatch\n"));
        EXPECT_FALSE(Exists("ran"));
        EXPECT_FALSE(std::filesystem::exists("/stolen"));
    }
    EXPECT_EQ(RunTask(job.out, "08"), 0);
    EXPECT_THAT(ReadBytes(folder_ / "ran"), HasSubstr(" --chunk 08/1 --skip-existing\n"));
}

TEST_F(CliFarm, AnEndedTaskLeavesNothingUnfinished) {
    // The shell of a task is asked to end as soon as a picture is being written that takes a while.
    const Outcome job = Farm({"slurm", "in.@.png", "-o", "out.##.png", "--module", TestModule("painter"), "--set",
                              "paint/border=1500", "--depth", "32"});
    ASSERT_EQ(job.code, 0) << job.err;
    WriteBytes(folder_ / "job.sh", job.out);
    ProgramStart start;
    start.program = "bash";
    start.arguments = {"job.sh"};
    start.environment = {"SLURM_ARRAY_TASK_ID=1"};
    start.folder = folder_.Path().string();
    start.output = Stream::Nothing();
    start.errors = Stream::Nothing();
    const auto task = ChildProcess::Start(start);
    ASSERT_TRUE(task) << task.error().sentence;
    EXPECT_TRUE(WaitUntil([&] { return !HiddenFiles(folder_.Path()).empty(); }));
    kill((*task)->Process(), SIGTERM);
    EXPECT_EQ((*task)->Wait().code, 143);
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
        EXPECT_THAT(entry.path().filename().string(), Not(StartsWith(".")));
    }
}

const struct {
    const char* name;
    std::vector<std::string> arguments;
    int code;
    const char* sentence;
} kWrongJobs[] = {
    {"no engine", {}, 2, "ENGINE is required"},
    {"another engine", {"make", "in.@.png", "-o", "out.#.png"}, 2, "ENGINE: make not in {slurm,openjd,parallel}"},
    {"nothing to draw", {"slurm"}, 2, "INPUT is required\nSee `umbrant render --help`.\n"},
    {"no output", {"slurm", "in.@.png"}, 2, "--output is required"},
    {"an unknown option of render",
     {"slurm", "in.@.png", "-o", "out.#.png", "--dpeth", "8"},
     2,
     "there is no option '--dpeth'; did you mean '--depth'?\n"},
    {"a wrong value for render",
     {"slurm", "in.@.png", "-o", "out.#.png", "--frames", "1-6z2"},
     2,
     "--frames: '1-6z2' is not a set of frames"},
    {"an argument too many", {"slurm", "in.@.png", "b.png", "-o", "out.#.png"}, 2, "'b.png' is not expected here"},
    {"an option of farm too late",
     {"slurm", "in.@.png", "-o", "out.#.png", "--retries=2"},
     2,
     "--retries is an option of farm, not of render; write it before 'slurm'\n"},
    {"a chunk",
     {"slurm", "in.@.png", "-o", "out.#.png", "--chunk", "1/1"},
     2,
     "--chunk is not allowed here, as each task of a job has its own chunk; leave it out\n"},
    {"many frames in one file",
     {"slurm", "in.@.png", "-o", "out.png"},
     2,
     "'out.png' has no field for the frame's number, and there are 6 frames; write it as 'out.####.png'\n"},
    {"one picture",
     {"slurm", "still.png", "-o", "out.png"},
     2,
     "'still.png' is a single image, and a job has many frames; choose them with --frames, or draw it with "
     "`umbrant "
     "render`\n"},
    {"no frames", {"slurm", "none.@@.png", "-o", "out.#.png"}, 2, "'none.@@.png' is a single image"},
    {"a sequence without files",
     {"slurm", "none.#.png", "-o", "out.#.png"},
     3,
     "cannot read 'none.#.png': no file has such a name\n"},
    {"the input is the output", {"slurm", "in.@.png", "-o", "in.@.png"}, 2, "'in.1.png' is both input and output"},
    {"a format that cannot be written", {"slurm", "in.@.png", "-o", "out.#.gif"}, 3, "cannot write 'out.0001.gif'"},
    {"a compression that the format lacks",
     {"slurm", "in.@.png", "-o", "out.#.png", "--compression", "zip"},
     2,
     "is not a compression of .png; use one of: default fast small"},
    {"a moment", {"slurm", "in.@.png", "-o", "out.#.png", "--time", "1"}, 2, "--time applies to a single image"},
    {"no folder", {"slurm", "in.@.png", "-o", "none/out.#.png"}, 3, "there is no folder 'none'"},
    {"no folder for the tasks",
     {"--folder", "none", "slurm", "in.@.png", "-o", "out.#.png"},
     3,
     "cannot enter the folder 'none': No such file or directory\n"},
    {"a name that is none",
     {"--name", "a b", "slurm", "in.@.png", "-o", "out.#.png"},
     2,
     "'a b' is not a valid job name: use up to 64 letters, digits, '-', '_' and '.', not beginning with '-' or "
     "'.'"},
    {"logs that sbatch cannot name",
     {"--logs", "a\"b", "slurm", "in.@.png", "-o", "out.#.png"},
     2,
     "'a\"b' cannot be the folder of the logs: quotes, backslashes and control characters are not allowed"},
    {"logs for openjd",
     {"--logs", "logs", "openjd", "in.@.png", "-o", "out.#.png"},
     2,
     "--logs does not apply to openjd, whose engine keeps the logs of its tasks\n"},
    {"a halt of Slurm",
     {"--halt", "soon", "slurm", "in.@.png", "-o", "out.#.png"},
     2,
     "--halt applies to parallel only; slurm has its own setting for it\n"},
    {"no tasks", {"--tasks", "0", "slurm", "in.@.png", "-o", "out.#.png"}, 2, "--tasks: Value 0 not in range"},
    {"both ways of dividing",
     {"--tasks", "2", "--frames-per-task", "2", "slurm", "in.@.png", "-o", "out.#.png"},
     2,
     "--tasks excludes --frames-per-task"},
    {"too many tries", {"--retries", "101", "slurm", "in.@.png", "-o", "out.#.png"}, 2, "--retries: Value 101"},
};

TEST_F(CliFarm, WrongUsageIsCodeTwoAndSaysWhatIsRight) {
    for (const auto& row : kWrongJobs) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Farm(row.arguments);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(outcome.err, StartsWith("umbrant: "));
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(CliFarm, TheFolderIsWhatNamesAreRelativeTo) {
    std::filesystem::create_directory(folder_ / "sub");
    std::filesystem::copy(folder_ / "in.2.png", folder_ / "sub/in.8.png");
    const Outcome job = Farm({"--folder", "sub/.", "slurm", "in.@.png", "-o", "out.##.png"});
    EXPECT_EQ(job.code, 0) << job.err;
    EXPECT_THAT(job.out, HasSubstr("cd -- " + (folder_ / "sub").string() + " || exit 3\n"));
    EXPECT_THAT(job.out, HasSubstr(" --frames=8 "));
}

TEST_F(CliFarm, HelpIsThatOfTheCommandBeforeWhichItIsAsked) {
    EXPECT_THAT(Farm({"--help"}).out,
                HasSubstr("Usage: umbrant farm [OPTIONS] slurm|openjd|parallel INPUT -o OUTPUT [RENDER'S OPTIONS]\n"));
    const Outcome outcome = Farm({"slurm", "in.@.png", "--help"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.out, HasSubstr("Usage: umbrant render [OPTIONS] INPUT"));
}

}  // namespace

}  // namespace umbrant::host
