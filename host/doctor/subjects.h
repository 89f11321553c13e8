// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What can be examined in a process of its own: a row for each subject.

#include <string>

#include "host/doctor/examination_process.h"

namespace umbrant::host {

/// The examination of this name; empty for none.
Examination ExaminationOf(const std::string& subject);

}  // namespace umbrant::host
