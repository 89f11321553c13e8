// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a plug-in has handles of. A handle is valid while its object lives; the host knows every live object.

#include <cstdint>

#include "tests/openfx/host/abi.h"

namespace umbrant::ofx {

class Host;

class Object {
 public:
    /// Registers the object with its host, which must outlive it.
    explicit Object(Host& host);
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    Host& TheHost() const { return host_; }
    /// The handle that a plug-in gets. A number that is no address: a plug-in that reads through it crashes at once.
    template <typename Handle>
    Handle As() const {
        return reinterpret_cast<Handle>(number_);
    }
    const void* Number() const { return reinterpret_cast<const void*>(number_); }

 private:
    Host& host_;
    std::uintptr_t number_;
};

}  // namespace umbrant::ofx
