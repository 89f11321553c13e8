// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Frames drawn by several instances of an effect: what the effect sees, what comes out, what failures leave.

#include "host/render/worker.h"

#include <algorithm>
#include <map>
#include <mutex>

#include "host/render/plan/memory_plan.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/host/session/session_fixture.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Kind = FrameOutcome::Kind;

/// Keeps what is reported to it.
class Watcher : public FrameWatcher {
 public:
    void Begins(std::size_t frame, FrameStep step, const EffectSession* session) override {
        const std::lock_guard lock(mutex_);
        steps[frame].push_back(step);
        if (session) drewWith[frame] = session;
    }
    void Ends(std::size_t frame, const FrameOutcome& outcome) override {
        const std::lock_guard lock(mutex_);
        EXPECT_TRUE(outcomes.emplace(frame, outcome).second) << "a frame ends once";
    }
    std::map<std::size_t, std::vector<FrameStep>> steps;
    std::map<std::size_t, const EffectSession*> drewWith;
    std::map<std::size_t, FrameOutcome> outcomes;

 private:
    std::mutex mutex_;
};

class DrawFramesTest : public SessionTest {
 protected:
    DrawFramesTest() {
        Start();
        for (int frame = 1; frame <= 12; ++frame) {
            WritePng("in." + std::to_string(frame) + ".png", {255, static_cast<A_u_char>(frame), 20, 30}, 6, 4);
        }
        request.input = Path("in.@.png");
        request.output = Path("out.@.png");
    }

    std::string Path(const std::string& name) const { return (folder / name).string(); }
    void WritePng(const std::string& name, PF_Pixel pixel, int width, int height) const {
        ASSERT_TRUE(WritePicture(folder / name, Filled8(width, height, pixel), {{0, 0, width, height}, width, height}));
    }

    /// Draws with this many instances. The session is the first of them.
    void Draw(int drawers = 1) {
        auto planned = PlanFrames(request);
        ASSERT_TRUE(planned) << planned.error().sentence;
        plan = std::move(*planned);
        job.plan = &plan;
        job.shape = ShapeFor(drawers);
        job.keepGoing = request.keepGoing;
        std::vector<EffectSession> others;
        others.reserve(16);
        std::vector<EffectSession*> all = {&*session};
        while (static_cast<int>(all.size()) < drawers) {
            auto another = EffectSession::StartInstance(*session);
            ASSERT_TRUE(another) << another.error().sentence;
            others.push_back(std::move(*another));
            all.push_back(&others.back());
        }
        LayerReader reader({});
        EXPECT_TRUE(DrawFrames(job, all, reader, {}, watcher));
        for (const EffectSession* each : all) EXPECT_THAT(each->Misbehaviour(), testing::IsEmpty());
    }

    const Folder folder;
    PlanRequest request;
    FramePlan plan;
    FrameJob job;
    Watcher watcher;
};

TEST_F(DrawFramesTest, EachFrameIsReadDrawnAndWritten) {
    Draw();
    ASSERT_EQ(watcher.outcomes.size(), 12u);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_THAT(watcher.steps[i], ElementsAre(FrameStep::kRead, FrameStep::kDraw, FrameStep::kWrite));
        const FrameOutcome& outcome = watcher.outcomes[i];
        EXPECT_EQ(outcome.kind, Kind::kDrawn);
        EXPECT_EQ(outcome.layerWidth, 6);
        EXPECT_EQ(outcome.layerHeight, 4);
        EXPECT_EQ(outcome.bits, 8);
        EXPECT_THAT(outcome.picture, IsRect(0, 0, 6, 4));
        auto picture = ReadPicture(plan.frames[i].output);
        ASSERT_TRUE(picture);
        EXPECT_EQ(Pixel8(picture->pixels, 0, 0).red, i + 1);
    }
}

TEST_F(DrawFramesTest, TheEffectSeesRateTimeAndLength) {
    request.frames = {7};
    request.rate = {30000, 1001};
    request.zeroFrame = 2;
    Draw();
    EXPECT_EQ(seen->renderIn.current_time, 5 * 1001);
    EXPECT_EQ(seen->renderIn.time_step, 1001);
    EXPECT_EQ(seen->renderIn.local_time_step, 1001);
    EXPECT_EQ(seen->renderIn.time_scale, 30000u);
    EXPECT_EQ(seen->renderIn.total_time, 6 * 1001);
    EXPECT_EQ(seen->preRenderIn.current_time, 5 * 1001);
}

