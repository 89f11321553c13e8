// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The suite cache: one table of names and versions, one slot per suite, one place that acquires.

#include "entry/suites/suite_handler.h"

#include <exception>

#include "entry/suites/without_throwing.h"
#include "hostapi/errors.h"

using namespace umbrant::effect;

namespace {

struct KnownSuite {
    const char* name;
    int32_t version;
};

/// In slot order.
constexpr KnownSuite kKnownSuites[] = {
    {kPFHandleSuiteName, kPFHandleSuiteVersion1},
    {kPFANSISuiteName, kPFANSISuiteVersion1},
    {kPFWorldSuiteName, kPFWorldSuiteVersion2},
    {kPFIterate8SuiteName, kPFIterate8SuiteVersion1},
    {kPFIterateFloatSuiteName, kPFIterateFloatSuiteVersion1},
    {kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1},
    {kPFColorParamSuiteName, kPFColorParamSuiteVersion1},
    {kPFParamUtilsSuiteName, kPFParamUtilsSuiteVersion3},
    {kPFEffectUISuiteName, kPFEffectUISuiteVersion1},
    {kPFEffectCustomUISuiteName, kPFEffectCustomUISuiteVersion1},
    {kDRAWBOT_DrawSuiteName, kDRAWBOT_DrawSuite_Version1},
    {kDRAWBOT_SupplierSuiteName, kDRAWBOT_SupplierSuite_Version1},
    {kDRAWBOT_SurfaceSuiteName, kDRAWBOT_SurfaceSuite_Version1},
    {kDRAWBOT_PathSuiteName, kDRAWBOT_PathSuite_Version1},
    {kAEGPPFInterfaceSuiteName, kAEGPPFInterfaceSuiteVersion1},
    {kAEGPLayerSuiteName, kAEGPLayerSuiteVersion7},
    {kAEGPEffectSuiteName, kAEGPEffectSuiteVersion2},
    {kAEGPStreamSuiteName, kAEGPStreamSuiteVersion2},
    {kAEGPDynamicStreamSuiteName, kAEGPDynamicStreamSuiteVersion2},
};

}  // namespace

void MissingSuiteError() {
    throw PF_Err{PF_Err_BAD_CALLBACK_PARAM};
}

AEGP_SuiteHandler::AEGP_SuiteHandler(SPBasicSuite* basic) : basic_(basic) {
    static_assert(sizeof(kKnownSuites) / sizeof(kKnownSuites[0]) == kSlotCount);
    if (basic_ == nullptr) MissingSuiteError();
}

AEGP_SuiteHandler::~AEGP_SuiteHandler() {
    WithoutThrowing([this] { ReleaseAllSuites(); });
}

const void* AEGP_SuiteHandler::LoadSuite(const char* name, int32_t version) {
    const void* suite = nullptr;
    if (basic_->AcquireSuite(name, version, &suite) != kSPNoError || suite == nullptr) MissingSuiteError();
    return suite;
}

void AEGP_SuiteHandler::ReleaseSuite(const char* name, int32_t version) {
    basic_->ReleaseSuite(name, version);
}

void AEGP_SuiteHandler::ReleaseAllSuites() {
    std::exception_ptr first;
    for (int slot = 0; slot < kSlotCount; ++slot) {
        if (suites_[slot] == nullptr) continue;
        suites_[slot] = nullptr;
        try {
            ReleaseSuite(kKnownSuites[slot].name, kKnownSuites[slot].version);
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

const void* AEGP_SuiteHandler::Suite(Slot slot) {
    if (suites_[slot] == nullptr) suites_[slot] = LoadSuite(kKnownSuites[slot].name, kKnownSuites[slot].version);
    return suites_[slot];
}

const PF_HandleSuite1* AEGP_SuiteHandler::HandleSuite1() {
    return static_cast<const PF_HandleSuite1*>(Suite(kHandle));
}

const PF_ANSICallbacksSuite1* AEGP_SuiteHandler::ANSICallbacksSuite1() {
    return static_cast<const PF_ANSICallbacksSuite1*>(Suite(kANSI));
}

const PF_WorldSuite2* AEGP_SuiteHandler::WorldSuite2() {
    return static_cast<const PF_WorldSuite2*>(Suite(kWorld));
}

const PF_Iterate8Suite1* AEGP_SuiteHandler::Iterate8Suite1() {
    return static_cast<const PF_Iterate8Suite1*>(Suite(kIterate8));
}

const PF_iterateFloatSuite1* AEGP_SuiteHandler::IterateFloatSuite1() {
    return static_cast<const PF_iterateFloatSuite1*>(Suite(kIterateFloat));
}

const PF_WorldTransformSuite1* AEGP_SuiteHandler::WorldTransformSuite1() {
    return static_cast<const PF_WorldTransformSuite1*>(Suite(kWorldTransform));
}

const PF_ColorParamSuite1* AEGP_SuiteHandler::ColorParamSuite1() {
    return static_cast<const PF_ColorParamSuite1*>(Suite(kColorParam));
}

const PF_ParamUtilsSuite3* AEGP_SuiteHandler::ParamUtilsSuite3() {
    return static_cast<const PF_ParamUtilsSuite3*>(Suite(kParamUtils));
}

const PF_EffectUISuite1* AEGP_SuiteHandler::EffectUISuite1() {
    return static_cast<const PF_EffectUISuite1*>(Suite(kEffectUI));
}

const PF_EffectCustomUISuite1* AEGP_SuiteHandler::EffectCustomUISuite1() {
    return static_cast<const PF_EffectCustomUISuite1*>(Suite(kEffectCustomUI));
}

const DRAWBOT_DrawbotSuite1* AEGP_SuiteHandler::DrawbotSuite1() {
    return static_cast<const DRAWBOT_DrawbotSuite1*>(Suite(kDrawbotDraw));
}

const DRAWBOT_SupplierSuite1* AEGP_SuiteHandler::SupplierSuite1() {
    return static_cast<const DRAWBOT_SupplierSuite1*>(Suite(kDrawbotSupplier));
}

const DRAWBOT_SurfaceSuite1* AEGP_SuiteHandler::SurfaceSuite1() {
    return static_cast<const DRAWBOT_SurfaceSuite1*>(Suite(kDrawbotSurface));
}

const DRAWBOT_PathSuite1* AEGP_SuiteHandler::PathSuite1() {
    return static_cast<const DRAWBOT_PathSuite1*>(Suite(kDrawbotPath));
}

const AEGP_PFInterfaceSuite1* AEGP_SuiteHandler::PFInterfaceSuite1() {
    return static_cast<const AEGP_PFInterfaceSuite1*>(Suite(kPFInterface));
}

const AEGP_LayerSuite7* AEGP_SuiteHandler::LayerSuite7() {
    return static_cast<const AEGP_LayerSuite7*>(Suite(kLayer));
}

const AEGP_EffectSuite2* AEGP_SuiteHandler::EffectSuite2() {
    return static_cast<const AEGP_EffectSuite2*>(Suite(kEffect));
}

const AEGP_StreamSuite2* AEGP_SuiteHandler::StreamSuite2() {
    return static_cast<const AEGP_StreamSuite2*>(Suite(kStream));
}

const AEGP_DynamicStreamSuite2* AEGP_SuiteHandler::DynamicStreamSuite2() {
    return static_cast<const AEGP_DynamicStreamSuite2*>(Suite(kDynamicStream));
}
