// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The GPU's work one pass at a time, at the sizes of a default 1920 x 1080 frame, with a glFinish after each draw; and
// the layer's way to the GPU and back, with the host's own suites answering. items_per_second is the pixels of the
// target, taps the texture reads. A pass is named by the shadow types that draw it.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "gl/context.h"
#include "gl/framebuffer.h"
#include "gl/program.h"
#include "gl/quad.h"
#include "host/compositing/world.h"
#include "host/suites/services.h"
#include "host/suites/tables.h"
#include "render/passes/draw.h"
#include "render/shadow_shaders.h"

using namespace umbrant::effect;

using namespace umbrant::host;

namespace {

// A layer, its default padding of 250 pixels on each side, and the default resolution of 0.6.
constexpr int kLayerWidth = 1920;
constexpr int kLayerHeight = 1080;
constexpr int kPaddedWidth = kLayerWidth + 500;
constexpr int kPaddedHeight = kLayerHeight + 500;
constexpr int kBlurWidth = kPaddedWidth * 6 / 10;
constexpr int kBlurHeight = kPaddedHeight * 6 / 10;
constexpr int kSoftness = 250;

constexpr char kNoContext[] = "no OpenGL 3.3 core context can be made on this machine";

/// A context with the effect's programs, and a host that answers upload and read-back.
class Rig {
 public:
    /// Null where no context can be made.
    static Rig* Get() {
        static const std::unique_ptr<Rig> rig = Make();
        return rig.get();
    }

    Program programs[kProgramCount];
    PF_OutData out{};
    GLuint quad = 0;
    GLuint ratioQuad = 0;

    unsigned Use(int slot) {
        programs[slot].Use(&out);
        return programs[slot].Get(&out);
    }
    PF_Err Upload(Framebuffer& texture, World& world) {
        myParams params{};
        params.in_data = &in_;
        params.suites = &suites_;
        params.bitDepth = static_cast<int16_t>(world.PixelDepth());
        return texture.FBO_Init_PF_World(&world.Def(), &params, &out);
    }
    PF_Err ReadBack(Framebuffer& source, World& world) {
        PF_PixelFloat colour{1, 0.25f, 0.5f, 0.75f};
        PF_Pixel colour8{255, 1, 2, 3};
        return source.DownloadBuffer(&in_, suites_, &colour, &colour8, &world.Def(), &out);
    }

 private:
    static std::unique_ptr<Rig> Make() {
        CGLContextObj context = CreateContext(nullptr, nullptr);
        if (!context) return nullptr;
        SetCurrentContext(context);
        return std::unique_ptr<Rig>(new Rig);
    }
    Rig() : scope_(&services_, nullptr), ref_(&services_, nullptr), suites_(&basicSuite) {
        in_.pica_basicP = &basicSuite;
        in_.utils = &utilCallbacks;
        in_.effect_ref = ref_.Pointer();
        InitPrograms(programs, &out);
        GLuint buffer = 0;
        InitQuad(&quad, &buffer);
        InitQuadRatio(&ratioQuad, &buffer, 0.5f, 0.5f);
        EnableScreenBlend();
        glBindVertexArray(quad);
    }

