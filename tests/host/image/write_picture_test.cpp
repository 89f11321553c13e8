// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What lands in files of every format that can be written, and that a failure leaves nothing behind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <thread>

#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::HasSubstr;

Placement Frame(int width, int height) {
    return {{0, 0, width, height}, width, height};
}

struct FormatCase {
    const char* name;
    const char* file;
    Depth depth;
    OIIO::TypeDesc type;
    int channels;
    std::vector<float> stored;  // of a pixel of half alpha: red 1, green 0.2, blue 0
};

TEST(WritePicture, EveryFormatFollowsItsConvention) {
    const float half = 128 / 255.0f;
    const FormatCase cases[] = {
        {"PNG of 8 bits is straight", "a.png", Depth::k8, OIIO::TypeDesc::UINT8, 4, {1, 0.2f, 0, half}},
        {"PNG of float has 16 bits", "a.png", Depth::k32, OIIO::TypeDesc::UINT16, 4, {1, 0.2f, 0, half}},
        {"TIFF of 8 bits is straight", "a.tif", Depth::k8, OIIO::TypeDesc::UINT8, 4, {1, 0.2f, 0, half}},
        {"TIFF of float is straight float", "a.tiff", Depth::k32, OIIO::TypeDesc::FLOAT, 4, {1, 0.2f, 0, half}},
        {"EXR of 8 bits is premultiplied half",
         "a.exr",
         Depth::k8,
         OIIO::TypeDesc::HALF,
         4,
         {half, 0.2f * half, 0, half}},
        {"EXR of float is premultiplied float",
         "a.exr",
         Depth::k32,
         OIIO::TypeDesc::FLOAT,
         4,
         {half, 0.2f * half, 0, half}},
        {"JPEG lies on white", "a.jpg", Depth::k8, OIIO::TypeDesc::UINT8, 3, {1, 0.2f * half + 1 - half, 1 - half}},
        {"JPEG of float", "a.JPEG", Depth::k32, OIIO::TypeDesc::UINT8, 3, {1, 0.2f * half + 1 - half, 1 - half}},
    };
    for (const FormatCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        const World world =
            row.depth == Depth::k8 ? Filled8(16, 8, {128, 255, 51, 0}) : FilledFloat(16, 8, {half, 1, 0.2f, 0});
        const auto written = WritePicture(folder / row.file, world, Frame(16, 8));
        ASSERT_TRUE(written) << written.error().sentence;
        const RawFile raw = ReadRaw(folder / row.file);
        EXPECT_EQ(raw.layout.format, row.type);
        ASSERT_EQ(raw.layout.nchannels, row.channels);
        EXPECT_EQ(raw.layout.width, 16);
        EXPECT_EQ(raw.layout.height, 8);
        const float tolerance = row.channels == 3 ? 0.012f : 1.0f / 2048;
        for (std::size_t i = 0; i < row.stored.size(); ++i)
            EXPECT_THAT(raw.values[i], FloatNear(row.stored[i], tolerance));
        EXPECT_EQ(folder.Entries(), 1) << "nothing but the image";
    }
}

TEST(WritePicture, ReadingBackGivesTheSamePixels) {
    const Folder folder;
    World eight = World::Create(16, 16, Depth::k8);
    World real = World::Create(16, 16, Depth::k32);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const auto n = static_cast<A_u_char>(16 * y + x);
            Pixel8(eight, x, y) = {n, static_cast<A_u_char>(255 - n), static_cast<A_u_char>(7 * n), 200};
            PixelFloat(real, x, y) = {static_cast<float>(n) / 200, static_cast<float>(x) - 5, static_cast<float>(y),
                                      0.1f};
        }
    }
    for (const char* name : {"a.png", "a.tif"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(WritePicture(folder / name, eight, Frame(16, 16)));
        auto back = ReadPicture(folder / name);
        ASSERT_TRUE(back);
        for (int i = 0; i < 256; ++i) {
            const PF_Pixel& a = Pixel8(eight, i % 16, i / 16);
            const PF_Pixel& b = Pixel8(back->pixels, i % 16, i / 16);
            EXPECT_THAT((std::vector<int>{b.alpha, b.red, b.green, b.blue}),
                        ElementsAre(a.alpha, a.red, a.green, a.blue));
        }
    }
    ASSERT_TRUE(WritePicture(folder / "a.tiff", real, Frame(16, 16)));
    auto back = ReadPicture(folder / "a.tiff");
    ASSERT_TRUE(back);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(PixelFloat(back->pixels, i % 16, i / 16).alpha, PixelFloat(real, i % 16, i / 16).alpha);
        EXPECT_EQ(PixelFloat(back->pixels, i % 16, i / 16).red, PixelFloat(real, i % 16, i / 16).red);
    }
    ASSERT_TRUE(WritePicture(folder / "a.exr", real, Frame(16, 16)));
    back = ReadPicture(folder / "a.exr");
    ASSERT_TRUE(back);
    for (int i = 1; i < 256; ++i) {
        EXPECT_EQ(PixelFloat(back->pixels, i % 16, i / 16).alpha, PixelFloat(real, i % 16, i / 16).alpha);
        EXPECT_NEAR(PixelFloat(back->pixels, i % 16, i / 16).red, PixelFloat(real, i % 16, i / 16).red, 1e-5);
    }
}

