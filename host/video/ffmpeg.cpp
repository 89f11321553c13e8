// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/ffmpeg.h"

#include <fmt/format.h>

#include <cstring>

namespace umbrant::host {

Result<std::unique_ptr<ChildProcess>> StartTool(const std::string& tool, const std::vector<std::string>& arguments,
                                                Piped piped) {
    ProgramStart start;
    start.program = tool;
    start.arguments = {"-hide_banner", "-v", "error"};
    if (tool == "ffmpeg") start.arguments.emplace_back("-nostdin");
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    start.input = piped == Piped::kInput ? Stream::Pipe() : Stream::Nothing();
    start.output = piped == Piped::kOutput ? Stream::Pipe() : Stream::Nothing();
    start.errors = Stream::LastLine();
    auto child = ChildProcess::Start(start);
    if (child) return child;
    const std::string& reason = child.error().sentence;
    if (reason == std::strerror(ENOENT)) {
        return Failure{ErrorKind::kFile, fmt::format("clips need '{}', which is not in PATH; "
                                                     "install ffmpeg (Debian: apt install ffmpeg)",
                                                     tool)};
    }
    return Failure{child.error().kind,
                   fmt::format("'{}', which reads and writes clips, cannot be started: {}", tool, reason)};
}

std::string EndText(const std::string& tool, const ProcessEnd& end) {
    std::string text = end.signal != 0
                           ? fmt::format("{} was ended by signal {} ({})", tool, end.signal, strsignal(end.signal))
                           : fmt::format("{} ended with exit code {}", tool, end.code);
    if (!end.lastLine.empty()) text += ": " + end.lastLine;
    return text;
}

std::string FileArgument(const std::filesystem::path& file) {
    return "file:" + file.string();
}

}  // namespace umbrant::host
