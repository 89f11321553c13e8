// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// One frame: what the effect is asked, what it is given, what comes back.

#include <thread>

#include "tests/host/session/session_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

std::vector<PF_Cmd> Sent(const Frame& frame) {
    std::vector<PF_Cmd> commands;
    for (const CommandRecord& record : frame.commands) commands.push_back(record.command);
    return commands;
}

TEST_F(SessionTest, GrowAsksForTheLayerFirstAndThenForEverything) {
    Start();
    Set("paint/border", "2");
    const World layer = Picture(4, 3);
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame) << frame.error().sentence;
    EXPECT_THAT(Sent(*frame), ElementsAre(PF_Cmd_SMART_PRE_RENDER, PF_Cmd_SMART_PRE_RENDER, PF_Cmd_SMART_RENDER));
    EXPECT_THAT(seen->preRender.output_request.rect, IsRect(-2, -2, 6, 5)) << "the first pass's max rectangle";
    EXPECT_THAT(seen->render.output_request.rect, IsRect(-2, -2, 6, 5));
    EXPECT_THAT(frame->rect, IsRect(-2, -2, 6, 5));
    EXPECT_THAT(frame->maxRect, IsRect(-2, -2, 6, 5));
    EXPECT_EQ(frame->output.Width(), 8);
    EXPECT_EQ(frame->output.Height(), 7);
    EXPECT_THAT(At(frame->output, 0, 0), IsPixel(255, 10, 20, 30)) << "the effect's colour outside the layer";
    EXPECT_THAT(At(frame->output, 2, 2), IsPixel(200, 1, 1, 7)) << "the layer's top-left";
    EXPECT_THAT(At(frame->output, 5, 4), IsPixel(200, 4, 3, 7)) << "the layer's bottom-right";
    EXPECT_EQ(seen->allocated, 2);
    EXPECT_EQ(seen->deleted, 2) << "the first pass's data too, though no render followed";
    EXPECT_TRUE(session->Open()[Resource::kHandle] == 1) << "the global data";
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
    for (const CommandRecord& record : frame->commands)
        EXPECT_TRUE(record.balance.IsBalanced()) << record.balance.Text();
    EXPECT_EQ(frame->message, "");
}

TEST_F(SessionTest, TheLayersCanvasAsksForTheLayer) {
    Start();
    Set("paint/border", "2");
    const World layer = Picture(4, 3);
    const Result<Frame> frame = session->Render({.layer = &layer, .canvas = Canvas::kLayer});
    ASSERT_TRUE(frame);
    EXPECT_THAT(Sent(*frame), ElementsAre(PF_Cmd_SMART_PRE_RENDER, PF_Cmd_SMART_RENDER));
    EXPECT_THAT(seen->preRender.output_request.rect, IsRect(0, 0, 4, 3));
    EXPECT_THAT(frame->rect, IsRect(-2, -2, 6, 5)) << "the effect returned extra pixels, and said so";
}

TEST_F(SessionTest, ExtraPixelsNeedTheirFlag) {
    Start();
    Set("paint/border", "2");
    Set("flaw", "no-extra-flag");
    const World layer = Picture(4, 3);
    const Result<Frame> frame = session->Render({.layer = &layer, .canvas = Canvas::kLayer});
    ASSERT_TRUE(frame);
    EXPECT_THAT(frame->rect, IsRect(0, 0, 4, 3));
    EXPECT_THAT(frame->maxRect, IsRect(-2, -2, 6, 5));
    EXPECT_THAT(At(frame->output, 0, 0), IsPixel(200, 1, 1, 7));
}

TEST_F(SessionTest, ARegionIsAskedForAsItIs) {
    Start();
    const World layer = Picture(6, 6);
    const Result<Frame> frame = session->Render({.layer = &layer, .region = PF_LRect{2, 1, 4, 20}});
    ASSERT_TRUE(frame);
    EXPECT_THAT(seen->preRender.output_request.rect, IsRect(2, 1, 4, 20));
    EXPECT_THAT(seen->input.result_rect, IsRect(2, 1, 4, 6)) << "what of it the layer has";
    EXPECT_THAT(seen->input.max_result_rect, IsRect(0, 0, 6, 6));
    EXPECT_EQ(seen->inputWorld.width, 2);
    EXPECT_EQ(seen->inputWorld.height, 5);
    EXPECT_EQ(seen->inputWorld.origin_x, 2);
    EXPECT_EQ(seen->inputWorld.origin_y, 1);
    EXPECT_THAT(seen->inputWorld.extent_hint, IsRect(0, 0, 2, 5));
    EXPECT_THAT(frame->rect, IsRect(2, 1, 4, 6));
    EXPECT_THAT(At(frame->output, 0, 0), IsPixel(200, 3, 2, 7)) << "cropped, not moved";
}

