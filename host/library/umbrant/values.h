// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Values of an effect's parameters as an argument of a frame, for programs that draw several moments of one effect at
// the same time.

#include <memory>
#include <string>
#include <string_view>

#include <umbrant/export.h>

namespace umbrant {

/// A colour as numbers: red, green and blue, where 1 is 255 in 8 bits. From -65504 to 65504. Frames of
/// PixelFormat::kRgbaFloat are drawn with the numbers, also above 1; frames of 8 bits with the nearest 8-bit colour.
struct Color {
    float red = 0;
    float green = 0;
    float blue = 0;
};

/// The values of all parameters at one moment, with the keyframes that they had. Effect::CurrentValues makes one.
/// Independent of its effect afterwards: neither sees what is set in the other, and either may be destroyed first. A
/// copy costs about a microsecond. One object may be read by several threads at a time; a moved-from one can only be
/// destroyed or assigned to.
class UMBRANT_API Values {
 public:
    Values(const Values&);
    Values(Values&&) noexcept;
    Values& operator=(const Values&);
    Values& operator=(Values&&) noexcept;
    ~Values();

    /// Sets a parameter as Effect::Set does, with its sentences: from a text, a number or a colour's numbers. `row` is
    /// Parameter::index. Throws kUsage.
    void Set(std::string_view path, std::string_view value);
    void Set(std::string_view path, double value);
    void Set(std::string_view path, const Color& value);
    void Set(int row, std::string_view value);
    void Set(int row, double value);
    void Set(int row, const Color& value);
    /// Returns the value as Effect::Get does. Throws kUsage.
    std::string Get(std::string_view path) const;
    std::string Get(int row) const;

 private:
    friend class Effect;
    struct State;
    explicit Values(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace umbrant
