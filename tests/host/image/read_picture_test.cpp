// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which files are read and which are refused, and what their headers give.

#include <OpenImageIO/deepdata.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/host/image/small_layouts.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

struct WindowCase {
    const char* name;
    int x, y, fullX, fullY, fullWidth, fullHeight;
    PF_LRect window;
};

TEST(ReadPicture, ExrWindowsAreKept) {
    const WindowCase cases[] = {
        {"no difference", 0, 0, 0, 0, 3, 2, {0, 0, 3, 2}},
        {"grown beyond the frame", -1, -1, 0, 0, 1, 1, {-1, -1, 2, 1}},
        {"a part of the frame", 4, 5, 0, 0, 100, 50, {4, 5, 7, 7}},
        {"a frame that does not begin at 0", 10, 20, 8, 16, 30, 40, {2, 4, 5, 6}},
    };
    for (const WindowCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout = LayoutOf(4, OIIO::TypeDesc::HALF);
        layout.x = row.x;
        layout.y = row.y;
        layout.full_x = row.fullX;
        layout.full_y = row.fullY;
        layout.full_width = row.fullWidth;
        layout.full_height = row.fullHeight;
        WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
        auto picture = ReadPicture(folder / "a.exr");
        ASSERT_TRUE(picture) << picture.error().sentence;
        EXPECT_EQ(picture->window.left, row.window.left);
        EXPECT_EQ(picture->window.top, row.window.top);
        EXPECT_EQ(picture->window.right, row.window.right);
        EXPECT_EQ(picture->window.bottom, row.window.bottom);
        EXPECT_EQ(picture->frameWidth, row.fullWidth);
        EXPECT_EQ(picture->frameHeight, row.fullHeight);

        const auto header = ReadPictureHeader(folder / "a.exr");
        ASSERT_TRUE(header) << header.error().sentence;
        EXPECT_EQ(header->window.left, row.window.left);
        EXPECT_EQ(header->window.bottom, row.window.bottom);
        EXPECT_EQ(header->frameWidth, row.fullWidth);
        EXPECT_EQ(header->frameHeight, row.fullHeight);
        EXPECT_EQ(header->bits, picture->bits);
        EXPECT_TRUE(header->pixels.IsNull());
    }
}

TEST(ReadPicture, AHeaderIsReadWithoutThePixels) {
    const Folder folder;
    OIIO::ImageSpec layout = LayoutOf(4, OIIO::TypeDesc::UINT8);
    layout.width = layout.full_width = 400;
    WriteFile(folder / "a.png", layout, {0.1f, 0.2f, 0.3f, 1});
    const std::string whole = ReadBytes(folder / "a.png");
    WriteBytes(folder / "cut.png", whole.substr(0, whole.size() - 20));
    ASSERT_FALSE(ReadPicture(folder / "cut.png"));
    const auto header = ReadPictureHeader(folder / "cut.png");
    ASSERT_TRUE(header) << header.error().sentence;
    EXPECT_EQ(header->frameWidth, 400);
    EXPECT_EQ(header->frameHeight, 2);
    const auto missing = ReadPictureHeader(folder / "missing.png");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, ErrorKind::kFile);
    EXPECT_THAT(missing.error().sentence, HasSubstr("there is no such file"));
}

void ExpectUnreadable(const std::filesystem::path& file, const std::string& reason) {
    const auto picture = ReadPicture(file);
    ASSERT_FALSE(picture) << file;
    EXPECT_EQ(picture.error().kind, ErrorKind::kFile);
    EXPECT_THAT(picture.error().sentence, HasSubstr("cannot read '" + file.string() + "': "));
    EXPECT_THAT(picture.error().sentence, HasSubstr(reason));
    EXPECT_EQ(picture.error().sentence.find('\n'), std::string::npos);
}

TEST(ReadPicture, WhatIsNoFileIsSaidToBeNone) {
    const Folder folder;
    std::filesystem::create_directory(folder / "folder.png");
    WriteBytes(folder / "empty.png", "");
    WriteBytes(folder / "empty.exr", "");
    ExpectUnreadable(folder / "missing.png", "there is no such file");
    ExpectUnreadable(folder / "missing/deeper.png", "there is no such file");
    ExpectUnreadable(folder / "folder.png", "a folder, not an image");
    ExpectUnreadable(folder / "empty.png", "the file is empty");
    ExpectUnreadable(folder / "empty.exr", "the file is empty");
    ExpectUnreadable("/dev/null", "not a regular file");
}

TEST(ReadPicture, WhatIsNoPictureIsSaidToBeNone) {
    const Folder folder;
    for (const char* name : {"text.png", "text.tif", "text.jpg", "text.exr", "text.txt", "text"}) {
        WriteBytes(folder / name, "Dear diary, today I drew a shadow.\n");
        ExpectUnreadable(folder / name, "not an image that can be read (");
    }
}

