// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What holds for a process as a whole: the choice of the renderer, and loading and unloading the platform layer.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/run_program.h"

namespace umbrant::effect {

using namespace host;

namespace {

/// Runs the probe with these changes to the environment; both outputs together.
ProgramRun Probe(const std::vector<std::string>& environment) {
    ProgramStart start;
    start.environment = environment;
    start.errors = Stream::AsOutput();
    return RunProgram({RENDERER_PROBE}, start);
}

bool IsSoftware(const std::string& renderer) {
    return renderer.find("llvmpipe") != std::string::npos;
}

TEST(RendererChoice, SoftwareIsForcedByTheEnvironment) {
    const ProgramRun outcome = Probe({"UMBRANT_GL=software"});
    if (outcome.code == 1) GTEST_SKIP() << "no software renderer on this machine: " << outcome.output;
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_TRUE(IsSoftware(outcome.output)) << outcome.output;
}

TEST(RendererChoice, HardwareIsForcedByTheEnvironmentAndNeverReplacedBySoftware) {
    const ProgramRun outcome = Probe({"UMBRANT_GL=hardware"});
    if (outcome.code == 0) {
        EXPECT_FALSE(IsSoftware(outcome.output)) << outcome.output;
    } else {
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.output.find("invalid pixel format\n"), std::string::npos) << outcome.output;
    }
}

TEST(RendererChoice, WithoutAWishThereIsOneWhereverSoftwareWorks) {
    if (Probe({"UMBRANT_GL=software"}).code == 1) GTEST_SKIP() << "no software renderer on this machine";
    EXPECT_EQ(Probe({"UMBRANT_GL"}).code, 0);
    EXPECT_EQ(Probe({"UMBRANT_GL="}).code, 0);
}

TEST(RendererChoice, AnythingElseIsRefusedWithOneLine) {
    const ProgramRun outcome = Probe({"UMBRANT_GL=Software"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output,
              "UMBRANT_GL is \"Software\"; it must be \"software\" or \"hardware\"\ninvalid pixel format\n");
}

TEST(RendererChoice, WithoutAnyDriverThereIsNoPixelFormat) {
    const ProgramRun outcome = Probe({"UMBRANT_GL", "__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent.json"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output, "invalid pixel format\n");
}

using DrawPixel = int (*)(int keep);

/// The module, loaded for the length of a scope.
class Loaded {
 public:
    Loaded() : handle_(dlopen(RELOADED_MODULE, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_) draw = reinterpret_cast<DrawPixel>(dlsym(handle_, "DrawPixel"));
    }
    ~Loaded() { dlclose(handle_); }
    DrawPixel draw = nullptr;

 private:
    void* handle_;
};

class Reloading : public ::testing::Test {
 protected:
    void SetUp() override {
        Loaded module;
        ASSERT_NE(module.draw, nullptr) << dlerror();
        int pixel = -1;
        std::thread([&] { pixel = module.draw(0); }).join();
        if (pixel < 0) GTEST_SKIP() << "no OpenGL 3.3 core context can be made on this machine";
    }
};

TEST_F(Reloading, TheModuleMayBeUnloadedAndLoadedAgain) {
    for (int round = 0; round < 3; ++round) {
        Loaded module;
        ASSERT_NE(module.draw, nullptr);
        int pixel = -1;
        std::thread([&] { pixel = module.draw(0); }).join();
        EXPECT_EQ(pixel, 255) << round;
    }
}

TEST_F(Reloading, AThreadsContextOutlivesTheHostsUnloading) {
    for (int round = 0; round < 2; ++round) {
        std::thread([] {
            {
                Loaded module;
                EXPECT_EQ(module.draw(1), 255);
            }
            Loaded again;
            EXPECT_EQ(again.draw(1), 255);
        }).join();
    }
}

TEST_F(Reloading, OnTheMainThreadToo) {
    for (int round = 0; round < 2; ++round) {
        Loaded module;
        EXPECT_EQ(module.draw(1), 255);
    }
}

// The driver of the renderer that is not wanted was asked too, and may end with the process.
TEST(DriverCode, StaysWhateverTheModuleFound) {
    for (const char* variable : {"UMBRANT_GL=", "UMBRANT_GL=software", "UMBRANT_GL=hardware",
                                 "__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent.json"}) {
        ProgramStart start;
        start.environment = {variable};
        const ProgramRun outcome = RunProgram({RELOAD_PROBE, RELOADED_MODULE}, start);
        EXPECT_EQ(outcome.code, 0) << variable;
        EXPECT_TRUE(outcome.output == "255 stays\n" || outcome.output == "-1 stays\n")
            << variable << ": " << outcome.output;
    }
}

}  // namespace

}  // namespace umbrant::effect
