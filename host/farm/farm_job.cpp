// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/farm/farm_job.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/process/shell_word.h"

namespace umbrant::host {

namespace {

std::string Count(int number, const char* thing) {
    return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

std::string WhatItDraws(const FarmJob& job) {
    return fmt::format("{} in {}", Count(job.frames, "frame"), Count(job.tasks, "task"));
}

std::string Enter(const FarmJob& job) {
    return fmt::format("cd -- {} || exit 3\n", ShellWord(job.folder));
}

/// The command for a task, whose number the shell writes for `number`.
std::string TaskCommand(const FarmJob& job, const char* number) {
    return fmt::format("{} --chunk {}/{} --skip-existing", ShellWords(job.command), number, job.tasks);
}

std::string InLogs(const FarmJob& job, const std::string& file) {
    return job.logs == "." ? file : job.logs + "/" + file;
}

/// Draws a task until it is done, or as often as it may be tried, for engines that begin it once.
std::string TryTask(const FarmJob& job, const char* number) {
    std::string text = Enter(job);
    text +=
        "\n"
        "# An engine ends a task by a signal to this shell, which passes it on; the program then removes its "
        "unfinished files.\n"
        "trap 'kill \"$drawing\" 2>/dev/null' TERM INT\n";
    text += fmt::format("for ((try = 1; try <= {}; ++try)); do\n", job.tries);
    text += fmt::format("    {} &\n", TaskCommand(job, number));
    text +=
        "    drawing=$!\n"
        "    wait \"$drawing\"\n"
        "    code=$?\n"
        "    # The wait ends with the signal, and the program a moment later.\n"
        "    if [[ $code -gt 128 ]] && kill -0 \"$drawing\" 2>/dev/null; then\n"
        "        wait \"$drawing\"\n"
        "        code=$?\n"
        "    fi\n"
        "    # Another try does not change wrong usage, and a signal is meant to end the task.\n"
        "    case $code in 0 | 2 | 129 | 130 | 131 | 143) break ;; esac\n";
    text += fmt::format("    echo \"try $try of {} ended with exit code $code\" >&2\n", job.tries);
    text +=
        "done\n"
        "exit \"$code\"\n";
    return text;
}

/// A value of an #SBATCH line: sbatch takes quotes off, and a % begins a field.
std::string SbatchValue(const std::string& text) {
    std::string value;
    for (const char c : text) value += c == '%' ? std::string("%%") : std::string(1, c);
    return value;
}

}  // namespace

std::string SlurmJob(const FarmJob& job) {
    std::string text = "#!/bin/bash\n";
    text += fmt::format("#SBATCH --job-name={}\n", job.name);
    text += fmt::format("#SBATCH --array=1-{}\n", job.tasks);
    text += "#SBATCH --ntasks=1\n#SBATCH --requeue\n#SBATCH --open-mode=append\n";
    if (job.minutes > 0) text += fmt::format("#SBATCH --time={}\n", job.minutes);
    text += fmt::format("#SBATCH --output=\"{}-%A_%a.log\"\n", SbatchValue(InLogs(job, job.name)));
    text += fmt::format("#\n# Draws {}. Submit it with sbatch; with --wait that ends with the largest of the tasks'\n",
                        WhatItDraws(job));
    text += "# exit codes. A task that is started again, here or on another machine, draws only the missing frames.\n";
    if (job.logs != ".") {
        text += fmt::format("# The folder of the logs must exist before: mkdir -p {}\n", ShellWord(job.logs));
    }
    text +=
        "\n"
        "# Slurm sets the number of the task; any other text would become an argument of the command.\n"
        "case ${SLURM_ARRAY_TASK_ID-} in\n"
        "    '' | *[!0-9]*)\n"
        "        echo \"SLURM_ARRAY_TASK_ID is '${SLURM_ARRAY_TASK_ID-}', not a number; submit this with sbatch\" >&2\n"
        "        exit 2\n"
        "        ;;\n"
        "esac\n\n";
    return text + TryTask(job, "\"$SLURM_ARRAY_TASK_ID\"");
}

std::string ParallelJob(const FarmJob& job) {
    std::string text = "#!/bin/bash\n#\n";
    text += fmt::format("# Draws {} with GNU parallel. Arguments of this script are passed to parallel: -j 2, --bar,\n",
                        WhatItDraws(job));
    text +=
        "# --sshlogin a,b, --resume-failed. A task that is started again draws only the missing frames. The exit code "
        "is "
        "the\n"
        "# number of tasks that failed.\n\n";
    text += Enter(job);
    text += fmt::format("mkdir -p -- {} || exit 3\n\n", ShellWord(job.logs));
    text += "# A function, so that parallel does not interpret special characters in file names.\ntask() {\n    ";
    text += Enter(job);
    text +=
        fmt::format("    {} >>{}-\"$1\".log 2>&1\n}}\n", TaskCommand(job, "\"$1\""), ShellWord(InLogs(job, job.name)));
    text += "export -f task\nexport PARALLEL_SHELL=/bin/bash\n\n";
    text +=
        fmt::format("exec parallel --jobs 1 --retries {} --halt {} --joblog {} --env task \"$@\" \\\n", job.tries,
                    job.halt == "never" ? "never" : job.halt + ",fail=1", ShellWord(InLogs(job, job.name + ".joblog")));
    text += fmt::format("    task {{}} ::: {{1..{}}}\n", job.tasks);
    return text;
}

std::string OpenJdJob(const FarmJob& job) {
    using Json = nlohmann::ordered_json;
    const Json frames{{"name", "Chunk"}, {"type", "INT"}, {"range", fmt::format("1-{}", job.tasks)}};
    const Json script{{"name", "Render"},
                      {"filename", "render.sh"},
                      {"type", "TEXT"},
                      {"data", TryTask(job, "{{Task.Param.Chunk}}")}};
    const Json run{{"command", "bash"},
                   {"args", Json::array({"{{Task.File.Render}}"})},
                   {"cancelation", {{"mode", "NOTIFY_THEN_TERMINATE"}, {"notifyPeriodInSeconds", 30}}}};
    const Json step{{"name", "Render"},
                    {"parameterSpace", {{"taskParameterDefinitions", Json::array({frames})}}},
                    {"script", {{"actions", {{"onRun", run}}}, {"embeddedFiles", Json::array({script})}}}};
    const Json job_{{"specificationVersion", "jobtemplate-2023-09"},
                    {"name", job.name},
                    {"description", "Draws " + WhatItDraws(job) + "; frames that exist are skipped."},
                    {"steps", Json::array({step})}};
    return job_.dump(2) + "\n";
}

}  // namespace umbrant::host
