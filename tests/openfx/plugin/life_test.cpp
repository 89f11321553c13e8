// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The plug-in is loaded, unloaded, copied, created often; it has presets and buttons.

#include <malloc.h>
#include <sys/resource.h>

#include <fstream>
#include <set>
#include <sstream>
#include <thread>

#include "tests/openfx/plugin/plugin_fixture.h"
#include "tests/support/folder.h"
#include "tests/support/run_program.h"
#include "tests/support/sanitized.h"

namespace umbrant::ofx {
namespace {

using testing::HasSubstr;

constexpr OfxRectI kLifeBounds{0, 0, 40, 30};

TEST(OpenFxLife, LoadsAgainAndAgain) {
    setenv("UMBRANT_RENDERER", "cpu", 1);
    const Picture source = Disc(kLifeBounds);
    const Picture expected = FromLibrary(source, SmallSettings());
    for (int i = 0; i < 5; ++i) {
        Session session;
        EXPECT_EQ(Difference(FromPlugIn(session, {source}, SmallSettings()), expected), "") << i;
    }
    Host host;
    std::string error;
    const auto plugIn = PlugIn::Open(host, Bundle(), error);
    ASSERT_NE(plugIn, nullptr) << error;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(plugIn->Start(), kOfxStatOK);
        OfxStatus status = kOfxStatOK;
        auto instance = Instance::Create(*plugIn, kFilter, status);
        ASSERT_NE(instance, nullptr) << StatusName(status);
        instance->Connect({source});
        Session::Apply(*instance, SmallSettings(), kLifeBounds);
        EXPECT_EQ(Difference(instance->Render().output, expected), "") << i;
        instance.reset();
        plugIn->Unload();
        // Some hosts unload what was never loaded.
        plugIn->Unload();
    }
    EXPECT_EQ(host.record.ViolationText(), "");
}

TEST(OpenFxLife, ManyInstancesAreIndependent) {
    Session session;
    const Picture source = Disc(kLifeBounds);
    std::vector<std::unique_ptr<Instance>> instances;
    for (int i = 0; i < 12; ++i) {
        instances.push_back(session.NewInstance());
        ASSERT_NE(instances.back(), nullptr);
        instances.back()->Connect({source});
        Session::Apply(*instances.back(), SmallSettings(), kLifeBounds);
        Session::Apply(*instances.back(), {{"style/distance", std::to_string(i)}}, kLifeBounds);
    }
    std::vector<Frame> frames(instances.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < instances.size(); ++i) {
        threads.emplace_back([&, i] { frames[i] = instances[i]->Render(); });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < instances.size(); ++i) {
        Settings settings = SmallSettings();
        settings.emplace_back("style/distance", std::to_string(i));
        EXPECT_EQ(Difference(frames[i].output, FromLibrary(source, settings)), "") << i;
    }
    for (int i = 0; i < 100; ++i) EXPECT_NE(session.NewInstance(), nullptr);
}

TEST(OpenFxLife, AnUnknownActionHasTheDefaultAnswer) {
    Session session;
    EXPECT_EQ(session.ThePlugIn().Call("org.umbrant.noSuchAction", &session.TheInstance().Effect(), nullptr, nullptr),
              kOfxStatReplyDefault);
    EXPECT_EQ(session.ThePlugIn().Call("", nullptr, nullptr, nullptr), kOfxStatReplyDefault);
}

TEST(OpenFxLife, ActionsWithoutArguments) {
    Session session;
    for (const ActionRow& row : ActionTable()) {
        const std::string action(row.name);
        if (action.find("Instance") == std::string::npos || action.find("Edit") == std::string::npos) continue;
        EXPECT_TRUE(Succeeded(session.ThePlugIn().Call(action, &session.TheInstance().Effect(), nullptr, nullptr)));
    }
    for (const char* action : {"OfxActionPurgeCaches", "OfxActionSyncPrivateData"}) {
        EXPECT_TRUE(Succeeded(session.ThePlugIn().Call(action, &session.TheInstance().Effect(), nullptr, nullptr)));
    }
}

TEST(OpenFxLife, ExportsTheInterfaceAlone) {
    const std::filesystem::path binary =
        std::filesystem::path(Bundle()) / "Contents" / "Linux-x86-64" / std::filesystem::path(Bundle()).stem();
    std::istringstream symbols(host::RunProgram({"nm", "-D", "--defined-only", binary.string()}).output);
    std::set<std::string> names;
    for (std::string line; std::getline(symbols, line);) names.insert(line.substr(line.rfind(' ') + 1));
    EXPECT_TRUE(names.erase("OfxGetNumberOfPlugins") == 1 && names.erase("OfxGetPlugin") == 1);
    names.erase("OfxSetHost");
    EXPECT_THAT(names, testing::IsEmpty());
}

TEST(OpenFxLife, ACopyWithoutItsModuleSaysSo) {
    const host::Folder folder;
    const std::filesystem::path copy = folder.Path() / "Umbrant.ofx.bundle";
    std::filesystem::copy(Bundle(), copy, std::filesystem::copy_options::recursive);
    ASSERT_TRUE(std::filesystem::remove(copy / "Contents" / "Linux-x86-64" / "umbrant2.so"));
    const char* module = std::getenv("UMBRANT_MODULE");
    const std::string before = module == nullptr ? "" : module;
    unsetenv("UMBRANT_MODULE");
    {
        Host host;
        std::string error;
        const auto plugIn = PlugIn::Open(host, copy, error);
        ASSERT_NE(plugIn, nullptr) << error;
        OfxStatus status = plugIn->Start();
        if (Succeeded(status)) {
            if (auto instance = Instance::Create(*plugIn, kFilter, status)) {
                instance->Connect({Disc(kLifeBounds)});
                status = instance->Render().status;
            }
        }
        EXPECT_FALSE(Succeeded(status));
        plugIn->Unload();
        EXPECT_EQ(host.record.ViolationText(), "");
        std::string texts;
        for (const Message& message : host.Messages()) texts += message.text;
        EXPECT_THAT(texts, HasSubstr("umbrant2.so"));
    }
    if (module != nullptr) setenv("UMBRANT_MODULE", before.c_str(), 1);
}

TEST(OpenFxMemory, IsAStatusWhereThereIsNone) {
    // Large blocks are then the system's, and none is left over from earlier.
    mallopt(M_MMAP_THRESHOLD, 1 << 16);
    Session session;
    const OfxRectI large{0, 0, 1200, 900};
    session.TheInstance().Connect({Disc(large, Depth::kFloat)});
    session.Apply(ManySettings(), large);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    FrameOptions options;
    options.before = [&] {
        malloc_trim(0);
        // Sanitizers reserve addresses without end.
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlimit narrow{static_cast<rlim_t>(pages) * 4096 + (1u << 20), before.rlim_max};
        if (!kIsSanitized) setrlimit(RLIMIT_AS, &narrow);
    };
    options.after = [&] { setrlimit(RLIMIT_AS, &before); };
    const Frame frame = session.TheInstance().Render(options);
    if (!kIsSanitized) {
        EXPECT_TRUE(frame.status == kOfxStatErrMemory || frame.status == kOfxStatFailed) << StatusName(frame.status);
    }
    EXPECT_EQ(
        Difference(session.TheInstance().Render().output, FromLibrary(Disc(large, Depth::kFloat), ManySettings())), "");
}

Param* Find(Instance& instance, const std::string& type, const std::string& mode) {
    for (const auto& param : instance.Effect().Params().All()) {
        const bool matches = mode.empty() || param->Properties().String("OfxParamPropStringMode") == mode;
        if (param->Type().name == type && matches) return param.get();
    }
    return nullptr;
}

/// Presses the button that loads the preset of a file. The panel has buttons of its own, so all that mention a preset
/// are pressed.
void LoadPreset(Instance& instance, const std::string& file) {
    Param* path = Find(instance, "OfxParamTypeString", "OfxParamStringIsFilePath");
    ASSERT_NE(path, nullptr) << "no file path";
    instance.Set(path->Name(), ParamValue{file});
    int pressed = 0;
    for (const auto& param : instance.Effect().Params().All()) {
        const std::string text = param->Name() + param->Properties().String("OfxPropLabel");
        if (param->Type().name != "OfxParamTypePushButton" || text.find("reset") == std::string::npos) continue;
        instance.Change(param->Name());
        ++pressed;
    }
    EXPECT_EQ(pressed, 1);
}

TEST(OpenFxPreset, SetsTheValues) {
    Session session;
    Instance& instance = session.TheInstance();
    const Picture source = Disc(kLifeBounds);
    instance.Connect({source});
    const host::Folder folder;
    std::ofstream(folder / "many.json") << PresetOf(ManySettings());
    LoadPreset(instance, (folder.Path() / "many.json").string());
    const Frame frame = instance.Render();
    EXPECT_EQ(Difference(frame.output, FromLibrary(source, ManySettings())), "");
}

TEST(OpenFxPreset, ThatIsWrongChangesNothingAndIsReported) {
    Session session;
    Instance& instance = session.TheInstance();
    const Picture source = Disc(kLifeBounds);
    instance.Connect({source});
    session.Apply(SmallSettings(), kLifeBounds);
    const host::Folder folder;
    const std::string file = (folder.Path() / "wrong.json").string();
    for (const char* text : {"", "{", "[]", "{\"version\": 2, \"values\": {\"no/such\": 1}}", "\xff\xfe"}) {
        std::ofstream(file, std::ios::binary) << text;
        const std::size_t messages = session.TheHost().Messages().size();
        LoadPreset(instance, file);
        EXPECT_GT(session.TheHost().Messages().size(), messages) << text;
        EXPECT_EQ(Difference(instance.Render().output, FromLibrary(source, SmallSettings())), "") << text;
    }
    const std::size_t messages = session.TheHost().Messages().size();
    LoadPreset(instance, "/nonexistent/preset.json");
    ASSERT_GT(session.TheHost().Messages().size(), messages);
    EXPECT_THAT(session.TheHost().Messages().back().text, HasSubstr("/nonexistent/preset.json"));
}

TEST(OpenFxPanel, SaysWhatDraws) {
    Session session;
    session.TheInstance().Connect({Disc(kLifeBounds)});
    session.TheInstance().Render();
    for (const auto& param : session.TheInstance().Effect().Params().All()) {
        if (param->Properties().String("OfxPropLabel").find("Drawn by") == std::string::npos) continue;
        const ParamValue value = param->Constant();
        ASSERT_EQ(value.size(), 1u);
        EXPECT_THAT(std::get<std::string>(value[0]), HasSubstr("CPU"));
        return;
    }
    ADD_FAILURE() << "no line 'Drawn by'";
}

}  // namespace
}  // namespace umbrant::ofx
