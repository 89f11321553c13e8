// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which renderer draws, and how that is reported; on the real module, without any OpenGL.

#include "host/session/renderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

GpuStrings Gpu(const char* renderer) {
    const char* version = std::string(renderer) == "NULL" ? "NULL" : "4.5";
    return {"Vendor", renderer, version, "4.50"};
}

TEST(DecideRenderer, ByWishAndByWhatTheEffectFound) {
    const struct {
        const char* name;
        RendererPreference preference;
        const char* renderer;
        bool processor;
        const char* why;
    } rows[] = {
        {"hardware", RendererPreference::kAuto, "NVIDIA H200/PCIe/SSE2", false,
         "OpenGL is hardware, NVIDIA H200/PCIe/SSE2"},
        {"llvmpipe", RendererPreference::kAuto, "llvmpipe (LLVM 15.0.6, 256 bits)", true,
         "OpenGL is software, llvmpipe (LLVM 15.0.6, 256 bits)"},
        {"softpipe", RendererPreference::kAuto, "softpipe", true, "OpenGL is software, softpipe"},
        {"the classic rasterizer", RendererPreference::kAuto, "Software Rasterizer", true,
         "OpenGL is software, Software Rasterizer"},
        {"a layer over software", RendererPreference::kAuto, "zink (llvmpipe (LLVM 15.0.6))", true,
         "OpenGL is software, zink (llvmpipe (LLVM 15.0.6))"},
        {"no OpenGL", RendererPreference::kAuto, "NULL", true, "OpenGL is not available"},
        {"an effect without the row", RendererPreference::kAuto, "", false, "the effect names no renderer"},
        {"OpenGL wanted where it is software", RendererPreference::kOpenGL, "llvmpipe", false, "requested"},
        {"OpenGL wanted where there is none", RendererPreference::kOpenGL, "NULL", false, "requested"},
        {"the CPU renderer wanted although there is hardware", RendererPreference::kProcessor, "NVIDIA", true,
         "requested"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const RendererDecision decision = DecideRenderer(row.preference, Gpu(row.renderer), true);
        EXPECT_EQ(decision.processor, row.processor);
        EXPECT_EQ(decision.why, row.why);
        EXPECT_STREQ(decision.Name(), row.processor ? "cpu" : "gl");
    }
}

TEST(DecideRenderer, WithoutAGraphicsDeviceNothingIsLookedAt) {
    const RendererDecision decision =
        DecideRenderer(RendererPreference::kAuto, Gpu("Processor (avx2, 2 threads)"), false);
    EXPECT_TRUE(decision.processor);
    EXPECT_EQ(decision.why, "no graphics device was found");
    EXPECT_FALSE(DecideRenderer(RendererPreference::kOpenGL, Gpu("llvmpipe"), false).processor);
    EXPECT_EQ(DecideRenderer(RendererPreference::kAuto, Gpu(""), false).why, "the effect names no renderer");
}

TEST(RendererOfSetUp, OnlyTheProcessorNeedsNoDriver) {
    for (const bool hasDevice : {true, false}) {
        EXPECT_EQ(RendererOfSetUp(RendererPreference::kProcessor, hasDevice), UMBRANT_Renderer_PROCESSOR);
        EXPECT_EQ(RendererOfSetUp(RendererPreference::kOpenGL, hasDevice), UMBRANT_Renderer_OPENGL);
    }
    EXPECT_EQ(RendererOfSetUp(RendererPreference::kAuto, true), UMBRANT_Renderer_OPENGL);
    EXPECT_EQ(RendererOfSetUp(RendererPreference::kAuto, false), UMBRANT_Renderer_PROCESSOR);
}

TEST(GraphicsDevice, ByTheNamesOfItsDriver) {
    const struct {
        const char* name;
        bool isOne;
    } rows[] = {{"dri/renderD128", true}, {"dri/renderD131", true}, {"nvidiactl", true},  {"dxg", true},
                {"mali0", true},          {"kgsl-3d0", true},       {"dri/card0", false}, {"dri/by-path", false},
                {"null", false},          {"nvidia-modeset", false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder devices;
        EXPECT_FALSE(HasGraphicsDevice(devices.Path()));
        std::filesystem::create_directories((devices / row.name).parent_path());
        WriteBytes(devices / row.name, "");
        EXPECT_EQ(HasGraphicsDevice(devices.Path()), row.isOne);
    }
    EXPECT_FALSE(HasGraphicsDevice("/nowhere"));
}

/// Why the processor draws where there is no OpenGL: on a machine with a device it has been looked for.
std::string WhyByProcessor() {
    return HasGraphicsDevice() ? "OpenGL is not available" : "no graphics device was found";
}

class CliRenderer : public testing::Test {
 protected:
    CliRenderer() {
        std::filesystem::create_directory(folder_ / "no_drivers");
        WriteLayer(folder_ / "in.png", 12, 9, {255, 200, 100, 50});
    }

    /// On a machine without any OpenGL.
    Outcome Run(const std::vector<std::string>& arguments, std::vector<std::string> environment = {}) {
        environment.push_back("__EGL_VENDOR_LIBRARY_DIRS=" + (folder_ / "no_drivers").string());
        environment.push_back(std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE);
        return RunUmbrant(folder_, arguments, {environment, ""});
    }
    static std::vector<std::string> Render(std::vector<std::string> more) {
        std::vector<std::string> all = {"render", "in.png",           "-o",    "out.png",         "--json",
                                        "--set",  "style/distance=4", "--set", "style/softness=2"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    const Folder folder_;
};

TEST_F(CliRenderer, WithoutOpenGLTheProcessorDrawsAllShadows) {
    for (const char* type : {"normal", "inner", "radial"}) {
        for (const char* depth : {"8", "32"}) {
            SCOPED_TRACE(std::string(type) + " " + depth);
            const Outcome outcome = Run(Render({"--set", std::string("style/shadow-type=") + type, "--depth", depth}));
            ASSERT_EQ(outcome.code, 0) << outcome.err;
            const json report = ParseJsonOrDiscard(outcome.out);
            ASSERT_TRUE(report.is_object()) << outcome.out;
            EXPECT_EQ(report["renderer"], (json{{"used", "cpu"}, {"why", WhyByProcessor()}}));
            EXPECT_THAT(report["gpu"]["renderer"].get<std::string>(),
                        StartsWith(HasGraphicsDevice() ? "NULL" : "Processor ("));
            EXPECT_EQ(report["misbehaviour"], json::array());
            EXPECT_EQ(report["message"], "");
        }
    }
}

TEST_F(CliRenderer, WishesAreHeard) {
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::vector<std::string> environment;
        int code;
        const char* used;  ///< in the report; null where there is none
    } rows[] = {
        {"auto", {"--renderer", "auto"}, {}, 0, "cpu"},
        {"cpu", {"--renderer", "cpu"}, {}, 0, "cpu"},
        {"cpu by the environment", {}, {"UMBRANT_RENDERER=cpu"}, 0, "cpu"},
        {"an empty variable is none", {}, {"UMBRANT_RENDERER="}, 0, "cpu"},
        {"the option wins", {"--renderer", "cpu"}, {"UMBRANT_RENDERER=gl"}, 0, "cpu"},
        {"auto beside the environment", {"--renderer", "auto"}, {"UMBRANT_RENDERER=gl"}, 0, "cpu"},
        {"auto by the environment", {}, {"UMBRANT_RENDERER=auto"}, 0, "cpu"},
        {"gl where there is none", {"--renderer", "gl"}, {}, 1, nullptr},
        {"gl by the environment", {}, {"UMBRANT_RENDERER=gl"}, 1, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Run(Render(row.arguments), row.environment);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        if (row.used) {
            EXPECT_EQ(ParseJson(outcome.out)["renderer"]["used"], row.used);
        } else {
            EXPECT_THAT(outcome.err, HasSubstr("no OpenGL context could be made, so the effect cannot draw: "));
        }
    }
}

TEST_F(CliRenderer, WrongWishesAreToldBeforeAnythingIsDrawn) {
    const auto entries = folder_.Entries();
    const Outcome option = Run(Render({"--renderer", "gpu"}));
    EXPECT_EQ(option.code, 2);
    EXPECT_THAT(option.err, HasSubstr("--renderer: gpu not in {auto,gl,cpu}"));
    for (const std::vector<std::string>& arguments : {Render({}), {"info"}}) {
        const Outcome variable = Run(arguments, {"UMBRANT_RENDERER=fast"});
        EXPECT_EQ(variable.code, 2);
        EXPECT_THAT(variable.err, HasSubstr("UMBRANT_RENDERER is \"fast\"; it must be \"gl\", \"cpu\" or \"auto\""));
        const Outcome openGL = Run(arguments, {"UMBRANT_GL=xx"});
        EXPECT_EQ(openGL.code, 2);
        EXPECT_THAT(openGL.err, HasSubstr("UMBRANT_GL is \"xx\"; it must be \"software\" or \"hardware\"\n"));
        EXPECT_EQ(variable.out, "");
    }
    EXPECT_EQ(folder_.Entries(), entries);
}

/// What the loader opened while the program ran, apart from the libraries that it is linked with.
class CliDrivers : public testing::Test {
 protected:
    std::string Loaded(const std::vector<std::string>& arguments, std::vector<std::string> environment = {}) {
        environment.insert(environment.end(), {"LD_DEBUG=files", "LD_DEBUG_OUTPUT=" + (folder_ / "files").string(),
                                               std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE});
        const Outcome outcome = RunUmbrant(folder_, arguments, {environment, ""});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        std::string all;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            if (entry.path().stem() == "files") all += ReadBytes(entry.path());
        }
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            if (entry.path().stem() == "files") std::filesystem::remove(entry.path());
        }
        EXPECT_THAT(all, HasSubstr("umbrant2.so")) << "nothing was recorded";
        return all;
    }
    static bool HasDriver(const std::string& loaded) {
        return loaded.find("libEGL_") != std::string::npos || loaded.find("libLLVM") != std::string::npos ||
               loaded.find("libgallium") != std::string::npos || loaded.find("_dri.so") != std::string::npos;
    }

    const Folder folder_;
};

TEST_F(CliDrivers, TheProcessorLoadsNone) {
    WriteLayer(folder_ / "in.png", 12, 9, {255, 200, 100, 50});
    const std::vector<std::string> render = {"render", "in.png", "-o", "out.png", "--renderer"};
    const auto with = [&](const char* renderer) {
        std::vector<std::string> all = render;
        all.push_back(renderer);
        return all;
    };
    EXPECT_FALSE(HasDriver(Loaded(with("cpu"))));
    EXPECT_FALSE(HasDriver(Loaded({"params"}, {"UMBRANT_RENDERER=cpu"})));
    EXPECT_FALSE(HasDriver(Loaded({"info"}, {"UMBRANT_RENDERER=cpu"})));
    if (!HasGraphicsDevice()) {
        EXPECT_FALSE(HasDriver(Loaded(with("auto"))));
        EXPECT_FALSE(HasDriver(Loaded({"panel", "--json"})));
    }
    const std::string info = Loaded({"info"}, {"UMBRANT_RENDERER=gl"});
    if (info.find("libEGL_") != std::string::npos) {
        EXPECT_TRUE(HasDriver(info));
    }
}

TEST_F(CliRenderer, InfoAndVerboseTellItToo) {
    const Outcome info = Run({"info"});
    EXPECT_THAT(info.out, HasSubstr("Drawn by         the CPU renderer: " + WhyByProcessor() + "\n")) << info.err;
    const Outcome asked = Run({"info"}, {"UMBRANT_RENDERER=gl"});
    EXPECT_THAT(asked.out, HasSubstr("Drawn by         the GPU renderer: requested\n"));
    const Outcome machine = Run({"info", "--json"});
    EXPECT_EQ(ParseJson(machine.out)["renderer"]["used"], "cpu");
    const Outcome verbose = Run(Render({"--verbose"}));
    EXPECT_THAT(verbose.err, HasSubstr("drawn by the CPU renderer: " + WhyByProcessor() + "\n"));
}

}  // namespace

}  // namespace umbrant::host
