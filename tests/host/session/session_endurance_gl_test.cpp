// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Two hundred frames on one thread: nothing is compiled again, nothing is left open, no GL object stays behind and the
// process does not grow. The module's calls to GL are counted on their way: this program defines the few functions
// itself, and the loader finds them before the driver's.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/compositing/rectangles.h"
#include "host/session/effect_session.h"
#include "platform/gl_api.h"
#include "tests/support/resident_memory.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using ::testing::IsEmpty;

/// What the module has asked of GL since the program began, and how many objects are alive.
struct GLCounts {
    int compiled = 0;
    int linked = 0;
    int textures = 0;
    int framebuffers = 0;
    int buffers = 0;
    int vertexArrays = 0;
    int programs = 0;
    int shaders = 0;
    bool operator==(const GLCounts&) const = default;
};

std::ostream& operator<<(std::ostream& out, const GLCounts& c) {
    return out << "compiled " << c.compiled << ", linked " << c.linked << ", textures " << c.textures
               << ", framebuffers " << c.framebuffers << ", buffers " << c.buffers << ", vertex arrays "
               << c.vertexArrays << ", programs " << c.programs << ", shaders " << c.shaders;
}

// Threads that end delete their objects beside threads that draw.
GLCounts counts;
std::mutex countsGuard;

void Count(int GLCounts::*what, int change) {
    const std::lock_guard lock(countsGuard);
    counts.*what += change;
}

GLCounts Counted() {
    const std::lock_guard lock(countsGuard);
    return counts;
}

template <typename Function>
Function Driver(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int NonZero(GLsizei n, const GLuint* names) {
    int count = 0;
    for (GLsizei i = 0; i < n; ++i) count += names[i] != 0;
    return count;
}

}  // namespace

#define COUNTED extern "C" __attribute__((visibility("default")))

COUNTED void APIENTRY glCompileShader(GLuint shader) {
    Count(&GLCounts::compiled, 1);
    Driver<PFNGLCOMPILESHADERPROC>("glCompileShader")(shader);
}
COUNTED void APIENTRY glLinkProgram(GLuint program) {
    Count(&GLCounts::linked, 1);
    Driver<PFNGLLINKPROGRAMPROC>("glLinkProgram")(program);
}
COUNTED GLuint APIENTRY glCreateShader(GLenum type) {
    Count(&GLCounts::shaders, 1);
    return Driver<PFNGLCREATESHADERPROC>("glCreateShader")(type);
}
COUNTED void APIENTRY glDeleteShader(GLuint shader) {
    Count(&GLCounts::shaders, -(shader != 0));
    Driver<PFNGLDELETESHADERPROC>("glDeleteShader")(shader);
}
COUNTED GLuint APIENTRY glCreateProgram() {
    Count(&GLCounts::programs, 1);
    return Driver<PFNGLCREATEPROGRAMPROC>("glCreateProgram")();
}
COUNTED void APIENTRY glDeleteProgram(GLuint program) {
    Count(&GLCounts::programs, -(program != 0));
    Driver<PFNGLDELETEPROGRAMPROC>("glDeleteProgram")(program);
}
COUNTED void APIENTRY glGenTextures(GLsizei n, GLuint* names) {
    Count(&GLCounts::textures, n);
    Driver<PFNGLGENTEXTURESPROC>("glGenTextures")(n, names);
}
COUNTED void APIENTRY glDeleteTextures(GLsizei n, const GLuint* names) {
    Count(&GLCounts::textures, -NonZero(n, names));
    Driver<PFNGLDELETETEXTURESPROC>("glDeleteTextures")(n, names);
}
COUNTED void APIENTRY glGenFramebuffers(GLsizei n, GLuint* names) {
    Count(&GLCounts::framebuffers, n);
    Driver<PFNGLGENFRAMEBUFFERSPROC>("glGenFramebuffers")(n, names);
}
COUNTED void APIENTRY glDeleteFramebuffers(GLsizei n, const GLuint* names) {
    Count(&GLCounts::framebuffers, -NonZero(n, names));
    Driver<PFNGLDELETEFRAMEBUFFERSPROC>("glDeleteFramebuffers")(n, names);
}
COUNTED void APIENTRY glGenBuffers(GLsizei n, GLuint* names) {
    Count(&GLCounts::buffers, n);
    Driver<PFNGLGENBUFFERSPROC>("glGenBuffers")(n, names);
}
COUNTED void APIENTRY glDeleteBuffers(GLsizei n, const GLuint* names) {
    Count(&GLCounts::buffers, -NonZero(n, names));
    Driver<PFNGLDELETEBUFFERSPROC>("glDeleteBuffers")(n, names);
}
COUNTED void APIENTRY glGenVertexArrays(GLsizei n, GLuint* names) {
    Count(&GLCounts::vertexArrays, n);
    Driver<PFNGLGENVERTEXARRAYSPROC>("glGenVertexArrays")(n, names);
}
COUNTED void APIENTRY glDeleteVertexArrays(GLsizei n, const GLuint* names) {
    Count(&GLCounts::vertexArrays, -NonZero(n, names));
    Driver<PFNGLDELETEVERTEXARRAYSPROC>("glDeleteVertexArrays")(n, names);
}

