// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Jobs as text: every line that an engine reads, and the template against the rules of its published form.

#include "host/farm/farm_job.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

FarmJob Job() {
    FarmJob job;
    job.name = "shot";
    job.frames = 48;
    job.tasks = 12;
    job.tries = 3;
    job.folder = "/shots/my shot";
    job.logs = ".";
    job.halt = "never";
    job.command = {"/usr/bin/umbrant", "render", "in.####.exr", "-o", "o u't/$x.####.exr", "--frames", "1-48"};
    return job;
}

constexpr char kCommand[] = "/usr/bin/umbrant render 'in.####.exr' -o 'o u'\\''t/$x.####.exr' --frames 1-48 --chunk ";

TEST(FarmJobText, SlurmsScript) {
    EXPECT_EQ(SlurmJob(Job()), std::string(R"sh(#!/bin/bash
#SBATCH --job-name=shot
#SBATCH --array=1-12
#SBATCH --ntasks=1
#SBATCH --requeue
#SBATCH --open-mode=append
#SBATCH --output="shot-%A_%a.log"
#
# Draws 48 frames in 12 tasks. Submit it with sbatch; with --wait that ends with the largest of the tasks'
# exit codes. A task that is started again, here or on another machine, draws only the missing frames.

# Slurm sets the number of the task; any other text would become an argument of the command.
case ${SLURM_ARRAY_TASK_ID-} in
    '' | *[!0-9]*)
        echo "SLURM_ARRAY_TASK_ID is '${SLURM_ARRAY_TASK_ID-}', not a number; submit this with sbatch" >&2
        exit 2
        ;;
esac

cd -- '/shots/my shot' || exit 3

# An engine ends a task by a signal to this shell, which passes it on; the program then removes its unfinished files.
trap 'kill "$drawing" 2>/dev/null' TERM INT
for ((try = 1; try <= 3; ++try)); do
    )sh") + kCommand + R"sh("$SLURM_ARRAY_TASK_ID"/12 --skip-existing &
    drawing=$!
    wait "$drawing"
    code=$?
    # The wait ends with the signal, and the program a moment later.
    if [[ $code -gt 128 ]] && kill -0 "$drawing" 2>/dev/null; then
        wait "$drawing"
        code=$?
    fi
    # Another try does not change wrong usage, and a signal is meant to end the task.
    case $code in 0 | 2 | 129 | 130 | 131 | 143) break ;; esac
    echo "try $try of 3 ended with exit code $code" >&2
done
exit "$code"
)sh");
}

TEST(FarmJobText, SlurmsTimeLimit) {
    FarmJob job = Job();
    EXPECT_THAT(SlurmJob(job), Not(HasSubstr("--time")));
    job.minutes = 12;
    EXPECT_THAT(SlurmJob(job), HasSubstr("\n#SBATCH --open-mode=append\n#SBATCH --time=12\n#SBATCH --output="));
}

TEST(FarmJobText, SlurmsLogsInAFolder) {
    FarmJob job = Job();
    job.logs = "logs of 100%";
    EXPECT_THAT(SlurmJob(job), HasSubstr("#SBATCH --output=\"logs of 100%%/shot-%A_%a.log\"\n"));
    EXPECT_THAT(SlurmJob(job), HasSubstr("# The folder of the logs must exist before: mkdir -p 'logs of 100%'\n"));
}

