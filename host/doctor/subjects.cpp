// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/subjects.h"

#include "host/doctor/openfx/openfx_doctor.h"
#include "host/doctor/own_object_examination.h"

namespace umbrant::host {

Examination ExaminationOf(const std::string& subject) {
    if (subject == kOpenFxSubject) return ExamineOpenFx;
    if (subject == kOwnObjectSubject) return ExamineOwnObject;
    return {};
}

}  // namespace umbrant::host
