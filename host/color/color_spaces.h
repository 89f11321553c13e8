// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Colour spaces by name, and conversions between them. The implementation, over OpenColorIO, is in umbrant_color.so.

#include <memory>
#include <string>
#include <vector>

namespace umbrant::host {

/// From one colour space to another. Any thread.
class ColorConversion {
 public:
    virtual ~ColorConversion() = default;
    /// Converts colours in place: red, green and blue follow one another, and the next pixel's red is `stride` floats
    /// behind this one's. `count` is not negative. Returns false without memory, or when the library fails.
    virtual bool Apply(float* red, int stride, int count) const = 0;
};

/// The colour spaces of one configuration.
class ColorSpaces {
 public:
    virtual ~ColorSpaces() = default;
    /// Every name that people choose from, in the configuration's order, without roles and aliases.
    virtual std::vector<std::string> Names() const = 0;
    /// The name of a space by its name, an alias or a role, in any case; empty for none.
    virtual std::string NameOf(const std::string& name) const = 0;
    /// The conversion between two spaces. Null with the reason in `problem` where the configuration has none.
    virtual std::unique_ptr<ColorConversion> Conversion(const std::string& from, const std::string& to,
                                                        std::string& problem) const = 0;
};

/// The one entry of umbrant_color.so: the spaces of a configuration, by its file, or without one (null) by its text;
/// the caller's to delete. Null with the reason in `problem` when it cannot be read.
extern "C" __attribute__((visibility("default"))) ColorSpaces* UmbrantColorSpaces(const char* file, const char* text,
                                                                                  std::string& problem);

}  // namespace umbrant::host
