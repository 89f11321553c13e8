// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What happens between a host and its plug-in: the violations of the standard, the calls of suite functions, and the
// failures that a test asks for. Every function may be called on any thread.

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/openfx/host/abi.h"

namespace umbrant::ofx {

/// Makes a suite function fail.
struct Fault {
    std::string function;  ///< "clipGetImage"
    int nth = 0;           ///< the call that fails, from 1; 0: every call
    OfxStatus status = kOfxStatFailed;
};

class Record {
 public:
    /// Adds a sentence, unless it is there already.
    void Violation(const std::string& sentence);
    std::vector<std::string> Violations() const;
    /// All violations, one per line; empty if there are none.
    std::string ViolationText() const;
    void ClearViolations();

    void SetFaults(std::vector<Fault> faults);
    /// True while functions are to fail: results may then be incomplete without an error of the plug-in's.
    bool HasFaults() const;
    /// Counts the call, and returns the status of a fault that this call is to have.
    std::optional<OfxStatus> Count(const std::string& function);
    /// The number of calls of each function since the last ClearCalls.
    std::map<std::string, int> Calls() const;
    void ClearCalls();

    /// Counts what a plug-in must give back ("image memory"), by +1 and -1.
    void Open(const std::string& kind, int change);
    /// What is not given back, by kind; kinds that are balanced are absent.
    std::map<std::string, int> OpenCounts() const;

 private:
    mutable std::mutex mutex_;
    std::vector<std::string> violations_;
    std::vector<Fault> faults_;
    std::map<std::string, int> calls_;
    std::map<std::string, int> open_;
};

}  // namespace umbrant::ofx
