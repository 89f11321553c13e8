// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A session in another process is the same as one in this process; and what its process does is explained.

#include "host/isolation/module_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <thread>

#include "host/compositing/rectangles.h"
#include "host/panel/panel_picture.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

std::string TestModule(const std::string& name) {
    return std::string(TEST_MODULES) + "/" + name + ".so";
}

/// The deed of the module "leaver", for as long as it lives.
class Leaves {
 public:
    explicit Leaves(const char* text) { setenv("UMBRANT_TEST_LEAVES", text, 1); }
    ~Leaves() { unsetenv("UMBRANT_TEST_LEAVES"); }
    Leaves(const Leaves&) = delete;
    Leaves& operator=(const Leaves&) = delete;
};

World Coloured(int width, int height, Depth depth = Depth::k8) {
    World world = World::Create(width, height, depth);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * BytesPerPixel(depth); ++x) world.Row(y)[x] = std::byte(17 * x + 31 * y + 1);
    }
    return world;
}

bool AreSame(const World& one, const World& other) {
    if (one.Width() != other.Width() || one.Height() != other.Height() || one.PixelDepth() != other.PixelDepth()) {
        return false;
    }
    const auto bytes = static_cast<std::size_t>(one.Width() * BytesPerPixel(one.PixelDepth()));
    for (int y = 0; y < one.Height(); ++y) {
        if (std::memcmp(one.Row(y), other.Row(y), bytes) != 0) return false;
    }
    return true;
}

/// The same module in this process and in another.
class Both {
 public:
    explicit Both(const std::string& name) : module_(*Module::Load(TestModule(name))) {
        SessionOptions options;
        options.layerWidth = 64;
        options.layerHeight = 48;
        auto session = EffectSession::Start(module_, options);
        auto process = ModuleProcess::Start({TestModule(name), options, UMBRANT_PROGRAM});
        if (!session || !process) {
            ADD_FAILURE() << (session ? process.error().sentence : session.error().sentence);
            std::abort();
        }
        here.emplace(std::move(*session));
        effect = (*process)->Effect();
        there.emplace(EffectSession::Over(std::move(*process)));
    }
    const Module& Loaded() const { return module_; }

 private:
    Module module_;

 public:
    std::optional<EffectSession> here, there;
    Registration effect;
};

TEST(ModuleProcess, DeclaresTheSame) {
    Both both("painter");
    EXPECT_EQ(both.effect.name, both.Loaded().Effect().name);
    EXPECT_EQ(both.effect.entryPoint, both.Loaded().Effect().entryPoint);
    EXPECT_EQ(both.here->OutFlags(), both.there->OutFlags());
    EXPECT_EQ(both.here->OutFlags2(), both.there->OutFlags2());
    EXPECT_EQ(both.here->EffectVersion(), both.there->EffectVersion());
    const ParamSet& here = both.here->Params();
    const ParamSet& there = both.there->Params();
    ASSERT_EQ(here.Count(), there.Count());
    for (int i = 0; i < here.Count(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(here.Row(i).path, there.Row(i).path);
        EXPECT_EQ(here.Row(i).items, there.Row(i).items);
        EXPECT_EQ(here.Row(i).label, there.Row(i).label);
        EXPECT_EQ(here.Row(i).depth, there.Row(i).depth);
        EXPECT_EQ(here.Row(i).def.flags, there.Row(i).def.flags);
        EXPECT_EQ(here.ValueText(i), there.ValueText(i));
        EXPECT_EQ(here.DefaultText(i), there.DefaultText(i));
    }
    EXPECT_EQ(both.here->Panel().Rows(), both.there->Panel().Rows());
    EXPECT_EQ(*both.here->About(), *both.there->About());
}

TEST(ModuleProcess, DrawsTheSameBytes) {
    Both both("painter");
    for (const char* border : {"0", "7"}) {
        for (EffectSession* session : {&*both.here, &*both.there}) {
            ASSERT_TRUE(session->Params().SetFromText("paint/border", border));
            ASSERT_TRUE(session->Params().SetFromText("paint/centre", "3,4"));
        }
        const World layer = Coloured(64, 48);
        const World texture = Coloured(20, 10);
        for (const World* shown : {static_cast<const World*>(nullptr), &texture}) {
            FrameRequest request;
            request.layer = &layer;
            request.texture = shown;
            request.textureOrigin = {{5}, {6}};
            const auto here = both.here->Render(request);
            const auto there = both.there->Render(request);
            ASSERT_TRUE(here) << here.error().sentence;
            ASSERT_TRUE(there) << there.error().sentence;
            EXPECT_TRUE(AreSame(here->output, there->output));
            EXPECT_EQ(here->rect.left, there->rect.left);
            EXPECT_EQ(here->maxRect.bottom, there->maxRect.bottom);
            EXPECT_EQ(here->output.Def().origin_x, there->output.Def().origin_x);
            EXPECT_EQ(here->output.Def().rowbytes, there->output.Def().rowbytes);
            EXPECT_EQ(here->suites, there->suites);
            ASSERT_EQ(here->commands.size(), there->commands.size());
            EXPECT_EQ(here->commands.back().command, there->commands.back().command);
            const auto asked = both.there->PreRender(request);
            ASSERT_TRUE(asked);
            EXPECT_EQ(asked->maxRect.left, here->maxRect.left);
        }
    }
    EXPECT_EQ(both.here->Misbehaviour(), both.there->Misbehaviour());
    EXPECT_EQ(both.here->AcquiredSuites(), both.there->AcquiredSuites());
    EXPECT_EQ(both.here->Commands().size(), both.there->Commands().size());
    EXPECT_TRUE(both.there->End());
    EXPECT_TRUE(both.there->End()) << "later calls do nothing";
}

TEST(ModuleProcess, DrawsEveryDepth) {
    Both both("leaver");
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::k32}) {
        const World layer = Coloured(33, 21, depth);
        const auto there = both.there->Render({.layer = &layer});
        ASSERT_TRUE(there) << there.error().sentence;
        EXPECT_TRUE(AreSame(layer, there->output));
    }
    const World nothing = World::Create(0, 0, Depth::k8);
    const auto there = both.there->Render({.layer = &nothing});
    ASSERT_TRUE(there) << there.error().sentence;
    EXPECT_EQ(there->output.Width(), 0);
}