TEST_F(DrawFramesTest, EachThreadHasItsInstanceAndAllShareTheGlobalData) {
    Draw(3);
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETUP], 1);
    EXPECT_EQ(seen->commands[PF_Cmd_PARAMS_SETUP], 1);
    EXPECT_EQ(seen->commands[PF_Cmd_SEQUENCE_SETUP], 3);
    EXPECT_EQ(seen->commands[PF_Cmd_SEQUENCE_SETDOWN], 2) << "the instances that were ended";
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 0) << "the first one's to send";
    ASSERT_TRUE(session->End());
    EXPECT_EQ(seen->commands[PF_Cmd_GLOBAL_SETDOWN], 1);
    EXPECT_TRUE(session->Open().IsBalanced());
}

TEST_F(DrawFramesTest, FilesDependOnNeitherThreadsNorOrder) {
    Set("paint/border", "2");
    Draw(1);
    std::vector<std::string> expected;
    for (const PlannedFrame& frame : plan.frames) expected.push_back(ReadBytes(frame.output));
    request.output = Path("again.@.png");
    for (const int drawers : {1, 2, 4}) {
        for (const bool backwards : {false, true}) {
            SCOPED_TRACE(testing::Message() << drawers << " threads, " << (backwards ? "backwards" : "forwards"));
            request.frames = backwards ? *ParseFrames("12-1") : *ParseFrames("1-12:4");
            watcher.outcomes.clear();
            Draw(drawers);
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(ReadBytes(folder / ("again." + std::to_string(i + 1) + ".png")), expected[i]) << i + 1;
            }
        }
    }
}

TEST_F(DrawFramesTest, ValuesCanDifferFromFrameToFrame) {
    request.frames = {1, 2, 3};
    job.values = [](double frame, const ParamSet& params) {
        ParamSet values = params;
        EXPECT_TRUE(values.SetFromText("paint/border", std::to_string(frame)));
        return values;
    };
    Draw(2);
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(watcher.outcomes[static_cast<std::size_t>(i)].picture, IsRect(-1 - i, -1 - i, 7 + i, 5 + i));
    }
}

TEST_F(DrawFramesTest, SizesMayChangeFromFrameToFrame) {
    WritePng("in.2.png", {255, 1, 2, 3}, 9, 5);
    request.frames = {1, 2};
    Draw();
    EXPECT_THAT(watcher.outcomes[1].picture, IsRect(0, 0, 9, 5));
    EXPECT_EQ(seen->renderIn.width, 9);
    EXPECT_EQ(seen->renderIn.height, 5);
}

TEST_F(DrawFramesTest, ATextureLiesWhereItIsToLie) {
    WritePng("tex.1.png", {255, 9, 8, 7}, 2, 1);
    request.texture = Path("tex.1.png");
    request.frames = {1, 2};
    job.settings.downsample = 1;
    job.settings.textureX = 3;
    job.settings.textureY = 2;
    Draw(2);
    EXPECT_THAT(seen->picture.result_rect, IsRect(3, 2, 5, 3));
    EXPECT_EQ(seen->pictureWorld.width, 2);
}

TEST_F(DrawFramesTest, TheFirstFailureEndsIt) {
    WriteBytes(folder / "in.5.png", "no picture");
    Draw();
    EXPECT_EQ(watcher.outcomes[4].kind, Kind::kFailed);
    EXPECT_EQ(watcher.outcomes[4].failure->kind, ErrorKind::kFile);
    EXPECT_THAT(watcher.outcomes[4].failure->sentence, HasSubstr("in.5.png"));
    EXPECT_FALSE(watcher.outcomes.contains(5)) << "it was not reached";
    for (const auto& [frame, outcome] : watcher.outcomes) {
        if (outcome.kind != Kind::kDrawn) continue;
        EXPECT_TRUE(std::filesystem::exists(plan.frames[frame].output));
    }
}

