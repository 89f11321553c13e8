// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A property set of the host's. Hosts lack properties, each other ones, so nothing here fails: reading returns an
// optional, writing whether the host took the value.

#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>

#include "openfx/abi/core.h"

namespace umbrant::openfx {

class Properties {
 public:
    /// Without a handle nothing is there, and nothing is taken.
    explicit Properties(OfxPropertySetHandle handle = nullptr) : handle_(handle) {}

    OfxPropertySetHandle Handle() const { return handle_; }

    bool Set(const char* name, int value, int index = 0) const;
    bool Set(const char* name, double value, int index = 0) const;
    bool Set(const char* name, const char* value, int index = 0) const;
    bool Set(const char* name, const std::string& value, int index = 0) const {
        return Set(name, value.c_str(), index);
    }
    bool Set(const char* name, void* value, int index = 0) const;
    /// Each value at its index; whether all were taken.
    bool SetAll(const char* name, std::initializer_list<double> values) const;
    bool SetAll(const char* name, std::initializer_list<const char*> values) const;

    std::optional<int> Int(const char* name, int index = 0) const;
    std::optional<double> Double(const char* name, int index = 0) const;
    /// A copy: the host's own text may change with its next call.
    std::optional<std::string> String(const char* name, int index = 0) const;
    /// Null where there is none.
    void* Pointer(const char* name) const;

    /// All of N numbers, or nothing.
    template <std::size_t N>
    std::optional<std::array<int, N>> Ints(const char* name) const {
        std::array<int, N> values{};
        for (std::size_t i = 0; i < N; ++i) {
            const auto value = Int(name, static_cast<int>(i));
            if (!value) return std::nullopt;
            values[i] = *value;
        }
        return values;
    }
    template <std::size_t N>
    std::optional<std::array<double, N>> Doubles(const char* name) const {
        std::array<double, N> values{};
        for (std::size_t i = 0; i < N; ++i) {
            const auto value = Double(name, static_cast<int>(i));
            if (!value) return std::nullopt;
            values[i] = *value;
        }
        return values;
    }

 private:
    OfxPropertySetHandle handle_;
};

}  // namespace umbrant::openfx
