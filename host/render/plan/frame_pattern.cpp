// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_pattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr int kMostDigits = 12;

/// A field as it is written in a name.
struct Field {
    std::size_t begin = 0;
    std::size_t length = 0;
    int width = 1;  ///< digits at least; 0 for a form that no frame can have
    bool weak = false;
};

bool IsDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// A run of # and @ at the front of the text.
std::optional<Field> Signs(std::string_view text) {
    const std::size_t length = std::min(text.find_first_not_of("#@"), text.size());
    if (length == 0) return std::nullopt;
    const auto hashes = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length), '#');
    const std::size_t width = length + (hashes == 1 ? 3 : 0);
    return Field{0, length, static_cast<int>(std::min<std::size_t>(width, kMostDigits + 1)), hashes == 0};
}

/// "[###]" at the front of the text.
std::optional<Field> Bracketed(std::string_view text) {
    if (!text.starts_with("[#")) return std::nullopt;
    const std::size_t end = text.find_first_not_of('#', 1);
    if (end == std::string_view::npos || text[end] != ']') return std::nullopt;
    return Field{0, end + 1, static_cast<int>(std::min<std::size_t>(end - 1, kMostDigits + 1))};
}

/// "%d" or "%04d" at the front of the text. "%4d" would pad with blanks.
std::optional<Field> Printf(std::string_view text) {
    if (!text.starts_with('%')) return std::nullopt;
    std::size_t end = 1;
    while (end < text.size() && IsDigit(text[end])) ++end;
    if (end == text.size() || text[end] != 'd') return std::nullopt;
    const std::string_view digits = text.substr(1, end - 1);
    if (digits.empty()) return Field{0, end + 1, 1};
    int width = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), width);
    const bool usable = digits.front() == '0' && width >= 1 && digits.size() <= 3;
    return Field{0, end + 1, usable ? std::min(width, kMostDigits + 1) : 0};
}

/// "$F" or "$F4" at the front of the text.
std::optional<Field> Dollar(std::string_view text) {
    if (!text.starts_with("$F")) return std::nullopt;
    if (text.size() > 2 && IsDigit(text[2])) return Field{0, 3, text[2] - '0'};
    return Field{0, 2, 1};
}

std::vector<Field> FieldsOf(std::string_view name) {
    std::vector<Field> fields;
    for (std::size_t at = 0; at < name.size();) {
        const std::string_view rest = name.substr(at);
        std::optional<Field> field;
        for (const auto form : {Bracketed, Signs, Printf, Dollar}) {
            if (!field) field = form(rest);
        }
        if (!field) {
            ++at;
            continue;
        }
        field->begin = at;
        at += field->length;
        fields.push_back(*field);
    }
    const auto isWeak = [](const Field& field) { return field.weak; };
    if (!std::all_of(fields.begin(), fields.end(), isWeak)) std::erase_if(fields, isWeak);
    return fields;
}

}  // namespace

Result<std::optional<FramePattern>> FramePattern::Find(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string name = path.substr(start);
    const std::vector<Field> fields = FieldsOf(name);
    if (fields.empty()) return std::optional<FramePattern>();
    if (fields.size() > 1) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' has {} fields for the frame's number, '{}' and '{}'; use one", path,
                                   fields.size(), name.substr(fields[0].begin, fields[0].length),
                                   name.substr(fields[1].begin, fields[1].length))};
    }
    const Field& field = fields.front();
    if (field.width < 1 || field.width > kMostDigits) {
        return Failure{
            ErrorKind::kUsage,
            fmt::format("'{}' in '{}' is not a field for a frame's number; write #### or %04d for 4 digits, up "
                        "to {} of them",
                        name.substr(field.begin, field.length), path, kMostDigits)};
    }
    FramePattern pattern;
    pattern.path_ = path;
    pattern.before_ = path.substr(0, start + field.begin);
    pattern.after_ = name.substr(field.begin + field.length);
    pattern.width_ = field.width;
    pattern.weak_ = field.weak;
    return std::optional(pattern);
}

std::string FramePattern::PathOf(const FrameNumber& frame) const {
    return before_ + frame.Text(width_) + after_;
}

std::optional<int> FramePattern::FrameOf(std::string_view fileName) const {
    const std::string_view prefix = std::string_view(before_).substr(before_.rfind('/') + 1);
    if (fileName.size() <= prefix.size() + after_.size() || !fileName.starts_with(prefix) ||
        !fileName.ends_with(after_)) {
        return std::nullopt;
    }
    const std::string_view digits = fileName.substr(prefix.size(), fileName.size() - prefix.size() - after_.size());
    int frame = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, frame);
    if (error != std::errc() || stop != end || std::abs(frame) > kFarthestFrame) return std::nullopt;
    // 7 is not a frame of a sequence that is numbered 0007.
    if (fmt::format("{:0{}d}", frame, width_) != digits) return std::nullopt;
    return frame;
}

std::vector<int> FramePattern::FramesOnDisk() const {
    std::vector<int> frames;
    const fs::path folder = fs::path(path_).parent_path();
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (const auto frame = FrameOf(entry->path().filename().string())) frames.push_back(*frame);
    }
    std::sort(frames.begin(), frames.end());
    return frames;
}

}  // namespace umbrant::host
