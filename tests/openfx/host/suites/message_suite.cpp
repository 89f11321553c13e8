// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxMessageSuite, versions 1 and 2: messages are kept for the test.

#include <array>
#include <cstdarg>
#include <cstdio>

#include "tests/openfx/host/effect.h"
#include "tests/openfx/host/host.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

std::string Formatted(const char* format, std::va_list arguments) {
    std::array<char, 4096> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    return text.data();
}

/// Checks the handle and the type of a message.
OfxStatus Check(const char* function, void* handle, const char* type, const char* format, bool persistent) {
    Host& host = *Host::Current();
    if (handle != nullptr && host.Find<EffectObject>(handle, function, "an effect") == nullptr)
        return kOfxStatErrBadHandle;
    const std::string name = type == nullptr ? "" : type;
    const bool short_ = name == "OfxMessageError" || name == "OfxMessageWarning" || name == "OfxMessageMessage";
    const bool long_ = name == "OfxMessageFatal" || name == "OfxMessageLog" || name == "OfxMessageQuestion";
    if (!short_ && (persistent || !long_)) {
        host.record.Violation(std::string(function) + ": no message has the type '" + name + "'");
        return kOfxStatErrValue;
    }
    if (format == nullptr) {
        host.record.Violation(std::string(function) + ": no text");
        return kOfxStatErrValue;
    }
    return kOfxStatOK;
}

OfxStatus Send(void* handle, const char* type, const char*, const char* format, ...) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("message")) return status;
    if (const OfxStatus status = Check("message", handle, type, format, false)) return status;
    std::va_list arguments;
    va_start(arguments, format);
    host.AddMessage({type, Formatted(format, arguments), false});
    va_end(arguments);
    return kOfxStatOK;
}

OfxStatus SetPersistent(void* handle, const char* type, const char*, const char* format, ...) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("setPersistentMessage")) return status;
    if (const OfxStatus status = Check("setPersistentMessage", handle, type, format, true)) return status;
    std::va_list arguments;
    va_start(arguments, format);
    host.AddMessage({type, Formatted(format, arguments), true});
    va_end(arguments);
    return kOfxStatOK;
}

OfxStatus ClearPersistent(void* handle) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("clearPersistentMessage")) return status;
    if (host.Find<EffectObject>(handle, "clearPersistentMessage", "an effect") == nullptr) return kOfxStatErrBadHandle;
    return kOfxStatOK;
}

}  // namespace

const OfxMessageSuiteV1& MessageSuite1() {
    static const OfxMessageSuiteV1 suite = {Send};
    return suite;
}

const OfxMessageSuiteV2& MessageSuite2() {
    static const OfxMessageSuiteV2 suite = {Send, SetPersistent, ClearPersistent};
    return suite;
}

}  // namespace umbrant::ofx
