// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The x86-64 code that ships to Macs, run here: the same host drives it and the Linux module, and both must say and
// draw the same, to the byte. See mapped/mapped_module.cpp for what this proves and what it cannot.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/compositing/rectangles.h"
#include "host/session/effect_session.h"
#include "tests/packaging/mapped/macho_image.h"

using namespace umbrant::host;

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::filesystem::path& CrossFolder() {
    static const std::filesystem::path folder = std::getenv("MACOS_CROSS") ? std::getenv("MACOS_CROSS") : "";
    return folder;
}

/// One module file with a session on it. Each lives and renders on a thread of its own, as the platform layer keeps
/// the current context per thread and each module has its own copy of that layer.
class Driven {
 public:
    explicit Driven(const char* file, SessionOptions options = {}) : module(Module::Load(file)) {
        if (!module) {
            ADD_FAILURE() << module.error().sentence;
            return;
        }
        Result<EffectSession> started = EffectSession::Start(*module, std::move(options));
        if (!started) {
            ADD_FAILURE() << started.error().sentence;
            return;
        }
        session.emplace(*std::move(started));
    }
    bool HasOpenGL() const {
        constexpr int kVendorRow = 6;
        return session->Params().Row(kVendorRow).items != std::vector<std::string>{"NULL"};
    }
    void Set(const std::vector<std::pair<const char*, const char*>>& values) {
        for (const auto& [path, text] : values) {
            const Result<Done> set = session->Params().SetFromText(path, text);
            EXPECT_TRUE(set) << path << ": " << set.error().sentence;
        }
    }

    Result<Module> module;
    std::optional<EffectSession> session;
};

class MappedBundle : public ::testing::Test {
 protected:
    void SetUp() override {
        if (!std::filesystem::exists(CrossFolder() / "tests" / "ready")) {
            GTEST_SKIP()
                << "the macOS bundle has not been built; packaging/macos/build builds it or says what is missing";
        }
        const auto executable = CrossFolder() / "Umbrant 2.plugin" / "Contents" / "MacOS" / "Umbrant 2";
        setenv("UMBRANT_MACOS_EXECUTABLE", executable.c_str(), 1);
        // The bundle draws with OpenGL alone; so must the module that it is compared with.
        unsetenv("UMBRANT_RENDERER");
        setenv("UMBRANT_MACOS_UNWINDER", (CrossFolder() / "tests" / "unwinder").c_str(), 1);
    }

    /// Calls `use` with a session on the mapped bundle and then with one on the Linux module, each on its own thread.
    static void WithBoth(const std::function<void(Driven&, bool isMac)>& use, const SessionOptions& options = {}) {
        for (const bool isMac : {true, false}) {
            std::thread([&] {
                Driven driven(isMac ? MAPPED_BUNDLE_FILE : UMBRANT_MODULE_FILE, options);
                if (driven.session) use(driven, isMac);
            }).join();
        }
    }
};

std::string Bytes(const World& world) {
    std::string bytes;
    for (int y = 0; y < world.Height(); ++y) {
        const auto* row = reinterpret_cast<const char*>(world.Row(y));
        bytes.append(row, static_cast<std::size_t>(world.Width()) * BytesPerPixel(world.PixelDepth()));
    }
    return bytes;
}

/// A soft-edged shape with four different channels in it.
World Picture(Depth depth, int size, int seed) {
    World world = World::Create(size, size, depth);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const int edge = std::min(std::min(x, y), size - 1 - std::max(x, y));
            const int alpha = std::min(255, edge * 60), red = (x * 11 + seed) % 256, green = (y * 13) % 256;
            if (depth == Depth::k8) {
                RowOf<PF_Pixel>(world.Def(), y)[x] = {static_cast<A_u_char>(alpha), static_cast<A_u_char>(red),
                                                      static_cast<A_u_char>(green), 90};
            } else {
                RowOf<PF_PixelFloat>(world.Def(), y)[x] = {static_cast<float>(alpha) / 255,
                                                           static_cast<float>(red) / 200,
                                                           static_cast<float>(green) / 255, 0.35f};
            }
        }
    }
    return world;
}

TEST_F(MappedBundle, RegistersAndDeclaresTheSame) {
    std::vector<std::string> said[2];
    WithBoth([&](Driven& driven, bool isMac) {
        std::vector<std::string>& lines = said[isMac ? 0 : 1];
        const Registration& effect = driven.module->Effect();
        lines = {effect.name,
                 effect.matchName,
                 effect.category,
                 effect.entryPoint,
                 std::to_string(effect.kind),
                 std::to_string(effect.apiMajor),
                 std::to_string(effect.apiMinor),
                 std::to_string(effect.reservedInfo),
                 std::to_string(driven.session->EffectVersion()),
                 std::to_string(driven.session->OutFlags()),
                 std::to_string(driven.session->OutFlags2()),
                 *driven.session->About()};
        for (const ParamRow& row : driven.session->Params().Rows()) {
            lines.push_back(row.path + "|" + row.name + "|" + std::to_string(row.def.param_type) + "|" +
                            std::to_string(row.def.uu.id) + "|" + driven.session->Params().DefaultText(row.index));
        }
        EXPECT_TRUE(driven.session->UpdateParamsUI());
        for (const CommandRecord& record : driven.session->Commands()) EXPECT_EQ(record.error, 0) << record.message;
        EXPECT_TRUE(driven.session->End());
        EXPECT_TRUE(driven.session->Open().IsBalanced()) << driven.session->Open().Text();
        EXPECT_THAT(driven.session->Misbehaviour(), IsEmpty());
    });
    EXPECT_GT(said[0].size(), 60u);
    EXPECT_EQ(said[0], said[1]);
}