TEST(ModuleProcess, TheHostGoesByItsOwnRecordOfAWorld) {
    const World layer = Coloured(12, 9);
    for (const char* deed : {"render:widen", "render:steal"}) {
        SCOPED_TRACE(deed);
        const Leaves leaves(deed);
        Both both("leaver");
        for (EffectSession* session : {&*both.here, &*both.there}) {
            const auto frame = session->Render({.layer = &layer});
            ASSERT_TRUE(frame) << frame.error().sentence;
            EXPECT_TRUE(AreSame(layer, frame->output));
            EXPECT_EQ(frame->output.Def().origin_x, 0);
            EXPECT_EQ(frame->output.Def().rowbytes, layer.Def().rowbytes);
            EXPECT_THAT(session->Misbehaviour(),
                        testing::ElementsAre(
                            "PF_Cmd_SMART_RENDER changed the record of its output world; the change is ignored"));
        }
    }
    const Leaves leaves("render:widen-before");
    Both both("leaver");
    for (EffectSession* session : {&*both.here, &*both.there}) {
        const auto frame = session->Render({.layer = &layer});
        ASSERT_FALSE(frame) << "no service follows the record out of the world's memory";
        EXPECT_THAT(frame.error().sentence, HasSubstr("PF_Err_BAD_CALLBACK_PARAM"));
    }
}

TEST(ModuleProcess, OutputsOfSeveralFramesLiveAtATime) {
    Both both("leaver");
    std::vector<World> layers;
    std::vector<Frame> frames;
    for (int i = 1; i <= 8; ++i) {
        layers.push_back(Coloured(30 + i, 20));
        auto frame = both.there->Render({.layer = &layers.back()});
        ASSERT_TRUE(frame) << frame.error().sentence;
        frames.push_back(std::move(*frame));
    }
    both.there.reset();
    for (std::size_t i = 0; i < frames.size(); ++i) EXPECT_TRUE(AreSame(layers[i], frames[i].output)) << i;
}

TEST(ModuleProcess, AsksAboutOtherTimes) {
    Both both("looking_painter");
    const World layer = Coloured(8, 6);
    const World other = Coloured(9, 7);
    for (EffectSession* session : {&*both.here, &*both.there}) {
        ASSERT_TRUE(session->Params().SetFromText("paint/angle", "2"));
    }
    const auto draw = [&](EffectSession& session, bool fails) {
        FrameRequest request;
        request.layer = &layer;
        request.time = 3;
        request.valuesAt = [&](const Moment& moment) {
            ParamSet values = session.Params();
            (void)values.SetFromText("paint/color", moment.value / moment.scale > 0 ? "#102030" : "#405060");
            return values;
        };
        request.layersAt = [&](const Moment&) -> Result<MomentLayers> {
            if (fails) return Failure{ErrorKind::kFile, "there is no such frame"};
            return MomentLayers{&other};
        };
        return session.Render(request);
    };
    const auto here = draw(*both.here, false);
    const auto there = draw(*both.there, false);
    ASSERT_TRUE(here) << here.error().sentence;
    ASSERT_TRUE(there) << there.error().sentence;
    EXPECT_TRUE(AreSame(here->output, there->output));
    const auto failed = draw(*both.there, true);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().kind, ErrorKind::kFile);
    EXPECT_EQ(failed.error().sentence, "there is no such frame");
    EXPECT_TRUE(draw(*both.there, false));
}

