// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The one rectangle of a sequence: as text, at a lower resolution, and asked of an effect before anything is drawn.

#include "host/render/set_canvas.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>

#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/host/session/session_fixture.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ChoiceKind = CanvasChoice::Kind;

std::vector<int> Sides(const PF_LRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

TEST(CanvasText, IsReadAsItIsWritten) {
    const struct {
        const char* text;
        ChoiceKind kind;
        std::vector<int> sides;
    } rows[] = {
        {"grow", ChoiceKind::kGrow, {0, 0, 0, 0}},
        {"frame", ChoiceKind::kFrame, {0, 0, 0, 0}},
        {"layer", ChoiceKind::kLayer, {0, 0, 0, 0}},
        {"-62,-60,1982,1142", ChoiceKind::kRectangle, {-62, -60, 1982, 1142}},
        {"5,6,7,8", ChoiceKind::kRectangle, {5, 6, 7, 8}},
        {"-1000000,-1000000,1000000,1000000", ChoiceKind::kRectangle, {-1000000, -1000000, 1000000, 1000000}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto choice = ParseCanvas(row.text);
        ASSERT_TRUE(choice) << choice.error().sentence;
        EXPECT_EQ(choice->kind, row.kind);
        EXPECT_EQ(Sides(choice->rectangle), row.sides);
        if (row.kind == ChoiceKind::kRectangle) {
            EXPECT_EQ(CanvasText(choice->rectangle), row.text);
        }
    }
}

TEST(CanvasText, RefusesWhatIsNoCanvas) {
    for (const char* text : {"", "wide", "Grow", "0,0,5", "0,0,5,5,", "0,0,5,5,5", "0,0,5,5x", "0, 0,5,5", "0,0,5.5,5",
                             "+0,0,5,5", "0,0,5,1000001", "0,0,5,99999999999", ",,,"}) {
        const auto choice = ParseCanvas(text);
        ASSERT_FALSE(choice) << text;
        EXPECT_EQ(choice.error().kind, ErrorKind::kUsage);
        EXPECT_EQ(
            choice.error().sentence,
            "'" + std::string(text) +
                "' is neither grow, frame, layer, tight nor a rectangle LEFT,TOP,RIGHT,BOTTOM of whole numbers from "
                "-1000000 to 1000000");
    }
    for (const char* text : {"0,0,0,5", "0,5,5,5", "7,0,5,5"}) {
        const auto choice = ParseCanvas(text);
        ASSERT_FALSE(choice) << text;
        EXPECT_THAT(choice.error().sentence,
                    HasSubstr("covers nothing; LEFT must be less than RIGHT and TOP less than BOTTOM"));
    }
}

TEST(CanvasText, ALowerResolutionCoversAllOfIt) {
    EXPECT_THAT(Sides(DrawnCanvas({-5, -4, 7, 8}, 1)), ElementsAre(-5, -4, 7, 8));
    EXPECT_THAT(Sides(DrawnCanvas({-5, -4, 7, 8}, 4)), ElementsAre(-2, -1, 2, 2));
    for (const int n : {1, 2, 3, 64}) {
        EXPECT_THAT(Sides(DrawnCanvas(FullSizeCanvas({-9, -1, 3, 11}, n), n)), ElementsAre(-9, -1, 3, 11)) << n;
    }
}

TEST(CanvasText, ACanvasIsNoLargerThanAnImage) {
    EXPECT_TRUE(CheckCanvas({-10000, 0, 20000, 30000}, 1));
    const auto wide = CheckCanvas({-10000, 0, 20001, 5}, 2);
    ASSERT_FALSE(wide);
    EXPECT_EQ(wide.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(wide.error().sentence,
              "--canvas -20000,0,40002,10 has 30001 x 5 pixels; no side may be longer than 30000; give --canvas a "
              "smaller rectangle, or draw at a lower resolution with --downsample");
}

/// A set of frames over files of several sizes, and an effect that counts what it is asked.
class SetCanvasTest : public SessionTest {
 protected:
    SetCanvasTest() {
        SessionOptions options;
        options.beforeCommand = [this](CommandArguments& arguments) { commands.push_back(arguments.command); };
        Start(std::move(options));
        for (int frame = 1; frame <= 6; ++frame) WritePng("in." + std::to_string(frame) + ".png", 6, 4);
        request.input = (folder / "in.@.png").string();
        request.output = (folder / "out.@.png").string();
    }
    /// The session's last commands are noted too.
    ~SetCanvasTest() override { session.reset(); }
    void WritePng(const std::string& name, int width, int height) const {
        const auto written =
            WritePicture(folder / name, Filled8(width, height, {255, 1, 2, 3}), {{0, 0, width, height}, width, height});
        ASSERT_TRUE(written) << written.error().sentence;
    }
    /// The border is each frame's number, between the first and the last keyframe.
    void Move(double first, double last) {
        job.values = [=](double frame, const ParamSet& params) {
            ParamSet values = params;
            const auto set = values.SetFromText("paint/border", std::to_string(std::clamp(frame, first, last)));
            EXPECT_TRUE(set) << set.error().sentence;
            return values;
        };
    }
    std::vector<int> Find(const ReadOptions& read = {}) {
        auto planned = PlanFrames(request);
        EXPECT_TRUE(planned) << planned.error().sentence;
        if (!planned) return {};
        plan = std::move(*planned);
        job.plan = &plan;
        const auto layers = reader.Read(plan.frames.front());
        EXPECT_TRUE(layers) << layers.error().sentence;
        if (!layers) return {};
        commands.clear();
        return Sides(SetCanvas(job, *layers, *session, read));
    }

    const Folder folder;
    PlanRequest request;
    FramePlan plan;
    FrameJob job;
    LayerReader reader{{}};
    std::vector<PF_Cmd> commands;
};

TEST_F(SetCanvasTest, WhereNothingChangesOneFrameIsAsked) {
    ASSERT_TRUE(session->Params().SetFromText("paint/border", "2"));
    EXPECT_THAT(Find(), ElementsAre(-2, -2, 8, 6));
    EXPECT_THAT(commands, ElementsAre(PF_Cmd_SMART_PRE_RENDER, PF_Cmd_SMART_PRE_RENDER))
        << "the two questions of one frame, and no render";
}

TEST_F(SetCanvasTest, WhereValuesMoveEveryFrameIsAsked) {
    Move(2, 4);
    EXPECT_THAT(Find(), ElementsAre(-4, -4, 10, 8));
    EXPECT_EQ(commands.size(), 2u * 6);
    EXPECT_EQ(std::count(commands.begin(), commands.end(), PF_Cmd_SMART_PRE_RENDER), 2 * 6) << "nothing is drawn";
}

TEST_F(SetCanvasTest, IsThatOfTheWholeSet) {
    Move(1, 6);
    request.chunk = {1, 3};
    request.skipExisting = true;
    WritePng("out.6.png", 1, 1);
    EXPECT_THAT(Find(), ElementsAre(-6, -6, 12, 10)) << "whatever the chunk, and what is already there";
}

TEST_F(SetCanvasTest, SizesAreThoseOfTheFiles) {
    WritePng("in.5.png", 3, 9);
    EXPECT_THAT(Find(), ElementsAre(0, 0, 6, 9));
    EXPECT_EQ(commands.size(), 2u * 6);
    job.settings.downsample = 2;
    EXPECT_THAT(Find(), ElementsAre(0, 0, 3, 5));
}

TEST_F(SetCanvasTest, SizesAreThoseOfTheChosenPart) {
    // The pages of a TIFF may have sizes of their own.
    const OIIO::ImageSpec pages[] = {{6, 4, 4, OIIO::TypeDesc::UINT8}, {3, 9, 4, OIIO::TypeDesc::UINT8}};
    const std::vector<float> pixels(6 * 9 * 4, 0.5f);
    for (int frame = 1; frame <= 6; ++frame) {
        const std::string file = (folder / ("in." + std::to_string(frame) + ".tif")).string();
        const auto output = OIIO::ImageOutput::create(file);
        ASSERT_TRUE(output->open(file, pages[0])) << output->geterror();
        ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, pixels.data()));
        ASSERT_TRUE(output->open(file, pages[1], OIIO::ImageOutput::AppendSubimage)) << output->geterror();
        ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, pixels.data()));
        ASSERT_TRUE(output->close());
        std::filesystem::remove(folder / ("in." + std::to_string(frame) + ".png"));
    }
    request.input = (folder / "in.@.tif").string();
    EXPECT_THAT(Find(), ElementsAre(0, 0, 6, 4));
    EXPECT_THAT(Find({"", "1"}), ElementsAre(0, 0, 3, 9));
}

TEST_F(SetCanvasTest, AFrameWithoutAFileHasTheSizeOfTheOneBefore) {
    Move(1, 6);
    std::filesystem::remove(folder / "in.6.png");
    WritePng("in.5.png", 3, 9);
    request.frames = std::vector<FrameNumber>{1, 2, 3, 4, 5, 6};
    request.keepGoing = true;
    EXPECT_THAT(Find(), ElementsAre(-6, -6, 10, 15));
    request.missing = MissingFrames::kSkip;
    EXPECT_THAT(Find(), ElementsAre(-5, -5, 10, 14)) << "a frame that is left out does not count";
}

TEST_F(SetCanvasTest, AnEffectThatFailsInAFrameFailsThere) {
    job.values = [](double frame, const ParamSet& params) {
        ParamSet values = params;
        EXPECT_TRUE(values.SetFromText("paint/border", std::to_string(frame)));
        if (frame == 6) {
            EXPECT_TRUE(values.SetFromText("flaw", "pre-render-error"));
        }
        return values;
    };
    EXPECT_THAT(Find(), ElementsAre(-5, -5, 11, 9));
}

}  // namespace

}  // namespace umbrant::host