TEST(WritePicture, ExrKeepsTheFrameAroundAGrownPicture) {
    const Folder folder;
    const World world = FilledFloat(9, 7, {1, 1, 1, 1});
    ASSERT_TRUE(WritePicture(folder / "a.exr", world, {{-2, -1, 7, 6}, 5, 4}));
    const RawFile raw = ReadRaw(folder / "a.exr");
    EXPECT_EQ(raw.layout.x, -2);
    EXPECT_EQ(raw.layout.y, -1);
    EXPECT_EQ(raw.layout.width, 9);
    EXPECT_EQ(raw.layout.height, 7);
    EXPECT_EQ(raw.layout.full_x, 0);
    EXPECT_EQ(raw.layout.full_y, 0);
    EXPECT_EQ(raw.layout.full_width, 5);
    EXPECT_EQ(raw.layout.full_height, 4);
}

TEST(WritePicture, NothingOfAColourUnderNoAlphaGoesIntoAnExr) {
    const Folder folder;
    ASSERT_TRUE(WritePicture(folder / "a.exr", FilledFloat(2, 2, {0, INFINITY, 1, 1}), Frame(2, 2)));
    EXPECT_THAT(ReadRaw(folder / "a.exr").values[0], 0);
}

TEST(WritePicture, AnOlderPictureIsReplaced) {
    const Folder folder;
    WriteBytes(folder / "a.png", "old");
    ASSERT_TRUE(WritePicture(folder / "a.png", Filled8(2, 2, {255, 1, 2, 3}), Frame(2, 2)));
    ASSERT_TRUE(ReadPicture(folder / "a.png"));
    EXPECT_EQ(folder.Entries(), 1);
}

void ExpectUnwritable(const std::filesystem::path& file, const std::string& reason, bool checkedBefore = true) {
    SCOPED_TRACE(file.string());
    const auto written = WritePicture(file, Filled8(2, 2, {255, 1, 2, 3}), Frame(2, 2));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().kind, ErrorKind::kFile);
    EXPECT_THAT(written.error().sentence, HasSubstr("cannot write"));
    EXPECT_THAT(written.error().sentence, HasSubstr(reason));
    EXPECT_EQ(written.error().sentence.find('\n'), std::string::npos);
    if (!checkedBefore) return;
    const auto checked = CheckWritable(file);
    ASSERT_FALSE(checked);
    EXPECT_EQ(checked.error().sentence, written.error().sentence);
}

TEST(WritePicture, WhatCannotBeWrittenIsSaidAndLeavesNothing) {
    const Folder folder;
    std::filesystem::create_directory(folder / "folder.png");
    WriteBytes(folder / "file", "x");
    const std::string formats = "use .png, .tif, .tiff, .exr, .jpg or .jpeg";
    ExpectUnwritable(folder / "a.gif", "'.gif' is not a format that can be written; " + formats);
    ExpectUnwritable(
        folder / "a.gif",
        "; for an animation write a clip, .mov, .mkv or .webm, which `ffmpeg -i clip.mov clip.gif` converts");
    ExpectUnwritable(folder / "picture", "the name has no extension; " + formats);
    ExpectUnwritable("", "the output's name is empty");
    ExpectUnwritable(folder / "folder.png", "a folder has that name");
    ExpectUnwritable(folder / "none/a.png", "there is no folder '");
    ExpectUnwritable(folder / "file/a.png", "");
    ExpectUnwritable("/proc/umbrant.png", "", false);
    EXPECT_EQ(folder.Entries(), 2);
}

constexpr const char* kNames[] = {"a.png", "a.tif", "a.exr", "a.jpg"};

