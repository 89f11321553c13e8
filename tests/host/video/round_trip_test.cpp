// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pictures into clips and back, through the real ffmpeg: exact where the codec is, within bounds where it is not, at
// sizes that chroma does not divide.

#include "host/video/clip_facts.h"
#include "host/video/clip_reader.h"
#include "host/video/clip_writer.h"
#include "tests/host/video/clips.h"

namespace umbrant::host {

namespace {

/// A picture of 8 bits or floats of 16-bit steps: smooth colours, alpha from nothing to all, and colour where alpha is
/// nothing. `frame` moves it.
World TestPicture(int width, int height, Depth depth, int frame) {
    World world = World::Create(width, height, depth);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int across = 255 * x / width, down = 255 * y / height;
            const int alpha = std::clamp(2 * across - 128 + 4 * frame, 0, 255);
            if (depth == Depth::k8) {
                const auto byte = [](int value) { return static_cast<A_u_char>(value); };
                Pixel8(world, x, y) = {byte(alpha), byte(across), byte(down), byte(255 - down)};
            } else {
                const auto part = [](int value, int more) { return static_cast<float>(value * 257 + more) / 65535.0f; };
                PixelFloat(world, x, y) = {part(alpha / 2, 3), part(across / 2, x), part(down / 2, y), part(20, frame)};
            }
        }
    }
    return world;
}

/// The largest and the mean difference of alpha, and of colour where it shows, in steps of 8 bits.
struct Difference {
    double alpha = 0;
    double color = 0;
    double meanColor = 0;
};

Difference Compare(World& a, World& b) {
    Difference found;
    double sum = 0;
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            const PF_Pixel& p = Pixel8(a, x, y);
            const PF_Pixel& q = Pixel8(b, x, y);
            found.alpha = std::max(found.alpha, std::abs(double{1} * p.alpha - q.alpha));
            for (const auto& [u, v] :
                 {std::pair(p.red, q.red), std::pair(p.green, q.green), std::pair(p.blue, q.blue)}) {
                const double off = std::abs(double{1} * u - v);
                found.color = std::max(found.color, off);
                sum += off;
            }
        }
    }
    found.meanColor = sum / (3.0 * a.Width() * a.Height());
    return found;
}

class RoundTrip : public Clips {
 protected:
    static constexpr int kFrames = 5;

    /// Writes and reads a clip; returns its reader.
    std::unique_ptr<ClipReader> Written(const std::string& name, const std::string& codec, int width, int height,
                                        Depth depth) {
        std::filesystem::remove(folder_ / name);
        ClipTarget target;
        target.path = (folder_ / name).string();
        target.codec = *CodecFor(name, codec);
        target.width = width;
        target.height = height;
        target.raw = depth == Depth::k8 ? RawFormat::k8 : RawFormat::k16;
        target.rate = {30000, 1001};
        auto writer = ClipWriter::Start(target);
        if (!writer) return Failed(writer.error());
        for (int frame = 0; frame < kFrames; ++frame) {
            const auto written = (*writer)->Write(TestPicture(width, height, depth, frame));
            if (!written) return Failed(written.error());
        }
        EXPECT_FALSE(Exists(name)) << "before it is whole";
        if (auto finished = (*writer)->Finish(); !finished) return Failed(finished.error());
        auto facts = ReadClipFacts((folder_ / name).string());
        if (!facts) return Failed(facts.error());
        EXPECT_EQ(facts->rate, (FrameRate{30000, 1001})) << name;
        EXPECT_TRUE(facts->isConstant) << name;
        EXPECT_EQ(facts->FramesInFile(), kFrames) << name;
        const FrameRate rate = facts->rate;
        return std::make_unique<ClipReader>(std::move(*facts), rate);
    }

 private:
    static std::unique_ptr<ClipReader> Failed(const Failure& failure) {
        ADD_FAILURE() << failure.sentence;
        return nullptr;
    }
};

TEST_F(RoundTrip, ExactCodecsKeepEveryBit) {
    NEEDS_FFMPEG();
    const struct {
        const char* name;
        const char* file;
        const char* codec;
        Depth depth;
    } rows[] = {
        {"PNG in MOV, 8 bits", "p8.mov", "png", Depth::k8},      {"PNG in MOV, 16 bits", "p16.mov", "png", Depth::k32},
        {"PNG in Matroska, 8 bits", "p8.mkv", "png", Depth::k8}, {"FFV1, 8 bits", "f8.mkv", "ffv1", Depth::k8},
        {"FFV1, 16 bits", "f16.mkv", "ffv1", Depth::k32},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const auto& [width, height] : {std::pair(64, 48), std::pair(63, 47), std::pair(1, 1), std::pair(5, 3)}) {
            const auto reader = Written(row.file, row.codec, width, height, row.depth);
            ASSERT_TRUE(reader);
            EXPECT_EQ(reader->Facts().bits, row.depth == Depth::k8 ? 8 : 16);
            const RawFormat raw = row.depth == Depth::k8 ? RawFormat::k8 : RawFormat::k16;
            for (int frame = 0; frame < kFrames; ++frame) {
                const auto picture = reader->Read(frame);
                ASSERT_TRUE(picture) << picture.error().sentence;
                ASSERT_EQ(RawFromWorld(raw, picture->pixels),
                          RawFromWorld(raw, TestPicture(width, height, row.depth, frame)))
                    << width << " x " << height << ", frame " << frame;
            }
        }
    }
}

