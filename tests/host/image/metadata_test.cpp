// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What of a file survives beside its pixels, how pictures are compressed, and that absurd sizes are refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "host/image/picture.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

/// Reads a file and writes what was read to another.
void Rewrite(const std::filesystem::path& from, const std::filesystem::path& to, WriteOptions options = {}) {
    const auto picture = ReadPicture(from);
    ASSERT_TRUE(picture) << picture.error().sentence;
    options.metadata = picture->metadata;
    const auto written =
        WritePicture(to, picture->pixels,
                     {picture->window, picture->frameWidth, picture->frameHeight, picture->frameOrigin}, options);
    ASSERT_TRUE(written) << written.error().sentence;
}

TEST(Metadata, ExrKeepsTimeCodeOwnerAndOwnTexts) {
    const Folder folder;
    OIIO::ImageSpec layout(3, 2, 4, OIIO::TypeDesc::FLOAT);
    const int timecode[2] = {0x01020304, 0x05060708};
    layout.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    layout.attribute("Copyright", "Ada");
    layout.attribute("shot", "A 12");
    layout.attribute("PixelAspectRatio", 2.0f);
    WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
    Rewrite(folder / "a.exr", folder / "b.exr");
    const RawFile raw = ReadRaw(folder / "b.exr");
    const auto* kept = raw.layout.find_attribute("smpte:TimeCode", OIIO::TypeTimeCode);
    ASSERT_TRUE(kept);
    EXPECT_EQ(static_cast<const int*>(kept->data())[0], timecode[0]);
    EXPECT_EQ(static_cast<const int*>(kept->data())[1], timecode[1]);
    EXPECT_EQ(raw.layout.get_string_attribute("Copyright"), "Ada");
    EXPECT_EQ(raw.layout.get_string_attribute("shot"), "A 12");
    EXPECT_EQ(raw.layout.get_float_attribute("PixelAspectRatio"), 2.0f);
}

TEST(Metadata, ResolutionAndColourSpaceGoAlsoToAnotherFormat) {
    const Folder folder;
    OIIO::ImageSpec layout(3, 2, 4, OIIO::TypeDesc::UINT8);
    layout.attribute("XResolution", 300.0f);
    layout.attribute("YResolution", 300.0f);
    layout.attribute("ResolutionUnit", "in");
    layout.attribute("oiio:ColorSpace", "sRGB");
    WriteFile(folder / "a.tif", layout, {1, 1, 1, 1});
    for (const char* name : {"b.tif", "b.png"}) {
        SCOPED_TRACE(name);
        Rewrite(folder / "a.tif", folder / name);
        const RawFile raw = ReadRaw(folder / name);
        const float perInch = raw.layout.get_string_attribute("ResolutionUnit") == "m" ? 0.0254f : 1.0f;
        EXPECT_NEAR(raw.layout.get_float_attribute("XResolution") * perInch, 300, 0.5);
        EXPECT_EQ(raw.layout.get_string_attribute("oiio:ColorSpace"), "sRGB");
    }
}

struct CompressionCase {
    const char* name;
    const char* from;
    const char* had;
    const char* to;
    const char* asked;
    const char* expected;
};

TEST(Metadata, CompressionIsKeptOrChosen) {
    const CompressionCase rows[] = {
        {"kept in EXR", "a.exr", "piz", "b.exr", "", "piz"},
        {"chosen in EXR", "a.exr", "piz", "b.exr", "none", "none"},
        {"kept in TIFF", "a.tif", "lzw", "b.tif", "", "lzw"},
        {"chosen in TIFF", "a.tif", "lzw", "b.tif", "zip", "zip"},
        {"another format has its own", "a.tif", "lzw", "b.exr", "", "zip"},
    };
    for (const CompressionCase& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout(3, 2, 4, OIIO::TypeDesc::FLOAT);
        layout.attribute("compression", row.had);
        WriteFile(folder / row.from, layout, {1, 1, 1, 1});
        WriteOptions options;
        options.compression = row.asked;
        Rewrite(folder / row.from, folder / row.to, options);
        EXPECT_EQ(ReadRaw(folder / row.to).layout.get_string_attribute("compression"), row.expected);
    }
}