TEST(ReadPicture, TruncatedFilesAreRefusedWhereverTheyEnd) {
    for (const char* name : {"a.png", "a.tif", "a.jpg", "a.exr"}) {
        const Folder folder;
        OIIO::ImageSpec layout = LayoutOf(3, OIIO::TypeDesc::UINT8);
        layout.width = layout.full_width = 40;
        layout.height = layout.full_height = 40;
        if (std::string(name) == "a.exr") layout.format = OIIO::TypeDesc::HALF;
        layout.attribute("compression", "none");
        WriteFile(folder / name, layout, {0.1f, 0.9f, 0.4f});
        const std::string whole = ReadBytes(folder / name);
        ASSERT_TRUE(ReadPicture(folder / name));
        for (const std::size_t size : {std::size_t{3}, std::size_t{30}, whole.size() / 3, whole.size() / 2}) {
            SCOPED_TRACE(testing::Message() << name << " cut to " << size << " of " << whole.size());
            const auto cut = folder / ("cut_" + std::string(name));
            WriteBytes(cut, whole.substr(0, size));
            ExpectUnreadable(cut, "");
        }
    }
}

TEST(ReadPicture, DeepFilesAreRefused) {
    const Folder folder;
    OIIO::ImageSpec layout = LayoutOf(4, OIIO::TypeDesc::FLOAT);
    layout.deep = true;
    const auto output = OIIO::ImageOutput::create((folder / "deep.exr").string());
    ASSERT_TRUE(output->open((folder / "deep.exr").string(), layout)) << output->geterror();
    OIIO::DeepData deep;
    deep.init(layout);
    for (int i = 0; i < 6; ++i) deep.set_samples(i, 1);
    ASSERT_TRUE(output->write_deep_image(deep)) << output->geterror();
    ASSERT_TRUE(output->close());
    ExpectUnreadable(folder / "deep.exr", "a deep image; flatten it first");
}

TEST(ReadPicture, ANameMayHaveAnyCharacters) {
    const Folder folder;
    for (const char* ending : {".png", ".tif", ".exr", ".jpg"}) {
        for (const char* stem : {"a?", "a?b=c", "a%20#&*", "\xc3\xa4 \xff"}) {
            const auto file = folder / (std::string(stem) + ending);
            SCOPED_TRACE(file);
            ASSERT_TRUE(WritePicture(file, Filled8(3, 2, {255, 255, 255, 255}), {{0, 0, 3, 2}, 3, 2}));
            const auto picture = ReadPicture(file);
            ASSERT_TRUE(picture) << picture.error().sentence;
            EXPECT_EQ(picture->frameWidth, 3);
        }
    }
    WriteBytes(folder / "text?.png", "Dear diary\n");
    ExpectUnreadable(folder / "text?.png", "not an image that can be read (");
}

TEST(ReadPicture, AFileThatCannotBeReachedIsNotMissing) {
    const Folder folder;
    std::filesystem::create_symlink("circle.png", folder / "circle.png");
    ExpectUnreadable(folder / "circle.png", "Too many levels of symbolic links");
    ExpectUnreadable(folder / (std::string(300, 'a') + ".png"), "File name too long");
}

TEST(ReadPicture, AnOpenFileNeedsNoName) {
    const Folder folder;
    for (const char* ending : {".png", ".tif", ".exr", ".jpg"}) {
        SCOPED_TRACE(ending);
        const auto file = folder / (std::string("one") + ending);
        ASSERT_TRUE(WritePicture(file, Filled8(3, 2, {255, 255, 255, 255}), {{0, 0, 3, 2}, 3, 2}));
        const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
        // Only the bytes are left of it.
        std::filesystem::remove(file);
        const auto header = ReadOpenPictureHeader(descriptor, "sent");
        ASSERT_TRUE(header) << header.error().sentence;
        EXPECT_EQ(header->frameWidth, 3);
        EXPECT_TRUE(header->pixels.IsNull());
        const auto picture = ReadOpenPicture(descriptor, "sent");
        ASSERT_TRUE(picture) << picture.error().sentence;
        EXPECT_EQ(picture->pixels.Width(), 3);
        close(descriptor);
    }
    WriteBytes(folder / "text", "Dear diary\n");
    const int descriptor = open((folder / "text").c_str(), O_RDONLY | O_CLOEXEC);
    const auto picture = ReadOpenPicture(descriptor, "sent");
    close(descriptor);
    ASSERT_FALSE(picture);
    EXPECT_EQ(picture.error().kind, ErrorKind::kFile);
    EXPECT_THAT(picture.error().sentence, HasSubstr("cannot read 'sent': "));
}

}  // namespace

}  // namespace umbrant::host