TEST_F(RoundTrip, LossyCodecsStayWithinTheirBounds) {
    NEEDS_FFMPEG();
    const struct {
        const char* file;
        double alpha;
        double color;
        double mean;
    } rows[] = {{"a.mov", 1, 4, 1}, {"a.webm", 4, 24, 2.5}};
    for (const auto& row : rows) {
        for (const auto& [width, height] : {std::pair(64, 48), std::pair(63, 47)}) {
            SCOPED_TRACE(testing::Message() << row.file << " " << width << " x " << height);
            const auto reader = Written(row.file, "", width, height, Depth::k8);
            ASSERT_TRUE(reader);
            EXPECT_EQ(reader->Facts().color, (ColorTags{"bt709", "bt709", "bt709", "tv"}));
            for (int frame = 0; frame < kFrames; ++frame) {
                auto picture = reader->Read(frame);
                ASSERT_TRUE(picture) << picture.error().sentence;
                World eight =
                    picture->bits == 8 ? std::move(picture->pixels) : WorldFromRaw(RawFormat::k8, width, height, [&] {
                        const auto deep = RawFromWorld(RawFormat::k16, picture->pixels);
                        std::vector<std::byte> bytes;
                        for (std::size_t i = 1; i < deep.size(); i += 2) {
                            bytes.push_back(deep[i]);
                        }
                        return bytes;
                    }());
                World expected = TestPicture(width, height, Depth::k8, frame);
                const Difference found = Compare(expected, eight);
                EXPECT_LE(found.alpha, row.alpha);
                EXPECT_LE(found.color, row.color);
                EXPECT_LE(found.meanColor, row.mean);
            }
        }
    }
}

TEST_F(RoundTrip, FramesInAnyOrder) {
    NEEDS_FFMPEG();
    const auto reader = Written("a.mkv", "ffv1", 8, 8, Depth::k8);
    ASSERT_TRUE(reader);
    for (const int frame : {3, 4, 4, 0, 2, 1, 4}) {
        const auto picture = reader->Read(frame);
        ASSERT_TRUE(picture) << picture.error().sentence;
        EXPECT_EQ(RawFromWorld(RawFormat::k8, picture->pixels),
                  RawFromWorld(RawFormat::k8, TestPicture(8, 8, Depth::k8, frame)))
            << frame;
    }
}

TEST_F(RoundTrip, AClipThatIsNotFinishedLeavesNothing) {
    NEEDS_FFMPEG();
    {
        ClipTarget target;
        target.path = (folder_ / "half.mov").string();
        target.codec = *CodecFor("half.mov", "");
        target.width = target.height = 16;
        target.rate = {24, 1};
        auto writer = ClipWriter::Start(target);
        ASSERT_TRUE(writer);
        ASSERT_TRUE((*writer)->Write(TestPicture(16, 16, Depth::k8, 0)));
    }
    EXPECT_EQ(folder_.Entries(), 0);
}

TEST_F(RoundTrip, FloatClipsAreReadAsTheyAre) {
    NEEDS_FFMPEG();
    World world = World::Create(3, 2, Depth::k32);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const auto place = static_cast<float>(3 * y + x);
            PixelFloat(world, x, y) = {0.1f * place, 0.3f * place + 1, -0.5f, 1e-3f / (place + 1)};
        }
    }
    const auto bytes = RawFromWorld(RawFormat::kFloat, world);
    WriteBytes(folder_ / "f.raw", {static_cast<const char*>(static_cast<const void*>(bytes.data())), bytes.size()});
    Ffmpeg("-f rawvideo -pix_fmt gbrapf32le -s 3x2 -i f.raw -c:v exr -format float f.mkv");
    auto facts = ReadClipFacts((folder_ / "f.mkv").string());
    ASSERT_TRUE(facts) << facts.error().sentence;
    EXPECT_EQ(facts->bits, 32);
    ClipReader reader(*facts, facts->rate);
    const auto picture = reader.Read(0);
    ASSERT_TRUE(picture) << picture.error().sentence;
    EXPECT_EQ(RawFromWorld(RawFormat::kFloat, picture->pixels), bytes) << "beyond 0 and 1 too";
}

}  // namespace

}  // namespace umbrant::host