TEST_F(DrawFramesTest, OrItKeepsGoing) {
    WriteBytes(folder / "in.5.png", "no picture");
    std::filesystem::remove(folder / "in.6.png");
    std::filesystem::create_directory(folder / "out.7.png");
    request.keepGoing = true;
    request.frames = *ParseFrames("1-12");
    Draw(2);
    ASSERT_EQ(watcher.outcomes.size(), 12u);
    for (std::size_t i = 0; i < 12; ++i) {
        const bool fails = i >= 4 && i <= 6;
        EXPECT_EQ(watcher.outcomes[i].kind, fails ? Kind::kFailed : Kind::kDrawn) << i;
    }
    EXPECT_EQ(watcher.outcomes[5].failure->sentence, "cannot read '" + Path("in.6.png") + "': there is no such file");
    EXPECT_THAT(watcher.outcomes[6].failure->sentence, HasSubstr("out.7.png"));
}

TEST_F(DrawFramesTest, AnEffectsFailureIsSaidInTheWordsOfTheCaller) {
    Set("flaw", "error-with-message");
    job.explain = [](const Failure& failure, const EffectSession&) {
        return Failure{failure.kind, "explained: " + failure.sentence};
    };
    request.frames = {1};
    Draw();
    EXPECT_EQ(watcher.outcomes[0].failure->kind, ErrorKind::kEffect);
    EXPECT_THAT(watcher.outcomes[0].failure->sentence, HasSubstr("explained: "));
    EXPECT_EQ(watcher.drewWith[0], &*session);
}

TEST_F(DrawFramesTest, FramesThatNeedNoDrawingAreNotRead) {
    std::filesystem::remove(folder / "in.1.png");
    WriteBytes(folder / "out.2.png", "done");
    request.frames = {1, 2};
    request.missing = MissingFrames::kSkip;
    request.skipExisting = true;
    Draw();
    EXPECT_EQ(watcher.outcomes[0].kind, Kind::kSkipped);
    EXPECT_EQ(watcher.outcomes[1].kind, Kind::kExists);
    EXPECT_TRUE(watcher.steps.empty());
    EXPECT_EQ(ReadBytes(folder / "out.2.png"), "done");
}

TEST_F(DrawFramesTest, AFirstFrameThatWasReadIsNotReadAgain) {
    request.frames = {1};
    auto planned = PlanFrames(request);
    ASSERT_TRUE(planned);
    plan = *planned;
    job.plan = &plan;
    LayerReader reader({});
    auto layers = reader.Read(plan.frames[0]);
    ASSERT_TRUE(layers);
    std::filesystem::remove(folder / "in.1.png");
    EXPECT_TRUE(DrawFrames(job, {&*session}, reader, {0, std::move(*layers)}, watcher));
    EXPECT_EQ(watcher.outcomes[0].kind, Kind::kDrawn);
}

TEST_F(DrawFramesTest, AStillPictureIsReadOnce) {
    WritePng("still.png", {255, 1, 2, 3}, 3, 3);
    PlannedFrame frame;
    frame.input = frame.texture = Path("still.png");
    frame.inputChanges = frame.textureChanges = false;
    LayerReader reader({});
    const auto first = reader.Read(frame);
    const auto second = reader.Read(frame);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->input, second->input);
    EXPECT_EQ(first->texture, second->texture);
    frame.inputChanges = true;
    const auto third = reader.Read(frame);
    ASSERT_TRUE(third);
    EXPECT_NE(third->input, first->input);
}

TEST_F(DrawFramesTest, TheTextureIsMadeInTheDepthOfEachInput) {
    WritePng("still.png", {255, 1, 2, 3}, 3, 3);
    WriteFile(folder / "deep.exr", OIIO::ImageSpec(2, 2, 4, OIIO::TypeDesc::FLOAT), {0.5f, 0.25f, 2, 1}, false);
    LayerReader reader({});
    PlannedFrame frame;
    frame.texture = Path("still.png");
    frame.textureChanges = false;
    for (const char* input : {"still.png", "deep.exr", "still.png"}) {
        frame.input = Path(input);
        const auto layers = reader.Read(frame);
        ASSERT_TRUE(layers);
        EXPECT_EQ(layers->texture->pixels.PixelDepth(), layers->input->pixels.PixelDepth());
    }
}

}  // namespace

}  // namespace umbrant::host
