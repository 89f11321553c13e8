// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/examination_process.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "host/doctor/subjects.h"
#include "host/process/channel.h"
#include "host/process/child_program.h"

namespace umbrant::host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kArgument[] = "--examination-process";

/// How long a process may take to start, which no examined code can change.
constexpr std::chrono::seconds kStart{300};

/// How long a process that has closed its socket may take to end.
constexpr std::chrono::seconds kEnding{10};

std::string HowItEnded(const ProcessEnd& end) {
    if (end.signal == 0) return fmt::format("ended the process with exit code {}", end.code);
    if (end.signal == SIGKILL) return "was killed (signal 9), possibly because memory ran out,";
    return fmt::format("crashed with signal {} ({})", end.signal, strsignal(end.signal));
}

/// Receives steps until the answer, the process's end, or the end of its time.
class Watch {
 public:
    Watch(ChildProgram& program, std::chrono::seconds limit)
        : program_(program), channel_(program.Socket()), limit_(limit) {}

    ExaminationEnd Run(const nlohmann::json& request) {
        channel_.Send(request);
        begin_ = Clock::now();
        for (;;) {
            Message message;
            const Received received = channel_.Receive(message, [this] { return IsOver(); });
            for (const int descriptor : message.descriptors) close(descriptor);
            if (received == Received::kMessage && message.content.contains("answer"))
                return {message.content["answer"]};
            if (received != Received::kMessage || !message.content.contains("step")) return Untimely();
            step_ = message.content["step"].get<std::string>();
            ++steps_;
            begin_ = Clock::now();
        }
    }

 private:
    bool HasHung() const { return Clock::now() - begin_ > (steps_ == 0 ? std::max(limit_, kStart) : limit_); }
    bool IsOver() { return HasHung() || program_.Child().HasEnded(); }

    ExaminationEnd Untimely() {
        const bool hangs = HasHung() && !program_.Child().HasEnded();
        const auto ended = hangs ? std::nullopt : program_.Child().WaitFor(kEnding);
        std::string how = hangs   ? fmt::format("hangs: no answer in {} seconds", limit_.count())
                          : ended ? HowItEnded(*ended)
                                  : "overwrote memory or files that are not its own";
        program_.Child().Kill();
        return {nullptr, fmt::format("{} {}", how, step_), steps_ <= 1};
    }

    ChildProgram& program_;
    Channel channel_;
    std::chrono::seconds limit_;
    Clock::time_point begin_;
    std::string step_ = "at its start";
    int steps_ = 0;
};

}  // namespace

Result<ExaminationEnd> ExamineInProcess(const std::string& subject, const nlohmann::json& request,
                                        std::chrono::seconds limit) {
    const auto program = TRY(ChildProgram::Start(ProgramForChildren(), {kArgument, subject}));
    return Watch(*program, limit).Run(request);
}

std::optional<int> RunExaminationProcess(int argc, const char* const* argv) {
    if (argc != 3 || std::string_view(argv[1]) != kArgument) return std::nullopt;
    const Examination examine = ExaminationOf(argv[2]);
    struct stat status {};
    if (!examine || fstat(kChildSocket, &status) != 0 || !S_ISSOCK(status.st_mode)) return std::nullopt;
    // Programs that it starts are no part of the conversation.
    fcntl(kChildSocket, F_SETFD, FD_CLOEXEC);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    EndWithParent(kChildSocket, [] {});
    Channel channel(kChildSocket);
    Message request;
    if (channel.Receive(request, {}) != Received::kMessage) _exit(1);
    nlohmann::json answer;
    try {
        answer = examine(request.content, [&channel](const std::string& when) { channel.Send({{"step", when}}); });
    } catch (const std::exception& problem) {
        answer = {{"kind", static_cast<int>(ErrorKind::kInternal)},
                  {"failure", std::string("the examination failed: ") + problem.what()}};
    }
    channel.Send({{"answer", answer}});
    // Not through exit: what the examined code has registered there is not what was asked about.
    std::fflush(nullptr);
    _exit(0);
}

}  // namespace umbrant::host