    Services services_;
    ServiceScope scope_;
    EffectRef ref_;
    AEGP_SuiteHandler suites_;
    PF_InData in_{};
};

World Layer(Depth depth) {
    return World::Create(kLayerWidth, kLayerHeight, depth, false);
}

/// A layer's texture (8 or 32 bits), or a render target as the source of the next pass (16).
void MakeSource(Rig& rig, int bits, int width, int height, Framebuffer& source) {
    if (bits == 16) {
        source.FramebufferInit(width, height, 1, 8, &rig.out);
        source.BindFBO(PING, true, &rig.out);
        return;
    }
    World layer = Layer(bits == 8 ? Depth::k8 : Depth::k32);
    rig.Upload(source, layer);
}

/// Draws `program` into a cleared target until the GPU has finished, again and again. `pixels` are those that the quad
/// covers, each with `taps` texture reads.
void Repeat(benchmark::State& state, Rig& rig, Framebuffer& source, Framebuffer& target, double pixels, double taps) {
    glFinish();
    for (auto _ : state) {
        target.BindFBO(PING, true, &rig.out);
        source.BindTAO(PING, &rig.out);
        DrawQuad();
        glFinish();
    }
    const double draws = static_cast<double>(state.iterations());
    state.SetItemsProcessed(static_cast<int64_t>(pixels * draws));
    state.counters["taps"] = benchmark::Counter(pixels * taps * draws, benchmark::Counter::kIsRate);
}

void Blur(benchmark::State& state, int slot, int sourceBits) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    const int steps = static_cast<int>(state.range(0));
    const bool across = slot == kProgramBlurW;
    Framebuffer source;
    Framebuffer target;
    MakeSource(*rig, sourceBits, kBlurWidth, kBlurHeight, source);
    target.FramebufferInit(kBlurWidth, kBlurHeight, 1, 8, &rig->out);
    const unsigned id = rig->Use(slot);
    SendMatrix(id, kIdentity);
    SendInt(id, "steps", steps);
    SendFloat(id, "stride", static_cast<double>(kSoftness) / steps / (across ? kLayerWidth : kPaddedHeight));
    SendFloat(id, "opacityF", 0.5);
    SendFloat(id, "scaleW", sourceBits == 16 ? 1 : static_cast<double>(kPaddedWidth) / kLayerWidth);
    SendFloat(id, "scaleH", sourceBits == 16 ? 1 : static_cast<double>(kPaddedHeight) / kLayerHeight);
    Repeat(state, *rig, source, target, 1.0 * kBlurWidth * kBlurHeight, 2 * steps + 1);
}

void Invert(benchmark::State& state, int sourceBits) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    Framebuffer source;
    Framebuffer target;
    MakeSource(*rig, sourceBits, 0, 0, source);
    target.FramebufferInit(kBlurWidth, kBlurHeight, 1, 8, &rig->out);
    const unsigned id = rig->Use(kProgramInvert);
    SendMatrix(id, kIdentity);
    SendFloat(id, "opacityF", 1);
    SendFloat(id, "scaleW", 1);
    SendFloat(id, "scaleH", 1);
    Repeat(state, *rig, source, target, 1.0 * kBlurWidth * kBlurHeight, 1);
}

/// The normal and the inner shadow's placement: a quad scaled about the centre.
void Place(benchmark::State& state) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    Framebuffer source;
    Framebuffer target;
    MakeSource(*rig, 16, kBlurWidth, kBlurHeight, source);
    target.FramebufferInit(kPaddedWidth, kPaddedHeight, 1, 8, &rig->out);
    constexpr float kShare = 0.9f;
    const float xform[16] = {kShare, 0, 0, 0, 0, kShare, 0, 0, 0, 0, 1, 0, 0.1f, -0.1f, 0, 1};
    SendMatrix(rig->Use(kProgramPlace), xform);
    Repeat(state, *rig, source, target, static_cast<double>(kShare * kShare) * kPaddedWidth * kPaddedHeight, 1);
}

/// The radial shadow's copy of the layer into its border.
void Pad(benchmark::State& state, int sourceBits) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    Framebuffer source;
    Framebuffer target;
    MakeSource(*rig, sourceBits, 0, 0, source);
    target.FramebufferInit(kPaddedWidth, kPaddedHeight, 1, 8, &rig->out);
    const float sx = static_cast<float>(kLayerWidth) / kPaddedWidth;
    const float sy = static_cast<float>(kLayerHeight) / kPaddedHeight;
    const float xform[16] = {sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    SendMatrix(rig->Use(kProgramCopy), xform);
    Repeat(state, *rig, source, target, 1.0 * kLayerWidth * kLayerHeight, 1);
}

