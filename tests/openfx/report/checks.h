// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What any image effect must do in this host, whatever it draws: a list of checks with names.

#include <functional>
#include <string>
#include <vector>

namespace umbrant::ofx {

struct Check {
    std::string name;
    /// Runs the check on a bundle or a binary; empty, or the sentences of what is wrong.
    std::function<std::string(const std::string& bundle)> run;
};

/// In the order of the report.
const std::vector<Check>& AllChecks();

}  // namespace umbrant::ofx