TEST(Metadata, WindowsLargerAndSmallerThanTheFrameGoRound) {
    const PF_LRect windows[] = {{-3, -2, 9, 8}, {1, 2, 3, 4}, {0, 0, 6, 6}, {7, 7, 8, 9}};
    for (const PF_LRect& window : windows) {
        SCOPED_TRACE(window.left);
        const Folder folder;
        OIIO::ImageSpec layout(window.right - window.left, window.bottom - window.top, 4, OIIO::TypeDesc::HALF);
        layout.x = 100 + window.left;
        layout.y = -50 + window.top;
        layout.full_x = 100;
        layout.full_y = -50;
        layout.full_width = layout.full_height = 6;
        WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
        const auto picture = ReadPicture(folder / "a.exr");
        ASSERT_TRUE(picture);
        EXPECT_TRUE(picture->isHalf);
        EXPECT_EQ(picture->window.left, window.left);
        EXPECT_EQ(picture->window.bottom, window.bottom);
        EXPECT_EQ(picture->frameWidth, 6);
        WriteOptions options;
        options.half = true;
        Rewrite(folder / "a.exr", folder / "b.exr", options);
        const OIIO::ImageSpec back = ReadRaw(folder / "b.exr").layout;
        EXPECT_EQ(back.format, OIIO::TypeDesc::HALF);
        EXPECT_EQ(back.x, layout.x);
        EXPECT_EQ(back.y, layout.y);
        EXPECT_EQ(back.width, layout.width);
        EXPECT_EQ(back.height, layout.height);
        EXPECT_EQ(back.full_x, 100);
        EXPECT_EQ(back.full_y, -50);
        EXPECT_EQ(back.full_width, 6);
    }
}

struct SizeCase {
    const char* name;
    int width, height, frame;
    const char* sentence;
};

TEST(Metadata, AbsurdSizesAreRefused) {
    const SizeCase rows[] = {
        {"too wide", 30001, 1, 8, "too large: 30001 x 1 pixels; no side may be longer than 30000"},
        {"a frame that is too large", 1, 1, 1000000, "too large: 1000000 x 1000000 pixels"},
        {"a frame of too many pixels", 1, 1, 29000, "at most 1073741824 values are allowed"},
    };
    for (const SizeCase& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout(row.width, row.height, 4, OIIO::TypeDesc::HALF);
        layout.full_width = layout.full_height = row.frame;
        WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
        const auto picture = ReadPicture(folder / "a.exr");
        ASSERT_FALSE(picture);
        EXPECT_EQ(picture.error().kind, ErrorKind::kFile);
        EXPECT_THAT(picture.error().sentence, HasSubstr(row.sentence));
    }
}

/// A colour profile of a header alone.
std::vector<unsigned char> Profile(const std::string& colours) {
    std::vector<unsigned char> bytes(132, 0);
    const auto put = [&](std::size_t at, const std::string& text) { std::copy(text.begin(), text.end(), &bytes[at]); };
    bytes[3] = 132;
    bytes[8] = 2;
    put(12, "mntr");
    put(16, colours);
    put(20, "XYZ ");
    put(36, "acsp");
    put(68, std::string("\0\0\xf6\xd6\0\1\0\0\0\0\xd3\x2d", 12));
    return bytes;
}

struct ProfileCase {
    const char* name;
    std::vector<unsigned char> bytes;
    const char* reason;  // empty where it is kept
};

