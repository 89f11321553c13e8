// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "packaging/bundle_texts.h"

#include <cstdint>

#include "entry/version.h"
#include "hostapi/registration.h"

using namespace umbrant::effect;

namespace {

/// The characters of a code of four, in reading order.
std::string FourCharacters(std::uint32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 0xFF);
    return text;
}

std::string PackageType() {
    return FourCharacters(static_cast<std::uint32_t>(kPluginKind_Effect));
}

std::string Signature() {
    return FourCharacters(static_cast<std::uint32_t>(kAppID_AfterEffects));
}

std::string VersionText() {
    return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." + std::to_string(kVersionBugFix);
}

std::string Entry(const char* key, const std::string& value) {
    return std::string("    <key>") + key + "</key>\n    <string>" + value + "</string>\n";
}

}  // namespace

std::string PkgInfo() {
    return PackageType() + Signature();
}

std::string InfoPlist(const std::string& identifier) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           Entry("CFBundleDevelopmentRegion", "en") + Entry("CFBundleExecutable", kEffectName) +
           Entry("CFBundleIdentifier", identifier) + Entry("CFBundleInfoDictionaryVersion", "6.0") +
           Entry("CFBundleName", kEffectName) + Entry("CFBundlePackageType", PackageType()) +
           Entry("CFBundleShortVersionString", VersionText()) + Entry("CFBundleSignature", Signature()) +
           Entry("CFBundleVersion", VersionText()) +
           "    <key>LSRequiresCarbon</key>\n    <true/>\n</dict>\n</plist>\n";
}

bool IsBundleIdentifier(const std::string& identifier) {
    const char* allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-";
    return !identifier.empty() && identifier.find_first_not_of(allowed) == std::string::npos;
}