/// The record of a command for the frame that the next test asks for.
void ExpectRecord(const PF_InData& in) {
    EXPECT_EQ(in.version.major, 13);
    EXPECT_EQ(in.version.minor, 28);
    EXPECT_EQ(in.appl_id, 0x46585443);
    EXPECT_EQ(in.width, 101);
    EXPECT_EQ(in.height, 41);
    EXPECT_THAT(in.extent_hint, IsRect(0, 0, 50, 20));
    EXPECT_EQ(in.downsample_x.num, 1);
    EXPECT_EQ(in.downsample_x.den, 2u);
    EXPECT_EQ(in.downsample_y.num, 1);
    EXPECT_EQ(in.downsample_y.den, 2u);
    EXPECT_EQ(in.pixel_aspect_ratio.num, 1);
    EXPECT_EQ(in.pixel_aspect_ratio.den, 1u);
    EXPECT_EQ(in.current_time, 7);
    EXPECT_EQ(in.time_step, 2);
    EXPECT_EQ(in.local_time_step, 2);
    EXPECT_EQ(in.total_time, 99);
    EXPECT_EQ(in.time_scale, 30u);
    EXPECT_EQ(in.quality, PF_Quality_LO);
    EXPECT_EQ(in.field, PF_Field_LOWER);
    EXPECT_EQ(in.num_params, PAINTER_COUNT);
    EXPECT_NE(in.pica_basicP, nullptr);
    EXPECT_NE(in.utils, nullptr);
    EXPECT_NE(in.effect_ref, nullptr);
    EXPECT_NE(in.global_data, nullptr);
}

TEST_F(SessionTest, TheEffectIsToldWhereItIs) {
    Start();
    const World layer = Picture(50, 20);
    const FrameRequest request{.layer = &layer,
                               .layerWidth = 101,
                               .layerHeight = 41,
                               .downsampleX = {1, 2},
                               .downsampleY = {1, 2},
                               .time = 7,
                               .timeStep = 2,
                               .totalTime = 99,
                               .timeScale = 30,
                               .quality = PF_Quality_LO,
                               .field = PF_Field_LOWER};
    ASSERT_TRUE(session->Render(request));
    ExpectRecord(seen->preRenderIn);
    ExpectRecord(seen->renderIn);
    EXPECT_EQ(seen->outBefore.global_data, seen->renderIn.global_data) << "carried";
    EXPECT_EQ(seen->outBefore.out_flags, 0) << "the rest of the record starts from zero";
    EXPECT_EQ(seen->outBefore.return_msg[0], 0);
    EXPECT_EQ(seen->outBefore.return_msg[255], 0);
    EXPECT_THAT(seen->resultBefore, IsRect(0, 0, 0, 0));
    EXPECT_THAT(seen->maxBefore, IsRect(0, 0, 0, 0));

    EXPECT_EQ(seen->preRender.bitdepth, 8);
    EXPECT_EQ(seen->preRender.output_request.field, PF_Field_LOWER);
    EXPECT_EQ(seen->preRender.output_request.channel_mask, PF_ChannelMask_ARGB);
    EXPECT_EQ(seen->preRender.output_request.preserve_rgb_of_zero_alpha, 0);
    EXPECT_EQ(seen->preRender.gpu_data, nullptr);
    EXPECT_EQ(seen->preRender.what_gpu, PF_GPU_Framework_NONE);
    EXPECT_EQ(seen->render.bitdepth, 8);
    EXPECT_NE(seen->render.pre_render_data, nullptr);
    EXPECT_EQ(seen->input.ref_width, 101);
    EXPECT_EQ(seen->input.ref_height, 41);
    EXPECT_EQ(seen->input.par.num, 1);
    EXPECT_EQ(seen->input.par.den, 1u);
    EXPECT_EQ(seen->input.solid, 0);

    EXPECT_EQ(seen->centre.u.td.x_value, (101 << 16) / 4) << "50 % of the layer, in downsampled pixels";
    EXPECT_EQ(seen->centre.u.td.y_value, (41 << 16) / 8);
    EXPECT_EQ(seen->layer.param_type, PF_Param_LAYER);
    EXPECT_EQ(seen->layer.u.ld.width, 50);
    EXPECT_EQ(seen->layer.u.ld.height, 20);
    EXPECT_NE(seen->layer.u.ld.data, nullptr);
}

TEST_F(SessionTest, WorldsHavePaddedRowsAndAnOutputThatShowsWhatIsNotWritten) {
    Start();
    const World layer = Picture(8, 2);
    ASSERT_TRUE(session->Render({.layer = &layer}));
    for (const PF_EffectWorld* world : {&seen->inputWorld, &seen->outputWorld}) {
        EXPECT_EQ(world->rowbytes % 16, 0);
        EXPECT_GT(world->rowbytes, world->width * 4);
    }
    EXPECT_NE(seen->firstOutputByte, 0);
    EXPECT_NE(seen->firstOutputByte, 255);
}