/// The radial shadow's placement: a quad in the lower left, scaled about the origin.
void PlaceRadial(benchmark::State& state) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    Framebuffer source;
    Framebuffer target;
    MakeSource(*rig, 16, kPaddedWidth, kPaddedHeight, source);
    target.FramebufferInit(2 * kPaddedWidth, 2 * kPaddedHeight, 1, 8, &rig->out);
    constexpr float kScale = 1.5f;
    const float xform[16] = {kScale, 0, 0, 0, 0, kScale, 0, 0, 0, 0, 1, 0, kScale - 1, kScale - 1, 0, 1};
    SendMatrix(rig->Use(kProgramCopy), xform);
    glBindVertexArray(rig->ratioQuad);
    Repeat(state, *rig, source, target, static_cast<double>(kScale * kScale) * kPaddedWidth * kPaddedHeight, 1);
    glBindVertexArray(rig->quad);
}

/// The render targets of a default frame, made and freed: a ping-pong pair of each size and the sum.
void Targets(benchmark::State& state) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    for (auto _ : state) {
        Framebuffer pair;
        Framebuffer sum;
        pair.FramebufferInit(kBlurWidth, kBlurHeight, 2, 8, &rig->out);
        sum.FramebufferInit(kPaddedWidth, kPaddedHeight, 1, 8, &rig->out);
        glFinish();
    }
    state.SetItemsProcessed(state.iterations() * (2 * kBlurWidth * kBlurHeight + kPaddedWidth * kPaddedHeight));
}

void Upload(benchmark::State& state, Depth depth) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    World layer = Layer(depth);
    for (auto _ : state) {
        Framebuffer texture;
        if (rig->Upload(texture, layer)) state.SkipWithError("the upload failed");
        glFinish();
    }
    state.SetItemsProcessed(state.iterations() * kLayerWidth * kLayerHeight);
}

void ReadBack(benchmark::State& state, Depth depth) {
    Rig* rig = Rig::Get();
    if (!rig) return state.SkipWithError(kNoContext);
    Framebuffer source;
    const auto bits = static_cast<unsigned short>(depth);
    source.FramebufferInit(kPaddedWidth, kPaddedHeight, 1, bits, &rig->out);
    source.BindFBO(PING, true, &rig->out);
    glFinish();
    World output = World::Create(kPaddedWidth, kPaddedHeight, depth, false);
    for (auto _ : state) {
        if (rig->ReadBack(source, output)) state.SkipWithError("the read-back failed");
    }
    state.SetItemsProcessed(state.iterations() * kPaddedWidth * kPaddedHeight);
}

template <typename... Arguments>
benchmark::internal::Benchmark* Register(const std::string& name, void (*function)(benchmark::State&, Arguments...),
                                         Arguments... arguments) {
    return benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { function(state, arguments...); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
    const auto steps = [](benchmark::internal::Benchmark* row) {
        row->ArgName("steps")->Arg(1)->Arg(15)->Arg(75)->Arg(150);
    };
    steps(Register("blur-across/normal/8-bit", Blur, kProgramBlurW, 8));
    steps(Register("blur-across/normal/float", Blur, kProgramBlurW, 32));
    steps(Register("blur-across/inner,radial", Blur, kProgramBlurW, 16));
    steps(Register("blur-down/normal,inner,radial", Blur, kProgramBlurH, 16));
    Register("place/normal,inner", Place);
    Register("place/radial", PlaceRadial);
    Register("invert/inner/8-bit", Invert, 8);
    Register("invert/inner/float", Invert, 32);
    Register("pad/radial/8-bit", Pad, 8);
    Register("pad/radial/float", Pad, 32);
    Register("targets", Targets);
    Register("upload/8-bit", Upload, Depth::k8);
    Register("upload/float", Upload, Depth::k32);
    Register("read-back/8-bit", ReadBack, Depth::k8);
    Register("read-back/float", ReadBack, Depth::k32);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    if (const Rig* rig = Rig::Get()) {
        static_cast<void>(rig);
        benchmark::AddCustomContext("renderer", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
