// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Calls the newest message suite that the host has.

#include "openfx/host/messages.h"

#include "openfx/host/suites.h"

namespace umbrant::openfx {

void ShowFailure(OfxImageEffectHandle effect, const char* sentence) noexcept {
    const Suites& suites = TheSuites();
    const OfxMessageSuiteV2* const suite = suites.persistentMessage;
    if (effect && suite && suite->setPersistentMessage &&
        suite->setPersistentMessage(effect, kOfxMessageError, nullptr, "%s", sentence) == kOfxStatOK) {
        return;
    }
    ShowMessage(effect, kOfxMessageError, sentence);
}

void ClearFailure(OfxImageEffectHandle effect) noexcept {
    const OfxMessageSuiteV2* const suite = TheSuites().persistentMessage;
    if (effect && suite && suite->clearPersistentMessage) suite->clearPersistentMessage(effect);
}

void ShowMessage(OfxImageEffectHandle effect, const char* type, const char* sentence) noexcept {
    const Suites& suites = TheSuites();
    if (suites.persistentMessage && suites.persistentMessage->message) {
        suites.persistentMessage->message(effect, type, nullptr, "%s", sentence);
    } else if (suites.message && suites.message->message) {
        suites.message->message(effect, type, nullptr, "%s", sentence);
    }
}

}  // namespace umbrant::openfx
