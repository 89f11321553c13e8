// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// An effect that copies its layer, and does one wrong thing to its process at one place. The environment chooses:
// UMBRANT_TEST_LEAVES=PLACE:DEED, or PLACE@FRAME:DEED for one frame of many. Places are "constructor", "registration",
// "destructor", "dispose" (of the pre-render data) and the names in kPlaces; deeds are in Do.

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "hostapi/commands.h"
#include "hostapi/registration.h"
#include "hostapi/smart_render.h"
#include "hostapi/suites/world_transform_suite.h"

#define MODULE_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

constexpr struct {
    PF_Cmd command;
    const char* name;
} kPlaces[] = {{PF_Cmd_ABOUT, "about"},
               {PF_Cmd_GLOBAL_SETUP, "set-up"},
               {PF_Cmd_GLOBAL_SETDOWN, "set-down"},
               {PF_Cmd_PARAMS_SETUP, "parameters"},
               {PF_Cmd_SEQUENCE_SETUP, "sequence"},
               {PF_Cmd_UPDATE_PARAMS_UI, "panel"},
               {PF_Cmd_SMART_PRE_RENDER, "pre-render"},
               {PF_Cmd_SMART_RENDER, "render"}};

void Do(const std::string& deed) {
    if (deed == "exit") std::exit(0);
    if (deed == "exit-7") std::exit(7);
    if (deed == "quick") _exit(0);
    if (deed == "abort") std::abort();
    if (deed == "crash") {
        signal(SIGSEGV, SIG_DFL);
        raise(SIGSEGV);
    }
    if (deed == "kill") raise(SIGKILL);
    if (deed == "chdir" && chdir("/") != 0) std::abort();
    if (deed == "thread") std::thread([] { std::exit(0); }).join();
    if (deed == "babble") {
        // Onto whatever connection the process has: it is no message.
        for (int descriptor = 3; descriptor < 10; ++descriptor) (void)!write(descriptor, "\x04\0\0\0babble", 10);
        sleep(600);
    }
    if (deed == "descriptors") {
        // What is open besides the three standard streams, by name, for a test to read.
        for (int descriptor = 3; descriptor < 1024; ++descriptor) {
            char name[512] = {};
            const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
            if (readlink(link.c_str(), name, sizeof(name) - 1) > 0) std::fprintf(stderr, "open: %s\n", name);
        }
    }
    if (deed == "signals") {
        sigset_t blocked;
        sigprocmask(SIG_BLOCK, nullptr, &blocked);
        for (int number = 1; number < 32; ++number) {
            struct sigaction action {};
            sigaction(number, nullptr, &action);
            if (sigismember(&blocked, number) == 1) std::fprintf(stderr, "blocked: %d\n", number);
            if (action.sa_handler == SIG_IGN) std::fprintf(stderr, "ignored: %d\n", number);
        }
    }
    if (deed == "hang") {
        std::fprintf(stderr, "hangs: %d\n", static_cast<int>(getpid()));
        for (;;) sleep(600);
    }
    if (deed == "fork-and-exit") {
        // What it leaves behind holds everything open that it had open.
        const pid_t process = fork();
        if (process == 0) {
            for (;;) sleep(600);
        }
        std::fprintf(stderr, "left: %d\n", static_cast<int>(process));
        _exit(3);
    }
}

/// The deed of the environment at this place, or nothing.
std::string DeedAt(const std::string& place, A_long frame = -1) {
    const char* leaves = std::getenv("UMBRANT_TEST_LEAVES");
    const std::string text = leaves ? leaves : "";
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) return "";
    const std::string where = text.substr(0, colon);
    if (where != place && where != place + "@" + std::to_string(frame)) return "";
    return text.substr(colon + 1);
}

struct AtLoad {
    AtLoad() { Do(DeedAt("constructor")); }
    ~AtLoad() { Do(DeedAt("destructor")); }
} atLoad;

PF_Err ParamsSetup(PF_InData* in, PF_OutData* out) {
    PF_ParamDef number{};
    number.param_type = PF_Param_FLOAT_SLIDER;
    std::snprintf(number.name_do_not_use_directly, sizeof(number.name_do_not_use_directly), "Number");
    number.u.fs_d.valid_max = number.u.fs_d.slider_max = 100;
    number.u.fs_d.dephault = 5;
    out->num_params = 2;
    return in->inter.add_param(in->effect_ref, -1, &number);
}

void Dispose(void*) {
    Do(DeedAt("dispose"));
}

PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra) {
    PF_CheckoutResult layer{};
    const PF_RenderRequest request = extra->input->output_request;
    if (const PF_Err error = extra->cb->checkout_layer(in->effect_ref, 0, 0, &request, in->current_time, in->time_step,
                                                       in->time_scale, &layer)) {
        return error;
    }
    extra->output->result_rect = layer.result_rect;
    extra->output->max_result_rect = layer.max_result_rect;
    extra->output->pre_render_data = &atLoad;
    extra->output->delete_pre_render_data_func = Dispose;
    return PF_Err_NONE;
}

PF_Err Render(PF_InData* in, PF_SmartRenderExtra* extra) {
    PF_EffectWorld* layer = nullptr;
    PF_EffectWorld* output = nullptr;
    if (const PF_Err error = extra->cb->checkout_layer_pixels(in->effect_ref, 0, &layer)) return error;
    if (const PF_Err error = extra->cb->checkout_output(in->effect_ref, &output)) return error;
    const std::string deed = DeedAt("render", in->time_step ? in->current_time / in->time_step : 0);
    if (deed == "widen-before") {
        output->width *= 50;
        output->rowbytes *= 50;
        return in->utils->fill(in->effect_ref, nullptr, nullptr, output);
    }
    const PF_Err error = in->utils->copy(in->effect_ref, layer, output, nullptr, nullptr);
    if (deed == "widen") {
        output->width *= 2;
        output->height *= 2;
        output->rowbytes *= 100;
        output->origin_x += 3;
        layer->width *= 100;
    }
    if (deed == "steal") output->data = nullptr;
    extra->cb->checkin_layer_pixels(in->effect_ref, 0);
    return error;
}

}  // namespace

MODULE_EXPORT PF_Err LeaverMain(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef*[], PF_LayerDef*,
                                void* extra) {
    const A_long frame = in->time_step ? in->current_time / in->time_step : 0;
    for (const auto& place : kPlaces) {
        if (place.command == command) Do(DeedAt(place.name, frame));
    }
    switch (command) {
        case PF_Cmd_GLOBAL_SETUP:
            out->my_version = 1;
            out->out_flags = PF_OutFlag_SEND_UPDATE_PARAMS_UI;
            out->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE |
                              PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return ParamsSetup(in, out);
        case PF_Cmd_SMART_PRE_RENDER:
            return PreRender(in, static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return Render(in, static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}

MODULE_EXPORT PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer, PF_PluginDataCB callback, SPBasicSuite*,
                                             const char*, const char*) {
    Do(DeedAt("registration"));
    const auto text = [](const char* characters) { return reinterpret_cast<const A_u_char*>(characters); };
    return callback(pointer, text("Leaver"), text("TEST leaver"), text("Tests"), text("LeaverMain"), kPluginKind_Effect,
                    13, 28, 8);
}
