// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Reading PNG by its own library against the image library: every kind of pixel and chunk is read alike.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <cstdio>
#include <random>

#include "host/image/png/latin_text.h"
#include "tests/host/image/both_codecs.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

std::string Big32(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

std::string Chunk(const std::string& type, const std::string& content) {
    const std::string body = type + content;
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return Big32(static_cast<std::uint32_t>(content.size())) + body + Big32(static_cast<std::uint32_t>(sum));
}

std::string Deflated(const std::string& bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
             static_cast<uLong>(bytes.size()));
    out.resize(size);
    return out;
}

/// What a PNG is made of.
struct Png {
    int color = PNG_COLOR_TYPE_RGB_ALPHA;
    int bits = 8;
    std::string chunks{};   ///< before the pixels
    std::string palette{};  ///< with the chunks that follow it
};

constexpr int kWidth = 13, kHeight = 7;

std::string BytesOf(const Png& png) {
    const int samples = png.color == PNG_COLOR_TYPE_GRAY || png.color == PNG_COLOR_TYPE_PALETTE ? 1
                        : png.color == PNG_COLOR_TYPE_GRAY_ALPHA                                ? 2
                        : png.color == PNG_COLOR_TYPE_RGB                                       ? 3
                                                                                                : 4;
    const int rowBytes = (kWidth * samples * png.bits + 7) / 8;
    std::mt19937 random(7);
    std::string rows;
    for (int y = 0; y < kHeight; ++y) {
        rows += '\0';
        for (int x = 0; x < rowBytes; ++x) {
            rows += static_cast<char>(
                png.color == PNG_COLOR_TYPE_PALETTE ? (png.bits == 8 ? x % 2 : 0x11 & (x * 16 + x)) : random());
        }
    }
    std::string header = Big32(kWidth) + Big32(kHeight);
    header += {static_cast<char>(png.bits), static_cast<char>(png.color), 0, 0, 0};
    return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", header) + png.chunks + png.palette + Chunk("IDAT", Deflated(rows)) +
           Chunk("IEND", "");
}

TEST(PngCodec, EveryKindOfPixelIsReadAsBefore) {
    const Folder folder;
    const std::string palette = Chunk("PLTE", {10, 20, 30, 40, 50, 60});
    const Png rows[] = {
        {PNG_COLOR_TYPE_GRAY, 1},
        {PNG_COLOR_TYPE_GRAY, 2},
        {PNG_COLOR_TYPE_GRAY, 4},
        {PNG_COLOR_TYPE_GRAY, 8},
        {PNG_COLOR_TYPE_GRAY, 16},
        {PNG_COLOR_TYPE_GRAY, 8, Chunk("tRNS", std::string("\0\x0b", 2))},
        {PNG_COLOR_TYPE_RGB, 8},
        {PNG_COLOR_TYPE_RGB, 16},
        {PNG_COLOR_TYPE_RGB, 8, Chunk("tRNS", std::string("\0\x0b\0\x28\0\x45", 6))},
        {PNG_COLOR_TYPE_RGB, 16, Chunk("tRNS", "\x0b\x28\x45\x62\x7f\x1c")},
        {PNG_COLOR_TYPE_PALETTE, 1, "", palette},
        {PNG_COLOR_TYPE_PALETTE, 2, "", palette},
        {PNG_COLOR_TYPE_PALETTE, 4, "", palette},
        {PNG_COLOR_TYPE_PALETTE, 8, "", palette},
        {PNG_COLOR_TYPE_PALETTE, 8, "", palette + Chunk("tRNS", "\x7f")},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 8},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 16},
        {PNG_COLOR_TYPE_RGB_ALPHA, 8},
        {PNG_COLOR_TYPE_RGB_ALPHA, 16},
    };
    for (const Png& row : rows) {
        SCOPED_TRACE(testing::Message() << "kind " << row.color << ", " << row.bits << " bits");
        WriteBytes(folder / "a.png", BytesOf(row));
        ExpectReadAlike("png", folder / "a.png");
    }
}

