// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The module under any legal order of commands, with any values in its rows, any layers and any driver that fails:
// driven by the real host, on the fake platform, drawing through OpenGL or on the CPU. Whatever happens it
// returns, leaves nothing open and misbehaves in nothing.

#include <dlfcn.h>

#include <optional>
#include <stdexcept>
#include <thread>

#include "host/compositing/rectangles.h"
#include "host/drawing/new_drawing.h"
#include "host/session/effect_session.h"
#include "host/suites/drawbot/canvas.h"
#include "hostapi/custom_ui.h"
#include "hostapi/errors.h"
#include "tests/fuzz/fake_module.h"
#include "tests/fuzz/target.h"

using namespace umbrant::host;

namespace {

/// Frames beyond it are asked about and not drawn: the point here is not the host's own pixel loops.
constexpr std::int64_t kMostPixels = 1 << 16;

struct LoadedModule {
    Result<Module> module = Module::Load(FAKE_MODULE_FILE);
    SetFakePlatform set = nullptr;
    CountFakePlatform count = nullptr;

    LoadedModule() {
        Promise(bool(module), module ? "" : module.error().sentence);
        void* library = dlopen(FAKE_MODULE_FILE, RTLD_NOW | RTLD_NOLOAD);
        set = reinterpret_cast<SetFakePlatform>(dlsym(library, "UmbrantSetFakePlatform"));
        count = reinterpret_cast<CountFakePlatform>(dlsym(library, "UmbrantCountFakePlatform"));
        Promise(set && count, "the module on the fake platform takes a script");
    }
};

FakePlatformScript AnyScript(Bytes& bytes) {
    const int choice = bytes.Byte();
    const std::uint8_t nth = bytes.Byte() % 12;
    FakePlatformScript script;
    script.pixel = bytes.Byte();
    script.processor = (script.pixel & 1) != 0;
    if (choice < 128) return script;
    switch (choice % 6) {
        case 0:
            script.chooseFails = nth;
            break;
        case 1:
            script.createFails = nth;
            break;
        case 2:
            script.makeCurrentFails = nth;
            break;
        case 3:
            script.badFramebuffer = nth;
            break;
        case 4:
            script.badShader = nth;
            break;
        default:
            script.badProgram = nth;
    }
    return script;
}

World AnyWorld(Bytes& bytes, Depth depth) {
    const int width = bytes.Within(0, 40);
    const int height = bytes.Within(0, 24);
    World world = World::Create(width, height, depth);
    const auto value = bytes.Take<std::uint32_t>();
    for (int y = 0; y < height; ++y) {
        std::byte* row = world.Row(y);
        for (int i = 0; i < width * BytesPerPixel(depth); i += 4) std::memcpy(row + i, &value, 4);
    }
    world.Def().origin_x = bytes.Within(-8, 8);
    world.Def().origin_y = bytes.Within(-8, 8);
    return world;
}

/// A value for a row, of its type, which need not be one that a panel would allow.
PF_ParamDef AnyValue(Bytes& bytes, const ParamRow& row) {
    PF_ParamDef def = row.def;
    const bool legal = bytes.Byte() < 160;
    switch (row.def.param_type) {
        case PF_Param_FLOAT_SLIDER:
            def.u.fs_d.value = legal
                                   ? static_cast<double>(row.def.u.fs_d.slider_min) +
                                         bytes.Byte() / 255.0 *
                                             static_cast<double>(row.def.u.fs_d.slider_max - row.def.u.fs_d.slider_min)
                                   : bytes.Take<double>();
            break;
        case PF_Param_SLIDER:
            def.u.sd.value = legal ? row.def.u.sd.valid_min + bytes.Byte() : bytes.Take<A_long>();
            break;
        case PF_Param_POPUP:
            def.u.pd.value = legal ? bytes.Within(1, std::max<int>(1, row.def.u.pd.num_choices)) : bytes.Take<A_long>();
            break;
        case PF_Param_ANGLE:
            def.u.ad.value = bytes.Take<A_long>();
            break;
        case PF_Param_POINT:
            def.u.td.x_value = legal ? bytes.Within(-64, 127) * 65536 : bytes.Take<A_long>();
            def.u.td.y_value = legal ? bytes.Within(-64, 127) * 65536 : bytes.Take<A_long>();
            break;
        case PF_Param_COLOR:
            def.u.cd.value = bytes.Take<PF_Pixel>();
            break;
        case PF_Param_CHECKBOX:
            def.u.bd.value = bytes.Byte();
            break;
        default:
            break;
    }
    return def;
}

/// One life of the effect: what the bytes say, until they end.
class Life {
 public:
    Life(LoadedModule& loaded, Bytes& bytes) : loaded_(loaded), bytes_(bytes) {}

    void Live() {
        Script();
        SessionOptions options;
        options.layerFlags = bytes_.Flag() ? AEGP_LayerFlag_COLLAPSE : AEGP_LayerFlag_NONE;
        options.appId = bytes_.Byte() < 240 ? kAppID_AfterEffects : kAppID_Premiere;
        auto started = EffectSession::Start(*loaded_.module, options);
        if (!started) return;
        session_.emplace(std::move(*started));
        for (int step = 0; step < 24 && !bytes_.Empty(); ++step) Step();
        (void)session_->End();
        Judge("set-down");
    }