TEST(FarmJobText, ParallelsScript) {
    FarmJob job = Job();
    job.logs = "the logs";
    EXPECT_EQ(ParallelJob(job), std::string(R"sh(#!/bin/bash
#
# Draws 48 frames in 12 tasks with GNU parallel. Arguments of this script are passed to parallel: -j 2, --bar,
# --sshlogin a,b, --resume-failed. A task that is started again draws only the missing frames. The exit code is the
# number of tasks that failed.

cd -- '/shots/my shot' || exit 3
mkdir -p -- 'the logs' || exit 3

# A function, so that parallel does not interpret special characters in file names.
task() {
    cd -- '/shots/my shot' || exit 3
    )sh") + kCommand + R"sh("$1"/12 --skip-existing >>'the logs/shot'-"$1".log 2>&1
}
export -f task
export PARALLEL_SHELL=/bin/bash

exec parallel --jobs 1 --retries 3 --halt never --joblog 'the logs/shot.joblog' --env task "$@" \
    task {} ::: {1..12}
)sh");
    job.halt = "soon";
    EXPECT_THAT(ParallelJob(job), HasSubstr(" --halt soon,fail=1 "));
    job.halt = "now";
    EXPECT_THAT(ParallelJob(job), HasSubstr(" --halt now,fail=1 "));
}

TEST(FarmJobText, OneIsNotMany) {
    FarmJob job = Job();
    job.frames = job.tasks = job.tries = 1;
    EXPECT_THAT(SlurmJob(job), HasSubstr("# Draws 1 frame in 1 task. "));
    EXPECT_THAT(SlurmJob(job), HasSubstr("#SBATCH --array=1-1\n"));
    EXPECT_THAT(ParallelJob(job), HasSubstr("::: {1..1}\n"));
    EXPECT_EQ(ParseJson(OpenJdJob(job))["steps"][0]["parameterSpace"]["taskParameterDefinitions"][0]["range"], "1-1");
}

/// A member of an object, or null where it is not there, which other rules report.
const json& Member(const json& object, const char* name) {
    static const json none;
    const auto found = object.find(name);
    return found == object.end() ? none : *found;
}

/// The rules of "jobtemplate-2023-09" for what a job of ours uses: which members an object may have and must have, how
/// long its texts may be and which of them hold references. Adds a line for every offence.
class TemplateRules {
 public:
    explicit TemplateRules(const json& root) {
        Members("job", root, {"specificationVersion", "name", "steps"},
                {"description", "parameterDefinitions", "jobEnvironments", "extensions", "$schema"});
        Check(root.value("specificationVersion", "") == "jobtemplate-2023-09", "the version");
        Text("job's name", root, "name", 128, false);
        Text("description", root, "description", 2048, true);
        if (!List("steps", root, "steps", 1000)) return;
        for (const json& step : Member(root, "steps")) Step(step);
    }
    std::vector<std::string> offences;

 private:
    void Check(bool right, const std::string& what) {
        if (!right) offences.push_back(what);
    }
    void Members(const std::string& where, const json& object, const std::set<std::string>& needed,
                 const std::set<std::string>& allowed) {
        Check(object.is_object(), where + " is no object");
        if (!object.is_object()) return;
        for (const std::string& name : needed) Check(object.contains(name), where + " lacks " + name);
        for (const auto& [name, value] : object.items()) {
            Check(needed.contains(name) || allowed.contains(name), where + " may not have " + name);
        }
    }
    bool List(const std::string& where, const json& object, const char* name, std::size_t most) {
        const bool right =
            object.contains(name) && object[name].is_array() && !object[name].empty() && object[name].size() <= most;
        Check(right, where + " is no list of 1 to " + std::to_string(most));
        return right;
    }
    void Text(const std::string& where, const json& object, const char* name, std::size_t most, bool lines) {
        if (!object.contains(name)) return;
        Check(object[name].is_string(), where + " is no text");
        if (!object[name].is_string()) return;
        const std::string text = object[name];
        Check(!text.empty() && text.size() <= most, where + " is too long or empty");
        for (const char c : text) {
            const bool control = static_cast<unsigned char>(c) < 0x20 && !(lines && c == '\n');
            Check(!control && c != 0x7f, where + " has a control character");
        }
    }
    void Identifier(const std::string& where, const json& object) {
        static const std::regex form("[A-Za-z_][A-Za-z0-9_]{0,63}");
        Check(std::regex_match(object.value("name", ""), form), where + " has no identifier for its name");
    }
    /// References stand in pairs of braces and must be known; a pair without its end is an error.
    void Format(const std::string& where, const std::string& text) {
        static const std::regex reference("\\{\\{\\s*([A-Za-z0-9_.]+)\\s*\\}\\}");
        for (std::sregex_iterator found(text.begin(), text.end(), reference), end; found != end; ++found) {
            Check(known_.contains((*found)[1]), where + " asks for " + (*found)[1].str());
        }
        const std::string rest = std::regex_replace(text, reference, "");
        Check(rest.find("{{") == std::string::npos, where + " begins a reference that does not end");
    }
    void Step(const json& step) {
        Members("step", step, {"name", "script"},
                {"description", "dependencies", "stepEnvironments", "hostRequirements", "parameterSpace"});
        Text("step's name", step, "name", 64, false);
        const json& space = step.value("parameterSpace", json::object());
        Members("parameter space", space, {"taskParameterDefinitions"}, {"combination"});
        if (List("parameters", space, "taskParameterDefinitions", 16)) {
            for (const json& parameter : Member(space, "taskParameterDefinitions")) Parameter(parameter);
        }
        const json& script = step.value("script", json::object());
        Members("script", script, {"actions"}, {"embeddedFiles"});
        for (const json& file : script.value("embeddedFiles", json::array())) {
            Identifier("file", file);
            known_.insert("Task.File." + file.value("name", ""));
        }
        for (const json& file : script.value("embeddedFiles", json::array())) File(file);
        Members("actions", script.value("actions", json::object()), {"onRun"}, {});
        Action(script.value("actions", json::object()).value("onRun", json::object()));
    }
    void Parameter(const json& parameter) {
        Members("parameter", parameter, {"name", "type", "range"}, {});
        Identifier("parameter", parameter);
        Check(parameter.value("type", "") == "INT", "the parameter is of another type");
        static const std::regex range("-?[0-9]+(-(-?[0-9]+)(:[0-9]+)?)?");
        Check(Member(parameter, "range").is_string() && std::regex_match(parameter["range"].get<std::string>(), range),
              "the range cannot be read");
        known_.insert("Task.Param." + parameter.value("name", ""));
        known_.insert("Task.RawParam." + parameter.value("name", ""));
    }
    void File(const json& file) {
        Members("file", file, {"name", "type", "data"}, {"filename", "runnable"});
        Check(file.value("type", "") == "TEXT", "the file's type");
        Text("file's name", file, "filename", 64, false);
        Check(file.value("filename", "").find('/') == std::string::npos, "the file's name has a folder");
        Check(!file.value("data", "").empty(), "the file is empty");
        Format("the file", file.value("data", ""));
    }
    void Action(const json& action) {
        Members("action", action, {"command"}, {"args", "timeout", "cancelation"});
        Check(!action.value("command", "").empty(), "the command is empty");
        Format("the command", action.value("command", ""));
        if (action.contains("args") && List("arguments", action, "args", 1000)) {
            for (const json& argument : Member(action, "args")) Format("an argument", argument);
        }
        if (!action.contains("cancelation")) return;
        const json& cancelation = Member(action, "cancelation");
        Members("cancelation", cancelation, {"mode"}, {"notifyPeriodInSeconds"});
        Check(cancelation.value("mode", "") == "NOTIFY_THEN_TERMINATE", "the mode of cancelation");
        const int seconds = cancelation.value("notifyPeriodInSeconds", 30);
        Check(seconds > 0 && seconds <= 600, "the period of notification");
    }
    std::set<std::string> known_ = {"Session.WorkingDirectory", "Session.HasPathMappingRules",
                                    "Session.PathMappingRulesFile"};
};

TEST(FarmJobText, TheTemplateKeepsTheRules) {
    FarmJob job = Job();
    job.command[2] = "{{Param.Wrong}} \xff\n\"\\.####.exr";
    const json root = ParseJson(OpenJdJob(job));
    EXPECT_THAT(TemplateRules(root).offences, testing::IsEmpty());

    EXPECT_EQ(root["name"], "shot");
    EXPECT_EQ(root["description"], "Draws 48 frames in 12 tasks; frames that exist are skipped.");
    const json& step = root["steps"][0];
    EXPECT_EQ(step["parameterSpace"]["taskParameterDefinitions"],
              ParseJson(R"([{ "name": "Chunk", "type": "INT", "range": "1-12" }])"));
    EXPECT_EQ(step["script"]["actions"]["onRun"]["command"], "bash");
    EXPECT_EQ(step["script"]["actions"]["onRun"]["args"], ParseJson(R"(["{{Task.File.Render}}"])"));
    const std::string data = step["script"]["embeddedFiles"][0]["data"];
    EXPECT_THAT(data, StartsWith("cd -- '/shots/my shot' || exit 3\n"));
    EXPECT_THAT(data, HasSubstr(" --chunk {{Task.Param.Chunk}}/12 --skip-existing &\n"));
    EXPECT_THAT(data, HasSubstr(R"($'\173\173Param.Wrong\175\175 \377\012"\134.####.exr')"));
    EXPECT_THAT(data, Not(HasSubstr("SLURM")));
}

TEST(FarmJobText, TheRulesAreFelt) {
    const json right = ParseJson(OpenJdJob(Job()));
    const struct {
        const char* name;
        const char* patch;
    } rows[] = {
        {"another version", R"([{"op":"replace","path":"/specificationVersion","value":"jobtemplate-2024-01"}])"},
        {"an unknown member", R"([{"op":"add","path":"/priority","value":1}])"},
        {"no steps", R"([{"op":"replace","path":"/steps","value":[]}])"},
        {"a parameter without a range",
         R"([{"op":"remove","path":"/steps/0/parameterSpace/taskParameterDefinitions/0/range"}])"},
        {"an unknown reference",
         R"([{"op":"replace","path":"/steps/0/script/actions/onRun/args/0","value":"{{Task.File.Other}}"}])"},
        {"a folder in a file's name",
         R"([{"op":"replace","path":"/steps/0/script/embeddedFiles/0/filename","value":"a/b"}])"},
        {"a name of two lines", R"([{"op":"replace","path":"/name","value":"a\nb"}])"},
        {"a name that is no identifier",
         R"([{"op":"replace","path":"/steps/0/script/embeddedFiles/0/name","value":"a b"}])"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(TemplateRules(right.patch(ParseJson(row.patch))).offences.empty());
    }
}

}  // namespace

}  // namespace umbrant::host