TEST_F(SessionTest, FloatAndDeepFramesHaveTheirDepth) {
    Start();
    for (const Depth depth : {Depth::k16, Depth::k32}) {
        const World layer = World::Create(2, 2, depth);
        const Result<Frame> frame = session->Render({.layer = &layer});
        ASSERT_TRUE(frame);
        EXPECT_EQ(seen->preRender.bitdepth, static_cast<int>(depth));
        EXPECT_EQ(seen->render.bitdepth, static_cast<int>(depth));
        EXPECT_EQ(frame->output.PixelDepth(), depth);
    }
}

TEST_F(SessionTest, ATextureLiesWhereItIsPlaced) {
    Start();
    const World layer = Picture(2, 2);
    const World texture = Picture(4, 4, 99);
    const FrameRequest request{
        .layer = &layer, .texture = &texture, .textureOrigin = {{-1}, {1}}, .region = PF_LRect{-5, -5, 10, 4}};
    Set("paint/border", "3");
    const Result<Frame> frame = session->Render(request);
    ASSERT_TRUE(frame);
    EXPECT_THAT(seen->picture.result_rect, IsRect(-1, 1, 3, 4)) << "cut by the request";
    EXPECT_THAT(seen->picture.max_result_rect, IsRect(-1, 1, 3, 5));
    EXPECT_EQ(seen->picture.ref_width, 4);
    EXPECT_EQ(seen->picture.ref_height, 4);
    EXPECT_EQ(seen->pictureWorld.origin_x, -1);
    EXPECT_EQ(seen->pictureWorld.origin_y, 1);
    EXPECT_EQ(seen->pictureWorld.width, 4);
    EXPECT_EQ(seen->pictureWorld.height, 3);
    EXPECT_THAT(frame->rect, IsRect(-3, -3, 5, 5));
    EXPECT_THAT(At(frame->output, 2, 4), IsPixel(200, 1, 1, 99)) << "the texture's top-left at (-1, 1)";
}

TEST_F(SessionTest, WithoutATextureThereIsNone) {
    Start();
    const World layer = Picture(2, 2);
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame);
    EXPECT_THAT(seen->picture.result_rect, IsRect(0, 0, 0, 0));
    EXPECT_THAT(seen->picture.max_result_rect, IsRect(0, 0, 0, 0));
    EXPECT_EQ(seen->pictureWorld.data, nullptr);
    EXPECT_THAT(session->Misbehaviour(), IsEmpty()) << "the empty check-out counts like any other";
}

TEST_F(SessionTest, ATextureOutsideTheRequestIsAbsentToo) {
    Start();
    const World layer = Picture(2, 2);
    const World texture = Picture(2, 2);
    ASSERT_TRUE(session->Render({.layer = &layer, .texture = &texture, .textureOrigin = {{50}, {50}}}));
    EXPECT_THAT(seen->picture.result_rect, IsRect(0, 0, 0, 0));
    EXPECT_THAT(seen->picture.max_result_rect, IsRect(50, 50, 52, 52));
    EXPECT_EQ(seen->pictureWorld.data, nullptr);
}

TEST_F(SessionTest, AnEmptyLayerIsNothingToDraw) {
    Start();
    const World layer = World::Create(0, 0, Depth::k8);
    const Result<Frame> frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame) << frame.error().sentence;
    EXPECT_EQ(frame->output.Width(), 0);
    EXPECT_FALSE(frame->output.IsNull());
    EXPECT_EQ(seen->commands[PF_Cmd_SMART_RENDER], 0);
    EXPECT_EQ(seen->deleted, seen->allocated);
}

TEST_F(SessionTest, PreRenderAloneGivesItsDataBack) {
    Start();
    Set("paint/border", "1.5");
    const World layer = Picture(4, 4);
    const Result<PreRendered> answer = session->PreRender({.layer = &layer, .downsampleX = {1, 2}});
    ASSERT_TRUE(answer);
    EXPECT_THAT(answer->resultRect, IsRect(-1, -1, 5, 5));
    EXPECT_THAT(answer->maxRect, IsRect(-1, -1, 5, 5));
    EXPECT_EQ(answer->flags, PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS);
    EXPECT_THAT(answer->commands, ElementsAre(Field(&CommandRecord::command, PF_Cmd_SMART_PRE_RENDER)));
    EXPECT_EQ(seen->deleted, 1);
    EXPECT_EQ(seen->commands[PF_Cmd_SMART_RENDER], 0);
}

