// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Memory of the CPU renderer: aligned to cache lines, kept as large as it ever was, its contents not kept.

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace umbrant::effect {

template <typename Element>
class Buffer {
 public:
    static constexpr std::align_val_t kAlignment{64};

    /// At least `count` elements; zero where memory is new, otherwise whatever was there. Throws std::bad_alloc.
    Element* Reserve(size_t count) {
        if (count > count_) {
            values_.reset();
            count_ = 0;
            if (count > static_cast<size_t>(-1) / sizeof(Element)) throw std::bad_alloc();
            values_.reset(static_cast<Element*>(::operator new(count * sizeof(Element), kAlignment)));
            std::memset(static_cast<void*>(values_.get()), 0, count * sizeof(Element));
            count_ = count;
        }
        return values_.get();
    }
    Element* Get() const { return values_.get(); }

 private:
    struct Release {
        void operator()(Element* values) const { ::operator delete(values, kAlignment); }
    };
    std::unique_ptr<Element, Release> values_;
    size_t count_ = 0;
};

}  // namespace umbrant::effect