TEST(Metadata, OnlyAProfileThatDescribesThePixelsIsKept) {
    const auto changed = [](std::size_t at, unsigned char value) {
        auto bytes = Profile("RGB ");
        bytes[at] = value;
        return bytes;
    };
    auto odd = Profile("RGB ");
    odd[8] = 4;
    odd.resize(133);
    odd[3] = 133;
    const ProfileCase rows[] = {
        {"for RGB", Profile("RGB "), ""},
        {"for inks", Profile("CMYK"), "for 'CMYK', not for RGB"},
        {"for grey", Profile("GRAY"), "for 'GRAY', not for RGB"},
        {"for Lab", Profile("Lab "), "for 'Lab', not for RGB"},
        {"a wrong length", changed(3, 99), "the length is wrong"},
        {"an odd length", odd, "the length is wrong"},
        {"too short", std::vector<unsigned char>(100, 1), "the length is wrong"},
        {"no signature", changed(36, 'b'), "damaged"},
        {"no connection space", changed(20, 'b'), "damaged"},
        {"tags behind the end", changed(131, 9), "damaged"},
        {"an odd intent", changed(67, 9), "the rendering intent is unknown"},
        {"another white", changed(71, 0), "the white point is not D50"},
        {"a link between devices", changed(12, 'x'), "not a profile of image colours"},
        {"a far intent", changed(64, 0xff), "the rendering intent is unknown"},
    };
    for (const ProfileCase& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout(3, 2, 3, OIIO::TypeDesc::UINT8);
        layout.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(row.bytes.size())),
                         row.bytes.data());
        WriteFile(folder / "a.tif", layout, {1, 1, 1});
        const auto picture = ReadPicture(folder / "a.tif");
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->metadataNote,
                  *row.reason ? "the colour profile of '" + (folder / "a.tif").string() + "' is left out: " + row.reason
                              : "");
        for (const char* name : {"b.png", "b.tif", "b.jpg", "b.exr"}) {
            SCOPED_TRACE(name);
            Rewrite(folder / "a.tif", folder / name);
            const bool kept = std::string(name) == "b.png"
                                  ? ReadBytes(folder / name).find("iCCP") != std::string::npos
                                  : ReadRaw(folder / name).layout.find_attribute("ICCProfile") != nullptr;
            // EXR has no place for one.
            EXPECT_EQ(kept, !*row.reason && std::string(name) != "b.exr");
        }
    }
}

TEST(Metadata, AProfileWithoutAPlaceOrAMeaningIsReported) {
    const Folder folder;
    OIIO::ImageSpec layout(1, 1, 4, OIIO::TypeDesc::UINT8);
    const auto bytes = Profile("RGB ");
    layout.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(bytes.size())), bytes.data());
    WriteFile(folder / "a.tif", layout, {0, 0, 0, 1});
    auto picture = ReadPicture(folder / "a.tif");
    ASSERT_TRUE(picture);
    const ColorWords srgb{"sRGB", 0, {}};
    const auto note = [&](const char* output, bool isConverted, const std::optional<ColorWords>& words) {
        return ColorNote(picture->metadata.get(), "a.tif", output, "", isConverted, words);
    };
    const std::string leftOut = "the colour profile of 'a.tif' is left out: ";
    EXPECT_EQ(note("b.exr", false, {}), leftOut + "an EXR has no place for one");
    EXPECT_EQ(note("b.mov", false, {}), leftOut + "a clip has no place for one");
    EXPECT_EQ(note("b.png", true, srgb), leftOut + "the colours are converted to another space");
    EXPECT_EQ(note("b.png", true, {}), "");
    EXPECT_EQ(note("b.jpg", false, {}), "");
    WriteOptions kept;
    kept.metadata = picture->metadata;
    ASSERT_TRUE(WritePicture(folder / "kept.png", picture->pixels, {{0, 0, 1, 1}, 1, 1}, kept));
    kept.colors = srgb;
    ASSERT_TRUE(WritePicture(folder / "srgb.png", picture->pixels, {{0, 0, 1, 1}, 1, 1}, kept));
    EXPECT_THAT(ReadBytes(folder / "kept.png"), HasSubstr("iCCP"));
    EXPECT_THAT(ReadBytes(folder / "srgb.png"), testing::Not(HasSubstr("iCCP")));
}