namespace {

class Endurance : public ::testing::Test {
 protected:
    static constexpr int kVendorRow = 6;
    static constexpr std::array<const char*, 3> kTypes = {"normal", "inner", "radial"};

    void SetUp() override {
        module_.emplace(Module::Load(UMBRANT_MODULE_FILE));
        ASSERT_TRUE(*module_) << module_->error().sentence;
        Result<EffectSession> started = EffectSession::Start(**module_);
        ASSERT_TRUE(started) << started.error().sentence;
        session_.emplace(*std::move(started));
        if (session_->Params().Row(kVendorRow).items == std::vector<std::string>{"NULL"}) {
            GTEST_SKIP() << "no OpenGL context can be made on this machine";
        }
        for (const auto& [path, text] :
             {std::pair{"style/distance", "30"}, {"style/softness", "16"}, {"quality/samples", "4"}}) {
            ASSERT_TRUE(session_->Params().SetFromText(path, text));
        }
    }

    static World Square(Depth depth) {
        World layer = World::Create(96, 64, depth);
        for (int y = 8; y < 56; ++y) {
            for (int x = 8; x < 88; ++x) {
                if (depth == Depth::k8) RowOf<PF_Pixel>(layer.Def(), y)[x] = {255, 200, 100, 50};
                if (depth == Depth::k32) RowOf<PF_PixelFloat>(layer.Def(), y)[x] = {1, 0.75f, 0.5f, 0.25f};
            }
        }
        return layer;
    }

    /// The types and depths in turn, every other round with a texture.
    void Draw(int frames) {
        for (int i = 0; i < frames; ++i) {
            const World& layer = layers_[static_cast<std::size_t>(i / 3 % 2)];
            const char* type = kTypes[static_cast<std::size_t>(i % 3)];
            ASSERT_TRUE(session_->Params().SetFromText("style/shadow-type", type));
            const Result<Frame> frame = session_->Render({.layer = &layer, .texture = i / 6 % 2 ? &layer : nullptr});
            ASSERT_TRUE(frame) << "frame " << i << ": " << frame.error().sentence;
            ASSERT_GT(frame->output.Width(), 0);
            for (const CommandRecord& record : frame->commands) {
                ASSERT_TRUE(record.balance.IsBalanced()) << "frame " << i << ": " << record.balance.Text();
            }
        }
    }

    std::optional<Result<Module>> module_;
    std::optional<EffectSession> session_;
    const std::array<World, 2> layers_ = {Square(Depth::k8), Square(Depth::k32)};
};

TEST_F(Endurance, TwoHundredFramesLeaveEverythingAsItWas) {
    const GLCounts begin = Counted();
    const Balance openBefore = session_->Open();
    // A thread of its own has a context of its own, whatever this program drew before.
    std::thread renderer([&] {
        // Every combination twice: drivers build their variants of the programs at the first draw.
        Draw(24);
        const GLCounts warm = Counted();
        const long residentBefore = ResidentBytes();
        EXPECT_EQ(warm.compiled - begin.compiled, 10) << "five programs of two shaders; or nothing is counted";
        EXPECT_EQ(warm.linked - begin.linked, 5);
        EXPECT_EQ(warm.programs - begin.programs, 5);
        EXPECT_EQ(warm.shaders, begin.shaders);
        EXPECT_EQ(warm.textures, begin.textures);
        EXPECT_EQ(warm.framebuffers, begin.framebuffers);

        Draw(200);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "asked of the thread's own context";
        EXPECT_EQ(Counted(), warm);
        EXPECT_EQ(session_->Open(), openBefore) << session_->Open().Text();
        EXPECT_THAT(session_->Misbehaviour(), IsEmpty());
        // One output world of these frames kept each time would make about 30 MiB. Drivers of hardware fill their own
        // stores meanwhile: some 12 MiB, and no more in the next thousands of frames.
        const std::string driver = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        const long allowedGrowth = (driver.find("llvmpipe") != std::string::npos ? 8L : 20L) << 20;
        if (!kIsSanitized) {
            EXPECT_LT(ResidentBytes() - residentBefore, allowedGrowth);
        }
    });
    renderer.join();
    EXPECT_EQ(Counted().programs, begin.programs) << "the thread's own objects end with it";
    EXPECT_EQ(Counted().buffers, begin.buffers);
    EXPECT_EQ(Counted().vertexArrays, begin.vertexArrays);
}

}  // namespace

}  // namespace umbrant::host
