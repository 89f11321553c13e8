// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The programs and the uniforms, with no driver.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "render/passes/sample_stack.h"
#include "render/plan_passes.h"
#include "render/shadow_shaders.h"
#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;

class Senders : public SmartRenderTest {
 protected:
    // A frame, so that the thread has its programs; then settings of one sample in one buffer.
    Senders() {
        EXPECT_EQ(Run(), PF_Err_NONE);
        SetCurrentContext(local_render_data->context);
        fake::ClearCalls();
        settings_.inputWorld = &input_.world;
        settings_.outputWorld = &output_.world;
        settings_.resolutionScale = 1;
        perSampleData sample{};
        sample.softness = 119.1;
        sample.opacity = 0.5;
        settings_.samples = {sample};
        settings_.framebuffers = {{0, 0, 40, 300, 40, 300}};
    }

    myParams settings_{};
    unsigned program_ = 77;
};

TEST_F(Senders, BeyondTheListsThrowOutOfRange) {
    const struct { int sample, framebuffer; } rows[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    for (auto row : rows) {
        SCOPED_TRACE(std::to_string(row.sample) + ", " + std::to_string(row.framebuffer));
        EXPECT_THROW(SendBlurWUniforms(&settings_, &row.sample, &row.framebuffer, &program_), std::out_of_range);
        EXPECT_THROW(SendBlurHUniforms(&settings_, &row.sample, &row.framebuffer, &program_), std::out_of_range);
        EXPECT_THROW(SendXformUniforms(&settings_, &row.sample, &row.framebuffer, &program_, &host_.outData),
                     std::out_of_range);
    }
    EXPECT_TRUE(fake::CallsTo("glUniform").empty()) << "nothing is sent before";
}

TEST_F(Senders, ASampleOfNoBufferThrowsOutOfRangeBeforeAnythingIsDrawn) {
    Framebuffer source, accumulated;
    for (const std::size_t buffers : {0, 1, 3}) {
        SCOPED_TRACE(buffers);
        std::vector<Framebuffer> blurred(buffers);
        StackPlan plan;
        plan.samples.resize(1);
        plan.samples[0].buffer = static_cast<uint32_t>(buffers);
        EXPECT_THROW(DrawSampleStack(&settings_, plan, source, blurred, accumulated, SendBlurWUniforms, &host_.outData),
                     std::out_of_range);
        settings_.framebuffers.resize(buffers);
        settings_.samples[0].fbIndex = static_cast<uint32_t>(buffers);
        EXPECT_THROW(PlanNormalStack(settings_, {}, Precision::kDriver), std::out_of_range);
    }
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(Senders, ThePlacementAsksTheThreadsFourthProgram) {
    int first = 0;
    SendXformUniforms(&settings_, &first, &first, &program_, &host_.outData);
    const std::string placing = std::to_string(local_render_data->programs[3].id);
    EXPECT_THAT(fake::CallsTo("glGetUniformLocation"), ElementsAre("glGetUniformLocation(" + placing + ", \"xform\")"));
}

TEST_F(Senders, TheBlursAskTheGivenProgram) {
    int first = 0;
    SendBlurWUniforms(&settings_, &first, &first, &program_);
    SendBlurHUniforms(&settings_, &first, &first, &program_);
    const std::vector<std::string> asked = fake::CallsTo("glGetUniformLocation");
    EXPECT_EQ(asked.size(), 9u);
    for (const std::string& call : asked) EXPECT_EQ(call.rfind("glGetUniformLocation(77, ", 0), 0u) << call;
}

// The steps down divide what the record keeps in single precision, and in single precision.
TEST_F(Senders, StridesAreRoundedAsTheRecordsFieldsAre) {
    int first = 0;
    SendBlurWUniforms(&settings_, &first, &first, &program_);
    EXPECT_THAT(fake::Gl().uniformValues.at("steps"), ElementsAre(120));
    const auto across = static_cast<float>(119.1 / 120 * (1.0 / 40));
    EXPECT_THAT(fake::Gl().uniformValues.at("stride"), ElementsAre(static_cast<double>(across)));
    SendBlurHUniforms(&settings_, &first, &first, &program_);
    const auto down = static_cast<float>(static_cast<double>(119.1f / 120.0f) * (1.0 / 300));
    EXPECT_NE(down, static_cast<float>(static_cast<double>(119.1f) / 120 * (1.0 / 300))) << "else it proves nothing";
    EXPECT_THAT(fake::Gl().uniformValues.at("stride"), ElementsAre(static_cast<double>(down)));
}

TEST_F(Senders, AnyProgramThatFailsMakesTheListFailAndTheOthersAreBuilt) {
    for (int bad = 0; bad < kProgramCount; ++bad) {
        SCOPED_TRACE(bad);
        int built = 0;
        fake::Gl().linkFailure = [&](GLuint) {
            return built++ == bad ? std::optional<std::string>("no") : std::nullopt;
        };
        Program programs[kProgramCount];
        EXPECT_FALSE(InitPrograms(programs, &host_.outData));
        EXPECT_EQ(built, kProgramCount);
        for (int slot = 0; slot < kProgramCount; ++slot) EXPECT_EQ(programs[slot].initialised, slot != bad) << slot;
    }
    fake::Gl().linkFailure = nullptr;
    Program programs[kProgramCount];
    EXPECT_TRUE(InitPrograms(programs, &host_.outData));
}

}  // namespace

}  // namespace umbrant::effect