TEST_F(SessionTest, AFrameHasItsOwnValuesWhenItBringsSome) {
    Start();
    const World layer = Picture(1, 1);
    ParamSet params = session->Params();
    ASSERT_TRUE(params.SetFromText("paint/border", "4"));
    Result<Frame> frame = session->Render({.layer = &layer, .params = &params});
    ASSERT_TRUE(frame);
    EXPECT_THAT(frame->rect, IsRect(-4, -4, 5, 5));
    frame = session->Render({.layer = &layer});
    ASSERT_TRUE(frame);
    EXPECT_THAT(frame->rect, IsRect(0, 0, 1, 1));
}

TEST_F(SessionTest, ImpossibleRequestsAreTheProgramsMistake) {
    Start();
    const World layer = Picture(1, 1);
    const World floating = World::Create(1, 1, Depth::k32);
    const World null;
    const ParamSet strange;
    const FrameRequest requests[] = {
        {},
        {.layer = &null},
        {.layer = &layer, .texture = &floating},
        {.layer = &layer, .texture = &null},
        {.layer = &layer, .timeScale = 0},
        {.layer = &layer, .downsampleY = {1, 0}},
        {.layer = &layer, .params = &strange},
    };
    for (const FrameRequest& request : requests) {
        const Result<Frame> frame = session->Render(request);
        ASSERT_FALSE(frame);
        EXPECT_EQ(frame.error().kind, ErrorKind::kInternal);
        EXPECT_FALSE(session->PreRender(request));
    }
    EXPECT_EQ(seen->commands[PF_Cmd_SMART_PRE_RENDER], 0);
}

TEST_F(SessionTest, SeveralThreadsDrawAtOnce) {
    Start();
    std::vector<std::thread> threads;
    std::atomic<int> right{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            ParamSet params = session->Params();
            if (!params.SetFromText("paint/border", std::to_string(i))) return;
            const World layer = Picture(5, 5);
            for (int round = 0; round < 10; ++round) {
                const Result<Frame> frame = session->Render({.layer = &layer, .params = &params});
                if (frame && Same(frame->rect, {-i, -i, 5 + i, 5 + i}) && At(frame->output, i + 2, i + 2).red == 3) {
                    ++right;
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 40);
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
    EXPECT_EQ(session->Open()[Resource::kHandle], 1);
    EXPECT_EQ(session->Open()[Resource::kParam], 0);
    EXPECT_EQ(session->Open()[Resource::kLayerPixels], 0);
}

TEST_F(SessionTest, ARenderOutOfMemoryIsToldItsSizeWhereADriverMayRefuseIt) {
    const struct {
        const char* name;
        const char* call;
        PF_Err error;
        int width, height;
        const char* sentence;
        ErrorKind kind = ErrorKind::kEffect;
    } rows[] = {
        {"wider", "smart-render.checkout_output", PF_Err_OUT_OF_MEMORY, 16385, 2,
         "Painter failed in PF_Cmd_SMART_RENDER: error 4, PF_Err_OUT_OF_MEMORY; the image would be 16385 x 2 pixels, "
         "and many OpenGL drivers support at most 16384 x 16384"},
        {"higher", "smart-render.checkout_output", PF_Err_OUT_OF_MEMORY, 1, 16385,
         "Painter failed in PF_Cmd_SMART_RENDER: error 4, PF_Err_OUT_OF_MEMORY; the image would be 1 x 16385 pixels, "
         "and many OpenGL drivers support at most 16384 x 16384"},
        {"at the limit, where no driver refuses it", "smart-render.checkout_output", PF_Err_OUT_OF_MEMORY, 16384, 1,
         "not enough memory for drawing an image of 16384 x 1 pixels, 1 MiB", ErrorKind::kInternal},
        {"another error", "smart-render.checkout_output", PF_Err_BAD_CALLBACK_PARAM, 16385, 1,
         "Painter failed in PF_Cmd_SMART_RENDER: error 516, PF_Err_BAD_CALLBACK_PARAM"},
        {"before the render", "pre-render.checkout_layer", PF_Err_OUT_OF_MEMORY, 16385, 1,
         "Painter failed in PF_Cmd_SMART_PRE_RENDER: error 4, PF_Err_OUT_OF_MEMORY"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Start({.fault = [row](std::string_view call) { return call == row.call ? row.error : 0; }});
        const World layer = World::Create(row.width, row.height, Depth::k8);
        const Result<Frame> frame = session->Render({.layer = &layer});
        ASSERT_FALSE(frame);
        EXPECT_EQ(frame.error().kind, row.kind);
        EXPECT_EQ(frame.error().sentence, row.sentence);
    }
}

}  // namespace

}  // namespace umbrant::host
