// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library by OpenGL: the program's pixels, and contexts that go with their threads. The module's calls to EGL pass
// through this program, which counts them.

#include <EGL/egl.h>
#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;
using umbrant::Image;

std::atomic<int> made = 0;
std::atomic<int> open = 0;

Effect RealEffect() {
    return Effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kOpenGL, false, {}});
}

/// The panel's row of that name; empty without.
std::string OpenGLVersion(const Effect& effect) {
    for (const umbrant::Parameter& parameter : effect.Parameters()) {
        if (parameter.name == "OpenGL Version" && !parameter.itemNames.empty()) return parameter.itemNames[0];
    }
    return "";
}

class LibraryGl : public testing::Test {
 protected:
    void SetUp() override {
        // The row in which the effect reports its renderer reads "NULL" where it could make no context.
        for (const umbrant::Parameter& parameter : RealEffect().Parameters()) {
            const bool isNull = !parameter.itemNames.empty() && parameter.itemNames[0] == "NULL";
            if (isNull) GTEST_SKIP() << "no OpenGL driver: the effect's GPU rows read NULL";
        }
    }
};

TEST_F(LibraryGl, DrawsWhatTheProgramDraws) {
    const Folder folder;
    const auto layer = Disc8(61, 47);
    WritePixels(folder / "in.tif", layer);
    Effect effect = RealEffect();
    effect.Set("style/distance", 25);
    const Image image = effect.Render(layer.View());
    const Outcome outcome =
        RunUmbrant(folder, {"render", "in.tif", "-o", "out.tif", "--renderer", "gl", "--set", "style/distance=25"},
                   {{std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE}, ""});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(DifferentPixels(Read(folder / "out.tif").pixels, image.View()), 0);
    EXPECT_EQ(effect.RendererText(), "drawn by the GPU renderer: requested");
}

TEST_F(LibraryGl, AContextGoesWithItsThread) {
    const auto layer = Disc8(24, 24);
    const Effect effect = RealEffect();
    const Image alone = effect.Render(layer.View());
    const int before = open, madeBefore = made;
    for (int round = 0; round < 8; ++round) {
        std::thread([&] { EXPECT_EQ(DifferentBytes(effect.Render(layer.View()), alone), 0u); }).join();
        EXPECT_EQ(open, before);
    }
    EXPECT_EQ(made, madeBefore + 8) << "the calls were not counted";
}

TEST_F(LibraryGl, EachEffectHasItsOwnRenderer) {
    const auto layer = Disc8(24, 24);
    const Effect byGl = RealEffect();
    const Effect byProcessor({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
    const auto contextsFor = [&](const Effect& effect) {
        const int before = made;
        std::thread([&] { effect.Render(layer.View()); }).join();
        return made - before;
    };
    EXPECT_EQ(contextsFor(byProcessor), 0);
    EXPECT_EQ(contextsFor(byGl), 1);
    EXPECT_EQ(contextsFor(byProcessor), 0);
}

TEST_F(LibraryGl, OpenGLMayBeWishedForAfterTheProcessor) {
    const auto layer = Disc8(24, 24);
    const Image byGl = RealEffect().Render(layer.View());
    const Effect byProcessor({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
    EXPECT_EQ(OpenGLVersion(byProcessor), "not used");
    const Image before = byProcessor.Render(layer.View());
    {
        const Effect effect = RealEffect();
        EXPECT_NE(OpenGLVersion(effect), "not used");
        EXPECT_EQ(DifferentBytes(effect.Render(layer.View()), byGl), 0u);
        EXPECT_EQ(DifferentBytes(byProcessor.Render(layer.View()), before), 0u);
    }
    EXPECT_EQ(DifferentBytes(byProcessor.Render(layer.View()), before), 0u) << "the other set-up has gone";
}

TEST_F(LibraryGl, TwoEffectsOnTwoThreads) {
    const auto layer = Disc8(24, 24);
    Effect first = RealEffect(), second = RealEffect();
    second.Set("style/distance", 40);
    const Image alone[] = {first.Render(layer.View()), second.Render(layer.View())};
    std::atomic<std::size_t> different = 0;
    const auto draw = [&](const Effect& effect, const Image& expected) {
        for (int i = 0; i < 5; ++i) different += DifferentBytes(effect.Render(layer.View()), expected);
    };
    std::thread other([&] { draw(second, alone[1]); });
    draw(first, alone[0]);
    other.join();
    EXPECT_EQ(different, 0u);
}

}  // namespace

#define COUNTED extern "C" __attribute__((visibility("default")))

/// The library's own function. The module's library is nobody else's, so it is asked for by name.
template <typename Function>
Function OfLibrary(Function, const char* name) {
    static void* const library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function>(dlsym(library, name));
}

COUNTED EGLContext EGLAPIENTRY eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                                const EGLint* attributes) {
    static const auto driver = OfLibrary(&eglCreateContext, "eglCreateContext");
    const EGLContext context = driver(display, config, share, attributes);
    if (context != EGL_NO_CONTEXT) {
        ++made;
        ++open;
    }
    return context;
}

COUNTED EGLBoolean EGLAPIENTRY eglDestroyContext(EGLDisplay display, EGLContext context) {
    static const auto driver = OfLibrary(&eglDestroyContext, "eglDestroyContext");
    --open;
    return driver(display, context);
}

}  // namespace umbrant::host
