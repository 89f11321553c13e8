// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/color/open_color_spaces.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/color/own_config.h"
#include "host/loading/own_objects.h"
#include "host/parameters/echo_text.h"
#include "host/parameters/param_path.h"
#include "host/why_no_file.h"

namespace umbrant::host {

namespace {

Failure CannotRead(const std::string& file, const std::string& reason) {
    return {ErrorKind::kFile, fmt::format("the configuration of colours '{}', which the variable OCIO names, cannot be "
                                          "read: {}; correct it, or unset OCIO to use the program's own colour spaces",
                                          file, reason)};
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// One line without a full stop.
std::string Reason(const std::string& problem) {
    std::string line = problem.substr(0, problem.find('\n'));
    while (!line.empty() && (line.back() == '.' || line.back() == ' ')) line.pop_back();
    return EchoText(line);
}

}  // namespace

Result<OpenedColorSpaces> OpenedColorSpaces::Open() {
    OpenedColorSpaces opened;
    if (const char* file = std::getenv("OCIO")) opened.file_ = file;
    if (!opened.file_.empty()) {
        if (const auto reason = WhyNoFile(opened.file_)) return CannotRead(opened.file_, *reason);
        std::error_code error;
        if (std::filesystem::is_directory(opened.file_, error)) return CannotRead(opened.file_, "a folder, not a file");
    }
    const auto library = OpenOwnObject(kColorObject);
    if (const auto* reason = std::get_if<std::string>(&library)) {
        return Failure{ErrorKind::kInternal, fmt::format("cannot convert colours: {}", *reason)};
    }
    const auto entry = reinterpret_cast<decltype(&UmbrantColorSpaces)>(std::get<void*>(library));
    std::string problem;
    opened.spaces_.reset(entry(opened.file_.empty() ? nullptr : opened.file_.c_str(), kOwnConfig, problem));
    if (opened.spaces_) return opened;
    if (opened.file_.empty()) {
        return Failure{ErrorKind::kInternal, fmt::format("cannot convert colours: {}", Reason(problem))};
    }
    return CannotRead(opened.file_, Reason(problem));
}

Result<std::string> OpenedColorSpaces::Find(const std::string& typed) const {
    const std::string name = spaces_->NameOf(typed);
    if (!name.empty()) return name;
    const std::vector<std::string> names = spaces_->Names();
    std::vector<std::string> lower;
    for (const std::string& each : names) lower.push_back(Lower(each));
    const std::vector<std::string> nearest = Nearest(Lower(typed), lower, 1);
    const std::string where = AreOwn() ? "" : fmt::format(" in '{}'", file_);
    if (!nearest.empty()) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("there is no colour space '{}'{}; did you mean '{}'?", EchoText(typed), where,
                                   names[static_cast<std::size_t>(
                                       std::find(lower.begin(), lower.end(), nearest.front()) - lower.begin())])};
    }
    constexpr std::size_t kListed = 12;
    const std::size_t more = names.size() - std::min(names.size(), kListed);
    const std::vector<std::string> listed(names.begin(), names.end() - static_cast<std::ptrdiff_t>(more));
    return Failure{ErrorKind::kUsage,
                   fmt::format("there is no colour space '{}'{}; there are: {}{}", EchoText(typed), where,
                               fmt::join(listed, ", "), more > 0 ? fmt::format(" and {} more", more) : "")};
}

Result<std::unique_ptr<ColorConversion>> OpenedColorSpaces::Conversion(const std::string& from,
                                                                       const std::string& to) const {
    if (from == to) return std::unique_ptr<ColorConversion>();
    std::string problem;
    auto conversion = spaces_->Conversion(from, to, problem);
    if (conversion) return conversion;
    return Failure{ErrorKind::kUsage, fmt::format("'{}' cannot be converted to '{}': {}; choose other colour spaces",
                                                  from, to, Reason(problem))};
}

}  // namespace umbrant::host
