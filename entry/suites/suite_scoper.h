// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The scoped holder of one suite: acquired by the constructor, released by the destructor.

#include <cstdint>

#include "entry/suites/aefx_suite.h"
#include "entry/suites/without_throwing.h"
#include "hostapi/commands.h"
#include "hostapi/errors.h"

namespace umbrant::effect {

/// Throws `A_Err_MISSING_SUITE` (13) as a plain integer; EffectMain turns it into the command's result.
[[noreturn]] inline void MissingScopedSuiteError() {
    throw PF_Err{A_Err_MISSING_SUITE};
}

}  // namespace umbrant::effect

/// Holds one host suite for the length of a scope; what the host throws at its end is dropped. With `kMayBeMissing` a
/// suite that the host does not offer leaves the holder empty; without it the constructor throws 13.
template <typename SuiteT, bool kMayBeMissing = false>
class AEFX_SuiteScoper {
 public:
    /// Acquires `name`, `version` from the basic suite of `in_data`. When that fails and there is an `out_data`,
    /// `error_text` (or the usual text when null) becomes the message that the host shows. `name` is not copied.
    AEFX_SuiteScoper(const PF_InData* in_data, const char* name, int32_t version, PF_OutData* out_data,
                     const char* error_text)
        : suite_(nullptr), basic_(in_data->pica_basicP), name_(name), version_(version) {
        const void* suite = nullptr;
        umbrant::effect::AcquireSuiteOrReport(in_data, out_data, name, version, error_text, &suite);
        suite_ = static_cast<const SuiteT*>(suite);
        if (!kMayBeMissing && suite_ == nullptr) umbrant::effect::MissingScopedSuiteError();
    }
    ~AEFX_SuiteScoper() {
        if (suite_ != nullptr) umbrant::effect::WithoutThrowing([this] { basic_->ReleaseSuite(name_, version_); });
    }
    AEFX_SuiteScoper(const AEFX_SuiteScoper&) = delete;
    AEFX_SuiteScoper& operator=(const AEFX_SuiteScoper&) = delete;

    const SuiteT* operator->() const { return suite_; }
    const SuiteT* get() const { return suite_; }

 private:
    const SuiteT* suite_;
    SPBasicSuite* basic_;
    const char* name_;
    int32_t version_;
};