TEST(PngCodec, EveryChunkIsReadAsBefore) {
    const Folder folder;
    const auto real = [](double value) { return Big32(static_cast<std::uint32_t>(value * 100000)); };
    const std::string rows[] = {
        Chunk("gAMA", real(0.45455)) + Chunk("sRGB", std::string(1, '\0')),
        Chunk("gAMA", real(0.45455)),
        Chunk("gAMA", real(0.5)),
        Chunk("gAMA", real(0.55556)),
        Chunk("gAMA", real(1)),
        Chunk("gAMA", real(0)),
        Chunk("pHYs", Big32(3000) + Big32(6000) + '\1'),
        Chunk("pHYs", Big32(2) + Big32(1) + '\0'),
        Chunk("oFFs", Big32(static_cast<std::uint32_t>(-5)) + Big32(7) + '\0'),
        Chunk("oFFs", Big32(5) + Big32(7) + '\1'),
        Chunk("tIME", std::string("\x07\xe4\1\2\3\4\5", 7)),
        Chunk("tEXt", std::string("Description\0hello", 17)) + Chunk("tEXt", std::string("author\0me", 9)) +
            Chunk("tEXt", std::string("Title\0ti", 8)) + Chunk("tEXt", std::string("Own thing\0xyz", 13)),
        Chunk("tEXt", std::string("twice\0one", 9)) + Chunk("tEXt", std::string("Twice\0two", 9)),
        Chunk("zTXt", std::string("key\0\0", 5) + Deflated("compressed")),
        Chunk("iTXt", std::string("key\0\0\0en\0\xc3\xa4\0\xe2\x82\xac", 15)),
        Chunk("cHRM", std::string(32, '\1')),
        Chunk("sBIT", "\5\5\5\5"),
        Chunk("bKGD", std::string("\0\1\0\2\0\3", 6)),
        Chunk("prVt", "unknown"),
        Chunk("iCCP", std::string("bad\0\0", 5) + Deflated("no profile")),
        // Known by its checksum to be damaged: an ancillary chunk is left out then.
        "\0\0\0\4gAMA1234nono",
    };
    for (const std::string& row : rows) {
        SCOPED_TRACE(row);
        WriteBytes(folder / "a.png", BytesOf({PNG_COLOR_TYPE_RGB_ALPHA, 8, row}));
        ExpectReadAlike("png", folder / "a.png");
    }
}

TEST(PngCodec, WhatHoldsAnotherFormatIsLeftToTheImageLibrary) {
    const Folder folder;
    const std::string rows[] = {
        Chunk("eXIf", std::string("II*\0\x08\0\0\0\0\0\0\0\0\0", 14)),
        Chunk("iTXt", std::string("XML:com.adobe.xmp\0\0\0\0\0<x/>", 26)),
        Chunk("zTXt", std::string("Raw profile type exif\0\0", 23) + Deflated("exif")),
    };
    for (const std::string& row : rows) {
        WriteBytes(folder / "a.png", BytesOf({PNG_COLOR_TYPE_RGB_ALPHA, 8, row}));
        EXPECT_EQ(Chosen(folder / "a.png").name, "");
        EXPECT_TRUE(ReadPicture(folder / "a.png"));
    }
}

TEST(PngCodec, TextsBefore8BitsOfUnicodeBecomeUnicode) {
    const Folder folder;
    WriteBytes(folder / "a.png", BytesOf({PNG_COLOR_TYPE_RGB_ALPHA, 8, Chunk("tEXt", std::string("who\0J\xf6rg", 8))}));
    std::string problem;
    const auto reader = Opened(Chosen(folder / "a.png"), folder / "a.png", &problem);
    ASSERT_TRUE(reader) << problem;
    EXPECT_EQ(reader->Layout().Text("who"), "J\xc3\xb6rg");
    EXPECT_EQ(LatinOfUtf8("J\xc3\xb6rg"), "J\xf6rg");
    EXPECT_EQ(LatinOfUtf8("\xe2\x82\xac"), std::nullopt);
    for (const char* wrong : {"\xc0\xaf", "\xed\xa0\x80", "\xf5\x80\x80\x80", "\xe2\x82", "\x80", "\xf0\x80\x80\xaf"}) {
        EXPECT_FALSE(IsUtf8(wrong));
    }
    EXPECT_TRUE(IsUtf8("\xf0\x9f\x98\x80 \xe2\x82\xac \xc3\xa4 a"));
}