TEST(ModuleProcess, DrawsTheSamePanel) {
    Both both("painter");
    for (EffectSession* session : {&*both.here, &*both.there}) {
        ASSERT_TRUE(session->UpdateParamsUI());
        EXPECT_TRUE(session->SetTwirl(1, true));
        EXPECT_FALSE(session->SetTwirl(99, true));
    }
    EXPECT_EQ(both.here->Panel().Rows(), both.there->Panel().Rows());
    const auto here = DrawPanel(*both.here, {.scale = 2, .theme = &kLightTheme, .effectName = "Painter"});
    const auto there = DrawPanel(*both.there, {.scale = 2, .theme = &kLightTheme, .effectName = "Painter"});
    ASSERT_TRUE(here) << here.error().sentence;
    ASSERT_TRUE(there) << there.error().sentence;
    EXPECT_TRUE(AreSame(here->pixels, there->pixels));
}

TEST(ModuleProcess, AnotherInstanceHasTheValuesAndAProcessOfItsOwn) {
    auto first = ModuleProcess::Start({TestModule("painter"), {}, UMBRANT_PROGRAM});
    ASSERT_TRUE(first) << first.error().sentence;
    ASSERT_TRUE((*first)->Params().SetFromText("paint/border", "3"));
    auto second = (*first)->StartInstance({});
    ASSERT_TRUE(second) << second.error().sentence;
    EXPECT_EQ((*second)->Params().ValueText(*(*second)->Params().Find("paint/border")), "3");
    EXPECT_NE((*first)->Process(), static_cast<ModuleProcess&>(**second).Process());
}

TEST(ModuleProcess, SaysWhatTheEffectIsDoing) {
    const Leaves leaves("render:hang");
    auto process = ModuleProcess::Start({TestModule("leaver"), {}, UMBRANT_PROGRAM});
    ASSERT_TRUE(process) << process.error().sentence;
    EXPECT_FALSE((*process)->Now());
    const World layer = Coloured(8, 8);
    const int number = (*process)->Process();
    std::thread watcher([&] {
        while (!(*process)->Now() || (*process)->Now()->command != PF_Cmd_SMART_RENDER) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        kill(number, SIGTERM);
    });
    const auto frame = (*process)->Render({.layer = &layer});
    watcher.join();
    ASSERT_FALSE(frame);
    EXPECT_THAT(frame.error().sentence, HasSubstr("crashed with signal 15 (Terminated) during PF_Cmd_SMART_RENDER"));
}

TEST(ModuleProcess, BeginsAgainWithTheNextFrame) {
    const World layer = Coloured(8, 8);
    auto process = ModuleProcess::Start({TestModule("leaver"), {}, UMBRANT_PROGRAM});
    ASSERT_TRUE(process) << process.error().sentence;
    ASSERT_TRUE((*process)->Params().SetFromText("number", "42"));
    const int first = (*process)->Process();
    kill(first, SIGKILL);
    const auto lost = (*process)->Render({.layer = &layer});
    ASSERT_FALSE(lost);
    EXPECT_EQ(lost.error().kind, ErrorKind::kEffect);
    EXPECT_THAT(lost.error().sentence,
                HasSubstr("was killed (signal 9), possibly because memory ran out, after PF_Cmd_"));
    EXPECT_EQ((*process)->Process(), 0);
    const auto drawn = (*process)->Render({.layer = &layer});
    ASSERT_TRUE(drawn) << drawn.error().sentence;
    EXPECT_NE((*process)->Process(), first);
    EXPECT_EQ((*process)->Params().ValueText(1), "42");
    EXPECT_TRUE((*process)->End());
}

TEST(ModuleProcess, ItsProcessGoesWithIt) {
    auto process = ModuleProcess::Start({TestModule("leaver"), {}, UMBRANT_PROGRAM});
    ASSERT_TRUE(process) << process.error().sentence;
    const int number = (*process)->Process();
    EXPECT_EQ(kill(number, 0), 0);
    EXPECT_EQ(getpgid(number), number);
    process = Failure{ErrorKind::kUsage, "ended on purpose"};
    EXPECT_NE(kill(number, 0), 0);
}

TEST(ModuleProcess, AProgramThatCannotBeStartedIsSaid) {
    const auto process = ModuleProcess::Start({TestModule("leaver"), {}, "/nowhere/umbrant"});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.error().kind, ErrorKind::kInternal);
    EXPECT_EQ(process.error().sentence,
              "cannot start '/nowhere/umbrant' in a separate process: No such file or directory");
}

TEST(ModuleProcess, AWrongModuleIsRefusedAsInThisProcess) {
    const auto process = ModuleProcess::Start({TestModule("no_export"), {}, UMBRANT_PROGRAM});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.error().kind, ErrorKind::kModule);
    EXPECT_EQ(process.error().sentence, Module::Load(TestModule("no_export")).error().sentence);
}

}  // namespace

}  // namespace umbrant::host
