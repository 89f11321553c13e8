// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The strings of the standard: each is its constant's name without the k, but for those that the standard names
// otherwise, which finds a mistyped letter in either. Read from the headers' text, since names leave no trace in a
// binary.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace umbrant::openfx {
namespace {

const std::map<std::string, std::string> kExceptions = {
    {"kOfxImageEffectPropSupportsMultipleClipDepths", "OfxImageEffectPropMultipleClipDepths"},
    {"kOfxImageEffectPropProjectPixelAspectRatio", "OfxImageEffectPropPixelAspectRatio"},
    {"kOfxImageEffectPluginApi", "OfxImageEffectPluginAPI"},
    {"kOfxImagePreMultiplied", "OfxImageAlphaPremultiplied"},
    {"kOfxImageUnPreMultiplied", "OfxImageAlphaUnPremultiplied"},
    {"kOfxImageFieldNone", "OfxFieldNone"},
    {"kOfxImageFieldLower", "OfxFieldLower"},
    {"kOfxImageFieldUpper", "OfxFieldUpper"},
    {"kOfxImageFieldBoth", "OfxFieldBoth"},
    {"kOfxImageFieldSingle", "OfxFieldSingle"},
    {"kOfxImageFieldDoubled", "OfxFieldDoubled"},
    {"kOfxParamPropUseHostOverlayHandle", "kOfxParamPropUseHostOverlayHandle"},
    {"kOfxParamPropCustomInterpCallbackV1", "OfxParamPropCustomCallbackV1"},
    {"kOfxHostNativeOriginBottomLeft", "kOfxImageEffectHostPropNativeOriginBottomLeft"},
    {"kOfxHostNativeOriginTopLeft", "kOfxImageEffectHostPropNativeOriginTopLeft"},
    {"kOfxHostNativeOriginCenter", "kOfxImageEffectHostPropNativeOriginCenter"},
    {"kOfxImageEffectOutputClipName", "Output"},
    {"kOfxImageEffectSimpleSourceClipName", "Source"},
    {"kOfxImageEffectTransitionSourceFromClipName", "SourceFrom"},
    {"kOfxImageEffectTransitionSourceToClipName", "SourceTo"},
    {"kOfxImageClipPropRoIPrefix", "OfxImageClipPropRoI_"},
    {"kOfxImageClipPropFrameRangePrefix", "OfxImageClipPropFrameRange_"},
    {"kOfxImageClipPropComponentsPrefix", "OfxImageClipPropComponents_"},
    {"kOfxImageClipPropDepthPrefix", "OfxImageClipPropDepth_"},
    {"kOfxImageClipPropPARPrefix", "OfxImageClipPropPAR_"},
};

std::map<std::string, std::string> DeclaredStrings() {
    const std::regex declaration(R"(inline constexpr char (k\w+)\[\]\s*=\s*"([^"]*)\";)");
    std::map<std::string, std::string> strings;
    for (const auto& entry : std::filesystem::directory_iterator(OPENFX_FOLDER "/abi")) {
        if (entry.path().extension() != ".h") continue;
        std::ostringstream text;
        text << std::ifstream(entry.path()).rdbuf();
        const std::string all = text.str();
        for (std::sregex_iterator match(all.begin(), all.end(), declaration), end; match != end; ++match)
            EXPECT_TRUE(strings.emplace((*match)[1], (*match)[2]).second) << (*match)[1] << " is declared twice";
    }
    return strings;
}

TEST(AbiNames, EachStringIsItsConstantsName) {
    const auto strings = DeclaredStrings();
    ASSERT_GT(strings.size(), 200u);
    for (const auto& [name, value] : strings) {
        const auto exception = kExceptions.find(name);
        EXPECT_EQ(value, exception == kExceptions.end() ? name.substr(1) : exception->second) << name;
    }
    for (const auto& [name, value] : kExceptions) EXPECT_EQ(strings.count(name), 1u) << name;
}

TEST(AbiNames, NoTwoConstantsHaveOneString) {
    std::set<std::string> seen;
    for (const auto& [name, value] : DeclaredStrings()) EXPECT_TRUE(seen.insert(value).second) << name;
}

}  // namespace
}  // namespace umbrant::openfx