struct Style {
    const char* name;
    std::vector<std::pair<const char*, const char*>> values;
    bool texture;
};

const Style kStyles[] = {
    {"Plain",
     {{"style/distance", "9"}, {"style/softness", "5"}, {"quality/samples", "5"}, {"style/angle", "130"}},
     false},
    {"Styled",
     {{"style/distance", "14"},
      {"style/softness", "8"},
      {"quality/samples", "7"},
      {"style/angle", "35.5"},
      {"style/color", "#2a14c6"},
      {"opacity/opacity-start", "80"},
      {"opacity/opacity-end", "15"},
      {"easing/mode", "ease-in-out"},
      {"easing/ease", "60"},
      {"texture/blend-mode", "normal"},
      {"texture/strength", "65"}},
     true},
};

struct Case {
    const char* type;
    Depth depth;
    const Style* style;
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.style->name << " " << each.type << ", " << static_cast<int>(each.depth) << " bits";
}

class MappedBundleDraws : public MappedBundle, public ::testing::WithParamInterface<Case> {};

TEST_P(MappedBundleDraws, TheSameBytes) {
    const auto& [type, depth, style] = GetParam();
    std::string pixels[2];
    PF_LRect rects[2]{};
    bool drawn = true;
    WithBoth([&, type = type, depth = depth, style = style](Driven& driven, bool isMac) {
        if (!driven.HasOpenGL()) {
            drawn = false;
            return;
        }
        driven.Set({{"style/shadow-type", type}});
        driven.Set(style->values);
        const World layer = Picture(depth, 24, 3), texture = Picture(depth, 40, 77);
        FrameRequest request{.layer = &layer};
        if (style->texture) request.texture = &texture;
        const Result<Frame> frame = driven.session->Render(request);
        ASSERT_TRUE(frame) << frame.error().sentence;
        EXPECT_EQ(frame->message, "");
        pixels[isMac ? 0 : 1] = Bytes(frame->output);
        rects[isMac ? 0 : 1] = frame->rect;
        EXPECT_TRUE(driven.session->End());
        EXPECT_TRUE(driven.session->Open().IsBalanced()) << driven.session->Open().Text();
        EXPECT_THAT(driven.session->Misbehaviour(), IsEmpty());
    });
    if (!drawn) GTEST_SKIP() << "no OpenGL context can be made on this machine";
    EXPECT_TRUE(Same(rects[0], rects[1]));
    ASSERT_EQ(pixels[0].size(), pixels[1].size());
    ASSERT_FALSE(pixels[0].empty());
    EXPECT_NE(pixels[0].find_first_not_of('\0'), std::string::npos) << "something was drawn";
    std::size_t different = 0;
    for (std::size_t i = 0; i < pixels[0].size(); ++i) different += pixels[0][i] != pixels[1][i];
    EXPECT_EQ(different, 0u) << "of " << pixels[0].size() << " bytes";
}

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const Style& style : kStyles) {
        for (const char* type : {"normal", "inner", "radial"}) {
            for (const Depth depth : {Depth::k8, Depth::k32}) cases.push_back({type, depth, &style});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(All, MappedBundleDraws, ::testing::ValuesIn(Cases()), [](const auto& row) {
    return std::string(row.param.style->name) + "_" + row.param.type + "_" +
           std::to_string(static_cast<int>(row.param.depth)) + "bits";
});

// A number thrown deep inside, caught at the entry: two frames of the shipped code with clean-ups between them.
TEST_F(MappedBundle, AThrownNumberIsCaughtInTheSlice) {
    SessionOptions options;
    options.fault = [](std::string_view call) { return call == "AcquireSuite:PF World Transform Suite" ? 13 : 0; };
    std::string sentences[2];
    bool drawn = true;
    WithBoth(
        [&](Driven& driven, bool isMac) {
            drawn = drawn && driven.HasOpenGL();
            driven.Set(kStyles[0].values);
            const World layer = Picture(Depth::k8, 12, 0);
            const Result<Frame> frame = driven.session->Render({.layer = &layer});
            ASSERT_FALSE(frame);
            sentences[isMac ? 0 : 1] = frame.error().sentence;
            EXPECT_THAT(driven.session->Misbehaviour(), IsEmpty());
        },
        options);
    EXPECT_EQ(sentences[0], sentences[1]);
    EXPECT_THAT(sentences[0], HasSubstr(drawn ? "error 516," : ""));
}

TEST_F(MappedBundle, WithoutSuitesTheErrorIsThrownAndReturned) {
    std::thread([] {
        const Result<Module> module = Module::Load(MAPPED_BUNDLE_FILE);
        ASSERT_TRUE(module) << module.error().sentence;
        PF_InData inData{};
        PF_OutData outData{};
        for (int round = 0; round < 3; ++round) {
            const CallOutcome outcome = module->Call(PF_Cmd_ABOUT, &inData, &outData, nullptr, nullptr, nullptr);
            EXPECT_EQ(outcome.error, 516);
            EXPECT_EQ(outcome.exception.value_or(""), "") << "nothing leaves the entry";
        }
        EXPECT_EQ(module->Call(PF_Cmd_RENDER, &inData, &outData, nullptr, nullptr, nullptr).error, 0);
    }).join();
}

// Each thread has its own context in the slice's thread-local state, and each ends before the session does.
TEST_F(MappedBundle, EachRenderThreadHasItsOwnState) {
    std::thread([] {
        Driven driven(MAPPED_BUNDLE_FILE);
        ASSERT_TRUE(driven.session);
        if (!driven.HasOpenGL()) GTEST_SKIP() << "no OpenGL context can be made on this machine";
        driven.Set(kStyles[0].values);
        const World layer = Picture(Depth::k8, 16, 0);
        std::string pixels[4];
        std::vector<std::thread> threads;
        for (std::string& each : pixels) {
            threads.emplace_back([&driven, &layer, &each] {
                for (int round = 0; round < 2; ++round) {
                    const Result<Frame> frame = driven.session->Render({.layer = &layer});
                    ASSERT_TRUE(frame) << frame.error().sentence;
                    each = Bytes(frame->output);
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        for (const std::string& each : pixels) EXPECT_EQ(each, pixels[0]);
        EXPECT_TRUE(driven.session->End());
        EXPECT_TRUE(driven.session->Open().IsBalanced()) << driven.session->Open().Text();
    }).join();
}

TEST_F(MappedBundle, AButtonHandsItsAddressToOpen) {
    std::thread([] {
        Driven driven(MAPPED_BUNDLE_FILE);
        ASSERT_TRUE(driven.session);
        void* library = dlopen(MAPPED_BUNDLE_FILE, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(library, nullptr);
        const auto lastCommand = reinterpret_cast<const char* (*)()>(dlsym(library, "UmbrantMappedLastCommand"));
        std::vector<std::string> commands;
        for (const ParamRow& row : driven.session->Params().Rows()) {
            if (row.def.param_type != PF_Param_BUTTON) continue;
            EXPECT_TRUE(driven.session->UserChangedParam(row.index));
            commands.push_back(lastCommand());
        }
        EXPECT_THAT(commands, ::testing::SizeIs(3));
        EXPECT_THAT(commands, ::testing::Each(::testing::MatchesRegex("open https://[a-z./-]+")));
        dlclose(library);
    }).join();
}

// macOS never takes an image with thread-local variables out of a process again.
TEST_F(MappedBundle, ClosedAndOpenedAgainItServesOn) {
    for (int round = 0; round < 3; ++round) {
        std::thread([] {
            Driven driven(MAPPED_BUNDLE_FILE);
            ASSERT_TRUE(driven.session);
            EXPECT_THAT(*driven.session->About(), HasSubstr("Umbrant 2 v1.3.3"));
        }).join();
        void* library = dlopen(MAPPED_BUNDLE_FILE, RTLD_NOW | RTLD_NOLOAD);
        EXPECT_NE(library, nullptr) << "round " << round;
        if (library) dlclose(library);
    }
}

std::string WhyNot(const std::filesystem::path& file, const MachoImage::Resolver& resolve) {
    try {
        MachoImage::Map(file, resolve);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(MachoImage, AFileThatIsNoBundleIsRefused) {
    const auto nothing = [](const std::string&) { return static_cast<void*>(nullptr); };
    EXPECT_EQ(WhyNot(UMBRANT_MODULE_FILE, nothing), "it is not a 64-bit Mach-O bundle for x86-64");
    EXPECT_EQ(WhyNot("/none", nothing), "the file cannot be read or is empty");
    const std::filesystem::path file = std::filesystem::path(::testing::TempDir()) / "cut_off_bundle";
    std::ofstream(file) << "\xCA\xFE\xBA\xBE";
    EXPECT_EQ(WhyNot(file, nothing), "the file is cut off");
    std::filesystem::remove(file);
}

TEST_F(MappedBundle, AnImportWithoutAnAddressIsRefused) {
    const auto resolve = [](const std::string& name) {
        static int anything;
        return name == "_EffectMain" || name == "_system" ? nullptr : static_cast<void*>(&anything);
    };
    EXPECT_EQ(WhyNot(std::getenv("UMBRANT_MACOS_EXECUTABLE"), resolve),
              "there is nothing here to bind its import _system to");
}

}  // namespace
