// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The other way round: an effect that checks its host. Whenever it is asked for a frame it calls every service that the
// host offers and compares the answers with what the interface promises; a test reads what it has to complain about.

#include <cstdio>
#include <cstring>
#include <string>

#include "tests/modules/host_tester.h"

#define TESTER_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

std::string complaints;
int questions = 0;

void TestBasicSuite(PF_InData* in) {
    SPBasicSuite* basic = in->pica_basicP;
    const void* suite = &suite;
    Expect(basic->AcquireSuite("PF Suite Of Dreams", 1, &suite) != 0, "an unknown suite is refused");
    Expect(suite == nullptr, "a refused suite is null");
    Expect(basic->AcquireSuite(kPFHandleSuiteName, 99, &suite) != 0, "an unknown version is refused");
    Expect(basic->IsEqual("one", "one") != 0 && basic->IsEqual("one", "two") == 0, "IsEqual compares texts");
    void* block = nullptr;
    Expect(!basic->AllocateBlock(16, &block) && block, "a block is given");
    std::memset(block, 7, 16);
    void* moved = nullptr;
    Expect(!basic->ReallocateBlock(block, 4096, &moved) && moved, "a block grows");
    Expect(static_cast<char*>(moved)[0] == 7 && static_cast<char*>(moved)[15] == 7,
           "a block that grows keeps its bytes");
    Expect(!basic->FreeBlock(moved), "a block is taken back");
}

void TestHandles(PF_InData* in) {
    const Held<PF_HandleSuite1> handles(in, kPFHandleSuiteName, kPFHandleSuiteVersion1);
    PF_Handle handle = handles->host_new_handle(100);
    Expect(handle && handles->host_get_handle_size(handle) == 100, "a handle has the size that was asked for");
    auto* bytes = static_cast<char*>(handles->host_lock_handle(handle));
    Expect(bytes && bytes == *handle, "a lock gives the address that the handle leads to");
    std::memset(bytes, 5, 100);
    Expect(handles->host_lock_handle(handle) == bytes, "a second lock gives the same address");
    handles->host_unlock_handle(handle);
    Expect(handles->host_resize_handle(200, &handle) != 0, "a locked handle is not resized");
    handles->host_unlock_handle(handle);
    Expect(!handles->host_resize_handle(200, &handle) && handles->host_get_handle_size(handle) == 200,
           "a handle grows");
    Expect((*handle)[0] == 5 && (*handle)[99] == 5, "a handle that grows keeps its bytes");
    Expect(!handles->host_resize_handle(10, &handle) && (*handle)[9] == 5,
           "a handle that shrinks keeps its first bytes");
    handles->host_dispose_handle(handle);
    const PF_Handle empty = handles->host_new_handle(0);
    Expect(empty && handles->host_get_handle_size(empty) == 0, "a handle may be empty");
    handles->host_dispose_handle(empty);
}

void TestWorlds(PF_InData* in) {
    const Held<PF_WorldSuite2> worlds(in, kPFWorldSuiteName, kPFWorldSuiteVersion2);
    PF_EffectWorld world{};
    Expect(worlds->PF_NewWorld(in->effect_ref, 0, 5, 1, PF_PixelFormat_ARGB32, &world) != 0,
           "an empty world is refused");
    Expect(worlds->PF_NewWorld(in->effect_ref, 5, -1, 1, PF_PixelFormat_ARGB32, &world) != 0,
           "a world of negative size is refused");
    Expect(worlds->PF_NewWorld(in->effect_ref, 5, 5, 1, 12345, &world) != 0, "a world of no format is refused");
}

bool Within(const PF_LRect& inner, const PF_LRect& outer) {
    const bool empty = inner.left >= inner.right || inner.top >= inner.bottom;
    return empty || (inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
                     inner.bottom <= outer.bottom);
}

/// What render compares with.
PF_CheckoutResult promised;
PF_LRect asked;

PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra) {
    const PF_RenderRequest& request = extra->input->output_request;
    asked = request.rect;
    const auto take = [&](PF_ParamIndex index, A_long id, PF_CheckoutResult* result) {
        return extra->cb->checkout_layer(in->effect_ref, index, id, &request, in->current_time, in->time_step,
                                         in->time_scale, result);
    };
    Expect(!take(0, 5, &promised), "the layer is promised");
    Expect(Within(promised.result_rect, request.rect), "what is promised lies inside of the request");
    Expect(Within(promised.result_rect, promised.max_result_rect), "what is promised lies inside of the largest");
    PF_CheckoutResult other{};
    Expect(take(0, 5, &other) != 0, "an id that is in use is refused");
    Expect(take(0, -3, &other) != 0, "a negative id is refused");
    Expect(take(1, 6, &other) != 0, "a row that is no layer is refused");
    Expect(take(99, 7, &other) != 0, "a row that is not there is refused");
    extra->output->result_rect = promised.result_rect;
    extra->output->max_result_rect = promised.max_result_rect;
    return PF_Err_NONE;
}

