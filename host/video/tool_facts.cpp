// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/tool_facts.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <span>
#include <sstream>

#include "host/video/ffmpeg.h"

namespace umbrant::host {

namespace {

/// More than any list of encoders is long; what a program prints beyond it is not read.
constexpr std::size_t kLongest = std::size_t{1} << 20;

/// What the tool prints with one option.
Result<std::string> Printed(const std::string& tool, const std::string& option) {
    const auto child = TRY(StartTool(tool, {option}, Piped::kOutput));
    std::string text;
    std::array<std::byte, 4096> bytes;
    while (text.size() < kLongest) {
        const std::size_t count = child->Read(bytes);
        if (count == 0) break;
        text.append(reinterpret_cast<const char*>(bytes.data()), count);
    }
    const ProcessEnd& end = child->Wait();
    if (end.IsWell()) return text;
    return Failure{ErrorKind::kFile, fmt::format("{}; install ffmpeg again", EndText(tool, end))};
}

}  // namespace

Result<std::string> ToolVersion(const std::string& tool) {
    const auto text = TRY(Printed(tool, "-version"));
    std::istringstream words(text);
    std::string name, word, version;
    words >> name >> word >> version;
    if (name == tool && word == "version" && !version.empty()) return version;
    return Failure{ErrorKind::kFile,
                   fmt::format("the '{}' in PATH does not report a version; install ffmpeg 5.1 or newer", tool)};
}

Result<std::set<std::string>> ToolEncoders() {
    const auto text = TRY(Printed("ffmpeg", "-encoders"));
    std::set<std::string> encoders;
    std::istringstream lines(text);
    bool isInList = false;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string flags, name;
        words >> flags >> name;
        if (isInList && flags.starts_with('V')) encoders.insert(name);
        isInList = isInList || flags == "------";
    }
    return encoders;
}

}  // namespace umbrant::host
