// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/entry/panel_host.h"

namespace umbrant::effect {

PanelHostTest* PanelHostTest::current = nullptr;

namespace {

/// References that mean something to the host alone. A stream's number is its row plus one.
template <typename Reference>
Reference Ref(intptr_t number) {
    return reinterpret_cast<Reference>(number);
}
template <typename Reference>
intptr_t Number(Reference reference) {
    return reinterpret_cast<intptr_t>(reference);
}

constexpr intptr_t kEffect = 0xEF, kDrawRef = 0xD0, kSupplier = 0xD1, kSurface = 0xD2, kImage = 0xD3;

template <typename... Values>
std::string Text(const Values&... values) {
    std::ostringstream text;
    ((text << " " << values), ...);
    return text.str();
}

}  // namespace

PF_Err PanelHostTest::Answer(const std::string& name, const std::string& arguments) {
    host.Log(name + arguments);
    if (name == alsoFailing) return 99;
    return name == failing && ++counts_[name] == failingCount ? failure : PF_Err_NONE;
}

PanelHostTest::PanelHostTest() : params(PARAM_NUM_PARAMS) {
    current = this;
    for (PF_ParamDef& def : params) {
        // Whatever a definition holds is to be handed on.
        std::memset(&def, 0x11, sizeof(def));
        pointers.push_back(&def);
    }
    OfferRowSuites();
    OfferDrawingSuites();
}

void PanelHostTest::OfferRowSuites() {
    interfaceSuite_.AEGP_GetNewEffectForEffect = [](AEGP_PluginID id, PF_ProgPtr ref, AEGP_EffectRefH* effect) {
        const bool own = ref == current->host.inData.effect_ref;
        if (PF_Err err = current->Answer("GetNewEffectForEffect", Text(id, own ? "own" : "other"))) return err;
        if (current->giveNoEffect) return PF_Err{};
        *effect = Ref<AEGP_EffectRefH>(kEffect);
        ++current->openEffects;
        return PF_Err{};
    };
    effectSuite_.AEGP_DisposeEffect = [](AEGP_EffectRefH effect) {
        --current->openEffects;
        return current->Answer("DisposeEffect", Number(effect) == kEffect ? "" : " unknown");
    };
    streamSuite_.AEGP_GetNewEffectStreamByIndex = [](AEGP_PluginID id, AEGP_EffectRefH effect, PF_ParamIndex index,
                                                     AEGP_StreamRefH* stream) {
        const std::string unknown = Number(effect) == kEffect || current->giveNoEffect ? "" : " unknown";
        if (PF_Err err = current->Answer("GetStream", Text(id, index) + unknown)) return err;
        *stream = current->giveNoStream ? nullptr : Ref<AEGP_StreamRefH>(index + 1);
        if (*stream != nullptr) ++current->openStreams;
        return PF_Err{};
    };
    streamSuite_.AEGP_DisposeStream = [](AEGP_StreamRefH stream) {
        --current->openStreams;
        return current->Answer("DisposeStream", Text(Number(stream) - 1));
    };
    dynamicStreamSuite_.AEGP_SetDynamicStreamFlag = [](AEGP_StreamRefH stream, AEGP_DynStreamFlags flag,
                                                       A_Boolean undoable, A_Boolean set) {
        const auto row = static_cast<int>(Number(stream)) - 1;
        current->flagValues.push_back(set);
        if (PF_Err err = current->Answer("SetFlag", Text(row, flag, int{undoable}, set != 0))) return err;
        current->rows[row].hidden = set != 0;
        return PF_Err{};
    };
    paramUtilsSuite_.PF_UpdateParamUI = [](PF_ProgPtr ref, PF_ParamIndex index, const PF_ParamDef* def) {
        const bool own = ref == current->host.inData.effect_ref;
        const bool disabled = (def->ui_flags & PF_PUI_DISABLED) != 0;
        const bool collapsed = (def->flags & PF_ParamFlag_COLLAPSE_TWIRLY) != 0;
        current->updates.push_back(*def);
        const std::string looks = std::string(disabled ? " disabled" : " enabled") + (collapsed ? " collapsed" : "");
        if (PF_Err err = current->Answer("UpdateParamUI", Text(index) + looks + (own ? "" : " other"))) return err;
        current->rows[index].disabled = disabled;
        current->rows[index].collapsed = collapsed;
        return PF_Err{};
    };
    host.Offer("AEGP PF Interface Suite", 1, &interfaceSuite_);
    host.Offer("AEGP Effect Suite", 2, &effectSuite_);
    host.Offer("AEGP Stream Suite", 7, &streamSuite_);
    host.Offer("AEGP Dynamic Stream Suite", 2, &dynamicStreamSuite_);
    host.Offer("PF Param Utils Suite", 3, &paramUtilsSuite_);
}

void PanelHostTest::OfferDrawingSuites() {
    customUISuite_.PF_GetDrawingReference = [](PF_ContextH context, DRAWBOT_DrawRef* reference) {
        if (PF_Err err = current->Answer("GetDrawingReference", Text(Number(context)))) return err;
        *reference = current->giveNoReference ? nullptr : Ref<DRAWBOT_DrawRef>(kDrawRef);
        return PF_Err{};
    };
    drawSuite_.GetSupplier = [](DRAWBOT_DrawRef reference, DRAWBOT_SupplierRef* supplier) {
        if (SPErr err = current->Answer("GetSupplier", Number(reference) == kDrawRef ? "" : " unknown")) return err;
        *supplier = Ref<DRAWBOT_SupplierRef>(kSupplier);
        return SPErr{};
    };
    drawSuite_.GetSurface = [](DRAWBOT_DrawRef reference, DRAWBOT_SurfaceRef* surface) {
        if (SPErr err = current->Answer("GetSurface", Number(reference) == kDrawRef ? "" : " unknown")) return err;
        *surface = Ref<DRAWBOT_SurfaceRef>(kSurface);
        return SPErr{};
    };
    supplierSuite_.NewImageFromBuffer = [](DRAWBOT_SupplierRef supplier, int width, int height, int rowBytes,
                                           DRAWBOT_PixelLayout layout, const void* data, DRAWBOT_ImageRef* image) {
        const std::string unknown = Number(supplier) == kSupplier ? "" : " unknown";
        if (SPErr err = current->Answer("NewImageFromBuffer", Text(width, height, rowBytes, layout) + unknown)) {
            return err;
        }
        const auto* bytes = static_cast<const unsigned char*>(data);
        current->imageBytes.assign(bytes, bytes + static_cast<ptrdiff_t>(rowBytes) * height);
        if (current->giveNoImage) return SPErr{};
        *image = Ref<DRAWBOT_ImageRef>(kImage);
        ++current->openImages;
        return SPErr{};
    };
    supplierSuite_.ReleaseObject = [](DRAWBOT_ObjectRef object) {
        --current->openImages;
        return current->Answer("ReleaseObject", Number(object) == kImage ? "" : " unknown");
    };
    surfaceSuite_.Transform = [](DRAWBOT_SurfaceRef surface, const DRAWBOT_MatrixF32* matrix) {
        std::string text = Number(surface) == kSurface ? "" : " unknown";
        for (const auto& row : matrix->mat) text += Text(row[0], row[1], row[2]);
        return current->Answer("Transform", text);
    };
    surfaceSuite_.DrawImage = [](DRAWBOT_SurfaceRef surface, DRAWBOT_ImageRef image, const DRAWBOT_PointF32* origin,
                                 float alpha) {
        const std::string unknown = Number(surface) == kSurface && Number(image) == kImage ? "" : " unknown";
        current->drawnAt = *origin;
        return current->Answer("DrawImage", Text(origin->x, origin->y, alpha) + unknown);
    };
    host.Offer("PF Effect Custom UI Suite", 1, &customUISuite_);
    host.Offer("DRAWBOT Draw Suite", 1, &drawSuite_);
    host.Offer("DRAWBOT Supplier Suite", 1, &supplierSuite_);
    host.Offer("DRAWBOT Surface Suite", 1, &surfaceSuite_);
}

PF_Err PanelHostTest::Update(A_long type) {
    params[PARAM_SHADOW_TYPE].u.pd.value = type;
    return EffectMain(PF_Cmd_UPDATE_PARAMS_UI, &host.inData, &host.outData, pointers.data(), nullptr, nullptr);
}

PF_Err PanelHostTest::Press(PF_ParamIndex index) {
    PF_UserChangedParamExtra changed = {index};
    return Call(PF_Cmd_USER_CHANGED_PARAM, &changed);
}

std::vector<std::string> PanelHostTest::HostCalls() const {
    std::vector<std::string> calls;
    for (const std::string& call : host.calls) {
        if (!call.starts_with("AcquireSuite ") && !call.starts_with("ReleaseSuite ")) calls.push_back(call);
    }
    return calls;
}

std::vector<std::string> PanelHostTest::Suites(const std::string& verb) const {
    std::vector<std::string> names;
    for (const std::string& call : host.calls) {
        if (!call.starts_with(verb + " ")) continue;
        const std::string name = call.substr(verb.size() + 1);
        names.push_back(name.substr(0, name.rfind(' ')));
    }
    return names;
}

}  // namespace umbrant::effect