void TestParameters(PF_InData* in) {
    PF_ParamDef def{};
    const auto take = [&](PF_ParamIndex index) {
        return in->inter.checkout_param(in->effect_ref, index, in->current_time, in->time_step, in->time_scale, &def);
    };
    Expect(!take(1) && def.param_type == PF_Param_FLOAT_SLIDER && def.u.fs_d.value == 12.5,
           "a row is checked out with its type and default");
    Expect(!in->inter.checkin_param(in->effect_ref, &def), "a row is checked in");
    Expect(take(-1) != 0 && take(50) != 0, "a row that is not there is refused");
    PF_ParamDef added{};
    added.param_type = PF_Param_ANGLE;
    Expect(in->inter.add_param(in->effect_ref, -1, &added) != 0, "rows are not added while rendering");
}

PF_Err Render(PF_InData* in, PF_SmartRenderExtra* extra) {
    PF_EffectWorld* layer = nullptr;
    Expect(!extra->cb->checkout_layer_pixels(in->effect_ref, 5, &layer), "the layer's pixels are given");
    Expect(layer && layer->origin_x == promised.result_rect.left && layer->origin_y == promised.result_rect.top &&
               layer->width == promised.result_rect.right - promised.result_rect.left &&
               layer->height == promised.result_rect.bottom - promised.result_rect.top,
           "the layer's pixels are where they were promised");
    PF_EffectWorld* again = nullptr;
    Expect(extra->cb->checkout_layer_pixels(in->effect_ref, 5, &again) != 0, "pixels are given once");
    Expect(extra->cb->checkout_layer_pixels(in->effect_ref, 6, &again) != 0,
           "pixels that nobody asked for are refused");
    PF_EffectWorld* output = nullptr;
    Expect(!extra->cb->checkout_output(in->effect_ref, &output) && output, "the output is given");
    Expect(output->width == promised.result_rect.right - promised.result_rect.left &&
               output->height == promised.result_rect.bottom - promised.result_rect.top,
           "the output covers the result rectangle");
    Expect(output->data != layer->data, "input and output are two worlds");

    TestParameters(in);
    TestBasicSuite(in);
    TestHandles(in);
    TestWorlds(in);
    TestPixelServices(in);

    Expect(!extra->cb->checkin_layer_pixels(in->effect_ref, 5), "the layer's pixels are taken back");
    Expect(extra->cb->checkin_layer_pixels(in->effect_ref, 5) != 0, "they are taken back once");
    return in->utils->fill(in->effect_ref, nullptr, nullptr, output);
}

}  // namespace

void Expect(bool kept, const std::string& promise) {
    ++questions;
    if (!kept) complaints += promise + "\n";
}

TESTER_EXPORT PF_Err TesterMain(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef*[], PF_LayerDef*,
                                void* extra) {
    switch (command) {
        case PF_Cmd_GLOBAL_SETUP:
            out->my_version = 1;
            out->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP: {
            PF_ParamDef def{};
            def.param_type = PF_Param_FLOAT_SLIDER;
            std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "Number");
            def.u.fs_d.valid_max = def.u.fs_d.slider_max = 100;
            def.u.fs_d.dephault = 12.5f;
            Expect(in->inter.add_param(in->effect_ref, 5, &def) != 0, "a row out of order is refused");
            Expect(!in->inter.add_param(in->effect_ref, -1, &def), "a row is added");
            out->num_params = 2;
            return PF_Err_NONE;
        }
        case PF_Cmd_SMART_PRE_RENDER:
            return PreRender(in, static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return Render(in, static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}

/// Promises that the host did not keep, one a line; and how many it was asked about.
TESTER_EXPORT const char* HostTesterComplaints() {
    return complaints.c_str();
}
TESTER_EXPORT int HostTesterQuestions() {
    return questions;
}

TESTER_EXPORT PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer, PF_PluginDataCB callback, SPBasicSuite*,
                                             const char*, const char*) {
    const auto text = [](const char* characters) { return reinterpret_cast<const A_u_char*>(characters); };
    return callback(pointer, text("Host tester"), text("TEST host tester"), text("Tests"), text("TesterMain"),
                    kPluginKind_Effect, 13, 28, 8);
}
