// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whether worlds are offered by rows, which no other host does.

namespace umbrant::host {

/// Version 2 of the private suite is refused while one of these lives: for a judge, so that it sees what other hosts
/// see. Process-wide.
class WithoutRows {
 public:
    WithoutRows();
    ~WithoutRows();
    WithoutRows(const WithoutRows&) = delete;
    WithoutRows& operator=(const WithoutRows&) = delete;
};

bool OffersRows();

}  // namespace umbrant::host