/// Writes a random image by libpng itself, with all rows in seven passes.
void WriteInterlaced(const std::filesystem::path& path, int color, int bits) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, kWidth, kHeight, bits, color, PNG_INTERLACE_ADAM7, PNG_COMPRESSION_TYPE_BASE,
                 PNG_FILTER_TYPE_BASE);
    png_write_info(png, info);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    std::vector<png_byte> pixels(rowBytes * kHeight);
    std::mt19937 random(3);
    for (png_byte& byte : pixels) byte = static_cast<png_byte>(random());
    std::vector<png_bytep> rows;
    for (int y = 0; y < kHeight; ++y) rows.push_back(pixels.data() + static_cast<std::size_t>(y) * rowBytes);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

TEST(PngCodec, InterlacedFilesAreReadAsBefore) {
    const Folder folder;
    for (const auto& [color, bits] : {std::pair(PNG_COLOR_TYPE_RGB_ALPHA, 8), std::pair(PNG_COLOR_TYPE_RGB_ALPHA, 16),
                                      std::pair(PNG_COLOR_TYPE_GRAY, 1), std::pair(PNG_COLOR_TYPE_GRAY, 16)}) {
        WriteInterlaced(folder / "a.png", color, bits);
        ExpectReadAlike("png", folder / "a.png");
    }
}

TEST(PngCodec, AFileCutAnywhereIsRefusedAndNeverHalf) {
    const Folder folder;
    const std::string whole = BytesOf({PNG_COLOR_TYPE_RGB_ALPHA, 16, Chunk("tEXt", std::string("a\0b", 3))});
    for (std::size_t size = 8; size + 12 < whole.size(); size += 5) {
        SCOPED_TRACE(size);
        WriteBytes(folder / "a.png", whole.substr(0, size));
        const auto picture = ReadPicture(folder / "a.png");
        ASSERT_FALSE(picture);
        EXPECT_EQ(picture.error().kind, ErrorKind::kFile);
        EXPECT_THAT(picture.error().sentence, HasSubstr("the file ends too early"));
    }
}

TEST(PngCodec, DamagedFilesAreRefusedOrReadAsBefore) {
    const Folder folder;
    const std::string texts = Chunk("tEXt", std::string("a\0b", 3)) + Chunk("pHYs", Big32(2) + Big32(1) + '\0');
    std::mt19937 random(11);
    int read = 0, refused = 0;
    for (const Png& png : {Png{PNG_COLOR_TYPE_RGB_ALPHA, 8, texts}, Png{PNG_COLOR_TYPE_GRAY, 16, texts},
                           Png{PNG_COLOR_TYPE_PALETTE, 4, texts, Chunk("PLTE", {10, 20, 30, 40, 50, 60})}}) {
        const std::string whole = BytesOf(png);
        for (int i = 0; i < 400; ++i) {
            std::string bytes = whole;
            // Behind the signature, which would make it another file.
            bytes[8 + random() % (bytes.size() - 8)] = static_cast<char>(random());
            WriteBytes(folder / "a.png", bytes);
            std::string problem;
            const auto ours = Opened(Chosen(folder / "a.png"), folder / "a.png", &problem);
            if (!ours || ours->Layout().width > 100 || ours->Layout().height > 100) {
                ++refused;
                continue;
            }
            std::vector<float> values(
                static_cast<std::size_t>(ours->Layout().width * ours->Layout().height * ours->Layout().ChannelCount()));
            if (ours->Read(0, ours->Layout().ChannelCount(), false, values.data())) {
                ++refused;
                continue;
            }
            ++read;
            // Not before: the image library leaks memory over a file that it refuses.
            const auto theirs = Opened(Library(), folder / "a.png", &problem);
            ASSERT_TRUE(theirs) << problem;
            ExpectSameLayout("png", ours->Layout(), theirs->Layout());
            EXPECT_EQ(values, Values<float>(*theirs, 0, theirs->Layout().ChannelCount()));
        }
    }
    EXPECT_GT(read, 50);
    EXPECT_GT(refused, 200);
}

}  // namespace

}  // namespace umbrant::host
