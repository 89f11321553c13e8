// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which suites there are.

#include "tests/openfx/host/suites/suites.h"

#include <map>

namespace umbrant::ofx {

namespace {

const std::map<std::string, const void*>& Suites() {
    static const std::map<std::string, const void*> suites = {
        {"OfxPropertySuite/1", &PropertySuite()},       {"OfxImageEffectSuite/1", &ImageEffectSuite()},
        {"OfxParameterSuite/1", &ParameterSuite()},     {"OfxMemorySuite/1", &MemorySuite()},
        {"OfxMultiThreadSuite/1", &MultiThreadSuite()}, {"OfxMessageSuite/1", &MessageSuite1()},
        {"OfxMessageSuite/2", &MessageSuite2()},        {"OfxProgressSuite/1", &ProgressSuite1()},
        {"OfxProgressSuite/2", &ProgressSuite2()},      {"OfxTimeLineSuite/1", &TimeLineSuite()},
        {"OfxInteractSuite/1", &InteractSuite()},
    };
    return suites;
}

}  // namespace

const void* SuiteNamed(const char* name, int version) {
    const auto found = Suites().find(std::string(name) + "/" + std::to_string(version));
    return found == Suites().end() ? nullptr : found->second;
}

const std::vector<std::string>& AllSuites() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const auto& [name, table] : Suites()) all.push_back(name);
        return all;
    }();
    return names;
}

}  // namespace umbrant::ofx
