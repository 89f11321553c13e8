// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Opens colour spaces: those of the configuration that the environment's OCIO names, else the program's own.

#include <memory>
#include <string>

#include "host/color/color_spaces.h"
#include "host/result.h"

namespace umbrant::host {

/// The spaces of a configuration, with messages about them.
class OpenedColorSpaces {
 public:
    /// Loads the library of colours. Fails with `ErrorKind::kFile` when the configuration cannot be read, and with
    /// `ErrorKind::kInternal` without the library.
    static Result<OpenedColorSpaces> Open();

    /// The name of the space that `typed` means. Fails with `ErrorKind::kUsage` and the closest match.
    Result<std::string> Find(const std::string& typed) const;
    /// Null when both are the same space. Fails with `ErrorKind::kUsage`.
    Result<std::unique_ptr<ColorConversion>> Conversion(const std::string& from, const std::string& to) const;
    /// Whether they are the program's own.
    bool AreOwn() const { return file_.empty(); }

 private:
    std::shared_ptr<const ColorSpaces> spaces_;
    std::string file_;  ///< of the configuration; empty for the program's own
};

}  // namespace umbrant::host
