// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/check_process.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

namespace umbrant::host {

namespace {

using nlohmann::json;

long long Now() {
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::milliseconds(1);
}

json ToJson(const CheckResult& result) {
    json findings = json::array();
    for (const Finding& finding : result.findings) {
        findings.push_back(
            {{"text", finding.text}, {"weight", VerdictName(finding.weight)}, {"repeat", finding.repeat}});
    }
    return {{"verdict", VerdictName(result.verdict)},
            {"findings", std::move(findings)},
            {"skip", result.skipReason},
            {"figures", result.figures},
            {"noModule", result.isNoModule},
            {"calls", result.calls}};
}

CheckResult FromJson(const json& object) {
    CheckResult result;
    result.verdict = VerdictOf(object.at("verdict")).value_or(Verdict::kFail);
    for (const json& finding : object.at("findings")) {
        result.findings.push_back(
            {finding.at("text"), VerdictOf(finding.at("weight")).value_or(Verdict::kFail), finding.at("repeat"), {}});
    }
    result.skipReason = object.at("skip");
    for (const auto& [name, amount] : object.at("figures").items()) result.figures[name] = amount;
    result.isNoModule = object.at("noModule");
    for (const auto& [callee, times] : object.at("calls").items()) result.calls[callee] = times;
    return result;
}

/// The last lines that a process printed, as one.
std::string LastWords(const std::string& file) {
    std::ifstream in(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) lines.push_back(line);
    }
    constexpr std::size_t kKept = 3;
    std::string words;
    for (std::size_t i = lines.size() > kKept ? lines.size() - kKept : 0; i < lines.size(); ++i) {
        words += (words.empty() ? "" : " / ") + lines[i];
    }
    return words.empty() ? "" : "; it last printed: " + words;
}

/// What a process's end means when it left no result.
Finding FindingOf(const Child& child, const std::string& what) {
    const std::string words = LastWords(child.output);
    if (child.timedOut) return {fmt::format("{} timed out{}", what, words), Verdict::kTimeout, {}, {}};
    if (const int signal = child.end.signal; signal != 0) {
        return {fmt::format("{} crashed: {} (signal {}){}", what, strsignal(signal), signal, words),
                Verdict::kCrash,
                {},
                {}};
    }
    return {fmt::format("{} ended the process with code {}{}", what, child.end.code, words), Verdict::kCrash, {}, {}};
}

void Drain(Child& child) {
    char buffer[4096];
    for (;;) {
        const ssize_t count = read(child.results, buffer, sizeof(buffer));
        if (count > 0) {
            child.received.append(buffer, static_cast<std::size_t>(count));
            // Who still holds the pipe's other end, a process that the module started perhaps, is not waited for.
            if (child.received.back() == '\n') return;
        } else if (count == 0 || errno != EINTR) {
            return;
        }
    }
}

}  // namespace

long long DeadlineIn(int milliseconds) {
    return Now() + milliseconds;
}

void SendResult(int descriptor, const CheckResult& result) {
    const std::string text = ToJson(result).dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t count = write(descriptor, text.data() + sent, text.size() - sent);
        if (count < 0 && errno != EINTR) return;
        if (count > 0) sent += static_cast<std::size_t>(count);
    }
}

std::size_t WaitForOne(std::vector<Child>& children) {
    for (;;) {
        std::vector<pollfd> polled;
        for (const Child& child : children) polled.push_back({child.results, POLLIN, 0});
        long long wait = 1000;
        for (const Child& child : children) wait = std::min(wait, std::max(0LL, child.deadline - Now()));
        poll(polled.data(), polled.size(), static_cast<int>(wait));
        for (std::size_t i = 0; i < children.size(); ++i) {
            Child& child = children[i];
            const bool late = Now() >= child.deadline;
            if (!late && !(polled[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
            if (!late) {
                // A result comes in one piece at the end, so one that begins is read to its end.
                Drain(child);
            }
            // After its result a process may still hang in its own end: that is a finding too.
            const long long grace = late ? 0 : std::max(child.deadline, Now() + 100) - Now();
            const auto end = child.process->WaitFor(std::chrono::milliseconds(grace));
            child.timedOut = late || !end;
            child.end = end ? *end : child.process->Kill();
            close(child.results);
            return i;
        }
    }
}

CheckResult ResultOf(const Child& child, const std::string& what) {
    const bool endedWell = !child.timedOut && child.end.IsWell();
    CheckResult result;
    bool complete = false;
    if (!child.received.empty()) {
        try {
            result = FromJson(json::parse(child.received));
            complete = true;
        } catch (const json::exception&) {
        }
    }
    if (complete && endedWell) return result;
    const Finding finding = complete && !child.timedOut && child.end.signal == 0
                                ? FindingOf(child, what + ", after its end,")
                                : FindingOf(child, what);
    result.verdict = finding.weight;
    result.findings.push_back(finding);
    return result;
}

Child StartCopy(std::vector<std::string> arguments, const std::vector<std::string>& environment,
                const std::string& output, int timeoutMilliseconds) {
    Child child;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return child;
    child.results = ends[0];
    child.output = output;
    child.deadline = DeadlineIn(timeoutMilliseconds);
    ProgramStart start;
    // By its own name, as a tool that the program runs in, valgrind for one, has that link for itself.
    std::error_code unknown;
    const std::filesystem::path link = "/proc/self/exe";
    const std::filesystem::path program = std::filesystem::read_symlink(link, unknown);
    start.program = unknown ? link.string() : program.string();
    start.name = "umbrant";
    start.arguments = std::move(arguments);
    start.arguments.emplace_back("--result-fd");
    start.arguments.push_back(std::to_string(kPassedDescriptor));
    start.environment = environment;
    start.input = Stream::Inherited();
    start.output = Stream::File(output);
    start.errors = Stream::AsOutput();
    start.descriptor = ends[1];
    auto started = ChildProcess::Start(start);
    close(ends[1]);
    if (started) {
        child.process = std::move(*started);
    } else {
        close(ends[0]);
    }
    return child;
}

}  // namespace umbrant::host
