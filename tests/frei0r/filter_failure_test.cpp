// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the filter does where it cannot draw: a hatched band in the frame and one sentence, or frames that pass through
// unchanged where that was asked for.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "frei0r/error_band.h"
#include "tests/frei0r/filter.h"
#include "tests/host/library/library_fixture.h"

using namespace umbrant::host;

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::uint32_t Packed(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha) {
    const std::uint8_t channels[] = {red, green, blue, alpha};
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, channels, sizeof pixel);
    return pixel;
}

Frame WithBand(Frame frame, int width, int height) {
    DrawErrorBand(frame.data(), width, height);
    return frame;
}

/// A host whose filter cannot load its module.
class FailingFilter : public testing::Test {
 protected:
    FailingFilter() {
        setenv("UMBRANT_MODULE", nowhere_.c_str(), 1);
        setenv("UMBRANT_RENDERER", "cpu", 1);
        unsetenv("UMBRANT_FREI0R");
        const auto disc = Disc8(16, 16);
        in_.resize(256);
        std::memcpy(in_.data(), disc.channels.data(), disc.channels.size());
    }
    ~FailingFilter() override { unsetenv("UMBRANT_FREI0R"); }

    /// The frame that a new instance makes of `in`.
    Frame Filtered(const LoadedFilter& filter, const Frame& in, int width, int height) const {
        const f0r_instance_t instance = filter.construct(static_cast<unsigned>(width), static_cast<unsigned>(height));
        EXPECT_TRUE(instance);
        double distance = 0.5;
        filter.set(instance, &distance, filter.IndexOf("Distance"));
        Frame out(in.size(), 0x12345678);
        filter.update(instance, 0, in.data(), out.data());
        filter.destruct(instance);
        return out;
    }

    const Folder folder_;
    const std::string nowhere_ = (folder_ / "no.so").string();
    Frame in_;
};

TEST(ErrorBand, OpaqueStripesInTheMiddleQuarter) {
    constexpr int kWidth = 32, kHeight = 24;
    const std::uint32_t clear = Packed(9, 8, 7, 0);
    const Frame frame = WithBand(Frame(kWidth * kHeight, clear), kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        const std::set<std::uint32_t> colors(frame.begin() + y * kWidth, frame.begin() + (y + 1) * kWidth);
        const bool isBand = y >= 9 && y < 15;
        EXPECT_EQ(colors, isBand ? (std::set<std::uint32_t>{Packed(255, 0, 255, 255), Packed(0, 0, 0, 255)})
                                 : std::set<std::uint32_t>{clear})
            << "row " << y;
    }
    EXPECT_NE(Frame(frame.begin() + 9 * kWidth, frame.begin() + 10 * kWidth),
              Frame(frame.begin() + 10 * kWidth, frame.begin() + 11 * kWidth))
        << "the stripes are diagonal";
}

TEST(ErrorBand, FramesOfAnySize) {
    for (const auto& [width, height] : {std::pair(1, 1), {1, 7}, {7, 1}, {3, 2}}) {
        const Frame frame = WithBand(Frame(static_cast<std::size_t>(width) * height, 0), width, height);
        EXPECT_TRUE(std::any_of(frame.begin(), frame.end(), [](std::uint32_t pixel) { return pixel != 0; }));
    }
    DrawErrorBand(nullptr, 0, 5);
    DrawErrorBand(nullptr, 5, 0);
}

TEST_F(FailingFilter, FramesHaveABandAndTheReasonIsLoggedOnce) {
    const LoadedFilter filter;
    testing::internal::CaptureStderr();
    for (int life = 0; life < 2; ++life) EXPECT_EQ(Filtered(filter, in_, 16, 16), WithBand(in_, 16, 16));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_THAT(said, StartsWith("umbrant_frei0r: "));
    EXPECT_THAT(said, HasSubstr(nowhere_));
    EXPECT_THAT(said, EndsWith("; frames have a hatched band (UMBRANT_FREI0R=pass: they pass through unchanged)\n"));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << "once, not for every instance and frame";

    const f0r_instance_t instance = filter.construct(16, 16);
    Frame same = in_;
    filter.update(instance, 0, same.data(), same.data());
    filter.destruct(instance);
    EXPECT_EQ(same, WithBand(in_, 16, 16)) << "in place";
}

TEST_F(FailingFilter, FramesPassThroughOnDemand) {
    setenv("UMBRANT_FREI0R", "pass", 1);
    const LoadedFilter filter;
    testing::internal::CaptureStderr();
    for (int life = 0; life < 2; ++life) EXPECT_EQ(Filtered(filter, in_, 16, 16), in_);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_THAT(said, HasSubstr(nowhere_));
    EXPECT_THAT(said, EndsWith("; frames pass through unchanged\n"));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
}

TEST_F(FailingFilter, AnotherValueIsReported) {
    setenv("UMBRANT_FREI0R", "ignore", 1);
    const LoadedFilter filter;
    testing::internal::CaptureStderr();
    EXPECT_EQ(Filtered(filter, in_, 16, 16), WithBand(in_, 16, 16));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("umbrant_frei0r: UMBRANT_FREI0R is \"ignore\", which means nothing; it must be \"pass\" or "
                          "not set\n"));
}

TEST_F(FailingFilter, AFrameThatFailsIsMarkedToo) {
    // The module can be loaded, but has no row of that name to set.
    setenv("UMBRANT_MODULE", TestModule("painter").c_str(), 1);
    const LoadedFilter filter;
    testing::internal::CaptureStderr();
    EXPECT_EQ(Filtered(filter, in_, 16, 16), WithBand(in_, 16, 16));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("there is no parameter 'style/distance'"));
}

TEST_F(FailingFilter, WithoutAnyModuleItSaysWhatItsUserCanDo) {
    // A copy of the filter in a folder without a module.
    const Folder alone;
    std::filesystem::copy_file(FREI0R_FILTER, alone / "umbrant_frei0r.so");
    ::unsetenv("UMBRANT_MODULE");
    const LoadedFilter filter((alone / "umbrant_frei0r.so").string());
    testing::internal::CaptureStderr();
    const f0r_instance_t instance = filter.construct(16, 16);
    const std::string said = testing::internal::GetCapturedStderr();
    filter.destruct(instance);
    // Where this project is installed, that module is found.
    if (said.empty()) return;
    EXPECT_THAT(said, StartsWith("umbrant_frei0r: no module was found in '"));
    EXPECT_THAT(said, HasSubstr("'; put umbrant2.so into the filter's folder, or set the environment variable "
                                "UMBRANT_MODULE to its file; frames have a hatched band"));
}

}  // namespace