/// Sets a variable of the environment until it goes; no value unsets it.
class Variable {
 public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        Set(value);
    }
    ~Variable() { Set(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

 private:
    void Set(const char* value) {
        if (value) {
            setenv(name_, value, 1);
        } else {
            unsetenv(name_);
        }
    }
    const char* name_;
    std::optional<std::string> before_;
};

/// Dates in files have seconds.
void WaitForAnotherSecond() {
    const std::time_t now = std::time(nullptr);
    while (std::time(nullptr) == now) std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

TEST(WritePicture, AnotherTimeGivesTheSameBytes) {
    const Variable none("SOURCE_DATE_EPOCH", nullptr);
    const Folder folder;
    const World eight = Filled8(9, 7, {255, 1, 2, 3});
    const World real = FilledFloat(9, 7, {1, 0.5f, 0.25f, 0});
    std::vector<std::string> first;
    for (int round = 0; round < 2; ++round) {
        if (round > 0) WaitForAnotherSecond();
        std::size_t i = 0;
        for (const World* world : {&eight, &real}) {
            for (const char* name : kNames) {
                SCOPED_TRACE(name);
                ASSERT_TRUE(WritePicture(folder / name, *world, Frame(9, 7)));
                EXPECT_EQ(ReadRaw(folder / name).layout.get_string_attribute("DateTime"), "");
                if (round == 0) first.push_back(ReadBytes(folder / name));
                EXPECT_TRUE(ReadBytes(folder / name) == first[i++]);
            }
        }
    }
}

TEST(WritePicture, TheDateIsTheInputsOrTheEnvironments) {
    const Folder folder;
    OIIO::ImageSpec layout(3, 2, 3, OIIO::TypeDesc::UINT8);
    layout.attribute("DateTime", "2001:02:03 04:05:06");
    WriteFile(folder / "dated.tif", layout, {0, 0, 0});
    const auto dated = ReadPicture(folder / "dated.tif");
    ASSERT_TRUE(dated);
    const Variable epoch("SOURCE_DATE_EPOCH", "1000000000");
    for (const char* name : kNames) {
        SCOPED_TRACE(name);
        WriteOptions options;
        ASSERT_TRUE(WritePicture(folder / name, dated->pixels, Frame(3, 2), options));
        EXPECT_EQ(ReadRaw(folder / name).layout.get_string_attribute("DateTime"), "2001:09:09 01:46:40");
        options.metadata = dated->metadata;
        ASSERT_TRUE(WritePicture(folder / name, dated->pixels, Frame(3, 2), options));
        EXPECT_EQ(ReadRaw(folder / name).layout.get_string_attribute("DateTime"), "2001:02:03 04:05:06");
    }
    const Variable wrong("SOURCE_DATE_EPOCH", "yesterday");
    ASSERT_TRUE(WritePicture(folder / "a.tif", dated->pixels, Frame(3, 2)));
    EXPECT_EQ(ReadRaw(folder / "a.tif").layout.get_string_attribute("DateTime"), "");
}

TEST(WritePicture, PngHoldsWhereItBegins) {
    const Folder folder;
    const World world = Filled8(9, 7, {255, 1, 2, 3});
    ASSERT_TRUE(WritePicture(folder / "a.png", world, {{-62, -61, -53, -54}, 5, 4}));
    const OIIO::ImageSpec raw = ReadRaw(folder / "a.png").layout;
    EXPECT_EQ(raw.x, -62);
    EXPECT_EQ(raw.y, -61);
    // Read again, it is a layer whose corner has that place, from which the next image's is counted.
    const auto layer = ReadPicture(folder / "a.png");
    ASSERT_TRUE(layer);
    EXPECT_EQ(layer->frameOrigin.x, -62);
    EXPECT_EQ(layer->frameOrigin.y, -61);
    EXPECT_EQ(layer->window.left, 0);
    EXPECT_EQ(layer->window.right, 9);
    EXPECT_EQ(layer->frameWidth, 9);
    for (const char* name : {"b.png", "b.exr"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(WritePicture(folder / name, world, {{-3, -2, 6, 5}, 9, 7, layer->frameOrigin}));
        const OIIO::ImageSpec back = ReadRaw(folder / name).layout;
        EXPECT_EQ(back.x, -65);
        EXPECT_EQ(back.y, -63);
    }
}

TEST(WritePicture, AReplacedFileKeepsItsModeAndALinkItsPlace) {
    const Folder folder;
    const World world = Filled8(2, 2, {255, 1, 2, 3});
    namespace fs = std::filesystem;
    fs::create_directory(folder / "far");
    WriteBytes(folder / "far/a.png", "old");
    fs::permissions(folder / "far/a.png", fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
    fs::create_symlink("far/a.png", folder / "near.png");
    fs::create_symlink("near.png", folder / "nearer.png");
    fs::create_symlink("far/new.png", folder / "dangling.png");
    ASSERT_TRUE(WritePicture(folder / "nearer.png", world, Frame(2, 2)));
    EXPECT_TRUE(fs::is_symlink(folder / "near.png"));
    EXPECT_TRUE(fs::is_symlink(folder / "nearer.png"));
    EXPECT_TRUE(ReadPicture(folder / "far/a.png"));
    EXPECT_EQ(fs::status(folder / "far/a.png").permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
    ASSERT_TRUE(WritePicture(folder / "dangling.png", world, Frame(2, 2)));
    EXPECT_TRUE(ReadPicture(folder / "far/new.png"));
    EXPECT_TRUE(fs::is_symlink(folder / "dangling.png"));
    EXPECT_EQ(folder.Entries(), 4);
}

TEST(WritePicture, WhatIsNoRegularFileIsNotReplaced) {
    const Folder folder;
    ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    ExpectUnwritable(folder / "pipe.png", "not a regular file");
    std::filesystem::create_symlink("none/a.png", folder / "astray.png");
    ExpectUnwritable(folder / "astray.png", "there is no folder '");
    std::filesystem::create_symlink("circle.png", folder / "circle.png");
    ExpectUnwritable(folder / "circle.png", "Too many levels of symbolic links");
    ExpectUnwritable(folder / (std::string(300, 'a') + ".png"), "File name too long");
    EXPECT_EQ(folder.Entries(), 3);
}

TEST(WritePicture, ChannelsAreStoredAsDeepAsAskedFor) {
    struct Row {
        const char* name;
        const char* depth;
        OIIO::TypeDesc::BASETYPE type;
    };
    const Row rows[] = {
        {"a.png", "8", OIIO::TypeDesc::UINT8},     {"a.png", "16", OIIO::TypeDesc::UINT16},
        {"a.tif", "8", OIIO::TypeDesc::UINT8},     {"a.tif", "16", OIIO::TypeDesc::UINT16},
        {"a.tif", "float", OIIO::TypeDesc::FLOAT}, {"a.exr", "half", OIIO::TypeDesc::HALF},
        {"a.exr", "float", OIIO::TypeDesc::FLOAT}, {"a.jpg", "8", OIIO::TypeDesc::UINT8},
    };
    const World eight = Filled8(2, 2, {255, 255, 128, 0});
    const World real = FilledFloat(2, 2, {1, 1, 128 / 255.0f, 0});
    for (const World* world : {&eight, &real}) {
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.name) + " " + row.depth);
            const Folder folder;
            WriteOptions options;
            options.depth = FileDepthNamed(row.depth);
            EXPECT_TRUE(CheckFileDepth(row.name, options.depth));
            ASSERT_TRUE(WritePicture(folder / row.name, *world, Frame(2, 2), options));
            const RawFile raw = ReadRaw(folder / row.name);
            EXPECT_EQ(raw.layout.format, OIIO::TypeDesc(row.type));
            EXPECT_NEAR(raw.values[1], 128 / 255.0, 0.01);
        }
    }
    const auto refused = CheckFileDepth("a.jpg", FileDepth::kHalf);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(refused.error().sentence, ".jpg has no channels of 'half'; use --output-depth with one of: 8");
    EXPECT_EQ(CheckFileDepth("a.tif", FileDepth::kHalf).error().sentence,
              ".tif has no channels of 'half'; use --output-depth with one of: 8 16 float");
}

TEST(WritePicture, EncodedIsWhatAFileHolds) {
    const Folder folder;
    const World world = Filled8(2, 2, {255, 255, 128, 0});
    for (const char* format : {"png", "tif", "exr", "jpg"}) {
        SCOPED_TRACE(format);
        WriteOptions options;
        options.format = format;
        const auto bytes = EncodePicture(world, Frame(2, 2), options);
        ASSERT_TRUE(bytes) << bytes.error().sentence;
        const auto file = folder / (std::string("a.") + format);
        ASSERT_TRUE(WritePicture(file, world, Frame(2, 2)));
        EXPECT_TRUE(*bytes == ReadBytes(file));
    }
    WriteOptions options;
    EXPECT_EQ(EncodePicture(world, Frame(2, 2), options).error().sentence,
              "standard output has no extension; name its format with --format png, tif, exr or jpg");
    options.format = "gif";
    EXPECT_EQ(EncodePicture(world, Frame(2, 2), options).error().sentence,
              "'gif' is not a format that can be written; use --format png, tif, exr or jpg");
}

TEST(WritePicture, AnEmptyPictureIsRefused) {
    const Folder folder;
    const auto written = WritePicture(folder / "a.png", World::Create(0, 0, Depth::k8), Frame(4, 4));
    ASSERT_FALSE(written);
    EXPECT_THAT(written.error().sentence, HasSubstr("the image is empty"));
    EXPECT_EQ(folder.Entries(), 0);
}

}  // namespace

}  // namespace umbrant::host
