// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Names of the files of a sequence: one path with a field for the frame's number.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/render/plan/frame_number.h"
#include "host/result.h"

namespace umbrant::host {

/// A path with one frame field in the name of the file. The field is written as
///   #           four digits; ## and longer: as many digits as signs
///   @           a digit each; a lone # among them is still four
///   [###]       as many digits as signs
///   %d, %04d    as printf writes them
///   $F, $F4     any number of digits, or as many as the number says
/// Numbers below zero have their sign within the width. An @ is a field only in a name without another one.
class FramePattern {
 public:
    /// Nothing when the name has no field. Fails with `ErrorKind::kUsage` when it has two, or one that nobody could
    /// mean.
    static Result<std::optional<FramePattern>> Find(const std::string& path);

    /// The path of a frame.
    std::string PathOf(const FrameNumber& frame) const;
    /// The frame whose file name this would be, or nothing.
    std::optional<int> FrameOf(std::string_view fileName) const;
    /// Frames with a file, rising. Empty also when the folder cannot be read.
    std::vector<int> FramesOnDisk() const;

    const std::string& Path() const { return path_; }
    /// What the names of all its files begin with.
    std::string NameBefore() const { return before_.substr(before_.rfind('/') + 1); }
    /// What they end with.
    const std::string& NameAfter() const { return after_; }
    /// The field is an @ sign, which file names that mean no sequence have too.
    bool IsWeak() const { return weak_; }

 private:
    std::string path_;
    std::string before_;  ///< the path up to the field
    std::string after_;
    int width_ = 1;
    bool weak_ = false;
};

}  // namespace umbrant::host