TEST(Metadata, AProfileIsNotRepeatedAsTexts) {
    const Folder folder;
    OIIO::ImageSpec layout(3, 2, 3, OIIO::TypeDesc::UINT8);
    const auto bytes = Profile("RGB ");
    layout.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, 132), bytes.data());
    layout.attribute("Copyright", "Ada");
    WriteFile(folder / "a.tif", layout, {1, 1, 1});
    Rewrite(folder / "a.tif", folder / "b.png");
    const std::string png = ReadBytes(folder / "b.png");
    EXPECT_THAT(png, HasSubstr("iCCP"));
    EXPECT_THAT(png, HasSubstr("Ada"));
    EXPECT_THAT(png, testing::Not(HasSubstr("ICCProfile:")));
}

/// The checksum of a PNG file's chunk.
unsigned Checksum(const std::string& bytes) {
    unsigned sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int i = 0; i < 8; ++i) sum = sum & 1 ? sum >> 1 ^ 0xedb88320 : sum >> 1;
    }
    return ~sum;
}

std::string BigEndian(std::size_t number) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(number >> shift & 255);
    return text;
}

TEST(Metadata, ATextThatIsNamedLikeAProfileIsNone) {
    const Folder folder;
    WriteFile(folder / "plain.png", OIIO::ImageSpec(3, 2, 3, OIIO::TypeDesc::UINT8), {1, 1, 1});
    std::string png = ReadBytes(folder / "plain.png");
    const std::string text = std::string("tEXtICCProfile") + '\0' + "sRGB";
    png.insert(33, BigEndian(text.size() - 4) + text + BigEndian(Checksum(text)));  // after the header
    WriteBytes(folder / "a.png", png);
    const auto picture = ReadPicture(folder / "a.png");
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->metadataNote,
              "the colour profile of '" + (folder / "a.png").string() + "' is left out: a text, not a profile");
    for (const char* name : {"b.png", "b.tif", "b.jpg", "b.exr"}) {
        SCOPED_TRACE(name);
        Rewrite(folder / "a.png", folder / name);
        EXPECT_FALSE(ReadRaw(folder / name).layout.find_attribute("ICCProfile"));
    }
}

// A TIFF with a directory of its own for them goes another way to its file.
TEST(Metadata, ExifGoesIntoATiff) {
    const Folder folder;
    OIIO::ImageSpec layout(40, 30, 3, OIIO::TypeDesc::UINT8);
    layout.attribute("Exif:FocalLength", 50.0f);
    layout.attribute("compression", "none");
    WriteFile(folder / "a.tif", layout, {1, 0, 1});
    Rewrite(folder / "a.tif", folder / "b.tif");
    EXPECT_EQ(ReadRaw(folder / "b.tif").layout.get_float_attribute("Exif:FocalLength"), 50.0f);
    EXPECT_EQ(ReadRaw(folder / "b.tif").values[1], 0);

    // Where files may not grow as large, the library is not let to write one that ends too early.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    const auto picture = ReadPicture(folder / "a.tif");
    ASSERT_TRUE(picture);
    WriteOptions options;
    options.metadata = picture->metadata;
    small.rlim_cur = 4096;
    setrlimit(RLIMIT_FSIZE, &small);
    const auto refused = WritePicture(folder / "c.tif", picture->pixels, {{0, 0, 40, 30}, 40, 30}, options);
    small.rlim_cur = 65536;
    setrlimit(RLIMIT_FSIZE, &small);
    const auto written = WritePicture(folder / "c.tif", picture->pixels, {{0, 0, 40, 30}, 40, 30}, options);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.error().sentence, HasSubstr("': File too large"));
    ASSERT_TRUE(written) << written.error().sentence;
    EXPECT_EQ(ReadRaw(folder / "c.tif").layout.get_float_attribute("Exif:FocalLength"), 50.0f);
}

}  // namespace

}  // namespace umbrant::host