 private:
    void Script() {
        const FakePlatformScript script = AnyScript(bytes_);
        loaded_.set(&script, false);
    }

    void Step() {
        switch (bytes_.Within(0, 11)) {
            case 0:
                Script();
                break;
            case 1:
                (void)session_->About();
                break;
            case 2:
                (void)session_->UpdateParamsUI();
                break;
            case 3:
                (void)session_->UserChangedParam(bytes_.Within(0, 70));
                break;
            case 4:
                Event();
                break;
            case 5:
            case 6:
            case 7:
            case 8: {
                const int index = bytes_.Within(0, session_->Params().Count() - 1);
                LayerGeometry geometry = session_->PanelGeometry();
                const PF_ParamDef def = AnyValue(bytes_, session_->Params().Row(index));
                session_->Params().TakeValue(index, def, geometry);
                break;
            }
            default:
                Draw();
        }
    }

    void Event() {
        PF_EventExtra event{};
        event.e_type = bytes_.Within(0, 9);
        event.effect_win.index = bytes_.Within(0, 4);
        event.effect_win.area = static_cast<PF_EffectArea>(bytes_.Within(0, 3));
        event.effect_win.current_frame = {bytes_.Take<A_long>(), bytes_.Take<A_long>(), bytes_.Take<A_long>(),
                                          bytes_.Take<A_long>()};
        const auto drawing = NewDrawing("an event", 16, 16);
        if (!drawing) throw std::runtime_error(drawing.error().sentence);
        DrawbotCanvas canvas(**drawing, 1);
        event.contextH = canvas.Context();
        (void)session_->SendEvent(&event);
    }

    void Draw() {
        constexpr Depth kDepths[] = {Depth::k8, Depth::k32, Depth::k16, Depth::k8};
        const Depth depth = kDepths[bytes_.Byte() % 4];
        const World layer = AnyWorld(bytes_, depth);
        const World texture = AnyWorld(bytes_, depth);
        FrameRequest request;
        request.layer = &layer;
        request.texture = bytes_.Flag() ? &texture : nullptr;
        request.textureOrigin.h = bytes_.Within(-64, 64);
        request.textureOrigin.v = bytes_.Within(-64, 64);
        request.canvas = Canvas::kLayer;
        request.downsampleX = {1, static_cast<A_u_long>(bytes_.Within(1, 8))};
        request.downsampleY = {1, static_cast<A_u_long>(bytes_.Within(1, 8))};
        if (bytes_.Byte() > 200) {
            request.region = bytes_.Flag() ? PF_LRect{bytes_.Take<A_long>(), bytes_.Take<A_long>(),
                                                      bytes_.Take<A_long>(), bytes_.Take<A_long>()}
                                           : PF_LRect{-5, -5, bytes_.Within(-5, 50), bytes_.Within(-5, 50)};
        }
        request.time = bytes_.Byte() < 230 ? bytes_.Byte() : bytes_.Take<A_long>();
        request.quality = bytes_.Flag() ? PF_Quality_HI : PF_Quality_LO;
        const bool ownThread = bytes_.Byte() > 128;
        const auto work = [&] {
            const auto asked = session_->PreRender(request);
            if (!asked) return;
            const PF_LRect& rect = asked->resultRect;
            const std::int64_t width = std::int64_t{rect.right} - rect.left;
            const std::int64_t height = std::int64_t{rect.bottom} - rect.top;
            Promise(width >= 0 && height >= 0, "a result rectangle is not inside out");
            if (width > kMostPixels || height > kMostPixels || width * height > kMostPixels) return;
            const auto frame = session_->Render(request);
            Promise(frame || frame.error().kind == ErrorKind::kEffect, "a failed frame is the effect's failure");
            if (!frame) return;
            for (const CommandRecord& record : frame->commands) {
                Promise(record.balance.IsBalanced(), "a frame leaves open " + record.balance.Text());
            }
        };
        if (ownThread) {
            std::thread(work).join();
        } else {
            work();
        }
        Judge("a frame");
        const FakePlatformObjects alive = loaded_.count();
        Promise(alive.textures == 0 && alive.framebuffers == 0, "a frame leaves no texture and no framebuffer");
    }

    void Judge(const char* what) {
        for (const std::string& misstep : session_->Misbehaviour()) {
            // The banner's handle is the effect's own deliberate leak.
            if (misstep.find("after global set-down something is open") == 0) continue;
            Promise(false, std::string(what) + ": " + misstep);
        }
    }

    LoadedModule& loaded_;
    Bytes& bytes_;
    std::optional<EffectSession> session_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static LoadedModule& loaded = *new LoadedModule;  // Kept: to the end of the process
    Bytes bytes(data, size);
    // The thread's own record goes with its thread, so that no input depends on the one before.
    std::thread([&] { Life(loaded, bytes).Live(); }).join();
    const FakePlatformScript quiet;
    loaded.set(&quiet, true);
    return 0;
}
